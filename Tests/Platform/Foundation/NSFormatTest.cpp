// SPDX-License-Identifier: Apache-2.0
// Tests of formatted text.
#include "Foundation/NSFormat.h"

#include "Prelude.h"

namespace {

struct Case {
    const char* expected;
    NSString* format;
    std::vector<FormatArgument> arguments;
};

void expectFormats(const std::vector<Case>& cases) {
    AutoreleasePool pool;
    for (const Case& c : cases)
        EXPECT_EQ(formatString(c.format, c.arguments)->toUTF8(), c.expected) << c.format;
}

TEST(NSFormat, IntegersInEveryBaseWithFlagsWidthAndPrecision) {
    expectFormats({
        {"7 -7 7", u"%d %i %u"_ns, {7, -7, 7u}},
        {"[   42][42   ][00042][+42][ 42]", u"[%5d][%-5d][%05d][%+d][% d]"_ns, {42, 42, 42, 42, 42}},
        {"[-0042][  042][042  ][]", u"[%05d][%5.3d][%-5.3d][%.0d]"_ns, {-42, 42, 42, 0}},
        {"ff FF 0xff 0XFF 17 017 0", u"%x %X %#x %#X %o %#o %#x"_ns, {255, 255, 255, 255, 15, 15, 0}},
        {"ffffffff 4294967295 ffffffffffffffff", u"%x %u %lx"_ns, {-1, -1, -1LL}},
        {"0x0000ff", u"%#08x"_ns, {255}},
        {"010 0010 0 [  010]", u"%#.3o %#.4o %#.0o [%#5o]"_ns, {8, 8, 0, 8}},
        {"[   42][42   ][00042]", u"[%*d][%*d][%.*d]"_ns, {5, 42, -5, 42, 5, 42}},
    });
}

TEST(NSFormat, IntegersKeepTheirOwnTypeWhateverTheFormatSays) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    expectFormats({
        {"-1 -2147483648 2147483647", u"%d %d %d"_ns, {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu}},
        {"-9223372036854775808 18446744073709551615", u"%d %u"_ns, {least, ~0ull}},
        {"200 65535 -5 1",
         u"%d %d %hhd %d"_ns,
         {std::uint8_t{200}, std::uint16_t{65535}, std::int8_t{-5}, true}},
        {"1 2 3 4 5 6 7 8", u"%hd %hhd %ld %lld %qd %zd %td %jd"_ns, {1, 2, 3, 4, 5, 6, 7, 8}},
        {"-1 255", u"%hhd %hhu"_ns, {255, -1}},
    });
}

TEST(NSFormat, FloatingNumbersReadAsInC) {
    double infinity = std::numeric_limits<double>::infinity();
    expectFormats({
        {"1.500000 -0.25 2 2.", u"%f %.2f %.0f %#.0f"_ns, {1.5, -0.25, 2.0, 2.0}},
        {"1.234500e+03 1.2E+03", u"%e %.1E"_ns, {1234.5, 1234.5}},
        {"0.0001 1e-05 100000 1e+06 1234.50", u"%g %g %g %g %#g"_ns, {1e-4, 1e-5, 1e5, 1e6, 1234.5}},
        {"0x1.8p+0 0X1P-1 0x1.80p+1", u"%a %A %.2a"_ns, {1.5, 0.5, 3.0}},
        {"[+01.50][ 1.5][-0.0]", u"[%+06.2f][% .1f][%.1f]"_ns, {1.5, 1.5, -0.0}},
        {"[  inf][-inf][NAN]", u"[%05f][%f][%G]"_ns, {infinity, -infinity, std::nan("")}},
        {"0.1 0.100000001490116", u"%g %.15g"_ns, {0.1f, 0.1f}},
    });
    EXPECT_EQ(formatString(u"%.400f"_ns, std::array<FormatArgument, 1>{1e308})->length(), 710u);
}

