// SPDX-License-Identifier: Apache-2.0
#include "Interface/Backend/HeadlessBackend.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Foundation/RunLoop/Deadline.h"

namespace pelvor {
namespace {

bool contains(const PixelRect& rect, PixelPoint place) {
    return place.x >= rect.x && place.x < rect.x + rect.width && place.y >= rect.y &&
           place.y < rect.y + rect.height;
}

}  // namespace

HeadlessBackend::HeadlessBackend(BackendSink& sink) : _sink(sink) {
    BackendScreen screen;
    screen.frame = screen.visibleFrame = {0, 0, 1280, 1024};
    screen.isMain = true;
    _screens = {screen};
}

HeadlessBackend::~HeadlessBackend() = default;

double HeadlessBackend::timeout() { return std::numeric_limits<double>::infinity(); }

HeadlessBackend::Window* HeadlessBackend::find(BackendWindow window) {
    auto found = _windows.find(window);
    return found == _windows.end() ? nullptr : &found->second;
}
const HeadlessBackend::Window* HeadlessBackend::find(BackendWindow window) const {
    auto found = _windows.find(window);
    return found == _windows.end() ? nullptr : &found->second;
}

// MARK: The user

BackendWindow HeadlessBackend::windowAt(PixelPoint place) const {
    for (auto number = _order.rbegin(); number != _order.rend(); ++number)
        if (const Window* window = find(*number);
            window->isShown && !window->isMinimized && contains(window->frame, place))
            return *number;
    return 0;
}

// A pressed button keeps the pointer with its window.
BackendWindow HeadlessBackend::receiverOfPointer() const { return _pressed ? _pressed : windowAt(_pointer); }

void HeadlessBackend::tellPointer(BackendWindow number, BackendPointer pointer) {
    const Window* window = find(number);
    if (!window) return;
    pointer.onScreen = _pointer;
    pointer.place = {_pointer.x - window->frame.x, _pointer.y - window->frame.y};
    pointer.modifiers = _modifiers;
    pointer.buttonsDown = _buttons;
    pointer.seconds = steadyTime();
    _sink.pointer(number, pointer);
}

void HeadlessBackend::enter(BackendWindow window) {
    BackendPointer pointer;
    const BackendWindow left = std::exchange(_entered, window);
    if (left == window) return;
    pointer.kind = BackendPointer::Kind::exited;
    tellPointer(left, pointer);
    pointer.kind = BackendPointer::Kind::entered;
    tellPointer(window, pointer);
}

void HeadlessBackend::movePointer(PixelPoint place) {
    _pointer = place;
    if (_dragDone) {
        dragTo(place);
        return;
    }
    const BackendWindow receiver = receiverOfPointer();
    enter(receiver);
    BackendPointer pointer;
    pointer.kind = BackendPointer::Kind::moved;
    tellPointer(receiver, pointer);
}

void HeadlessBackend::pressButton(int button) {
    const BackendWindow receiver = receiverOfPointer();
    const Window* window = find(receiver);
    if (!_menus.empty() && (!window || window->wishes.kind != WindowKind::menu)) {
        _sink.trackingLost();
        return;
    }
    _buttons |= 1u << (button - 1);
    _pressed = receiver;
    BackendPointer pointer;
    pointer.kind = BackendPointer::Kind::down;
    pointer.button = button;
    tellPointer(receiver, pointer);
}

void HeadlessBackend::releaseButton(int button) {
    _buttons &= ~(1u << (button - 1));
    const BackendWindow receiver = receiverOfPointer();
    if (!_buttons) _pressed = 0;
    if (_dragDone) {
        drop();
        return;
    }
    BackendPointer pointer;
    pointer.kind = BackendPointer::Kind::up;
    pointer.button = button;
    tellPointer(receiver, pointer);
}

void HeadlessBackend::scroll(float linesX, float linesY) {
    BackendPointer pointer;
    pointer.kind = BackendPointer::Kind::scrolled;
    pointer.linesX = linesX;
    pointer.linesY = linesY;
    tellPointer(receiverOfPointer(), pointer);
}

void HeadlessBackend::setModifiers(std::uint32_t modifiers) {
    if (std::exchange(_modifiers, modifiers) == modifiers) return;
    BackendKey change;
    change.modifiers = modifiers;
    change.symbol = 0xFFE1;  // the left Shift key; which one does not matter
    change.isDown = modifiers != 0;
    key(change);
}

void HeadlessBackend::key(BackendKey key) {
    key.seconds = steadyTime();
    const BackendWindow receiver = _menus.empty() ? _focused : _menus.back();
    if (find(receiver)) _sink.key(receiver, key);
}

void HeadlessBackend::lose(const std::string& reason) {
    _isPlayed = false;
    _sink.lost(reason);
}

void HeadlessBackend::clickCloseButton(BackendWindow window) {
    if (find(window)) _sink.close(window);
}

void HeadlessBackend::focusWindow(BackendWindow window) {
    if (_focused == window || (window && !find(window))) return;
    const BackendWindow old = std::exchange(_focused, window);
    if (find(old)) _sink.focus(old, false);
    if (find(window) && _focused == window) _sink.focus(window, true);
}

void HeadlessBackend::moveWindow(BackendWindow number, PixelRect frame) {
    if (Window* window = find(number)) setFrame(number, *window, frame);
}

void HeadlessBackend::setScreens(std::vector<BackendScreen> screens) {
    _screens = std::move(screens);
    _sink.screensChanged();
}

void HeadlessBackend::setLayouts(std::vector<BackendLayout> layouts) {
    _layouts = std::move(layouts);
    _sink.layoutChanged();
}

void HeadlessBackend::setForeignSelection(BackendSelection selection,
                                          std::map<std::string, std::string> contents) {
    Offer& held = offer(selection);
    const bool wasOurs = !held.types.empty();
    held.types.clear();
    for (const auto& [type, content] : contents) held.types.push_back(type);
    held.provider = [contents = std::move(contents)](const std::string& type) {
        auto found = contents.find(type);
        return found == contents.end() ? std::string() : found->second;
    };
    if (wasOurs) _sink.selectionLost(selection);
}

bool HeadlessBackend::dragTo(PixelPoint place) {
    _pointer = place;
    const BackendWindow target = windowAt(place);
    BackendDrag drag;
    drag.types = offer(BackendSelection::drag).types;
    if (const BackendWindow left = std::exchange(_dragTarget, target); left && left != target) {
        drag.kind = BackendDrag::Kind::left;
        if (find(left)) _sink.drag(left, drag);
        drag.kind = BackendDrag::Kind::entered;
    } else {
        drag.kind = left ? BackendDrag::Kind::moved : BackendDrag::Kind::entered;
    }
    const Window* window = find(target);
    if (!window) return false;
    drag.place = {place.x - window->frame.x, place.y - window->frame.y};
    return _sink.drag(target, drag);
}

bool HeadlessBackend::drop() {
    const bool isWanted = dragTo(_pointer);
    const Window* window = find(std::exchange(_dragTarget, 0));
    if (!isWanted || !window) return endDrop(false), false;
    BackendDrag drag;
    drag.kind = BackendDrag::Kind::dropped;
    drag.types = offer(BackendSelection::drag).types;
    drag.place = {_pointer.x - window->frame.x, _pointer.y - window->frame.y};
    return _sink.drag(windowAt(_pointer), drag);
}

void HeadlessBackend::setBusy(bool isBusy) {
    _isBusy = isBusy;
    if (isBusy) return;
    for (BackendWindow window : std::exchange(_askedWhileBusy, {}))
        if (find(window)) _sink.paintReady(window);
}

// MARK: What the user would see

bool HeadlessBackend::isShown(BackendWindow number) const {
    const Window* window = find(number);
    return window && window->isShown;
}
std::string HeadlessBackend::title(BackendWindow number) const {
    const Window* window = find(number);
    return window ? window->wishes.title : "";
}
PixelRect HeadlessBackend::frame(BackendWindow number) const {
    const Window* window = find(number);
    return window ? window->frame : PixelRect{};
}
PixelRect HeadlessBackend::limits(BackendWindow number) const {
    const Window* window = find(number);
    return window ? window->limits : PixelRect{};
}
BackendCursor HeadlessBackend::cursor(BackendWindow number) const {
    const Window* window = find(number);
    return window ? window->cursor : BackendCursor::arrow;
}
const BackendImage* HeadlessBackend::picture(BackendWindow number) const {
    const Window* window = find(number);
    return window && window->image.pixels ? &window->image : nullptr;
}
std::vector<PixelRect> HeadlessBackend::takePresented() { return std::exchange(_presented, {}); }

// MARK: Windows

BackendWindow HeadlessBackend::createWindow(const WindowWishes& wishes) {
    Window& window = _windows[++_last];
    window.wishes = wishes;
    window.frame = wishes.frame;
    _order.push_back(_last);
    return _last;
}

void HeadlessBackend::destroyWindow(BackendWindow number) {
    if (!_windows.erase(number)) return;
    std::erase(_order, number);
    std::erase(_menus, number);
    for (BackendWindow* known : {&_focused, &_entered, &_pressed, &_dragTarget})
        if (*known == number) *known = 0;
}

void HeadlessBackend::tellConfigured(BackendWindow number, const Window& window) {
    _sink.configured(number, window.frame, window.isMinimized, window.isZoomed);
}

void HeadlessBackend::setFrame(BackendWindow number, Window& window, PixelRect frame) {
    frame.width = std::max(frame.width, 1);
    frame.height = std::max(frame.height, 1);
    const bool isResized = frame.width != window.frame.width || frame.height != window.frame.height;
    window.frame = frame;
    if (isResized) window.image = {};
    tellConfigured(number, window);
    if (isResized && find(number)) _sink.expose(number, {0, 0, frame.width, frame.height});
}

void HeadlessBackend::configure(BackendWindow number, const WindowChanges& changes) {
    Window* window = find(number);
    if (!window) return;
    if (changes.title) window->wishes.title = *changes.title;
    if (changes.minimumAndMaximum) window->limits = *changes.minimumAndMaximum;
    if (changes.raises) {
        std::erase(_order, number);
        _order.push_back(number);
    }
    if (changes.isMinimized && window->isMinimized != *changes.isMinimized) {
        window->isMinimized = *changes.isMinimized;
        tellConfigured(number, *window);
    }
    const bool* fills = changes.isZoomed ? changes.isZoomed : changes.isFullScreen;
    if (fills && (window = find(number)) && window->isZoomed != *fills) {
        window->isZoomed = *fills;
        if (*fills) window->restoredFrame = window->frame;
        PixelRect whole = changes.isZoomed ? _screens[0].visibleFrame : _screens[0].frame;
        setFrame(number, *window, *fills ? whole : window->restoredFrame);
    }
    if (changes.frame && (window = find(number)) && *changes.frame != window->frame)
        setFrame(number, *window, *changes.frame);
    if (changes.isShown && (window = find(number)) && window->isShown != *changes.isShown) {
        window->isShown = *changes.isShown;
        if (!window->isShown && _focused == number) focusWindow(0);
        if (find(number) && *changes.isShown)
            _sink.expose(number, {0, 0, window->frame.width, window->frame.height});
    }
    if (changes.takesFocus && isShown(number)) focusWindow(number);
}

PixelRect HeadlessBackend::frameExtents(BackendWindow number) {
    const Window* window = find(number);
    return window && window->wishes.hasTitleBar ? _extents : PixelRect{};
}

// MARK: Painting

const BackendImage* HeadlessBackend::beginPaint(BackendWindow number) {
    Window* window = find(number);
    if (!window) return nullptr;
    if (_isBusy) {
        _askedWhileBusy.push_back(number);
        return nullptr;
    }
    if (!window->image.pixels) {
        const int bytesPerRow = window->frame.width * 4;
        window->pixels.assign(
            static_cast<std::size_t>(bytesPerRow) * static_cast<std::size_t>(window->frame.height), 0);
        window->image = {window->pixels.data(), window->frame.width, window->frame.height, bytesPerRow};
    }
    return &window->image;
}

void HeadlessBackend::present(BackendWindow, std::span<const PixelRect> damage, bool) {
    _presented.insert(_presented.end(), damage.begin(), damage.end());
}

void HeadlessBackend::setCursor(BackendWindow number, BackendCursor cursor) {
    if (Window* window = find(number)) window->cursor = cursor;
}

bool HeadlessBackend::beginTracking(BackendWindow menu) {
    std::erase(_menus, menu);
    _menus.push_back(menu);
    return true;
}

void HeadlessBackend::endTracking() { _menus.clear(); }

// MARK: Keys and text

void HeadlessBackend::interpretKey(BackendWindow window, const BackendKey& key) {
    if (inputMethod && inputMethod(window, key)) return;
    if (isTypedText(key))
        _sink.text(window, key.characters);
    else
        _sink.command(window, key);
}

void HeadlessBackend::setTextInput(BackendWindow, const PixelRect* caret) {
    _hasCaret = caret;
    if (caret) _caret = *caret;
}

bool HeadlessBackend::setLayout(std::uint32_t group) {
    const auto isMeant = [&](const BackendLayout& layout) { return layout.group == group; };
    if (std::none_of(_layouts.begin(), _layouts.end(), isMeant)) return false;
    for (BackendLayout& layout : _layouts) layout.isCurrent = isMeant(layout);
    _sink.layoutChanged();
    return true;
}

// MARK: Selections

bool HeadlessBackend::offerSelection(BackendSelection selection, std::vector<std::string> types,
                                     SelectionProvider provider) {
    offer(selection) = {std::move(types), std::move(provider)};
    return true;
}

void HeadlessBackend::requestTypes(BackendSelection selection, SelectionReceiver done) {
    std::string lines;
    for (const std::string& type : offer(selection).types) lines += type + "\n";
    done(!lines.empty(), lines);
}

void HeadlessBackend::requestSelection(BackendSelection selection, const std::string& type,
                                       SelectionReceiver done) {
    const Offer held = offer(selection);
    const bool isThere = std::find(held.types.begin(), held.types.end(), type) != held.types.end();
    done(isThere, isThere ? held.provider(type) : "");
}

bool HeadlessBackend::beginDrag(BackendWindow, std::function<void(bool isTaken)> done) {
    if (!_buttons) return false;
    _dragDone = std::move(done);
    return true;
}

void HeadlessBackend::endDrop(bool isTaken) {
    if (auto done = std::exchange(_dragDone, nullptr)) done(isTaken);
}

}  // namespace pelvor
