// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRFontPalette.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "Foundation/LocalizedNumbers.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSNotification.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTableColumn.h"
#include "Interface/NSTextField.h"
#include "PBAutoscrollingTableView.h"
#include "Text/NSFontManager.h"
#include "Writer/LocalizedText.h"
#include "Writer/Pages/StyleChange.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr float kLargestSize = 1000;
constexpr float kSampleSize = 20;
constexpr double kPause = 0.3;  // in seconds, between letters of a name

NSFontManager* manager() { return NSFontManager::sharedFontManager(); }

NSString* memberText(NSArray* members, NSInteger row, NSUInteger index) {
    if (row < 0 || static_cast<NSUInteger>(row) >= members->count()) return nullptr;
    auto* member = static_cast<NSArray*>(members->objectAtIndex(static_cast<NSUInteger>(row)));
    return cast<NSString>(member->objectAtIndex(index));
}

NSString* shownSize(float size) {
    return localizedNumber(NSString::stringWithFormat(u"%g"_ns, static_cast<double>(size)));
}

// The face of the family that is most like the font; null for a family without faces.
NSFont* nearestFont(NSFont* font, NSString* family) {
    const unsigned traits = manager()->traitsOfFont(font);
    const int weight = manager()->weightOfFont(font);
    NSString* nearest = nullptr;
    int least = 0;
    NSArray* members = manager()->availableMembersOfFontFamily(family);
    for (NSUInteger i = 0; members && i < members->count(); ++i) {
        auto* member = static_cast<NSArray*>(members->objectAtIndex(i));
        const auto number = [member](NSUInteger index) {
            return static_cast<NSNumber*>(member->objectAtIndex(index))->intValue();
        };
        constexpr int kTrait = 100;  // more than weights differ
        const int distance =
            kTrait * std::popcount(static_cast<unsigned>(number(3)) ^ traits) + std::abs(number(2) - weight);
        if (nearest && distance >= least) continue;
        nearest = static_cast<NSString*>(member->objectAtIndex(0));
        least = distance;
    }
    return nearest ? NSFont::fontWithName_size(nearest, font->pointSize()) : nullptr;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRFontPalette, windowsLibrary) {
    methods.creator<"init", &WRFontPalette::init>();
    methods.instance<"window", &WRFontPalette::window>();
    methods.instance<"convertFont:", &WRFontPalette::convertFont>();
    methods.instance<"takeSizeFrom:", &WRFontPalette::takeSizeFrom>();
    methods.instance<"formatsDidChange:", &WRFontPalette::formatsDidChange>();
    methods.instance<"numberOfRowsInTableView:", &WRFontPalette::numberOfRowsInTableView>();
    methods.instance<"tableView:objectValueForTableColumn:row:",
                     &WRFontPalette::tableView_objectValueForTableColumn_row>();
    methods.instance<"tableViewSelectionDidChange:", &WRFontPalette::tableViewSelectionDidChange>();
    methods.instance<"applyPending", &WRFontPalette::applyPending>();
    methods.instance<"windowDidBecomeKey:", &WRFontPalette::windowDidBecomeKey>();
    methods.instance<"windowDidResignKey:", &WRFontPalette::windowDidResignKey>();
}

WRFontPalette::WRFontPalette() = default;

WRFontPalette::~WRFontPalette() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

Retained<WRFontPalette> WRFontPalette::init(Class* cls) {
    auto self = make<WRFontPalette>(cls);
    self->_familyNames.set(manager()->availableFontFamilies());
    self->_members = NSArray::init();
    self->makeWindow();
    WRFormatCommands::addObserverOfCurrent(self);
    return self;
}

// MARK: The window

