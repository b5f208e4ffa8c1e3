// SPDX-License-Identifier: Apache-2.0
// Tests of filtering profiles and of keeping filtered sets true to the registry.
#include "PBProfileSet.h"

#include "BaseLibrary.h"
#include "PBProfileKeys.h"
#include "ProfileFixture.h"

namespace {

// A registry of a few profiles, which is the shared one for the test.
struct PBProfileSetTest : ::testing::Test {
    PBProfileSetTest() {
        add(u"reader"_ns, "{type = reader;}");
        add(u"writer"_ns, "{type = writer;}");
        add(u"both"_ns, "{type = (reader, writer);}");
        add(u"every"_ns, "{type = '*';}");
        add(u"listed"_ns, "{type = (coder, '*');}");
        add(u"untyped"_ns, "{name = Nobody;}");
    }
    void add(NSString* identifier, const char* entries) {
        registry->addProfile(makeProfile(identifier, entries));
    }

    // What a filter finds, as a set and as a dictionary.
    std::string found(PBProfileSet* set, NSDictionary* profiles) {
        EXPECT_EQ(names(profiles), names(set));
        return names(set);
    }

    Retained<PBRegistry> registry = PBRegistry::init();
    SharedRegistry shared{registry};
};

TEST_F(PBProfileSetTest, AValueMatchesEqualEntriesMembersAndWildcards) {
    EXPECT_EQ(registry->profiles()->count(), 6u);
    EXPECT_EQ(registry->profileWithIdentifier(nullptr), nullptr);
    expectAll({"reader -> both every listed reader", "sidebar -> every listed", "none -> every listed",
               "(reader) -> every listed", "'*' -> both every listed reader untyped writer"},
              [this](const std::string& text) {
                  id value = parsed(text);
                  return found(registry->profilesOfType(value),
                               registry->profileDictionaryWithValue_forKey(value, PBProfileTypeKey));
              });
}

TEST_F(PBProfileSetTest, OneOfSomeValuesSuffices) {
    expectAll({"(reader, sidebar) -> both every listed reader",
               "(reader, writer) -> both every listed reader writer", "() -> every listed",
               "none -> every listed", "(sidebar, '*') -> both every listed reader untyped writer"},
              [this](const std::string& text) {
                  auto* values = cast<NSArray>(parsed(text));
                  return found(registry->profilesWithAnyValue_forKey(values, PBProfileTypeKey),
                               registry->profileDictionaryWithAnyValue_forKey(values, PBProfileTypeKey));
              });
}

TEST_F(PBProfileSetTest, AKeyMatchesWhateverTheEntryAndAPathLeadsThroughDictionaries) {
    add(u"deep"_ns, "{formats = {plain = {extension = txt;};};}");
    add(u"flat"_ns, "{formats = (plain);}");
    expectAll({"name -> untyped", "type -> both every listed reader writer", "'no such key' -> ",
               "(formats, plain) -> deep", "(formats, plain, extension, case) -> ", "(formats) -> deep flat",
               "() -> ", "none -> "},
              [this](const std::string& key) {
                  return found(registry->profilesWithKey(parsed(key)),
                               registry->profileDictionaryWithKey(parsed(key)));
              });
    id path = parsed("(formats, plain, extension)");
    EXPECT_EQ(names(registry->profilesWithValue_forKey(u"txt"_ns, path)), "deep");
    EXPECT_EQ(_PBValueForKeyInProfile(nullptr, PBProfileTypeKey), nullptr);
    auto ofNoArray = PBProfileSet::initWithParent_value_key_any_version_profiles(
        registry, PBProfileCoderType, PBProfileTypeKey, true, 0, nullptr);
    EXPECT_THROW(ofNoArray->profiles(), NSException);
}

// A profile whose entries are whatever they are now.
class PBTestChangingProfile : public PBProfile, PBProfile::HiddenCreators {
    PELVOR_CLASS(PBTestChangingProfile, PBProfile);

