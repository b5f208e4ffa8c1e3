// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRDesktop.h"

#include <algorithm>

#include "Foundation/NSBundle.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNib.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSAlert.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSMenu.h"
#include "Interface/NSOpenPanel.h"
#include "Interface/NSWindow.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"
#include "NSBundle-PelvorAdditions.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "PBUtil.h"
#include "Runtime/Registry.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/Recovery/RecoveryStore.h"
#include "Writer/SameFile.h"
#include "Writer/Shortcuts/WRShortcutMatcher.h"
#include "Writer/WRAbout.h"
#include "Writer/WRDocument.h"
#include "Writer/WRDocumentOpener.h"
#include "Writer/Windows/WRCharactersPanel.h"
#include "Writer/Windows/WRColorPanel.h"
#include "Writer/Windows/WRDocumentFile.h"
#include "Writer/Windows/WRDocumentWindow.h"
#include "Writer/Windows/WRFindPanel.h"
#include "Writer/Windows/WRFontPalette.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WROpenChoices.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WRPreferencesPanel.h"
#include "Writer/Windows/WRProfilesPanel.h"
#include "Writer/Windows/WRRecentDocuments.h"
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
    {"orderFrontCharacters:"_sel, u"Ctrl+K S"_ns},
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

// Shows the panel, which is made the first time.
template <class Panel>
void showPanel(Retained<Panel>& panel) {
    if (!panel) panel = Panel::init();
    panel->window()->showBeside(NSApplication::sharedApplication()->mainWindow());
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
    methods.instance<"setRecentMenu:", &WRDesktop::setRecentMenu>();
    methods.instance<"setWindowMenu:", &WRDesktop::setWindowMenu>();
    methods.instance<"menuNeedsUpdate:", &WRDesktop::menuNeedsUpdate>();
    methods.instance<"openPath:", &WRDesktop::openPath>();
    methods.instance<"openPath:encoding:", &WRDesktop::openPath_encoding>();
    methods.instance<"openPaths:", &WRDesktop::openPaths>();
    methods.instance<"windowForPath:", &WRDesktop::windowForPath>();
    methods.instance<"recentDocuments", &WRDesktop::recentDocuments>();
    methods.instance<"newDocument:", &WRDesktop::newDocument>();
    methods.instance<"openDocument:", &WRDesktop::openDocument>();
    methods.instance<"openRecentDocument:", &WRDesktop::openRecentDocument>();
    methods.instance<"clearRecentDocuments:", &WRDesktop::clearRecentDocuments>();
    methods.instance<"validateMenuItem:", &WRDesktop::validateMenuItem>();
    methods.instance<"validateClearRecentDocuments:", &WRDesktop::validateClearRecentDocuments>();
    methods.instance<"applicationShouldTerminate:", &WRDesktop::applicationShouldTerminate>();
    methods.instance<"applicationWillTerminate:", &WRDesktop::applicationWillTerminate>();
    methods.instance<"setServicesMenu:", &WRDesktop::setServicesMenu>();
    methods.instance<"profilesDidChange:", &WRDesktop::profilesDidChange>();
    methods.instance<"windowDidClose:", &WRDesktop::windowDidClose>();
    methods.instance<"orderFrontAbout:", &WRDesktop::orderFrontAbout>();
    methods.instance<"orderFrontFontPalette:", &WRDesktop::orderFrontFontPalette>();
    methods.instance<"orderFrontColorPanel:", &WRDesktop::orderFrontColorPanel>();
    methods.instance<"validateOrderFrontColorPanel:", &WRDesktop::validateOrderFrontColorPanel>();
    methods.instance<"orderFrontProfiles:", &WRDesktop::orderFrontProfiles>();
    methods.instance<"orderFrontShortcuts:", &WRDesktop::orderFrontShortcuts>();
    methods.instance<"orderFrontCharacters:", &WRDesktop::orderFrontCharacters>();
    methods.instance<"orderFrontPreferences:", &WRDesktop::orderFrontPreferences>();
    methods.instance<"defaultsDidChange:", &WRDesktop::defaultsDidChange>();
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
    self->_wishes.set(NSDictionary::dictionary());
    self->_recent = WRRecentDocuments::init();
    self->_store = std::make_unique<RecoveryStore>(RecoveryStore::ofUser());
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self, "defaultsDidChange:"_sel, NSUserDefaultsDidChangeNotification, nullptr);
    return self;
}

WRDesktop::WRDesktop() = default;

WRDesktop* WRDesktop::current() {
    NSApplication* application = NSApp();
    return application ? cast<WRDesktop>(application->delegate()) : nullptr;
}

WRDesktop::~WRDesktop() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

