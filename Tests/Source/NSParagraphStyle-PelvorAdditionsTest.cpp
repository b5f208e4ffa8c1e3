// SPDX-License-Identifier: Apache-2.0
#include "NSParagraphStyle-PelvorAdditions.h"

#include "BaseTextLibrary.h"
#include "Foundation/PlatformVersion.h"
#include "Prelude.h"

namespace {

class ParagraphStylesAsLists : public testing::Test {
  protected:
    ParagraphStylesAsLists() { registerLibrary(baseTextLibrary); }
    ~ParagraphStylesAsLists() { setPlatformVersion(1000); }

    static std::string keysOf(NSDictionary* list) {
        return list->allKeys()->componentsJoinedByString(u" "_ns)->toUTF8();
    }
    static Retained<NSMutableParagraphStyle> read(NSDictionary* list) {
        return cast<NSMutableParagraphStyle>(
            NSParagraphStyle_PelvorAdditions::initWithPropertyListRepresentation(list));
    }
    static Retained<NSTextTab> readTab(NSDictionary* list) {
        return NSTextTab_PropertyListSerializing::initWithPropertyListRepresentation(list);
    }

  private:
    AutoreleasePool _pool;
};

TEST_F(ParagraphStylesAsLists, HoldAllProperties) {
    auto style = NSMutableParagraphStyle::init();
    style->setAlignment(NSCenterTextAlignment);
    style->setBaseWritingDirection(NSWritingDirectionRightToLeft);
    style->setLineBreakMode(NSLineBreakByTruncatingMiddle);
    style->setDefaultTabInterval(1);
    style->setFirstLineHeadIndent(2);
    style->setHeadIndent(3);
    style->setTailIndent(-4);
    style->setLineHeightMultiple(1.5F);
    style->setLineSpacing(5);
    style->setMaximumLineHeight(6);
    style->setMinimumLineHeight(7);
    style->setParagraphSpacing(8);
    style->setParagraphSpacingBefore(9);
    style->addTabStop(NSTextTab::initWithType_location(NSRightTabStopType, 20).get());
    style->addTabStop(NSTextTab::initWithType_location(NSDecimalTabStopType, 10).get());
    NSDictionary* list = propertyListRepresentation(style);
    EXPECT_EQ(
        keysOf(list),
        "alignment baseWritingDirection defaultTabInterval firstLineHeadIndent headIndent lineBreakMode "
        "lineHeightMultiple lineSpacing maximumLineHeight minimumLineHeight paragraphSpacing "
        "paragraphSpacingBefore tailIndent tabStops");
    EXPECT_TRUE(read(list)->isEqual(style));
    EXPECT_EQ(keysOf(propertyListRepresentation(NSParagraphStyle::defaultParagraphStyle())), keysOf(list))
        << "written whether they are set or not";
}

TEST_F(ParagraphStylesAsLists, ReadWhatIsThere) {
    auto style = read(NSDictionary::of({{u"headIndent"_ns, u"12.5"_ns}, {u"alignment"_ns, u"2"_ns}}));
    EXPECT_EQ(style->headIndent(), 12.5F) << "strings hold numbers";
    EXPECT_EQ(style->alignment(), NSCenterTextAlignment);
    EXPECT_EQ(style->lineHeightMultiple(), 1) << "never below 1";
    EXPECT_EQ(style->baseWritingDirection(), NSWritingDirectionNatural);
    EXPECT_EQ(read(NSDictionary::of({{u"lineHeightMultiple"_ns, NSNumber::numberWithFloat(2)}}))
                  ->lineHeightMultiple(),
              2);
    auto tabs = read(
        NSDictionary::of({{u"tabStops"_ns, NSArray::of({NSDictionary::of({{u"location"_ns, u"9"_ns}}),
                                                        NSDictionary::of({{u"location"_ns, u"4"_ns}})})}}));
    EXPECT_EQ(shown(tabs->tabStops()->componentsJoinedByString(u" "_ns)), "9L 4L") << "in their order";
}

TEST_F(ParagraphStylesAsLists, WriteTabsForBothKindsOfPlatforms) {
    const auto keys = [](NSTextTab* tab) { return keysOf(propertyListRepresentation(tab)); };
    auto left = NSTextTab::initWithType_location(NSLeftTabStopType, 5);
    auto right = NSTextTab::initWithType_location(NSRightTabStopType, 5);
    auto decimal = NSTextTab::initWithType_location(NSDecimalTabStopType, 5);
    EXPECT_EQ(keys(left), "location");
    EXPECT_EQ(keys(right), "location tabStopType alignment");
    EXPECT_EQ(keys(decimal), "location tabStopType alignment options");
    setPlatformVersion(742.9);
    EXPECT_EQ(keys(decimal), "location tabStopType");
}

TEST_F(ParagraphStylesAsLists, ReadTabsAsThePlatformHasThem) {
    NSDictionary* onlyType =
        NSDictionary::of({{u"location"_ns, u"7"_ns}, {u"tabStopType"_ns, NSNumber::numberWithInt(3)}});
    NSDictionary* both = NSDictionary::of({{u"tabStopType"_ns, u"2"_ns}, {u"alignment"_ns, u"1"_ns}});
    EXPECT_EQ(shown(readTab(onlyType)), "7L");
    EXPECT_EQ(shown(readTab(both)), "0R");
    EXPECT_EQ(readTab(onlyType)->options()->count(), 0u);
    setPlatformVersion(700);
    EXPECT_EQ(shown(readTab(onlyType)), "7D");
    EXPECT_EQ(shown(readTab(both)), "0C");
}

extern Library hostStyleLibrary;

// A style as hosts have it, with values of their own.
class HostStyle : public NSMutableParagraphStyle {
    PELVOR_CLASS(HostStyle, NSMutableParagraphStyle);
    PELVOR_INHERITED_CREATORS(init, initWithCoder);