  public:
    id valueForKey(id key) override { return entry; }
    id entry = nullptr;
};
PELVOR_DEFINE_CLASS(PBTestChangingProfile, baseLibrary) {}

TEST_F(PBProfileSetTest, AsksProfilesWhoseEntriesMayChange) {
    auto changing = cast<PBTestChangingProfile>(PBProfile::profileWithIdentifier_dictionary_bundle(
        u"changing"_ns, nullptr, nullptr, PBTestChangingProfile::classObject()));
    auto text = u"cod"_ns->mutableCopy();
    registry->addProfile(changing);
    for (id entry : {id(text), id(NSArray::of({text, u"palette"_ns}))})
        registry->addProfile(PBProfile::profileWithIdentifier_dictionary_bundle(
            entry == text ? u"text"_ns : u"list"_ns, NSDictionary::of({{PBProfileTypeKey, entry}}), nullptr));
    EXPECT_EQ(names(registry->profilesOfType(u"coder"_ns)), "every listed");
    changing->entry = u"coder"_ns;
    text->appendString(u"er"_ns);
    EXPECT_EQ(names(registry->profilesOfType(u"coder"_ns)), "changing every list listed text");
}

TEST_F(PBProfileSetTest, ADerivedSetKnowsWhatItCameFrom) {
    auto* values = NSArray::of({u"reader"_ns});
    PBProfileSet* byKey = registry->profilesWithKey(PBProfileTypeKey);
    PBProfileSet* byValue = byKey->profilesOfType(u"reader"_ns);
    PBProfileSet* byAny = byValue->profilesWithAnyValue_forKey(values, PBProfileTypeKey);
    auto origin = [](PBProfileSet* set) {
        return shown(set->key(), set->value(), set->matchAnyValue(), set->setVersion(), set->isUpToDate());
    };
    EXPECT_TRUE(byKey->parent() == registry && byValue->parent() == byKey);
    EXPECT_EQ(origin(byKey), "type (null) 1 6 1");
    EXPECT_EQ(origin(byValue), "type reader 0 6 1");
    EXPECT_EQ(origin(byAny), shown("type", values, "1 6 1"));
}

TEST_F(PBProfileSetTest, FollowsTheRegistryThroughAChainAndStaysOvertaken) {
    PBProfileSet* typed = registry->profilesWithKey(PBProfileTypeKey);
    Retained<PBProfileSet> readers;
    {
        AutoreleasePool inner;  // the sets in between are held by those that came from them
        readers.set(registry->profilesWithKey(PBProfileTypeKey)->profilesOfType(u"reader"_ns));
    }
    PBProfileSet* writers = typed->profilesWithAnyValue_forKey(NSArray::of({u"writer"_ns}), PBProfileTypeKey);
    add(u"late"_ns, "{type = reader;}");
    EXPECT_FALSE(readers->isUpToDate());
    EXPECT_NE(readers->profileWithIdentifier(u"late"_ns), nullptr);
    EXPECT_EQ(names(readers), "both every late listed reader");
    EXPECT_EQ(names(writers), "both every listed writer");
    EXPECT_FALSE(readers->isUpToDate());
    EXPECT_EQ(readers->setVersion(), 6u);
    EXPECT_TRUE(registry->isUpToDate());
    PBProfileSet* fromOvertaken = typed->profilesOfType(u"reader"_ns);
    EXPECT_EQ(names(fromOvertaken), names(readers));
    EXPECT_EQ(fromOvertaken->setVersion(), 6u) << "overtaken from its beginning";
}

TEST_F(PBProfileSetTest, AnOvertakenSetFiltersByWhatItWasMadeOf) {
    auto key = u"type"_ns->mutableCopy();
    auto values = NSMutableArray::of({u"coder"_ns});
    PBProfileSet* readers = registry->profilesOfType(u"reader"_ns);
    PBProfileSet* coders = registry->profilesWithAnyValue_forKey(values, key);
    PBProfileSet* ofNoValue = registry->profilesWithValue_forKey(nullptr, PBProfileTypeKey);
    EXPECT_EQ(names(ofNoValue), "every listed");
    key->appendString(u"s"_ns);
    values->addObject(u"reader"_ns);
    add(u"late"_ns, "{type = coder;}");
    EXPECT_EQ(names(coders), "every late listed");
    EXPECT_EQ(names(ofNoValue), "both every late listed reader writer") << "the key suffices now";
    add(u"reader"_ns, "{type = palette;}");
    EXPECT_EQ(names(readers), "both every listed") << "a profile was replaced";
}

TEST_F(PBProfileSetTest, MeasuresItselfByWhicheverRegistryIsShared) {
    PBProfileSet* readers = registry->profilesOfType(u"reader"_ns);
    {
        SharedRegistry other(PBRegistry::init().get());
        EXPECT_FALSE(readers->isUpToDate());
        EXPECT_EQ(names(readers), "both every listed reader");
        EXPECT_TRUE(registry->isUpToDate());
    }
    EXPECT_TRUE(readers->isUpToDate());
    SharedRegistry none(nullptr);
    EXPECT_FALSE(readers->isUpToDate());
    EXPECT_TRUE(PBProfileSet::init()->isUpToDate());
}

TEST_F(PBProfileSetTest, ASetWithoutParentLosesItsProfilesWhenItIsOvertaken) {
    auto twin = PBRegistry::init();
    SharedRegistry sharedTwin(twin);
    auto members = NSMutableDictionary::of({{u"a"_ns, makeProfile(u"a"_ns, "none")}});
    auto set = PBProfileSet::initWithParent_value_key_any_version_profiles(nullptr, nullptr, nullptr, false,
                                                                           0, members);
    members->removeAllObjects();
    auto empty = PBProfileSet::init();
    EXPECT_EQ(names(set), "a");
    EXPECT_EQ(names(empty), "");
    twin->addProfile(makeProfile(u"b"_ns, "none"));
    EXPECT_EQ(names(set), "");
    EXPECT_EQ(names(empty->profilesOfType(u"*"_ns)), "");
    EXPECT_EQ(set->profileWithIdentifier(u"a"_ns), nullptr);
}

TEST_F(PBProfileSetTest, DescriptionGivesProfilesVersionAndParent) {
    auto set = PBProfileSet::init();
    EXPECT_EQ(shown(set.get()), "<PBProfileSet " + addressOf(set) + "> = (null) version=0 parent=(null)");
    EXPECT_THAT(shown(registry->profilesOfType(u"sidebar"_ns)),
                AllOf(StartsWith("<PBProfileSet 0x"), HasSubstr(" version=6 parent=<PBRegistry 0x")));
}

}  // namespace
