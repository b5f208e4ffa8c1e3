// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSSavePanel.h"

#include "Foundation/LibraryTexts.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSLog.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSApplication.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSSavePanel, interfaceLibrary) {
    methods.creator<"savePanel", &NSSavePanel::savePanel>();
    methods.creator<"initWithContentRect:styleMask:backing:defer:",
                    &NSSavePanel::initWithContentRect_styleMask_backing_defer>();
    methods.instance<"runModal", &NSSavePanel::runModal>();
    methods.instance<"runModalForDirectory:file:", &NSSavePanel::runModalForDirectory_file>();
    methods.instance<"ok:", &NSSavePanel::ok>();
    methods.instance<"cancel:", &NSSavePanel::cancel>();
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

NSString* localized(NSString* key) {
    NSString* text = localizedLibraryText(key);
    return text ? text : key->substringFromIndex(1);
}

constexpr NSRect kFirstContents{{0, 0}, {620, 460}};

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
    NSLog(u"%@: nobody can choose a file."_ns, title());
    return NSCancelButton;
}

NSInteger NSSavePanel::runModalForDirectory_file(NSString* directory, NSString* name) {
    if (directory) setDirectory(directory);
    if (name) setNameFieldStringValue(name);
    return runModal();
}

void NSSavePanel::ok(id) {}
void NSSavePanel::cancel(id) {}
void NSSavePanel::becomeKeyWindow() { NSPanel::becomeKeyWindow(); }

// MARK: Properties

NSString* NSSavePanel::filename() {
    return _paths && _paths->count() ? static_cast<NSString*>(_paths->objectAtIndex(0)) : nullptr;
}

NSString* NSSavePanel::directory() { return _directory; }
void NSSavePanel::setDirectory(NSString* path) { _directory = copied(path); }
NSString* NSSavePanel::nameFieldStringValue() { return _name ? _name.get() : u""_ns; }
void NSSavePanel::setNameFieldStringValue(NSString* name) { _name = copied(name); }
NSString* NSSavePanel::prompt() {
    return _prompt ? _prompt.get() : localized(isSaving() ? u"_Save"_ns : u"_Open"_ns);
}
void NSSavePanel::setPrompt(NSString* prompt) { _prompt = copied(prompt); }
NSString* NSSavePanel::message() { return _message ? _message.get() : u""_ns; }
void NSSavePanel::setMessage(NSString* message) { _message = copied(message); }
NSString* NSSavePanel::nameFieldLabel() { return _nameLabel ? _nameLabel.get() : localized(u"_Save as:"_ns); }
void NSSavePanel::setNameFieldLabel(NSString* label) { _nameLabel = copied(label); }

void NSSavePanel::setTitle(NSString* title) {
    NSPanel::setTitle(title ? title : localized(isSaving() ? u"_Save"_ns : u"_Open"_ns));
}

void NSSavePanel::setAllowedFileTypes(NSArray* types) {
    _types = types && types->count() ? NSArray::initWithArray(types) : nullptr;
}

NSString* NSSavePanel::requiredFileType() {
    return _types ? cast<NSString>(_types->objectAtIndex(0)) : nullptr;
}

void NSSavePanel::setRequiredFileType(NSString* type) {
    setAllowedFileTypes(type ? NSArray::of({type}) : nullptr);
}

void NSSavePanel::setCanCreateDirectories(bool can) { _canCreateDirectories = can; }
void NSSavePanel::setShowsHiddenFiles(bool shows) { _showsHiddenFiles = shows; }
void NSSavePanel::validateVisibleColumns() {}
void NSSavePanel::setAccessoryView(NSView* view) { _accessoryView.set(view); }

}  // namespace pelvor
