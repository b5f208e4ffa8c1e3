// SPDX-License-Identifier: Apache-2.0
// Parts, their places, and the table.
#include "Interface/Panels/FilePanelView.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSFileManager.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableIndexSet.h"
#include "Interface/Drawing/Direction.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSSavePanel.h"
#include "Interface/NSScrollView.h"
#include "Interface/Panels/FileNameCell.h"
#include "Interface/Panels/FolderPlaces.h"
#include "Interface/Panels/PanelMessages.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(FilePanelView, interfaceLibrary) {
    methods.instance<"numberOfRowsInTableView:", &FilePanelView::numberOfRowsInTableView>();
    methods.instance<"tableView:objectValueForTableColumn:row:",
                     &FilePanelView::tableView_objectValueForTableColumn_row>();
    methods.instance<"tableView:setObjectValue:forTableColumn:row:",
                     &FilePanelView::tableView_setObjectValue_forTableColumn_row>();
    methods.instance<"tableView:willDisplayCell:forTableColumn:row:",
                     &FilePanelView::tableView_willDisplayCell_forTableColumn_row>();
    methods.instance<"tableView:shouldSelectRow:", &FilePanelView::tableView_shouldSelectRow>();
    methods.instance<"tableViewSelectionDidChange:", &FilePanelView::tableViewSelectionDidChange>();
    methods.instance<"controlTextDidChange:", &FilePanelView::controlTextDidChange>();
    methods.instance<"controlTextDidEndEditing:", &FilePanelView::controlTextDidEndEditing>();
    methods.instance<"openRow:", &FilePanelView::openRow>();
    methods.instance<"choosePlace:", &FilePanelView::choosePlace>();
    methods.instance<"makeFolder:", &FilePanelView::makeFolder>();
}

namespace {

constexpr float kMargin = 16, kGap = 10, kFieldHeight = 24, kLeastButtonWidth = 84, kPlacesWidth = 280;
constexpr float kNameWidth = 260, kChangeWidth = 170, kSizeWidth = 90;

Retained<NSTextField> label() {
    auto field = NSTextField::initWithFrame(NSZeroRect);
    field->setEditable(false);
    field->setSelectable(false);
    field->setBezeled(false);
    field->setDrawsBackground(false);
    return field;
}

}  // namespace

// MARK: Parts

Retained<FilePanelView> FilePanelView::viewFor(NSSavePanel* panel) {
    auto view = cast<FilePanelView>(NSView::initWithFrame(NSZeroRect, classObject()));
    view->_panel = panel;
    view->_showsField = panel->isSaving();
    view->makeParts();
    return view;
}

Retained<NSButton> FilePanelView::button(NSString* title, id target, SEL action, NSString* key) {
    auto button = NSButton::initWithFrame(NSZeroRect);
    button->setTitle(title);
    button->setTarget(target);
    button->setAction(action);
    button->setKeyEquivalent(key);
    addSubview(button);
    return button;
}

void FilePanelView::makeParts() {
    _message = label();
    _message->cell()->setWraps(true);
    addSubview(_message);
    _label = label();
    _label->setAlignment(interfaceRunsFromRightToLeft() ? NSLeftTextAlignment : NSRightTextAlignment);
    addSubview(_label);
    _field = NSTextField::initWithFrame(NSZeroRect);
    _field->cell()->setScrollable(true);
    _field->setDelegate(this);
    addSubview(_field);
    _places = NSPopUpButton::initWithFrame_pullsDown(NSZeroRect, false);
    _places->setTarget(this);
    _places->setAction("choosePlace:"_sel);
    addSubview(_places);
    _newFolder = button(panelText(u"_New Folder"_ns), this, "makeFolder:"_sel, u""_ns);
    makeTable();
    _cancel = button(panelText(u"_Cancel"_ns), _panel, "cancel:"_sel, u"\x1b"_ns);
    _accept = button(u""_ns, _panel, "ok:"_sel, u"\r"_ns);
}