  public:
    id customValueKeys() { return _custom; }
    void setCustomValueKeys(id custom) { _custom.set(custom); }
    NSTextTab* firstLineHeadIndentTextTab() { return indentTab; }
    Retained<NSTextTab> indentTab;

  private:
    Retained<Object> _custom;
};
PELVOR_DEFINE_CLASS(HostStyle, hostStyleLibrary) {
    methods.instance<"customValueKeys", &HostStyle::customValueKeys>();
    methods.instance<"setCustomValueKeys:", &HostStyle::setCustomValueKeys>();
    methods.instance<"firstLineHeadIndentTextTab", &HostStyle::firstLineHeadIndentTextTab>();
}
constexpr Library* kDependencies[] = {&baseTextLibrary};
constinit Library hostStyleLibrary{"TestHostStyle", kDependencies, kClassesOf<HostStyle>, {}};

TEST_F(ParagraphStylesAsLists, KeepTheHostsValues) {
    auto style = make<HostStyle>();
    EXPECT_THAT(keysOf(propertyListRepresentation(style)), testing::Not(HasSubstr("customValueKeys")));
    style->setCustomValueKeys(u"mine"_ns);
    NSDictionary* list = propertyListRepresentation(style);
    EXPECT_THAT(keysOf(list), EndsWith("tailIndent customValueKeys tabStops"));
    auto same = cast<HostStyle>(
        NSParagraphStyle_PelvorAdditions::initWithPropertyListRepresentation(list, HostStyle::classObject()));
    ASSERT_TRUE(same);
    EXPECT_TRUE(u"mine"_ns->isEqual(same->customValueKeys()));
}

// MARK: Looking up tab stops

struct Stops {
    std::vector<std::pair<NSTextTabType, float>> tabs = {};
    float firstIndent = 0, indent = 0, interval = 0;
    NSWritingDirection direction = NSWritingDirectionNatural;
    float location = 0, limit = 400;
};

struct Row {
    const char* name;
    Stops stops;
    const char* tab;
};

class TabLookUp : public testing::TestWithParam<Row> {
    AutoreleasePool _pool;
};

TEST_P(TabLookUp, FindsTheStopThatATabAdvancesTo) {
    registerLibrary(baseTextLibrary);
    const Stops& stops = GetParam().stops;
    auto style = NSMutableParagraphStyle::init();
    auto tabs = NSMutableArray::init();
    for (auto [type, location] : stops.tabs)
        tabs->addObject(NSTextTab::initWithType_location(type, location).get());
    style->setTabStops(tabs);
    style->setFirstLineHeadIndent(stops.firstIndent);
    style->setHeadIndent(stops.indent);
    style->setDefaultTabInterval(stops.interval);
    style->setBaseWritingDirection(stops.direction);
    EXPECT_EQ(shown(textTabForGlyphLocation_writingDirection_maxLocation(
                  style, stops.location, NSWritingDirectionNatural, stops.limit)),
              GetParam().tab);
}

constexpr auto kLeft = NSLeftTabStopType;
constexpr auto kRight = NSRightTabStopType;
constexpr auto kToLeft = NSWritingDirectionRightToLeft;

INSTANTIATE_TEST_SUITE_P(
    Rows, TabLookUp,
    testing::Values(
        Row{"FallbackInterval", {.location = 10}, "36L"}, Row{"OnAStopMovesOn", {.location = 36}, "72L"},
        Row{"Interval", {.interval = 50, .location = 120}, "150L"},
        Row{"NegativeInterval", {.interval = -5, .location = 1}, "36L"},
        Row{"BeyondTheLimit", {.location = 10, .limit = 36}, "(null)"},
        Row{"ToTheLeft", {.direction = kToLeft, .location = 10}, "36R"},
        Row{"FirstIndent", {.firstIndent = 20, .indent = 10, .location = 5}, "20L"},
        Row{"Indent", {.indent = 30, .location = 5}, "30L"},
        Row{"TabBeforeIndent", {.tabs = {{kRight, 20}}, .indent = 30, .location = 5}, "20R"},
        Row{"TabBehindIndent", {.tabs = {{kRight, 40}}, .indent = 30, .location = 5}, "30L"},
        Row{"Explicit", {.tabs = {{kLeft, 20}, {kRight, 90}}, .location = 20}, "90R"},
        Row{"InTheirOrder", {.tabs = {{kLeft, 50}, {kLeft, 30}, {kLeft, 60}}, .location = 10}, "50L"},
        Row{"PastTheLast", {.tabs = {{kLeft, 50}}, .location = 50}, "86L"},
        Row{"StopsFromTheIndent", {.tabs = {{kLeft, 50}}, .indent = 60, .location = 60}, "96L"},
        Row{"PulledBack", {.tabs = {{kRight, 500}}, .location = 10}, "399.999R"},
        Row{"NotPulledBack", {.tabs = {{kLeft, 500}}, .location = 10}, "(null)"},
        Row{"NotPulledBackToTheLeft",
            {.tabs = {{kRight, 500}}, .direction = kToLeft, .location = 10},
            "(null)"},
        Row{"PulledBackToTheLeft",
            {.tabs = {{kLeft, 500}}, .direction = kToLeft, .location = 10},
            "399.999L"},
        Row{"SmallIntervalFarAway", {.interval = 1.0e-30F, .location = 10}, "10L"}),
    [](const auto& info) { return info.param.name; });

TEST_F(ParagraphStylesAsLists, AdvanceToTheHostsIndentTab) {
    auto style = make<HostStyle>();
    const auto at = [&](float location) {
        return shown(textTabForGlyphLocation_writingDirection_maxLocation(style, location,
                                                                          NSWritingDirectionNatural, 400));
    };
    style->indentTab = NSTextTab::initWithType_location(NSCenterTabStopType, 15);
    EXPECT_EQ(at(10), "15C");
    EXPECT_EQ(at(15), "36L");
    style->indentTab = NSTextTab::initWithType_location(NSCenterTabStopType, 0);
    EXPECT_EQ(at(0), "0C");
}

TEST_F(ParagraphStylesAsLists, AddUpStopsInSinglePrecision) {
    auto style = NSMutableParagraphStyle::init();
    style->setDefaultTabInterval(0.1F);
    float stop = 0;
    while (stop <= 33.3F) stop += 0.1F;
    EXPECT_EQ(
        textTabForGlyphLocation_writingDirection_maxLocation(style, 33.3F, NSWritingDirectionNatural, 400)
            ->location(),
        stop);
}

}  // namespace
