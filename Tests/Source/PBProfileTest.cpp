// SPDX-License-Identifier: Apache-2.0
// Tests of profiles and of what their dictionaries become.
#include "PBProfile.h"

#include "Foundation/NSPasteboardTypes.h"
#include "PBProfileKeys.h"
#include "ProfileFixture.h"
#include "TestClasses.h"

namespace {

TEST(PBProfile, KeepsCopiesOfIdentifierAndEntries) {
    auto identifier = u"rtf"_ns->mutableCopy();
    auto entries = NSMutableDictionary::of({{u"name"_ns, u"Rich Text"_ns}, {u"strings"_ns, u"T"_ns}});
    auto* profile = PBProfile::profileWithIdentifier_dictionary_bundle(identifier, entries, nullptr);
    identifier->appendString(u"d"_ns);
    entries->setObject_forKey(u"Poor Text"_ns, u"name"_ns);
    EXPECT_EQ(shown(profile->identifier(), profile->valueForKey(PBProfileNameKey),
                    profile->objectForKey(PBProfileNameKey), profile->stringsName()),
              "rtf Rich Text Rich Text T");
    for (PBProfile* lacking : {profile, makeProfile(u"empty"_ns, "none")}) {
        EXPECT_EQ(lacking->valueForKey(PBProfileTypeKey), nullptr);
        EXPECT_TRUE(!lacking->type() && !lacking->profileClass() && !lacking->bundle());
    }
}

TEST(PBProfile, ValuesNamedValBecomeThePDFTypeAtAnyDepth) {
    NSDictionary* entries = NSMutableDictionary::of({{u"number"_ns, NSNumber::numberWithInt(5)}});
    PBProfile* profile = makeProfile(u"p"_ns,
                                     "{plain = val; val = Val; string = NSStringPboardType;"
                                     " list = ({deep = (val, value);}, val);}");
    EXPECT_EQ(profile->valueForKey(u"plain"_ns), NSPDFPboardType);
    id expected = NSDictionary::of({{u"deep"_ns, NSArray::of({NSPDFPboardType, u"value"_ns})}});
    EXPECT_TRUE(isSame(profile->valueForKey(u"list"_ns), NSArray::of({expected, NSPDFPboardType})));
    EXPECT_EQ(shown(profile->valueForKey(u"val"_ns), profile->valueForKey(u"string"_ns)),
              "Val NSStringPboardType");
    profile = PBProfile::profileWithIdentifier_dictionary_bundle(u"p"_ns, entries, nullptr);
    EXPECT_TRUE(isSame(profile->valueForKey(u"number"_ns), NSNumber::numberWithInt(5)));
}

TEST(PBProfile, FindsTheLoadedClassThatItNames) {
    PBRegistry::classRecord.initializeIfNeeded();
    EXPECT_EQ(makeProfile(u"p"_ns, "{class = PBRegistry;}")->profileClass(), PBRegistry::classObject());
    for (const char* entries : {"{class = PBNoSuchClass;}", "{class = (3);}"})
        EXPECT_EQ(makeProfile(u"p"_ns, entries)->profileClass(), nullptr) << entries;
}

TEST(PBProfile, LocalizesThroughItsTableOnly) {
    TemporaryFolder folder;
    folder.write("Formats.bundle/Contents/Resources/Localizable.strings", "\"_Rich\" = \"wrong table\";");
    NSBundle* plugIn = makeBundle(folder, "Formats", "Formats.strings", "\"_Rich\" = \"Reich\";");
    NSString* rich = NSString::of(u"_Rich");
    auto localized = [&](const char* entries, NSBundle* bundle, NSString* string) {
        return makeProfile(u"p"_ns, entries, bundle)->localize(string);
    };
    EXPECT_EQ(shown(localized("{strings = Formats;}", plugIn, rich)), "Reich");
    EXPECT_EQ(shown(localized("{strings = Formats;}", plugIn, u"_Poor"_ns)), "_Poor");
    EXPECT_EQ(shown(localized("{strings = NoSuchTable;}", plugIn, rich)), "_Rich");
    EXPECT_EQ(shown(localized("{strings = NoSuchTable;}", nullptr, rich)), "_Rich") << "the main bundle's";
    for (const char* entries : {"{}", "{strings = (1);}"})
        EXPECT_EQ(localized(entries, plugIn, rich), rich) << "not the very string with " << entries;
}

TEST(PBProfile, DescriptionNamesClassAddressIdentifierAndEntries) {
    PBProfile* profile = makeProfile(u"plain text"_ns, "{type = coder;}");
    EXPECT_EQ(shown(profile),
              "<PBProfile " + addressOf(profile) + ">: plain text = " + shown(parsed("{type = coder;}")));
    EXPECT_THAT(shown(makeProfile(nullptr, "none")), EndsWith(">: (null) = (null)"));
}

NSString* unitIdentifier(NSObject*) { return u"unit"_ns; }

TEST(PBProfileAccess, ClassesHaveNoIdentifierUnlessTheyOverrideIt) {
    PBProfile::classRecord.initializeIfNeeded();
    static Class* unit = Class::createSubclass("PBProfileTestUnit", NSObject::classObject());
    addMethod<"identifier", &unitIdentifier>(unit->metaclass());
    for (Class* cls : {NSString::classObject(), PBProfile::classObject()})
        EXPECT_EQ(send<id>(cls, "identifier"_sel), nullptr);
    EXPECT_EQ(NSObject_PBProfileAccess::identifier(), nullptr);
    EXPECT_TRUE(isSame(send<id>(unit, "identifier"_sel), u"unit"_ns));
}

}  // namespace
