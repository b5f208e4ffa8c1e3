// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/InputMethod.h"

#include <xcb-imdkit/encoding.h>
#include <xcb-imdkit/imclient.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "InterfaceXCB/Text.h"

namespace pelvor {

namespace {

constexpr double kPatience = 0.2;
constexpr std::size_t kRemembered = 32;
// The best first: the text is shown by us, near its place by the input method, or somewhere by it.
constexpr std::uint32_t kStyles[] = {XCB_IM_PreeditCallbacks | XCB_IM_StatusNothing,
                                     XCB_IM_PreeditPosition | XCB_IM_StatusNothing,
                                     XCB_IM_PreeditNothing | XCB_IM_StatusNothing};

XInputMethod& self(void* data) { return *static_cast<XInputMethod*>(data); }

/// The name behind "@im=" of XMODIFIERS; "" if no input method is wanted.
std::string nameOfMethod() {
    const char* modifiers = std::getenv("XMODIFIERS");
    const std::string text = modifiers ? modifiers : "";
    const std::size_t start = text.find("@im=");
    if (start == std::string::npos) return "";
    const std::string name = text.substr(start + 4, text.find('@', start + 4) - start - 4);
    return name == "none" || name == "local" ? "" : name;
}

}  // namespace

XInputMethod::~XInputMethod() {
    if (!_method) return;
    xcb_xim_close(_method);
    xcb_xim_destroy(_method);
}

XInputMethod::Context* XInputMethod::contextOf(BackendWindow window) {
    const auto found = std::ranges::find(_contexts, window, &Context::window);
    return found == _contexts.end() ? nullptr : &*found;
}

XInputMethod::Context* XInputMethod::contextOfIC(xcb_xic_t ic) {
    const auto found = std::ranges::find(_contexts, ic, &Context::ic);
    return ic == 0 || found == _contexts.end() ? nullptr : &*found;
}

// MARK: Connecting

void XInputMethod::open() {
    const std::string name = nameOfMethod();
    if (_method || name.empty() || _connection.isLost()) return;
    xcb_compound_text_init();
    _method = xcb_xim_create(_connection, _connection.screenNumber(), ("@im=" + name).c_str());
    if (!_method) return;
    xcb_xim_set_use_compound_text(_method, true);
    xcb_xim_set_use_utf8_string(_method, true);
    xcb_xim_set_im_callback(_method, &callbacks(), this);
    xcb_xim_open(
        _method, [](xcb_xim_t*, void* data) { self(data).opened(); }, true, this);
}

bool XInputMethod::filter(XAnyEvent* event) {
    return _method && xcb_xim_filter_event(_method, reinterpret_cast<xcb_generic_event_t*>(event));
}

void XInputMethod::opened() {
    xcb_xim_get_im_values(
        _method,
        [](xcb_xim_t*, xcb_im_get_im_values_reply_fr_t* reply, void* data) { self(data).chooseStyle(reply); },
        this, XCB_XIM_XNQueryInputStyle, nullptr);
}

void XInputMethod::chooseStyle(const xcb_im_get_im_values_reply_fr_t* reply) {
    // The value is a count, two unused bytes, and the styles.
    std::vector<std::uint32_t> offered;
    for (std::uint32_t i = 0; reply && i < reply->im_attribute_returned.size; ++i) {
        const xcb_im_ximattribute_fr_t& attribute = reply->im_attribute_returned.items[i];
        if (attribute.value_length < 8) continue;
        offered.resize((attribute.value_length - 4U) / 4U);
        std::memcpy(offered.data(), attribute.value + 4, offered.size() * 4);
    }
    _style = XCB_IM_PreeditNothing | XCB_IM_StatusNothing;
    for (const std::uint32_t style : kStyles)
        if (std::ranges::find(offered, style) != offered.end()) {
            _style = style;
            break;
        }
    _isOpen = true;
    replied();
}

/// Sends the next request, unless one is under way.
void XInputMethod::proceed() {
    if (!_isOpen || _isWaiting) return;
    if (!_ended.empty()) {
        const xcb_xic_t ic = _ended.back();
        _ended.pop_back();
        _isWaiting = xcb_xim_destroy_ic(
            _method, ic, [](xcb_xim_t*, xcb_xic_t, void* data) { self(data).replied(); }, this);
        return;
    }
    _isWaiting = makeContext() || resetContext() || sendCaret() || sendKey();
}

void XInputMethod::replied() {
    _isWaiting = false;
    _isSilent = false;
    proceed();
}

bool XInputMethod::makeContext() {
    const auto context =
        std::ranges::find_if(_contexts, [](const Context& each) { return each.ic == 0 && !each.isRefused; });
    if (context == _contexts.end()) return false;
    _asked = context->window;
    xcb_point_t spot{};
    xcb_xim_nested_list attributes =
        xcb_xim_create_nested_list(_method, XCB_XIM_XNSpotLocation, &spot, nullptr);
    const bool isSent = xcb_xim_create_ic(
        _method, [](xcb_xim_t*, xcb_xic_t ic, void* data) { self(data).made(ic); }, this,
        XCB_XIM_XNInputStyle, &_style, XCB_XIM_XNClientWindow, &context->handle, XCB_XIM_XNFocusWindow,
        &context->handle, XCB_XIM_XNPreeditAttributes, &attributes, nullptr);
    std::free(attributes.data);
    context->isRefused = !isSent;
    return isSent;
}

void XInputMethod::made(xcb_xic_t ic) {
    if (Context* context = contextOf(std::exchange(_asked, 0))) {
        context->ic = ic;
        context->isRefused = ic == 0;
        context->hasNewCaret = true;
        tellFocus(*context);
    } else if (ic) {
        _ended.push_back(ic);  // the window has gone meanwhile
    }
    replied();
}

bool XInputMethod::resetContext() {
    const auto context =
        std::ranges::find_if(_contexts, [](const Context& each) { return each.ic && each.isToBeReset; });
    if (context == _contexts.end()) return false;
    context->isToBeReset = false;
    return xcb_xim_reset_ic(
        _method, context->ic,
        [](xcb_xim_t*, xcb_xic_t, xcb_im_reset_ic_reply_fr_t*, void* data) { self(data).replied(); }, this);
}

bool XInputMethod::sendCaret() {
    const auto context =
        std::ranges::find_if(_contexts, [](const Context& each) { return each.ic && each.hasNewCaret; });
    if (context == _contexts.end()) return false;
    context->hasNewCaret = false;
    // Below the caret, so that a list does not cover the line.
    xcb_point_t spot{static_cast<std::int16_t>(context->caret.x),
                     static_cast<std::int16_t>(context->caret.y + context->caret.height)};
    xcb_xim_nested_list attributes =
        xcb_xim_create_nested_list(_method, XCB_XIM_XNSpotLocation, &spot, nullptr);
    const bool isSent = xcb_xim_set_ic_values(
        _method, context->ic, [](xcb_xim_t*, xcb_xic_t, void* data) { self(data).replied(); }, this,
        XCB_XIM_XNPreeditAttributes, &attributes, nullptr);
    std::free(attributes.data);
    return isSent;
}

void XInputMethod::disconnected() {
    _isOpen = false;
    _asked = 0;
    for (Context& context : _contexts) {
        context.ic = 0;
        context.isRefused = false;
        context.wantsPresses = true;
        context.wantsReleases = false;
    }
    _isWaiting = false;
    _ended.clear();
    clearPreedits();
    takeBack();
    _isSilent = false;
}

// MARK: Windows

XInputMethod::Context& XInputMethod::contextFor(BackendWindow window, xcb_window_t handle) {
    if (Context* context = contextOf(window)) return *context;
    Context& context = _contexts.emplace_back(Context{window, handle});
    context.isFocused = _focused == window;
    return context;
}

void XInputMethod::setCaret(BackendWindow window, xcb_window_t handle, const PixelRect* caret) {
    Context* context = &contextFor(window, handle);
    const bool tookText = std::exchange(context->takesText, caret != nullptr);
    if (caret && std::exchange(context->caret, *caret) != *caret) context->hasNewCaret = true;
    if (tookText != context->takesText) tellFocus(*context);
    if (!caret) reset(window);
    proceed();
}

void XInputMethod::tellFocus(const Context& context) {
    if (!context.ic) return;
    if (context.isFocused && context.takesText)
        xcb_xim_set_ic_focus(_method, context.ic);
    else
        xcb_xim_unset_ic_focus(_method, context.ic);
}

void XInputMethod::setFocused(BackendWindow window, xcb_window_t handle, bool isFocused) {
    _focused = isFocused ? window : 0;
    contextFor(window, handle).isFocused = isFocused;
    tellFocus(contextFor(window, handle));
    if (!isFocused) reset(window);
    proceed();
}

void XInputMethod::windowEnded(BackendWindow window) {
    if (const Context* context = contextOf(window); context && context->ic) _ended.push_back(context->ic);
    std::erase_if(_contexts, [window](const Context& context) { return context.window == window; });
    proceed();
}

void XInputMethod::reset(BackendWindow window) {
    Context* context = contextOf(window);
    if (!context || context->preedit.isEmpty()) return;
    context->isToBeReset = true;
    clearPreedit(*context);
    proceed();
}

// MARK: Keys

bool XInputMethod::take(BackendWindow window, const BackendKey& key,
                        const std::shared_ptr<xcb_key_press_event_t>& event) {
    const Context* context = contextOf(window);
    const bool isWanted =
        context && context->ic && context->takesText && _isOpen && !_isSilent && context->wantsPresses;
    if (!isWanted) return false;
    _keys.push_back({window, key, event, secondsNow() + kPatience});
    proceed();
    return true;
}

bool XInputMethod::sendKey() {
    while (!_keys.empty()) {
        Key& key = _keys.front();
        Context* context = contextOf(key.window);
        if (context && context->ic && xcb_xim_forward_event(_method, context->ic, key.event.get())) {
            key.isSent = true;
            return xcb_xim_get_im_values(
                _method,
                [](xcb_xim_t*, xcb_im_get_im_values_reply_fr_t*, void* data) { self(data).answered(); }, this,
                XCB_XIM_XNQueryInputStyle, nullptr);
        }
        _keys.pop_front();  // its window is gone
    }
    return false;
}

void XInputMethod::answered() {
    if (!_keys.empty() && _keys.front().isSent) {
        _answered.push_back(std::move(_keys.front()));
        _keys.pop_front();
        if (_answered.size() > kRemembered) _answered.pop_front();
    }
    replied();
}

void XInputMethod::release(BackendWindow window, const xcb_key_release_event_t& event) {
    const Context* context = contextOf(window);
    // A release behind keys that still wait would come before them.
    if (!context || !context->ic || !context->takesText || _isWaiting || !_isOpen || !context->wantsReleases)
        return;
    xcb_key_press_event_t copy = event;
    xcb_xim_forward_event(_method, context->ic, &copy);
}

/// All at once: each one's own time would be waited for otherwise.
void XInputMethod::takeBack() {
    const std::deque<Key> keys = std::exchange(_keys, {});
    _isSilent = _isWaiting;
    for (const Key& key : keys)
        if (!key.isBack) _client.keyCameBack(key.window, key.key);
}

double XInputMethod::secondsLeft() const {
    if (_keys.empty()) return std::numeric_limits<double>::infinity();
    return std::max(_keys.front().deadline - secondsNow(), 0.0);
}

void XInputMethod::takeBackLate() {
    if (_keys.empty() || _keys.front().deadline > secondsNow()) return;
    clearPreedits();
    takeBack();
}

void XInputMethod::abandon() {
    _isOpen = false;
    clearPreedits();
    takeBack();
}

// MARK: What it tells

std::u16string XInputMethod::textOf(const void* bytes, std::size_t length) const {
    const auto* text = static_cast<const char*>(bytes);
    if (xcb_xim_get_encoding(_method) == XCB_XIM_UTF8_STRING) return utf16(std::string_view(text, length));
    std::size_t count = 0;
    const XReply<char> decoded(xcb_compound_text_to_utf8(text, length, &count));
    return decoded ? utf16(std::string_view(decoded.get(), count)) : std::u16string();
}

void XInputMethod::tellPreedit(const Context& context) {
    _client.composing(context.window, context.preedit.shown());
}

void XInputMethod::clearPreedit(Context& context) {
    if (context.preedit.isEmpty()) return;
    context.preedit.clear();
    tellPreedit(context);
}

void XInputMethod::clearPreedits() {
    // Whoever hears of it may end windows.
    for (std::size_t i = 0; i < _contexts.size(); ++i) clearPreedit(_contexts[i]);
}

void XInputMethod::committed(xcb_xic_t ic, const char* bytes, std::size_t length) {
    Context* context = contextOfIC(ic);
    if (!context || _isSilent) return;
    const BackendWindow window = context->window;
    const std::u16string text = textOf(bytes, length);
    if (!text.empty()) _client.composed(window, text);
}

void XInputMethod::drawn(xcb_xic_t ic, const xcb_im_preedit_draw_fr_t& frame) {
    constexpr std::uint32_t kNoText = 1;
    constexpr std::uint32_t kNoStyles = 2;
    Context* context = contextOfIC(ic);
    if (!context || _isSilent) return;
    const std::u16string text = frame.status & kNoText
                                    ? std::u16string()
                                    : textOf(frame.preedit_string, frame.length_of_preedit_string);
    std::span<const std::uint32_t> styles;
    if (!(frame.status & kNoStyles)) styles = {frame.feedback_array.items, frame.feedback_array.size};
    context->preedit.replace(frame.chg_first, frame.chg_length, text, styles);
    context->preedit.setCaret(frame.caret);
    tellPreedit(*context);
}

void XInputMethod::cameBack(const xcb_key_press_event_t& event) {
    if (_isSilent || kindOf(event) != XCB_KEY_PRESS) return;
    // It may be answered for already by a method that asks another program; then it is among those before.
    const auto fits = [&](const Key& key) {
        return key.key.code + 8 == event.detail && _connection.secondsOf(event.time) == key.key.seconds;
    };
    for (std::deque<Key>* keys : {&_keys, &_answered})
        if (const auto found = std::ranges::find_if(*keys, fits); found != keys->end() && !found->isBack) {
            found->isBack = true;
            const Key key = *found;
            return _client.keyCameBack(key.window, key.key);
        }
}

const xcb_xim_im_callback& XInputMethod::callbacks() {
    static const xcb_xim_im_callback callbacks = [] {
        xcb_xim_im_callback callbacks{};
        callbacks.set_event_mask = [](xcb_xim_t*, xcb_xic_t ic, std::uint32_t wanted, std::uint32_t,
                                      void* data) {
            Context* context = self(data).contextOfIC(ic);
            if (!context) return;
            context->wantsPresses = (wanted & XCB_EVENT_MASK_KEY_PRESS) != 0;
            context->wantsReleases = (wanted & XCB_EVENT_MASK_KEY_RELEASE) != 0;
        };
        callbacks.forward_event = [](xcb_xim_t*, xcb_xic_t, xcb_key_press_event_t* event, void* data) {
            self(data).cameBack(*event);
        };
        callbacks.commit_string = [](xcb_xim_t*, xcb_xic_t ic, std::uint32_t flags, char* text,
                                     std::uint32_t length, std::uint32_t*, std::size_t, void* data) {
            if (flags & XCB_XIM_LOOKUP_CHARS) self(data).committed(ic, text, length);
        };
        callbacks.preedit_draw = [](xcb_xim_t*, xcb_xic_t ic, xcb_im_preedit_draw_fr_t* frame, void* data) {
            self(data).drawn(ic, *frame);
        };
        callbacks.preedit_caret = [](xcb_xim_t*, xcb_xic_t ic, xcb_im_preedit_caret_fr_t* frame, void* data) {
            constexpr std::uint32_t kAbsolute = 10;
            Context* context = self(data).contextOfIC(ic);
            if (!context || frame->direction != kAbsolute) return;
            context->preedit.setCaret(frame->position);
            self(data).tellPreedit(*context);
        };
        callbacks.preedit_done = [](xcb_xim_t*, xcb_xic_t ic, void* data) {
            if (Context* context = self(data).contextOfIC(ic)) self(data).clearPreedit(*context);
        };
        callbacks.disconnected = [](xcb_xim_t*, void* data) { self(data).disconnected(); };
        return callbacks;
    }();
    return callbacks;
}

}  // namespace pelvor
