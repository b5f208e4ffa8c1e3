// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRDocumentFile.h"

#include <algorithm>
#include <utility>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSUndoManager.h"
#include "Interface/NSAlert.h"
#include "Interface/NSSavePanel.h"
#include "Interface/NSWindow.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Text/NSTextStorage.h"
#include "Writer/DocumentTrash.h"
#include "Writer/LocalizedText.h"
#include "Writer/PageOutput.h"
#include "Writer/Pages/StyledDocument.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/Recovery/RecoveryStore.h"
#include "Writer/Recovery/WRRecoveryJournal.h"
#include "Writer/WRDocument.h"
#include "Writer/WRDocumentOpener.h"
#include "Writer/WRDocumentSaver.h"
#include "Writer/WRFileSentry.h"
#include "Writer/Windows/WRDesktop.h"
#include "Writer/Windows/WRDocumentWindow.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRRecentDocuments.h"
#include "Writer/Windows/WRSaveChoices.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

/// In the answer that a journal keeps: whether the document has formats, a number.
constexpr NSString* kHasFormatsKey = u"has formats"_ns;

PBRegistry* registry() { return PBRegistry::sharedRegistry(); }

/// Returns which of the buttons was pressed, from 0 on; -1 where nobody can be asked.
NSInteger ask(NSString* message, NSString* details, std::initializer_list<NSString*> buttons) {
    auto alert = NSAlert::init();
    alert->setMessageText(message);
    alert->setInformativeText(details);
    for (NSString* title : buttons) alert->addButtonWithTitle(title);
    const NSInteger answer = alert->runModal();
    return answer == NSAlertErrorReturn ? -1 : answer - NSAlertFirstButtonReturn;
}

// The text was not written. The sentence says why.
void complain(NSString* problem) {
    ask(localized(u"_The document was not saved."_ns), problem, {localized(u"_OK"_ns)});
}

// What a reader only shows cannot be saved.
bool isOnlyShown(WRDocument* document) {
    NSString* fidelity = document->fidelity();
    return fidelity && fidelity->isEqualToString(WRFidelityView);
}

// What two texts share at their beginnings and at their ends.
struct CommonParts {
    NSUInteger before = 0, after = 0;

    static CommonParts of(NSAttributedString* old, NSAttributedString* now) {
        const std::u16string a = old->string()->toUTF16(), b = now->string()->toUTF16();
        const auto front = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
        const auto shared = static_cast<std::size_t>(front.first - a.begin());
        const std::size_t rest = std::min(a.size(), b.size()) - shared;
        const auto back =
            std::mismatch(a.rbegin(), a.rbegin() + static_cast<std::ptrdiff_t>(rest), b.rbegin());
        return {static_cast<NSUInteger>(shared), static_cast<NSUInteger>(back.first - a.rbegin())};
    }
    /// Where a place in the old text is in the new one.
    NSUInteger place(NSUInteger place, NSUInteger oldLength, NSUInteger newLength) const {
        if (place <= before) return place;
        if (place >= oldLength - after) return newLength - (oldLength - place);
        return std::min(place, newLength - after);
    }
};

// Whether the parts that two texts share have the same formats as well.
bool areFormatsShared(NSAttributedString* old, NSAttributedString* now, const CommonParts& common) {
    const auto isShared = [=](NSUInteger oldStart, NSUInteger newStart, NSUInteger length) {
        return old->attributedSubstringFromRange({oldStart, length})
            ->isEqualToAttributedString(now->attributedSubstringFromRange({newStart, length}));
    };
    return isShared(0, 0, common.before) &&
           isShared(old->length() - common.after, now->length() - common.after, common.after);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRDocumentFile, windowsLibrary) {
    methods.instance<"saveDocument:", &WRDocumentFile::saveDocument>();
    methods.instance<"saveDocumentAs:", &WRDocumentFile::saveDocumentAs>();
    methods.instance<"revertDocumentToSaved:", &WRDocumentFile::revertDocumentToSaved>();
    methods.instance<"moveDocumentToTrash:", &WRDocumentFile::moveDocumentToTrash>();
    methods.instance<"validateMenuItem:", &WRDocumentFile::validateMenuItem>();
    methods.instance<"validateRevertDocumentToSaved:", &WRDocumentFile::validateRevertDocumentToSaved>();
    methods.instance<"validateMoveDocumentToTrash:", &WRDocumentFile::validateMoveDocumentToTrash>();
    methods.instance<"documentDidChange:", &WRDocumentFile::documentDidChange>();
    methods.instance<"undoManagerDidAct:", &WRDocumentFile::undoManagerDidAct>();
    methods.instance<"fileDidChange", &WRDocumentFile::fileDidChange>();
}

