// SPDX-License-Identifier: Apache-2.0
#include "PBPostLoader.h"

#include <stdexcept>

#include "BaseLibrary.h"
#include "HookedClasses.h"
#include "Prelude.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor::testing {
namespace {

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

TEST_F(PostLoader, CallsAnImplementationOnceForAllCyclesClassesAndSelectors) {
    auto shared = [](Object*, SEL selector) { note(selector.name()); };
    Class* first = classWithHook("SharingHook", "didLoad", shared);
    addHook(first, "activateToolkit", hookOf(shared));
    classWithHook("SharingHookToo", "didLoad", shared);
    for (int i = 0; i < 2; ++i) cycle();
    PBPostLoader::processSelector_initialize("didLoad"_sel, true);
    EXPECT_THAT(journal(), ElementsAre("didLoad"));
}

TEST_F(PostLoader, CallsNeitherInheritedHooksNorInstanceMethods) {
    Class* cls = classWithHook("WithHook", "activateToolkit",
                               [](Object* self, SEL selector) { noteCall(self, selector); });
    Class::createSubclass("WithoutHook", cls);
    cls->addMethods({"Hooks", {{"didLoad"_sel, hookOf([](Object*, SEL) { note("instance"); })}}, nullptr});
    cycle();
    EXPECT_THAT(journal(), ElementsAre("WithHook activateToolkit"));
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

constinit const Category kFirst = Category::of<HookedLamp, defineHook<1>>("First");
constinit const Category kSecond = Category::of<HookedLamp, defineHook<2>>("Second");
constinit const Category kEarly = Category::of<HookedLamp, defineHook<3>>("Early");
constinit const Category kLate = Category::of<HookedLamp, defineHook<4>>("Late");
constexpr Class* kLampClasses[] = {&HookedLamp::classRecord};
constexpr const Category* kLampCategories[] = {&kFirst, &kSecond};
constexpr const Category* kEarlyCategories[] = {&kEarly};
constexpr const Category* kLateCategories[] = {&kLate};
constinit Library earlyLibrary{"Early", {}, {}, kEarlyCategories};
constinit Library lampLibrary{"Lamp", {}, kLampClasses, kLampCategories};
constinit Library lateLibrary{"Late", {}, {}, kLateCategories};

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

template <int N>
void addHooksOfAllPhases() {
    Class* cls = Class::createSubclass(("Phased" + std::to_string(N)).c_str(), NSObject::classObject());
    addHook(cls, "activateToolkit", hookOf([](Object*, SEL) { note("activating"); }));
    addHook(cls, "didLoad", hookOf([](Object*, SEL) { note("loading"); }));
    addHook(cls, "performPosing", hookOf([](Object*, SEL) { note("posing"); }));
}

TEST_F(PostLoader, RunsTheCyclePhaseByPhase) {
    addHooksOfAllPhases<1>();
    addHooksOfAllPhases<2>();
    cycle();
    EXPECT_THAT(journal(), ElementsAre("posing", "posing", "loading", "loading", "activating", "activating"));
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

TEST_F(PostLoader, InitialisesAClassBeforeItsFirstHookButForPosing) {
    classThatNotesInitialize("PosesUninitialised", "performPosing", [](Object*, SEL) { note("posing"); });
    classThatNotesInitialize("InitialisedFirst", "didLoad", [](Object*, SEL) { note("didLoad"); });
    cycle();
    EXPECT_THAT(journal(), ElementsAre("posing", "initialize", "didLoad"));
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

size_t lengthOf(NSString* string) { return string->length(); }
void defineUnfit(MethodTable<NSString>& methods) { methods.instanceAs<"length", &lengthOf>(); }

// Attaching the category of this class fails: its code is for strings, its class is none.
template <int N>
void makeUnfitClass(const char* name) {
    static Category category = Category::of<NSString, defineUnfit>("Unfit");
    static const Category* const categories[] = {&category};
    static Library library{name, {}, {}, categories};
    category.className = name;
    Class::createSubclass(name, NSObject::classObject());
    registerLibrary(library);
}

TEST_F(PostLoader, ReleasesItsLockWhateverLeavesACycle) {
    makeUnfitClass<1>("UnfitOnce");
    EXPECT_THROW(cycle(), NSException);
    classWithHook("AfterUnfit", "didLoad", [](Object*, SEL) { note("free"); });
    std::thread(cycle).join();
    EXPECT_THAT(journal(), ElementsAre("free"));
}

TEST_F(PostLoader, LogsSuchAFailureInTheThreadPhaseAndGoesOn) {
    makeUnfitClass<2>("UnfitForThreads");
    LogLines log;
    send(&PBPostLoader::classRecord, "_becomingMultiThreaded:"_sel, nullptr);
    EXPECT_THAT(log.lines, ElementsAre("Ignoring exception raised while sending -becomingMultiThreaded.  "
                                       "code that needs a receiver of class NSString cannot be a method of "
                                       "UnfitForThreads"));
    EXPECT_EQ(PBExceptionHandlingNestLevel, 0);
    EXPECT_TRUE(PBPostLoader::isMultiThreaded());
}

}  // namespace
}  // namespace pelvor::testing
