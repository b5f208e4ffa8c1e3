// SPDX-License-Identifier: Apache-2.0
// Tests of keyed archives: what comes back, and what is refused.
#include "Foundation/NSKeyedArchiver.h"

#include <regex>

#include "Foundation/NSCountedSet.h"
#include "Foundation/NSKeyedUnarchiver.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/PropertyListLimits.h"
#include "Platform/Foundation/Pebble.h"
#include "Platform/Foundation/PropertyListSamples.h"

namespace {

class TestParcel : public NSObject {
    PELVOR_CLASS(TestParcel, NSObject);

  public:
    static Retained<TestParcel> initWithCoder(NSCoder* coder, Class* cls = classObject()) {
        auto parcel = make<TestParcel>(cls);
        parcel->inside.set(coder->decodeObjectForKey(u"inside"_ns));
        parcel->count = coder->decodeIntForKey(u"count"_ns);
        if (parcel->count == -1) throw NSException(NSGenericException, "no parcel");
        if (parcel->count == -2) throw std::out_of_range("lost parcel");
        return parcel;
    }
    void encodeWithCoder(NSCoder* coder) {
        coder->encodeObject_forKey(inside, u"inside"_ns);
        coder->encodeInt_forKey(count, u"count"_ns);
    }

    int count = 0;
    Retained<Object> inside;
};

constinit Library parcelLibrary{"TestParcel", {}, kClassesOf<TestParcel>, {}};

PELVOR_DEFINE_CLASS(TestParcel, parcelLibrary) {
    methods.classLevel<"initWithCoder:", &TestParcel::initWithCoder>();
    methods.instance<"encodeWithCoder:", &TestParcel::encodeWithCoder>();
}

// Old-style text as an XML list in which its digits are numbers; other text as it is.
NSData* listWithNumbers(const std::string& text) {
    id list = listOf(text);
    return dataOf(list ? std::regex_replace(written(list), std::regex("<string>(\\d)</string>"),
                                            "<integer>$1</integer>")
                       : text);
}

class NSKeyedArchiverTest : public ::testing::Test {
  protected:
    id objectIn(NSData* archive) {
        return NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error(archive, allowed, &error);
    }
    id restored(id object) { return objectIn(NSKeyedArchiver::archivedDataWithRootObject(object)); }
    std::string errorOf(NSData* archive) { return objectIn(archive) || !error ? "" : error->toUTF8(); }
    std::string errorOf(id object) { return errorOf(NSKeyedArchiver::archivedDataWithRootObject(object)); }
    // Of an archive of these entries.
    std::string errorOfEntries(const std::string& entries) {
        return errorOf(
            listWithNumbers("{archiver = NSKeyedArchiver; version = 1; top = {root = {object = 1;};};"
                            "objects = (\"\", " +
                            entries + ");}"));
    }

