// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSInputManager.h"

#include <deque>

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSNumber.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Input/InputReply.h"
#include "Interface/Input/KeyBindings.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/TextAttributes.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSInputManager, interfaceLibrary) {
    methods.classLevel<"currentInputManager", &NSInputManager::currentInputManager>();
    methods.instance<"interpretKeyEvent:forClient:", &NSInputManager::interpretKeyEvent_forClient>();
    methods.instance<"abandonMarkedTextInWindow:", &NSInputManager::abandonMarkedTextInWindow>();
    methods.instance<"commandsForKeyEvent:", &NSInputManager::commandsForKeyEvent>();
    methods.classLevel<"keyBindings", &NSInputManager::keyBindings>();
    methods.classLevel<"setKeyBindings:", &NSInputManager::setKeyBindings>();
}

struct NSInputManager::State {
    struct Pending {
        WeakHandle window;
        InputReply reply;
    };
    std::deque<Pending> replies;
    WeakHandle client;
    bool isInterpreting = false;
    KeyBindings bindings;
};

namespace {

Retained<NSInputManager>& sharedManager() {
    static auto* manager = new Retained<NSInputManager>;
    return *manager;
}

}  // namespace

NSInputManager::NSInputManager() : _state(std::make_unique<State>()) {}
NSInputManager::~NSInputManager() = default;

NSInputManager* NSInputManager::currentInputManager() {
    if (!sharedManager()) sharedManager() = make<NSInputManager>();
    return sharedManager();
}

void NSInputManager::forget() { sharedManager() = nullptr; }

// MARK: Keys

void NSInputManager::interpretKeyEvent_forClient(NSEvent* event, NSResponder* client) {
    if (!event || !client || event->type() != NSKeyDown) return;
    const auto held = Retained<NSInputManager>::retaining(this);
    // A key goes to the key window even where it was pressed in another one, which may have closed since.
    auto* view = cast<NSView>(client);
    NSWindow* window = view ? view->window() : event->window();
    _state->client = WeakHandle(client);
    const BackendWindow number = window ? window->state().backendWindow : 0;
    if (number) {
        struct Interpreting {
            explicit Interpreting(bool& flag) : _flag(flag), _before(std::exchange(flag, true)) {}
            ~Interpreting() { _flag = _before; }
            bool& _flag;
            bool _before;
        };
        const Interpreting interpreting(_state->isInterpreting);
        DisplayConnection::shared().backend().interpretKey(number, *event->backendKey());
    } else {
        const BackendKey& key = *event->backendKey();
        const auto kind = isTypedText(key) ? InputReply::Kind::text : InputReply::Kind::command;
        _state->replies.push_back({WeakHandle(window), {kind, key.characters, 0, {}, key}});
    }
    deliverReplies();
}

bool NSInputManager::take(NSWindow* window, InputReply reply) {
    if (!window) return false;
    State& state = *currentInputManager()->_state;
    const bool isFirst = state.replies.empty();
    state.replies.push_back({WeakHandle(window), std::move(reply)});
    return isFirst && !state.isInterpreting;
}

// The responder that handed keys over, or what has the keys in the window now.
id NSInputManager::clientForWindow(NSWindow* window) {
    Retained<Object> client = _state->client.object();
    if (!window) return std::move(client).autorelease();
    NSResponder* first = window->firstResponder();
    auto* view = cast<NSView>(client.get());
    const bool isMeant = client && (client == first || !view || view->window() == window);
    return isMeant ? std::move(client).autorelease() : first;
}

namespace {

Retained<NSMutableAttributedString> composed(const InputReply& reply) {
    auto text = NSMutableAttributedString::initWithString(NSString::of(reply.text));
    const NSUInteger length = text->length();
    text->addAttribute_value_range(NSUnderlineStyleAttributeName,
                                   NSNumber::numberWithInt(NSUnderlineStyleSingle), {0, length});
    for (const PreeditSpan& span : reply.spans) {
        const NSRange range{static_cast<NSUInteger>(span.location), static_cast<NSUInteger>(span.length)};
        if (span.isHighlighted && isRangeInside(range, length))
            text->addAttribute_value_range(NSUnderlineStyleAttributeName,
                                           NSNumber::numberWithInt(NSUnderlineStyleThick), range);
    }
    return text;
}

}  // namespace

void NSInputManager::deliverReplies() {
    const auto held = Retained<NSInputManager>::retaining(this);
    while (!_state->replies.empty()) {
        const State::Pending pending = std::move(_state->replies.front());
        _state->replies.pop_front();
        const InputReply& reply = pending.reply;
        const Retained<Object> window = pending.window.object();
        const auto client =
            Retained<Object>::retaining(clientForWindow(static_cast<NSWindow*>(window.get())));
        if (!client) continue;
        if (reply.kind == InputReply::Kind::text) {
            send(client.get(), "insertText:"_sel, id(NSString::of(reply.text)));
        } else if (reply.kind == InputReply::Kind::preedit) {
            const SEL mark = "setMarkedText:selectedRange:"_sel;
            const NSRange caret{static_cast<NSUInteger>(std::min(reply.caret, reply.text.size())), 0};
            if (client->respondsToSelector(mark)) send(client.get(), mark, id(composed(reply).get()), caret);
        } else {
            const std::vector<SEL> commands = _state->bindings.commandsFor(reply.key);
            for (SEL command : commands) send(client.get(), "doCommandBySelector:"_sel, command);
            if (commands.empty()) send(client.get(), "doCommandBySelector:"_sel, "noop:"_sel);
        }
    }
}

void NSInputManager::abandonMarkedTextInWindow(NSWindow* window) {
    if (!window || !window->state().backendWindow) return;
    DisplayConnection::shared().backend().resetComposing(window->state().backendWindow);
}

// MARK: Bindings

NSArray* NSInputManager::commandsForKeyEvent(NSEvent* event) {
    NSMutableArray* names = NSMutableArray::array();
    if (event && event->backendKey())
        for (SEL command : _state->bindings.commandsFor(*event->backendKey()))
            names->addObject(NSString::ofUTF8(command.name()));
    return names;
}

NSDictionary* NSInputManager::keyBindings() { return currentInputManager()->_state->bindings.dictionary(); }

void NSInputManager::setKeyBindings(NSDictionary* bindings) {
    KeyBindings& known = currentInputManager()->_state->bindings;
    if (!bindings) {
        known = KeyBindings();
        return;
    }
    const std::u16string failed = known.add(bindings);
    if (!failed.empty())
        raiseBadArgument("setKeyBindings:",
                         "the key \"" + NSString::of(failed)->toUTF8() + "\" cannot be understood");
}

}  // namespace pelvor