void FilePanelView::makeTable() {
    _table = NSTableView::initWithFrame({{0, 0}, {kNameWidth, 100}});
    struct {
        NSString* title;
        float width;
    } const columns[] = {
        {u"_Name"_ns, kNameWidth}, {u"_Changed"_ns, kChangeWidth}, {u"_Size"_ns, kSizeWidth}};
    std::vector<Retained<NSTableColumn>> made;
    for (const auto& [title, width] : columns) {
        auto column = NSTableColumn::initWithIdentifier(title);
        const bool isName = made.empty();
        column->headerCell()->setStringValue(panelText(title));
        column->setWidth(width);
        column->setMinWidth(60);
        column->setEditable(false);
        if (isName)
            column->setDataCell(FileNameCell::initTextCell(u""_ns).get());
        else
            column->setResizingMask(NSTableColumnUserResizingMask);
        // A name that is typed for a new folder is edited in the table.
        column->dataCell()->setEditable(isName);
        column->dataCell()->setScrollable(isName);
        made.push_back(column);
    }
    // By the language of the panel, not by that of a name.
    const bool isRightToLeft = interfaceRunsFromRightToLeft();
    for (const auto& column : made) {
        const bool isAtLeft = (column == made.back()) == isRightToLeft;
        for (NSCell* cell : {column->dataCell(), column->headerCell()})
            cell->setAlignment(isAtLeft ? NSLeftTextAlignment : NSRightTextAlignment);
    }
    if (isRightToLeft) std::reverse(made.begin(), made.end());
    for (const auto& column : made) _table->addTableColumn(column);
    _table->setColumnAutoresizingStyle(NSTableViewUniformColumnAutoresizingStyle);
    _table->setAllowsColumnReordering(false);
    _table->setAllowsMultipleSelection(_panel->choosesSeveral());
    _table->setUsesAlternatingRowBackgroundColors(true);
    _table->setTarget(this);
    _table->setDoubleAction("openRow:"_sel);
    _table->setDelegate(this);
    _table->setDataSource(this);
    _scrollView = NSScrollView::initWithFrame({{0, 0}, {kNameWidth + kChangeWidth + kSizeWidth, 200}});
    _scrollView->setBorderType(NSLineBorder);
    _scrollView->setHasVerticalScroller(true);
    _scrollView->setAutohidesScrollers(true);
    _scrollView->setDocumentView(_table);
    addSubview(_scrollView);
}

void FilePanelView::refresh() {
    if (!_panel) return;
    _message->setStringValue(_panel->message());
    _label->setStringValue(_panel->isSaving() ? _panel->nameFieldLabel() : panelText(u"_Go to:"_ns));
    _accept->setTitle(_panel->prompt());
    _newFolder->setHidden(!_panel->canCreateDirectories());
    _label->setHidden(!_showsField);
    _field->setHidden(!_showsField);
    if (_accessory != _panel->accessoryView()) {
        if (_accessory) _accessory->removeFromSuperview();
        _accessory.set(_panel->accessoryView());
        if (_accessory) addSubview(_accessory);
    }
    layOut();
    selectionChanged();
}

// MARK: Places of the parts

void FilePanelView::setFrameSize(NSSize size) {
    NSView::setFrameSize(size);
    layOut();
}

// Left is right where the language runs from right to left.
void FilePanelView::place(NSView* view, NSRect rect) {
    if (interfaceRunsFromRightToLeft()) rect.origin.x = bounds().size.width - NSMaxX(rect);
    view->setFrame(rect);
}

void FilePanelView::layOut() {
    if (!_accept) return;
    const NSSize size = bounds().size;
    const float width = std::max(0.0f, size.width - 2 * kMargin), right = kMargin + width;
    const auto widthOf = [](NSControl* control) { return std::ceil(control->cell()->cellSize().width); };
    const auto buttonWidth = [&](NSControl* button) { return std::max(widthOf(button), kLeastButtonWidth); };
    float top = kMargin;
    _message->setHidden(_message->stringValue()->length() == 0);
    if (!_message->isHidden()) {
        const float height = std::ceil(_message->cell()->cellSizeForBounds({{}, {width, 1e4f}}).height);
        place(_message, {{kMargin, top}, {width, height}});
        top += height + kGap;
    }
    if (_showsField) {
        const float labelWidth = std::min(widthOf(_label), width / 2);
        place(_label, {{kMargin, top}, {labelWidth, kFieldHeight}});
        place(_field, {{kMargin + labelWidth + kGap, top}, {width - labelWidth - kGap, kFieldHeight}});
        top += kFieldHeight + kGap;
    }
    const float newFolderWidth = _newFolder->isHidden() ? 0 : buttonWidth(_newFolder);
    place(_places, {{kMargin, top},
                    {std::clamp(width - newFolderWidth - kGap, 0.0f, kPlacesWidth), metrics::kButtonHeight}});
    place(_newFolder, {{right - newFolderWidth, top}, {newFolderWidth, metrics::kButtonHeight}});
    top += metrics::kButtonHeight + kGap;

    float bottom = size.height - kMargin - metrics::kButtonHeight;
    float x = right;
    for (NSButton* each : {_accept.get(), _cancel.get()}) {
        const float itsWidth = buttonWidth(each);
        x -= itsWidth;
        place(each, {{x, bottom}, {itsWidth, metrics::kButtonHeight}});
        x -= kGap;
    }
    if (_accessory) {
        NSSize wanted = _accessory->frame().size;
        if (_accessory->autoresizingMask() & NSViewWidthSizable) wanted.width = width;
        bottom -= kGap + wanted.height;
        place(_accessory, {{kMargin, bottom}, wanted});
    }
    place(_scrollView, {{kMargin, top}, {width, std::max(0.0f, bottom - kGap - top)}});
}

