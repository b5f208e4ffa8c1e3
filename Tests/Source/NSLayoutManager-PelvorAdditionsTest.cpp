// SPDX-License-Identifier: Apache-2.0
#include "NSLayoutManager-PelvorAdditions.h"

#include "../Platform/Text/LaidOutText.h"
#include "BaseTextLibrary.h"
#include "Foundation/NSUserDefaults.h"
#include "Foundation/PlatformVersion.h"
#include "NSString-PelvorDrawingAdditions.h"
#include "Prelude.h"
#include "TestClasses.h"
#include "Text/NSColor.h"
#include "Text/NSTextAttachment.h"

namespace {

class LayoutManagerAdditions : public testing::Test {
  protected:
    LayoutManagerAdditions() { registerLibrary(baseTextLibrary); }
    ~LayoutManagerAdditions() { setPlatformVersion(1000); }

    static constexpr NSRange kNone{NSNotFound, 0};

  private:
    AutoreleasePool _pool;
};

TEST_F(LayoutManagerAdditions, FindLineFragments) {
    LaidOutText text(u"one two three\nfour"_ns, plain(), {{60, 1.0e7F}});
    NSLayoutManager* layout = text.layoutManager;
    EXPECT_EQ(characterRangeForFirstLineFragment(layout), (NSRange{0, 8}));
    EXPECT_EQ(characterRangeForLastLineFragment(layout), (NSRange{14, 4}));
    EXPECT_EQ(glyphRangeForLineFragmentContainingGlyphAtIndex(layout, 9), (NSRange{8, 6}));
    const float second = NSMinY(text.lineRect(8));
    EXPECT_EQ(
        glyphRangeForLineFragmentBelowVerticalOffset_inTextContainer(layout, second, text.containers[0]),
        (NSRange{8, 6}));
    EXPECT_EQ(
        glyphRangeForLineFragmentBelowVerticalOffset_inTextContainer(layout, second + 1, text.containers[0]),
        (NSRange{14, 4}));
    EXPECT_EQ(glyphRangeForLineFragmentBelowVerticalOffset_inTextContainer(layout, 500, text.containers[0]),
              kNone);
}

TEST_F(LayoutManagerAdditions, FindLineFragmentsOnPagesThatWereNotLaidOut) {
    for (float offset : {-5.0F, 0.0F, 500.0F}) {
        LaidOutText text(u"one two three four five\nsix\fseven"_ns, plain(),
                         {{40, 30}, {40, 200}, {40, 200}});
        const auto lineBelow = [&](std::size_t page) {
            return glyphRangeForLineFragmentBelowVerticalOffset_inTextContainer(text.layoutManager, offset,
                                                                                text.containers[page]);
        };
        EXPECT_EQ(lineBelow(0), offset < 500 ? (NSRange{0, 4}) : kNone) << offset;
        EXPECT_EQ(lineBelow(2), offset < 500 ? (NSRange{28, 5}) : kNone) << offset;
    }
}

TEST_F(LayoutManagerAdditions, JoinTheFragmentsOfALine) {
    LaidOutText text(u"one two three four five six"_ns, plain(), {{200, 1.0e7F}});
    text.containers[0]->setExclusionRects(NSArray::of({NSValue::valueWithRect({{60, 0}, {60, 10}})}));
    const NSRange left = text.lineRange(0), right = text.lineRange(NSMaxRange(left));
    ASSERT_EQ(NSMinY(text.lineRect(0)), NSMinY(text.lineRect(right.location)));
    for (NSUInteger unit : {left.location, right.location}) {
        NSRange whole;
        EXPECT_EQ(logicalLineFragmentRectForGlyphAtIndex_effectiveRange(text.layoutManager, unit, &whole),
                  (NSRect{{0, 0}, {200, text.lineRect(0).size.height}}));
        EXPECT_EQ(whole, NSUnionRange(left, right));
        EXPECT_EQ(glyphRangeForLogicalLineFragmentContainingGlyphAtIndex(text.layoutManager, unit), whole);
    }
}

TEST_F(LayoutManagerAdditions, FindCaretsAtOffsets) {
    LaidOutText text(u"abc\nde"_ns, plain());
    NSLayoutManager* layout = text.layoutManager;
    const auto first = [&](float x) { return characterIndexForFirstLineFragmentHorizontalOffset(layout, x); };
    EXPECT_EQ(first(-10), 0u);
    EXPECT_EQ(first(text.x(1) + 1), 1u);
    EXPECT_EQ(first(text.x(2) - 1), 2u) << "past the middle of the glyph";
    EXPECT_EQ(first(1000), 3u) << "before the line break";
    EXPECT_EQ(characterIndexForLastLineFragmentHorizontalOffset(layout, 1000), 6u);
    EXPECT_EQ(characterIndexForHorizontalOffset_inLineFragmentContainingGlyphAtIndex(layout, 0, 5), 4u);
}

TEST_F(LayoutManagerAdditions, HaveNothingToSayOfAnEmptyText) {
    LaidOutText text;
    NSLayoutManager* layout = text.layoutManager;
    EXPECT_EQ(characterRangeForFirstLineFragment(layout), (NSRange{0, 0}));
    EXPECT_EQ(characterRangeForLastLineFragment(layout), (NSRange{0, 0}));
    EXPECT_EQ(characterIndexForFirstLineFragmentHorizontalOffset(layout, 50), 0u);
    EXPECT_EQ(characterIndexForLastLineFragmentHorizontalOffset(layout, 50), 0u);
    EXPECT_FALSE(hasLayoutHole(layout));
    EXPECT_EQ(textViewForCharacterRange(layout, {0, 0}), nullptr);
    EXPECT_EQ(safeEffectiveRangeOfLineFragmentForGlyphAtIndex(layout, 0), kNone);
}

TEST_F(LayoutManagerAdditions, NeverLayOutInSafeLookUps) {
    LaidOutText text(u"a\nb\nc\nd\ne\n"_ns, plain(), {{100, 30}, {100, 30}, {100, 300}});
    NSLayoutManager* layout = text.layoutManager;
    NSRange range{5, 5};
    EXPECT_EQ(safeTextContainerForGlyphAtIndex_effectiveRange(layout, 0, &range), nullptr);
    EXPECT_EQ(safeGlyphRangeForTextContainer(layout, text.containers[0]), kNone);
    EXPECT_EQ(safeEffectiveRangeOfLineFragmentForGlyphAtIndex(layout, 0), kNone);
    EXPECT_EQ(getLastLayedTextContainerEffectiveRange(layout, &range), nullptr);
    EXPECT_EQ(glyphRangeForUnknownTextContainer_avoidLayout(layout, text.containers[1], true), kNone);
    EXPECT_TRUE(hasLayoutHole(layout));
    EXPECT_EQ(layout->firstUnlaidCharacterIndex(), 0u) << "none of them laid out anything";

    forceLayoutToCharacterAtIndex(layout, 4);
    EXPECT_EQ(safeTextContainerForGlyphAtIndex_effectiveRange(layout, 4, &range), text.containers[1].get());
    EXPECT_EQ(range, (NSRange{4, 2}));
    EXPECT_EQ(safeTextContainerForGlyphAtIndex_effectiveRange(layout, 9, &range), nullptr);
    EXPECT_EQ(safeUncheckedTextContainerForGlyphAtIndex_effectiveRange(layout, 9, &range), nullptr);
    EXPECT_EQ(safeGlyphRangeForTextContainer(layout, text.containers[0]), (NSRange{0, 4}));
    EXPECT_EQ(_containerRunGlyphRangeForTextContainer(layout, text.containers[2]), kNone);
    EXPECT_EQ(safeEffectiveRangeOfLineFragmentForGlyphAtIndex(layout, 2), (NSRange{2, 2}));
    EXPECT_EQ(getLastLayedTextContainerEffectiveRange(layout, &range), text.containers[1].get());
    EXPECT_EQ(containerRuns(layout)->count(), 6u);

    EXPECT_EQ(glyphRangeForUnknownTextContainer_avoidLayout(layout, text.containers[2], false),
              (NSRange{8, 2}));
    forceFinishLayout(layout);
    EXPECT_FALSE(hasLayoutHole(layout));
}

bool yes(Object*) { return true; }
bool no(Object*) { return false; }

TEST_F(LayoutManagerAdditions, InvalidateAroundAnAttachment) {
    auto attachment = NSTextAttachment::init();
    attachment->setBounds({{0, 0}, {10, 10}});
    LaidOutText text(u"one\ntwo \uFFFC\nthree\nfour"_ns, plain(), {{100, 60}, {100, 600}});
    NSLayoutManager* layout = text.layoutManager;
    text.storage->addAttribute_value_range(NSAttachmentAttributeName, attachment, {8, 1});
    forceFinishLayout(layout);
    const NSUInteger firstPage = layout->glyphRangeForTextContainer(text.containers[0]).length;

    PBAttachmentInvalidation* record = prepareInvalidateLayoutForAttachmentCharacterAtIndex(layout, 8);
    EXPECT_EQ(record->characterIndex, 8u);
    EXPECT_EQ(record->lineRange, (NSRange{4, 6}));
    EXPECT_EQ(record->followingRange, (NSRange{10, firstPage - 10})) << "a page has a fixed size";
    attachment->setBounds({{0, 0}, {30, 40}});
    commitInvalidateLayoutForAttachmentCharacter(layout, record);
    EXPECT_EQ(attachmentFrameForGlyphAtIndex(layout, 8).size, (NSSize{30, 40}));
    EXPECT_GT(text.lineRect(8).size.height, 40);
    EXPECT_LT(layout->glyphRangeForTextContainer(text.containers[0]).length, firstPage);

    const auto following = [&](Class* viewClass) {
        auto view = instanceOf(viewClass);
        text.containers[0]->setTextView(view);
        PBAttachmentInvalidation* other = prepareInvalidateLayoutForAttachmentCharacterAtIndex(layout, 8);
        const NSRange range = other->followingRange;
        commitInvalidateLayoutForAttachmentCharacter(layout, other);
        EXPECT_EQ(textViewForCharacterRange(layout, {0, 1}), view.get());
        text.containers[0]->setTextView(nullptr);
        return range;
    };
    EXPECT_EQ(following(makeClass<"isVerticallyResizable", &yes>("GrowingView")), kNone);
    EXPECT_NE(following(makeClass<"isVerticallyResizable", &no>("FixedView")), kNone);
    commitInvalidateLayoutForAttachmentCharacter(layout, nullptr);
}

TEST_F(LayoutManagerAdditions, RememberWhatDrawingChanged) {
    auto layout = NSLayoutManager::init();
    const auto begin = [&](bool screenFonts, bool ignores, double version) {
        setPlatformVersion(version);
        layout->setUsesScreenFonts(screenFonts);
        layout->setIgnoresAntialiasThreshold(ignores);
        const int bits = beginDrawingAsIfInTextView(layout);
        EXPECT_FALSE(layout->usesScreenFonts());
        EXPECT_EQ(layout->ignoresAntialiasThreshold(), ignores || version < 744);
        endDrawingAsIfInTextView(layout, bits);
        EXPECT_EQ(layout->usesScreenFonts(), screenFonts);
        EXPECT_EQ(layout->ignoresAntialiasThreshold(), ignores);
        return bits;
    };
    EXPECT_EQ(begin(false, false, 1000), 0);
    EXPECT_EQ(begin(true, false, 1000), 1);
    EXPECT_EQ(begin(false, false, 743.9), 2);
    EXPECT_EQ(begin(true, false, 743), 3);
    EXPECT_EQ(begin(true, true, 743), 1);
}

// MARK: Settings and views

Unretained<Object> theWindow = nullptr, theResponder = nullptr;
id windowOf(Object*) { return theWindow; }
id responderOf(Object*) { return theResponder; }
NSColor* active(Object*) { return NSColor::redColor(); }
NSColor* inactive(Object*) { return NSColor::grayColor(); }

TEST_F(LayoutManagerAdditions, ColourSelectionsByTheActiveWindow) {
    LaidOutText text(u"a"_ns, plain());
    auto windowObject = instanceOf(makeClass<"isKeyWindow", &yes>("KeyWindow"));
    addMethod<"firstResponder", &responderOf>(windowObject->isa());
    auto view = instanceOf(makeClass<"window", &windowOf>("ViewInWindow"));
    EXPECT_EQ(textSelectionColorForView(text.layoutManager, view), nullptr) << "the settings have no colours";
    Class* defaults = NSUserDefaults::classObject();
    addMethod<"activeSelectionColor", &active>(defaults);
    addMethod<"nonActiveSelectionColor", &inactive>(defaults);
    theWindow = windowObject;
    theResponder = view;
    EXPECT_EQ(shown(textSelectionColorForView(text.layoutManager, view)), shown(NSColor::grayColor()));
    text.containers[0]->setTextView(view);
    EXPECT_EQ(shown(textSelectionColorForView(text.layoutManager, view)), shown(NSColor::redColor()));
    text.containers[0]->setTextView(nullptr);
    EXPECT_FALSE(allowsLineFragmentRejection(text.layoutManager));
    addMethod<"allowsParagraphLayoutOptions", &yes>(NSTextStorage::classObject());
    EXPECT_TRUE(allowsLineFragmentRejection(text.layoutManager));
    EXPECT_TRUE(allowsMultipleTextContainers(text.layoutManager));
}

// MARK: The shared layout

TEST_F(LayoutManagerAdditions, MeasureStrings) {
    NSDictionary* small = inFont("DejaVuSans", 10);
    NSDictionary* large = inFont("DejaVuSans", 20);
    for (double version : {700.0, 1000.0}) {
        setPlatformVersion(version);
        const NSRect one = pelvorBoundingRectWithAttributes(u"Hamburg"_ns, small);
        const NSRect two = pelvorBoundingRectWithAttributes(u"Hamburg"_ns, large);
        EXPECT_GT(one.size.width, 40);
        EXPECT_NEAR(two.size.width, 2 * one.size.width, 0.3);
        EXPECT_NEAR(two.size.height, 2 * one.size.height, 0.3);
        EXPECT_EQ(pelvorBoundingRectWithAttributes(u"Hamburg"_ns, small), one);
    }
    setPlatformVersion(700);
    EXPECT_EQ(NSMinY(pelvorBoundingRectWithAttributes(u"Hamburg"_ns, small)),
              NSFont::fontWithName_size(u"DejaVuSans"_ns, 10)->descender() - 0.5F);
    EXPECT_EQ(pelvorBoundingRectWithAttributes(u"x"_ns, nullptr).origin.y, -0.5F);
}

TEST_F(LayoutManagerAdditions, KeepTheTextThatIsMeasuredAgain) {
    EXPECT_EQ(_PBUpdatedGlyphRangeForSharedLayout(u"abc"_ns, inFont("DejaVuSans", 10)), (NSRange{0, 3}));
    NSTextStorage* storage = _PBSharedMeasuringLayoutManager()->textStorage();
    unsigned edits = 0;
    auto listener = Listener::to(NSTextStorageDidProcessEditingNotification, storage);
    listener->reaction = [&] { edits = edits * 10 + storage->editedMask(); };
    _PBUpdatedGlyphRangeForSharedLayout(u"abc"_ns, inFont("DejaVuSans", 20));
    EXPECT_EQ(edits, 1u) << "the attributes alone";
    EXPECT_EQ(_PBUpdatedGlyphRangeForSharedLayout(u"abcd"_ns, nullptr), (NSRange{0, 4}));
    EXPECT_EQ(edits, 13u);
    EXPECT_EQ(_PBUpdatedGlyphRangeForSharedLayout(u""_ns, nullptr), (NSRange{0, 0}));
}

}  // namespace
