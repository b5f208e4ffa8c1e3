// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSSavePanel.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSUserDefaults.h"
#include "Foundation/StandardFolders.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSApplication.h"
#include "Interface/Panels/FilePanelView.h"
#include "Interface/Panels/PanelMessages.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSSavePanel, interfaceLibrary) {
    methods.creator<"savePanel", &NSSavePanel::savePanel>();
    methods.creator<"initWithContentRect:styleMask:backing:defer:",
                    &NSSavePanel::initWithContentRect_styleMask_backing_defer>();
    methods.instance<"runModal", &NSSavePanel::runModal>();
    methods.instance<"runModalForDirectory:file:", &NSSavePanel::runModalForDirectory_file>();
    methods.instance<"ok:", &NSSavePanel::ok>();
    methods.instance<"cancel:", &NSSavePanel::cancel>();
    methods.instance<"windowShouldClose:", &NSSavePanel::windowShouldClose>();
    methods.instance<"filename", &NSSavePanel::filename>();
    methods.instance<"directory", &NSSavePanel::directory>();
    methods.instance<"setDirectory:", &NSSavePanel::setDirectory>();
    methods.instance<"nameFieldStringValue", &NSSavePanel::nameFieldStringValue>();
    methods.instance<"setNameFieldStringValue:", &NSSavePanel::setNameFieldStringValue>();
    methods.instance<"prompt", &NSSavePanel::prompt>();
    methods.instance<"setPrompt:", &NSSavePanel::setPrompt>();
    methods.instance<"message", &NSSavePanel::message>();
    methods.instance<"setMessage:", &NSSavePanel::setMessage>();
    methods.instance<"nameFieldLabel", &NSSavePanel::nameFieldLabel>();
    methods.instance<"setNameFieldLabel:", &NSSavePanel::setNameFieldLabel>();
    methods.instance<"allowedFileTypes", &NSSavePanel::allowedFileTypes>();
    methods.instance<"setAllowedFileTypes:", &NSSavePanel::setAllowedFileTypes>();
    methods.instance<"requiredFileType", &NSSavePanel::requiredFileType>();
    methods.instance<"setRequiredFileType:", &NSSavePanel::setRequiredFileType>();
    methods.instance<"allowsOtherFileTypes", &NSSavePanel::allowsOtherFileTypes>();
    methods.instance<"setAllowsOtherFileTypes:", &NSSavePanel::setAllowsOtherFileTypes>();
    methods.instance<"canCreateDirectories", &NSSavePanel::canCreateDirectories>();
    methods.instance<"setCanCreateDirectories:", &NSSavePanel::setCanCreateDirectories>();
    methods.instance<"showsHiddenFiles", &NSSavePanel::showsHiddenFiles>();
    methods.instance<"setShowsHiddenFiles:", &NSSavePanel::setShowsHiddenFiles>();
    methods.instance<"validateVisibleColumns", &NSSavePanel::validateVisibleColumns>();
    methods.instance<"accessoryView", &NSSavePanel::accessoryView>();
    methods.instance<"setAccessoryView:", &NSSavePanel::setAccessoryView>();
}

namespace {

Retained<NSString> copied(NSString* text) { return text ? text->copy() : nullptr; }

bool equalIgnoringCase(NSString* a, NSString* b) { return a->caseInsensitiveCompare(b) == NSOrderedSame; }

constexpr NSRect kFirstContents{{0, 0}, {640, 460}};
constexpr NSSize kLeastContents{420, 320};

}  // namespace

NSSavePanel::NSSavePanel() = default;
NSSavePanel::~NSSavePanel() = default;

NSSavePanel* NSSavePanel::savePanel(Class* cls) {
    return initWithContentRect_styleMask_backing_defer(kFirstContents, 0, NSBackingStoreBuffered, true, cls)
        .autorelease();
}

