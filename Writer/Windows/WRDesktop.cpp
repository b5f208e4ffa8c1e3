// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRDesktop.h"

#include "Foundation/NSBundle.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNib.h"
#include "Foundation/NSNotificationCenter.h"
#include "Interface/NSAlert.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSMenu.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "NSBundle-PelvorAdditions.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "PBUtil.h"
#include "Runtime/Registry.h"
#include "Writer/LocalizedText.h"
#include "Writer/ProfileChoice.h"
#include "Writer/Shortcuts/WRShortcutMatcher.h"
#include "Writer/WRAbout.h"
#include "Writer/WRDocument.h"
#include "Writer/Windows/WRDocumentWindow.h"
#include "Writer/Windows/WRFindPanel.h"
#include "Writer/Windows/WRFontPalette.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRProfilesPanel.h"
#include "Writer/Windows/WRShortcutsPanel.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr unichar kF3 = NSF1FunctionKey + 2;

// Shortcuts of several keys, which an interface file has no text for.
struct ActionShortcut {
    SEL action;
    NSString* keys;
};
// clang-format off
const ActionShortcut kShortcuts[] = {
    {"showNextPage:"_sel, u"Ctrl+K N"_ns},
    {"showPreviousPage:"_sel, u"Ctrl+K P"_ns},
    {"orderFrontProfiles:"_sel, u"Ctrl+K L"_ns},
    {"orderFrontShortcuts:"_sel, u"Ctrl+K K"_ns},
    {"increaseIndent:"_sel, u"Ctrl+K I"_ns},
    {"decreaseIndent:"_sel, u"Ctrl+K U"_ns},
    {"clearFormats:"_sel, u"Ctrl+K 0"_ns},
    {"showNextMisspelling:"_sel, u"F7"_ns},
    {"useSelectionForFind:"_sel, u"Ctrl+Alt+F"_ns},
    {"jumpToSelection:"_sel, u"Ctrl+Alt+J"_ns},
};
// clang-format on

// Keys besides those in the menu.
NSDictionary* keyBindings() {
    return NSDictionary::of(
        {{NSString::of({&kF3, 1}), u"findNext:"_ns},
         {u"$"_ns->stringByAppendingString(NSString::of({&kF3, 1})), u"findPrevious:"_ns}});
}

NSMenuItem* itemWithActionIn(NSMenu* menu, SEL action) {
    for (const auto& item : menu->items()) {
        if (item->action() == action) return item;
        if (NSMenu* submenu = item->submenu())
            if (NSMenuItem* found = itemWithActionIn(submenu, action)) return found;
    }
    return nullptr;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRDesktop, windowsLibrary) {
    methods.creator<"init", &WRDesktop::init>();
    methods.instance<"hasDisplay", &WRDesktop::hasDisplay>();
    methods.instance<"showDocument:options:", &WRDesktop::showDocument_options>();
    methods.instance<"run", &WRDesktop::run>();
    methods.instance<"setMainMenu:", &WRDesktop::setMainMenu>();
    methods.instance<"setServicesMenu:", &WRDesktop::setServicesMenu>();
    methods.instance<"profilesDidChange:", &WRDesktop::profilesDidChange>();
    methods.instance<"windowDidClose:", &WRDesktop::windowDidClose>();
    methods.instance<"orderFrontAbout:", &WRDesktop::orderFrontAbout>();
    methods.instance<"orderFrontFontPalette:", &WRDesktop::orderFrontFontPalette>();
    methods.instance<"orderFrontProfiles:", &WRDesktop::orderFrontProfiles>();
    methods.instance<"orderFrontShortcuts:", &WRDesktop::orderFrontShortcuts>();
    methods.instance<"orderFrontFindPanel:", &WRDesktop::orderFrontFindPanel>();
    methods.instance<"findNext:", &WRDesktop::findNext>();
    methods.instance<"findPrevious:", &WRDesktop::findPrevious>();
    methods.instance<"useSelectionForFind:", &WRDesktop::useSelectionForFind>();
    methods.instance<"jumpToSelection:", &WRDesktop::jumpToSelection>();
    methods.instanceAs<"validateFindNext:", &WRDesktop::canFind>();
    methods.instanceAs<"validateFindPrevious:", &WRDesktop::canFind>();
    methods.instanceAs<"validateJumpToSelection:", &WRDesktop::canFind>();
    methods.instance<"validateUseSelectionForFind:", &WRDesktop::validateUseSelectionForFind>();
    methods.instance<"applicationDidLoseDisplay:", &WRDesktop::applicationDidLoseDisplay>();
    methods.instance<"applicationShouldTerminateAfterLastWindowClosed:",
                     &WRDesktop::applicationShouldTerminateAfterLastWindowClosed>();
}

Retained<WRDesktop> WRDesktop::init(Class* cls) {
    auto self = make<WRDesktop>(cls);
    self->_windows = NSMutableArray::init();
    return self;
}