Retained<WRDocumentFile> WRDocumentFile::create(WRDocumentWindow* window) {
    auto self = make<WRDocumentFile>();
    self->_owner = window;
    self->_document.set(window->document());
    self->_isEdited = self->_document->hasChanged();
    auto* centre = NSNotificationCenter::defaultCenter();
    centre->addObserver_selector_name_object(self, "documentDidChange:"_sel, WRDocumentDidChangeNotification,
                                             self->_document);
    for (NSString* name : {NSUndoManagerDidUndoChangeNotification, NSUndoManagerDidRedoChangeNotification})
        centre->addObserver_selector_name_object(self, "undoManagerDidAct:"_sel, name, self->undoManager());
    self->watchFile();
    if (WRDesktop* desktop = WRDesktop::current(); desktop && desktop->recoveryStore())
        self->keepJournal(desktop->recoveryStore()->newFile());
    self->showState();
    if (NSString* message = self->_document->message()) window->showNotice(message, {});
    return self;
}

WRDocumentFile::~WRDocumentFile() { leave(); }

NSUndoManager* WRDocumentFile::undoManager() { return _owner->pageView()->undoManager(); }

// MARK: Changes

void WRDocumentFile::setEdited(bool isEdited) {
    if (std::exchange(_isEdited, isEdited) != isEdited) showState();
}

void WRDocumentFile::showState() {
    NSWindow* window = _owner->window();
    window->setTitle(_document->name());
    window->setRepresentedFilename(_document->path());
    window->setDocumentEdited(isEdited());
}

void WRDocumentFile::documentDidChange(NSNotification*) {
    noteOrigin();
    NSUndoManager* manager = undoManager();
    if (!manager->isUndoing() && !manager->isRedoing()) setEdited(true);
}

void WRDocumentFile::undoManagerDidAct(NSNotification*) {
    noteOrigin();
    setEdited(_savedState != undoManager()->stateNumber());
    if (_journal && !isEdited()) _journal->documentIsInFile(origin());
}

void WRDocumentFile::documentIsInFile() {
    beginStep();
    _savedState = undoManager()->stateNumber();
    _isEdited = _isFileGone = false;
    _owner->hideNotice();
    if (_journal) _journal->documentIsInFile(origin());
    showState();
}

// What was done before and what is done now are undone one by one.
void WRDocumentFile::beginStep() {
    _owner->pageView()->breakUndoCoalescing();
    undoManager()->closeGroupOfEvent();
}

void WRDocumentFile::close() {
    if (_sentry) std::exchange(_sentry, nullptr)->invalidate();
    if (_journal) std::exchange(_journal, nullptr)->close();
    NSNotificationCenter::defaultCenter()->removeObserver(this);
}

void WRDocumentFile::leave() {
    if (_journal && isEdited()) std::exchange(_journal, nullptr)->leave();
    close();
}

bool WRDocumentFile::mayClose() {
    const bool isBlank = !_document->hasFile() && _document->text()->length() == 0;
    if (!isEdited() || isBlank) return true;
    const auto alive = Retained<WRDocumentFile>::retaining(this);
    _owner->window()->makeKeyAndOrderFront(nullptr);
    const NSInteger answer =
        ask(localizedFormat(u"_Save the changes to \"%@\"?"_ns, _document->name()),
            localized(u"_Your changes will be lost if you do not save them."_ns),
            {localized(u"_Save"_ns), localized(u"_Cancel"_ns), localized(u"_Don't Save"_ns)});
    return answer == 0 ? save() : answer == 2;
}