void WRFontPalette::makeWindow() {
    constexpr NSSize kSize{470, 360};
    constexpr float kFoot = 72, kEdge = 8;
    _window =
        WRPalette::create({{0, 0}, kSize}, NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask);
    _window->setTitle(localized(u"_Fonts"_ns));
    _window->setContentMinSize({360, 220});
    const float height = kSize.height - kFoot - kEdge;
    _families = addTable({{kEdge, kFoot}, {210, height}}, localized(u"_Family"_ns),
                         NSViewWidthSizable | NSViewHeightSizable);
    _faces = addTable({{226, kFoot}, {150, height}}, localized(u"_Typeface"_ns),
                      NSViewMinXMargin | NSViewHeightSizable);
    _sizes = addTable({{384, kFoot + 30}, {78, height - 30}}, localized(u"_Size"_ns),
                      NSViewMinXMargin | NSViewHeightSizable);
    _size = addField({{384, kFoot}, {78, 24}}, true);
    _size->setAutoresizingMask(NSViewMinXMargin);
    _size->setTarget(this);
    _size->setAction("takeSizeFrom:"_sel);
    _sample = addField({{kEdge, 30}, {kSize.width - 2 * kEdge, 36}}, false);
    _message = addField({{kEdge, 6}, {kSize.width - 2 * kEdge, 20}}, false);
    _message->setFont(NSFont::systemFontOfSize(NSFont::smallSystemFontSize()));
    _sample->setStringValue(localized(u"_The quick brown fox jumps over the lazy dog"_ns));
    for (NSTableView* table : {_families.get(), _faces.get(), _sizes.get()}) table->reloadData();
    _window->setInitialFirstResponder(_families);
    _window->setDelegate(this);
}

Retained<NSTableView> WRFontPalette::addTable(NSRect frame, NSString* title, NSUInteger autoresizing) {
    auto table = PBAutoscrollingTableView::initWithFrame({{0, 0}, frame.size});
    auto column = NSTableColumn::initWithIdentifier(title);
    column->headerCell()->setStringValue(title);
    column->setEditable(false);
    table->addTableColumn(column);
    table->setDataSource(this);
    table->setDelegate(this);
    auto scrollView = NSScrollView::initWithFrame(frame);
    scrollView->setAutoresizingMask(autoresizing);
    scrollView->setHasVerticalScroller(true);
    scrollView->setAutohidesScrollers(true);
    scrollView->setDocumentView(table);
    _window->contentView()->addSubview(scrollView);
    table->sizeLastColumnToFit();
    return table;
}

Retained<NSTextField> WRFontPalette::addField(NSRect frame, bool isEditable) {
    auto field = NSTextField::initWithFrame(frame);
    field->setAutoresizingMask(NSViewWidthSizable);
    if (!isEditable) {
        field->setEditable(false);
        field->setSelectable(false);
        field->setBezeled(false);
        field->setDrawsBackground(false);
    }
    _window->contentView()->addSubview(field);
    return field;
}

// MARK: The selection's font

void WRFontPalette::formatsDidChange(id) {
    WRFormatCommands* commands = _window->isVisible() && !_pending ? WRFormatCommands::current() : nullptr;
    if (!commands) return;
    NSFont* font = fontOf(commands->currentAttributes());
    showFont(font ? font : NSFont::userFontOfSize(12));
}

void WRFontPalette::selectRow(NSTableView* table, NSInteger row) {
    if (row == table->selectedRow()) return;
    if (row < 0) return table->deselectAll(nullptr);
    table->selectRow_byExtendingSelection(row, false);
    table->scrollRowToVisible(row);
}

void WRFontPalette::showFont(NSFont* font) {
    if (font == _shown) return;
    _isShowing = true;
    const bool isOtherFamily = !_shown || !_shown->familyName()->isEqualToString(font->familyName());
    _shown.set(font);
    if (isOtherFamily) {
        NSArray* members = manager()->availableMembersOfFontFamily(font->familyName());
        _members.set(members ? members : NSArray::array());
        _faces->reloadData();
    }
    const NSUInteger family = _familyNames->indexOfObject(font->familyName());
    selectRow(_families, family == NSNotFound ? -1 : static_cast<NSInteger>(family));
    NSInteger face = static_cast<NSInteger>(_members->count()) - 1;
    while (face >= 0 && !memberText(_members, face, 0)->isEqualToString(font->fontName())) --face;
    selectRow(_faces, face);
    const auto sizes = WRFormatCommands::usualSizes();
    const auto size = std::find(sizes.begin(), sizes.end(), font->pointSize());
    selectRow(_sizes, size == sizes.end() ? -1 : size - sizes.begin());
    _size->setStringValue(shownSize(font->pointSize()));
    _sample->setFont(manager()->convertFont_toSize(font, std::min(font->pointSize(), kSampleSize)));
    const bool isMadeUp = font->fontName()->rangeOfString(u"+"_ns).location != NSNotFound;
    _message->setStringValue(
        isMadeUp ? localizedFormat(u"_%@ has no such typeface: it is made from another one."_ns,
                                   font->familyName())
                 : font->displayName());
    _isShowing = false;
}

