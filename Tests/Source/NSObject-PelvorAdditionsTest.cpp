// SPDX-License-Identifier: Apache-2.0
#include "NSObject-PelvorAdditions.h"

#include <bit>

#include "BaseLibrary.h"
#include "Foundation/NSBundle.h"
#include "PBUniqueObject.h"
#include "Prelude.h"

namespace {

// What the platform's classes do not answer: methods that take plain numbers, and results of odd kinds.
class Meter : public NSObject {
    PELVOR_CLASS(Meter, NSObject);

  public:
    static Class* kind(Class* cls) { return cls; }

    float halfLengthOf(NSString* text) { return static_cast<float>(text->length()) / 2; }
    int twice(int value) { return 2 * value; }
    float negated(float value) { return -value; }
    std::int64_t widened(std::int64_t value) { return value; }
    void swallow(bool value) { swallowed = value; }
    Retained<Object> deepCopy() { return u"deep"_ns->copy(); }

    bool swallowed = false;
};

constexpr Library* kNeeded[] = {&baseLibrary};
constinit Library meterLibrary{"Meter", kNeeded, kClassesOf<Meter>, {}};

PELVOR_DEFINE_CLASS(Meter, meterLibrary) {
    methods.classLevel<"kind", &Meter::kind>();
    methods.instance<"halfLengthOf:", &Meter::halfLengthOf>();
    methods.instance<"twice:", &Meter::twice>();
    methods.instance<"negated:", &Meter::negated>();
    methods.instance<"widened:", &Meter::widened>();
    methods.instance<"swallow:", &Meter::swallow>();
    methods.instance<"deepCopy", &Meter::deepCopy>();
}

struct ObjectAdditions : ::testing::Test {
    Retained<Meter> meter = make<Meter>();
};

// MARK: Messages with plain numbers

TEST_F(ObjectAdditions, ReadAResultAsTheTypeAskedFor) {
    NSNumber* number = NSNumber::numberWithDouble(-2.5);
    EXPECT_EQ(intForPerformSelector(number, "intValue"_sel), -2);
    EXPECT_EQ(floatForPerformSelector(number, "floatValue"_sel), -2.5f);
    EXPECT_TRUE(boolForPerformSelector(number, "boolValue"_sel));
    EXPECT_EQ(intForPerformSelector_withObject(u"b"_ns, "compare:"_sel, u"a"_ns), 1);
    EXPECT_EQ(floatForPerformSelector_withObject(meter, "halfLengthOf:"_sel, u"abc"_ns), 1.5f);
    EXPECT_FALSE(boolForPerformSelector_withObject(u"abc"_ns, "hasPrefix:"_sel, u"b"_ns));
    EXPECT_EQ(intForPerformSelector_withObject(u"a"_ns, "isKindOfClass:"_sel, NSString::classObject()), 1);
}

TEST_F(ObjectAdditions, ReadAnotherResultByItsBytesWithZerosBehindIt) {
    NSNumber* half = NSNumber::numberWithFloat(2.5f);
    NSNumber* large = NSNumber::numberWithLongLong(0x1'0000'0100);
    EXPECT_EQ(intForPerformSelector(half, "floatValue"_sel), std::bit_cast<int>(2.5f));
    EXPECT_EQ(intForPerformSelector(NSNumber::numberWithInt(-1), "charValue"_sel), 0xFF);
    EXPECT_EQ(intForPerformSelector(large, "longLongValue"_sel), 0x100);
    EXPECT_FALSE(boolForPerformSelector(large, "longLongValue"_sel)) << "its first byte is 0";
    EXPECT_NE(floatForPerformSelector(large, "intValue"_sel), 0.0f);
    EXPECT_EQ(intForPerformSelector(NSMutableArray::array(), "removeAllObjects"_sel), 0);
    EXPECT_EQ(floatForPerformSelector(NSMutableArray::array(), "removeAllObjects"_sel), 0.0f);
}

TEST_F(ObjectAdditions, GiveANumberAndAnswerResultsOfFourBytes) {
    EXPECT_EQ(send<int>(meter, "performSelector:withInt:"_sel, "twice:"_sel, -21), -42);
    EXPECT_EQ(performSelector_withFloat(meter, "negated:"_sel, 0.5f), std::bit_cast<int>(-0.5f));
    EXPECT_EQ(performSelector_withInt(meter, "widened:"_sel, 5), 0) << "the result has eight bytes";
    EXPECT_EQ(performSelector_withBool(meter, "swallow:"_sel, true), 0);
    EXPECT_TRUE(meter->swallowed);
}

TEST_F(ObjectAdditions, RaiseWhereAnArgumentCannotBeGiven) {
    NSNumber* number = NSNumber::numberWithInt(1);
    EXPECT_THROW(intForPerformSelector(meter, "unknown"_sel), NSException);
    for (SEL selector : {"intValue"_sel, "getValue:"_sel, "isKindOfClass:"_sel})
        EXPECT_THROW(intForPerformSelector_withObject(number, selector, meter), NSException)
            << selector.name();
    EXPECT_EQ(intForPerformSelector_withObject(number, "isEqual:"_sel, nullptr), 0);
}

// MARK: Names of selectors

// Those of the texts that the set has.
std::string present(NSSet* set, std::initializer_list<const char*> texts) {
    std::vector<std::string> found;
    for (const char* text : texts)
        if (set->containsObject(NSString::ofUTF8(text))) found.push_back(text);
    return joined(found);
}

TEST_F(ObjectAdditions, NameTheSelectorsOfTheClassAndAllAboveIt) {
    auto names = {"kind",     "alloc",   "instanceSelectorNames", "twice:", "performSelector:withInt:",
                  "deepCopy", "isEqual:"};
    EXPECT_EQ(present(NSObject_PelvorAdditions::instanceSelectorNames(Meter::classObject()), names),
              "twice:, performSelector:withInt:, deepCopy, isEqual:");
    EXPECT_EQ(present(send<NSSet*>(Meter::classObject(), "classSelectorNames"_sel), names),
              "kind, alloc, instanceSelectorNames, performSelector:withInt:, deepCopy, isEqual:");
}

TEST_F(ObjectAdditions, NameTheDefaultNotificationCentreAndTheBundleOfTheirClass) {
    for (id object : {id(meter), id(Meter::classObject())}) {
        EXPECT_EQ(notificationCenter(object), NSNotificationCenter::defaultCenter());
        EXPECT_EQ(send<NSBundle*>(object, "bundle"_sel), NSBundle::mainBundle());
    }
}

// MARK: Copies

TEST_F(ObjectAdditions, CopyDeeplyAsACopyUnlessAClassOverridesIt) {
    auto list = NSMutableArray::initWithObjects({u"a"_ns});
    Retained<Object> copy = deepCopy(list), mutableCopy = mutableDeepCopy(list);
    list->removeAllObjects();
    EXPECT_EQ(cast<NSArray>(copy)->count(), 1u);
    EXPECT_EQ(cast<NSMutableArray>(mutableCopy)->count(), 1u);
    EXPECT_TRUE(deepCopy(meter)->isEqual(u"deep"_ns));
}

TEST(PBUniqueObject, EqualsOnlyItselfAndIsItsOwnCopy) {
    auto one = make<PBUniqueObject>(), other = make<PBUniqueObject>();
    EXPECT_TRUE(send<bool>(one, "isEqual:"_sel, one.get()));
    EXPECT_FALSE(send<bool>(one, "isEqual:"_sel, other.get()));
    EXPECT_EQ(one->hash(), reinterpret_cast<std::uintptr_t>(one.get()));
    {
        AutoreleasePool pool;
        Retained<Object> copies[] = {one->copy(), one->mutableCopy(), deepCopy(one)};
        for (auto& copy : copies) EXPECT_EQ(copy.get(), one.get());
        pool.drain();
        EXPECT_EQ(one->retainCount(), 4u) << "copies belong to the caller";
    }
    EXPECT_EQ(one->retainCount(), 1u);
}

}  // namespace
