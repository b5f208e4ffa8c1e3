// SPDX-License-Identifier: Apache-2.0
// A program with a window, in which a letter is written and its words are counted. With "--once" it does by
// itself what a user would do, and ends.
#include <cstdio>
#include <string_view>

#include "BaseInterfaceLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSNotification.h"
#include "Foundation/NSRunLoop.h"
#include "Interface/NSAlert.h"
#include "Interface/NSApplication.h"
#include "Interface/NSButton.h"
#include "Interface/NSMenu.h"
#include "Interface/NSPanel.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTextField.h"
#include "Interface/NSTextView.h"
#include "PBPostLoader.h"
#include "Runtime/AutoreleasePool.h"

namespace windowhost {

using namespace pelvor;

extern Library hostLibrary;

/// A letter in a window: the target of the button and of the menu items that are about the letter, and the
/// delegate of the application, of the window and of the text. Main thread.
class WHLetter : public NSObject {
    PELVOR_CLASS(WHLetter, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WHLetter> init(Class* cls = classObject()) { return make<WHLetter>(cls); }
    void show();
    /// Does what a user would do, and prints what the user would see.
    void rehearse();

    // Actions

    void countWords(id sender);
    void rename(id sender);
    void endRename(id sender);

    // What the application, the window and the text ask and tell their delegate

    int applicationShouldTerminate(NSApplication* app);
    bool applicationShouldTerminateAfterLastWindowClosed(NSApplication* app) { return true; }
    bool windowShouldClose(id window) { return mayBeLost(); }
    void textDidChange(NSNotification* notification) { _window->setDocumentEdited(true); }

  protected:
    WHLetter() = default;
    ~WHLetter() = default;

  private:
    void addText();
    void addCount();
    bool mayBeLost();

    Retained<NSWindow> _window;
    Retained<NSTextView> _text;
    Retained<NSButton> _button;
    Retained<NSTextField> _count;
    Retained<NSPanel> _panel;  // while the user renames the letter
    Retained<NSTextField> _name;
};

namespace {

constexpr Library* kDependencies[] = {&baseInterfaceLibrary};
constexpr Class* kClasses[] = {&WHLetter::classRecord};

Retained<NSButton> buttonWithTitle(NSString* title, NSRect frame, id target, SEL action) {
    auto button = NSButton::initWithFrame(frame);
    button->setTitle(title);
    button->setTarget(target);
    button->setAction(action);
    return button;
}

struct Command {
    NSString* title;
    SEL action;
    NSString* key;
};

void addMenu(NSMenu* bar, NSString* title, std::initializer_list<Command> commands) {
    auto menu = NSMenu::initWithTitle(title);
    for (const Command& each : commands)
        menu->addItemWithTitle_action_keyEquivalent(each.title, each.action, each.key);
    bar->setSubmenu_forItem(menu, bar->addItemWithTitle_action_keyEquivalent(title, SEL(), u""_ns));
}

// The items have no target: whoever has the action takes it, the text first, then the window and its
// delegate, then the application.
Retained<NSMenu> mainMenu() {
    auto bar = NSMenu::initWithTitle(u""_ns);
    addMenu(bar, u"Letter"_ns,
            {{u"Rename…"_ns, "rename:"_sel, u"r"_ns},
             {u"Close"_ns, "performClose:"_sel, u"w"_ns},
             {u"Quit"_ns, "terminate:"_sel, u"q"_ns}});
    addMenu(bar, u"Edit"_ns,
            {{u"Undo"_ns, "undo:"_sel, u"z"_ns},
             {u"Redo"_ns, "redo:"_sel, u"Z"_ns},
             {u"Cut"_ns, "cut:"_sel, u"x"_ns},
             {u"Copy"_ns, "copy:"_sel, u"c"_ns},
             {u"Paste"_ns, "paste:"_sel, u"v"_ns},
             {u"Select All"_ns, "selectAll:"_sel, u"a"_ns}});
    return bar;
}

}  // namespace

constinit Library hostLibrary{"WindowHost", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(WHLetter, hostLibrary) {
    methods.creator<"init", &WHLetter::init>();
    methods.instance<"countWords:", &WHLetter::countWords>();
    methods.instance<"rename:", &WHLetter::rename>();
    methods.instance<"endRename:", &WHLetter::endRename>();
    methods.instance<"applicationShouldTerminate:", &WHLetter::applicationShouldTerminate>();
    methods.instance<"applicationShouldTerminateAfterLastWindowClosed:",
                     &WHLetter::applicationShouldTerminateAfterLastWindowClosed>();
    methods.instance<"windowShouldClose:", &WHLetter::windowShouldClose>();
    methods.instance<"textDidChange:", &WHLetter::textDidChange>();
}

void WHLetter::show() {
    _window = NSWindow::initWithContentRect_styleMask_backing_defer(
        {{0, 0}, {420, 300}},
        NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask | NSResizableWindowMask,
        NSBackingStoreBuffered, true);
    _window->setTitle(u"Letter"_ns);
    _window->setContentMinSize({240, 160});
    _window->setDelegate(this);
    addText();
    addCount();
    _window->center();
    _window->makeKeyAndOrderFront(nullptr);
}

void WHLetter::addText() {
    auto scrollView = NSScrollView::initWithFrame({{0, 46}, {420, 254}});
    scrollView->setHasVerticalScroller(true);
    scrollView->setAutoresizingMask(NSViewWidthSizable | NSViewHeightSizable);
    _text = NSTextView::initWithFrame({{0, 0}, scrollView->contentSize()});
    _text->setAutoresizingMask(NSViewWidthSizable);  // the height follows the text
    _text->setTextContainerInset({8, 8});
    _text->setString(u"Dear Anna,\nthe parcel has come, and nothing in it is broken.\nThank you!\n"_ns);
    _text->setDelegate(this);
    scrollView->setDocumentView(_text);
    _window->contentView()->addSubview(scrollView);
    _window->setInitialFirstResponder(_text);
}

void WHLetter::addCount() {
    _button = buttonWithTitle(u"Count Words"_ns, {{12, 10}, {120, 26}}, this, "countWords:"_sel);
    _count = NSTextField::initWithFrame({{144, 10}, {264, 26}});
    _count->setSelectable(false);
    _count->setBezeled(false);
    _count->setDrawsBackground(false);
    _count->setAutoresizingMask(NSViewWidthSizable);
    _window->contentView()->addSubview(_button);
    _window->contentView()->addSubview(_count);
}

void WHLetter::countWords(id) {
    NSUInteger count = 0;
    for (id line : _text->string()->componentsSeparatedByString(u"\n"_ns))
        for (id word : static_cast<NSString*>(line)->componentsSeparatedByString(u" "_ns))
            count += static_cast<NSString*>(word)->length() > 0;
    _count->setStringValue(NSString::stringWithFormat(u"%u words"_ns, count));
}

void WHLetter::rename(id) {
    _panel = NSPanel::initWithContentRect_styleMask_backing_defer({{0, 0}, {260, 90}}, NSTitledWindowMask,
                                                                  NSBackingStoreBuffered, true);
    _panel->setTitle(u"Rename"_ns);
    _name = NSTextField::initWithFrame({{12, 52}, {236, 26}});
    _name->setStringValue(_window->title());
    auto ok = buttonWithTitle(u"OK"_ns, {{172, 12}, {76, 26}}, this, "endRename:"_sel);
    ok->setTag(NSAlertDefaultReturn);
    ok->setKeyEquivalent(u"\r"_ns);
    auto cancel = buttonWithTitle(u"Cancel"_ns, {{88, 12}, {76, 26}}, this, "endRename:"_sel);
    cancel->setTag(NSAlertAlternateReturn);
    cancel->setKeyEquivalent(u"\x1B"_ns);
    for (NSView* view : std::initializer_list<NSView*>{_name, cancel, ok})
        _panel->contentView()->addSubview(view);
    _panel->setInitialFirstResponder(_name);

    const NSInteger code = NSApplication::sharedApplication()->runModalForWindow(_panel);
    _panel->orderOut(nullptr);
    if (code == NSAlertDefaultReturn) _window->setTitle(_name->stringValue());
    _panel = nullptr;
    _name = nullptr;
}

void WHLetter::endRename(id sender) {
    NSApplication::sharedApplication()->stopModalWithCode(static_cast<NSButton*>(sender)->tag());
}

bool WHLetter::mayBeLost() {
    if (!_window->isDocumentEdited()) return true;
    auto alert = NSAlert::init();
    alert->setMessageText(u"Throw the letter away?"_ns);
    alert->setInformativeText(u"It has been changed, and this program cannot save it."_ns);
    alert->addButtonWithTitle(u"Throw Away"_ns);
    alert->addButtonWithTitle(u"Cancel"_ns);
    if (alert->runModal() == NSAlertSecondButtonReturn) return false;
    _window->setDocumentEdited(false);
    return true;
}

int WHLetter::applicationShouldTerminate(NSApplication*) {
    return mayBeLost() ? NSTerminateNow : NSTerminateCancel;
}

void WHLetter::rehearse() {
    NSApplication* app = NSApplication::sharedApplication();
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    auto* modal = NSArray::of({NSModalPanelRunLoopMode});
    _text->insertText(u"By the way: "_ns);
    _button->performClick(nullptr);
    std::printf("%s\n", _count->stringValue()->UTF8String());
    loop->perform(
        [this] {
            _name->setStringValue(u"To Anna"_ns);
            static_cast<NSButton*>(_panel->contentView()->viewWithTag(NSAlertDefaultReturn))
                ->performClick(nullptr);
        },
        modal);
    app->sendAction_to_from("rename:"_sel, nullptr, nullptr);
    std::printf("%s\n", _window->title()->UTF8String());
    loop->perform([app] { app->stopModalWithCode(NSAlertFirstButtonReturn); }, modal);
    _window->performClose(nullptr);
    std::printf("%s\n", _window->isVisible() ? "open" : "closed");
}

}  // namespace windowhost

int main(int argc, char** argv) {
    using namespace windowhost;
    AutoreleasePool pool;
    registerLibrary(hostLibrary);
    PBPostLoader::processClasses();

    NSApplication* app = NSApplication::sharedApplication();
    const bool isOnce = argc > 1 && std::string_view(argv[1]) == "--once";
    if (!app->hasDisplay() && !isOnce) return std::fputs("WindowHost needs a display.\n", stderr), 1;
    app->setMainMenu(mainMenu().get());
    auto letter = WHLetter::init();
    app->setDelegate(letter);
    letter->show();
    if (isOnce) NSRunLoop::mainRunLoop()->perform([&] { letter->rehearse(); }, nullptr);
    app->setTerminatesProcess(false);  // `run` returns, and what this function owns is released
    app->run();
}
