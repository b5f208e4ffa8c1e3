// SPDX-License-Identifier: Apache-2.0
// Tests of filtering profiles and of keeping filtered sets true to the registry.
#include "PBProfileSet.h"

#include "BaseLibrary.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Prelude.h"
#include "ProfileFixture.h"

namespace pelvor {
namespace {

using namespace testing;
using Names = std::set<std::string>;

// A registry of a few profiles, which is the shared one for the test.
class PBProfileSetTest : public ::testing::Test {
  protected:
    void SetUp() override {
        add(u"reader"_ns, {{PBProfileTypeKey, PBProfileDocumentReaderType}});
        add(u"writer"_ns, {{PBProfileTypeKey, PBProfileDocumentWriterType}});
        add(u"both"_ns,
            {{PBProfileTypeKey, NSArray::of({PBProfileDocumentReaderType, PBProfileDocumentWriterType})}});
        add(u"every"_ns, {{PBProfileTypeKey, u"*"_ns}});
        add(u"listed every"_ns, {{PBProfileTypeKey, NSArray::of({PBProfileCoderType, u"*"_ns})}});
        add(u"untyped"_ns, {{PBProfileNameKey, u"Nobody"_ns}});
    }
    void add(NSString* identifier, std::initializer_list<NSDictionaryEntry> entries) {
        registry->addProfile(makeProfile(identifier, NSDictionary::of(entries)));
    }