// MARK: Saving

void WRDocumentFile::saveDocument(id) { save(); }
void WRDocumentFile::saveDocumentAs(id) { saveAs(nullptr); }

bool WRDocumentFile::save() {
    return _document->hasFile() ? writeToPath(_document->path(), nullptr) : saveAs(nullptr);
}

bool WRDocumentFile::saveAs(PBProfile* writer) {
    const auto alive = Retained<WRDocumentFile>::retaining(this);
    auto choices = WRSaveChoices::create(_document, writer);
    NSSavePanel* panel = NSSavePanel::savePanel();
    choices->attachToPanel(panel);
    NSString* name = _document->name()->stringByDeletingPathExtension();
    if (NSString* extension = choices->extension())
        name = name->stringByAppendingPathExtension(extension);
    else
        name = _document->name();
    NSString* folder =
        _document->hasFile() ? _document->path()->stringByDeletingLastPathComponent() : nullptr;
    if (panel->runModalForDirectory_file(folder, name) != NSOKButton || !panel->filename()) return false;
    return writeToPath(panel->filename(), choices->encodingName());
}

bool WRDocumentFile::writeToPath(NSString* path, NSString* encodingName) {
    const auto alive = Retained<WRDocumentFile>::retaining(this);
    const auto kept = path->copy();
    const bool isOwn = path->isEqualToString(_document->path());
    WRDesktop* desktop = WRDesktop::current();
    WRDocumentWindow* other = desktop ? desktop->windowForPath(path) : nullptr;
    if (other && other != _owner) {
        complain(localizedFormat(u"_\"%@\" is open in another window."_ns, path->lastPathComponent()));
        return false;
    }
    auto saver = WRDocumentSaver::initWithProfiles(registry());
    saver->chooseWriterForDocument_path(_document, path);
    if (isOwn)
        if (const auto result = resultWithoutReplacing(path)) return *result;
    const bool dropsFormats = saver->dropsFormats(_document);
    if (dropsFormats)
        if (const auto result = resultWithoutFormats(saver, path, encodingName)) return *result;
    const bool isText = !WRDocumentSaver::keepsFormats(saver->writer());
    const bool hadFormats = _document->hasFormats();
    const auto ownSettings = Retained<NSDictionary>::retaining(_document->settings());
    if (!isText) takeLook();
    NSDictionary* answer =
        saver->saveDocument_toPath_encoding(_document, path, isText ? encodingName : nullptr);
    if (!answer) {
        _document->setHasFormats(hadFormats);
        _document->setSettings(ownSettings);
        return handleFailure(saver, path);
    }
    _document->wasWrittenToPath_reader_encoding(
        path, saver->readerForPath(path),
        isText ? cast<NSString>(answer->objectForKey(WREncodingKey)) : nullptr);
    if (dropsFormats) showWithoutFormats();
    _owner->showTitle();
    documentIsInFile();
    if (isOwn && _sentry)
        _sentry->noteIdentity(_document->fileIdentity());
    else
        watchFile();
    if (desktop) desktop->recentDocuments()->addPath(path);
    if (auto* message = cast<NSString>(answer->objectForKey(WRMessageKey))) _owner->showNotice(message, {});
    return true;
}

// What has room for formats and page settings gets those that the user sees, so that the document looks the
// same when it is opened again.
void WRDocumentFile::takeLook() {
    _document->setHasFormats(true);
    if (_document->settings()) return;
    auto* settings = NSMutableDictionary::dictionaryWithDictionary(_owner->pageView()->pages()->settings());
    settings->removeObjectForKey(WRTitleKey);
    _document->setSettings(settings);
}

