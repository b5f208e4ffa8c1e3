// SPDX-License-Identifier: Apache-2.0
#include "TestViews.h"

#include "Interface/NSCursor.h"

namespace pelvor {
namespace {

constexpr Class* kClasses[] = {&TestView::classRecord, &TestCursorView::classRecord,
                               &TestObserver::classRecord};

}  // namespace

constinit Library testViewsLibrary{"TestViews", {}, kClasses, {}};

PELVOR_DEFINE_CLASS(TestView, testViewsLibrary) {
    methods.instance<"setMarkedText:selectedRange:", &TestView::setMarkedText_selectedRange>();
}

PELVOR_DEFINE_CLASS(TestCursorView, testViewsLibrary) {}

void TestCursorView::resetCursorRects() { addCursorRect_cursor(bounds(), NSCursor::crosshairCursor()); }

PELVOR_DEFINE_CLASS(TestObserver, testViewsLibrary) { methods.instance<"hear:", &TestObserver::hear>(); }

Retained<TestObserver> TestObserver::doing(std::function<void(NSNotification*)> action) {
    auto observer = pelvor::make<TestObserver>();
    observer->_action = std::move(action);
    return observer;
}

Retained<TestView> TestView::make(NSRect frame, NSColor* color, bool isFlipped) {
    auto view = TestView::initWithFrame(frame);
    view->_color.set(color);
    view->flipped = isFlipped;
    return view;
}

void TestView::drawRect(NSRect dirty) {
    drawn.push_back(dirty);
    if (_color) {
        _color->set();
        NSRectFill(dirty);
    }
    if (whenDrawn) whenDrawn();
}

void TestView::note(const char* what, NSEvent* event) {
    const NSPoint place = convertPoint_fromView(event->locationInWindow(), nullptr);
    std::ostringstream text;
    text << what << " " << event->clickCount() << " " << place;
    log.push_back(text.str());
}

void TestView::mouseDown(NSEvent* event) {
    note("down", event);
    if (whenPressed) whenPressed();
}

void TestView::insertText(id text) { log.push_back("text " + cast<NSString>(text)->toUTF8()); }

void TestView::setMarkedText_selectedRange(id text, NSRange selection) {
    std::ostringstream line;
    line << "marked " << cast<NSAttributedString>(text)->string() << " " << selection;
    log.push_back(line.str());
}

}  // namespace pelvor
