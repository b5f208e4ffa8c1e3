// SPDX-License-Identifier: Apache-2.0
#include "PBWeakReference.h"

#include <set>

#include "ActingObject.h"
#include "BaseLibrary.h"
#include "NSSet-PelvorAdditions.h"
#include "PBSafeWeakReference.h"
#include "Prelude.h"
#include "Runtime/NSInvocation.h"

namespace {

class PBTestTarget : public NSObject {
    PELVOR_CLASS(PBTestTarget, NSObject);

  public:
    int answer() { return ++calls; }
    int fail() { throw NSException("PBTestException", "as asked"); }
    NSMethodSignature* methodSignatureForSelector(SEL selector) override {
        if (selector == "raiseWhenAsked"_sel) fail();
        return NSObject::methodSignatureForSelector(selector);
    }
    int calls = 0;
};

constinit Library weakReferenceTestLibrary{"WeakReferenceTest", {}, kClassesOf<PBTestTarget>, {}};
PELVOR_DEFINE_CLASS(PBTestTarget, weakReferenceTestLibrary) {
    methods.instance<"answer", &PBTestTarget::answer>();
    methods.instance<"fail", &PBTestTarget::fail>();
}

// Larger than the references that stand in rows.
class PBTestMarkedReference : public PBWeakReference, PBWeakReference::HiddenCreators {
    PELVOR_CLASS(PBTestMarkedReference, PBWeakReference);

  public:
    void setObject(id object) override {
        PBWeakReference::setObject(object);
        mark = "an own mark, too long to stand inside the string";
    }
    std::string mark;
};
PELVOR_DEFINE_CLASS(PBTestMarkedReference, baseLibrary) {}

struct PBWeakReferenceTest : ::testing::Test {
    Retained<PBTestTarget> target = make<PBTestTarget>(), other = make<PBTestTarget>();
};

// Deliberately one-sided: an object does not know its references.
TEST_F(PBWeakReferenceTest, EqualsItsObjectButNotTheOtherWayRound) {
    auto reference = PBWeakReference::initWithObject(target);
    EXPECT_EQ(target->retainCount(), 1u);
    EXPECT_EQ(reference->hash(), reinterpret_cast<std::uintptr_t>(target.get()));
    EXPECT_TRUE(reference->isEqual(PBWeakReference::weakReferenceWithObject(target)));
    EXPECT_FALSE(reference->isEqual(PBWeakReference::weakReferenceWithObject(other)));
    EXPECT_TRUE(reference->isEqual(target));
    EXPECT_FALSE(target->isEqual(reference));
    EXPECT_EQ(reference->copy(), reference);
    EXPECT_EQ(reference->description()->toUTF8(), "PBWeakReference<" + addressOf(reference) + ">");
}

TEST_F(PBWeakReferenceTest, IsFoundInCollectionsByItsObject) {
    auto set = NSMutableSet::init();
    for (id object : {target, target}) addWeakReferenceObject(set, object);
    EXPECT_EQ(shown(set->count(), containsWeakReferenceObject(set, target),
                    containsWeakReferenceObject(set, other)),
              "1 1 0");
    removeWeakReferenceObject(set, target);
    EXPECT_EQ(set->count(), 0u);
    set->addObject(other);
    addWeakReferenceObject(set, other);
    EXPECT_EQ(set->count(), 1u);
    auto* array = NSArray::of({target, PBWeakReference::weakReferenceWithObject(other),
                               PBWeakReference::weakReferenceWithObject(target)});
    EXPECT_EQ(indexOfWeakReferenceObject(array, target), 2u);
    EXPECT_EQ(indexOfWeakReferenceObject(array, set), NSNotFound);
}

TEST_F(PBWeakReferenceTest, GoneReferencesAreUsedAgainUpToALimit) {
    std::vector<Retained<PBWeakReference>> references;
    std::set<void*> places;
    for (int i = 0; i < 200; ++i) references.push_back(PBWeakReference::initWithObject(target));
    for (auto& reference : references) places.insert(reference.get());
    references.clear();
    std::size_t reused = 0;
    for (unsigned i = 0; i < 60; ++i) {
        auto fresh = send<Retained<Object>>(PBWeakReference::classObject(), "alloc"_sel);
        EXPECT_EQ(cast<PBWeakReference>(fresh)->object(), nullptr);
        reused += i < 50 && places.count(fresh.get());
        references.push_back(cast<PBWeakReference>(std::move(fresh)));
    }
    EXPECT_EQ(reused, 50u);
}

// One pool holds them for all threads, and the last that came is used first.
TEST_F(PBWeakReferenceTest, TheLastThatWentIsTheNextOnWhateverThread) {
    auto first = PBWeakReference::initWithObject(target), second = PBWeakReference::initWithObject(target);
    void *firstPlace = first.get(), *secondPlace = second.get();
    first = nullptr;
    std::thread([&] { second = nullptr; }).join();
    second = PBWeakReference::initWithObject(other);
    std::thread([&] { first = PBWeakReference::initWithObject(other); }).join();
    EXPECT_EQ(second.get(), secondPlace);
    EXPECT_EQ(first.get(), firstPlace);
    Retained<Object> inherited = second;
    second = nullptr;
    inherited = nullptr;
    EXPECT_EQ(PBWeakReference::initWithObject(target).get(), secondPlace) << "by the inherited release";
}

TEST_F(PBWeakReferenceTest, ASubclassHasFieldsOfItsOwn) {
    auto set = NSMutableSet::init();
    for (id object : {id(target), id(other), id(target)})
        set->addObject(PBWeakReference::initWithObject(object, PBTestMarkedReference::classObject()).get());
    EXPECT_EQ(shown(set->count(), containsWeakReferenceObject(set, target)), "2 1");
    for (id reference : set)
        EXPECT_THAT(cast<PBTestMarkedReference>(reference)->mark, StartsWith("an own mark"));
}

TEST_F(PBWeakReferenceTest, SixteenThreadsMakeAndDropThem) {
    std::vector<Retained<PBWeakReference>> left(16);  // others go on another thread than they came
    onThreads(16, [&](int number) {
        std::vector<Retained<PBWeakReference>> held(20);
        for (std::size_t step = 0; step < 2000; ++step) {
            id object = step % 3 ? target : other;
            held[step * 7 % held.size()] = PBWeakReference::initWithObject(object);
            EXPECT_EQ(held[step * 7 % held.size()]->object(), object);
        }
        left[static_cast<std::size_t>(number)] = held[0];
    });
}

// Deliberately: the separator is not used.
TEST_F(PBWeakReferenceTest, MembersOfASetAreJoinedWithNothingBetweenThem) {
    auto* set = NSMutableSet::of({u"a"_ns, u"b"_ns, u"c"_ns});
    removeObjectsInArray(set, NSArray::of({u"c"_ns, u"x"_ns}));
    EXPECT_EQ(componentsJoinedByString(set, u","_ns)->toUTF8(), "ab");
    auto leaving = NSMutableArray::init();
    for (int i = 0; i < 3; ++i)
        leaving->addObject(ActingObject::endingWith([&] { leaving->removeAllObjects(); }).get());
    removeObjectsInArray(set, leaving);
    EXPECT_EQ(leaving->count(), 3u) << "the array holds them";
}

// MARK: Safe references

struct PBSafeWeakReferenceTest : PBWeakReferenceTest {
    PBSafeWeakReferenceTest() { invocation->setSelector("answer"_sel); }

