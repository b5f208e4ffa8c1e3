// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/PageDocument.h"

#include <algorithm>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextAttachment.h"
#include "Text/NSTextTab.h"
#include "Text/TextAttributes.h"
#include "Writer/Pages/WRPageLayoutManager.h"
#include "Writer/Pages/WRPictureCell.h"
#include "Writer/PlugInProtocol.h"

namespace pelvor {
namespace {

constexpr float kLeastRoom = 1;  // points, both ways

Retained<NSAttributedString> textIn(NSDictionary* settings, NSString* key) {
    auto* text = cast<NSAttributedString>(settings->objectForKey(key));
    return Retained<NSAttributedString>::retaining(text && text->length() ? text : nullptr);
}

// A line end behind the last paragraph would be one more line.
void dropLastLineEnd(NSMutableAttributedString* text) {
    const NSUInteger length = text->length();
    if (length && text->string()->characterAtIndex(length - 1) == u'\n')
        text->deleteCharactersInRange({length - 1, 1});
}

void put(NSMutableAttributedString* text, unichar sign, id value) {
    NSString* shown = value ? value->description() : u""_ns;
    for (NSUInteger i = text->length(); i-- > 0;)
        if (text->string()->characterAtIndex(i) == sign)
            text->replaceCharactersInRange_withString({i, 1}, shown);
}

// In headers and footers without tab stops of their own a tab leads to the middle, and another to the end.
void addTabs(NSMutableAttributedString* text, float width) {
    if (!text->length()) return;
    auto* own = cast<NSParagraphStyle>(
        text->attribute_atIndex_effectiveRange(NSParagraphStyleAttributeName, 0, nullptr));
    if (own && own->tabStops()->count()) return;
    auto style = (own ? own : NSParagraphStyle::defaultParagraphStyle())->mutableCopy();
    style->addTabStop(NSTextTab::initWithType_location(NSCenterTabStopType, width / 2).get());
    // A stop at the very end would be none.
    style->addTabStop(NSTextTab::initWithType_location(NSRightTabStopType, width - 0.5F).get());
    text->addAttribute_value_range(NSParagraphStyleAttributeName, style->copy().get(), {0, text->length()});
}

// Adds why pictures could not be drawn, each reason once.
void addProblems(NSArray* cells, NSMutableArray* problems) {
    for (id cell : cells)
        if (NSString* problem = static_cast<WRPictureCell*>(cell)->problem())
            if (!problems->containsObject(problem)) problems->addObject(problem);
}

}  // namespace

PageFrame PageFrame::of(NSDictionary* settings) {
    const auto length = [settings](NSString* key) {
        auto* number = cast<NSNumber>(settings->objectForKey(key));
        return number ? number->floatValue() : 0;
    };
    return {{length(WRPageWidthKey), length(WRPageHeightKey)},
            length(WRLeftMarginKey),
            length(WRRightMarginKey),
            length(WRTopMarginKey),
            length(WRBottomMarginKey),
            length(WRHeaderPlaceKey),
            length(WRFooterPlaceKey)};
}

PageDocument::PageDocument(NSAttributedString* text, NSDictionary* settings)
    : PageDocument(storageOf(text), settings, Pagination::Purpose::reading) {}

PageDocument::PageDocument(Retained<NSTextStorage> text, NSDictionary* settings, Pagination::Purpose purpose)
    : _cells(NSMutableArray::init()), _lineProblems(NSMutableArray::init()) {
    takeSettings(settings);
    if (!hasRoom()) return;
    _storage = std::move(text);
    giveCells(_storage, {0, _storage->length()}, _cells);
    _layoutManager = WRPageLayoutManager::init();
    _storage->addLayoutManager(_layoutManager);
    _layoutManager->setEditFunction([this](NSRange range, NSInteger delta) { textDidChange(range, delta); });
    _pagination.emplace(_storage, _layoutManager, NSSize{_frame.width(), _frame.height()}, purpose);
}

void PageDocument::takeSettings(NSDictionary* settings) {
    _settings.set(settings);
    _frame = PageFrame::of(settings);
    _header = textIn(settings, WRHeaderKey);
    _footer = textIn(settings, WRFooterKey);
    _title.set(settings->objectForKey(WRTitleKey));
    if (!hasRoom()) return;
    const auto ignore = [](NSLayoutManager*, float) {};
    if (_header) _frame.top = std::max(_frame.top, _frame.headerPlace + setLine(_header, 0, ignore));
    if (_footer) _frame.bottom = std::max(_frame.bottom, _frame.footerPlace + setLine(_footer, 0, ignore));
}

bool PageDocument::setSettings(NSDictionary* settings) {
    const auto before = _settings;
    takeSettings(settings);
    const bool fits = hasRoom();
    if (!fits)
        takeSettings(before);
    else if (_pagination)
        _pagination->setRoom({_frame.width(), _frame.height()});
    return fits;
}

PageDocument::~PageDocument() {
    if (!_layoutManager) return;
    _layoutManager->setEditFunction(nullptr);
    _storage->removeLayoutManager(_layoutManager);
}

NSLayoutManager* PageDocument::layoutManager() { return _layoutManager; }

bool PageDocument::hasRoom() const { return _frame.width() >= kLeastRoom && _frame.height() >= kLeastRoom; }

void PageDocument::findPages(NSUInteger count) {
    if (_pagination) _pagination->findPages(count);
}

NSUInteger PageDocument::rightPages() const {
    return _pagination ? static_cast<NSUInteger>(_pagination->rightPages()) : 0;
}

NSUInteger PageDocument::pageWithUnit(NSUInteger unit) {
    if (!_pagination) return 0;
    const auto isFound = [&] {
        const NSUInteger right = rightPages();
        return right > 0 && unit < NSMaxRange(pages()[right - 1].range);
    };
    while (!isFound() && !isComplete()) _pagination->findNextPage();
    return static_cast<NSUInteger>(_pagination->pageOf(unit));
}

void PageDocument::forgetPages() {
    if (!_pagination) return;
    _layoutManager->invalidateLayoutForCharacterRange_isSoft_actualCharacterRange({0, _storage->length()},
                                                                                  false, nullptr);
    _pagination->forgetPages();
}

// Whoever edits asks for places on the page at once; the rest can wait, and so can formats of text on pages
// that nobody has asked for yet.
void PageDocument::textDidChange(NSRange range, NSInteger delta) {
    if (!_pagination) return;
    const NSUInteger right = rightPages();
    const bool isFurtherOn = right == 0 || range.location >= NSMaxRange(pages()[right - 1].range);
    giveCells(_storage, range, _cells);
    _pagination->textDidChange(range, delta);
    if (delta != 0 || !isFurtherOn) pageWithUnit(range.location);
    if (_didEdit) _didEdit();
}

NSUInteger PageDocument::pageCount() {
    findPages(NSNotFound);
    return static_cast<NSUInteger>(pages().size());
}

const std::vector<PageText>& PageDocument::pages() const {
    static const std::vector<PageText> kNone;
    return _pagination ? _pagination->pages() : kNone;
}

// A copy; the text's own attachments stay as they are.
Retained<NSTextStorage> PageDocument::storageOf(NSAttributedString* text) {
    auto storage = NSTextStorage::initWithAttributedString(text);
    storage->beginEditing();
    NSRange run;
    for (NSUInteger place = 0; place < storage->length(); place = NSMaxRange(run)) {
        auto* own = cast<NSTextAttachment>(
            storage->attribute_atIndex_effectiveRange(NSAttachmentAttributeName, place, &run));
        if (!own) continue;
        auto shown = NSTextAttachment::initWithData_ofType(own->contents(), own->fileType());
        shown->setBounds(own->bounds());
        storage->addAttribute_value_range(NSAttachmentAttributeName, shown, run);
    }
    storage->endEditing();
    return storage;
}

void PageDocument::giveCells(NSTextStorage* storage, NSRange range, NSMutableArray* cells) {
    NSRange run;
    for (NSUInteger place = range.location; place < NSMaxRange(range); place = NSMaxRange(run)) {
        auto* attachment = cast<NSTextAttachment>(storage->attribute_atIndex_longestEffectiveRange_inRange(
            NSAttachmentAttributeName, place, &run, range));
        if (!attachment || cast<WRPictureCell>(attachment->attachmentCell())) continue;
        auto cell = WRPictureCell::init();
        attachment->setAttachmentCell(cell);
        cells->addObject(cell);
    }
}

template <class Function>
float PageDocument::setLine(NSAttributedString* line, NSUInteger page, Function function) {
    AutoreleasePool pool;
    auto storage = storageOf(line);
    auto* cells = NSMutableArray::array();
    giveCells(storage, {0, storage->length()}, cells);
    put(storage, WRPageNumberCharacter, NSNumber::numberWithUnsignedInt(page + 1));
    put(storage, WRPageCountCharacter,
        NSNumber::numberWithUnsignedInt(static_cast<NSUInteger>(pages().size())));
    put(storage, WRTitleCharacter, _title);
    dropLastLineEnd(storage);
    addTabs(storage, _frame.width());
    auto layoutManager = WRPageLayoutManager::init();
    storage->addLayoutManager(layoutManager);
    auto container = NSTextContainer::initWithContainerSize({_frame.width(), 1e7F});
    container->setLineFragmentPadding(0);
    layoutManager->addTextContainer(container);
    layoutManager->ensureLayoutForTextContainer(container);
    const float height = layoutManager->usedRectForTextContainer(container).size.height;
    function(layoutManager.get(), height);
    addProblems(cells, _lineProblems);
    return height;
}

void PageDocument::drawLine(NSAttributedString* line, NSUInteger page, bool isHeader) {
    if (!line) return;
    setLine(line, page, [&](NSLayoutManager* layoutManager, float height) {
        const NSPoint origin{
            _frame.left, isHeader ? _frame.headerPlace : _frame.paper.height - _frame.footerPlace - height};
        const NSRange all{0, layoutManager->numberOfGlyphs()};
        layoutManager->drawBackgroundForGlyphRange_atPoint(all, origin);
        layoutManager->drawGlyphsForGlyphRange_atPoint(all, origin);
    });
}

void PageDocument::drawPage(NSUInteger index) {
    AutoreleasePool pool;
    drawLine(_header, index, true);
    const NSRange range = pages()[index].range;
    _layoutManager->drawBackgroundForGlyphRange_atPoint(range, {_frame.left, _frame.top});
    _layoutManager->drawGlyphsForGlyphRange_atPoint(range, {_frame.left, _frame.top});
    drawLine(_footer, index, false);
}

void PageDocument::drawHeaderAndFooter(NSUInteger index) {
    AutoreleasePool pool;
    drawLine(_header, index, true);
    drawLine(_footer, index, false);
}

NSArray* PageDocument::problems() {
    auto* problems = NSMutableArray::arrayWithArray(_lineProblems);
    addProblems(_cells, problems);
    return problems;
}

}  // namespace pelvor
