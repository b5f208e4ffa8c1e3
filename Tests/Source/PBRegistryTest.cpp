// SPDX-License-Identifier: Apache-2.0
// Tests of declaration files and of the registry that reads them.
#include "PBRegistry.h"

#include "BaseLibrary.h"
#include "PBProfileKeys.h"
#include "Prelude.h"
#include "ProfileFixture.h"

namespace pelvor {
namespace {

using namespace testing;
using Names = std::set<std::string>;

// Notes which bundles it is asked to read instead of reading them, or fails at each profile.
class PBTestRegistry : public PBRegistry {
    PELVOR_CLASS(PBTestRegistry, PBRegistry);

  public:
    void addProfilesFromBundle(NSBundle* bundle) override {
        if (notesBundles)
            bundles.push_back(bundle);
        else
            PBRegistry::addProfilesFromBundle(bundle);
    }
    void addProfile(PBProfile* profile) override {
        if (fails) throw NSException(NSGenericException, "full");
        PBRegistry::addProfile(profile);
    }
    bool notesBundles = false;
    bool fails = false;
    std::vector<NSBundle*> bundles;
};

PELVOR_DEFINE_CLASS(PBTestRegistry, baseLibrary) {}

Retained<PBTestRegistry> makeTestRegistry() {
    auto registry = PBRegistry::init(PBTestRegistry::classObject());
    return Retained<PBTestRegistry>::retaining(cast<PBTestRegistry>(registry));
}

class PBRegistryTest : public ::testing::Test {
  protected:
    void read(const std::string& text, NSBundle* bundle = nullptr) {
        registry->addProfilesFromPath_bundle(folder.write("Profiles.plist", text), bundle);
    }