    NSSet* allowed = NSSet::of({TestParcel::classObject()});
    NSString* error = nullptr;
    Retained<TestParcel> parcel = make<TestParcel>();
};

TEST_F(NSKeyedArchiverTest, RestoresObjectsOfEveryKind) {
    id objects[] = {NSString::ofUTF8("text"),
                    NSMutableString::stringWithString(u"text"_ns),
                    NSNumber::numberWithBool(true),
                    NSNumber::numberWithDouble(0.1),
                    dataOf("ab"),
                    NSMutableData::dataWithBytes_length("ab", 2),
                    NSDate::dateWithTimeIntervalSinceReferenceDate(12.5),
                    NSArray::of({u"a"_ns, NSMutableArray::array()}),
                    NSMutableArray::of({NSArray::array()}),
                    NSSet::of({u"a"_ns, u"b"_ns}),
                    NSMutableSet::of({u"a"_ns}),
                    NSCountedSet::of({u"a"_ns, u"b"_ns, u"a"_ns}),
                    NSMutableDictionary::dictionary(),
                    NSDictionary::of({{num(1), NSDictionary::dictionary()}}),
                    NSValue::valueWithRange({NSNotFound, 0xFFFFFFFF}),
                    NSValue::valueWithRect({{1, 2}, {3, 4}})};
    for (id object : objects) {
        id again = restored(object);
        ASSERT_TRUE(again) << object << error;
        EXPECT_TRUE(again->isEqual(object) && again->isa() == object->isa()) << object;
    }
    EXPECT_EQ(restored(nullptr), nullptr);
    EXPECT_EQ(error, nullptr);
    // The names of types that archives bring last no longer than their values.
    auto* point = cast<NSValue>(restored(NSValue::valueWithPoint({1, 2})));
    EXPECT_NE(point->objCType(), cast<NSValue>(restored(point))->objCType());
}

TEST_F(NSKeyedArchiverTest, RestoresFieldsAndSharedObjects) {
    parcel->count = 7;
    auto outer = make<TestParcel>();
    outer->inside.set(NSArray::of({parcel.get(), parcel.get()}));
    auto* again = cast<TestParcel>(restored(outer));
    ASSERT_TRUE(again) << error;
    auto* list = cast<NSArray>(again->inside);
    auto* inner = cast<TestParcel>(list->objectAtIndex(0));
    EXPECT_EQ(inner, list->objectAtIndex(1));
    EXPECT_TRUE(inner->count == 7 && !inner->inside && again->count == 0);
}

TEST_F(NSKeyedArchiverTest, RestoresPlainValues) {
    auto archiver = NSKeyedArchiver::init();
    archiver->encodeBool_forKey(true, u"bool"_ns);
    archiver->encodeInt64_forKey(1ll << 40, u"long"_ns);
    archiver->encodeFloat_forKey(0.1f, u"float"_ns);
    archiver->encodeBytes_length_forKey("a\0b", 4, u"bytes"_ns);
    archiver->encodeObject_forKey(parcel, u"object"_ns);
    EXPECT_EQ(parcel->retainCount(), 2u);
    auto coder = [&] {
        return NSKeyedUnarchiver::initForReadingWithData_allowedClasses(archiver->encodedData(), allowed);
    };
    auto reader = coder(), other = coder();
    NSUInteger length = 0;
    auto* bytes = static_cast<const char*>(reader->decodeBytesForKey_returnedLength(u"bytes"_ns, &length));
    EXPECT_TRUE(length == 4 && std::memcmp(bytes, "a\0b", 4) == 0);
    EXPECT_TRUE(reader->decodeBoolForKey(u"bool"_ns) && !reader->decodeBoolForKey(u"none"_ns));
    EXPECT_EQ(reader->decodeInt64ForKey(u"long"_ns), 1ll << 40);
    EXPECT_EQ(reader->decodeFloatForKey(u"float"_ns), 0.1f);
    EXPECT_EQ(reader->decodeInt64ForKey(u"bytes"_ns), 0);
    EXPECT_EQ(reader->error()->toUTF8(), "the value for \"bytes\" is no number");
    EXPECT_EQ(reader->decodeObjectForKey(u"object"_ns), nullptr);
    EXPECT_EQ(other->decodeBytesForKey_returnedLength(u"long"_ns, nullptr), nullptr);
    EXPECT_EQ(other->error()->toUTF8(), "the value for \"long\" is no block of bytes");
}

TEST_F(NSKeyedArchiverTest, RefusesToWriteWhatCannotBeRead) {
    parcel->inside.set(parcel);
    id deep = NSArray::array();
    for (int i = 0; i < 600; ++i) deep = NSArray::of({deep});
    id objects[] = {parcel, NSValue::valueWithPointer(this), make<NSObject>().autorelease(), deep};
    for (id object : objects) EXPECT_THROW(NSKeyedArchiver::archivedDataWithRootObject(object), NSException);
    parcel->inside = nullptr;
    EXPECT_THROW(NSKeyedArchiver::init()->decodeObjectForKey(u"root"_ns), NSException);
}

TEST_F(NSKeyedArchiverTest, MakesAllowedClassesOnly) {
    allowed = nullptr;
    EXPECT_EQ(errorOf(parcel.get()), "objects of class \"TestParcel\" are not allowed");
    allowed = NSSet::of({NSObject::classObject()});
    EXPECT_NE(cast<TestParcel>(restored(parcel)), nullptr);
    EXPECT_EQ(errorOfEntries("{class = NSObject; fields = {};}"), "class NSObject has no initWithCoder:");
    const std::pair<int, const char*> faults[] = {{-1, "object 2: no parcel"}, {-2, "object 2: lost parcel"}};
    for (auto [count, reason] : faults) {
        parcel->count = count;
        EXPECT_EQ(errorOf(NSArray::of({parcel.get()})), reason);
    }
}

TEST_F(NSKeyedArchiverTest, KeepsWithinBounds) {
    id shared = NSArray::array();
    for (int i = 0; i < 8; ++i)
        shared = NSArray::of({shared, shared, shared, shared, shared, shared, shared});
    EXPECT_EQ(errorOf(shared), "the archive refers to its objects too often");
    NSData* deep = NSKeyedArchiver::archivedDataWithRootObject(shared);
    const PropertyListLimits usual = propertyListLimits();
    setPropertyListLimits({8, usual.maximumSharedObjects});
    EXPECT_EQ(errorOf(deep), "the archive is nested too deeply");
    setPropertyListLimits(usual);
}

TEST_F(NSKeyedArchiverTest, TellsWhatIsWrongWithAnArchive) {
    const char* const kUnfit = "a value's bytes do not fit its type";
    const std::pair<const char*, const char*> cases[] = {
        {"{class = NSArray; items = (1);}", "object 1 leads back to itself"},
        {"{class = NSArray; items = (0);}", "a collection holds null"},
        {"{class = NSArray; items = (2);}", "a reference leads outside the archive"},
        {"{class = NSLock; items = ();}", "\"NSLock\" is no class of collections"},
        {"{class = NSDictionary; items = (); keys = (2);}, x",
         "a dictionary has keys and values of different number"},
        {"{class = NSLock; fields = {};}", "objects of class \"NSLock\" are not allowed"},
        {"{class = NSMutableData; value = x;}", "\"NSMutableData\" has no such value"},
        {"{class = NSValue; type = \"@\"; bytes = <0000000000000000>;}", kUnfit},
        {"{class = NSValue; type = \"{_NSRange=II}\"; bytes = <00>;}", kUnfit},
        {"{class = NSValue; type = ij; bytes = <00000000>;}", kUnfit},
        {"{class = TestParcel;}", "an object of class TestParcel lacks its fields"},
        {"{}", "an object has no class"},
        {"()", "an array where an object's entry should be"},
    };
    for (auto [entries, reason] : cases) EXPECT_EQ(errorOfEntries(entries), reason);
    EXPECT_EQ(errorOf(listWithNumbers("{a = b;}")), "the property list is no keyed archive");
    EXPECT_EQ(errorOf(listWithNumbers("{archiver = NSKeyedArchiver; version = 2;}")),
              "the archive is of an unknown version");
    EXPECT_NE(errorOf(dataOf("{")), "");
    EXPECT_NE(errorOf(dataOf("")), "");
}

}  // namespace
