// SPDX-License-Identifier: Apache-2.0
#include "PBPostLoader.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <thread>

#include "BaseLibrary.h"
#include "Foundation/NSLog.h"
#include "HookedClasses.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PostLoader : public ::testing::Test {
  protected:
    // All hooks that are there have run, so that only a test's own appear in its journal.
    void SetUp() override {
        PBPostLoader::processClasses();
        PBPostLoader::processSelector_initialize("becomingMultiThreaded"_sel, false);
        journal().clear();
    }
    static void cycle() { PBPostLoader::processClassesStartingRegistry(false); }
    // What the call writes on standard error.
    template <class Call>
    static std::string errorsOf(Call call) {
        ::testing::internal::CaptureStderr();
        call();
        return ::testing::internal::GetCapturedStderr();
    }
};

// MARK: Which implementations are called

TEST_F(PostLoader, CallsAnImplementationOnceHoweverManyCyclesComeBy) {
    classWithHook("OnceOnly", "didLoad", [](Object* self, SEL selector) { noteCall(self, selector); });
    cycle();
    cycle();
    PBPostLoader::processSelector_initialize("didLoad"_sel, true);
    EXPECT_THAT(journal(), ElementsAre("OnceOnly didLoad"));
}

TEST_F(PostLoader, CallsAnImplementationOnceForAllClassesAndSelectors) {
    auto shared = [](Object*, SEL selector) { note(selector.name()); };
    Class* first = classWithHook("SharingHook", "didLoad", shared);
    addHook(first, "activateToolkit", hookOf(shared));
    classWithHook("SharingHookToo", "didLoad", shared);
    cycle();
    EXPECT_THAT(journal(), ElementsAre("didLoad"));
}

TEST_F(PostLoader, CallsNoInheritedHook) {
    Class* superclass = classWithHook("WithHook", "activateToolkit",
                                      [](Object* self, SEL selector) { noteCall(self, selector); });
    Class::createSubclass("WithoutHook", superclass);
    cycle();
    EXPECT_THAT(journal(), ElementsAre("WithHook activateToolkit"));
}

