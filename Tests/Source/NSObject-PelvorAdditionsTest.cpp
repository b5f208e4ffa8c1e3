// SPDX-License-Identifier: Apache-2.0
#include "NSObject-PelvorAdditions.h"

#include <bit>

#include "BaseLibrary.h"
#include "Foundation/NSBundle.h"
#include "HookedClasses.h"
#include "Prelude.h"

namespace pelvor::testing {
namespace {

extern Library meterLibrary;

// What the platform's classes do not answer: methods that take plain numbers, and results of odd kinds.
class Meter : public NSObject {
    PELVOR_CLASS(Meter, NSObject);

  public:
    static Class* kind(Class* cls) { return cls; }

    float halfLengthOf(NSString* text) { return static_cast<float>(text->length()) / 2; }
    int twice(int value) { return 2 * value; }
    int bitsOf(float value) { return std::bit_cast<int>(value); }
    int oneIf(bool value) { return value ? 1 : 0; }
    float negated(float value) { return -value; }
    std::int64_t widened(std::int64_t value) { return value; }
    void swallow(bool value) { note(value ? "true" : "false"); }
    Retained<Object> deepCopy() { return u"deep"_ns->copy(); }
};

PELVOR_DEFINE_CLASS(Meter, meterLibrary) {
    methods.classLevel<"kind", &Meter::kind>();
    methods.instance<"halfLengthOf:", &Meter::halfLengthOf>();
    methods.instance<"twice:", &Meter::twice>();
    methods.instance<"bitsOf:", &Meter::bitsOf>();
    methods.instance<"oneIf:", &Meter::oneIf>();
    methods.instance<"negated:", &Meter::negated>();
    methods.instance<"widened:", &Meter::widened>();
    methods.instance<"swallow:", &Meter::swallow>();
    methods.instance<"deepCopy", &Meter::deepCopy>();
}

constexpr Library* kNeeded[] = {&baseLibrary};
constexpr Class* kClasses[] = {&Meter::classRecord};
constinit Library meterLibrary{"Meter", kNeeded, kClasses, {}};

// MARK: Messages with plain numbers

TEST(PlainMessages, ReadTheResultAsTheTypeAskedFor) {
    NSNumber* number = NSNumber::numberWithDouble(-2.5);
    EXPECT_EQ(intForPerformSelector(number, "intValue"_sel), -2);
    EXPECT_EQ(floatForPerformSelector(number, "floatValue"_sel), -2.5f);
    EXPECT_TRUE(boolForPerformSelector(number, "boolValue"_sel));
    EXPECT_EQ(intForPerformSelector_withObject(u"b"_ns, "compare:"_sel, u"a"_ns), 1);
    EXPECT_EQ(floatForPerformSelector_withObject(make<Meter>().get(), "halfLengthOf:"_sel, u"abc"_ns), 1.5f);
    EXPECT_FALSE(boolForPerformSelector_withObject(u"abc"_ns, "hasPrefix:"_sel, u"b"_ns));
    EXPECT_EQ(intForPerformSelector_withObject(u"a"_ns, "isKindOfClass:"_sel, NSString::classObject()), 1);
}

TEST(PlainMessages, ReadAnotherResultByItsBytesWithZerosBehindIt) {
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

TEST(PlainMessages, GiveANumberAndAnswerResultsOfFourBytes) {
    auto meter = make<Meter>();
    EXPECT_EQ(send<int>(meter, "performSelector:withInt:"_sel, "twice:"_sel, -21), -42);
    EXPECT_EQ(performSelector_withFloat(meter, "bitsOf:"_sel, 0.5f), std::bit_cast<int>(0.5f));
    EXPECT_EQ(performSelector_withBool(meter, "oneIf:"_sel, true), 1);
    EXPECT_EQ(performSelector_withFloat(meter, "negated:"_sel, 0.5f), std::bit_cast<int>(-0.5f));
    EXPECT_EQ(performSelector_withInt(meter, "widened:"_sel, 5), 0) << "the result has eight bytes";
    journal().clear();
    EXPECT_EQ(performSelector_withBool(meter, "swallow:"_sel, true), 0);
    EXPECT_EQ(journal(), Lines{"true"});
}

TEST(PlainMessages, RaiseWhereAnArgumentCannotBeGiven) {
    auto meter = make<Meter>();
    NSNumber* number = NSNumber::numberWithInt(1);
    EXPECT_THROW(intForPerformSelector(meter, "unknown"_sel), NSException);
    for (SEL selector : {"intValue"_sel, "getValue:"_sel, "isKindOfClass:"_sel})
        EXPECT_THROW(intForPerformSelector_withObject(number, selector, meter), NSException)
            << selector.name();
    EXPECT_THROW(performSelector_withInt(number, "isEqual:"_sel, 0x1000), NSException);
    EXPECT_THROW(performSelector_withInt(number, "intValue"_sel, 1), NSException);
    EXPECT_EQ(intForPerformSelector_withObject(number, "isEqual:"_sel, nullptr), 0);
}

// MARK: Names of selectors

bool names(NSSet* set, const char* selector) { return set->containsObject(NSString::ofUTF8(selector)); }

TEST(SelectorNames, AreThoseOfTheClassAndAllAboveIt) {
    NSSet* instance = NSObject_PelvorAdditions::instanceSelectorNames(Meter::classObject());
    for (const char* selector : {"twice:", "hash", "performSelector:withInt:", "deepCopy"})
        EXPECT_TRUE(names(instance, selector)) << selector;
    for (const char* selector : {"kind", "alloc", "instanceSelectorNames"})
        EXPECT_FALSE(names(instance, selector)) << selector;

    auto* ofClass = send<NSSet*>(Meter::classObject(), "classSelectorNames"_sel);
    for (const char* selector : {"kind", "alloc", "instanceSelectorNames", "isEqual:"})
        EXPECT_TRUE(names(ofClass, selector)) << selector;
    EXPECT_FALSE(names(ofClass, "twice:"));
}

TEST(ObjectAdditions, NameTheDefaultNotificationCentreAndTheBundleOfTheirClass) {
    auto meter = make<Meter>();
    for (id object : {id(meter.get()), id(Meter::classObject())}) {
        EXPECT_EQ(notificationCenter(object), NSNotificationCenter::defaultCenter());
        EXPECT_EQ(send<NSBundle*>(object, "bundle"_sel), NSBundle::mainBundle());
    }
}

// MARK: Copies

TEST(DeepCopies, AreCopiesUnlessAClassOverridesThem) {
    auto list = NSMutableArray::initWithObjects({u"a"_ns});
    Retained<Object> copy = deepCopy(list), mutableCopy = mutableDeepCopy(list);
    list->removeAllObjects();
    EXPECT_EQ(cast<NSArray>(copy)->count(), 1u);
    EXPECT_EQ(cast<NSMutableArray>(mutableCopy)->count(), 1u);
    EXPECT_TRUE(deepCopy(make<Meter>().get())->isEqual(u"deep"_ns));
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
}  // namespace pelvor::testing
