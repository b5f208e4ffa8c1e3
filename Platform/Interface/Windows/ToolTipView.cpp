// SPDX-License-Identifier: Apache-2.0
#include "Interface/Windows/ToolTipView.h"

#include <cmath>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSRunLoop.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSScreen.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSString-Drawing.h"
#include "Text/TextAttributes.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(ToolTipView, interfaceLibrary) { methods.instance<"show:", &ToolTipView::show>(); }

namespace {

constexpr NSTimeInterval kRest = 0.6;  // seconds until a tip comes
constexpr float kBelowPointer = 20;
constexpr NSSize kInset{6, 4};
constexpr NSSize kWidest{360, 1000};

NSDictionary* attributes() {
    return NSDictionary::of({{NSFontAttributeName, NSFont::systemFontOfSize(11)},
                             {NSForegroundColorAttributeName, themeColor(ThemeColor::text)}});
}

}  // namespace

// Null while no tip is shown or waited for.
Retained<ToolTipView>& ToolTipView::current() {
    static auto* view = new Retained<ToolTipView>;
    return *view;
}

void ToolTipView::hide() {
    Retained<ToolTipView> old = std::exchange(current(), nullptr);
    if (!old) return;
    if (old->_timer) old->_timer->invalidate();
    // The window and its view keep each other.
    if (Retained<NSWindow> tip = std::exchange(old->_tip, nullptr)) tip->close();
}

void ToolTipView::follow(NSView* view, NSPoint place) {
    while (view && !view->toolTip()) view = view->superview();
    const Retained<ToolTipView> known = current();
    if (known && known->_tip && known->_view.object() == view) return;
    hide();
    if (!view) return;
    auto made = make<ToolTipView>();
    made->_view = WeakHandle(view);
    made->_place = place;
    made->_timer = NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats(
        NSDate::dateWithTimeIntervalSinceNow(kRest), 0, made.get(), "show:"_sel, nullptr, false);
    NSRunLoop::mainRunLoop()->addTimer_forMode(made->_timer, NSDefaultRunLoopMode);
    current() = made;
}

void ToolTipView::show(NSTimer*) {
    auto view = _view.object();
    auto* over = cast<NSView>(view.get());
    if (_tip || !over || !over->window() || !over->toolTip() || current() != this) return;
    _text = over->toolTip()->copy();
    const NSSize text = boundingRectWithSize_options_attributes(
                            _text, kWidest, NSStringDrawingUsesLineFragmentOrigin, attributes())
                            .size;
    const NSSize size{std::ceil(text.width) + 2 * kInset.width, std::ceil(text.height) + 2 * kInset.height};
    _tip = NSWindow::initWithContentRect_styleMask_backing_defer(
        {{_place.x, _place.y - kBelowPointer - size.height}, size}, NSBorderlessWindowMask,
        NSBackingStoreBuffered, true);
    _tip->setLevel(NSToolTipWindowLevel);
    _tip->setIgnoresMouseEvents(true);
    _tip->setContentView(this);
    NSScreen* screen = over->window()->screen();
    const NSRect room = (screen ? screen : NSScreen::mainScreen())->visibleFrame();
    NSPoint origin = _tip->frame().origin;
    if (origin.y < room.origin.y) origin.y = _place.y + kInset.height;
    origin.x = std::fmax(room.origin.x, std::fmin(origin.x, NSMaxX(room) - size.width));
    _tip->setFrameOrigin(origin);
    over->window()->addChildWindow_ordered(_tip, NSWindowAbove);
}

void ToolTipView::drawRect(NSRect) {
    themeColor(ThemeColor::content)->set();
    NSRectFill(bounds());
    themeColor(ThemeColor::border)->set();
    NSFrameRect(bounds());
    const NSRect inside = NSInsetRect(bounds(), kInset.width, kInset.height);
    drawInRect_withAttributes(_text, {inside.origin, {inside.size.width + 1, inside.size.height}},
                              attributes());
}

}  // namespace pelvor
