// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRFormView.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSArray.h"
#include "Interface/NSButton.h"
#include "Interface/NSEvent.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSTextField.h"
#include "Runtime/Registry.h"
#include "Text/NSParagraphStyle.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr float kMargin = 16, kGap = 8, kRowHeight = 26, kLeastButtonWidth = 80;

Retained<NSTextField> labelWith(NSString* text) {
    auto label = NSTextField::initWithFrame(NSZeroRect);
    label->setEditable(false);
    label->setSelectable(false);
    label->setBezeled(false);
    label->setDrawsBackground(false);
    label->setStringValue(text);
    label->sizeToFit();
    return label;
}

}  // namespace

WRFormView::~WRFormView() = default;

PELVOR_DEFINE_CLASS(WRFormView, windowsLibrary) {}

Retained<WRFormView> WRFormView::create(id target, float fieldWidth) {
    auto self = cast<WRFormView>(NSView::initWithFrame(NSZeroRect, classObject()));
    self->_target = target;
    self->_fieldWidth = fieldWidth;
    return self;
}

template <class Control>
Control* WRFormView::add(NSString* label, Retained<Control> control, bool isWide) {
    Row row{label ? labelWith(label) : nullptr, control, isWide};
    if (row.label) addSubview(row.label);
    addSubview(control);
    _rows.push_back(std::move(row));
    return control;
}

NSTextField* WRFormView::addField(NSString* label) {
    return add(label, NSTextField::initWithFrame(NSZeroRect));
}

NSPopUpButton* WRFormView::addPopUp(NSString* label, NSArray* titles, SEL action) {
    auto* popUp = add(label, NSPopUpButton::initWithFrame_pullsDown(NSZeroRect, false));
    popUp->addItemsWithTitles(titles);
    popUp->setTarget(_target);
    popUp->setAction(action);
    return popUp;
}

NSButton* WRFormView::addCheckBox(NSString* title, SEL action) {
    auto* box = add(nullptr, cast<NSButton>(NSButton::initWithFrame(NSZeroRect)));
    box->setButtonType(NSSwitchButton);
    box->setTitle(title);
    box->setTarget(_target);
    box->setAction(action);
    box->sizeToFit();
    return box;
}

void WRFormView::addView(NSString* label, Retained<NSView> view) { add(label, std::move(view)); }

NSTextField* WRFormView::addMessage() { return add(nullptr, labelWith(u""_ns), true); }

NSButton* WRFormView::addButton(NSString* title, SEL action) {
    auto button = cast<NSButton>(NSButton::initWithFrame(NSZeroRect));
    button->setTitle(title);
    button->setTarget(_target);
    button->setAction(action);
    button->sizeToFit();
    button->setFrameSize({std::max(NSWidth(button->frame()), kLeastButtonWidth), kRowHeight});
    addSubview(button);
    _buttons.push_back(button);
    return button;
}

void WRFormView::layOut() {
    float labels = 0, fields = _fieldWidth, buttons = -kGap;
    for (const Row& row : _rows) {
        if (row.label) labels = std::max(labels, std::ceil(NSWidth(row.label->frame())) + kGap);
        if (!row.isWide) fields = std::max(fields, std::ceil(NSWidth(row.control->frame())));
    }
    for (const auto& button : _buttons) buttons += NSWidth(button->frame()) + kGap;
    const float width = std::max(labels + fields, buttons) + 2 * kMargin;
    const bool isMirrored =
        NSParagraphStyle::defaultWritingDirectionForLanguage(nullptr) == NSWritingDirectionRightToLeft;
    const auto place = [&](NSView* view, NSRect frame) {
        if (isMirrored) frame.origin.x = width - NSMaxX(frame);
        view->setFrame(frame);
    };
    float y = kMargin;
    for (const Row& row : _rows) {
        const float x = kMargin + (row.isWide ? 0 : labels);
        if (row.label) {
            const NSSize size = row.label->frame().size;
            place(row.label, {{x - kGap - size.width, y + (kRowHeight - size.height) / 2}, size});
        }
        place(row.control, {{x, y}, {width - kMargin - x, kRowHeight}});
        y += kRowHeight + kGap;
    }
    y += kGap;
    float x = width - kMargin;
    for (const auto& button : _buttons) {
        const NSSize size = button->frame().size;
        x -= size.width;
        place(button, {{x, y}, size});
        x -= kGap;
    }
    setFrameSize({width, y + (_buttons.empty() ? 0 : kRowHeight) + kMargin});
}

Retained<WRPalette> WRFormView::panelWithTitle(NSString* title) {
    layOut();
    auto panel = WRPalette::create({{0, 0}, frame().size}, NSTitledWindowMask | NSClosableWindowMask);
    panel->setTitle(title);
    panel->setContentView(this);
    const auto first = std::find_if(_rows.begin(), _rows.end(),
                                    [](const Row& row) { return row.control->acceptsFirstResponder(); });
    if (first != _rows.end()) panel->setInitialFirstResponder(first->control);
    panel->center();
    return panel;
}

bool WRFormView::performKeyEquivalent(NSEvent* event) {
    if (NSView::performKeyEquivalent(event)) return true;
    NSString* key = event ? event->charactersIgnoringModifiers() : nullptr;
    if (!key || key->length() == 0 || key->characterAtIndex(0) != NSEscapeCharacter) return false;
    if (NSWindow* panel = window()) {
        panel->makeFirstResponder(nullptr);  // what was typed is the field's value
        panel->performClose(this);
    }
    return true;
}

}  // namespace pelvor
