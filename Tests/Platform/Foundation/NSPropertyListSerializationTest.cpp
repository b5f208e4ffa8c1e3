// SPDX-License-Identifier: Apache-2.0
// Tests of property lists written and read again, of what is refused, and of damaged lists.
#include "Foundation/NSPropertyListSerialization.h"

#include <unordered_set>

#include "Foundation/NSMutableData.h"
#include "Foundation/PropertyListLimits.h"
#include "Platform/Foundation/Pebble.h"
#include "Platform/Foundation/PropertyListSamples.h"

namespace {

class PropertyListFormats : public ::testing::TestWithParam<NSPropertyListFormat> {};
INSTANTIATE_TEST_SUITE_P(, PropertyListFormats, ::testing::Values(kXML, kBinary),
                         [](const auto& format) { return format.param == kXML ? "XML" : "Binary"; });

bool isValid(id list, NSPropertyListFormat format) {
    return NSPropertyListSerialization::propertyList_isValidForFormat(list, format);
}

// MARK: There and back

TEST_P(PropertyListFormats, KeepEveryValueAndRootsOfEveryKind) {
    NSMutableArray* roots = NSMutableArray::of(
        {u"text"_ns, num(7), sampleData(5), NSArray::array(), richList(),
         NSDate::dateWithTimeIntervalSinceReferenceDate(60), listOf("{b = 1; \"\\U00E4\" = 3;}")});
    roots->addObjectsFromArray(richList()->allValues());
    for (id root : roots) {
        std::string bytes = written(root, GetParam());
        Reading reading = read(bytes);
        EXPECT_TRUE(root->isEqual(reading.list)) << root << " became " << reading.list << reading.error;
        EXPECT_EQ(reading.format, GetParam());
        EXPECT_EQ(written(reading.list, GetParam()), bytes);
    }
    EXPECT_EQ(written(listOf("{\"\\U00E4\" = 3; b = 1;}"), GetParam()),
              written(roots->objectAtIndex(6), GetParam()));
}

TEST_P(PropertyListFormats, KeepWhatKindANumberIs) {
    auto real = &NSNumber::numberWithDouble;
    id list = NSArray::of({NSNumber::numberWithBool(true), num(1), real(1), real(NAN), real(-0.0)});
    auto* numbers = cast<NSArray>(listOf(written(list, GetParam())));
    auto number = [&](NSUInteger index) { return cast<NSNumber>(numbers->objectAtIndex(index)); };
    EXPECT_EQ(shown(number(0)->isBoolean(), number(1)->objCType(), number(2)->objCType()), "1 q d");
    EXPECT_TRUE(std::isnan(number(3)->doubleValue()) && std::signbit(number(4)->doubleValue()));
}

TEST(PropertyLists, AreWrittenAsXMLInTheUsualForm) {
    NSDictionary* list = NSDictionary::of({{u"b"_ns, NSArray::of({num(-5), sampleData(3)})},
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
    NSMutableArray* list = NSMutableArray::array();
    for (int i = 0; i < 100; ++i) list->addObject(NSString::ofUTF8(repeated("x", 1000)));
    EXPECT_LT(written(list, kBinary).size(), 1200u);
}

// MARK: Mutability

TEST_P(PropertyListFormats, AreAsMutableAsAskedFor) {
    std::string bytes = written(listOf("{array = (text, <000000>);}"), GetParam());
    for (auto [options, mutability] : {std::pair{NSPropertyListImmutable, "0 0 0 0"},
                                       {NSPropertyListMutableContainers, "1 1 0 0"},
                                       {NSPropertyListMutableContainersAndLeaves, "1 1 1 1"}}) {
        id list = read(bytes, options).list;
        ASSERT_TRUE(list && list->isEqual(listOf(bytes)));
        auto* array = cast<NSArray>(cast<NSDictionary>(list)->objectForKey(u"array"_ns));
        EXPECT_EQ(shown(!!cast<NSMutableDictionary>(list), !!cast<NSMutableArray>(array),
                        !!cast<NSMutableString>(array->objectAtIndex(0)),
                        !!cast<NSMutableData>(array->objectAtIndex(1))),
                  mutability);
    }
    // Each reference to a leaf is a mutable object of its own.
    bytes = written(listOf("(shared, shared, {shared = x;})"), GetParam());
    auto* array = cast<NSArray>(read(bytes, NSPropertyListMutableContainersAndLeaves).list);
    static_cast<NSMutableString*>(array->objectAtIndex(0))->appendString(u"!"_ns);
    EXPECT_TRUE(array->isEqual(listOf("(\"shared!\", shared, {shared = x;})"))) << array;
}

// MARK: What cannot be written

TEST_P(PropertyListFormats, RefuseForeignObjectsByClassAndPlace) {
    id list = NSDictionary::of(
        {{u"styles"_ns, NSArray::of({u"a"_ns, NSDictionary::of({{u"x"_ns, NSNull::null()}})})}});
    EXPECT_EQ(written(list, GetParam()),
              "refused: at styles.1.x: an object of class NSNull has no place in a property list");
    EXPECT_FALSE(isValid(list, GetParam()));
    id numbered = NSArray::of({NSDictionary::of({{num(1), u"x"_ns}})});
    EXPECT_EQ(written(numbered, GetParam()), "refused: at 0: a key of class NSNumber is no string");
    EXPECT_EQ(written(nullptr, GetParam()), "refused: the object is null");
    EXPECT_THAT(written(u"the old style"_ns, kOldStyle), StartsWith("refused: "));
    EXPECT_FALSE(isValid(u"the old style"_ns, kOldStyle));
}

TEST(PropertyLists, RefuseAsXMLWhatXMLCannotHoldAndMomentsThatNoDateTells) {
    for (unsigned unit : {0u, 1u, 0x1Fu, 0xD800u, 0xDC00u, 0xFFFEu}) {
        std::u16string text = u"12345678 12345678";
        text[8] = static_cast<char16_t>(unit);
        id list = NSArray::of({NSString::of(text)});
        auto reason = NSString::stringWithFormat(
            u"refused: at 0: the character U+%04X cannot be written as XML"_ns, unit);
        EXPECT_EQ(written(list), shown(reason));
        EXPECT_FALSE(isValid(list, kXML));
        EXPECT_TRUE(list->isEqual(listOf(written(list, kBinary)))) << reason;
    }
    for (double seconds : {1e300, -1e300, std::nan(""), HUGE_VAL}) {
        id date = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
        EXPECT_EQ(written(date), "refused: the date lies too far away");
        EXPECT_EQ(written(date, kBinary).starts_with("bplist"), std::isfinite(seconds));
    }
}

// MARK: Depth

std::string nestedText(unsigned depth, NSPropertyListFormat format) {
    if (format == kOldStyle) return repeated("(", depth) + repeated(")", depth);
    return document(repeated("<array>", depth) + repeated("</array>", depth));
}

TEST(PropertyLists, MayBeNestedAsDeepAsTheHostAllowsAndNeedLittleStack) {
    const PropertyListLimits before = propertyListLimits();
    setPropertyListLimits({.maximumDepth = 601});
    const std::string tooDeep = written(nestedArrays(601), kBinary);
    NSMutableArray* insideItself = NSMutableArray::array();
    insideItself->addObject(insideItself);
    for (unsigned limit : {before.maximumDepth, 600u, 3u}) {
        setPropertyListLimits({.maximumDepth = limit});
        const std::string reason = "nested more than " + std::to_string(limit) + " deep";
        for (auto format : {kXML, kBinary}) {
            EXPECT_TRUE(listOf(written(nestedArrays(limit), format))) << reason;
            for (id list : {nestedArrays(limit + 1), id(insideItself)})
                EXPECT_THAT(written(list, format), EndsWith(reason));
        }
        EXPECT_THAT(refusal(tooDeep), EndsWith(reason));
        for (auto format : {kXML, kOldStyle}) {
            EXPECT_TRUE(listOf(nestedText(limit, format))) << reason;
            EXPECT_THAT(refusal(nestedText(limit + 1, format)), EndsWith(reason));
        }
    }
    EXPECT_THAT(written(nestedArrays(4)), StartsWith("refused: at 0.0.0: "));
    insideItself->removeAllObjects();
    setPropertyListLimits(before);
    EXPECT_EQ(before.maximumDepth, 512u);
    // Lists of any depth need little stack.
    constexpr unsigned kDepth = 1'000'000;
    runOnSmallStack([] {
        for (auto format : {kXML, kOldStyle})
            EXPECT_THAT(refusal(nestedText(kDepth, format)), EndsWith("nested more than 512 deep"));
        for (const char* opening : {"{a=", "<array><!-- -->"})
            EXPECT_FALSE(listOf(repeated(opening, kDepth)));
        EXPECT_EQ(written(listOf(nestedText(512, kXML))).size(), written(nestedArrays(512)).size());
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
    EXPECT_TRUE(list->isEqual(listOf(written(list, GetParam()))));
}

// MARK: Reading

TEST(PropertyLists, TellTheirFormatToThoseWhoAsk) {
    for (const char* bytes : {"<?xml version='1.0'?><plist><dict/></plist>",
                              "\xEF\xBB\xBF <!-- x --><array/>", "\n<data>AAAA</data>"})
        EXPECT_TRUE(listOf(bytes) && read(bytes).format == kXML) << bytes;
    for (const char* bytes : {"<dead beef>", "< 00 >", "{a=b;}", "// nothing"})
        EXPECT_TRUE(listOf(bytes) && read(bytes).format == kOldStyle) << bytes;
    auto readData = &NSPropertyListSerialization::propertyListWithData_options_format_error;
    EXPECT_TRUE(readData(dataOf("(a)"), NSPropertyListImmutable, nullptr, nullptr));
    for (NSData* bad : {dataOf("(a"), static_cast<NSData*>(nullptr)})
        EXPECT_FALSE(readData(bad, NSPropertyListImmutable, nullptr, nullptr)) << bad;
    EXPECT_EQ(refusal(""), "there are no bytes");
    auto readFile = &NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error;
    NSPropertyListError* reason = nullptr;
    for (auto [path, expected] :
         {std::pair{u"/no/file"_ns, "the file cannot be read: the file does not exist"},
          {u"/dev/null"_ns, "the file cannot be read: it is no regular file"},
          {static_cast<NSString*>(nullptr), "the path is null"}}) {
        EXPECT_FALSE(readFile(path, NSPropertyListImmutable, nullptr, &reason));
        EXPECT_EQ(shown(reason), expected);
    }
}

}  // namespace
