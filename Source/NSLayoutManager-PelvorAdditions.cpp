// SPDX-License-Identifier: Apache-2.0
#include "NSLayoutManager-PelvorAdditions.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "BaseTextLibrary.h"
#include "Foundation/NSString.h"
#include "Foundation/NSUserDefaults.h"
#include "Foundation/PlatformVersion.h"
#include "NSCharacterSet-PelvorAdditions.h"
#include "PBRangeUtil.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSColor.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"

namespace pelvor {
namespace {

constexpr double kLastVersionWithThreshold = 743;
constexpr int kRestoresScreenFonts = 1;
constexpr int kRestoresThreshold = 2;

void defineAdditions(MethodTable<NSLayoutManager>& methods) {
    methods.instance<"allowsLineFragmentRejection", &allowsLineFragmentRejection>();
    methods.instance<"allowsMultipleTextContainers", &allowsMultipleTextContainers>();
    methods.instance<"textSelectionColorForView:", &textSelectionColorForView>();
    methods.instance<"characterRangeForFirstLineFragment", &characterRangeForFirstLineFragment>();
    methods.instance<"characterRangeForLastLineFragment", &characterRangeForLastLineFragment>();
    methods.instance<"characterRangeForLineFragmentContainingGlyphAtIndex:",
                     &characterRangeForLineFragmentContainingGlyphAtIndex>();
    methods.instance<"glyphRangeForLineFragmentContainingGlyphAtIndex:",
                     &glyphRangeForLineFragmentContainingGlyphAtIndex>();
    methods.instance<"glyphRangeForLogicalLineFragmentContainingGlyphAtIndex:",
                     &glyphRangeForLogicalLineFragmentContainingGlyphAtIndex>();
    methods.instance<"logicalLineFragmentRectForGlyphAtIndex:effectiveRange:",
                     &logicalLineFragmentRectForGlyphAtIndex_effectiveRange>();
    methods.instance<"glyphRangeForLineFragmentBelowVerticalOffset:inTextContainer:",
                     &glyphRangeForLineFragmentBelowVerticalOffset_inTextContainer>();
    methods.instance<"characterIndexForHorizontalOffset:inLineFragmentContainingGlyphAtIndex:",
                     &characterIndexForHorizontalOffset_inLineFragmentContainingGlyphAtIndex>();
    methods.instance<"characterIndexForFirstLineFragmentHorizontalOffset:",
                     &characterIndexForFirstLineFragmentHorizontalOffset>();
    methods.instance<"characterIndexForLastLineFragmentHorizontalOffset:",
                     &characterIndexForLastLineFragmentHorizontalOffset>();
    methods.instance<"textViewForCharacterRange:", &textViewForCharacterRange>();
    methods.instance<"hasLayoutHole", &hasLayoutHole>();
    methods.instance<"forceLayoutToCharacterAtIndex:", &forceLayoutToCharacterAtIndex>();
    methods.instance<"forceFinishLayout", &forceFinishLayout>();
    methods.instance<"attachmentFrameForGlyphAtIndex:", &attachmentFrameForGlyphAtIndex>();
    methods.instance<"prepareInvalidateLayoutForAttachmentCharacterAtIndex:",
                     &prepareInvalidateLayoutForAttachmentCharacterAtIndex>();
    methods.instance<"commitInvalidateLayoutForAttachmentCharacter:",
                     &commitInvalidateLayoutForAttachmentCharacter>();
    methods.instance<"invalidateLayoutForAttachmentCharacterAtIndex:",
                     &invalidateLayoutForAttachmentCharacterAtIndex>();
    methods.instance<"beginDrawingAsIfInTextView", &beginDrawingAsIfInTextView>();
    methods.instance<"endDrawingAsIfInTextView:", &endDrawingAsIfInTextView>();
    methods.instance<"drawBreak:withCharacterRange:lineFragmentRect:usedRect:withOrigin:direction:",
                     &drawBreak_withCharacterRange_lineFragmentRect_usedRect_withOrigin_direction>();
}

void defineInternals(MethodTable<NSLayoutManager>& methods) {
    methods.instance<"containerRuns", &containerRuns>();
    methods.instance<"_containerRunGlyphRangeForTextContainer:", &_containerRunGlyphRangeForTextContainer>();
    methods.instance<"safeGlyphRangeForTextContainer:", &safeGlyphRangeForTextContainer>();
    methods.instance<"safeTextContainerForGlyphAtIndex:effectiveRange:",
                     &safeTextContainerForGlyphAtIndex_effectiveRange>();
    methods.instance<"safeUncheckedTextContainerForGlyphAtIndex:effectiveRange:",
                     &safeUncheckedTextContainerForGlyphAtIndex_effectiveRange>();
    methods.instance<"safeEffectiveRangeOfLineFragmentForGlyphAtIndex:",
                     &safeEffectiveRangeOfLineFragmentForGlyphAtIndex>();
    methods.instance<"getLastLayedTextContainerEffectiveRange:", &getLastLayedTextContainerEffectiveRange>();
    methods.instance<"glyphRangeForUnknownTextContainer:avoidLayout:",
                     &glyphRangeForUnknownTextContainer_avoidLayout>();
}

}  // namespace

constinit const Category NSLayoutManager_PelvorAdditions_category =
    Category::of<NSLayoutManager, defineAdditions>("PelvorAdditions");
constinit const Category NSLayoutManager_PBInternalsExposed_category =
    Category::of<NSLayoutManager, defineInternals>("PBInternalsExposed");

// MARK: What the text and the host allow

bool allowsLineFragmentRejection(NSLayoutManager* layoutManager) {
    requireArgument(layoutManager, "allowsLineFragmentRejection", "the layout manager");
    const SEL question = "allowsParagraphLayoutOptions"_sel;
    id storage = layoutManager->textStorage();
    return storage && storage->respondsToSelector(question) && send<bool>(storage, question);
}

bool allowsMultipleTextContainers(NSLayoutManager* layoutManager) {
    requireArgument(layoutManager, "allowsMultipleTextContainers", "the layout manager");
    return true;
}

NSColor* textSelectionColorForView(NSLayoutManager* layoutManager, id view) {
    requireArgument(layoutManager, "textSelectionColorForView:", "the layout manager");
    id window = send<id>(view, "window"_sel);
    const bool isActive = window && send<bool>(window, "isKeyWindow"_sel) &&
                          send<bool>(layoutManager, "layoutManagerOwnsFirstResponderInWindow:"_sel, window);
    const SEL color = isActive ? "activeSelectionColor"_sel : "nonActiveSelectionColor"_sel;
    id defaults = NSUserDefaults::standardUserDefaults();
    return defaults->respondsToSelector(color) ? send<NSColor*>(defaults, color) : nullptr;
}

// MARK: Line fragments

NSRange glyphRangeForLineFragmentContainingGlyphAtIndex(NSLayoutManager* layoutManager, NSUInteger index) {
    requireArgument(layoutManager, "glyphRangeForLineFragmentContainingGlyphAtIndex:", "the layout manager");
    NSRange glyphs;
    layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(index, &glyphs);
    return glyphs;
}

NSRange characterRangeForLineFragmentContainingGlyphAtIndex(NSLayoutManager* layoutManager,
                                                            NSUInteger index) {
    requireArgument(layoutManager,
                    "characterRangeForLineFragmentContainingGlyphAtIndex:", "the layout manager");
    return layoutManager->characterRangeForGlyphRange_actualGlyphRange(
        glyphRangeForLineFragmentContainingGlyphAtIndex(layoutManager, index), nullptr);
}

NSRange characterRangeForFirstLineFragment(NSLayoutManager* layoutManager) {
    requireArgument(layoutManager, "characterRangeForFirstLineFragment", "the layout manager");
    if (layoutManager->numberOfGlyphs() == 0) return {0, 0};
    return characterRangeForLineFragmentContainingGlyphAtIndex(layoutManager, 0);
}

NSRange characterRangeForLastLineFragment(NSLayoutManager* layoutManager) {
    requireArgument(layoutManager, "characterRangeForLastLineFragment", "the layout manager");
    const NSUInteger count = layoutManager->numberOfGlyphs();
    return count ? characterRangeForLineFragmentContainingGlyphAtIndex(layoutManager, count - 1)
                 : NSRange{0, 0};
}

NSRect logicalLineFragmentRectForGlyphAtIndex_effectiveRange(NSLayoutManager* layoutManager, NSUInteger index,
                                                             NSRange* effectiveRange) {
    requireArgument(layoutManager,
                    "logicalLineFragmentRectForGlyphAtIndex:effectiveRange:", "the layout manager");
    NSRange line, containerRange;
    NSRect rect = layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(index, &line);
    layoutManager->textContainerForGlyphAtIndex_effectiveRange(index, &containerRange);
    if (containerRange.location == NSNotFound) containerRange = line;
    const auto join = [&](NSUInteger glyph) {
        NSRange range;
        const NSRect other = layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(glyph, &range);
        if (range.length == 0 || NSMinY(other) != NSMinY(rect)) return false;
        rect = NSUnionRect(rect, other);
        line = NSUnionRange(line, range);
        return true;
    };
    while (line.location > containerRange.location && join(line.location - 1)) {
    }
    const NSUInteger end = std::min(NSMaxRange(containerRange), layoutManager->numberOfGlyphs());
    while (NSMaxRange(line) < end && join(NSMaxRange(line))) {
    }
    if (effectiveRange) *effectiveRange = line;
    return rect;
}

NSRange glyphRangeForLogicalLineFragmentContainingGlyphAtIndex(NSLayoutManager* layoutManager,
                                                               NSUInteger index) {
    requireArgument(layoutManager,
                    "glyphRangeForLogicalLineFragmentContainingGlyphAtIndex:", "the layout manager");
    NSRange range;
    logicalLineFragmentRectForGlyphAtIndex_effectiveRange(layoutManager, index, &range);
    return range;
}

NSRange glyphRangeForLineFragmentBelowVerticalOffset_inTextContainer(NSLayoutManager* layoutManager,
                                                                     float offset,
                                                                     NSTextContainer* container) {
    requireArgument(layoutManager,
                    "glyphRangeForLineFragmentBelowVerticalOffset:inTextContainer:", "the layout manager");
    const NSUInteger count = layoutManager->numberOfGlyphs();
    if (count == 0) return PBNotFoundRange;
    NSUInteger glyph = layoutManager->glyphIndexForPoint_inTextContainer({0, offset}, container);
    for (NSRange line; glyph < count; glyph = NSMaxRange(line)) {
        if (layoutManager->textContainerForGlyphAtIndex_effectiveRange(glyph, nullptr) != container) break;
        const NSRect rect = layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(glyph, &line);
        if (line.length == 0) break;
        if (NSMinY(rect) >= offset) return line;
    }
    return PBNotFoundRange;
}

// MARK: Carets

NSUInteger characterIndexForHorizontalOffset_inLineFragmentContainingGlyphAtIndex(
    NSLayoutManager* layoutManager, float offset, NSUInteger index) {
    requireArgument(layoutManager, "characterIndexForHorizontalOffset:inLineFragmentContainingGlyphAtIndex:",
                    "the layout manager");
    NSRange fragment;
    const NSRect rect = layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(index, &fragment);
    NSTextContainer* container = layoutManager->textContainerForGlyphAtIndex_effectiveRange(index, nullptr);
    if (!container) return index;
    float fraction = 0;
    const NSPoint middle{offset, rect.origin.y + rect.size.height * 0.5F};
    const NSUInteger glyph = layoutManager->glyphIndexForPoint_inTextContainer_fractionOfDistanceThroughGlyph(
        middle, container, &fraction);
    NSRange glyphs;
    const NSRange characters =
        layoutManager->characterRangeForGlyphRange_actualGlyphRange({glyph, 1}, &glyphs);
    if (!(fraction > 0.5F)) return characters.location;
    if (NSMaxRange(glyphs) == NSMaxRange(fragment)) {
        const unichar last = layoutManager->textStorage()->string()->characterAtIndex(characters.location);
        if (NSCharacterSet_PelvorAdditions::lineBreakCharacterSet()->characterIsMember(last))
            return characters.location;
    }
    return NSMaxRange(characters);
}

NSUInteger characterIndexForFirstLineFragmentHorizontalOffset(NSLayoutManager* layoutManager, float offset) {
    requireArgument(layoutManager,
                    "characterIndexForFirstLineFragmentHorizontalOffset:", "the layout manager");
    if (layoutManager->numberOfGlyphs() == 0) return 0;
    return characterIndexForHorizontalOffset_inLineFragmentContainingGlyphAtIndex(layoutManager, offset, 0);
}

NSUInteger characterIndexForLastLineFragmentHorizontalOffset(NSLayoutManager* layoutManager, float offset) {
    requireArgument(layoutManager,
                    "characterIndexForLastLineFragmentHorizontalOffset:", "the layout manager");
    const NSUInteger count = layoutManager->numberOfGlyphs();
    if (count == 0) return 0;
    return characterIndexForHorizontalOffset_inLineFragmentContainingGlyphAtIndex(layoutManager, offset,
                                                                                  count - 1);
}

id textViewForCharacterRange(NSLayoutManager* layoutManager, NSRange range) {
    requireArgument(layoutManager, "textViewForCharacterRange:", "the layout manager");
    const NSUInteger count = layoutManager->numberOfGlyphs();
    if (count == 0) return nullptr;
    const NSRange characters{std::min(range.location, count - 1), 1};
    const NSRange glyphs =
        layoutManager->glyphRangeForCharacterRange_actualCharacterRange(characters, nullptr);
    NSTextContainer* container =
        layoutManager->textContainerForGlyphAtIndex_effectiveRange(glyphs.location, nullptr);
    return container ? container->textView() : nullptr;
}

// MARK: Layout by force

bool hasLayoutHole(NSLayoutManager* layoutManager) {
    requireArgument(layoutManager, "hasLayoutHole", "the layout manager");
    const NSUInteger length = layoutManager->numberOfGlyphs();
    return length > 0 && layoutManager->firstUnlaidCharacterIndex() < length;
}

void forceLayoutToCharacterAtIndex(NSLayoutManager* layoutManager, NSUInteger index) {
    requireArgument(layoutManager, "forceLayoutToCharacterAtIndex:", "the layout manager");
    const NSUInteger count = layoutManager->numberOfGlyphs();
    if (count == 0) return;
    layoutManager->ensureLayoutForCharacterRange({0, std::min(index, count - 1) + 1});
}

void forceFinishLayout(NSLayoutManager* layoutManager) {
    requireArgument(layoutManager, "forceFinishLayout", "the layout manager");
    forceLayoutToCharacterAtIndex(layoutManager, NSNotFound);
}

// MARK: Attachments

NSRect attachmentFrameForGlyphAtIndex(NSLayoutManager* layoutManager, NSUInteger index) {
    requireArgument(layoutManager, "attachmentFrameForGlyphAtIndex:", "the layout manager");
    return layoutManager->attachmentRectForGlyphAtIndex(index);
}

PBAttachmentInvalidation* prepareInvalidateLayoutForAttachmentCharacterAtIndex(NSLayoutManager* layoutManager,
                                                                               NSUInteger index) {
    requireArgument(layoutManager,
                    "prepareInvalidateLayoutForAttachmentCharacterAtIndex:", "the layout manager");
    auto record = static_cast<PBAttachmentInvalidation*>(std::calloc(1, sizeof(PBAttachmentInvalidation)));
    if (!record) return nullptr;
    try {
        const NSUInteger glyph =
            layoutManager->glyphRangeForCharacterRange_actualCharacterRange({index, 1}, nullptr).location;
        NSRange inContainer;
        NSTextContainer* container =
            layoutManager->textContainerForGlyphAtIndex_effectiveRange(glyph, nullptr);
        record->characterIndex = index;
        record->lineRange = characterRangeForLineFragmentContainingGlyphAtIndex(layoutManager, glyph);
        record->followingRange = PBNotFoundRange;
        id view = container ? container->textView() : nullptr;
        if (!container || (view && send<bool>(view, "isVerticallyResizable"_sel))) return record;
        inContainer = layoutManager->glyphRangeForTextContainer(container);
        const NSUInteger start = NSMaxRange(record->lineRange);
        const NSUInteger last = layoutManager->characterIndexForGlyphAtIndex(NSMaxRange(inContainer) - 1);
        record->followingRange = {start, last - start + 1};
        return record;
    } catch (...) {
        std::free(record);
        throw;
    }
}

void commitInvalidateLayoutForAttachmentCharacter(NSLayoutManager* layoutManager,
                                                  PBAttachmentInvalidation* record) {
    requireArgument(layoutManager, "commitInvalidateLayoutForAttachmentCharacter:", "the layout manager");
    if (!record) return;
    const PBAttachmentInvalidation change = *record;
    std::free(record);
    layoutManager->invalidateDisplayForCharacterRange(change.lineRange);
    layoutManager->invalidateLayoutForCharacterRange_isSoft_actualCharacterRange(change.lineRange, false,
                                                                                 nullptr);
    if (change.followingRange.location != NSNotFound)
        layoutManager->invalidateLayoutForCharacterRange_isSoft_actualCharacterRange(change.followingRange,
                                                                                     true, nullptr);
    layoutManager->textStorage()->edited_range_changeInLength(NSTextStorageEditedAttributes,
                                                              {change.characterIndex, 1}, 0);
}

void invalidateLayoutForAttachmentCharacterAtIndex(NSLayoutManager* layoutManager, NSUInteger index) {
    requireArgument(layoutManager, "invalidateLayoutForAttachmentCharacterAtIndex:", "the layout manager");
    commitInvalidateLayoutForAttachmentCharacter(
        layoutManager, prepareInvalidateLayoutForAttachmentCharacterAtIndex(layoutManager, index));
}

// MARK: Drawing

int beginDrawingAsIfInTextView(NSLayoutManager* layoutManager) {
    requireArgument(layoutManager, "beginDrawingAsIfInTextView", "the layout manager");
    int toRestore = 0;
    if (layoutManager->usesScreenFonts()) toRestore |= kRestoresScreenFonts;
    layoutManager->setUsesScreenFonts(false);
    if (std::floor(platformVersion()) <= kLastVersionWithThreshold &&
        !layoutManager->ignoresAntialiasThreshold()) {
        layoutManager->setIgnoresAntialiasThreshold(true);
        toRestore |= kRestoresThreshold;
    }
    return toRestore;
}

void endDrawingAsIfInTextView(NSLayoutManager* layoutManager, int toRestore) {
    requireArgument(layoutManager, "endDrawingAsIfInTextView:", "the layout manager");
    if (toRestore & kRestoresScreenFonts) layoutManager->setUsesScreenFonts(true);
    if (toRestore & kRestoresThreshold) layoutManager->setIgnoresAntialiasThreshold(false);
}

void drawBreak_withCharacterRange_lineFragmentRect_usedRect_withOrigin_direction(
    NSLayoutManager* layoutManager, int, NSRange, NSRect, NSRect, NSPoint, NSWritingDirection) {
    requireArgument(
        layoutManager,
        "drawBreak:withCharacterRange:lineFragmentRect:usedRect:withOrigin:direction:", "the layout manager");
}

// MARK: Containers

NSContainerRunTable* containerRuns(NSLayoutManager* layoutManager) {
    requireArgument(layoutManager, "containerRuns", "the layout manager");
    return layoutManager->containerRunTable();
}

NSRange _containerRunGlyphRangeForTextContainer(NSLayoutManager* layoutManager, NSTextContainer* container) {
    requireArgument(layoutManager, "_containerRunGlyphRangeForTextContainer:", "the layout manager");
    NSContainerRunTable* table = containerRuns(layoutManager);
    const NSUInteger count = table->count();
    for (NSRange run{}; NSMaxRange(run) < count;) {
        const NSContainerRun* element = table->elementAtIndex_effectiveRange(NSMaxRange(run), &run);
        if (element->container == container) return run;
    }
    return PBNotFoundRange;
}

NSRange safeGlyphRangeForTextContainer(NSLayoutManager* layoutManager, NSTextContainer* container) {
    requireArgument(layoutManager, "safeGlyphRangeForTextContainer:", "the layout manager");
    const NSRange range = _containerRunGlyphRangeForTextContainer(layoutManager, container);
    if (range.location != NSNotFound) return range;
    return glyphRangeForUnknownTextContainer_avoidLayout(layoutManager, container, true);
}

NSTextContainer* safeUncheckedTextContainerForGlyphAtIndex_effectiveRange(NSLayoutManager* layoutManager,
                                                                          NSUInteger index, NSRange* range) {
    requireArgument(layoutManager,
                    "safeUncheckedTextContainerForGlyphAtIndex:effectiveRange:", "the layout manager");
    const NSContainerRun* element = containerRuns(layoutManager)->elementAtIndex_effectiveRange(index, range);
    return element ? element->container : nullptr;
}

NSTextContainer* safeTextContainerForGlyphAtIndex_effectiveRange(NSLayoutManager* layoutManager,
                                                                 NSUInteger index, NSRange* range) {
    requireArgument(layoutManager, "safeTextContainerForGlyphAtIndex:effectiveRange:", "the layout manager");
    if (index >= layoutManager->firstUnlaidGlyphIndex()) return nullptr;
    return safeUncheckedTextContainerForGlyphAtIndex_effectiveRange(layoutManager, index, range);
}

NSRange safeEffectiveRangeOfLineFragmentForGlyphAtIndex(NSLayoutManager* layoutManager, NSUInteger index) {
    requireArgument(layoutManager, "safeEffectiveRangeOfLineFragmentForGlyphAtIndex:", "the layout manager");
    if (index >= layoutManager->numberOfGlyphs()) return PBNotFoundRange;
    return layoutManager->glyphRangeForLaidLineFragmentContainingGlyphAtIndex(index);
}

NSTextContainer* getLastLayedTextContainerEffectiveRange(NSLayoutManager* layoutManager, NSRange* range) {
    requireArgument(layoutManager, "getLastLayedTextContainerEffectiveRange:", "the layout manager");
    const NSUInteger count = containerRuns(layoutManager)->count();
    return count ? safeUncheckedTextContainerForGlyphAtIndex_effectiveRange(layoutManager, count - 1, range)
                 : nullptr;
}

NSRange glyphRangeForUnknownTextContainer_avoidLayout(NSLayoutManager* layoutManager,
                                                      NSTextContainer* container, bool avoidsLayout) {
    requireArgument(layoutManager, "glyphRangeForUnknownTextContainer:avoidLayout:", "the layout manager");
    return avoidsLayout ? PBNotFoundRange : layoutManager->glyphRangeForTextContainer(container);
}

}  // namespace pelvor
