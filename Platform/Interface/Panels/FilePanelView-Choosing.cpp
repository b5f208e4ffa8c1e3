// SPDX-License-Identifier: Apache-2.0
// What the user types and chooses.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Foundation/NSFileManager.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotification.h"
#include "Interface/NSAlert.h"
#include "Interface/NSEvent.h"
#include "Interface/NSSavePanel.h"
#include "Interface/NSText.h"
#include "Interface/Panels/FilePanelView.h"
#include "Interface/Panels/PanelMessages.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

constexpr double kTypeSeconds = 1;
constexpr NSUInteger kModifiers = NSShiftKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSCommandKeyMask;

NSFileManager* files() { return NSFileManager::defaultManager(); }

bool hasSlash(NSString* name) { return name->rangeOfString(u"/"_ns).length > 0; }

// "/" for the root.
NSString* nameOf(NSString* path) { return path->lastPathComponent(); }

unichar firstUnit(NSEvent* event) {
    NSString* characters = event->characters();
    return characters->length() ? characters->characterAtIndex(0) : 0;
}

}  // namespace

// MARK: The field

bool FilePanelView::isPath(NSString* text) {
    return text->hasPrefix(u"/"_ns) || text->hasPrefix(u"~"_ns) || text->isEqualToString(u"."_ns) ||
           text->isEqualToString(u".."_ns);
}

NSString* FilePanelView::typedText() { return _field->stringValue(); }

NSString* FilePanelView::name() { return _name ? _name.get() : u""_ns; }

void FilePanelView::setName(NSString* name) {
    _name = name->copy();
    const bool isEdited = _field->abortEditing();
    _field->setStringValue(_name);
    if (isEdited && window() && window()->makeFirstResponder(_field)) selectStem();
    selectionChanged();
}

// The name without its extension, which people rarely change.
void FilePanelView::selectStem() {
    NSText* editor = _field->currentEditor();
    if (!editor) return;
    NSString* text = editor->string();
    const NSUInteger extension = text->pathExtension()->length();
    editor->setSelectedRange({0, text->length() - (extension ? extension + 1 : 0)});
}

void FilePanelView::controlTextDidChange(id notification) {
    auto* change = cast<NSNotification>(notification);
    if (!_panel || !change || change->object() != _field) return;
    if (NSString* text = typedText(); !isPath(text)) _name = text->copy();
    selectionChanged();
}

void FilePanelView::typePath(NSString* text) {
    _showsField = true;
    refresh();
    _field->setStringValue(text);
    if (!window() || !window()->makeFirstResponder(_field)) return;
    if (NSText* editor = _field->currentEditor()) editor->setSelectedRange({text->length(), 0});
    selectionChanged();
}

void FilePanelView::leavePath() {
    if (_panel->isSaving()) return setName(name());
    _field->abortEditing();
    _field->setStringValue(u""_ns);
    _showsField = false;
    if (window()) window()->makeFirstResponder(_table);
    refresh();
}

// MARK: Keys

bool FilePanelView::performKeyEquivalent(NSEvent* event) {
    if (!event || !_panel || event->type() != NSKeyDown) return false;
    const NSUInteger modifiers = event->modifierFlags() & kModifiers;
    if (modifiers == NSCommandKeyMask && event->shortcutCharacters()->isEqualToString(u"h"_ns)) {
        _panel->setShowsHiddenFiles(!_panel->showsHiddenFiles());
        return true;
    }
    if (modifiers == 0 && firstUnit(event) == NSEscapeCharacter && _showsField && !_panel->isSaving()) {
        leavePath();
        return true;
    }
    return NSView::performKeyEquivalent(event);
}

// Keys that the table does not take.
void FilePanelView::keyDown(NSEvent* event) {
    if (!event || event->type() != NSKeyDown || !_panel) return NSView::keyDown(event);
    const NSUInteger modifiers = event->modifierFlags() & kModifiers;
    const unichar unit = firstUnit(event);
    const bool isUp = modifiers == NSAlternateKeyMask && unit == NSUpArrowFunctionKey;
    if (isUp || (modifiers == 0 && (unit == NSDeleteCharacter || unit == NSBackspaceCharacter)))
        return goUp();
    if (event->timestamp() - std::exchange(_typeTime, event->timestamp()) >= kTypeSeconds) _typed.clear();
    const bool isText = unit >= u' ' && unit != NSDeleteCharacter && !(unit >= 0xF700 && unit <= 0xF8FF);
    if (!isText || (modifiers & (NSCommandKeyMask | NSControlKeyMask)) || (unit == u' ' && _typed.empty()))
        return NSView::keyDown(event);
    if (_typed.empty() && (unit == u'/' || unit == u'~')) return typePath(event->characters());
    typeSelect(event->characters());
}

