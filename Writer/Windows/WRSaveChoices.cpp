// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRSaveChoices.h"

#include "Foundation/NSMutableArray.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSSavePanel.h"
#include "Interface/NSTextField.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Writer/LocalizedText.h"
#include "Writer/ProfileChoice.h"
#include "Writer/WRDocument.h"
#include "Writer/WRDocumentSaver.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr float kLineHeight = 32, kLabelWidth = 110, kButtonWidth = 220;
constexpr NSString* kUsualEncodings[] = {
    u"UTF-8"_ns,       u"UTF-16"_ns,     u"windows-1252"_ns, u"ISO-8859-1"_ns,
    u"ISO-8859-15"_ns, u"ISO-8859-2"_ns, u"windows-1251"_ns, u"KOI8-R"_ns,
    u"Shift_JIS"_ns,   u"GB18030"_ns,    u"us-ascii"_ns,
};

NSArray* writers() {
    return profilesInOrder(PBRegistry::sharedRegistry()->profilesOfType(PBProfileDocumentWriterType));
}

bool keepsFormats(PBProfile* writer) { return WRDocumentSaver::keepsFormats(writer); }

// The extensions of a kind, without the one that stands for all.
NSArray* extensionsOf(PBProfile* writer) {
    auto* extensions = NSMutableArray::array();
    id types = writer ? writer->valueForKey(PBProfileDocumentTypesKey) : nullptr;
    if (auto* list = cast<NSArray>(types))
        extensions->addObjectsFromArray(list);
    else if (types)
        extensions->addObject(types);
    extensions->removeObject(u"*"_ns);
    return extensions;
}

bool hasExtensionOf(PBProfile* writer, NSString* name) {
    NSString* extension = name->pathExtension();
    for (id known : extensionsOf(writer))
        if (auto* text = cast<NSString>(known);
            text && text->caseInsensitiveCompare(extension) == NSOrderedSame)
            return true;
    return false;
}

}  // namespace

Retained<NSPopUpButton> WRSaveChoices::addLine(NSView* view, NSString* title, int line) {
    const float y = static_cast<float>(line) * kLineHeight;
    auto label = NSTextField::initWithFrame({{8, y + 6}, {kLabelWidth, 20}});
    label->setEditable(false);
    label->setBezeled(false);
    label->setDrawsBackground(false);
    label->setStringValue(title);
    view->addSubview(label);
    auto button =
        NSPopUpButton::initWithFrame_pullsDown({{8 + kLabelWidth + 8, y + 3}, {kButtonWidth, 26}}, false);
    view->addSubview(button);
    return button;
}

Retained<NSView> WRSaveChoices::viewWithLines(int count) {
    return NSView::initWithFrame(
        {{0, 0}, {8 + kLabelWidth + 8 + kButtonWidth + 8, static_cast<float>(count) * kLineHeight}});
}

NSArray* WRSaveChoices::usualEncodings() {
    auto* names = NSMutableArray::array();
    for (NSString* name : kUsualEncodings) names->addObject(name);
    return names;
}

PELVOR_DEFINE_CLASS(WRSaveChoices, windowsLibrary) {
    methods.instance<"kindDidChange:", &WRSaveChoices::kindDidChange>();
    methods.instance<"panel:nameForTypedName:", &WRSaveChoices::panel_nameForTypedName>();
}

WRSaveChoices::~WRSaveChoices() = default;

PBProfile* WRSaveChoices::richWriter() {
    for (id writer : writers())
        if (keepsFormats(static_cast<PBProfile*>(writer))) return static_cast<PBProfile*>(writer);
    return nullptr;
}