// The window shows what the file holds. Undoing brings the formats back, as a change that is in no file.
void WRDocumentFile::showWithoutFormats() {
    beginStep();
    _owner->formatCommands()->setDocumentHasFormats(false);
    auto* options = NSMutableDictionary::dictionaryWithDictionary(
        pageOptionsWithLanguages(_document, _owner->wishes(), registry()));
    options->removeObjectForKey(WRDocumentSettingsKey);
    const auto styled = StyledDocument::of(_document->text(), options);
    if (styled.problem) return;
    replaceContent(styled, nullptr, localized(u"_Save without Formats"_ns));
    if (styled.text->length() == 0) _owner->pageView()->setTypingAttributes(styled.plainAttributes);
}

// Another program's work is not replaced without a word. Nothing if the file may be replaced; else whether
// the document was saved elsewhere.
std::optional<bool> WRDocumentFile::resultWithoutReplacing(NSString* path) {
    const FileIdentity now = FileIdentity::ofFile(path);
    if (!now.isThere() || now == _document->fileIdentity()) return std::nullopt;
    const NSInteger answer =
        ask(localizedFormat(u"_Another program has changed \"%@\". Replace the file?"_ns, _document->name()),
            localized(u"_What the other program has written will be lost."_ns),
            {localized(u"_Save As…"_ns), localized(u"_Cancel"_ns), localized(u"_Replace"_ns)});
    if (answer == 2) return std::nullopt;
    return answer == 0 && saveAs(nullptr);
}

// Nothing if the user wants the text alone to be written; else whether the document was saved.
std::optional<bool> WRDocumentFile::resultWithoutFormats(WRDocumentSaver* saver, NSString* path,
                                                         NSString* encodingName) {
    PBProfile* rich = WRSaveChoices::richWriter();
    NSString* message =
        localizedFormat(u"_\"%@\" would lose the formats of the document."_ns, path->lastPathComponent());
    NSString* details = localizedFormat(u"_Files of the kind \"%@\" have no room for formats."_ns,
                                        nameOfProfile(saver->writer()));
    NSString* without = localized(u"_Save without Formats"_ns);
    const NSInteger answer =
        rich ? ask(message, details,
                   {localizedFormat(u"_Save as %@…"_ns, nameOfProfile(rich)), localized(u"_Cancel"_ns),
                    without})
             : ask(message, details, {localized(u"_Cancel"_ns), localized(u"_OK"_ns), without});
    if (answer == 0 && rich) return saveAs(rich);
    return answer == 2 ? std::nullopt : std::optional(false);
}

// Returns whether the document was saved in another way.
bool WRDocumentFile::handleFailure(WRDocumentSaver* saver, NSString* path) {
    NSString* message = localized(u"_The document was not saved."_ns);
    switch (saver->remedy()) {
        case SavingRemedy::none:
            complain(saver->problem());
            return false;
        case SavingRemedy::file:
            return ask(message, saver->problem(), {localized(u"_Save As…"_ns), localized(u"_Cancel"_ns)}) ==
                       0 &&
                   saveAs(nullptr);
        case SavingRemedy::encoding:
            break;
    }
    const NSInteger answer = ask(
        message,
        localizedFormat(
            u"_The text of \"%@\" does not fit the encoding of the file. UTF-8 has room for every text."_ns,
            path->lastPathComponent()),
        {localized(u"_Save in UTF-8"_ns), localized(u"_Cancel"_ns), localized(u"_Save As…"_ns)});
    return answer == 0 ? writeToPath(path, u"UTF-8"_ns) : answer == 2 && saveAs(nullptr);
}

// MARK: Reading again

bool WRDocumentFile::validateMenuItem(id item) {
    bool isEnabled = true;
    dispatchValidationTo_result(item, this, &isEnabled);
    return isEnabled;
}

bool WRDocumentFile::validateRevertDocumentToSaved(id) {
    return _document->fileIdentity().isThere() && isEdited();
}