// Selects the first row whose name begins with what was typed; the same letter again goes on to the next.
void FilePanelView::typeSelect(NSString* characters) {
    for (NSUInteger i = 0; i < characters->length(); ++i) _typed += characters->characterAtIndex(i);
    const bool isOneLetter = _typed.find_first_not_of(_typed[0]) == std::u16string::npos;
    NSString* prefix = NSString::of(isOneLetter ? std::u16string_view(_typed).substr(0, 1) : _typed);
    const auto count = static_cast<NSInteger>(_listing.rows().size());
    const NSInteger start = std::max(0, _table->selectedRow() + (isOneLetter ? 1 : 0));
    for (NSInteger steps = 0; steps < count; ++steps) {
        const NSInteger row = (start + steps) % count;
        constexpr auto kOptions = NSCaseInsensitiveSearch | NSAnchoredSearch;
        NSString* name = _listing.rows()[static_cast<std::size_t>(row)].name;
        if (name->rangeOfString_options(prefix, kOptions).length == 0 ||
            !tableView_shouldSelectRow(_table, row))
            continue;
        _table->selectRow_byExtendingSelection(row, false);
        return _table->scrollRowToVisible(row);
    }
}

// MARK: A new folder, which is made when its name has been typed

void FilePanelView::makeFolder(id) {
    if (!folder() || !_panel) return;
    _table->abortEditing();
    _table->deselectAll(nullptr);
    const auto first = panelText(u"_New Folder"_ns)->copy();
    auto name = first;
    for (int i = 2; _listing.rowOfName(name) >= 0; ++i)
        name = NSString::stringWithFormat(u"%@ %d"_ns, first.get(), i)->copy();
    if (!std::exchange(_isNamingFolder, true)) _listing.insertRow(name);
    _table->reloadData();
    _table->editColumn_row_withEvent_select(_table->columnWithIdentifier(u"_Name"_ns), 0, nullptr, true);
}

void FilePanelView::tableView_setObjectValue_forTableColumn_row(id, id value, id, NSInteger row) {
    const auto name = Retained<NSString>::retaining(cast<NSString>(value));
    if (!_isNamingFolder || row != 0 || !name || name->length() == 0) return;
    const auto self = Retained<FilePanelView>::retaining(this);
    const auto path = Retained<NSString>::retaining(folder()->stringByAppendingPathComponent(name));
    constexpr auto* kFailure = u"_The folder “%@” cannot be made: %@."_ns;
    if (hasSlash(name))
        complain(kFailure, name, panelText(u"_a name cannot contain a slash"_ns));
    else if (!files()->createDirectoryAtPath_attributes(path, nullptr))
        complainOfFile(kFailure, name, path, true);
    else
        showFolder(path, true);
}

void FilePanelView::controlTextDidEndEditing(id) {
    if (!_isNamingFolder || _table->currentEditor()) return;
    _isNamingFolder = false;
    _listing.removeFirstRow();
    _table->reloadData();
}

// MARK: Choosing

// A double click, or Return in the table.
void FilePanelView::openRow(id) {
    if (!_panel || (_table->clickedRow() >= 0 && !_table->isRowSelected(_table->clickedRow()))) return;
    if (const auto chosen = Retained<NSString>::retaining(selectedFolder()))
        showFolder(chosen, true);
    else if (_table->numberOfSelectedRows() > 0)
        accept();
}

void FilePanelView::accept() {
    if (!_panel || !folder()) return;
    const auto self = Retained<FilePanelView>::retaining(this);
    const auto typed = (_showsField ? typedText() : u""_ns)->copy();
    if (_panel->isSaving() ? isPath(typed) : typed->length() > 0)
        acceptTyped(typed);
    else if (_panel->isSaving())
        acceptName(typed);
    else
        acceptSelection();
}

