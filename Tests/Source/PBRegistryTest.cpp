// SPDX-License-Identifier: Apache-2.0
// Tests of declaration files and of the registry that reads them.
#include "PBRegistry.h"

#include "BaseLibrary.h"
#include "PBProfileKeys.h"
#include "ProfileFixture.h"

namespace {

// Notes which bundles it is asked to read instead of reading them, or fails at each profile.
class PBTestRegistry : public PBRegistry, PBRegistry::HiddenCreators {
    PELVOR_CLASS(PBTestRegistry, PBRegistry);

  public:
    void addProfilesFromBundle(NSBundle* bundle) override { bundles.push_back(bundle); }
    void addProfile(PBProfile* profile) override {
        if (fails) throw NSException(NSGenericException, "full");
        PBRegistry::addProfile(profile);
    }
    bool fails = false;
    std::vector<NSBundle*> bundles;
};

PELVOR_DEFINE_CLASS(PBTestRegistry, baseLibrary) {}

struct PBRegistryTest : ::testing::Test {
    void read(const std::string& text, NSBundle* bundle = nullptr, PBRegistry* reader = nullptr) {
        (reader ? reader : registry.get())
            ->addProfilesFromPath_bundle(NSString::ofUTF8(folder.write("Profiles.plist", text)), bundle);
    }

