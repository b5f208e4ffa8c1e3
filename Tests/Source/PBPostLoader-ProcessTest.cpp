// SPDX-License-Identifier: Apache-2.0
// What the post-loader does once in a process: each of these tests has a process of its own.
#include "Foundation/NSThread.h"
#include "HookedClasses.h"
#include "PBPostLoader.h"
#include "PBProfile.h"
#include "PBRegistry.h"
#include "PBUtil.h"
#include "TestClasses.h"

namespace {

void noteWhetherMultiThreaded() { note(PBPostLoader::isMultiThreaded() ? "multi-threaded" : "one thread"); }

TEST(PostLoaderProcess, RunsThePosingPhaseWithTheFirstMessage) {
    expectJournal("no sets, first message sent, loading", [] {
        classWithHooks("Early",
                       {{"performPosing"_sel, HOOK(note(_pbLettersCharacterSet ? "sets" : "no sets"))},
                        {"didLoad"_sel, HOOK(note("loading"))}});
        send<bool>(&PBPostLoader::classRecord, "isMultiThreaded"_sel);
        note("first message sent");
        PBPostLoader::processClasses();
    });
}

TEST(PostLoaderProcess, RunsTheThreadPhaseWithTheFirstFurtherThreadAndThenInEveryCycle) {
    expectJournal("one thread, early, multi-threaded, late activateToolkit, late", [] {
        classWithHooks("Early", {{"becomingMultiThreaded"_sel, HOOK(note("early"))}});
        PBPostLoader::processClasses();
        noteWhetherMultiThreaded();
        NSThread::detach([] {});
        noteWhetherMultiThreaded();
        classWithHooks("Late", {{"becomingMultiThreaded"_sel, HOOK(note("late"))},
                                {"activateToolkit"_sel, HOOK(note("late activateToolkit"))}});
        PBPostLoader::processClassesStartingRegistry(false);
    });
}

TEST(PostLoaderProcess, RunsNoThreadPhaseInsideAThreadPhase) {
    expectJournal("nobody listens yet, one thread, inner, multi-threaded", [] {
        HookFunction outer = [](Object*, SEL) {
            classWithHooks("Inner", {{"becomingMultiThreaded"_sel, HOOK(note("inner"))}});
            send(&PBPostLoader::classRecord, "_becomingMultiThreaded:"_sel, nullptr);
            noteWhetherMultiThreaded();
        };
        classWithHooks("Outer", {{"becomingMultiThreaded"_sel, outer}});
        NSThread::detach([] {});
        note("nobody listens yet");
        PBPostLoader::processClasses();
        noteWhetherMultiThreaded();
    });
}

TEST(PostLoaderProcess, IsMissedOnceByARegistryToWhichTheHostAddedAProfile) {
    expectJournal("1 asked", [] {
        LogLines log;
        PBRegistry* registry = PBRegistry::sharedRegistry();
        registry->addProfile(PBProfile::profileWithIdentifier_dictionary_bundle(u"own"_ns, nullptr, nullptr));
        for (int i = 0; i < 2; ++i) registry->profiles();
        EXPECT_THAT(log.lines, Each(HasSubstr("processClasses() was not called")));
        note(std::to_string(log.lines.size()) + " asked");
    });
}

// MARK: Plug-ins

// Plug-ins find a class by its name to say something in the journal.
void noteLine(NSObject*, NSString* line) { note(shown(line)); }
void processClassesWithJournal() {
    addMethod<"note:", &noteLine>(Class::createSubclass("HookJournal", NSObject::classObject())->metaclass());
    PBPostLoader::processClasses();
}

// Those before the last.
const std::string kPhases = "LateLamp performPosing, NSString didLoad, LateLamp initialize, LateLamp didLoad";

TEST(PlugIns, PassThroughAllPhasesWhenTheyAreLoadedAndThenBringTheirProfiles) {
    expectJournal(kPhases + ", LateLamp activateToolkit, its profile, again", [] {
        processClassesWithJournal();
        ASSERT_TRUE(plugIn("LateLamp")->load());
        PBProfile* profile = PBRegistry::sharedRegistry()->profileWithIdentifier(u"late lamp"_ns);
        ASSERT_EQ(profile->profileClass(), classNamed("LateLamp"));
        note(profile->bundle() == plugIn("LateLamp") ? "its profile" : "another's profile");
        note(plugIn("LateLamp")->load() ? "again" : "not again");
        PBPostLoader::processClasses();
    });
}

TEST(PlugIns, AreLoadedInsideAHookWithTheirWholeCycle) {
    // The cycle inside the hook passes over the loader's hook of the later phase as well.
    expectJournal(
        kPhases + "(, activates, LateLamp activateToolkit|, LateLamp activateToolkit, activates), has loaded",
        [] {
            processClassesWithJournal();
            HookFunction load = HOOK(plugIn("LateLamp")->load(), note("has loaded"));
            classWithHooks("Loader",
                           {{"didLoad"_sel, load}, {"activateToolkit"_sel, HOOK(note("activates"))}});
            PBPostLoader::processClassesStartingRegistry(false);
        });
}

// MARK: Initialisation of the bundle class

TEST(PlugIns, BundlesAreBarredFromThePosingPhase) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            classWithHooks("TouchesBundles", {{"performPosing"_sel, HOOK(NSBundle::mainBundle())}});
            PBPostLoader::processClasses();
        },
        "^\\+\\[NSBundle initialize\\] called too early!  This should not happen until OFPostLoader provokes "
        "it\\. Please rewrite your \\+performPosing method to not provoke \\+\\[NSBundle "
        "initialize\\]\\.\n$");
}

void noteWhetherLinksAreResolved() {
    NSString* link = u"/proc/self"_ns;
    note(NSBundle::bundleWithPath(link)->bundlePath()->isEqual(link) ? "not resolved" : "resolved");
}

TEST(PlugIns, BundlesAreInitialisedOnceAfterThePosingPhaseWithoutResolvingLinks) {
    expectJournal("posing, not resolved, resolved", [] {
        Class* bundleClass = NSBundle::classObject();
        registerLibrary(*bundleClass->library());
        PBReplaceMethodImplementation(bundleClass->metaclass(), "initialize"_sel,
                                      hookOf(HOOK(noteWhetherLinksAreResolved())));
        classWithHooks("PosesFirst", {{"performPosing"_sel, HOOK(note("posing"))}});
        send<bool>(&PBPostLoader::classRecord, "isMultiThreaded"_sel);
        noteWhetherLinksAreResolved();
    });
}

}  // namespace