    TemporaryFolder folder;
    Retained<PBRegistry> registry = PBRegistry::init();
    SharedRegistry shared{registry};
    Retained<Listener> listener = Listener::to(PBProfilesDidChangeNotification, registry);
};

TEST_F(PBRegistryTest, OneRegistryIsSharedUntilItIsReplaced) {
    EXPECT_EQ(PBRegistry::sharedRegistry(), registry.get());
    EXPECT_EQ(send<id>(PBRegistry::classObject(), "sharedRegistry"_sel), registry.get());
    std::uint32_t count = registry->retainCount();
    PBRegistry::setSharedRegistry(registry);
    EXPECT_EQ(registry->retainCount(), count);
    {
        SharedRegistry none(nullptr);
        EXPECT_EQ(PBRegistry::sharedRegistry(), nullptr);
        (void)make<PBTestRegistry>();
        EXPECT_EQ(PBRegistry::sharedRegistry(), nullptr) << "a subclass made it anew";
        EXPECT_EQ(registry->retainCount(), count);
    }
}

TEST_F(PBRegistryTest, EveryProfileThatIsAddedCountsAndPosts) {
    PBProfile *first = makeProfile(u"rtf"_ns, nullptr), *second = makeProfile(u"rtf"_ns, nullptr);
    for (PBProfile* profile : {first, second}) registry->addProfile(profile);
    EXPECT_EQ(registry->profileWithIdentifier(u"rtf"_ns), second);
    EXPECT_EQ(registry->setVersion(), 2u);
    ASSERT_EQ(listener->heard.size(), 2u);
    EXPECT_EQ(listener->heard[1]->userInfo(), nullptr);
    EXPECT_EQ(names(registry), Names{"rtf"});
}

TEST_F(PBRegistryTest, RefusesWhatHasNoIdentifierAndChangesNothing) {
    EXPECT_THROW(registry->addProfile(nullptr), NSException);
    EXPECT_THROW(registry->addProfile(makeProfile(nullptr, nullptr)), NSException);
    EXPECT_EQ(registry->setVersion(), 0u);
    EXPECT_EQ(listener->takeCount(), 0u);
}

TEST_F(PBRegistryTest, AFileCountsItsProfilesAndPostsOnce) {
    TemporaryBundle plugIn("Formats");
    read("{ Profiles = { a = {type = coder;}; b = {}; c = {}; d = {}; e = {}; }; }", plugIn.bundle());
    EXPECT_EQ(registry->setVersion(), 5u);
    EXPECT_EQ(listener->takeCount(), 1u);
    PBProfile* profile = registry->profileWithIdentifier(u"a"_ns);
    EXPECT_TRUE(isSame(profile->type(), PBProfileCoderType));
    EXPECT_EQ(profile->bundle(), plugIn.bundle());
}

TEST_F(PBRegistryTest, PostsEvenWhenThereIsNothingToRead) {
    registry->addProfilesFromPath_bundle(NSString::ofUTF8((folder.path() / "missing.plist").string()),
                                         nullptr);
    registry->addProfilesFromPath_bundle(nullptr, nullptr);
    registry->addProfilesFromBundle(nullptr);
    for (const char* text : {"", "{ Profiles = {", "(Profiles)", "{ Other = {}; }", "{ Profiles = {}; }"})
        read(text);
    EXPECT_EQ(listener->takeCount(), 8u);
    EXPECT_EQ(registry->setVersion(), 0u);
}

TEST_F(PBRegistryTest, LogsProfilesOfTheWrongKindAndGoesOn) {
    LogLines log;
    read("{ Profiles = (a, b); }");
    read("{ Profiles = { rtf = plain; txt = {}; }; }");
    EXPECT_EQ(names(registry), Names{"txt"});
    EXPECT_EQ(listener->takeCount(), 2u);
    using ::testing::MatchesRegex;
    EXPECT_THAT(log.lines,
                ElementsAre(MatchesRegex("Profiles Wrong kind of class! got: NS[A-Za-z]*Array"),
                            MatchesRegex("profile 'rtf' should be a dictionary! got: NS[A-Za-z]*String")));
}

TEST_F(PBRegistryTest, AFileDisablesOnlyItsOwnProfiles) {
    read("{ Profiles = { rtf = {type = old;}; txt = {}; }; DisabledProfiles = (rtf, html); }");
    EXPECT_EQ(names(registry), Names{"txt"});
    read("{ Profiles = { rtf = {type = new;}; html = {}; }; DisabledProfiles = rtf; }");
    EXPECT_EQ(names(registry), (Names{"html", "rtf", "txt"}));
    EXPECT_EQ(registry->setVersion(), 3u);
}

TEST_F(PBRegistryTest, FindsTheDeclarationsAmongABundlesResources) {
    TemporaryBundle plugIn("Formats"), silent("Silent");
    plugIn.write("Profiles.plist", "{ Profiles = { rtf = { \"reads text pboard\" = (val); }; }; }");
    for (NSBundle* bundle : {plugIn.bundle(), silent.bundle()}) registry->addProfilesFromBundle(bundle);
    EXPECT_EQ(names(registry), Names{"rtf"});
    EXPECT_EQ(registry->profileWithIdentifier(u"rtf"_ns)->bundle(), plugIn.bundle());
    EXPECT_EQ(listener->takeCount(), 2u);
}

TEST_F(PBRegistryTest, StartsWithTheLastFrameworkAndEndsWithTheFirstBundle) {
    TemporaryBundle one("StartOne"), two("StartTwo");
    NSBundle* held[] = {one.bundle(), two.bundle()};
    ASSERT_NE(held[0], held[1]);
    auto noting = makeTestRegistry();
    noting->notesBundles = true;
    noting->startRegistry();
    std::vector<NSBundle*> expected;
    for (NSArray* list : {NSBundle::allBundles(), NSBundle::allFrameworks()})
        for (id bundle : list) expected.push_back(static_cast<NSBundle*>(bundle));
    std::reverse(expected.begin(), expected.end());
    EXPECT_EQ(noting->bundles, expected);
    EXPECT_EQ(std::count(expected.begin(), expected.end(), NSBundle::mainBundle()), 1);
}

TEST_F(PBRegistryTest, OfTwoBundlesTheOneNearerTheFrontDeclaresTheProfile) {
    TemporaryBundle one("RivalOne"), two("RivalTwo");
    for (TemporaryBundle* bundle : {&one, &two})
        bundle->write("Profiles.plist", "{Profiles = {rival = {};};}");
    ASSERT_NE(one.bundle(), two.bundle());
    NSArray* all = NSBundle::allBundles();
    bool isOneFirst = all->indexOfObject(one.bundle()) < all->indexOfObject(two.bundle());
    registry->startRegistry();
    EXPECT_EQ(registry->profileWithIdentifier(u"rival"_ns)->bundle(),
              isOneFirst ? one.bundle() : two.bundle());
    std::uint32_t version = registry->setVersion();
    registry->startRegistry();
    EXPECT_EQ(registry->setVersion(), 2 * version);
}

TEST_F(PBRegistryTest, PostsAgainAfterAFileThatFailed) {
    auto failing = makeTestRegistry();
    listener->listen(PBProfilesDidChangeNotification, failing);
    failing->fails = true;
    EXPECT_THROW(
        failing->addProfilesFromPath_bundle(folder.write("p.plist", "{Profiles = {a = {};};}"), nullptr),
        NSException);
    EXPECT_THAT(listener->heard, IsEmpty());
    failing->fails = false;
    failing->addProfile(makeProfile(u"a"_ns, nullptr));
    EXPECT_EQ(listener->takeCount(), 1u);
}

TEST_F(PBRegistryTest, ARegistryMadeWithoutItsOwnInitialiserTakesProfilesToo) {
    auto members = NSDictionary::of({{u"a"_ns, makeProfile(u"a"_ns, nullptr)}});
    auto set = PBProfileSet::initWithParent_value_key_any_version_profiles(
        nullptr, nullptr, nullptr, false, 3, members, PBRegistry::classObject());
    auto* made = cast<PBRegistry>(set);
    made->addProfile(makeProfile(u"b"_ns, nullptr));
    EXPECT_EQ(names(made), (Names{"a", "b"}));
    EXPECT_EQ(made->setVersion(), 4u);
}

TEST_F(PBRegistryTest, LocalizesThroughTheNamedProfile) {
    TemporaryBundle plugIn("Formats");
    plugIn.write("Formats.strings", "\"_Rich\" = \"Reich\";");
    NSDictionary* entries = NSDictionary::of({{PBProfileStringsKey, u"Formats"_ns}});
    registry->addProfile(makeProfile(u"rtf"_ns, entries, plugIn.bundle()));
    const std::pair<NSString*, NSString*> cases[] = {
        {u"rtf"_ns, u"Reich"_ns}, {u"nobody"_ns, u"_Rich"_ns}, {nullptr, u"_Rich"_ns}};
    for (auto [name, expected] : cases)
        EXPECT_TRUE(isSame(registry->localize_usingProfileNamed(u"_Rich"_ns, name), expected)) << name;
}

}  // namespace
}  // namespace pelvor
