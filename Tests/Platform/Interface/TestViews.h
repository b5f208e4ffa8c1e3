// SPDX-License-Identifier: Apache-2.0
// Views that note what happens to them.
#pragma once

#include "Foundation/NSAttributedString.h"
#include "Interface/NSEvent.h"
#include "Interface/NSView.h"
#include "Prelude.h"
#include "Text/NSColor.h"

namespace pelvor {

/// Fills itself with a colour, takes keys, and logs.
class TestView : public NSView {
    PELVOR_CLASS(TestView, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    static Retained<TestView> make(NSRect frame, NSColor* color = nullptr, bool isFlipped = false);

    std::vector<std::string> log;
    std::vector<NSRect> drawn;
    std::function<void()> whenDrawn, whenPressed;
    bool flipped = false, opaque = true, takesKeys = true;

    bool isFlipped() override { return flipped; }
    bool isOpaque() override { return opaque; }
    bool acceptsFirstResponder() override { return takesKeys; }
    void drawRect(NSRect dirty) override;
    void mouseDown(NSEvent* event) override;
    void mouseDragged(NSEvent* event) override { note("drag", event); }
    void mouseUp(NSEvent* event) override { note("up", event); }
    void mouseEntered(NSEvent*) override { log.push_back("entered"); }
    void mouseExited(NSEvent*) override { log.push_back("exited"); }
    void keyDown(NSEvent* event) override { interpretKeyEvents(NSArray::arrayWithObject(event)); }
    void insertText(id text) override;
    void doCommandBySelector(SEL selector) override { log.push_back(selector.name()); }
    void setMarkedText_selectedRange(id text, NSRange selection);

  protected:
    TestView() = default;
    ~TestView() = default;

  private:
    void note(const char* what, NSEvent* event);
    Retained<NSColor> _color;
};

/// Has a cross-hair everywhere.
class TestCursorView : public TestView {
    PELVOR_CLASS(TestCursorView, TestView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    static Retained<TestCursorView> make(NSRect frame) { return initWithFrame(frame); }
    void resetCursorRects() override;

  protected:
    TestCursorView() = default;
    ~TestCursorView() = default;
};

/// Calls a function for each `hear:`; also an action, delegate messages and a validator that tests need.
class TestObserver : public NSObject {
    PELVOR_CLASS(TestObserver, NSObject);

  public:
    static Retained<TestObserver> doing(std::function<void(NSNotification*)> action);
    void hear(NSNotification* notification) { _action(notification); }

  protected:
    TestObserver() = default;
    ~TestObserver() = default;

  private:
    std::function<void(NSNotification*)> _action;
};

}  // namespace pelvor