void WRDocumentFile::revertDocumentToSaved(id) {
    if (validateRevertDocumentToSaved(nullptr)) revertWithEncoding(nullptr);
}

void WRDocumentFile::revertWithEncoding(NSString* encodingName) {
    const auto alive = Retained<WRDocumentFile>::retaining(this);
    if (isEdited() &&
        ask(localizedFormat(u"_Revert to the file \"%@\"?"_ns, _document->name()),
            localized(
                u"_Changes made since the document was saved will be discarded; \"Undo\" brings them back."_ns),
            {localized(u"_Revert"_ns), localized(u"_Cancel"_ns)}) != 0)
        return;
    if (const auto problem = readAgain(encodingName))
        ask(localized(u"_The document stays as it is."_ns), problem, {localized(u"_OK"_ns)});
}

Retained<NSString> WRDocumentFile::readAgain(NSString* encodingName) {
    AutoreleasePool pool;
    auto opener = WRDocumentOpener::initWithProfiles(registry());
    auto* options = NSMutableDictionary::dictionary();
    // The encoding may be one that the user chose. Where it no longer fits, it is found out again.
    NSString* encoding = encodingName              ? encodingName
                         : _document->hasFormats() ? nullptr
                                                   : _document->encodingName();
    if (encoding) options->setObject_forKey(encoding, WREncodingKey);
    WRDocument* read = opener->openDocumentAtPath_options(_document->path(), options);
    if (!read && encoding && !encodingName)
        read = opener->openDocumentAtPath_options(_document->path(), NSDictionary::dictionary());
    if (!read) return Retained<NSString>::retaining(opener->problem());
    if (isOnlyShown(read) && !isOnlyShown(_document))
        return Retained<NSString>::retaining(localizedFormat(
            u"_The document \"%@\" could not be opened: there is no reader for it."_ns, _document->path()));
    const auto styled =
        StyledDocument::of(read->text(), pageOptionsWithLanguages(read, _owner->wishes(), registry()));
    if (styled.problem) return Retained<NSString>::retaining(styled.problem);
    beginStep();
    replaceContent(styled, read->settings(), localized(u"_Revert"_ns));
    _document->takeReading(read);
    documentIsInFile();
    if (_sentry) _sentry->noteIdentity(_document->fileIdentity());
    if (NSString* message = _document->message()) _owner->showNotice(message, {});
    return nullptr;
}

// All that is changed belongs to the step that has begun.
void WRDocumentFile::replaceContent(const StyledDocument& styled, NSDictionary* ownSettings,
                                    NSString* actionName) {
    bool isChanged = replaceText(styled.text);
    NSDictionary* own = _document->settings();
    const bool isOwnSame = own ? own->isEqual(ownSettings) : !ownSettings;
    if (!isOwnSame || !styled.settings->isEqual(_owner->pageView()->pages()->settings()))
        isChanged = _owner->setPageSettings_ownSettings(styled.settings, ownSettings) || isChanged;
    if (isChanged) undoManager()->setActionName(actionName);
}

// Only what differs is replaced, so that pages that stay the same are not set again. What was at the upper
// edge of the window stays there. Returns whether the replacing can be undone.
bool WRDocumentFile::replaceText(NSAttributedString* text) {
    WRPageView* view = _owner->pageView();
    NSTextStorage* storage = view->textStorage();
    const NSUInteger oldLength = storage->length(), newLength = text->length();
    const CommonParts common = CommonParts::of(storage, text);
    CommonParts replaced = common;
    if (!areFormatsShared(storage, text, common)) replaced = {};
    const NSRange range{replaced.before, oldLength - replaced.before - replaced.after};
    const NSRange source{replaced.before, newLength - replaced.before - replaced.after};
    if (range.length == 0 && source.length == 0) return false;

    const auto upper = view->upperPlace();
    const NSRange selection = view->selectedRange();

    const bool isUndoable =
        view->shouldChangeTextInRange_replacementString(range, text->string()->substringWithRange(source));
    storage->replaceCharactersInRange_withAttributedString(range, text->attributedSubstringFromRange(source));
    if (isUndoable)
        view->didChangeText();
    else
        undoManager()->removeAllActions();

    const auto place = [=](NSUInteger unit) { return common.place(unit, oldLength, newLength); };
    const NSUInteger start = place(selection.location), end = place(NSMaxRange(selection));
    view->setSelectedRange({start, end - start});
    view->showPlace({place(upper.unit), upper.height});
    return isUndoable;
}