    TemporaryFolder folder;
    Retained<PBRegistry> registry = PBRegistry::init();
    SharedRegistry shared{registry};
    Retained<Listener> listener = Listener::to(PBProfilesDidChangeNotification, registry);
    Retained<PBTestRegistry> ofTheTest = Retained<PBTestRegistry>::retaining(
        cast<PBTestRegistry>(PBRegistry::init(PBTestRegistry::classObject()).get()));
};

TEST_F(PBRegistryTest, OneRegistryIsSharedUntilItIsReplaced) {
    EXPECT_EQ(PBRegistry::sharedRegistry(), registry.get());
    std::uint32_t count = registry->retainCount();
    PBRegistry::setSharedRegistry(registry);
    EXPECT_EQ(registry->retainCount(), count);
    PBRegistry::setSharedRegistry(nullptr);
    EXPECT_EQ(PBRegistry::sharedRegistry(), nullptr);
    (void)make<PBTestRegistry>();
    EXPECT_EQ(PBRegistry::sharedRegistry(), nullptr) << "a subclass made it anew";
    EXPECT_EQ(registry->retainCount(), count - 1);
}

TEST_F(PBRegistryTest, EveryProfileThatIsAddedCountsAndPostsIfItHasAnIdentifier) {
    for (PBProfile* unfit : {makeProfile(nullptr, "none"), static_cast<PBProfile*>(nullptr)})
        EXPECT_THROW(registry->addProfile(unfit), NSException);
    EXPECT_EQ(shown(registry->setVersion(), listener->takeCount()), "0 0");
    PBProfile *first = makeProfile(u"rtf"_ns, "none"), *second = makeProfile(u"rtf"_ns, "none");
    for (PBProfile* profile : {first, second}) registry->addProfile(profile);
    EXPECT_EQ(registry->profileWithIdentifier(u"rtf"_ns), second);
    EXPECT_EQ(listener->heard.back()->userInfo(), nullptr);
    EXPECT_EQ(shown(names(registry), registry->setVersion(), listener->takeCount()), "rtf 2 2");
}

TEST_F(PBRegistryTest, AFileCountsItsProfilesAndPostsOnce) {
    NSBundle* plugIn = makeBundle(folder, "Formats");
    read("{ Profiles = { a = {type = coder;}; b = {}; c = {}; d = {}; e = {}; }; }", plugIn);
    EXPECT_EQ(shown(registry->setVersion(), listener->takeCount()), "5 1");
    PBProfile* profile = registry->profileWithIdentifier(u"a"_ns);
    EXPECT_TRUE(isSame(profile->type(), PBProfileCoderType));
    EXPECT_EQ(profile->bundle(), plugIn);
}

TEST_F(PBRegistryTest, LogsProfilesOfTheWrongKindAndGoesOn) {
    LogLines log;
    read("{ Profiles = (a, b); }");
    read("{ Profiles = { rtf = plain; txt = {}; }; }");
    EXPECT_EQ(shown(names(registry), listener->takeCount()), "txt 2");
    using ::testing::MatchesRegex;
    EXPECT_THAT(log.lines,
                ElementsAre(MatchesRegex("Profiles Wrong kind of class! got: NS[A-Za-z]*Array"),
                            MatchesRegex("profile 'rtf' should be a dictionary! got: NS[A-Za-z]*String")));
}

TEST_F(PBRegistryTest, LogsBundleFileAndReasonOfDeclarationsThatCannotBeReadAndPostsAllTheSame) {
    LogLines log;
    NSBundle* plugIn = makeBundle(folder, "Formats");
    for (const char* text : {"{ Profiles = {\n", "(Profiles)", "", "{ Other = {}; }"}) read(text, plugIn);
    const char* reasons[] = {"line 2, column 1: the text ends where there should be a key or '}'",
                             "they are a list, but no dictionary", "there are no bytes"};
    ASSERT_EQ(log.lines.size(), std::size(reasons));
    for (std::size_t i = 0; i < std::size(reasons); ++i)
        EXPECT_THAT(log.lines[i], AllOf(StartsWith("bundle " + plugIn->bundlePath()->toUTF8()),
                                        HasSubstr("/Profiles.plist cannot be read: "), EndsWith(reasons[i])));
    ASSERT_EQ(mkfifo(folder.path("pipe.plist").c_str(), 0600), 0);
    for (NSString* path : {static_cast<NSString*>(nullptr), NSString::ofUTF8(folder.path("pipe.plist"))})
        registry->addProfilesFromPath_bundle(path, nullptr);
    EXPECT_THAT(log.lines.back(), EndsWith("it is no regular file"));
    registry->addProfilesFromPath_bundle(NSString::ofUTF8(folder.path("missing.plist")), nullptr);
    EXPECT_THAT(log.lines.back(), EndsWith("missing.plist cannot be read: the file cannot be read: "
                                           "the file does not exist"));
    registry->addProfilesFromBundle(nullptr);
    EXPECT_EQ(shown(registry->setVersion(), listener->takeCount()), "0 8");
}

TEST_F(PBRegistryTest, AFileDisablesOnlyItsOwnProfiles) {
    read("{ Profiles = { rtf = {type = old;}; txt = {}; }; DisabledProfiles = (rtf, html); }");
    EXPECT_EQ(names(registry), "txt");
    LogLines log;
    read("{ Profiles = { rtf = {type = new;}; html = {}; }; DisabledProfiles = rtf; }");
    EXPECT_THAT(log.lines, ElementsAre(StartsWith("'DisabledProfiles' should be an array! got: NS")));
    EXPECT_EQ(shown(names(registry), registry->setVersion()), "html rtf txt 3");
}

TEST_F(PBRegistryTest, FindsTheDeclarationsAmongABundlesResources) {
    NSBundle* plugIn = makeBundle(folder, "Formats", "Profiles.plist",
                                  "{ Profiles = { rtf = { \"reads text pboard\" = (val); }; }; }");
    for (NSBundle* bundle : {plugIn, makeBundle(folder, "Silent")}) registry->addProfilesFromBundle(bundle);
    EXPECT_EQ(shown(names(registry), listener->takeCount()), "rtf 2");
    EXPECT_EQ(registry->profileWithIdentifier(u"rtf"_ns)->bundle(), plugIn);
}

TEST_F(PBRegistryTest, StartsWithTheLastFrameworkAndEndsWithTheFirstBundle) {
    ASSERT_NE(makeBundle(folder, "StartOne"), makeBundle(folder, "StartTwo"));
    ofTheTest->startRegistry();
    std::vector<NSBundle*> expected;
    for (NSArray* list : {NSBundle::allBundles(), NSBundle::allFrameworks()})
        for (id bundle : list) expected.push_back(static_cast<NSBundle*>(bundle));
    std::reverse(expected.begin(), expected.end());
    EXPECT_EQ(ofTheTest->bundles, expected);
    EXPECT_EQ(std::count(expected.begin(), expected.end(), NSBundle::mainBundle()), 1);
}

TEST_F(PBRegistryTest, PostsAgainAfterAFileThatFailed) {
    listener->listen(PBProfilesDidChangeNotification, ofTheTest);
    ofTheTest->fails = true;
    EXPECT_THROW(read("{Profiles = {a = {};};}", nullptr, ofTheTest), NSException);
    EXPECT_THAT(listener->heard, IsEmpty());
    ofTheTest->fails = false;
    ofTheTest->addProfile(makeProfile(u"a"_ns, "none"));
    EXPECT_EQ(listener->takeCount(), 1u);
}

TEST_F(PBRegistryTest, ARegistryMadeWithoutItsOwnInitialiserTakesProfilesToo) {
    auto members = NSDictionary::of({{u"a"_ns, makeProfile(u"a"_ns, "none")}});
    auto set = PBProfileSet::initWithParent_value_key_any_version_profiles(
        nullptr, nullptr, nullptr, false, 3, members, PBRegistry::classObject());
    auto* made = cast<PBRegistry>(set);
    made->addProfile(makeProfile(u"b"_ns, "none"));
    EXPECT_EQ(shown(names(made), made->setVersion()), "a b 4");
}

TEST_F(PBRegistryTest, LocalizesThroughTheNamedProfile) {
    NSBundle* plugIn = makeBundle(folder, "Formats", "Formats.strings", "\"_Rich\" = \"Reich\";");
    registry->addProfile(makeProfile(u"rtf"_ns, "{strings = Formats;}", plugIn));
    expectAll({"rtf -> Reich", "nobody -> _Rich", "none -> _Rich"}, [this](const std::string& name) {
        return registry->localize_usingProfileNamed(u"_Rich"_ns, parsed(name));
    });
}

}  // namespace
