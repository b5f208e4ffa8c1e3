// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSDraggingInfo.h"

#include "Foundation/NSRunLoop.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/Texts/PasteboardTypes.h"
#include "Interface/Windows/ViewExtras.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSDraggingInfo, interfaceLibrary) {
    methods.instance<"draggingPasteboard", &NSDraggingInfo::draggingPasteboard>();
    methods.instance<"draggingLocation", &NSDraggingInfo::draggingLocation>();
    methods.instance<"draggingDestinationWindow", &NSDraggingInfo::draggingDestinationWindow>();
    methods.instance<"draggingSource", &NSDraggingInfo::draggingSource>();
}

namespace {

// The drag that goes on.
struct Drag {
    WeakHandle source;
    WeakHandle view;  // that is dragged over
    bool isWelcome = false;

    static Drag& current() {
        static auto* const drag = new Drag;
        return *drag;
    }
};

bool takesOneOf(NSView* view, const std::vector<std::string>& names) {
    NSArray* types = view->registeredDraggedTypes();
    for (const std::string& name : names)
        if (NSString* type = typeOfForeignName(name); type && types->containsObject(type)) return true;
    return false;
}

NSView* takerAt(NSWindow* window, NSPoint place, const std::vector<std::string>& names) {
    for (NSView* view = window->state().hit(place); view; view = view->superview())
        if (takesOneOf(view, names)) return view;
    return nullptr;
}

bool ask(NSView* view, SEL question, NSDraggingInfo* info) {
    return view->respondsToSelector(question) &&
           send<NSUInteger>(view, question, info) != NSDragOperationNone;
}

}  // namespace

NSPasteboard* NSDraggingInfo::draggingPasteboard() { return NSPasteboard::pasteboardWithName(NSDragPboard); }

id NSDraggingInfo::draggingSource() { return Drag::current().source.object().autorelease(); }

bool NSDraggingInfo::drag(NSWindow* window, id source) {
    const BackendWindow number = window ? window->state().backendWindow : 0;
    if (!number) return false;
    Drag::current() = Drag();
    Drag::current().source = WeakHandle(source);
    return DisplayConnection::shared().backend().beginDrag(number, [](bool isTaken) {
        // Inside the back end no code of the program may run.
        NSRunLoop::mainRunLoop()->perform(
            [isTaken] {
                const Retained<Object> last = std::exchange(Drag::current(), Drag()).source.object();
                const SEL ended = "draggingEnded:"_sel;
                if (last && last->respondsToSelector(ended)) send(last, ended, isTaken);
            },
            NSArray::arrayWithObject(NSRunLoopCommonModes));
    });
}

bool NSDraggingInfo::handle(NSWindow* window, const BackendDrag& drag) {
    const float scale = window->userSpaceScaleFactor();
    const NSPoint place{static_cast<float>(drag.place.x) / scale,
                        window->state().content.size.height - static_cast<float>(drag.place.y) / scale};
    const bool isLeft = drag.kind == BackendDrag::Kind::left;
    const auto view = Retained<NSView>::retaining(isLeft ? nullptr : takerAt(window, place, drag.types));
    const auto held = Retained<NSWindow>::retaining(window);
    NSRunLoop::mainRunLoop()->perform(
        [held, view, place, kind = static_cast<int>(drag.kind)] { tell(held, view, place, kind); },
        NSArray::arrayWithObject(NSRunLoopCommonModes));
    return view != nullptr;
}

void NSDraggingInfo::tell(NSWindow* window, NSView* view, NSPoint place, int kind) {
    auto info = make<NSDraggingInfo>(classObject());
    info->_window.set(window);
    info->_place = place;
    const Retained<Object> before = Drag::current().view.object();
    if (before && before.get() != view) {
        Drag::current().view = WeakHandle();
        if (before->respondsToSelector("draggingExited:"_sel))
            send(before, "draggingExited:"_sel, info.get());
    }
    const bool isDrop = kind == static_cast<int>(BackendDrag::Kind::dropped);
    if (view && before.get() != view) {
        Drag::current().view = WeakHandle(view);
        Drag::current().isWelcome =
            !view->respondsToSelector("draggingEntered:"_sel) || ask(view, "draggingEntered:"_sel, info);
    } else if (view && view->respondsToSelector("draggingUpdated:"_sel)) {
        Drag::current().isWelcome = ask(view, "draggingUpdated:"_sel, info);
    }
    if (!isDrop) return;
    // Whatever the view does, the source hears of the end.
    struct Ending {
        bool isTaken = false;
        ~Ending() { DisplayConnection::shared().backend().endDrop(isTaken); }
    } ending;
    Drag::current().view = WeakHandle();
    const SEL drop = "performDragOperation:"_sel;
    if (view && Drag::current().isWelcome && view->respondsToSelector(drop))
        ending.isTaken = send<bool>(view, drop, info.get());
}

// MARK: Views

NSArray* NSView::registeredDraggedTypes() {
    return _extras && _extras->draggedTypes ? _extras->draggedTypes.get() : NSArray::array();
}

void NSView::registerForDraggedTypes(NSArray* types) {
    extras().draggedTypes = types ? types->copy() : nullptr;
    DisplayConnection::shared().whenDragged = &NSDraggingInfo::handle;
}

void NSView::unregisterDraggedTypes() { registerForDraggedTypes(nullptr); }

}  // namespace pelvor