WRDesktop::~WRDesktop() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

bool WRDesktop::hasDisplay() { return NSApplication::sharedApplication()->hasDisplay(); }

NSString* WRDesktop::showDocument_options(id document, NSDictionary* options) {
    NSString* problem = nullptr;
    auto* wanted = cast<WRDocument>(document);
    auto window = wanted ? WRDocumentWindow::create(wanted, options, &problem) : nullptr;
    if (!window) return problem;
    if (!_mainMenu) makeMenus();
    _windows->addObject(window);
    window->show();
    return nullptr;
}

void WRDesktop::run() {
    NSApplication* application = NSApplication::sharedApplication();
    application->setDelegate(this);
    application->setTerminatesProcess(false);
    application->run();
    application->setDelegate(nullptr);
}

void WRDesktop::applicationDidLoseDisplay(NSNotification*) { NSApplication::sharedApplication()->stop(this); }

void WRDesktop::windowDidClose(WRDocumentWindow* window) { _windows->removeObjectIdenticalTo(window); }

// MARK: Menus

void WRDesktop::makeMenus() {
    auto nib = NSNib::initWithNibNamed_bundle(u"MainMenu"_ns, NSBundle::bundleForClass(classObject()));
    NSArray* objects = nullptr;
    if (!nib || !nib->instantiateNibWithOwner_topLevelObjects(this, &objects)) return;
    _nibObjects.set(objects);
    for (const auto& [action, keys] : kShortcuts)
        if (NSMenuItem* item = itemWithActionIn(_mainMenu, action))
            setPelvorShortcut(item, WRShortcut::shortcutWithText(keys));
    for (id conflict : WRShortcutMatcher::sharedMatcher()->conflictsInMenu(_mainMenu))
        NSLog(u"%@"_ns, conflict);
    NSApplication::sharedApplication()->setMainMenu(_mainMenu);
    NSInputManager::setKeyBindings(keyBindings());
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        this, "profilesDidChange:"_sel, PBProfilesDidChangeNotification, PBRegistry::sharedRegistry());
    fillServicesMenu();
}

void WRDesktop::setMainMenu(NSMenu* menu) { _mainMenu.set(menu); }
void WRDesktop::setServicesMenu(NSMenu* menu) { _servicesMenu.set(menu); }

void WRDesktop::profilesDidChange(NSNotification*) { fillServicesMenu(); }

void WRDesktop::fillServicesMenu() {
    if (!_servicesMenu) return;
    _servicesMenu->removeAllItems();
    for (id profile :
         profilesInOrder(PBRegistry::sharedRegistry()->profilesOfType(PBProfileDocumentServiceType))) {
        NSMenuItem* item = _servicesMenu->addItemWithTitle_action_keyEquivalent(
            nameOfProfile(static_cast<PBProfile*>(profile)), "askService:"_sel, u""_ns);
        item->setRepresentedObject(profile);
    }
}

void WRDesktop::orderFrontProfiles(id) {
    if (!_profilesPanel) _profilesPanel = WRProfilesPanel::init();
    _profilesPanel->showBeside(NSApplication::sharedApplication()->mainWindow());
}

void WRDesktop::orderFrontShortcuts(id) {
    if (!_shortcutsPanel) _shortcutsPanel = WRShortcutsPanel::init();
    _shortcutsPanel->takeMenu(_mainMenu);
    _shortcutsPanel->showBeside(NSApplication::sharedApplication()->mainWindow());
}

// MARK: Finding text

WRFindPanel* WRDesktop::findPanel() {
    if (!_findPanel) _findPanel = WRFindPanel::init();
    return _findPanel;
}

void WRDesktop::orderFrontFindPanel(id sender) { findPanel()->orderFront(sender); }
void WRDesktop::findNext(id sender) { findPanel()->findNext(sender); }
void WRDesktop::findPrevious(id sender) { findPanel()->findPrevious(sender); }
void WRDesktop::useSelectionForFind(id sender) { findPanel()->useSelectionForFind(sender); }
void WRDesktop::jumpToSelection(id sender) { findPanel()->jumpToSelection(sender); }
bool WRDesktop::canFind(id) { return WRFindPanel::pageView(); }

bool WRDesktop::validateUseSelectionForFind(id) {
    WRPageView* view = WRFindPanel::pageView();
    return view && view->selectedRange().length > 0;
}

void WRDesktop::orderFrontFontPalette(id) {
    if (!_fontPalette) _fontPalette = WRFontPalette::init();
    _fontPalette->showBeside(NSApplication::sharedApplication()->mainWindow());
}

void WRDesktop::orderFrontAbout(id) {
    NSString* text = make<WRAbout>()->text();
    NSRunAlertPanel(localized(u"_About Writer"_ns), u"%@"_ns, nullptr, nullptr, nullptr,
                    text ? text : u""_ns);
}

}  // namespace pelvor