// A path, which begins at the folder on show unless it says where.
void FilePanelView::acceptTyped(NSString* text) {
    const bool isRelative = text->hasPrefix(u"."_ns) || !isPath(text);
    const auto path =
        (isRelative ? folder()->stringByAppendingPathComponent(text) : text->stringByExpandingTildeInPath())
            ->stringByStandardizingPath()
            ->copy();
    bool isFolder = false;
    if (files()->fileExistsAtPath_isDirectory(path, &isFolder) && isFolder) {
        if (showFolder(path, true)) leavePath();
    } else if (!_panel->isSaving()) {
        if (mayOpen(path)) accept(NSArray::of({path}));
    } else if (showFolder(path->stringByDeletingLastPathComponent(), true)) {
        setName(nameOf(path));
        acceptName(name());
    }
}

void FilePanelView::acceptSelection() {
    const auto chosen = Retained<NSString>::retaining(selectedFolder());
    if (chosen && !_panel->choosesDirectories()) return void(showFolder(chosen, true));
    auto paths = NSMutableArray::init();
    for (NSRange run : _table->selectedRowIndexes()->runs())
        for (NSUInteger i = run.location; i < NSMaxRange(run); ++i) {
            if (_listing.rows()[i].isFolder && !_panel->choosesDirectories()) continue;
            const auto path = Retained<NSString>::retaining(_listing.pathOfRow(i));
            if (!mayOpen(path)) return;
            paths->addObject(path);
        }
    if (_table->numberOfSelectedRows() == 0 && _panel->choosesDirectories()) paths->addObject(folder());
    if (paths->count() > 0) accept(paths);
}

void FilePanelView::acceptName(NSString* typed) {
    if (typed->length() == 0) return;
    const auto held = Retained<NSString>::retaining(typed);
    const auto delegate = Retained<Object>::retaining(_panel->delegate());
    const SEL question = "panel:nameForTypedName:"_sel;
    if (delegate && delegate->respondsToSelector(question))
        typed = send<NSString*>(delegate.get(), question, _panel, typed);
    const auto name = _panel->completedName(typed)->copy();
    const auto path = folder()->stringByAppendingPathComponent(name)->copy();
    constexpr auto* kFailure = u"_The name “%@” cannot be used: %@."_ns;
    if (hasSlash(name)) return complain(kFailure, name, panelText(u"_a name cannot contain a slash"_ns));
    struct stat status;
    const char* place = files()->fileSystemRepresentationWithPath(path);
    if (!place) errno = EINVAL;
    const bool isThere = place && ::lstat(place, &status) == 0;
    if (!isThere && errno != ENOENT) return complainOfFile(kFailure, name, path, true);
    if (bool isFolder; isThere && files()->fileExistsAtPath_isDirectory(path, &isFolder) && isFolder)
        return complain(kFailure, name, panelText(u"_a folder has this name already"_ns));
    if (!files()->isWritableFileAtPath(folder()))
        return complainOfFile(u"_Nothing can be saved in the folder “%@”: %@."_ns, nameOf(folder()), path,
                              true);
    if (!isThere || mayReplace(path)) accept(NSArray::of({path}));
}

bool FilePanelView::mayReplace(NSString* path) {
    auto alert = NSAlert::init();
    alert->setMessageText(NSString::stringWithFormat(
        panelText(u"_“%@” is in the folder “%@” already. Do you want to replace it?"_ns), nameOf(path),
        nameOf(folder())));
    alert->setInformativeText(panelText(u"_What it contains now will be lost."_ns));
    alert->addButtonWithTitle(panelText(u"_Cancel"_ns));
    alert->addButtonWithTitle(panelText(u"_Replace"_ns));
    return alert->runModal() == NSAlertSecondButtonReturn && _panel;
}

bool FilePanelView::mayOpen(NSString* path) {
    constexpr auto* kFailure = u"_“%@” cannot be opened: %@."_ns;
    bool isFolder = false;
    const bool isThere = files()->fileExistsAtPath_isDirectory(path, &isFolder);
    if (!isThere || !files()->isReadableFileAtPath(path)) {
        complainOfFile(kFailure, nameOf(path), path, false);
        return false;
    }
    if (isFolder ? _panel->choosesDirectories() : _panel->choosesFiles() && _panel->allowsName(nameOf(path)))
        return true;
    complain(kFailure, nameOf(path), panelText(u"_files of this kind cannot be chosen here"_ns));
    return false;
}

void FilePanelView::accept(NSArray* paths) {
    if (_panel) _panel->accept(paths);
}

}  // namespace pelvor