    Retained<PBRegistry> registry = PBRegistry::init();
    SharedRegistry shared{registry};
    const Names all{"both", "every", "listed every", "reader", "untyped", "writer"};
};

TEST_F(PBProfileSetTest, AnswersItsProfilesAndIdentifiers) {
    EXPECT_EQ(names(registry), all);
    EXPECT_EQ(registry->profiles()->count(), all.size());
    for (id profile : registry->profiles())
        EXPECT_EQ(registry->profileWithIdentifier(cast<PBProfile>(profile)->identifier()), profile);
    for (NSString* nobody : {u"nobody"_ns, static_cast<NSString*>(nullptr)})
        EXPECT_EQ(registry->profileWithIdentifier(nobody), nullptr);
}

TEST_F(PBProfileSetTest, AValueMatchesEqualEntriesMembersAndWildcards) {
    const std::pair<id, Names> cases[] = {
        {PBProfileDocumentReaderType, {"both", "every", "listed every", "reader"}},
        {PBProfileDocumentWriterType, {"both", "every", "listed every", "writer"}},
        {PBProfileSidebarType, {"every", "listed every"}},
        {nullptr, {"every", "listed every"}},
        {NSArray::of({PBProfileDocumentReaderType}), {"every", "listed every"}},
        {u"*"_ns, all},
    };
    for (const auto& [value, expected] : cases) {
        EXPECT_EQ(names(registry->profileDictionaryWithValue_forKey(value, PBProfileTypeKey)), expected)
            << value;
        EXPECT_EQ(names(registry->profilesOfType(value)), expected) << value;
    }
}

TEST_F(PBProfileSetTest, OneOfSomeValuesSuffices) {
    const std::pair<NSArray*, Names> cases[] = {
        {NSArray::of({PBProfileDocumentReaderType, PBProfileSidebarType}),
         {"both", "every", "listed every", "reader"}},
        {NSArray::of({PBProfileDocumentReaderType, PBProfileDocumentWriterType}),
         {"both", "every", "listed every", "reader", "writer"}},
        {NSArray::array(), {"every", "listed every"}},
        {nullptr, {"every", "listed every"}},
        {NSArray::of({PBProfileSidebarType, u"*"_ns}), all},
    };
    for (const auto& [values, expected] : cases) {
        EXPECT_EQ(names(registry->profileDictionaryWithAnyValue_forKey(values, PBProfileTypeKey)), expected)
            << values;
        EXPECT_EQ(names(registry->profilesWithAnyValue_forKey(values, PBProfileTypeKey)), expected) << values;
    }
}

TEST_F(PBProfileSetTest, AKeyMatchesWhateverTheEntry) {
    EXPECT_EQ(names(registry->profileDictionaryWithKey(PBProfileNameKey)), Names{"untyped"});
    EXPECT_EQ(names(registry->profilesWithKey(PBProfileTypeKey)),
              (Names{"both", "every", "listed every", "reader", "writer"}));
    EXPECT_EQ(names(registry->profilesWithKey(u"no such key"_ns)), Names{});
}

TEST_F(PBProfileSetTest, APathLeadsThroughDictionaries) {
    id plain = NSDictionary::of({{u"plain"_ns, NSDictionary::of({{u"extension"_ns, u"txt"_ns}})}});
    add(u"deep"_ns, {{PBProfileFormatsKey, plain}});
    add(u"flat"_ns, {{PBProfileFormatsKey, NSArray::of({u"plain"_ns})}});
    id toExtension = NSArray::of({PBProfileFormatsKey, u"plain"_ns, u"extension"_ns});
    const std::pair<NSArray*, Names> cases[] = {
        {NSArray::of({PBProfileFormatsKey, u"plain"_ns}), {"deep"}},
        {NSArray::of({PBProfileFormatsKey, u"plain"_ns, u"extension"_ns, u"case"_ns}), {}},
        {NSArray::of({PBProfileFormatsKey}), {"deep", "flat"}},
        {NSArray::array(), {}},
        {nullptr, {}},
    };
    for (const auto& [path, expected] : cases)
        EXPECT_EQ(names(registry->profilesWithKey(path)), expected) << path;
    EXPECT_EQ(names(registry->profilesWithValue_forKey(u"txt"_ns, toExtension)), Names{"deep"});
    EXPECT_EQ(_PBValueForKeyInProfile(nullptr, PBProfileTypeKey), nullptr);
}

// A profile whose entries are whatever they are now.
class PBTestChangingProfile : public PBProfile {
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
    add(u"text"_ns, {{PBProfileTypeKey, text}});
    add(u"list"_ns, {{PBProfileTypeKey, NSArray::of({text, PBProfilePaletteType})}});
    EXPECT_EQ(names(registry->profilesOfType(PBProfileCoderType)), (Names{"every", "listed every"}));
    changing->entry = PBProfileCoderType;
    text->appendString(u"er"_ns);
    EXPECT_EQ(names(registry->profilesOfType(PBProfileCoderType)),
              (Names{"changing", "every", "list", "listed every", "text"}));
}

// The registry knows without looking who has which text; a plain set looks at everyone.
TEST_F(PBProfileSetTest, TheRegistryFindsWhatAPlainSetFinds) {
    id texts[] = {u"a"_ns,
                  u"b"_ns,
                  u"*"_ns,
                  NSNumber::numberWithInt(1),
                  NSArray::of({u"a"_ns, u"b"_ns, u"a"_ns}),
                  NSArray::of({u"b"_ns, NSNumber::numberWithInt(1)}),
                  NSArray::of({u"*"_ns}),
                  NSArray::array(),
                  NSDictionary::of({{u"a"_ns, u"b"_ns}})};
    for (int i = 0; i < 200; ++i) {
        auto entries = NSMutableDictionary::dictionary();
        for (int key = 0; key < 12; ++key)
            if (unsigned choice = static_cast<unsigned>(i * 31 + key * 17) % 13; choice < std::size(texts))
                entries->setObject_forKey(texts[choice], NSString::stringWithFormat(u"key %d"_ns, key));
        registry->addProfile(makeProfile(NSString::stringWithFormat(u"profile %d"_ns, i % 150), entries));
        if (i % 20) continue;
        auto plain = PBProfileSet::initWithParent_value_key_any_version_profiles(
            nullptr, nullptr, nullptr, false, registry->setVersion(),
            registry->profileDictionaryWithValue_forKey(u"*"_ns, u"none"_ns));
        ASSERT_EQ(names(plain), names(registry));
        for (int number = 0; number < 12; ++number) {
            id key = NSString::stringWithFormat(u"key %d"_ns, number);
            if (number == 11) key = NSArray::of({u"key 3"_ns, u"a"_ns});
            EXPECT_EQ(names(registry->profilesWithKey(key)), names(plain->profilesWithKey(key))) << key;
            for (id value : texts) {
                EXPECT_EQ(names(registry->profilesWithValue_forKey(value, key)),
                          names(plain->profilesWithValue_forKey(value, key)))
                    << value << " under " << key;
                auto* values = NSArray::of({value, u"b"_ns});
                EXPECT_EQ(names(registry->profilesWithAnyValue_forKey(values, key)),
                          names(plain->profilesWithAnyValue_forKey(values, key)))
                    << values << " under " << key;
            }
        }
    }
}

TEST_F(PBProfileSetTest, ADerivedSetKnowsWhatItCameFrom) {
    auto* values = NSArray::of({PBProfileDocumentReaderType});
    PBProfileSet* byKey = registry->profilesWithKey(PBProfileTypeKey);
    PBProfileSet* byValue = byKey->profilesOfType(PBProfileDocumentReaderType);
    PBProfileSet* byAny = byValue->profilesWithAnyValue_forKey(values, PBProfileTypeKey);
    EXPECT_TRUE(byKey->parent() == registry && !byKey->value() && byKey->matchAnyValue());
    EXPECT_TRUE(byValue->parent() == byKey && !byValue->matchAnyValue() && byAny->matchAnyValue());
    EXPECT_TRUE(isSame(byValue->key(), PBProfileTypeKey));
    EXPECT_TRUE(isSame(byValue->value(), PBProfileDocumentReaderType));
    EXPECT_TRUE(isSame(byAny->value(), values));
    EXPECT_EQ(send<std::uint32_t>(byAny, "setVersion"_sel), 6u);
    EXPECT_TRUE(send<bool>(byAny, "isUpToDate"_sel));
}

TEST_F(PBProfileSetTest, FollowsTheRegistryThroughAChainAndStaysOvertaken) {
    PBProfileSet* typed = registry->profilesWithKey(PBProfileTypeKey);
    Retained<PBProfileSet> readers;
    {
        AutoreleasePool inner;  // the sets in between are held by those that came from them
        readers.set(registry->profilesWithKey(PBProfileTypeKey)->profilesOfType(PBProfileDocumentReaderType));
    }
    PBProfileSet* writers =
        typed->profilesWithAnyValue_forKey(NSArray::of({PBProfileDocumentWriterType}), PBProfileTypeKey);
    add(u"late"_ns, {{PBProfileTypeKey, PBProfileDocumentReaderType}});
    EXPECT_FALSE(readers->isUpToDate());
    EXPECT_NE(readers->profileWithIdentifier(u"late"_ns), nullptr);
    EXPECT_EQ(names(readers).count("late"), 1u);
    EXPECT_EQ(names(writers).count("late"), 0u);
    EXPECT_FALSE(readers->isUpToDate());
    EXPECT_EQ(readers->setVersion(), 6u);
    EXPECT_TRUE(registry->isUpToDate());
    PBProfileSet* fromOvertaken = typed->profilesOfType(PBProfileDocumentReaderType);
    EXPECT_EQ(names(fromOvertaken), names(readers));
    EXPECT_EQ(fromOvertaken->setVersion(), 6u) << "overtaken from its beginning";
}

TEST_F(PBProfileSetTest, AProfileThatIsReplacedLeavesTheSetsThatItNoLongerMatches) {
    PBProfileSet* readers = registry->profilesOfType(PBProfileDocumentReaderType);
    add(u"reader"_ns, {{PBProfileTypeKey, PBProfilePaletteType}});
    EXPECT_EQ(names(readers), (Names{"both", "every", "listed every"}));
}

TEST_F(PBProfileSetTest, ASetWithNoValueFiltersByTheKeyWhenItIsOvertaken) {
    PBProfileSet* set = registry->profilesWithValue_forKey(nullptr, PBProfileTypeKey);
    EXPECT_EQ(names(set), (Names{"every", "listed every"}));
    add(u"late"_ns, {{PBProfileTypeKey, PBProfileCoderType}});
    EXPECT_EQ(names(set), (Names{"both", "every", "late", "listed every", "reader", "writer"}));
}

TEST_F(PBProfileSetTest, MeasuresItselfByWhicheverRegistryIsShared) {
    PBProfileSet* readers = registry->profilesOfType(PBProfileDocumentReaderType);
    {
        auto other = PBRegistry::init();
        SharedRegistry sharedOther(other);
        EXPECT_FALSE(readers->isUpToDate());
        EXPECT_EQ(names(readers), (Names{"both", "every", "listed every", "reader"}));
        EXPECT_TRUE(registry->isUpToDate());
    }
    EXPECT_TRUE(readers->isUpToDate());
    SharedRegistry none(nullptr);
    EXPECT_FALSE(readers->isUpToDate());
    EXPECT_TRUE(PBProfileSet::init()->isUpToDate());
}

TEST_F(PBProfileSetTest, ASetWithoutParentLosesItsProfilesWhenItIsOvertaken) {
    auto registrysTwin = PBRegistry::init();
    SharedRegistry sharedTwin(registrysTwin);
    auto members = NSMutableDictionary::of({{u"a"_ns, makeProfile(u"a"_ns, nullptr)}});
    auto set = PBProfileSet::initWithParent_value_key_any_version_profiles(nullptr, nullptr, nullptr, false,
                                                                           0, members);
    members->removeAllObjects();
    auto empty = PBProfileSet::init();
    EXPECT_EQ(names(set), Names{"a"});
    EXPECT_EQ(names(empty), Names{});
    registrysTwin->addProfile(makeProfile(u"b"_ns, nullptr));
    EXPECT_EQ(names(set), Names{});
    EXPECT_EQ(names(empty->profilesOfType(u"*"_ns)), Names{});
    EXPECT_EQ(set->profileWithIdentifier(u"a"_ns), nullptr);
}

TEST_F(PBProfileSetTest, CopiesKeyAndValue) {
    auto key = u"type"_ns->mutableCopy();
    auto values = NSMutableArray::of({PBProfileCoderType});
    PBProfileSet* set = registry->profilesWithAnyValue_forKey(values, key);
    key->appendString(u"s"_ns);
    values->addObject(PBProfileDocumentReaderType);
    add(u"late"_ns, {{PBProfileTypeKey, PBProfileCoderType}});
    EXPECT_EQ(names(set), (Names{"every", "late", "listed every"}));
}

TEST_F(PBProfileSetTest, AValueThatIsNoArrayCannotBeAnyOfSome) {
    auto set = PBProfileSet::initWithParent_value_key_any_version_profiles(
        registry, PBProfileCoderType, PBProfileTypeKey, true, 0, nullptr);
    EXPECT_THROW(set->profiles(), NSException);
}

TEST_F(PBProfileSetTest, DescriptionGivesProfilesVersionAndParent) {
    auto set = PBProfileSet::init();
    EXPECT_EQ(set->description()->toUTF8(),
              "<PBProfileSet " + addressOf(set) + "> = (null) version=0 parent=(null)");
    EXPECT_THAT(registry->profilesOfType(PBProfileSidebarType)->description()->toUTF8(),
                AllOf(StartsWith("<PBProfileSet 0x"), HasSubstr(" version=6 parent=<PBRegistry 0x")));
}

}  // namespace
}  // namespace pelvor