bool WRDesktop::hasDisplay() { return NSApplication::sharedApplication()->hasDisplay(); }

void WRDesktop::setRecoveryStore(std::unique_ptr<RecoveryStore> store) { _store = std::move(store); }

NSString* WRDesktop::showDocument_options(id document, NSDictionary* wishes) {
    NSApplication::sharedApplication()->setDelegate(this);
    if (wishes) _wishes.set(wishes);
    auto* wanted = cast<WRDocument>(document);
    if (!wanted) return nullptr;
    if (!_mainMenu) {
        makeMenus();
        recoverDocuments();
    }
    if (wanted->isUnused() && _windows->count()) return nullptr;
    if (WRDocumentWindow* open = wanted->hasFile() ? windowForPath(wanted->path()) : nullptr) {
        open->show();
        return nullptr;
    }
    return openWindow(wanted);
}

NSString* WRDesktop::openWindow(WRDocument* document) {
    NSString* problem = nullptr;
    auto window = WRDocumentWindow::create(document, _wishes, &problem);
    if (!window) return problem;
    _windows->addObject(window);
    if (document->hasFile()) _recent->addPath(document->path());
    window->show();
    return nullptr;
}

void WRDesktop::run() {
    NSApplication* application = NSApplication::sharedApplication();
    application->setDelegate(this);
    application->setTerminatesProcess(false);
    application->run();
    application->setDelegate(nullptr);
    NSUserDefaults::standardUserDefaults()->synchronize();
}

void WRDesktop::applicationDidLoseDisplay(NSNotification*) {
    for (const auto& window : documentWindows()) window->file()->leave();
}

void WRDesktop::windowDidClose(WRDocumentWindow* window) { _windows->removeObjectIdenticalTo(window); }

// While one of them is asked for something, others may close.
std::vector<Retained<WRDocumentWindow>> WRDesktop::documentWindows() {
    std::vector<Retained<WRDocumentWindow>> windows;
    for (id window : _windows.get())
        windows.push_back(Retained<WRDocumentWindow>::retaining(static_cast<WRDocumentWindow*>(window)));
    return windows;
}

// MARK: Quitting

int WRDesktop::applicationShouldTerminate(id) {
    for (const auto& window : documentWindows())
        if (!window->file()->mayClose()) return NSTerminateCancel;
    return NSTerminateNow;
}

void WRDesktop::applicationWillTerminate(NSNotification*) {
    for (const auto& window : documentWindows()) window->file()->close();
}

// MARK: Documents

WRDocumentWindow* WRDesktop::windowForPath(NSString* path) {
    for (const auto& window : documentWindows()) {
        WRDocument* document = window->document();
        if (!document->hasFile()) continue;
        if (path->isEqualToString(document->path()) || isSameFile(path, document->path())) return window;
    }
    return nullptr;
}

void WRDesktop::openPath(NSString* path) { openPath_encoding(path, nullptr); }

// A document that nobody has used makes way.
void WRDesktop::openPath_encoding(NSString* path, NSString* encodingName) {
    const auto held = path->copy();
    if (WRDocumentWindow* open = windowForPath(path)) {
        open->show();
        if (encodingName) open->file()->revertWithEncoding(encodingName);
        return;
    }
    const auto before = documentWindows();
    auto opener = WRDocumentOpener::initWithProfiles(PBRegistry::sharedRegistry());
    auto* options = NSMutableDictionary::dictionary();
    if (encodingName) options->setObject_forKey(encodingName, WREncodingKey);
    WRDocument* document = opener->openDocumentAtPath_options(path, options);
    NSString* problem = document ? openWindow(document) : opener->problem();
    if (problem) {
        NSRunAlertPanel(localized(u"_The document cannot be opened."_ns), u"%@"_ns, nullptr, nullptr, nullptr,
                        problem);
        return;
    }
    for (const auto& window : before)
        if (window->document()->isUnused()) window->window()->close();
}

void WRDesktop::openPaths(NSArray* paths) {
    const auto held = Retained<NSArray>::retaining(paths);
    for (id object : held.get())
        if (auto* path = cast<NSString>(object)) openPath(path);
}

NSString* WRDesktop::nameOfNewDocument() {
    for (int number = 1;; ++number) {
        NSString* name =
            number == 1 ? localized(u"_Untitled"_ns) : localizedFormat(u"_Untitled %d"_ns, number);
        const auto windows = documentWindows();
        const bool isFree = std::none_of(windows.begin(), windows.end(), [name](const auto& window) {
            return window->document()->name()->isEqualToString(name);
        });
        if (isFree) return name;
    }
}