// MARK: Changes

void WRFontPalette::send(Change change) {
    _change = change;
    NSApplication::sharedApplication()->sendAction_to_from("changeFont:"_sel, nullptr, this);
}

NSFont* WRFontPalette::convertFont(NSFont* font) {
    if (!font) return nullptr;
    NSFont* changed = nullptr;
    if (_change == Change::family) {
        const NSInteger row = _families->selectedRow();
        if (row < 0) return font;
        auto* family = static_cast<NSString*>(_familyNames->objectAtIndex(static_cast<NSUInteger>(row)));
        changed = manager()->convertFont_toFamily(font, family);
        // The family may have no such face.
        if (!changed->familyName()->isEqualToString(family)) changed = nearestFont(font, family);
    } else if (_change == Change::face) {
        changed =
            NSFont::fontWithName_size(memberText(_members, _faces->selectedRow(), 0), font->pointSize());
    } else {
        changed = manager()->convertFont_toSize(font, _wantedSize);
    }
    return changed ? changed : font;
}

void WRFontPalette::takeSizeFrom(id sender) {
    auto* field = cast<NSControl>(sender);
    if (!field) return;
    const float size = plainNumber(field->stringValue())->floatValue();
    if (size > 0)
        _wantedSize = std::min(size, kLargestSize);
    else if (_shown)
        _wantedSize = _shown->pointSize();  // what is no size leaves the size as it is
    _size->setStringValue(shownSize(_wantedSize));
    send(Change::size);
}

void WRFontPalette::tableViewSelectionDidChange(id notification) {
    auto* note = cast<NSNotification>(notification);
    auto* table = note ? cast<NSTableView>(note->object()) : nullptr;
    if (_isShowing || !table || table->selectedRow() < 0) return;
    if (table == _families) return sendSoon(Change::family);
    if (table == _faces) return sendSoon(Change::face);
    _wantedSize = WRFormatCommands::usualSizes()[static_cast<std::size_t>(table->selectedRow())];
    sendSoon(Change::size);
}

void WRFontPalette::sendSoon(Change change) {
    NSEvent* event = NSApplication::sharedApplication()->currentEvent();
    if (_pending && *_pending != change) applyPending();
    if (!event || event->type() != NSKeyDown) return send(change);
    _pending = change;
    NSObject_DelayedPerforming::cancelPreviousPerformRequestsWithTarget(this);
    performSelector_withObject_afterDelay(this, "applyPending"_sel, nullptr, kPause);
}

void WRFontPalette::applyPending() {
    if (!_pending) return;
    const Change change = *_pending;
    _pending.reset();
    NSObject_DelayedPerforming::cancelPreviousPerformRequestsWithTarget(this);
    send(change);
}

// It has not followed the selection while it was not seen.
void WRFontPalette::windowDidBecomeKey(id) { formatsDidChange(nullptr); }

void WRFontPalette::windowDidResignKey(id) { applyPending(); }

// MARK: Rows

int WRFontPalette::numberOfRowsInTableView(NSTableView* table) {
    if (table == _families) return static_cast<int>(_familyNames->count());
    if (table == _faces) return static_cast<int>(_members->count());
    return static_cast<int>(WRFormatCommands::usualSizes().size());
}

id WRFontPalette::tableView_objectValueForTableColumn_row(NSTableView* table, NSTableColumn*, NSInteger row) {
    if (row < 0 || row >= numberOfRowsInTableView(table)) return nullptr;
    const auto index = static_cast<NSUInteger>(row);
    if (table == _families) return _familyNames->objectAtIndex(index);
    if (table == _faces) return memberText(_members, row, 1);
    return shownSize(WRFormatCommands::usualSizes()[index]);
}

}  // namespace pelvor
