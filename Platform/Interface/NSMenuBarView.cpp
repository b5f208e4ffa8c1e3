// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSMenuBarView.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSNumber.h"
#include "Interface/Drawing/Direction.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/Menus/MenuKeys.h"
#include "Interface/Menus/MenuTracker.h"
#include "Interface/NSApplication.h"
#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"
#include "Shared/ArgumentChecks.h"
#include "Text/TextAttributes.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMenuBarView, interfaceLibrary) {
    methods.creator<"initWithFrame:", &NSMenuBarView::initWithFrame>();
    methods.classLevel<"menuBarHeight", &NSMenuBarView::menuBarHeight>();
    methods.instance<"openByKeyboard", &NSMenuBarView::openByKeyboard>();
}

namespace {

constexpr float kTitleInset = 9, kBarInset = 4;

// What stands for the titles without room.
NSString* moreText() { return interfaceRunsFromRightToLeft() ? u"«"_ns : u"»"_ns; }

float widthOfTitle(NSString* title) { return MenuText(title).size().width + 2 * kTitleInset; }

}  // namespace

// The titles that a bar shows, for the bar and for who tracks its menus.
struct NSMenuBarView::Titles final : MenuTitles, MenuObserver {
    struct Title {
        Retained<NSMenuItem> item;  // null for the title that stands for all items without room
        NSRect rect;                // in the bar
        std::size_t index;          // of the item, or of the first item without room
    };

    explicit Titles(NSMenuBarView* itsBar) : bar(itsBar) {}
    ~Titles() { observe(nullptr); }

    std::vector<Title> all();
    std::optional<Title> at(int title);
    void observe(NSMenu* menu);
    int titleCount() override { return static_cast<int>(all().size()); }
    int titleAt(NSPoint place) override;
    NSMenu* menuOfTitle(int title) override;
    MenuOpening openingOfTitle(int title) override;
    NSMenuItem* itemForLetter(NSEvent* event) override;
    int titleOfItem(NSMenuItem* item) override;
    void showOpenTitle(int title) override;
    void menuDidChange(NSMenu*) override { bar->setNeedsDisplay(true); }

    Unretained<NSMenuBarView> bar;
    Retained<NSMenu> menu;      // that was set
    Retained<NSMenu> observed;  // that is shown
    int openTitle = kNoTitle;
    bool showsLetters = false;
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
    const float end = NSWidth(bar->bounds());
    const auto add = [&](NSMenuItem* item, float x, float width, std::size_t index) {
        const float left = interfaceRunsFromRightToLeft() ? end - x - width : x;
        titles.push_back(
            {Retained<NSMenuItem>::retaining(item), {{left, 0}, {width, menuBarHeight()}}, index});
    };
    const auto& items = observed->items();
    float x = kBarInset;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i]->isHidden() || items[i]->isSeparatorItem()) continue;
        const float width = widthOfTitle(items[i]->title());
        add(items[i], x, width, i);
        x += width;
    }
    if (x <= end || titles.empty()) return titles;
    const float moreWidth = widthOfTitle(moreText());
    std::size_t first = 0;
    do {
        first = titles.back().index;
        x -= NSWidth(titles.back().rect);
        titles.pop_back();
    } while (!titles.empty() && x + moreWidth > end);
    add(nullptr, std::max(x, end - moreWidth), moreWidth, first);
    return titles;
}

std::optional<NSMenuBarView::Titles::Title> NSMenuBarView::Titles::at(int title) {
    auto titles = all();
    const auto index = static_cast<std::size_t>(title);
    return index < titles.size() ? std::optional(std::move(titles[index])) : std::nullopt;
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
    const auto found = at(title);
    if (!found) return nullptr;
    if (!found->item) return observed;
    return found->item->isEnabled() ? found->item->submenu() : nullptr;
}

MenuOpening NSMenuBarView::Titles::openingOfTitle(int title) {
    const auto found = at(title);
    NSWindow* window = bar->window();
    if (!window || !found) return {};
    const NSRect rect = bar->convertRect_toView(found->rect, nullptr);
    MenuOpening opening{{window->convertBaseToScreen(rect.origin), rect.size}};
    if (!found->item) opening.firstItem = found->index;
    return opening;
}

NSMenuItem* NSMenuBarView::Titles::itemForLetter(NSEvent* event) {
    observe(bar->menu());
    NSMenuItem* item = observed ? pelvor::itemForLetter(observed, event) : nullptr;
    return item && item->isEnabled() ? item : nullptr;
}

int NSMenuBarView::Titles::titleOfItem(NSMenuItem* item) {
    const auto titles = all();
    const auto found = std::ranges::find(titles, item, [](const Title& title) { return title.item.get(); });
    return static_cast<int>(found - titles.begin()) - (found == titles.end() ? 1 : 0);
}

void NSMenuBarView::Titles::showOpenTitle(int title) {
    openTitle = title;
    bar->setNeedsDisplay(true);
}

// MARK: Drawing

void NSMenuBarView::showLetters(bool shows) {
    if (std::exchange(_titles->showsLetters, shows) != shows) setNeedsDisplay(true);
}

void NSMenuBarView::drawTitle(NSMenuItem* item, NSRect rect, bool isOpen, NSUInteger letter) {
    if (isOpen) fillRounded(NSInsetRect(rect, 1, 2), metrics::kCornerRadius, ThemeColor::selection);
    const auto text = NSMutableAttributedString::initWithString(item ? item->title() : moreText());
    if (letter < text->length())
        text->addAttribute_value_range(NSUnderlineStyleAttributeName,
                                       NSNumber::numberWithInt(NSUnderlineStyleSingle), {letter, 1});
    const MenuText shown(text);
    const float y = std::floor((menuBarHeight() - shown.size().height) / 2);
    const auto color = isOpen                       ? ThemeColor::textOnAccent
                       : !item || item->isEnabled() ? ThemeColor::text
                                                    : ThemeColor::disabledText;
    shown.draw({NSMinX(rect) + kTitleInset, y}, color, true);
}

void NSMenuBarView::drawRect(NSRect) {
    fillRect(bounds(), ThemeColor::window);
    NSRect line = bounds();
    NSDivideRect(line, &line, nullptr, metrics::kLine, NSMaxYEdge);
    fillRect(line, ThemeColor::grid);
    const auto titles = _titles->all();
    const auto letters = _titles->showsLetters ? titleLetters(_titles->observed) : std::vector<TitleLetter>();
    for (std::size_t i = 0; i < titles.size(); ++i) {
        const auto& [item, rect, index] = titles[i];
        const MenuRef handle = item ? _NSGetCarbonMenu(item->submenu()) : nullptr;
        const auto letter = std::ranges::find(letters, item.get(), &TitleLetter::item);
        drawTitle(
            item, rect,
            static_cast<int>(i) == _titles->openTitle || (handle && GetMenuID(handle) == highlightedMenu()),
            letter == letters.end() ? NSNotFound : letter->place);
    }
}

// MARK: Opening

void NSMenuBarView::track(int title, bool isButtonDown, bool isByKeyboard, NSMenuItem* entered) {
    const auto held = Retained<NSMenuBarView>::retaining(this);
    showLetters(isByKeyboard);
    MenuTracker tracker(_titles.get());
    const auto chosen = tracker.trackTitle(title, isButtonDown, isByKeyboard, entered);
    showLetters(false);
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

bool NSMenuBarView::openByLetter(NSEvent* event) {
    NSMenuItem* item = _titles->itemForLetter(event);
    if (!item || !window()) return false;
    track(_titles->titleOfItem(item), false, true, item);
    return true;
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
