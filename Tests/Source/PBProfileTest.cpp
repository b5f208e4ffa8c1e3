// SPDX-License-Identifier: Apache-2.0
// Tests of profiles and of what their dictionaries become.
#include "PBProfile.h"

#include "Foundation/NSPasteboardTypes.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Prelude.h"
#include "ProfileFixture.h"

namespace pelvor {
namespace {

using namespace testing;

TEST(PBProfile, KeepsCopiesOfIdentifierAndEntries) {
    auto identifier = u"rtf"_ns->mutableCopy();
    auto entries = NSMutableDictionary::of({{u"name"_ns, u"Rich Text"_ns}, {u"strings"_ns, u"T"_ns}});
    PBProfile* profile = makeProfile(identifier, entries);
    identifier->appendString(u"d"_ns);
    entries->setObject_forKey(u"Poor Text"_ns, u"name"_ns);
    EXPECT_TRUE(isSame(profile->identifier(), u"rtf"_ns));
    EXPECT_TRUE(isSame(profile->valueForKey(PBProfileNameKey), u"Rich Text"_ns));
    EXPECT_TRUE(isSame(profile->objectForKey(PBProfileNameKey), u"Rich Text"_ns));
    EXPECT_TRUE(isSame(profile->stringsName(), u"T"_ns));
    for (PBProfile* lacking : {profile, makeProfile(u"empty"_ns, nullptr)}) {
        EXPECT_EQ(lacking->valueForKey(PBProfileTypeKey), nullptr);
        EXPECT_TRUE(!lacking->type() && !lacking->profileClass() && !lacking->bundle());
    }
}

TEST(PBProfile, ValuesNamedValBecomeThePDFTypeAtAnyDepth) {
    id inner = NSDictionary::of({{u"deep"_ns, NSArray::of({u"val"_ns, u"value"_ns})}});
    PBProfile* profile = makeProfile(u"p"_ns, NSDictionary::of({
                                                  {u"plain"_ns, u"val"_ns},
                                                  {u"val"_ns, u"Val"_ns},
                                                  {u"list"_ns, NSArray::of({inner, u"val"_ns})},
                                                  {u"string"_ns, NSStringPboardType},
                                                  {u"number"_ns, NSNumber::numberWithInt(5)},
                                              }));
    EXPECT_EQ(profile->valueForKey(u"plain"_ns), NSPDFPboardType);
    EXPECT_TRUE(isSame(profile->valueForKey(u"val"_ns), u"Val"_ns));
    id expected = NSDictionary::of({{u"deep"_ns, NSArray::of({NSPDFPboardType, u"value"_ns})}});
    EXPECT_TRUE(isSame(profile->valueForKey(u"list"_ns), NSArray::of({expected, NSPDFPboardType})));
    EXPECT_TRUE(isSame(profile->valueForKey(u"string"_ns), u"NSStringPboardType"_ns));
    EXPECT_TRUE(isSame(profile->valueForKey(u"number"_ns), NSNumber::numberWithInt(5)));
}

TEST(PBProfile, FindsTheLoadedClassThatItNames) {
    PBRegistry::classRecord.initializeIfNeeded();
    auto classFor = [](id name) {
        return makeProfile(u"p"_ns, NSDictionary::of({{u"class"_ns, name}}))->profileClass();
    };
    EXPECT_EQ(classFor(u"PBRegistry"_ns), PBRegistry::classObject());
    EXPECT_EQ(classFor(u"PBNoSuchClass"_ns), nullptr);
    EXPECT_EQ(classFor(NSNumber::numberWithInt(3)), nullptr);
}

TEST(PBProfile, LocalizesThroughItsTableOnly) {
    TemporaryBundle plugIn("Formats");
    plugIn.write("Formats.strings", "\"_Rich\" = \"Reich\";");
    plugIn.write("Localizable.strings", "\"_Rich\" = \"wrong table\";");
    NSString* rich = NSString::of(u"_Rich");
    const struct {
        id table;
        NSBundle* bundle;
        NSString *string, *expected;
    } cases[] = {
        {u"Formats"_ns, plugIn.bundle(), rich, u"Reich"_ns},
        {u"Formats"_ns, plugIn.bundle(), u"_Poor"_ns, u"_Poor"_ns},
        {u"NoSuchTable"_ns, plugIn.bundle(), rich, rich},
        {u"NoSuchTable"_ns, nullptr, rich, rich},  // the main bundle is asked
        {nullptr, plugIn.bundle(), rich, rich},
        {NSNumber::numberWithInt(1), plugIn.bundle(), rich, rich},
    };
    for (const auto& c : cases) {
        auto entries = NSMutableDictionary::dictionary();
        entries->setValue_forKey(c.table, PBProfileStringsKey);
        NSString* localized = makeProfile(u"p"_ns, entries, c.bundle)->localize(c.string);
        EXPECT_TRUE(isSame(localized, c.expected)) << localized << " of " << c.table;
        EXPECT_TRUE(cast<NSString>(c.table) || localized == c.string) << "the very string";
    }
}

TEST(PBProfile, DescriptionNamesClassAddressIdentifierAndEntries) {
    NSDictionary* entries = NSDictionary::of({{u"type"_ns, u"coder"_ns}});
    PBProfile* profile = makeProfile(u"plain text"_ns, entries);
    EXPECT_EQ(profile->description()->toUTF8(),
              "<PBProfile " + addressOf(profile) + ">: plain text = " + entries->description()->toUTF8());
    EXPECT_THAT(makeProfile(nullptr, nullptr)->description()->toUTF8(), EndsWith(">: (null) = (null)"));
}

TEST(PBProfile, SubclassesMakeTheirOwnKind) {
    static Class* subclass = Class::createSubclass("PBProfileTestKind", PBProfile::classObject());
    auto* profile = send<PBProfile*>(subclass, "profileWithIdentifier:dictionary:bundle:"_sel, u"p"_ns,
                                     NSDictionary::of({{u"type"_ns, u"val"_ns}}), nullptr);
    EXPECT_EQ(profile->class_(), subclass);
    EXPECT_EQ(send<id>(profile, "valueForKey:"_sel, PBProfileTypeKey), NSPDFPboardType);
}

NSString* unitIdentifier() { return u"unit"_ns; }

TEST(PBProfileAccess, ClassesHaveNoIdentifierUnlessTheyOverrideIt) {
    PBProfile::classRecord.initializeIfNeeded();
    static Class* unit = Class::createSubclass("PBProfileTestUnit", NSObject::classObject());
    unit->metaclass()->addMethods(
        {nullptr, {{"identifier"_sel, classImplementation<"identifier", &unitIdentifier>()}}, nullptr});
    EXPECT_EQ(send<id>(NSString::classObject(), "identifier"_sel), nullptr);
    EXPECT_EQ(send<id>(PBProfile::classObject(), "identifier"_sel), nullptr);
    EXPECT_EQ(NSObject_PBProfileAccess::identifier(), nullptr);
    EXPECT_TRUE(isSame(send<id>(unit, "identifier"_sel), u"unit"_ns));
}

}  // namespace
}  // namespace pelvor
