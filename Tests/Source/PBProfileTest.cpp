// SPDX-License-Identifier: Apache-2.0
// Tests of profiles and of what their dictionaries become.
#include "PBProfile.h"

#include <gtest/gtest.h>

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSPasteboardTypes.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "ProfileFixture.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

using testing::isSame;
using testing::makeProfile;
using testing::TemporaryBundle;

TEST(PBProfile, KeepsCopiesOfIdentifierAndEntries) {
    AutoreleasePool pool;
    auto identifier = u"rtf"_ns->mutableCopy();
    auto entries = NSMutableDictionary::of({{u"name"_ns, u"Rich Text"_ns}});
    PBProfile* profile = makeProfile(identifier, entries);
    identifier->appendString(u"d"_ns);
    entries->setObject_forKey(u"Poor Text"_ns, u"name"_ns);
    EXPECT_TRUE(isSame(profile->identifier(), u"rtf"_ns));
    EXPECT_TRUE(isSame(profile->valueForKey(PBProfileNameKey), u"Rich Text"_ns));
    EXPECT_TRUE(isSame(profile->objectForKey(PBProfileNameKey), u"Rich Text"_ns));
    EXPECT_EQ(profile->valueForKey(PBProfileTypeKey), nullptr);
    EXPECT_EQ(profile->bundle(), nullptr);
}

TEST(PBProfile, HasNothingWithoutADictionary) {
    AutoreleasePool pool;
    PBProfile* profile = makeProfile(u"empty"_ns, nullptr);
    EXPECT_EQ(profile->valueForKey(PBProfileTypeKey), nullptr);
    EXPECT_EQ(profile->type(), nullptr);
    EXPECT_EQ(profile->profileClass(), nullptr);
    EXPECT_EQ(profile->stringsName(), nullptr);
}

TEST(PBProfile, ValuesNamedValBecomeThePDFTypeAtAnyDepth) {
    AutoreleasePool pool;
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
    AutoreleasePool pool;
    PBRegistry::classRecord.initializeIfNeeded();
    auto classFor = [](id name) {
        return makeProfile(u"p"_ns, NSDictionary::of({{u"class"_ns, name}}))->profileClass();
    };
    EXPECT_EQ(classFor(u"PBRegistry"_ns), PBRegistry::classObject());
    EXPECT_EQ(classFor(u"PBNoSuchClass"_ns), nullptr);
    EXPECT_EQ(classFor(NSNumber::numberWithInt(3)), nullptr);
}

TEST(PBProfile, TypeAndStringsNameAreItsEntries) {
    AutoreleasePool pool;
    id types = NSArray::of({PBProfileDocumentReaderType, PBProfileDocumentWriterType});
    PBProfile* profile =
        makeProfile(u"p"_ns, NSDictionary::of({{u"type"_ns, types}, {u"strings"_ns, u"T"_ns}}));
    EXPECT_TRUE(isSame(profile->type(), types));
    EXPECT_TRUE(isSame(profile->stringsName(), u"T"_ns));
}

TEST(PBProfile, LocalizesThroughItsTableOnly) {
    AutoreleasePool pool;
    TemporaryBundle plugIn("Formats");
    plugIn.write("Formats.strings", "\"_Rich\" = \"Reich\";");
    plugIn.write("Localizable.strings", "\"_Rich\" = \"wrong table\";");
    auto localized = [&](id table, NSString* string) {
        auto entries = NSMutableDictionary::dictionary();
        if (table) entries->setObject_forKey(table, PBProfileStringsKey);
        return makeProfile(u"p"_ns, entries, plugIn.bundle())->localize(string);
    };
    EXPECT_TRUE(isSame(localized(u"Formats"_ns, u"_Rich"_ns), u"Reich"_ns));
    EXPECT_TRUE(isSame(localized(u"Formats"_ns, u"_Poor"_ns), u"_Poor"_ns));
    EXPECT_TRUE(isSame(localized(u"NoSuchTable"_ns, u"_Rich"_ns), u"_Rich"_ns));
    NSString* untouched = NSString::of(u"_Rich");
    EXPECT_EQ(localized(nullptr, untouched), untouched);
    EXPECT_EQ(localized(NSNumber::numberWithInt(1), untouched), untouched);
}

TEST(PBProfile, AsksTheMainBundleWhenItHasNone) {
    AutoreleasePool pool;
    PBProfile* profile = makeProfile(u"p"_ns, NSDictionary::of({{PBProfileStringsKey, u"NoSuchTable"_ns}}));
    EXPECT_TRUE(isSame(profile->localize(u"_Rich"_ns), u"_Rich"_ns));
}

TEST(PBProfile, DescriptionNamesClassAddressIdentifierAndEntries) {
    AutoreleasePool pool;
    NSDictionary* entries = NSDictionary::of({{u"type"_ns, u"coder"_ns}});
    PBProfile* profile = makeProfile(u"plain text"_ns, entries);
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(profile));
    EXPECT_EQ(profile->description()->toUTF8(),
              std::string("<PBProfile ") + address + ">: plain text = " + entries->description()->toUTF8());
    PBProfile* bare = makeProfile(nullptr, nullptr);
    EXPECT_TRUE(bare->description()->hasSuffix(u">: (null) = (null)"_ns)) << bare;
}

TEST(PBProfile, SubclassesMakeTheirOwnKind) {
    AutoreleasePool pool;
    static Class* subclass = Class::createSubclass("PBProfileTestKind", PBProfile::classObject());
    auto* profile = send<PBProfile*>(subclass, "profileWithIdentifier:dictionary:bundle:"_sel, u"p"_ns,
                                     NSDictionary::of({{u"type"_ns, u"val"_ns}}), nullptr);
    EXPECT_EQ(profile->class_(), subclass);
    EXPECT_EQ(send<id>(profile, "valueForKey:"_sel, PBProfileTypeKey), NSPDFPboardType);
}

NSString* unitIdentifier() { return u"unit"_ns; }

TEST(PBProfileAccess, ClassesHaveNoIdentifierUnlessTheyOverrideIt) {
    AutoreleasePool pool;
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
