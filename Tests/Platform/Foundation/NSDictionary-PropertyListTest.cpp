// SPDX-License-Identifier: Apache-2.0
// Tests of dictionaries and arrays to and from files.
#include "Foundation/NSDictionary-PropertyList.h"

#include "Foundation/NSArray-PropertyList.h"
#include "Platform/Foundation/BundleTestSupport.h"
#include "Platform/Foundation/PropertyListSamples.h"

namespace {

using Dictionaries = NSDictionary_PropertyList;
using Arrays = NSArray_PropertyList;

class PropertyListFiles : public ::testing::Test {
  protected:
    NSString* path(const char* name) { return stringOf(folder.path() / name); }
    NSString* file(const char* name, std::string text) { return stringOf(folder.write(name, text)); }

    BundleFolder folder;
};

TEST_F(PropertyListFiles, AreReadInEveryFormatAndWrittenAsAWholeOrNotAtAll) {
    id list = listOf("{a = b;}");
    for (const std::string& content : {written(list), written(list, kBinary), std::string("a = b;")})
        EXPECT_TRUE(list->isEqual(Dictionaries::dictionaryWithContentsOfFile(file("x", content))));
    EXPECT_EQ(Arrays::arrayWithContentsOfFile(file("x", "(a)"))->count(), 1u);
    for (Class* cls : {NSDictionary::classObject(), NSMutableDictionary::classObject()}) {
        const bool isMutable = cls == NSMutableDictionary::classObject();
        auto* made = send<NSDictionary*>(cls, "dictionaryWithContentsOfFile:"_sel, file("x", "{ a = (b); }"));
        EXPECT_EQ(cast<NSMutableDictionary>(made) != nullptr, isMutable);
        EXPECT_EQ(cast<NSMutableArray>(made->objectForKey(u"a"_ns)) != nullptr, isMutable);
    }
    list = richList();
    EXPECT_TRUE(writeToFile_atomically(richList(), path("list"), true));
    EXPECT_TRUE(list->isEqual(Dictionaries::dictionaryWithContentsOfFile(path("list"))));
    EXPECT_FALSE(writeToFile_atomically(NSDictionary::of({{u"a"_ns, NSNull::null()}}), path("list"), true));
    EXPECT_TRUE(list->isEqual(Dictionaries::dictionaryWithContentsOfFile(path("list"))));
    EXPECT_FALSE(writeToFile_atomically(richList(), path("no/list"), true));
    EXPECT_TRUE(send<bool>(NSArray::of({u"a"_ns}), "writeToFile:atomically:"_sel, path("list"), false));
    EXPECT_TRUE(Arrays::arrayWithContentsOfFile(path("list")));
}

TEST_F(PropertyListFiles, ThatAreMissingDamagedOrOfAnotherKindGiveNone) {
    for (NSString* name :
         {path("none"), path(""), file("damaged", "{ a = "), file("empty", ""), file("other", "text")}) {
        EXPECT_FALSE(Dictionaries::dictionaryWithContentsOfFile(name)) << name;
        EXPECT_FALSE(Arrays::arrayWithContentsOfFile(name)) << name;
    }
    for (NSString* name : {file("array", "(a)"), static_cast<NSString*>(nullptr)})
        EXPECT_FALSE(Dictionaries::initWithContentsOfFile(name)) << name;
    EXPECT_FALSE(Arrays::initWithContentsOfFile(file("dictionary", "{}")));
    EXPECT_EQ(Dictionaries::dictionaryWithContentsOfFile(file("empty.strings", ""))->count(), 0u);
}

}  // namespace