Retained<NSSavePanel> NSSavePanel::initWithContentRect_styleMask_backing_defer(NSRect contentRect, NSUInteger,
                                                                               NSBackingStoreType backing,
                                                                               bool defer, Class* cls) {
    constexpr NSUInteger kStyle = NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask;
    auto panel = cast<NSSavePanel>(
        NSPanel::initWithContentRect_styleMask_backing_defer(contentRect, kStyle, backing, defer, cls));
    panel->setTitle(nullptr);
    return panel;
}

// MARK: Running

NSInteger NSSavePanel::runModal() {
    _paths = nullptr;
    if (_view) return NSCancelButton;  // it runs already
    NSApplication* application = NSApplication::sharedApplication();
    if (!application->state().canAsk()) {
        NSLog(u"%@: nobody can choose a file."_ns, title());
        return NSCancelButton;
    }
    const auto held = Retained<NSSavePanel>::retaining(this);
    struct End {
        NSSavePanel* panel;
        ~End() { panel->endRun(); }
    } end{this};
    NSString* frameName = isSaving() ? u"NSSavePanel"_ns : u"NSOpenPanel"_ns;
    setFrameUsingName(frameName);
    center();
    setLevel(NSModalPanelWindowLevel);
    setContentMinSize(kLeastContents);
    _view = FilePanelView::viewFor(this);
    setContentView(_view);
    _view->begin(foldersToBeginWith(), _name ? _name.get() : u""_ns);
    const NSInteger code = application->runModalForWindow(this);
    saveFrameUsingName(frameName);
    if (code != NSOKButton) _paths = nullptr;
    return _paths ? NSOKButton : NSCancelButton;
}

void NSSavePanel::endRun() {
    const auto view = std::exchange(_view, nullptr);
    if (!view) return;
    endEditingFor(nullptr);
    _directory = copied(view->folder());
    if (isSaving()) _name = copied(view->name());
    view->end();
    if (_accessoryView) _accessoryView->removeFromSuperview();
    orderOut(nullptr);
    setContentView(nullptr);
}

// The first that can be read is shown.
std::vector<NSString*> NSSavePanel::foldersToBeginWith() {
    return {_directory, NSUserDefaults::standardUserDefaults()->stringForKey(PelvorPanelFolder),
            folderOfType(folderType("docs"), FolderDomainUser), NSHomeDirectory(), u"/"_ns};
}

void NSSavePanel::accept(NSArray* paths) {
    if (!_view || !paths || NSApplication::sharedApplication()->modalWindow() != this) return;
    const auto held = Retained<NSSavePanel>::retaining(this);
    const auto kept = NSArray::initWithArray(paths);
    const auto delegate = Retained<Object>::retaining(this->delegate());
    const SEL question = "panel:isValidFilename:"_sel;
    if (delegate && delegate->respondsToSelector(question))
        for (id path : kept)
            if (!send<bool>(delegate.get(), question, this, path)) return;
    if (!_view) return;
    _paths = kept;
    NSUserDefaults::standardUserDefaults()->setObject_forKey(_view->folder(), PelvorPanelFolder);
    NSApplication::sharedApplication()->stopModalWithCode(NSOKButton);
}

NSInteger NSSavePanel::runModalForDirectory_file(NSString* directory, NSString* name) {
    if (directory) setDirectory(directory);
    if (name) setNameFieldStringValue(name);
    return runModal();
}

void NSSavePanel::ok(id) {
    if (const auto view = _view) view->accept();
}

void NSSavePanel::cancel(id) {
    NSApplication* application = _view ? NSApp() : nullptr;
    if (application && application->modalWindow() == this) application->stopModalWithCode(NSCancelButton);
}

bool NSSavePanel::windowShouldClose(id) {
    cancel(nullptr);
    return false;
}

void NSSavePanel::becomeKeyWindow() {
    NSPanel::becomeKeyWindow();
    if (const auto view = _view) view->readAgainIfChanged();
}

// MARK: Properties

