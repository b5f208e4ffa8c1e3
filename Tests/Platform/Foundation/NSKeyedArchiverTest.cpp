// SPDX-License-Identifier: Apache-2.0
// Tests of keyed archives: what comes back, and what is refused.
#include "Foundation/NSKeyedArchiver.h"

#include <gtest/gtest.h>

#include <functional>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSKeyedUnarchiver.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSSet.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

// An object with a value of every kind.
class TestParcel : public NSObject {
    PELVOR_CLASS(TestParcel, NSObject);

  public:
    static Retained<TestParcel> initWithCoder(NSCoder* coder, Class* cls = classObject()) {
        auto parcel = make<TestParcel>(cls);
        parcel->fragile = coder->decodeBoolForKey(u"fragile"_ns);
        parcel->count = coder->decodeIntForKey(u"count"_ns);
        parcel->weight = coder->decodeFloatForKey(u"weight"_ns);
        parcel->inside.set(coder->decodeObjectForKey(u"inside"_ns));
        NSUInteger length = 0;
        auto* bytes = static_cast<const char*>(coder->decodeBytesForKey_returnedLength(u"mark"_ns, &length));
        parcel->mark.assign(bytes ? bytes : "", length);
        if (parcel->count < 0) throw NSException(NSGenericException, "no parcel");
        return parcel;
    }
    void encodeWithCoder(NSCoder* coder) {
        coder->encodeBool_forKey(fragile, u"fragile"_ns);
        coder->encodeInt_forKey(count, u"count"_ns);
        coder->encodeFloat_forKey(weight, u"weight"_ns);
        coder->encodeObject_forKey(inside, u"inside"_ns);
        coder->encodeBytes_length_forKey(mark.data(), static_cast<NSUInteger>(mark.size()), u"mark"_ns);
    }

    bool fragile = false;
    int count = 0;
    float weight = 0;
    Retained<Object> inside;
    std::string mark;
};

constexpr Class* kClasses[] = {&TestParcel::classRecord};
constexpr Library* kDependencies[] = {&foundationLibrary};
constinit Library parcelLibrary{"TestParcel", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(TestParcel, parcelLibrary) {
    methods.classLevel<"initWithCoder:", &TestParcel::initWithCoder>();
    methods.instance<"encodeWithCoder:", &TestParcel::encodeWithCoder>();
}

// The list with numbers for the digits that old-style text has as strings.
id withNumbers(id list) {
    if (auto* text = cast<NSString>(list))
        return text->length() == 1 && std::isdigit(text->characterAtIndex(0))
                   ? static_cast<id>(NSNumber::numberWithInt(text->intValue()))
                   : list;
    if (auto* array = cast<NSArray>(list)) {
        NSMutableArray* result = NSMutableArray::array();
        for (id item : array) result->addObject(withNumbers(item));
        return result;
    }
    if (!cast<NSDictionary>(list)) return list;
    NSMutableDictionary* result = NSMutableDictionary::dictionary();
    for (auto [key, value] : cast<NSDictionary>(list)) result->setObject_forKey(withNumbers(value), key);
    return result;
}

class NSKeyedArchiverTest : public ::testing::Test {
  protected:
    id restored(id object) {
        return NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error(
            NSKeyedArchiver::archivedDataWithRootObject(object), allowed, &error);
    }
    std::string errorOf(const char* list) {
        NSData* data = NSData::dataWithBytes_length(list, static_cast<NSUInteger>(std::strlen(list)));
        if (id parsed = NSPropertyListSerialization::propertyListWithData_options_format_error(
                data, NSPropertyListImmutable, nullptr, nullptr))
            data = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
                withNumbers(parsed), NSPropertyListBinaryFormat_v1_0, 0, nullptr);
        id object = NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error(data, allowed, &error);
        return object || !error ? "" : error->toUTF8();
    }

    AutoreleasePool pool;
    NSSet* allowed = NSSet::of({TestParcel::classObject()});
    NSString* error = nullptr;
    Retained<TestParcel> parcel = make<TestParcel>();
};

TEST_F(NSKeyedArchiverTest, RestoresObjectsOfEveryKind) {
    id objects[] = {
        u"text"_ns,
        NSNumber::numberWithBool(true),
        NSNumber::numberWithDouble(0.1),
        NSData::dataWithBytes_length("ab", 2),
        NSDate::dateWithTimeIntervalSinceReferenceDate(12.5),
        NSArray::of({u"a"_ns, NSArray::array()}),
        NSSet::of({u"a"_ns, u"b"_ns}),
        NSDictionary::of({{NSNumber::numberWithInt(1), NSDictionary::dictionary()}}),
        NSValue::valueWithRange({NSNotFound, 0xFFFFFFFF}),
        NSValue::valueWithRect({{1, 2}, {3, 4}}),
    };
    for (id object : objects) {
        id again = restored(object);
        ASSERT_TRUE(again) << object << error;
        EXPECT_TRUE(again->isEqual(object)) << object;
    }
    EXPECT_NE(cast<NSMutableArray>(restored(NSMutableArray::array())), nullptr);
    EXPECT_NE(cast<NSMutableDictionary>(restored(NSMutableDictionary::dictionary())), nullptr);
    EXPECT_EQ(restored(nullptr), nullptr);
    EXPECT_EQ(error, nullptr);
}

