// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSMenuBarView.h"

#include <cmath>

#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/Menus/MenuTracker.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMenuBarView, interfaceLibrary) {
    methods.creator<"initWithFrame:", &NSMenuBarView::initWithFrame>();
    methods.classLevel<"menuBarHeight", &NSMenuBarView::menuBarHeight>();
    methods.instance<"openByKeyboard", &NSMenuBarView::openByKeyboard>();
}

namespace {

constexpr float kTitleInset = 9, kBarInset = 4;

}  // namespace

// The titles that a bar shows, for the bar and for who tracks its menus.
struct NSMenuBarView::Titles final : MenuTitles, MenuObserver {
    struct Title {
        Retained<NSMenuItem> item;
        NSRect rect;  // in the bar
    };

    explicit Titles(NSMenuBarView* itsBar) : bar(itsBar) {}
    ~Titles() { observe(nullptr); }

    std::vector<Title> all();
    void observe(NSMenu* menu);
    int titleCount() override { return static_cast<int>(all().size()); }
    int titleAt(NSPoint place) override;
    NSMenu* menuOfTitle(int title) override;
    NSRect rectOfTitle(int title) override;
    void showOpenTitle(int title) override;
    void menuDidChange(NSMenu*) override { bar->setNeedsDisplay(true); }

    Unretained<NSMenuBarView> bar;
    Retained<NSMenu> menu;      // that was set
    Retained<NSMenu> observed;  // that is shown
    int openTitle = kNoTitle;
};

NSMenuBarView::NSMenuBarView() : _titles(std::make_unique<Titles>(this)) {}
NSMenuBarView::~NSMenuBarView() = default;

Retained<NSMenuBarView> NSMenuBarView::initWithFrame(NSRect frame, Class* cls) {
    return cast<NSMenuBarView>(NSView::initWithFrame(frame, cls));
}

float NSMenuBarView::menuBarHeight() { return metrics::kMenuItemHeight + 2; }

NSMenu* NSMenuBarView::menu() {
    if (_titles->menu) return _titles->menu;
    return NSApp() ? NSApp()->mainMenu() : nullptr;
}

void NSMenuBarView::setMenu(NSMenu* menu) {
    _titles->menu.set(menu);
    setNeedsDisplay(true);
}

// MARK: Titles

void NSMenuBarView::Titles::observe(NSMenu* wanted) {
    if (wanted == observed) return;
    if (observed) observed->removeObserver(this);
    observed.set(wanted);
    if (wanted) wanted->addObserver(this);
}

std::vector<NSMenuBarView::Titles::Title> NSMenuBarView::Titles::all() {
    std::vector<Title> titles;
    observe(bar->menu());
    if (!observed) return titles;
    const bool isRightToLeft = menusRunFromRightToLeft();
    float x = kBarInset;
    for (const auto& item : observed->items()) {
        if (item->isHidden() || item->isSeparatorItem()) continue;
        const float width = MenuText(item->title()).size().width + 2 * kTitleInset;
        titles.push_back(
            {item, {{isRightToLeft ? NSWidth(bar->bounds()) - x - width : x, 0}, {width, menuBarHeight()}}});
        x += width;
    }
    return titles;
}

int NSMenuBarView::Titles::titleAt(NSPoint place) {
    NSWindow* window = bar->window();
    if (!window) return kNoTitle;
    const NSPoint inside = bar->convertPoint_fromView(window->convertScreenToBase(place), nullptr);
    const auto titles = all();
    for (std::size_t title = 0; title < titles.size(); ++title)
        if (NSPointInRect(inside, titles[title].rect)) return static_cast<int>(title);
    return kNoTitle;
}

NSMenu* NSMenuBarView::Titles::menuOfTitle(int title) {
    const auto titles = all();
    if (title < 0 || static_cast<std::size_t>(title) >= titles.size()) return nullptr;
    NSMenuItem* item = titles[static_cast<std::size_t>(title)].item;
    return item->isEnabled() ? item->submenu() : nullptr;
}

NSRect NSMenuBarView::Titles::rectOfTitle(int title) {
    const auto titles = all();
    NSWindow* window = bar->window();
    if (!window || title < 0 || static_cast<std::size_t>(title) >= titles.size()) return {};
    const NSRect rect = bar->convertRect_toView(titles[static_cast<std::size_t>(title)].rect, nullptr);
    return {window->convertBaseToScreen(rect.origin), rect.size};
}

void NSMenuBarView::Titles::showOpenTitle(int title) {
    openTitle = title;
    bar->setNeedsDisplay(true);
}

void NSMenuBarView::drawRect(NSRect) {
    fillRect(bounds(), ThemeColor::window);
    NSRect line = bounds();
    NSDivideRect(line, &line, nullptr, metrics::kLine, NSMaxYEdge);
    fillRect(line, ThemeColor::grid);
    int number = 0;
    for (const auto& [item, rect] : _titles->all()) {
        const MenuRef handle = _NSGetCarbonMenu(item->submenu());
        const bool isOpen =
            number++ == _titles->openTitle || (handle && GetMenuID(handle) == highlightedMenu());
        if (isOpen) fillRounded(NSInsetRect(rect, 1, 2), metrics::kCornerRadius, ThemeColor::selection);
        const MenuText text(item->title());
        const float y = std::floor((menuBarHeight() - text.size().height) / 2);
        const auto color = isOpen              ? ThemeColor::textOnAccent
                           : item->isEnabled() ? ThemeColor::text
                                               : ThemeColor::disabledText;
        text.draw({NSMinX(rect) + kTitleInset, y}, color, false);
    }
}

// MARK: Opening

void NSMenuBarView::track(int title, bool isButtonDown, bool isByKeyboard) {
    const auto held = Retained<NSMenuBarView>::retaining(this);
    MenuTracker tracker(_titles.get());
    const auto chosen = tracker.trackTitle(title, isButtonDown, isByKeyboard);
    if (chosen && chosen->menu()) chosen->menu()->performItem(chosen);
}

void NSMenuBarView::mouseDown(NSEvent* event) {
    requireArgument(event, "mouseDown:", "the event");
    if (!window()) return;
    const int title = _titles->titleAt(window()->convertBaseToScreen(event->locationInWindow()));
    if (title != MenuTitles::kNoTitle) track(title, true, false);
}

void NSMenuBarView::openByKeyboard() {
    if (!window()) return;
    const int count = _titles->titleCount();
    for (int title = 0; title < count; ++title)
        if (_titles->menuOfTitle(title)) return track(title, false, true);
}

bool NSMenuBarView::performKeyEquivalent(NSEvent* event) {
    requireArgument(event, "performKeyEquivalent:", "the event");
    constexpr NSUInteger kModifiers =
        NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSShiftKeyMask;
    NSString* key = event->charactersIgnoringModifiers();
    if (key->length() == 0 || key->characterAtIndex(0) != NSF10FunctionKey ||
        (event->modifierFlags() & kModifiers) || isHiddenOrHasHiddenAncestor())
        return false;
    openByKeyboard();
    return true;
}

}  // namespace pelvor
