// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRNoticeBar.h"

#include <algorithm>

#include "Foundation/NSMutableArray.h"
#include "Interface/NSButton.h"
#include "Interface/NSTextField.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"
#include "Writer/LocalizedText.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr float kGap = 8, kButtonHeight = 26, kTextHeight = 18;

// The height of the text when it is broken into lines of the width.
float heightFor(NSTextField* label, float width) {
    return std::max(label->cell()->cellSizeForBounds({{0, 0}, {width, 10'000}}).height, kTextHeight);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRNoticeBar, windowsLibrary) {
    methods.instance<"choose:", &WRNoticeBar::choose>();
    methods.instance<"setFrameSize:", &WRNoticeBar::setFrameSize>();
    methods.instance<"isFlipped", &WRNoticeBar::isFlipped>();
    methods.instance<"isOpaque", &WRNoticeBar::isOpaque>();
    methods.instance<"drawRect:", &WRNoticeBar::drawRect>();
}

Retained<WRNoticeBar> WRNoticeBar::create(NSString* text, std::vector<NoticeChoice> choices, float width) {
    auto self = cast<WRNoticeBar>(NSView::initWithFrame({{0, 0}, {width, 0}}, WRNoticeBar::classObject()));
    self->_label = NSTextField::initWithFrame({});
    self->_label->setEditable(false);
    self->_label->setSelectable(false);  // so that a click leaves the keys to the page
    self->_label->setBezeled(false);
    self->_label->setDrawsBackground(false);
    self->_label->cell()->setWraps(true);
    self->_label->setStringValue(text);
    self->addSubview(self->_label);
    if (choices.size() < 2) choices.push_back({localized(u"_Close"_ns), nullptr});
    for (NoticeChoice& choice : choices) {
        auto button = NSButton::initWithFrame({});
        button->setTitle(choice.title);
        button->setTarget(self);
        button->setAction("choose:"_sel);
        self->addSubview(button);
        self->_buttons.push_back(std::move(button));
        self->_actions.push_back(std::move(choice.action));
    }
    self->place();
    return self;
}

WRNoticeBar::~WRNoticeBar() = default;

NSString* WRNoticeBar::text() { return _label->stringValue(); }

void WRNoticeBar::setText(NSString* text) {
    if (text->isEqualToString(_label->stringValue())) return;
    _label->setStringValue(text);
    place();
}

NSArray* WRNoticeBar::buttons() {
    auto* buttons = NSMutableArray::array();
    for (const auto& button : _buttons) buttons->addObject(button);
    return buttons;
}

void WRNoticeBar::choose(NSButton* button) {
    const auto alive = Retained<WRNoticeBar>::retaining(this);
    const auto found = std::find(_buttons.begin(), _buttons.end(), button);
    if (found == _buttons.end()) return;
    const auto action = _actions[static_cast<std::size_t>(found - _buttons.begin())];
    if (_end) std::exchange(_end, nullptr)();
    if (action) action();
}

void WRNoticeBar::setFrameSize(NSSize size) {
    const bool isWidthNew = size.width != frame().size.width;
    NSView::setFrameSize(size);
    if (isWidthNew && _label) place();
}

// The buttons stand at the right edge, the text takes what they leave. The upper edge stays where it is.
void WRNoticeBar::place() {
    float right = frame().size.width - kGap;
    for (auto button = _buttons.rbegin(); button != _buttons.rend(); ++button) {
        const float width = (*button)->cell()->cellSize().width;
        (*button)->setFrame({{right - width, kGap / 2}, {width, kButtonHeight}});
        right -= width + kGap;
    }
    const float width = std::max(right - kGap, 40.0F);
    const float text = heightFor(_label, width);
    const float height = std::max(text + kGap, kButtonHeight + kGap);
    _label->setFrame({{kGap, (height - text) / 2}, {width, text}});
    const float upper = NSMaxY(frame());
    NSView::setFrameSize({frame().size.width, height});
    setFrameOrigin({frame().origin.x, upper - height});
    setNeedsDisplay(true);
}

void WRNoticeBar::drawRect(NSRect) {
    auto* context = NSGraphicsContext::currentContext();
    context->setColor(NSColor::colorWithCalibratedRed_green_blue_alpha(1, 0.96F, 0.8F, 1));
    context->fillRect(bounds());
    context->setColor(NSColor::colorWithCalibratedWhite_alpha(0.75F, 1));
    context->fillRect({{0, NSMaxY(bounds()) - 1}, {NSWidth(bounds()), 1}});
}

}  // namespace pelvor