    Retained<PBSafeWeakReference> safe = PBSafeWeakReference::initWithObject(target);
    Retained<NSInvocation> invocation =
        NSInvocation::initWithMethodSignature(safe->methodSignatureForSelector("answer"_sel));
};

TEST_F(PBSafeWeakReferenceTest, PassesMessagesOnUntilItsObjectIsGone) {
    EXPECT_EQ(send<int>(safe, "answer"_sel), 1);
    EXPECT_EQ(target->retainCount(), 1u);
    target = nullptr;
    EXPECT_EQ(safe->methodSignatureForSelector("answer"_sel), nullptr);
    EXPECT_FALSE(safe->respondsToSelector("answer"_sel));
    EXPECT_THROW(send<int>(safe, "answer"_sel), NSException);
    safe->forwardInvocation(invocation);
    EXPECT_EQ(invocation->target(), nullptr);
}

TEST_F(PBSafeWeakReferenceTest, DropsMessagesToAnObjectOfAnotherClass) {
    static Class* changed = Class::createSubclass("PBTestChangedTarget", PBTestTarget::classObject());
    Instances::setClass(target, changed);
    safe->forwardInvocation(invocation);
    EXPECT_EQ(invocation->target(), target);
    EXPECT_EQ(target->calls, 0);
    EXPECT_EQ(safe->methodSignatureForSelector("answer"_sel), nullptr);
    Instances::setClass(target, PBTestTarget::classObject());
    EXPECT_EQ(send<int>(safe, "answer"_sel), 1);
}

TEST_F(PBSafeWeakReferenceTest, ForgetsAnObjectThatRaises) {
    for (SEL selector : {"fail"_sel, "raiseWhenAsked"_sel}) {
        safe = PBSafeWeakReference::initWithObject(target);
        RAISED(send<int>(safe, selector));
        EXPECT_EQ(safe->methodSignatureForSelector("answer"_sel), nullptr);
    }
}

}  // namespace