// MARK: Other programs

void WRDocumentFile::watchFile() {
    if (_sentry) std::exchange(_sentry, nullptr)->invalidate();
    if (!_document->hasFile()) return;
    _sentry = WRFileSentry::initWithPath_target_selector(_document->path(), this, "fileDidChange"_sel);
    if (_document->fileIdentity().isThere()) _sentry->noteIdentity(_document->fileIdentity());
}

void WRDocumentFile::fileDidChange() {
    if (!_sentry) return;
    const auto alive = Retained<WRDocumentFile>::retaining(this);
    _sentry->noteFile();
    const bool wasGone = std::exchange(_isFileGone, !_sentry->isFileThere());
    showState();
    if (_isFileGone) {
        if (wasGone) return;
        keepInJournal();
        _owner->showNotice(
            localizedFormat(
                u"_Another program has removed or renamed \"%@\". Its text is still open here; \"Save\" writes the file anew."_ns,
                _document->name()),
            {{localized(u"_Save"_ns), [this] { save(); }}});
        return;
    }
    const FileIdentity file = FileIdentity::ofFile(_document->path());
    if (file == _document->fileIdentity()) {
        if (wasGone && !_isEdited && _journal) _journal->documentIsInFile(origin());
        return _owner->hideNotice();
    }
    if (_isEdited)
        return _owner->showNotice(
            localizedFormat(u"_Another program has changed \"%@\", which was changed here, too."_ns,
                            _document->name()),
            {{localized(u"_Reload"_ns),
              [this] {
                  if (const auto problem = readAgain()) _owner->showNotice(problem, {});
              }},
             {localized(u"_Keep Mine"_ns), [this, file] { keepMine(file); }}});
    const auto problem = readAgain();
    if (!problem) return;
    _isFileGone = true;  // what has its name now is no document
    showState();
    keepInJournal();
    _owner->showNotice(problem, {});
}

// What is in the window is in no file, whether or not it was edited.
void WRDocumentFile::keepInJournal() {
    if (_journal) _journal->setOrigin(origin());
}

// The user knows what is in the file and does not want it: the file may be replaced.
void WRDocumentFile::keepMine(const FileIdentity& file) {
    _document->setFileIdentity(file);
    _savedState.reset();
    keepInJournal();
}

// MARK: Trash

bool WRDocumentFile::validateMoveDocumentToTrash(id) {
    return _document->fileIdentity().isThere() && !_isFileGone;
}

void WRDocumentFile::moveDocumentToTrash(id) {
    if (!validateMoveDocumentToTrash(nullptr)) return;
    const auto alive = Retained<WRDocumentFile>::retaining(this);
    NSString* details =
        isEdited() ? localized(u"_The window closes, and changes that are not saved will be lost."_ns)
                   : localized(u"_The window closes. You find the file in the trash of the desktop."_ns);
    if (ask(localizedFormat(u"_Move \"%@\" to the trash?"_ns, _document->name()), details,
            {localized(u"_Move to Trash"_ns), localized(u"_Cancel"_ns)}) != 0)
        return;
    NSString* place = nullptr;
    if (NSString* problem = throwDocumentAway(_document->path(), &place)) {
        ask(localized(u"_The document stays where it is."_ns), problem, {localized(u"_OK"_ns)});
        return;
    }
    _owner->window()->close();
}

// MARK: Recovery

