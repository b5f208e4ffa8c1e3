// SPDX-License-Identifier: Apache-2.0
#include "PBPostLoader.h"

#include <stdexcept>

#include "HookedClasses.h"

namespace {

struct PostLoader : ::testing::Test {
    // All hooks that are there have run, so that only a test's own appear in its journal.
    PostLoader() {
        PBPostLoader::processClasses();
        PBPostLoader::processSelector_initialize("becomingMultiThreaded"_sel, false);
        journal().clear();
    }
    static void cycle() { PBPostLoader::processClassesStartingRegistry(false); }
    // What a cycle writes on standard error.
    static std::string errorsOfCycle() {
        ::testing::internal::CaptureStderr();
        cycle();
        return ::testing::internal::GetCapturedStderr();
    }
};

// MARK: Which implementations are called

TEST_F(PostLoader, CallsAnImplementationOnceForAllCyclesClassesAndSelectors) {
    HookFunction shared = HOOK(note(selector.name()));
    classWithHooks("SharingHook", {{"didLoad"_sel, shared}, {"activateToolkit"_sel, shared}});
    classWithHooks("SharingHookToo", {{"didLoad"_sel, shared}});
    for (int i = 0; i < 2; ++i) cycle();
    PBPostLoader::processSelector_initialize("didLoad"_sel, true);
    EXPECT_THAT(journal(), ElementsAre("didLoad"));
}

TEST_F(PostLoader, CallsNeitherInheritedHooksNorInstanceMethods) {
    Class* cls = classWithHooks("WithHook", {{"activateToolkit"_sel, HOOK(noteCall(self, selector))}});
    Class::createSubclass("WithoutHook", cls);
    cls->addMethods({"Hooks", {{"didLoad"_sel, hookOf(HOOK(note("instance")))}}, nullptr});
    cycle();
    EXPECT_THAT(journal(), ElementsAre("WithHook activateToolkit"));
}

TEST_F(PostLoader, GivesADeclaredArgumentZerosAndIgnoresAResult) {
    double (*odd)(Object*, SEL, double) = [](Object*, SEL, double argument) -> double {
        note("argument " + std::to_string(argument));
        return 1.0;
    };
    IMP implementation{reinterpret_cast<void (*)()>(odd), &SignatureFor<double, double>::object, nullptr};
    addHook(classWithHooks("OddHook", {}), "didLoad"_sel, implementation);
    cycle();
    EXPECT_THAT(journal(), ElementsAre("argument 0.000000"));
}

// MARK: Phases

TEST_F(PostLoader, RunsTheCyclePhaseByPhase) {
    classWithHooks("Phased", {{"activateToolkit"_sel, HOOK(note("activating"))},
                              {"didLoad"_sel, HOOK(note("loading"))},
                              {"performPosing"_sel, HOOK(note("posing"))}});
    classWithHooks("PhasedToo", {{"performPosing"_sel, HOOK(note("posing"))},
                                 {"didLoad"_sel, HOOK(note("loading"))},
                                 {"activateToolkit"_sel, HOOK(note("activating"))}});
    cycle();
    EXPECT_THAT(journal(), ElementsAre("posing", "posing", "loading", "loading", "activating", "activating"));
    classWithHooks("PosesLater", {{"performPosing"_sel, HOOK(note("poses later"))}});
    PBPostLoader::processClassesStartingRegistry_posing(false, false);
    EXPECT_THAT(journal(), ::testing::SizeIs(6));
    PBPostLoader::processClassesStartingRegistry_posing(false, true);
    EXPECT_EQ(journal().back(), "poses later");
}

TEST_F(PostLoader, CallsHooksOfClassesThatHooksRegisterInTheSamePhase) {
    classWithHooks("Mother", {{"didLoad"_sel, [](Object*, SEL) {
                                   note("mother");
                                   classWithHooks("Daughter", {{"didLoad"_sel, HOOK(note("daughter"))}});
                               }}});
    PBPostLoader::processSelector_initialize("didLoad"_sel, true);
    EXPECT_THAT(journal(), ElementsAre("mother", "daughter"));
}

TEST_F(PostLoader, RunsACycleInsideAHook) {
    classWithHooks("Outer", {{"didLoad"_sel, [](Object*, SEL) {
                                  classWithHooks("Inner", {{"didLoad"_sel, HOOK(noteCall(self, selector))},
                                                           {"activateToolkit"_sel, HOOK(note("activate"))}});
                                  cycle();
                                  note("outer");
                              }}});
    cycle();
    EXPECT_THAT(journal(), ElementsAre("Inner didLoad", "activate", "outer"));
}

// MARK: Initialisation of classes

TEST_F(PostLoader, DoesNotInitialiseTheClassThatAFileWrapperReplaced) {
    Class* wrapper = classWithHooks("NSFileWrapper", {{"didLoad"_sel, HOOK(note("didLoad"))},
                                                      {"initialize"_sel, HOOK(note("initialize"))}});
    Class::createSubclass("BetterFileWrapper", wrapper)->poseAsClass(wrapper);
    ASSERT_STREQ(wrapper->name(), "%NSFileWrapper");
    cycle();
    EXPECT_THAT(journal(), ElementsAre("didLoad"));
}

// MARK: Failures

// The hooks of one class are in groups; the newest group comes first.
TEST_F(PostLoader, ReportsWhatAHookOrAnInitialisationThrowsAndGoesOn) {
    classWithHooks("Stumbling", {{"didLoad"_sel, HOOK(note("after"))},
                                 {"didLoad"_sel, HOOK(throw NSException("Fall", "a stone"))},
                                 {"didLoad"_sel, HOOK(throw std::runtime_error("a 100 % root"))},
                                 {"didLoad"_sel, HOOK(throw 7)}});
    classWithHooks("BadStart", {{"activateToolkit"_sel, HOOK(note("hook"))},
                                {"initialize"_sel, HOOK(throw NSException("Fall", "no start"))}});
    EXPECT_EQ(errorsOfCycle(),
              "Exception raised by +[Stumbling didLoad]: unknown exception\n"
              "Exception raised by +[Stumbling didLoad]: a 100 % root\n"
              "Exception raised by +[Stumbling didLoad]: a stone\n"
              "Exception raised by +[BadStart activateToolkit]: no start\n");
    EXPECT_THAT(journal(), ElementsAre("after", "hook"));
}

TEST_F(PostLoader, CountsTheNestingOfProtectedCalls) {
    ASSERT_EQ(PBExceptionHandlingNestLevel, 0);
    HookFunction counting = [](Object*, SEL) {
        note(std::to_string(PBExceptionHandlingNestLevel));
        HookFunction inside = HOOK(note(std::to_string(PBExceptionHandlingNestLevel)));
        classWithHooks("CountingInside", {{"performPosing"_sel, inside}});
        cycle();
    };
    HookFunction falling = HOOK(throw NSException("Fall", "uncounted"));
    classWithHooks("Counting", {{"didLoad"_sel, counting}, {"didLoad"_sel, falling}});
    errorsOfCycle();
    EXPECT_THAT(journal(), ElementsAre("1", "2"));
    EXPECT_EQ(PBExceptionHandlingNestLevel, 0);
}

TEST_F(PostLoader, GivesEachHookAnAutoreleasePool) {
    classWithHooks("Littering", {{"didLoad"_sel, HOOK(make<NSObject>().leak()->autorelease())}});
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
    classWithHooks("AfterUnfit", {{"didLoad"_sel, HOOK(note("free"))}});
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
