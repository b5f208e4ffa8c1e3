// SPDX-License-Identifier: Apache-2.0
// Tests of the additions to fonts, and of what stands in for an older platform.
#include "NSFont-PelvorAdditions.h"

#include "BaseTextLibrary.h"
#include "Foundation/PlatformVersion.h"
#include "PantherFont.h"
#include "PantherObject.h"
#include "Prelude.h"
#include "TestClasses.h"
#include "Text/NSFontDescriptor.h"

namespace {

using Additions = NSFont_PelvorAdditions;

struct PlatformVersionScope {
    explicit PlatformVersionScope(double version) { setPlatformVersion(version); }
    ~PlatformVersionScope() { setPlatformVersion(1000); }
};

NSFont* sans(float size) { return NSFont::fontWithName_size(u"DejaVuSans"_ns, size); }

TEST(FontAdditions, FallBackToFontsThatExist) {
    registerLibrary(baseTextLibrary);
    EXPECT_EQ(Additions::lucidaGrandeFontOfSize(9), NSFont::systemFontOfSize(9));
    EXPECT_EQ(Additions::boldLucidaGrandeFontOfSize(9), NSFont::boldSystemFontOfSize(9));
    EXPECT_EQ(Additions::helveticaFontOfSize(9), NSFont::userFontOfSize(9));
    EXPECT_EQ(Additions::monospaceFontOfSize(9), NSFont::systemFontOfSize(9));
    EXPECT_EQ(send<NSFont*>(NSFont::classObject(), "menuItemFont"_sel)->pointSize(), 14);
}

TEST(FontAdditions, GoThroughPropertyLists) {
    auto fontOf = [](NSDictionary* stored) { return Additions::initWithPropertyListRepresentation(stored); };
    NSFont* font = NSFont::fontWithName_size(u"DejaVuSerif-Bold+Oblique"_ns, 10.5f);
    NSDictionary* stored = propertyListRepresentation(font);
    EXPECT_EQ(shown(stored->objectForKey(u"fontName"_ns), stored->objectForKey(u"pointSize"_ns)),
              "DejaVuSerif-Bold+Oblique 10.5");
    EXPECT_EQ(fontOf(stored), font);
    EXPECT_EQ(fontOf(NSDictionary::of(
                  {{u"fontName"_ns, u"Lost"_ns}, {u"pointSize"_ns, NSNumber::numberWithInt(20)}})),
              NSFont::userFontOfSize(20));
    EXPECT_EQ(fontOf(nullptr), NSFont::userFontOfSize(0));
}

TEST(FontAdditions, AddDescriptorAttributes) {
    NSFont* font = sans(12);
    auto adding = [&](id value, NSString* key) {
        return fontByAddingFontDescriptorAttributes(font, NSDictionary::of({{key, value}}));
    };
    EXPECT_EQ(fontByAddingFontDescriptorAttributes(font, nullptr), font);
    EXPECT_EQ(fontByAddingFontDescriptorAttributes(font, NSDictionary::dictionary()), font);
    EXPECT_EQ(fontByAddingFontDescriptorAttributes(font, fontDescriptorAttributes(font)), font);
    EXPECT_EQ(adding(u"DejaVuSerif"_ns, NSFontNameAttribute),
              NSFont::fontWithName_size(u"DejaVuSerif"_ns, 12));
    EXPECT_EQ(adding(u"Lost"_ns, NSFontNameAttribute), nullptr);
    EXPECT_EQ(adding(NSNumber::numberWithInt(40), NSFontSizeAttribute),
              nullptr);  // the size stays, so this is another
    NSFont* featured = fontByAddingFontFeature_value(font, 37, 1);
    ASSERT_TRUE(featured);
    EXPECT_EQ(PBFontDescriptorAttributesValueForSetting(fontDescriptorAttributes(featured), 37), 1);
    EXPECT_EQ(fontByAddingFontFeature_value(featured, 37, 1), featured);
    for (double version : {743.9, 1.0}) {
        PlatformVersionScope old(version);
        EXPECT_EQ(fontByAddingFontDescriptorAttributes(font, nullptr), nullptr);
    }
    PlatformVersionScope first(744);
    EXPECT_EQ(fontByAddingFontFeature_value(font, 37, 1), featured);
}

TEST(FontAdditions, KeepOneSettingForEachType) {
    auto adding = [](NSDictionary* attributes, int type, int selector) {
        return PBFontDescriptorAttributesByAddingFeatureSetting(attributes, type, selector);
    };
    auto settingsOf = [](NSDictionary* attributes) {
        return cast<NSArray>(attributes->objectForKey(PBFontDescriptorAttributeName_FeatureSettings));
    };
    NSDictionary* one = adding(nullptr, 6, 1);
    NSDictionary* two = adding(adding(one, 21, 0), 6, 2);
    EXPECT_EQ(settingsOf(one)->count(), 1u);
    EXPECT_EQ(settingsOf(two)->count(), 2u);
    EXPECT_EQ(_PBIndexOfFontFeatureSettingType(settingsOf(two), 21), 1u);
    EXPECT_EQ(_PBIndexOfFontFeatureSettingType(settingsOf(two), 5), NSNotFound);
    EXPECT_EQ(_PBIndexOfFontFeatureSettingType(nullptr, 5), NSNotFound);
    auto value = [](NSDictionary* attributes, int type) {
        return PBFontDescriptorAttributesValueForSetting(attributes, type);
    };
    EXPECT_EQ(shown(value(one, 6), value(two, 6), value(two, 5), value(nullptr, 5)), "1 2 0 0");
    EXPECT_EQ(PBFontDescriptorAttributesByRemovingFeatureSetting(two, 5), two);
    EXPECT_EQ(PBFontDescriptorAttributesByRemovingFeatureSetting(nullptr, 5), nullptr);
    NSDictionary* less = PBFontDescriptorAttributesByRemovingFeatureSetting(two, 6);
    EXPECT_EQ(shown(settingsOf(less)->count(), value(less, 21), settingsOf(two)->count()), "1 0 2");
}

// An object that knows the older operation.
void takeValue_forKey(NSObject*, id value, NSString* key) {
    throw NSException("Taken", shown(key, static_cast<NSString*>(value)));
}

// What posing changes stays for the rest of a process, so this has a process of its own. Returns what
// differs.
std::string poseAt(double version, bool isToPose) {
    registerLibrary(baseTextLibrary);
    Class* storeClass = makeClass<"takeValue:forKey:", &takeValue_forKey>("OldStore");
    setPlatformVersion(version);
    for (Class* cls : {static_cast<Class*>(PantherFont::classObject()), PantherObject::classObject()})
        send<void>(cls, "performPosing"_sel);
    AutoreleasePool pool;
    Class* fontClass = classNamed("NSFont");
    if (fontClass != (isToPose ? PantherFont::classObject() : NSFont::classObject())) return "the font class";
    auto sizeFor = [&](NSControlSize control) {
        return send<float>(fontClass, "systemFontSizeForControlSize:"_sel, control);
    };
    if (sizeFor(NSMiniControlSize) != (isToPose ? 11 : 9)) return "the mini size";
    if (sizeFor(NSRegularControlSize) != 13) return "the regular size";
    if (send<NSFont*>(fontClass, "menuBarFontOfSize:"_sel, 17.0f)->pointSize() != 17)
        return "the menu bar font";
    // The root class has the operation, and with it every object that lacks one of its own.
    auto store = instanceOf(storeClass);
    if (store->respondsToSelector("setValue:forKey:"_sel) != isToPose) return "setValue:forKey:";
    if (!isToPose) return "";
    const std::string raised =
        RAISED(send<void>(store, "setValue:forKey:"_sel, static_cast<id>(u"red"_ns), u"colour"_ns));
    return raised == "Taken: colour red" ? "" : raised;
}

void endWith(const std::string& difference) {
    std::fprintf(stderr, "%s\n", difference.c_str());
    std::_Exit(difference.empty() ? 0 : 1);
}

TEST(PantherCompatibilityTest, StandsInOnOldPlatformsOnly) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(endWith(poseAt(742.9, true)), ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(endWith(poseAt(743, false)), ::testing::ExitedWithCode(0), "");
}

}  // namespace
