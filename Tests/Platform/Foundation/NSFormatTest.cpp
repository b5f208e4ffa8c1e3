// SPDX-License-Identifier: Apache-2.0
// Tests of formatted text.
#include "Foundation/NSFormat.h"

#include <climits>
#include <cstdio>

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

// The format is what is tried here.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
template <class Value>
void expectAsInC(const std::string& directive, const std::string& inC, Value value) {
    char expected[512];
    std::snprintf(expected, sizeof expected, inC.c_str(), value);
    EXPECT_EQ(NSString::stringWithFormat(NSString::ofUTF8(directive), value)->toUTF8(), expected)
        << directive;
}

TEST(NSFormat, NumbersReadAsInC) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const std::string flags : {"", "-", "+", " ", "0", "#", "-+", " 0", "#0", "-#"})
        for (const std::string width : {"", "1", "5", "20"})
            for (const std::string precision : {"", ".", ".0", ".2", ".15"}) {
                const std::string directive = "%" + flags + width + precision;
                for (char conversion : std::string_view("diuxXo"))
                    for (long long value : {0LL, 8LL, -42LL, 255LL, LLONG_MIN})
                        expectAsInC(directive + conversion, directive + "ll" + conversion, value);
                for (char conversion : std::string_view("fFeEgGaA"))
                    for (double value :
                         {0.0, -0.0, 1.5, -0.25, 1234.5, 1e-5, 1e6, 1e40, kInfinity, -kInfinity})
                        expectAsInC(directive + conversion, directive + conversion, value);
            }
    expectFormats({
        {"[   42][42   ][00042]", u"[%*d][%*d][%.*d]"_ns, {5, 42, -5, 42, 5, 42}},
        {"ffffffff 4294967295 ffffffffffffffff", u"%x %u %lx"_ns, {-1, -1, -1LL}},
        {"[NAN] 0.1 0.100000001490116", u"[%G] %g %.15g"_ns, {std::nan(""), 0.1f, 0.1f}},
    });
    EXPECT_EQ(formatString(u"%.400f"_ns, std::array<FormatArgument, 1>{1e308})->length(), 710u);
}

TEST(NSFormat, ArgumentsKeepTheirOwnTypeWhateverTheFormatSays) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    NSString* none = nullptr;
    const char* noText = nullptr;
    expectFormats({
        {"-1 -2147483648 2147483647", u"%d %d %d"_ns, {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu}},
        {"-9223372036854775808 18446744073709551615", u"%d %u"_ns, {least, ~0ull}},
        {"200 65535 -5 1",
         u"%d %d %hhd %d"_ns,
         {std::uint8_t{200}, std::uint16_t{65535}, std::int8_t{-5}, true}},
        {"1 2 3 4 5 6 7 8", u"%hd %hhd %ld %lld %qd %zd %td %jd"_ns, {1, 2, 3, 4, 5, 6, 7, 8}},
        {"-1 255", u"%hhd %hhu"_ns, {255, -1}},
        // Texts and characters.
        {"text [  ab][ab  ][ab]", u"%s [%4s][%-4s][%.2s]"_ns, {"text", "ab", "ab", "abc"}},
        {"é € 😀", u"%s %S %@"_ns, {"é", u"€", u"😀"_ns}},
        {"[😀][]", u"[%.2@][%.1@]"_ns, {u"😀x"_ns, u"😀x"_ns}},
        {"A é é 😀 [  b]", u"%c %c %C %C [%3c]"_ns, {'A', 0x1E9, u'é', U'😀', 'b'}},
        {"100% of %y %", u"100%% of %y %"_ns, {}},
        {"count: NSString", u"%s %@"_ns, {"count:"_sel, NSString::classObject()}},
        // Null and missing arguments.
        {"(null) (null) 0 0x0 [  (null)]", u"%@ %s %d %p [%8@]"_ns, {none, noText, none, nullptr, none}},
        {"1 (missing) (missing)", u"%d %s %*d"_ns, {1}},
        {"(missing) (missing)", u"%0$d %9$@"_ns, {1}},
        {"(missing)", u"%99999999999999999999$d"_ns, {1}},
        // Places take arguments in any order.
        {"b a b", u"%2$@ %1$@ %2$@"_ns, {u"a"_ns, u"b"_ns}},
        {"[  7]", u"[%2$*1$d]"_ns, {3, 7}},
        {"[1.50]", u"[%3$.*1$f]"_ns, {2, 0, 1.5}},
        // Arguments of the wrong kind show what they are.
        {"42 2.5 1", u"%@ %@ %@"_ns, {42, 2.5, true}},
        {"3 -3 3.000000 4294967295.0", u"%d %d %f %.1f"_ns, {3.9, -3.9, 3, 0xFFFFFFFFu}},
        {"text [ seven]", u"%d [%6f]"_ns, {"text", u"seven"_ns}},
        {"0x10 0x0", u"%p %p"_ns, {16, u""_ns == nullptr}},
        {"9223372036854775807 0", u"%d %d"_ns, {1e30, std::nan("")}},
    });
    std::string text = "owned";
    EXPECT_EQ(NSString::stringWithFormat(u"%s|%@"_ns, text, std::string_view("seen"))->toUTF8(),
              "owned|seen");
}

TEST(NSFormat, ObjectsPointersAndReasonsOfExceptions) {
    auto object = make<NSObject>();
    EXPECT_THAT(addressOf(object), StartsWith("0x"));
    EXPECT_EQ(NSString::stringWithFormat(u"%@"_ns, object)->toUTF8(),
              "<NSObject: " + addressOf(object) + ">");
    int number = 0;
    EXPECT_EQ(NSString::stringWithFormat(u"%p"_ns, &number)->toUTF8(),
              NSString::stringWithFormat(u"%@"_ns, &number)->toUTF8());
    EXPECT_EQ(RAISED(raiseException(NSRangeException, u"index (%d)"_ns, 5u)), "NSRangeException: index (5)");
}

}  // namespace
