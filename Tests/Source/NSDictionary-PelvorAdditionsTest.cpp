// SPDX-License-Identifier: Apache-2.0
// Tests of dictionaries as records.
#include "NSDictionary-PelvorAdditions.h"

#include "NSMutableDictionary-PelvorAdditions.h"
#include "Prelude.h"

namespace pelvor {
namespace {

class NSDictionaryPelvorAdditions : public ::testing::Test {
  protected:
    NSNumber* one = NSNumber::numberWithInt(1);
    NSNumber* two = NSNumber::numberWithInt(2);
    NSDictionary* a = NSDictionary::of({{u"a"_ns, one}});
    NSDictionary* ab = NSDictionary::of({{u"a"_ns, NSNumber::numberWithDouble(1)}, {u"b"_ns, two}});
};

TEST_F(NSDictionaryPelvorAdditions, HoldTypedValues) {
    NSMutableDictionary* record = NSMutableDictionary::dictionary();
    setBool_forKey(record, true, u"bool"_ns);
    setInt_forKey(record, -7, u"int"_ns);
    setFloat_forKey(record, 0.1f, u"float"_ns);
    setDouble_forKey(record, 0.1, u"double"_ns);
    record->setObject_forKey(u"12"_ns, u"text"_ns);
    record->setObject_forKey(a, u"dictionary"_ns);
    EXPECT_TRUE(boolForKey(record, u"bool"_ns));
    EXPECT_TRUE(cast<NSNumber>(record->objectForKey(u"bool"_ns))->isBoolean());
    EXPECT_EQ(intForKey(record, u"int"_ns), -7);
    EXPECT_EQ(floatForKey(record, u"float"_ns), 0.1f);
    EXPECT_EQ(doubleForKey(record, u"double"_ns), 0.1);
    EXPECT_EQ(intForKey(record, u"text"_ns), 12);
    NSString* none = u"none"_ns;
    EXPECT_FALSE(intForKey(record, none) || doubleForKey(record, none) != 0 || boolForKey(record, none));
    EXPECT_THROW(intForKey(record, u"dictionary"_ns), NSException);
}

TEST_F(NSDictionaryPelvorAdditions, CompareSomeKeys) {
    NSDictionary* empty = NSDictionary::dictionary();
    NSSet *none = NSSet::set(), *b = NSSet::of({u"b"_ns});
    EXPECT_TRUE(isSubdictionaryOf(a, ab) && isSubdictionaryOf(empty, nullptr));
    EXPECT_FALSE(isSubdictionaryOf(ab, a) || isSubdictionaryOf(a, nullptr));
    EXPECT_TRUE(isEqualToDictionary_ignoringKeys(a, ab, none));
    EXPECT_FALSE(isEqualToDictionary_ignoringKeys(ab, a, none));
    EXPECT_TRUE(isEqualToDictionary_ignoringKeys(ab, a, b));
    EXPECT_FALSE(isEqualToDictionary_ignoringKeys(empty, nullptr, nullptr));
    EXPECT_TRUE(isEqualToDictionary_forKeys(a, ab, NSArray::of({u"a"_ns, u"z"_ns})));
    EXPECT_FALSE(isEqualToDictionary_forKeys(a, ab, b) || isEqualToDictionary_forKeys(a, nullptr, none));
    EXPECT_TRUE(containsKeyInSet(ab, NSSet::of({u"z"_ns, u"b"_ns})) && containsKeyInDictionary(a, ab));
    EXPECT_FALSE(containsKeyInSet(a, b) || containsKeyInDictionary(a, empty));
}

TEST_F(NSDictionaryPelvorAdditions, MakeChangedCopies) {
    EXPECT_TRUE(dictionarySettingObject_forKey(a, two, u"b"_ns)->isEqual(ab));
    EXPECT_EQ(a->count(), 1u);
    EXPECT_EQ(dictionaryRemovingObjectForKey(a, u"z"_ns), a);
    EXPECT_EQ(dictionaryRemovingObjectForKey(a, u"a"_ns)->count(), 0u);
    EXPECT_TRUE(dictionaryRemovingObjectForKey(ab, u"b"_ns)->isEqual(a));
    EXPECT_EQ(dictionaryByAddingEntriesFromDictionary(a, a), a);
    EXPECT_EQ(dictionaryByAddingEntriesFromDictionary(a, NSDictionary::dictionary()), a);
    NSDictionary* changed = dictionaryByAddingEntriesFromDictionary(ab, NSDictionary::of({{u"a"_ns, two}}));
    EXPECT_EQ(intForKey(changed, u"a"_ns), 2);
    EXPECT_NE(cast<NSMutableDictionary>(changed), nullptr);
}

TEST_F(NSDictionaryPelvorAdditions, CopySomeEntries) {
    EXPECT_TRUE(createSubdictionaryWithKeys(ab, NSSet::of({u"a"_ns, u"z"_ns}))->isEqual(a));
    EXPECT_TRUE(createSubdictionaryWithKeys(ab, NSSet::of({u"a"_ns}))->isEqual(a));
    EXPECT_EQ(createSubdictionaryWithKeys(ab, NSSet::of({u"z"_ns}))->count(), 0u);
    EXPECT_EQ(createSubdictionaryWithKeys(ab, nullptr)->count(), 0u);
    for (NSSet* keys : {NSSet::of({u"b"_ns}), NSSet::of({u"b"_ns, u"y"_ns, u"z"_ns})}) {
        NSMutableDictionary* some = NSMutableDictionary::dictionaryWithDictionary(a);
        addObjectsFromDictionary_forKeys(some, ab, keys);
        EXPECT_TRUE(some->isEqual(ab));
    }
}

}  // namespace
}  // namespace pelvor
