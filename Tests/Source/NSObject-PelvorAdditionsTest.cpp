// SPDX-License-Identifier: Apache-2.0
#include "NSObject-PelvorAdditions.h"

#include <gtest/gtest.h>

#include <bit>

#include "BaseLibrary.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableSet.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSString.h"
#include "HookedClasses.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor::testing {
namespace {

extern Library meterLibrary;

// Answers results of all kinds and remembers what it was given.
class Meter : public NSObject {
    PELVOR_CLASS(Meter, NSObject);

  public:
    static Class* kind(Class* cls) { return cls; }

    int integer() { return -12; }
    float real() { return 2.5f; }
    bool truth() { return true; }
    signed char small() { return -1; }
    std::int64_t large() { return 0x1'0000'0100; }
    void nothing() { note("nothing"); }
    int lengthOf(NSString* text) { return text ? static_cast<int>(text->length()) : -1; }
    float halfLengthOf(NSString* text) { return static_cast<float>(text->length()) / 2; }
    bool isLong(NSString* text) { return text->length() > 3; }
    int isNamed(Class* cls) { return cls ? 1 : 0; }
    int twice(int value) { return 2 * value; }
    int bitsOf(float value) { return std::bit_cast<int>(value); }
    int oneIf(bool value) { return value ? 1 : 0; }
    float negated(float value) { return -value; }
    std::int64_t widened(std::int64_t value) { return value; }
    void swallow(bool value) { note(value ? "true" : "false"); }
    void follow(void* pointer) { note(pointer ? "pointer" : "none"); }
    Retained<Object> deepCopy() { return u"deep"_ns->copy(); }