void WRDesktop::newDocument(id) {
    auto document = WRDocument::initWithName(nameOfNewDocument());
    if (NSString* problem = openWindow(document))
        NSRunAlertPanel(localized(u"_The document cannot be opened."_ns), u"%@"_ns, nullptr, nullptr, nullptr,
                        problem);
}

void WRDesktop::openDocument(id) {
    NSOpenPanel* panel = NSOpenPanel::openPanel();
    panel->setAllowsMultipleSelection(true);
    auto choices = WROpenChoices::create();
    choices->attachToPanel(panel);
    if (panel->runModalForTypes(nullptr) != NSOKButton) return;
    const auto paths = Retained<NSArray>::retaining(panel->filenames());
    for (id path : paths.get()) openPath_encoding(static_cast<NSString*>(path), choices->encodingName());
}

void WRDesktop::openRecentDocument(id sender) {
    auto* item = cast<NSMenuItem>(sender);
    if (auto* path = item ? cast<NSString>(item->representedObject()) : nullptr) openPath(path);
}

void WRDesktop::clearRecentDocuments(id) { _recent->removeAllPaths(); }

bool WRDesktop::validateMenuItem(id item) {
    bool isEnabled = true;
    dispatchValidationTo_result(item, this, &isEnabled);
    return isEnabled;
}

bool WRDesktop::validateClearRecentDocuments(id) { return _recent->paths()->count() > 0; }

void WRDesktop::recoverDocuments() {
    if (!_store) return;
    for (AbandonedDocument& abandoned : _store->abandonedDocuments()) {
        auto document = WRDocumentFile::documentOf(abandoned);
        if (!document) continue;
        if (!document->hasFile()) document->setName(nameOfNewDocument());
        if (NSString* problem = openWindow(document))
            NSLog(u"%@"_ns, problem);
        else
            cast<WRDocumentWindow>(_windows->lastObject())->file()->takeAbandoned(abandoned);
    }
}

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
void WRDesktop::setRecentMenu(NSMenu* menu) { menu->setDelegate(_recent); }
void WRDesktop::setWindowMenu(NSMenu* menu) { menu->setDelegate(this); }

void WRDesktop::menuNeedsUpdate(NSMenu* menu) {
    const SEL show = "showWindow:"_sel;
    for (NSInteger i = menu->numberOfItems(); i-- > 0;)
        if (NSMenuItem* item = menu->itemAtIndex(i); item->action() == show || item->isSeparatorItem())
            menu->removeItemAtIndex(i);
    const auto windows = documentWindows();
    if (!windows.empty() && menu->numberOfItems() > 0) menu->addItem(NSMenuItem::separatorItem());
    for (const auto& each : windows) {
        NSWindow* window = each->window();
        NSString* mark = window->isDocumentEdited() ? u"*"_ns : u""_ns;  // as in its title bar
        NSMenuItem* item = menu->addItemWithTitle_action_keyEquivalent(
            mark->stringByAppendingString(window->title()), show, u""_ns);
        item->setTarget(each);
        item->setState(window == NSApplication::sharedApplication()->mainWindow());
    }
}

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

void WRDesktop::orderFrontShortcuts(id) {
    if (!_shortcutsPanel) _shortcutsPanel = WRShortcutsPanel::init();
    _shortcutsPanel->takeMenu(_mainMenu);
    showPanel(_shortcutsPanel);
}

void WRDesktop::orderFrontProfiles(id) { showPanel(_profilesPanel); }
void WRDesktop::orderFrontCharacters(id) { showPanel(_charactersPanel); }
void WRDesktop::orderFrontPreferences(id) { showPanel(_preferencesPanel); }
void WRDesktop::orderFrontFontPalette(id) { showPanel(_fontPalette); }
void WRDesktop::orderFrontColorPanel(id) { showPanel(_colorPanel); }

// MARK: Settings

// Changes that come together are written together.
void WRDesktop::defaultsDidChange(NSNotification*) {
    constexpr double kDelay = 1;
    NSUserDefaults* defaults = NSUserDefaults::standardUserDefaults();
    NSObject_DelayedPerforming::cancelPreviousPerformRequestsWithTarget_selector_object(
        defaults, "synchronize"_sel, nullptr);
    performSelector_withObject_afterDelay(defaults, "synchronize"_sel, nullptr, kDelay);
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

bool WRDesktop::validateOrderFrontColorPanel(id) {
    WRFormatCommands* front = WRFormatCommands::current();
    return front && front->canEdit();
}

void WRDesktop::orderFrontAbout(id) {
    NSString* text = make<WRAbout>()->text();
    NSRunAlertPanel(localized(u"_About Writer"_ns), u"%@"_ns, nullptr, nullptr, nullptr,
                    text ? text : u""_ns);
}

}  // namespace pelvor
