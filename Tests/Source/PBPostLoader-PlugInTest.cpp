// SPDX-License-Identifier: Apache-2.0
// The post-loader and bundles that come while the process runs.
#include "Foundation/NSBundle.h"
#include "Foundation/NSThread.h"
#include "HookedClasses.h"
#include "PBPostLoader.h"
#include "PBRegistry.h"
#include "PBUtil.h"
#include "Prelude.h"

namespace pelvor::testing {
namespace {

using ::testing::ExitedWithCode;

NSBundle* plugIn(const char* name) {
    std::string path = std::string(PELVOR_TEST_PLUGINS) + "/" + name + ".bundle";
    return NSBundle::bundleWithPath(NSString::ofUTF8(path));
}

// What plug-ins find by name to say something in the journal.
void makeJournalClass() {
    if (classNamed("HookJournal")) return;
    Class* cls = Class::createSubclass("HookJournal", NSObject::classObject());
    auto note = [](Object*, SEL, Object* line) { testing::note(static_cast<NSString*>(line)->toUTF8()); };
    auto function = static_cast<void (*)(Object*, SEL, Object*)>(note);
    IMP implementation{reinterpret_cast<void (*)()>(function), &SignatureFor<void, id>::object, nullptr};
    cls->metaclass()->addMethods({"Journal", {{"note:"_sel, implementation}}, nullptr});
}

class PlugIns : public ::testing::Test {
  protected:
    void SetUp() override {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        makeJournalClass();
        journal().clear();
    }
};

TEST_F(PlugIns, PassThroughAllPhasesWhenTheyAreLoadedAndThenBringTheirProfiles) {
    PBPostLoader::processClasses();
    ASSERT_TRUE(plugIn("LateLamp")->load());
    std::vector<std::string> phases{"LateLamp performPosing", "NSString didLoad", "LateLamp initialize",
                                    "LateLamp didLoad", "LateLamp activateToolkit"};
    if (NSThread::isMultiThreaded()) phases.emplace_back("LateLamp becomingMultiThreaded");
    EXPECT_EQ(journal(), phases);
    PBProfile* profile = PBRegistry::sharedRegistry()->profileWithIdentifier(u"late lamp"_ns);
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->profileClass(), classNamed("LateLamp"));
    EXPECT_EQ(profile->bundle(), plugIn("LateLamp"));

    journal().clear();
    EXPECT_TRUE(plugIn("LateLamp")->load());
    PBPostLoader::processClasses();
    EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(PlugIns, AreLoadedInsideAHookWithTheirWholeCycle) {
    PBPostLoader::processClasses();
    Class* loading = classWithHook("ShadeLoader", "didLoad", [](Object*, SEL) {
        note("loads");
        plugIn("LateShade")->load();
        note("has loaded");
    });
    addHook(loading, "activateToolkit", hookOf([](Object*, SEL) { note("activates"); }));
    PBPostLoader::processClassesStartingRegistry(false);
    // The cycle inside the hook passes over the loader's hook of the later phase as well.
    EXPECT_THAT(journal(), ElementsAre("loads", "LateShade performPosing", "LateShade didLoad", "activates",
                                       "has loaded"));
}

TEST_F(PlugIns, GetTheThreadPhaseAtTheEndOfTheirCycleOnceThereIsASecondThread) {
    EXPECT_EXIT(
        {
            PBPostLoader::processClasses();
            NSThread::detach([] {});
            plugIn("LateLamp")->load();
            exitWithJournal();
        },
        ExitedWithCode(0),
        journalOf({"LateLamp performPosing", "NSString didLoad", "LateLamp initialize", "LateLamp didLoad",
                   "LateLamp activateToolkit", "LateLamp becomingMultiThreaded"}));
}

// MARK: Initialisation of the bundle class

TEST_F(PlugIns, BundlesAreBarredFromThePosingPhase) {
    EXPECT_DEATH(
        {
            classWithHook("TouchesBundles", "performPosing", [](Object*, SEL) { NSBundle::mainBundle(); });
            PBPostLoader::processClasses();
        },
        "^\\+\\[NSBundle initialize\\] called too early!  This should not happen until OFPostLoader provokes "
        "it\\. Please rewrite your \\+performPosing method to not provoke \\+\\[NSBundle "
        "initialize\\]\\.\n$");
}

// The folder is a symbolic link.
bool resolvesLinks() {
    NSString* path = u"/proc/self"_ns;
    return !NSBundle::bundleWithPath(path)->bundlePath()->isEqual(path);
}

TEST_F(PlugIns, BundlesAreInitialisedOnceAfterThePosingPhaseWithoutResolvingLinks) {
    EXPECT_EXIT(
        {
            Class* bundleClass = NSBundle::classObject();
            registerLibrary(*bundleClass->library());
            auto initialize = [](Object*, SEL) { note(resolvesLinks() ? "resolves" : "does not resolve"); };
            PBReplaceMethodImplementation(bundleClass->metaclass(), "initialize"_sel, hookOf(initialize));
            classWithHook("PosesFirst", "performPosing", [](Object*, SEL) { note("posing"); });
            send<bool>(&PBPostLoader::classRecord, "isMultiThreaded"_sel);
            note(resolvesLinks() ? "resolves again" : "does not resolve");
            exitWithJournal();
        },
        ExitedWithCode(0), journalOf({"posing", "does not resolve", "resolves again"}));
}

}  // namespace
}  // namespace pelvor::testing
