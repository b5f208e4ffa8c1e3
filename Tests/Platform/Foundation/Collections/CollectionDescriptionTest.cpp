// SPDX-License-Identifier: Apache-2.0
// Tests of the texts of collections.
#include "Foundation/Collections/CollectionDescription.h"

#include "Platform/Foundation/Pebble.h"
#include "Platform/Foundation/PropertyListSamples.h"

namespace {

TEST(CollectionDescription, IsAnOldStylePropertyList) {
    NSDictionary* inner =
        NSDictionary::of({{u"a key"_ns, num(-1)}, {u"b"_ns, NSNumber::numberWithDouble(1.5)}});
    NSArray* array = NSArray::of({u"plain_1:$"_ns, u""_ns, u"say \"hi\"\\\n"_ns, u"\u00e4\U0001F600"_ns,
                                  inner, NSSet::setWithObject(num(3)),
                                  NSData::dataWithBytes_length("\x01\xff", 2), NSArray::array()});
    EXPECT_EQ(shown(array), R"((
    plain_1:$,
    "",
    "say \"hi\"\\\n",
    "\U00e4\Ud83d\Ude00",
    {
        "a key" = "-1";
        b = 1.5;
    },
    {(
        3
    )},
    <01ff>,
    (
    )
))");
}

TEST(CollectionDescription, IsReadBackAsTheSameListAndEndsForACollectionInsideItself) {
    auto units = NSMutableArray::init();
    for (unsigned unit = 1; unit < 0x180; ++unit)
        units->addObject(NSString::of(std::u16string(1, static_cast<unichar>(unit))));
    NSDictionary* list = NSDictionary::of({{u"units"_ns, units},
                                           {u"a // comment \"?"_ns, u"/* none */"_ns},
                                           {u"data"_ns, NSData::dataWithBytes_length("12345", 5)},
                                           {u"empty"_ns, NSArray::of({NSArray::array(), u""_ns})}});
    id read = listOf(shown(list));
    EXPECT_TRUE(list->isEqual(read)) << read;
    auto array = NSMutableArray::init();
    auto dictionary = NSMutableDictionary::init();
    dictionary->setObject_forKey(array, u"array"_ns);
    array->addObject(dictionary);
    EXPECT_THAT(shown(array), ::testing::ContainsRegex("array = \"<NSBufferArray: 0x[0-9a-f]+>\";"));
    array->hash();
    array->removeAllObjects();
}

TEST(ObjectPrinting, ShowsDescriptionsOfPointersAndReferences) {
    auto owned = NSArray::initWithObjects({u"\u00e4"_ns, num(2)});
    NSArray* array = owned;
    const std::string text = "(\n    \"\\U00e4\",\n    2\n)";
    EXPECT_EQ(shown(array, owned, static_cast<Object*>(nullptr), u"\u00e4"_ns),
              text + " " + text + " (null) \u00e4");
    EXPECT_EQ(::testing::PrintToString(array), text);
    EXPECT_EQ(::testing::PrintToString(owned), text);
}

}  // namespace
