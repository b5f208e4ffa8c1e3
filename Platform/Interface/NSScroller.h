// SPDX-License-Identifier: Apache-2.0
// NSScroller: shows which part of something is seen, and lets the user choose another one.
#pragma once

#include "Interface/NSView.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class NSTimer;

/// Where a press hit a scroller.
enum NSScrollerPart : int {
    NSScrollerNoPart = 0,
    NSScrollerDecrementPage = 1,
    NSScrollerKnob = 2,
    NSScrollerIncrementPage = 3,
    NSScrollerKnobSlot = 6,
};

/// A bar with a knob, upright if it is higher than wide. The knob's length shows how much is seen, its place
/// where that is. A press beside the knob pages there, again and again while the button is held; a press of
/// the middle button brings the knob under the pointer.
///
/// The scroller sends its action to its target after a press, and while the knob is dragged. The target looks
/// at `hitPart`: for the knob it takes `floatValue`, else it pages, and tells the scroller what came of that.
/// Main thread.
class PELVOR_EXPORT NSScroller : public NSView {
    PELVOR_CLASS(NSScroller, NSView);
    PELVOR_CREATORS(initWithFrame);

  public:
    static Retained<NSScroller> initWithFrame(NSRect frame, Class* cls = classObject());
    /// The thickness of scrollers.
    static float scrollerWidth();

    /// 0 at the beginning to 1 at the end.
    float floatValue() { return _value; }
    /// The part that is seen, 0 to 1.
    float knobProportion() { return _proportion; }
    /// Numbers are moved to the nearest of these limits, NaN to 0.
    void setFloatValue_knobProportion(float value, float proportion);
    void setFloatValue(float value) { setFloatValue_knobProportion(value, _proportion); }
    /// A scroller that is not enabled, or sees everything, shows no knob.
    bool isEnabled() { return _isEnabled; }
    void setEnabled(bool isEnabled);
    bool isVertical();

    /// Not kept alive.
    id target() { return _target.object().autorelease(); }
    void setTarget(id target) { _target = WeakHandle(target); }
    SEL action() { return _action; }
    void setAction(SEL action) { _action = action; }

    /// What the last press hit.
    NSScrollerPart hitPart() { return _hitPart; }
    /// Which part the point, in base coordinates of the window, is in.
    NSScrollerPart testPart(NSPoint point);
    /// The part in the scroller's coordinates; empty without a knob.
    NSRect rectForPart(NSScrollerPart part);

    // Of the superclass

    bool isFlipped() override { return true; }
    bool isOpaque() override { return true; }
    bool acceptsFirstMouse(NSEvent* event) override;
    void drawRect(NSRect dirty) override;
    void mouseDown(NSEvent* event) override;
    void mouseDragged(NSEvent* event) override;
    void mouseUp(NSEvent* event) override;
    void otherMouseDown(NSEvent* event) override;
    void otherMouseDragged(NSEvent* event) override;
    void otherMouseUp(NSEvent* event) override;
    void viewWillMoveToWindow(NSWindow* window) override;

  protected:
    NSScroller() = default;
    ~NSScroller();

  private:
    float placeOf(NSEvent* event);
    float slack();
    void beginKnobDrag(float place);
    void dragKnob(float place);
    void page(NSTimer* timer);
    void endTracking();
    void sendAction();

    WeakHandle _target;
    SEL _action;
    float _value = 0;
    float _proportion = 1;
    bool _isEnabled = true;
    NSScrollerPart _hitPart = NSScrollerNoPart;
    float _grip = 0;   // from the knob's beginning to the pointer that drags it
    float _press = 0;  // where the pointer is while the button is held beside the knob
    bool _isTracking = false;
    Retained<NSTimer> _repeat;
};

}  // namespace pelvor
