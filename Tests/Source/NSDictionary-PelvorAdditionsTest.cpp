// SPDX-License-Identifier: Apache-2.0
// Tests of dictionaries as records.
#include "NSDictionary-PelvorAdditions.h"

#include "NSMutableDictionary-PelvorAdditions.h"
#include "Prelude.h"

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
    setBool_forKey(record, true, u"B"_ns);
    setInt_forKey(record, -7, u"i"_ns);
    setFloat_forKey(record, 0.1f, u"f"_ns);
    setDouble_forKey(record, 0.1, u"d"_ns);
    for (auto [key, value] : record)
        EXPECT_EQ(cast<NSString>(key)->toUTF8(), cast<NSNumber>(value)->objCType());
    EXPECT_TRUE(boolForKey(record, u"B"_ns) && boolForKey(record, u"d"_ns));
    EXPECT_EQ(intForKey(record, u"i"_ns), -7);
    EXPECT_EQ(floatForKey(record, u"f"_ns), 0.1f);
    EXPECT_EQ(doubleForKey(record, u"d"_ns), 0.1);
    NSString* none = u"none"_ns;
    EXPECT_FALSE(intForKey(record, none) || doubleForKey(record, none) != 0 || boolForKey(record, none));
    EXPECT_EQ(intForKey(NSDictionary::of({{none, u"12"_ns}}), none), 12);
    EXPECT_THROW(intForKey(NSDictionary::of({{none, a}}), none), NSException);
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

TEST_F(NSDictionaryPelvorAdditions, MakeChangedCopiesAndParts) {
    NSDictionary* empty = NSDictionary::dictionary();
    NSDictionary* twos = NSDictionary::of({{u"a"_ns, two}, {u"b"_ns, two}});
    auto part = [&](NSSet* keys) { return createSubdictionaryWithKeys(ab, keys).autorelease(); };
    const std::tuple<NSDictionary*, NSDictionary*, bool> cases[] = {
        {dictionarySettingObject_forKey(a, two, u"b"_ns), ab, false},
        {dictionaryRemovingObjectForKey(a, u"a"_ns), empty, false},
        {dictionaryRemovingObjectForKey(ab, u"b"_ns), a, false},
        {dictionaryByAddingEntriesFromDictionary(a, twos), twos, true},
        {part(NSSet::of({u"a"_ns, u"z"_ns})), a, true},
        {part(NSSet::of({u"a"_ns})), a, false},
        {part(NSSet::of({u"z"_ns})), empty, false},
        {part(nullptr), empty, false}};
    for (auto [made, expected, isMutable] : cases)
        EXPECT_TRUE(made->isEqual(expected) && !cast<NSMutableDictionary>(made) == !isMutable);
    EXPECT_EQ(a->count(), 1u);
    for (NSDictionary* other : {a, empty}) EXPECT_EQ(dictionaryByAddingEntriesFromDictionary(a, other), a);
    EXPECT_EQ(dictionaryRemovingObjectForKey(a, u"z"_ns), a);
    for (NSSet* keys : {NSSet::of({u"b"_ns}), NSSet::of({u"b"_ns, u"y"_ns, u"z"_ns})}) {
        NSMutableDictionary* some = NSMutableDictionary::dictionaryWithDictionary(a);
        addObjectsFromDictionary_forKeys(some, twos, keys);
        EXPECT_TRUE(some->isEqual(ab));
    }
}

}  // namespace