TEST_F(NSKeyedArchiverTest, RestoresFieldsAndSharedObjects) {
    parcel->fragile = true;
    parcel->count = 7;
    parcel->weight = 0.1f;
    parcel->mark = std::string("a\0b", 3);
    auto outer = make<TestParcel>();
    outer->inside.set(NSArray::of({parcel.get(), parcel.get()}));
    auto* again = cast<TestParcel>(restored(outer));
    ASSERT_TRUE(again) << error;
    auto* list = cast<NSArray>(again->inside);
    auto* inner = cast<TestParcel>(list->objectAtIndex(0));
    EXPECT_EQ(inner, list->objectAtIndex(1));
    EXPECT_TRUE(inner->fragile && inner->count == 7 && inner->weight == 0.1f && !inner->inside);
    EXPECT_EQ(inner->mark, parcel->mark);
    EXPECT_TRUE(!again->fragile && again->count == 0);
}

TEST_F(NSKeyedArchiverTest, RefusesToWriteWhatCannotBeRead) {
    parcel->inside.set(parcel);
    EXPECT_THROW(NSKeyedArchiver::archivedDataWithRootObject(parcel), NSException);
    parcel->inside = nullptr;
    EXPECT_THROW(NSKeyedArchiver::archivedDataWithRootObject(NSValue::valueWithPointer(this)), NSException);
    EXPECT_THROW(NSKeyedArchiver::archivedDataWithRootObject(NSObject::init().get()), NSException);
    id deep = NSArray::array();
    for (int i = 0; i < 600; ++i) deep = NSArray::of({deep});
    EXPECT_THROW(NSKeyedArchiver::archivedDataWithRootObject(deep), NSException);
    EXPECT_THROW(NSKeyedArchiver::init()->decodeObjectForKey(u"root"_ns), NSException);
}

TEST_F(NSKeyedArchiverTest, MakesAllowedClassesOnly) {
    allowed = nullptr;
    EXPECT_EQ(restored(parcel), nullptr);
    EXPECT_EQ(error->toUTF8(), "objects of class \"TestParcel\" are not allowed");
    allowed = NSSet::of({NSObject::classObject()});
    EXPECT_NE(cast<TestParcel>(restored(parcel)), nullptr);
    parcel->count = -1;
    EXPECT_EQ(restored(NSArray::of({parcel.get()})), nullptr);
    EXPECT_EQ(error->toUTF8(), "object 2: no parcel");
}

TEST_F(NSKeyedArchiverTest, TellsWhatIsWrongWithAnArchive) {
    const struct {
        const char* objects;
        const char* error;
    } cases[] = {
        {"{class = NSArray; items = (1);}", "object 1 leads back to itself"},
        {"{class = NSArray; items = (0);}", "a collection holds none"},
        {"{class = NSArray; items = (7);}", "a reference leads outside the archive"},
        {"{class = NSLock; items = ();}", "\"NSLock\" is no class of collections"},
        {"{class = NSDictionary; items = (); keys = (2);}, x",
         "a dictionary has keys and values of different number"},
        {"{class = NSLock; fields = {};}", "objects of class \"NSLock\" are not allowed"},
        {"{class = NSValue; type = \"@\"; bytes = <0000000000000000>;}",
         "a value's bytes do not fit its type"},
        {"{class = NSValue; type = \"{_NSRange=II}\"; bytes = <00>;}", "a value's bytes do not fit its type"},
        {"{class = TestParcel;}", "an object of class TestParcel lacks its fields"},
        {"{}", "an object has no class"},
        {"()", "an array where an object's entry should be"},
    };
    for (const auto& c : cases) {
        NSString* text = NSString::stringWithFormat(
            u"{archiver = NSKeyedArchiver; version = 1; top = {root = {object = 1;};}; objects = (\"\", %s);}"_ns,
            c.objects);
        EXPECT_EQ(errorOf(text->toUTF8().c_str()), c.error);
    }
    EXPECT_EQ(errorOf("{a = b;}"), "the property list is no keyed archive");
    EXPECT_NE(errorOf("{"), "");
    EXPECT_NE(errorOf(""), "");
}

}  // namespace
}  // namespace pelvor