TEST_F(PostLoader, CallsNoInstanceMethod) {
    Class* cls = Class::createSubclass("InstanceHook", NSObject::classObject());
    cls->addMethods({"Hooks", {{"didLoad"_sel, hookOf([](Object*, SEL) { note("instance"); })}}, nullptr});
    cycle();
    EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(PostLoader, GivesADeclaredArgumentZerosAndIgnoresAResult) {
    Class* cls = Class::createSubclass("OddHook", NSObject::classObject());
    auto odd = [](Object*, SEL, double argument) -> double {
        note("argument " + std::to_string(argument));
        return 1.0;
    };
    auto function = reinterpret_cast<void (*)()>(static_cast<double (*)(Object*, SEL, double)>(odd));
    addHook(cls, "didLoad", {function, &SignatureFor<double, double>::object, nullptr});
    cycle();
    EXPECT_THAT(journal(), ElementsAre("argument 0.000000"));
}

// MARK: Groups of one class

extern Library lampLibrary;

class HookedLamp : public NSObject {
    PELVOR_CLASS(HookedLamp, NSObject);

  public:
    static void didLoad() { note("own"); }

  protected:
    HookedLamp() = default;
    ~HookedLamp() = default;
};

PELVOR_DEFINE_CLASS(HookedLamp, lampLibrary) { methods.classLevel<"didLoad", &HookedLamp::didLoad>(); }

template <int N>
void noteCategory() {
    note("category " + std::to_string(N));
}

template <int N>
void defineHook(MethodTable<HookedLamp>& methods) {
    methods.template classLevelAs<"didLoad", &noteCategory<N>>();
}

constexpr Library* kNeeded[] = {&runtimeLibrary};
constinit const Category kFirst = Category::of<HookedLamp, defineHook<1>>("First");
constinit const Category kSecond = Category::of<HookedLamp, defineHook<2>>("Second");
constinit const Category kEarly = Category::of<HookedLamp, defineHook<3>>("Early");
constinit const Category kLate = Category::of<HookedLamp, defineHook<4>>("Late");
constexpr Class* kLampClasses[] = {&HookedLamp::classRecord};
constexpr const Category* kLampCategories[] = {&kFirst, &kSecond};
constexpr const Category* kEarlyCategories[] = {&kEarly};
constexpr const Category* kLateCategories[] = {&kLate};
constinit Library earlyLibrary{"Early", kNeeded, {}, kEarlyCategories};
constinit Library lampLibrary{"Lamp", kNeeded, kLampClasses, kLampCategories};
constinit Library lateLibrary{"Late", kNeeded, {}, kLateCategories};

TEST_F(PostLoader, CallsTheHooksOfAllCategoriesTheNewestFirstAndTheOwnLast) {
    registerLibrary(earlyLibrary);
    cycle();
    EXPECT_THAT(journal(), IsEmpty()) << "the category waits for its class";

    registerLibrary(lampLibrary);
    cycle();
    EXPECT_THAT(journal(), ElementsAre("category 2", "category 1", "category 3", "own"));

    registerLibrary(lateLibrary);
    cycle();
    EXPECT_EQ(journal().back(), "category 4");
    EXPECT_EQ(journal().size(), 5u);
}

// MARK: Phases

TEST_F(PostLoader, RunsTheCyclePhaseByPhase) {
    auto addAll = [](const char* name, IMP posing, IMP loading, IMP activating) {
        Class* cls = Class::createSubclass(name, NSObject::classObject());
        addHook(cls, "activateToolkit", activating);
        addHook(cls, "didLoad", loading);
        addHook(cls, "performPosing", posing);
    };
    addAll("PhasedA", hookOf([](Object*, SEL) { note("1"); }), hookOf([](Object*, SEL) { note("2"); }),
           hookOf([](Object*, SEL) { note("3"); }));
    addAll("PhasedB", hookOf([](Object*, SEL) { note("1"); }), hookOf([](Object*, SEL) { note("2"); }),
           hookOf([](Object*, SEL) { note("3"); }));
    cycle();
    EXPECT_THAT(journal(), ElementsAre("1", "1", "2", "2", "3", "3"));
}

TEST_F(PostLoader, LeavesPosingOutWhereItIsNotWanted) {
    classWithHook("PosesLater", "performPosing",
                  [](Object* self, SEL selector) { noteCall(self, selector); });
    PBPostLoader::processClassesStartingRegistry_posing(false, false);
    EXPECT_THAT(journal(), IsEmpty());
    PBPostLoader::processClassesStartingRegistry_posing(false, true);
    EXPECT_THAT(journal(), ElementsAre("PosesLater performPosing"));
}

TEST_F(PostLoader, CallsHooksOfClassesThatHooksRegisterInTheSamePhase) {
    classWithHook("Mother", "didLoad", [](Object*, SEL) {
        note("mother");
        classWithHook("Daughter", "didLoad", [](Object*, SEL) {
            note("daughter");
            classWithHook("Granddaughter", "didLoad", [](Object*, SEL) { note("granddaughter"); });
        });
    });
    PBPostLoader::processSelector_initialize("didLoad"_sel, true);
    EXPECT_THAT(journal(), ElementsAre("mother", "daughter", "granddaughter"));
}

TEST_F(PostLoader, RunsACycleInsideAHook) {
    classWithHook("Outer", "didLoad", [](Object*, SEL) {
        Class* inner = classWithHook("Inner", "didLoad", [](Object*, SEL) { note("inner didLoad"); });
        addHook(inner, "activateToolkit", hookOf([](Object*, SEL) { note("inner activateToolkit"); }));
        cycle();
        note("outer");
    });
    cycle();
    EXPECT_THAT(journal(), ElementsAre("inner didLoad", "inner activateToolkit", "outer"));
}

TEST_F(PostLoader, LetsAClassPose) {
    Class* original = Class::createSubclass("PlainLamp", NSObject::classObject());
    classWithHook(
        "SilverLamp", "performPosing",
        [](Object* self, SEL) { static_cast<Class*>(self)->poseAsClass(classNamed("PlainLamp")); }, original);
    addHook(original, "didLoad", hookOf([](Object* self, SEL) {
                auto made = Retained<Object>::adopting(static_cast<Class*>(self)->createInstance());
                note(made->isa()->name());
            }));
    cycle();
    EXPECT_THAT(journal(), ElementsAre("SilverLamp"));
}

// MARK: Initialisation of classes

Class* classThatNotesInitialize(const char* name, const char* selector, void (*hook)(Object*, SEL),
                                IMP initialize = hookOf([](Object*, SEL) { note("initialize"); })) {
    Class* cls = classWithHook(name, selector, hook);
    addHook(cls, "initialize", initialize);
    return cls;
}

TEST_F(PostLoader, InitialisesAClassBeforeItsFirstHookOfTheLatePhases) {
    classThatNotesInitialize("InitialisedFirst", "didLoad", [](Object*, SEL) { note("didLoad"); });
    cycle();
    EXPECT_THAT(journal(), ElementsAre("initialize", "didLoad"));
}

TEST_F(PostLoader, DoesNotInitialiseAClassForPosing) {
    classThatNotesInitialize("PosesUninitialised", "performPosing", [](Object*, SEL) { note("posing"); });
    cycle();
    EXPECT_THAT(journal(), ElementsAre("posing"));
}

TEST_F(PostLoader, DoesNotInitialiseTheClassThatAFileWrapperReplaced) {
    Class* wrapper =
        classThatNotesInitialize("NSFileWrapper", "didLoad", [](Object*, SEL) { note("didLoad"); });
    Class::createSubclass("BetterFileWrapper", wrapper)->poseAsClass(wrapper);
    ASSERT_STREQ(wrapper->name(), "%NSFileWrapper");
    cycle();
    EXPECT_THAT(journal(), ElementsAre("didLoad"));
}

// MARK: Failures

TEST_F(PostLoader, ReportsWhatAHookThrowsAndGoesOn) {
    Class* cls = classWithHook("Stumbling", "didLoad", [](Object*, SEL) { note("after"); });
    addHook(cls, "didLoad", hookOf([](Object*, SEL) { throw NSException("Fall", "a stone"); }));
    addHook(cls, "didLoad", hookOf([](Object*, SEL) { throw std::runtime_error("a 100 % root"); }));
    addHook(cls, "didLoad", hookOf([](Object*, SEL) { throw 7; }));
    EXPECT_EQ(errorsOf(cycle),
              "Exception raised by +[Stumbling didLoad]: unknown exception\n"
              "Exception raised by +[Stumbling didLoad]: a 100 % root\n"
              "Exception raised by +[Stumbling didLoad]: a stone\n");
    EXPECT_THAT(journal(), ElementsAre("after"));
}

TEST_F(PostLoader, ReportsAFailingInitialisationAndCallsTheHooks) {
    classThatNotesInitialize(
        "BadStart", "activateToolkit", [](Object*, SEL) { note("hook"); },
        hookOf([](Object*, SEL) { throw NSException("Fall", "no start"); }));
    EXPECT_EQ(errorsOf(cycle), "Exception raised by +[BadStart activateToolkit]: no start\n");
    EXPECT_THAT(journal(), ElementsAre("hook"));
}

TEST_F(PostLoader, CountsTheNestingOfProtectedCalls) {
    ASSERT_EQ(PBExceptionHandlingNestLevel, 0);
    Class* cls = classWithHook("Counting", "didLoad", [](Object*, SEL) {
        note(std::to_string(PBExceptionHandlingNestLevel));
        classWithHook("CountingInside", "performPosing",
                      [](Object*, SEL) { note(std::to_string(PBExceptionHandlingNestLevel)); });
        cycle();
    });
    addHook(cls, "didLoad", hookOf([](Object*, SEL) { throw NSException("Fall", "uncounted"); }));
    errorsOf(cycle);
    EXPECT_THAT(journal(), ElementsAre("1", "2"));
    EXPECT_EQ(PBExceptionHandlingNestLevel, 0);
}

TEST_F(PostLoader, GivesEachHookAnAutoreleasePool) {
    classWithHook("Littering", "didLoad", [](Object*, SEL) { NSObject::init().leak()->autorelease(); });
    std::size_t before = AutoreleasePool::pendingCount();
    PBPostLoader::processSelector_initialize("didLoad"_sel, false);
    EXPECT_EQ(AutoreleasePool::pendingCount(), before);
}

// MARK: Failures of another kind

// Attaching this category fails: its code is for strings, its class is none.
size_t lengthOf(NSString* string) { return string->length(); }
void defineUnfit(MethodTable<NSString>& methods) { methods.instanceAs<"length", &lengthOf>(); }
constexpr Category unfitCategory(const char* className) {
    Category category = Category::of<NSString, defineUnfit>("Unfit");
    category.className = className;
    return category;
}

TEST_F(PostLoader, ReleasesItsLockWhateverLeavesACycle) {
    static constinit const Category category = unfitCategory("UnfitOnce");
    static constexpr const Category* kCategories[] = {&category};
    static constinit Library library{"UnfitOnce", {}, {}, kCategories};
    Class::createSubclass("UnfitOnce", NSObject::classObject());
    registerLibrary(library);
    EXPECT_THROW(cycle(), NSException);

    classWithHook("AfterUnfit", "didLoad", [](Object*, SEL) { note("free"); });
    std::thread(cycle).join();
    EXPECT_THAT(journal(), ElementsAre("free"));
}

TEST_F(PostLoader, LogsSuchAFailureInTheThreadPhaseAndGoesOn) {
    static constinit const Category category = unfitCategory("UnfitForThreads");
    static constexpr const Category* kCategories[] = {&category};
    static constinit Library library{"UnfitForThreads", {}, {}, kCategories};
    Class::createSubclass("UnfitForThreads", NSObject::classObject());
    registerLibrary(library);
    LogSinkScope scope([](const LogEntry& entry) { note(std::string(entry.text)); });
    send(&PBPostLoader::classRecord, "_becomingMultiThreaded:"_sel, nullptr);
    EXPECT_THAT(journal(), ElementsAre("Ignoring exception raised while sending -becomingMultiThreaded.  "
                                       "code that needs a receiver of class NSString cannot be a method of "
                                       "UnfitForThreads"));
    EXPECT_EQ(PBExceptionHandlingNestLevel, 0);
    EXPECT_TRUE(PBPostLoader::isMultiThreaded());
}

}  // namespace
}  // namespace pelvor::testing
