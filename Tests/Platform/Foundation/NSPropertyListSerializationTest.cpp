// SPDX-License-Identifier: Apache-2.0
// Tests of property lists written and read again, of what is refused, and of damaged lists.
#include "Foundation/NSPropertyListSerialization.h"

#include <unordered_set>

#include "Foundation/NSMutableData.h"
#include "Foundation/PropertyListLimits.h"
#include "Platform/Foundation/PropertyListSamples.h"
#include "Prelude.h"

namespace pelvor {
namespace {

using namespace propertylists;

constexpr NSPropertyListFormat kWritten[] = {NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0};

class PropertyListFormats : public testing::TestWithParam<NSPropertyListFormat> {};
INSTANTIATE_TEST_SUITE_P(, PropertyListFormats, testing::ValuesIn(kWritten), [](const auto& format) {
    return format.param == NSPropertyListXMLFormat_v1_0 ? "XML" : "Binary";
});

// MARK: There and back

TEST_P(PropertyListFormats, KeepEveryValue) {
    NSDictionary* list = richList();
    std::string bytes = written(list, GetParam());
    Reading reading = read(bytes);
    ASSERT_TRUE(reading.list) << reading.error;
    EXPECT_EQ(reading.format, GetParam());
    for (auto [key, value] : list) {
        id same = cast<NSDictionary>(reading.list)->objectForKey(key);
        EXPECT_TRUE(value->isEqual(same)) << key << ": " << value << " became " << same;
    }
    EXPECT_EQ(written(reading.list, GetParam()), bytes);
}

TEST_P(PropertyListFormats, KeepWhatKindANumberIs) {
    id list = NSArray::of({NSNumber::numberWithBool(true), NSNumber::numberWithInt(1),
                           NSNumber::numberWithDouble(1), NSNumber::numberWithDouble(std::nan("")),
                           NSNumber::numberWithDouble(-0.0)});
    std::vector<NSNumber*> numbers;
    for (id number : cast<NSArray>(read(written(list, GetParam())).list))
        numbers.push_back(static_cast<NSNumber*>(number));
    ASSERT_EQ(numbers.size(), 5u);
    EXPECT_TRUE(numbers[0]->isBoolean());
    EXPECT_STREQ(numbers[1]->objCType(), "q");
    EXPECT_STREQ(numbers[2]->objCType(), "d");
    EXPECT_TRUE(std::isnan(numbers[3]->doubleValue()) && std::signbit(numbers[4]->doubleValue()));
}

TEST_P(PropertyListFormats, AreTheSameForEqualLists) {
    NSDictionary* one = NSDictionary::of({{u"b"_ns, u"1"_ns}, {u"\u00E4"_ns, u"3"_ns}});
    NSDictionary* other = NSDictionary::of({{u"\u00E4"_ns, u"3"_ns}, {u"b"_ns, u"1"_ns}});
    EXPECT_EQ(written(one, GetParam()), written(other, GetParam()));
}

TEST_P(PropertyListFormats, KeepRootsOfEveryKind) {
    for (id root : {id(u"text"_ns), id(NSNumber::numberWithInt(7)), id(sampleData(5)), id(NSArray::array()),
                    id(NSDate::dateWithTimeIntervalSinceReferenceDate(60))})
        EXPECT_TRUE(root->isEqual(read(written(root, GetParam())).list)) << root;
}

TEST(PropertyLists, AreWrittenAsXMLInTheUsualForm) {
    NSDictionary* list =
        NSDictionary::of({{u"b"_ns, NSArray::of({NSNumber::numberWithInt(-5), sampleData(3)})},
                          {u"a<"_ns, u"\r&"_ns},
                          {u"c"_ns, NSDictionary::dictionary()},
                          {u"d"_ns, NSDate::dateWithTimeIntervalSinceReferenceDate(3.75)}});
    EXPECT_EQ(written(list), document("<dict>\n"
                                      "\t<key>a&lt;</key>\n\t<string>&#13;&amp;</string>\n"
                                      "\t<key>b</key>\n\t<array>\n\t\t<integer>-5</integer>\n"
                                      "\t\t<data>\n\t\tAAcO\n\t\t</data>\n\t</array>\n"
                                      "\t<key>c</key>\n\t<dict/>\n"
                                      "\t<key>d</key>\n\t<date>2001-01-01T00:00:03Z</date>\n"
                                      "</dict>"));
}

TEST(PropertyLists, ShareEqualLeavesInBinaryLists) {
    std::string text(1000, 'x');
    NSMutableArray* list = NSMutableArray::array();
    for (int i = 0; i < 100; ++i) list->addObject(NSString::ofUTF8(text));
    EXPECT_LT(written(list, NSPropertyListBinaryFormat_v1_0).size(), 1200u);
}

// MARK: Mutability

TEST_P(PropertyListFormats, AreAsMutableAsAskedFor) {
    id list = NSDictionary::of({{u"array"_ns, NSArray::of({u"text"_ns, sampleData(3)})}});
    std::string bytes = written(list, GetParam());
    for (auto options : {NSPropertyListImmutable, NSPropertyListMutableContainers,
                         NSPropertyListMutableContainersAndLeaves}) {
        bool areContainers = options >= NSPropertyListMutableContainers;
        bool areLeaves = options == NSPropertyListMutableContainersAndLeaves;
        auto* dictionary = cast<NSDictionary>(read(bytes, options).list);
        ASSERT_TRUE(dictionary && dictionary->isEqual(list));
        auto* array = cast<NSArray>(dictionary->objectForKey(u"array"_ns));
        EXPECT_EQ(cast<NSMutableDictionary>(dictionary) != nullptr, areContainers);
        EXPECT_EQ(cast<NSMutableArray>(array) != nullptr, areContainers);
        EXPECT_EQ(cast<NSMutableString>(array->objectAtIndex(0)) != nullptr, areLeaves);
        EXPECT_EQ(cast<NSMutableData>(array->objectAtIndex(1)) != nullptr, areLeaves);
    }
}

TEST(PropertyLists, GiveEachReferenceOfABinaryListAMutableObjectOfItsOwn) {
    id list = NSArray::of({u"shared"_ns, u"shared"_ns, NSDictionary::of({{u"shared"_ns, u"x"_ns}})});
    std::string bytes = written(list, NSPropertyListBinaryFormat_v1_0);
    auto* array = cast<NSArray>(read(bytes, NSPropertyListMutableContainersAndLeaves).list);
    static_cast<NSMutableString*>(array->objectAtIndex(0))->appendString(u"!"_ns);
    EXPECT_TRUE(array->objectAtIndex(1)->isEqual(u"shared"_ns));
    EXPECT_TRUE(cast<NSDictionary>(array->objectAtIndex(2))->objectForKey(u"shared"_ns));
}

// MARK: What cannot be written

TEST_P(PropertyListFormats, RefuseForeignObjectsByClassAndPlace) {
    id list = NSDictionary::of(
        {{u"styles"_ns, NSArray::of({u"a"_ns, NSDictionary::of({{u"x"_ns, NSNull::null()}})})}});
    EXPECT_EQ(written(list, GetParam()),
              "refused: at styles.1.x: an object of class NSNull has no place in a property list");
    EXPECT_FALSE(NSPropertyListSerialization::propertyList_isValidForFormat(list, GetParam()));
    id numbered = NSArray::of({NSDictionary::of({{NSNumber::numberWithInt(1), u"x"_ns}})});
    EXPECT_EQ(written(numbered, GetParam()), "refused: at 0: a key of class NSPlainNumber is no string");
    EXPECT_EQ(written(nullptr, GetParam()), "refused: there is no object");
}

TEST(PropertyLists, RefuseAsXMLWhatXMLCannotHold) {
    const std::pair<char16_t, const char*> characters[] = {{u'\0', "U+0000"},  {1, "U+0001"},
                                                           {0x1F, "U+001F"},   {0xD800, "U+D800"},
                                                           {0xDC00, "U+DC00"}, {0xFFFE, "U+FFFE"}};
    for (auto [unit, name] : characters) {
        std::u16string text = u"12345678";
        text += unit;
        text += u"12345678";
        id list = NSArray::of({NSString::of(text)});
        EXPECT_EQ(written(list),
                  "refused: at 0: the character " + std::string(name) + " cannot be written as XML");
        EXPECT_FALSE(
            NSPropertyListSerialization::propertyList_isValidForFormat(list, NSPropertyListXMLFormat_v1_0));
        EXPECT_TRUE(list->isEqual(read(written(list, NSPropertyListBinaryFormat_v1_0)).list)) << name;
    }
}

TEST(PropertyLists, RefuseMomentsThatNoDateTells) {
    for (double seconds : {1e300, -1e300, std::nan(""), HUGE_VAL}) {
        id date = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
        EXPECT_EQ(written(date), "refused: the date lies too far away");
        EXPECT_EQ(written(date, NSPropertyListBinaryFormat_v1_0).starts_with("bplist"),
                  std::isfinite(seconds));
    }
}

TEST(PropertyLists, AreNotWrittenInTheOldStyle) {
    constexpr auto kFormat = NSPropertyListOldStyleFormat;
    EXPECT_TRUE(written(u"x"_ns, kFormat).starts_with("refused: "));
    EXPECT_FALSE(NSPropertyListSerialization::propertyList_isValidForFormat(u"x"_ns, kFormat));
}

// MARK: Depth

std::string nestedText(unsigned depth, NSPropertyListFormat format) {
    if (format == NSPropertyListOldStyleFormat) return repeated("(", depth) + repeated(")", depth);
    return document(repeated("<array>", depth) + repeated("</array>", depth));
}

TEST(PropertyLists, MayBeNestedToTheLimitAndNoFurther) {
    NSMutableArray* insideItself = NSMutableArray::array();
    insideItself->addObject(insideItself);
    for (auto format : kWritten) {
        EXPECT_TRUE(read(written(nestedArrays(512), format)).list);
        for (id list : {nestedArrays(513), id(insideItself)})
            EXPECT_TRUE(written(list, format).ends_with("nested more than 512 deep"));
    }
    insideItself->removeAllObjects();
    for (auto format : {NSPropertyListXMLFormat_v1_0, NSPropertyListOldStyleFormat}) {
        EXPECT_TRUE(read(nestedText(512, format)).list);
        EXPECT_TRUE(refusal(nestedText(513, format)).ends_with("nested more than 512 deep"));
    }
}

TEST(PropertyLists, MayBeNestedAsDeepAsTheHostAllows) {
    const PropertyListLimits before = propertyListLimits();
    setPropertyListLimits({.maximumDepth = 600});
    std::string binary = written(nestedArrays(600), NSPropertyListBinaryFormat_v1_0);
    EXPECT_TRUE(read(binary).list);
    setPropertyListLimits({.maximumDepth = 3});
    EXPECT_TRUE(read(nestedText(3, NSPropertyListXMLFormat_v1_0)).list);
    EXPECT_FALSE(read(nestedText(4, NSPropertyListXMLFormat_v1_0)).list);
    EXPECT_TRUE(refusal(binary).ends_with("nested more than 3 deep"));
    EXPECT_TRUE(written(nestedArrays(4)).starts_with("refused: at 0.0.0: "));
    setPropertyListLimits(before);
}

TEST(PropertyLists, OfAnyDepthNeedLittleStack) {
    constexpr unsigned kDepth = 1'000'000;
    runOnSmallStack([] {
        for (auto format : {NSPropertyListXMLFormat_v1_0, NSPropertyListOldStyleFormat})
            EXPECT_TRUE(refusal(nestedText(kDepth, format)).ends_with("nested more than 512 deep"));
        EXPECT_FALSE(read(repeated("{a=", kDepth)).list);
        EXPECT_FALSE(read(repeated("<array><!-- -->", kDepth)).list);
        std::string xml = nestedText(512, NSPropertyListXMLFormat_v1_0);
        EXPECT_EQ(written(read(xml).list).size(), written(nestedArrays(512)).size());
    });
}

// MARK: Time

// Keys whose first four units are the number that a fixed hash begins with: the next four would count for
// nothing.
TEST_P(PropertyListFormats, AreReadAndWrittenAtOnceWhateverTheirKeysAre) {
    constexpr NSUInteger kCount = 60'000;
    NSMutableDictionary* list = NSMutableDictionary::dictionaryWithCapacity(kCount);
    std::u16string key = u"\u7C15\u7F4A\u79B9\u9E37aaaaaaaaa";
    std::unordered_set<std::uintptr_t> hashes;
    for (NSUInteger i = 0; i < kCount; ++i) {
        for (unsigned digit = 0; digit < 4; ++digit)
            key[4 + digit] = static_cast<char16_t>(u'a' + (i >> 4 * digit & 15));
        NSString* string = NSString::of(key);
        hashes.insert(string->hash());
        list->setObject_forKey(string, string);
    }
    EXPECT_GT(hashes.size(), kCount - 100);
    EXPECT_TRUE(list->isEqual(read(written(list, GetParam())).list));
}

// MARK: Telling formats apart

TEST(PropertyLists, TellTheirFormat) {
    const std::pair<std::string_view, NSPropertyListFormat> samples[] = {
        {"<?xml version='1.0'?><plist><dict/></plist>", NSPropertyListXMLFormat_v1_0},
        {"\xEF\xBB\xBF <!-- x --><array/>", NSPropertyListXMLFormat_v1_0},
        {"\n<data>AAAA</data>", NSPropertyListXMLFormat_v1_0},
        {"<dead beef>", NSPropertyListOldStyleFormat},
        {"< 00 >", NSPropertyListOldStyleFormat},
        {"{a=b;}", NSPropertyListOldStyleFormat},
        {"// nothing", NSPropertyListOldStyleFormat},
    };
    for (auto [bytes, format] : samples) {
        Reading reading = read(bytes);
        EXPECT_TRUE(reading.list) << bytes << ": " << reading.error;
        EXPECT_EQ(reading.format, format) << bytes;
    }
}

TEST(PropertyLists, CanBeAskedForWithoutPlacesForFormatAndError) {
    auto readPlainly = [](NSData* data) {
        return NSPropertyListSerialization::propertyListWithData_options_format_error(
            data, NSPropertyListImmutable, nullptr, nullptr);
    };
    EXPECT_TRUE(readPlainly(dataOf("(a)")));
    EXPECT_FALSE(readPlainly(dataOf("(a")));
    EXPECT_FALSE(readPlainly(nullptr));
    EXPECT_EQ(refusal(""), "there are no bytes");
}

TEST(PropertyLists, AnswerBySelector) {
    id cls = NSPropertyListSerialization::classObject();
    NSPropertyListFormat format{};
    NSPropertyListError* error = nullptr;
    id list = send<id>(cls, "propertyListWithData:options:format:error:"_sel, dataOf("{a=(b"),
                       NSPropertyListImmutable, &format, &error);
    EXPECT_FALSE(list);
    ASSERT_TRUE(error);
    EXPECT_EQ(send<NSUInteger>(error, "line"_sel), 1u);
    EXPECT_EQ(send<NSUInteger>(error, "column"_sel), 6u);
}

// MARK: Damage

std::string damagedSample(NSPropertyListFormat format) {
    if (format != NSPropertyListOldStyleFormat) return written(richList(), format);
    return "/* all of it */ { \"a key\" = ( one, 'two', \"thr\\ee\", \"\\n\\U00e4\\344\" ); // end\n"
           " data = < 0fbd77 1c >; table = { key; \"\xC3\xA4\" = y; }; empty = {}; }";
}

void expectListOrError(std::string_view bytes) {
    AutoreleasePool inner;
    Reading reading = read(bytes);
    ASSERT_NE(reading.list == nullptr, reading.error == nullptr);
    if (!reading.error) return;
    EXPECT_GT(reading.error->reason()->length(), 0u);
    EXPECT_EQ(reading.error->line() > 0, reading.error->column() > 0);
    EXPECT_LE(reading.error->offset(), bytes.size() + 1);
}

class DamagedPropertyLists : public testing::TestWithParam<NSPropertyListFormat> {};
INSTANTIATE_TEST_SUITE_P(, DamagedPropertyLists,
                         testing::Values(NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0,
                                         NSPropertyListOldStyleFormat));

TEST_P(DamagedPropertyLists, GiveAnErrorWhereverTheyAreCutOff) {
    const std::string whole = damagedSample(GetParam());
    ASSERT_EQ(refusal(whole), "");
    for (std::size_t size = 0; size < whole.size(); ++size)
        expectListOrError(std::string_view(whole).substr(0, size));
}

TEST_P(DamagedPropertyLists, GiveAListOrAnErrorWhicheverByteIsFlipped) {
    std::string bytes = damagedSample(GetParam());
    for (char& byte : bytes) {
        const char before = byte;
        for (int mask : {0x01, 0x20, 0x80, 0xFF}) {
            byte = static_cast<char>(before ^ mask);
            expectListOrError(bytes);
        }
        byte = before;
    }
}

}  // namespace
}  // namespace pelvor