  protected:
    Meter() = default;
    ~Meter() = default;
};

PELVOR_DEFINE_CLASS(Meter, meterLibrary) {
    methods.classLevel<"kind", &Meter::kind>();
    methods.instance<"integer", &Meter::integer>();
    methods.instance<"real", &Meter::real>();
    methods.instance<"truth", &Meter::truth>();
    methods.instance<"small", &Meter::small>();
    methods.instance<"large", &Meter::large>();
    methods.instance<"nothing", &Meter::nothing>();
    methods.instance<"lengthOf:", &Meter::lengthOf>();
    methods.instance<"halfLengthOf:", &Meter::halfLengthOf>();
    methods.instance<"isLong:", &Meter::isLong>();
    methods.instance<"isNamed:", &Meter::isNamed>();
    methods.instance<"twice:", &Meter::twice>();
    methods.instance<"bitsOf:", &Meter::bitsOf>();
    methods.instance<"oneIf:", &Meter::oneIf>();
    methods.instance<"negated:", &Meter::negated>();
    methods.instance<"widened:", &Meter::widened>();
    methods.instance<"swallow:", &Meter::swallow>();
    methods.instance<"follow:", &Meter::follow>();
    methods.instance<"deepCopy", &Meter::deepCopy>();
}

constexpr Library* kNeeded[] = {&baseLibrary};
constexpr Class* kClasses[] = {&Meter::classRecord};
constinit Library meterLibrary{"Meter", kNeeded, kClasses, {}};

// MARK: Messages with plain numbers

TEST(PlainMessages, ReadTheResultAsTheTypeAskedFor) {
    auto meter = make<Meter>();
    EXPECT_EQ(intForPerformSelector(meter, "integer"_sel), -12);
    EXPECT_EQ(floatForPerformSelector(meter, "real"_sel), 2.5f);
    EXPECT_TRUE(boolForPerformSelector(meter, "truth"_sel));
    EXPECT_EQ(intForPerformSelector_withObject(meter, "lengthOf:"_sel, u"four"_ns), 4);
    EXPECT_EQ(floatForPerformSelector_withObject(meter, "halfLengthOf:"_sel, u"abc"_ns), 1.5f);
    EXPECT_FALSE(boolForPerformSelector_withObject(meter, "isLong:"_sel, u"abc"_ns));
}

TEST(PlainMessages, ReadAnotherResultByItsBytesWithZerosBehindIt) {
    auto meter = make<Meter>();
    EXPECT_EQ(intForPerformSelector(meter, "real"_sel), std::bit_cast<int>(2.5f));
    EXPECT_EQ(intForPerformSelector(meter, "small"_sel), 0xFF);
    EXPECT_EQ(intForPerformSelector(meter, "large"_sel), 0x100);
    EXPECT_FALSE(boolForPerformSelector(meter, "large"_sel)) << "its first byte is 0";
    EXPECT_EQ(floatForPerformSelector(meter, "integer"_sel) == 0, false);
    EXPECT_EQ(intForPerformSelector(meter, "nothing"_sel), 0);
    EXPECT_EQ(floatForPerformSelector(meter, "nothing"_sel), 0.0f);
}

TEST(PlainMessages, GiveANumberAndAnswerResultsOfFourBytes) {
    auto meter = make<Meter>();
    EXPECT_EQ(performSelector_withInt(meter, "twice:"_sel, -21), -42);
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
    EXPECT_THROW(intForPerformSelector(meter, "unknown"_sel), NSException);
    EXPECT_THROW(intForPerformSelector_withObject(meter, "integer"_sel, meter), NSException);
    EXPECT_THROW(intForPerformSelector_withObject(meter, "follow:"_sel, meter), NSException);
    EXPECT_THROW(intForPerformSelector_withObject(meter, "isNamed:"_sel, meter), NSException);
    EXPECT_THROW(performSelector_withInt(meter, "lengthOf:"_sel, 0x1000), NSException);
    EXPECT_THROW(performSelector_withInt(meter, "integer"_sel, 1), NSException);
    EXPECT_EQ(intForPerformSelector_withObject(meter, "isNamed:"_sel, Meter::classObject()), 1);
    EXPECT_EQ(intForPerformSelector_withObject(meter, "lengthOf:"_sel, nullptr), -1);
}

TEST(PlainMessages, AnswerBySelectorAndOnClasses) {
    auto meter = make<Meter>();
    EXPECT_EQ(send<int>(meter, "performSelector:withInt:"_sel, "twice:"_sel, 4), 8);
    EXPECT_EQ(send<float>(meter, "floatForPerformSelector:"_sel, "real"_sel), 2.5f);
    EXPECT_TRUE(send<bool>(Meter::classObject(), "boolForPerformSelector:"_sel, "isProxy"_sel) == false);
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

TEST(ObjectAdditions, NameTheDefaultNotificationCentre) {
    registerLibrary(baseLibrary);
    auto* byMessage = send<NSNotificationCenter*>(u"any"_ns, "notificationCenter"_sel);
    EXPECT_EQ(byMessage, NSNotificationCenter::defaultCenter());
    EXPECT_EQ(notificationCenter(Meter::classObject()), NSNotificationCenter::defaultCenter());
}

TEST(ObjectAdditions, NameTheBundleOfTheirClass) {
    auto meter = make<Meter>();
    EXPECT_EQ(bundle(meter), NSBundle::bundleForClass(Meter::classObject()));
    EXPECT_EQ(send<NSBundle*>(meter, "bundle"_sel), NSBundle::mainBundle());
    EXPECT_EQ(send<NSBundle*>(Meter::classObject(), "bundle"_sel), NSBundle::mainBundle());
}

// MARK: Copies

TEST(DeepCopies, AreCopiesUnlessAClassOverridesThem) {
    auto list = NSMutableArray::initWithObjects({u"a"_ns});
    Retained<Object> copy = deepCopy(list);
    Retained<Object> mutableCopy = mutableDeepCopy(list);
    list->removeAllObjects();
    EXPECT_EQ(cast<NSArray>(copy)->count(), 1u);
    EXPECT_EQ(cast<NSMutableArray>(mutableCopy)->count(), 1u);

    auto meter = make<Meter>();
    EXPECT_TRUE(deepCopy(meter)->isEqual(u"deep"_ns));
}

TEST(DeepCopies, BelongToTheCaller) {
    auto unique = make<PBUniqueObject>();
    {
        AutoreleasePool pool;
        Retained<Object> copy = deepCopy(unique);
        pool.drain();
        EXPECT_EQ(unique->retainCount(), 2u);
    }
    EXPECT_EQ(unique->retainCount(), 1u);
}

// MARK: Unique objects

TEST(PBUniqueObject, EqualsOnlyItself) {
    auto one = make<PBUniqueObject>();
    auto other = make<PBUniqueObject>();

    EXPECT_TRUE(send<bool>(one, "isEqual:"_sel, one.get()));
    EXPECT_FALSE(send<bool>(one, "isEqual:"_sel, other.get()));
    EXPECT_EQ(one->hash(), reinterpret_cast<std::uintptr_t>(one.get()));
}

TEST(PBUniqueObject, IsItsOwnCopy) {
    auto object = make<PBUniqueObject>();
    {
        Retained<Object> copy = object->copy();
        Retained<Object> mutableCopy = object->mutableCopy();

        EXPECT_EQ(copy.get(), object.get());
        EXPECT_EQ(mutableCopy.get(), object.get());
        EXPECT_EQ(object->retainCount(), 3u);
    }
    EXPECT_EQ(object->retainCount(), 1u);
}

}  // namespace
}  // namespace pelvor::testing