// MARK: Folders

void FilePanelView::begin(const std::vector<NSString*>& folders, NSString* name) {
    for (NSString* each : folders)
        if (each && showFolder(each, false)) break;
    refresh();
    _table->sizeToFit();
    setName(_panel->isSaving() ? name : u""_ns);
    if (!_panel->isSaving() && name->length()) selectNames(NSArray::of({name}));
    window()->makeFirstResponder(_panel->isSaving() ? static_cast<NSView*>(_field) : _table);
    selectStem();
}

bool FilePanelView::showFolder(NSString* path, bool complains) {
    if (!_panel) return false;
    const auto panel = Retained<NSSavePanel>::retaining(_panel);
    if (!path->hasPrefix(u"/"_ns))
        path = NSFileManager::defaultManager()->currentDirectoryPath()->stringByAppendingPathComponent(path);
    const auto wanted = path->stringByStandardizingPath()->copy();
    const bool isOther = !folder() || !folder()->isEqualToString(wanted);
    _table->abortEditing();
    if (std::exchange(_isNamingFolder, false)) _listing.removeFirstRow();
    const auto delegate = Retained<Object>::retaining(panel->delegate());
    std::function<bool(NSString*)> shows;
    const SEL question = "panel:shouldShowFilename:"_sel;
    if (delegate && delegate->respondsToSelector(question))
        shows = [&](NSString* each) { return send<bool>(delegate.get(), question, panel.get(), each); };
    if (!_listing.read(wanted, panel->showsHiddenFiles(), shows)) {
        _table->reloadData();
        if (complains) complainOfFile(u"_The folder “%@” cannot be shown: %@."_ns, wanted, wanted, false);
        return false;
    }
    _typed.clear();
    _table->deselectAll(nullptr);
    _table->reloadData();
    if (!isOther) return true;
    _table->scrollRowToVisible(0);
    fillPlaces();
    if (delegate && delegate->respondsToSelector("panel:directoryDidChange:"_sel))
        send(delegate.get(), "panel:directoryDidChange:"_sel, panel.get(), folder());
    return true;
}

void FilePanelView::readAgain() {
    if (!folder()) return;
    const auto names = Retained<NSArray>::retaining(selectedNames());
    auto path = folder()->copy();
    while (!showFolder(path, false) && path->length() > 1)
        path = path->stringByDeletingLastPathComponent()->copy();
    selectNames(names);
}

void FilePanelView::readAgainIfChanged() {
    if (folder() && !_isNamingFolder && _listing.hasChanged()) readAgain();
}

void FilePanelView::goUp() {
    if (!folder() || folder()->length() <= 1) return NSBeep();
    const auto from = folder()->lastPathComponent()->copy();
    if (showFolder(folder()->stringByDeletingLastPathComponent(), true)) selectNames(NSArray::of({from}));
}

// The folder and those around it, then the other places.
void FilePanelView::fillPlaces() {
    _places->removeAllItems();
    const auto add = [&](NSString* title, NSString* path) {
        auto item = NSMenuItem::initWithTitle_action_keyEquivalent(title, SEL(), u""_ns);
        item->setRepresentedObject(path);
        _places->menu()->addItem(item);
    };
    for (auto path = folder()->copy();; path = path->stringByDeletingLastPathComponent()->copy()) {
        add(path->lastPathComponent(), path);
        if (path->length() <= 1) break;
    }
    _places->menu()->addItem(NSMenuItem::separatorItem());
    for (const auto& [title, path] : folderPlaces()) add(title, path);
    _places->selectItemAtIndex(0);
}