TEST(NSFormat, TextAndCharacters) {
    expectFormats({
        {"text [  ab][ab  ][ab]", u"%s [%4s][%-4s][%.2s]"_ns, {"text", "ab", "ab", "abc"}},
        {"é € 😀", u"%s %S %@"_ns, {"é", u"€", u"😀"_ns}},
        {"[😀][]", u"[%.2@][%.1@]"_ns, {u"😀x"_ns, u"😀x"_ns}},
        {"A é é 😀 [  b]", u"%c %c %C %C [%3c]"_ns, {'A', 0x1E9, u'é', U'😀', 'b'}},
        {"100% of %y %", u"100%% of %y %"_ns, {}},
        {"count: NSString", u"%s %@"_ns, {"count:"_sel, NSString::classObject()}},
    });
    std::string text = "owned";
    EXPECT_EQ(NSString::stringWithFormat(u"%s|%@"_ns, text, std::string_view("seen"))->toUTF8(),
              "owned|seen");
}

TEST(NSFormat, NoneAndMissingArgumentsAreSaid) {
    NSString* none = nullptr;
    const char* noText = nullptr;
    expectFormats({
        {"(null) (null) 0 0x0 [  (null)]", u"%@ %s %d %p [%8@]"_ns, {none, noText, none, nullptr, none}},
        {"1 (missing) (missing)", u"%d %s %*d"_ns, {1}},
        {"(missing) (missing)", u"%0$d %9$@"_ns, {1}},
        {"(missing)", u"%99999999999999999999$d"_ns, {1}},
    });
}

TEST(NSFormat, PlacesTakeArgumentsInAnyOrder) {
    expectFormats({
        {"b a b", u"%2$@ %1$@ %2$@"_ns, {u"a"_ns, u"b"_ns}},
        {"[  7]", u"[%2$*1$d]"_ns, {3, 7}},
        {"[1.50]", u"[%3$.*1$f]"_ns, {2, 0, 1.5}},
    });
}

TEST(NSFormat, ArgumentsOfTheWrongKindShowWhatTheyAre) {
    expectFormats({
        {"42 2.5 1", u"%@ %@ %@"_ns, {42, 2.5, true}},
        {"3 -3 3.000000 4294967295.0", u"%d %d %f %.1f"_ns, {3.9, -3.9, 3, 0xFFFFFFFFu}},
        {"text [ seven]", u"%d [%6f]"_ns, {"text", u"seven"_ns}},
        {"0x10 0x0", u"%p %p"_ns, {16, u""_ns == nullptr}},
        {"9223372036854775807 0", u"%d %d"_ns, {1e30, std::nan("")}},
    });
}

TEST(NSFormat, ObjectsShowTheirDescriptionAndPointersTheirAddress) {
    auto object = make<NSObject>();
    EXPECT_THAT(addressOf(object), StartsWith("0x"));
    EXPECT_EQ(NSString::stringWithFormat(u"%@"_ns, object)->toUTF8(),
              "<NSObject: " + addressOf(object) + ">");
    int number = 0;
    EXPECT_EQ(NSString::stringWithFormat(u"%p"_ns, &number)->toUTF8(),
              NSString::stringWithFormat(u"%@"_ns, &number)->toUTF8());
}

TEST(NSFormat, EnormousWidthsAreCut) {
    NSString* wide = NSString::stringWithFormat(u"%999999999999d%.999999999f%*d"_ns, 1, 1.0, 1 << 30, 1);
    EXPECT_EQ(wide->length(), 65535u + 65537u + 65535u);
}

TEST(NSFormat, RaisingNamesTheExceptionAndFormatsItsReason) {
    EXPECT_EQ(reasonOf(NSRangeException,
                       [] { raiseException(NSRangeException, u"index (%d) beyond bounds (%d)"_ns, 5u, 3u); }),
              "index (5) beyond bounds (3)");
}

}  // namespace