Retained<WRSaveChoices> WRSaveChoices::create(WRDocument* document, PBProfile* writer) {
    auto self = make<WRSaveChoices>();
    self->_document.set(document);
    self->_writers.set(writers());
    self->makeView();
    if (!writer && document->hasFile() && !document->fidelity())
        writer = WRDocumentSaver::initWithProfiles(PBRegistry::sharedRegistry())
                     ->chooseWriterForDocument_path(document, document->path());
    if (!writer) writer = richWriter();
    for (NSUInteger i = 0; writer && i < self->_writers->count(); ++i)
        if (self->_writers->objectAtIndex(i) == writer)
            self->_kinds->selectItemAtIndex(static_cast<NSInteger>(i));
    self->fillEncodings();
    self->kindDidChange(nullptr);
    return self;
}

void WRSaveChoices::makeView() {
    _view = viewWithLines(2);
    _kinds = addLine(_view, localized(u"_Kind:"_ns), 1);
    _encodings = addLine(_view, localized(u"_Encoding:"_ns), 0);
    for (id writer : _writers.get()) _kinds->addItemWithTitle(nameOfProfile(static_cast<PBProfile*>(writer)));
    _kinds->setTarget(this);
    _kinds->setAction("kindDidChange:"_sel);
}

// The encoding of a document with formats is no choice of the user's.
void WRSaveChoices::fillEncodings() {
    NSString* own = _document->hasFormats() ? nullptr : _document->encodingName();
    if (own) _encodings->addItemWithTitle(own);
    for (NSString* name : kUsualEncodings)
        if (!own || own->caseInsensitiveCompare(name) != NSOrderedSame) _encodings->addItemWithTitle(name);
    _encodings->selectItemAtIndex(own && _document->isLossy() ? 1 : 0);
}

void WRSaveChoices::attachToPanel(NSSavePanel* panel) {
    _panel.set(panel);
    panel->setAccessoryView(_view);
    panel->setDelegate(this);
    kindDidChange(nullptr);
}

PBProfile* WRSaveChoices::writer() {
    const NSInteger index = _kinds->indexOfSelectedItem();
    return index < 0 ? nullptr
                     : static_cast<PBProfile*>(_writers->objectAtIndex(static_cast<NSUInteger>(index)));
}

NSString* WRSaveChoices::extension() {
    NSArray* extensions = extensionsOf(writer());
    return extensions->count() ? cast<NSString>(extensions->objectAtIndex(0)) : nullptr;
}

NSString* WRSaveChoices::encodingName() {
    if (keepsFormats(writer())) return nullptr;
    NSString* name = _encodings->titleOfSelectedItem();
    const bool isOwn = _document->encodingName() && name->isEqualToString(_document->encodingName());
    return isOwn && !_document->isLossy() ? nullptr : name;
}

// Text may have any extension, as "README" and program texts do.
void WRSaveChoices::kindDidChange(id) {
    _encodings->setEnabled(!keepsFormats(writer()));
    if (!_panel) return;
    _panel->setAllowedFileTypes(extensionsOf(writer()));
    _panel->setAllowsOtherFileTypes(!keepsFormats(writer()));
}

// Of several kinds the chosen one; -1 for no kind.
NSInteger WRSaveChoices::indexOfKindForName(NSString* name) {
    if (hasExtensionOf(writer(), name)) return _kinds->indexOfSelectedItem();
    for (NSUInteger i = 0; i < _writers->count(); ++i)
        if (hasExtensionOf(static_cast<PBProfile*>(_writers->objectAtIndex(i)), name))
            return static_cast<NSInteger>(i);
    return -1;
}

// At first the panel selects the name without its extension. Who types "a.txt" there has "a.txt.rtf".
NSString* WRSaveChoices::panel_nameForTypedName(id, NSString* name) {
    NSString* typed = name;
    if (hasExtensionOf(writer(), name)) {
        typed = name->stringByDeletingPathExtension();
        if (typed->isEqualToString(_document->name()->stringByDeletingPathExtension())) return name;
    }
    const NSInteger kind = indexOfKindForName(typed);
    if (kind < 0) return name;
    _kinds->selectItemAtIndex(kind);
    kindDidChange(nullptr);
    _panel->setNameFieldStringValue(typed);
    return typed;
}

}  // namespace pelvor