void FilePanelView::choosePlace(id) {
    NSMenuItem* item = _places ? _places->selectedItem() : nullptr;
    const auto path =
        Retained<NSString>::retaining(item ? cast<NSString>(item->representedObject()) : nullptr);
    if (!path) return;
    if (!showFolder(path, true) || path->isEqual(folder())) fillPlaces();
}

// MARK: The table

NSInteger FilePanelView::numberOfRowsInTableView(id) {
    return static_cast<NSInteger>(_listing.rows().size());
}

id FilePanelView::tableView_objectValueForTableColumn_row(id, NSTableColumn* column, NSInteger row) {
    const auto index = static_cast<std::size_t>(row);
    if (!column || index >= _listing.rows().size()) return nullptr;
    if (cast<FileNameCell>(column->dataCell())) return _listing.rows()[index].name;
    if (_isNamingFolder && row == 0) return u""_ns;
    const bool isChange = column->identifier()->isEqual(u"_Changed"_ns);
    return isChange ? _listing.changeOfRow(index) : _listing.sizeOfRow(index);
}

bool FilePanelView::canChoose(const FolderListing::Row& row) {
    return row.isFolder || (_panel && _panel->choosesFiles() && _panel->allowsName(row.name));
}

void FilePanelView::tableView_willDisplayCell_forTableColumn_row(id, NSCell* cell, id, NSInteger row) {
    const auto index = static_cast<std::size_t>(row);
    if (!cell || index >= _listing.rows().size()) return;
    cell->setEnabled(canChoose(_listing.rows()[index]));
    if (auto* name = cast<FileNameCell>(cell)) name->setFolder(_listing.rows()[index].isFolder);
}

bool FilePanelView::tableView_shouldSelectRow(id, NSInteger row) {
    const auto index = static_cast<std::size_t>(row);
    return index < _listing.rows().size() && canChoose(_listing.rows()[index]);
}

NSArray* FilePanelView::selectedNames() {
    auto names = NSMutableArray::init();
    if (_table)
        for (NSRange run : _table->selectedRowIndexes()->runs())
            for (NSUInteger row = run.location; row < NSMaxRange(run) && row < _listing.rows().size(); ++row)
                names->addObject(_listing.rows()[row].name);
    return names->copy().autorelease();
}

void FilePanelView::selectNames(NSArray* names) {
    auto rows = NSMutableIndexSet::init();
    for (id each : names) {
        const NSInteger row = _listing.rowOfName(static_cast<NSString*>(each));
        if (tableView_shouldSelectRow(_table, row)) rows->addIndex(static_cast<NSUInteger>(row));
    }
    if (rows->count() == 0) return;
    _table->selectRowIndexes_byExtendingSelection(rows, false);
    _table->scrollRowToVisible(static_cast<NSInteger>(rows->firstIndex()));
}

NSString* FilePanelView::selectedFolder() {
    if (!_table || _table->numberOfSelectedRows() != 1) return nullptr;
    const auto row = static_cast<std::size_t>(_table->selectedRow());
    return row < _listing.rows().size() && _listing.rows()[row].isFolder ? _listing.pathOfRow(row) : nullptr;
}

void FilePanelView::tableViewSelectionDidChange(id) {
    if (!_panel) return;
    const auto panel = Retained<NSSavePanel>::retaining(_panel);
    const NSInteger row = _table->selectedRow();
    if (panel->isSaving() && row >= 0 && !selectedFolder())
        setName(_listing.rows()[static_cast<std::size_t>(row)].name);
    selectionChanged();
    const auto delegate = Retained<Object>::retaining(panel->delegate());
    if (delegate && delegate->respondsToSelector("panelSelectionDidChange:"_sel))
        send(delegate.get(), "panelSelectionDidChange:"_sel, panel.get());
}

// The button that accepts can be pressed if there is something to accept.
void FilePanelView::selectionChanged() {
    if (!_panel) return;
    const bool isTyped = _showsField && typedText()->length() > 0;
    const bool isSelected =
        !_panel->isSaving() && (_table->numberOfSelectedRows() > 0 || _panel->choosesDirectories());
    _accept->setEnabled(isTyped || isSelected);
}

}  // namespace pelvor