NSString* NSSavePanel::filename() {
    return _paths && _paths->count() ? static_cast<NSString*>(_paths->objectAtIndex(0)) : nullptr;
}

NSString* NSSavePanel::directory() { return _view ? _view->folder() : _directory.get(); }

void NSSavePanel::setDirectory(NSString* path) {
    const auto view = _view;
    if (!view) {
        _directory = copied(path);
        return;
    }
    for (NSString* each : {path, foldersToBeginWith()[1]})
        if (each && view->showFolder(each, false)) return;
}

NSString* NSSavePanel::nameFieldStringValue() {
    return _view && isSaving() ? _view->name() : _name ? _name.get() : u""_ns;
}

void NSSavePanel::setNameFieldStringValue(NSString* name) {
    _name = copied(name);
    if (const auto view = _view; view && isSaving()) view->setName(_name ? _name.get() : u""_ns);
}

NSString* NSSavePanel::prompt() {
    return _prompt ? _prompt.get() : panelText(isSaving() ? u"_Save"_ns : u"_Open"_ns);
}
NSString* NSSavePanel::message() { return _message ? _message.get() : u""_ns; }
NSString* NSSavePanel::nameFieldLabel() { return _nameLabel ? _nameLabel.get() : panelText(u"_Save as:"_ns); }

void NSSavePanel::refresh() {
    if (const auto view = _view) view->refresh();
}

void NSSavePanel::setPrompt(NSString* prompt) {
    _prompt = copied(prompt);
    refresh();
}

void NSSavePanel::setMessage(NSString* message) {
    _message = copied(message);
    refresh();
}

void NSSavePanel::setNameFieldLabel(NSString* label) {
    _nameLabel = copied(label);
    refresh();
}

void NSSavePanel::setTitle(NSString* title) {
    NSPanel::setTitle(title ? title : panelText(isSaving() ? u"_Save"_ns : u"_Open"_ns));
}

// MARK: Types

bool NSSavePanel::allowsName(NSString* name) {
    if (!_types || !name) return true;
    NSString* extension = name->pathExtension();
    for (id type : _types.get())
        if (cast<NSString>(type) && equalIgnoringCase(extension, static_cast<NSString*>(type))) return true;
    return isSaving() && _allowsOtherTypes;
}

NSString* NSSavePanel::completedName(NSString* name) {
    NSString* type = requiredFileType();
    if (!name || !type) return name ? name : u""_ns;
    const bool isOther = _allowsOtherTypes && name->pathExtension()->length() == 0;
    return allowsName(name) && !isOther ? name : NSString::stringWithFormat(u"%@.%@"_ns, name, type);
}

void NSSavePanel::setAllowedFileTypes(NSArray* types) {
    const auto view = _view;
    const bool replaces = view && isSaving() && _types && allowsName(view->name());
    _types = types && types->count() ? NSArray::initWithArray(types) : nullptr;
    if (!view) return;
    NSString* name = view->name();
    if (replaces && !allowsName(name) && name->pathExtension()->length() > 0)
        view->setName(completedName(name->stringByDeletingPathExtension()));
    view->readAgain();
}

NSString* NSSavePanel::requiredFileType() {
    return _types ? cast<NSString>(_types->objectAtIndex(0)) : nullptr;
}

void NSSavePanel::setRequiredFileType(NSString* type) {
    setAllowedFileTypes(type ? NSArray::of({type}) : nullptr);
}

// MARK: What is shown

void NSSavePanel::setCanCreateDirectories(bool can) {
    _canCreateDirectories = can;
    refresh();
}

void NSSavePanel::setShowsHiddenFiles(bool shows) {
    if (std::exchange(_showsHiddenFiles, shows) != shows) validateVisibleColumns();
}

void NSSavePanel::validateVisibleColumns() {
    if (const auto view = _view) view->readAgain();
}

void NSSavePanel::setAccessoryView(NSView* view) {
    _accessoryView.set(view);
    refresh();
}

}  // namespace pelvor