void WRDocumentFile::keepJournal(std::shared_ptr<RecoveryFile> file, NSUInteger place) {
    if (_journal) _journal->close();
    _journaledFormats = _document->hasFormats();
    _journaledSettings.set(_document->settings());
    _journal = WRRecoveryJournal::create(_owner->pageView()->textStorage(), origin(), std::move(file), place);
    _journal->setFilter([this] { return !_owner->isFindingLanguages(); });
    _journal->setProblemHandler([this](NSString* problem) { _owner->showNotice(problem, {}); });
}

// What the journal knows besides the text.
void WRDocumentFile::noteOrigin() {
    const bool isSame =
        _journaledFormats == _document->hasFormats() && _journaledSettings == _document->settings();
    if (!_journal || isSame) return;
    _journaledFormats = _document->hasFormats();
    _journaledSettings.set(_document->settings());
    _journal->setOrigin(origin());
}

RecoveryOrigin WRDocumentFile::origin() {
    auto* answer = NSMutableDictionary::dictionaryWithDictionary(_document->answer());
    answer->setObject_forKey(NSNumber::numberWithBool(_document->hasFormats()), kHasFormatsKey);
    if (_document->settings()) answer->setObject_forKey(_document->settings(), WRDocumentSettingsKey);
    auto* reader = _document->reader() ? cast<NSString>(_document->reader()->identifier()) : nullptr;
    RecoveryOrigin origin =
        RecoveryOrigin::of(_document->hasFile() ? _document->path() : nullptr, reader, answer);
    origin.file = _document->fileIdentity();
    return origin;
}

Retained<WRDocument> WRDocumentFile::documentOf(const AbandonedDocument& abandoned) {
    const RecoveryOrigin& origin = abandoned.origin;
    auto* answer = NSMutableDictionary::dictionary();
    if (origin.answer) answer->addEntriesFromDictionary(origin.answer);
    auto* hasFormats = cast<NSNumber>(answer->objectForKey(kHasFormatsKey));
    answer->removeObjectForKey(kHasFormatsKey);
    answer->setObject_forKey(abandoned.text->string(), WRTextKey);
    if (!hasFormats || hasFormats->boolValue()) answer->setObject_forKey(abandoned.text, WRRichTextKey);
    PBProfile* reader = origin.reader ? registry()->profileWithIdentifier(origin.reader) : nullptr;
    auto document =
        WRDocument::initWithPath_reader_answer(origin.path ? origin.path.get() : u""_ns, reader, answer);
    if (document) document->setFileIdentity(origin.file);
    return document;
}

void WRDocumentFile::takeAbandoned(const AbandonedDocument& abandoned) {
    keepJournal(abandoned.file, abandoned.place);
    _savedState.reset();
    _document->textDidChange();  // before the crash
    NSString* text = nullptr;
    switch (abandoned.fileState()) {
        case RecoveredFileState::unchanged:
            text = localizedFormat(
                u"_Writer ended unexpectedly. These are your last changes to \"%@\"; they are not saved yet."_ns,
                _document->path());
            break;
        case RecoveredFileState::changed:
            text = localizedFormat(
                u"_Writer ended unexpectedly. These are your last changes to \"%@\", which another program has changed since; \"Save\" asks before it replaces the file."_ns,
                _document->path());
            break;
        case RecoveredFileState::missing:
            text = localizedFormat(
                u"_Writer ended unexpectedly. These are your last changes to \"%@\", which is not there any more; \"Save\" writes the file anew."_ns,
                _document->path());
            break;
        case RecoveredFileState::neverThere:
            text = localized(u"_Writer ended unexpectedly. This document is in no file yet."_ns);
            break;
    }
    if (_sentry) _sentry->noteFile();  // told by the notice
    _isFileGone = abandoned.fileState() == RecoveredFileState::missing;
    showState();
    _owner->showNotice(text, {});
    WRPageView* view = _owner->pageView();
    view->setSelectedRange({abandoned.place, 0});
    view->scrollRangeToVisible({abandoned.place, 0});
}

}  // namespace pelvor
