// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRColorPanel.h"

#include <memory>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotification.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSButton.h"
#include "Interface/NSImage.h"
#include "Interface/NSTextField.h"
#include "Interface/NSTextView.h"
#include "Text/NSColor.h"
#include "Text/TextAttributes.h"
#include "Writer/LocalizedText.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/RaisedFlag.h"
#include "Writer/Windows/WRColorSlider.h"
#include "Writer/Windows/WRFormView.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr NSUInteger kMostRecent = 8;
constexpr NSSize kRecentSize{30, 26};

NSColor* colorIn(NSDictionary* attributes) {
    auto* color = cast<NSColor>(attributes->objectForKey(NSForegroundColorAttributeName));
    return color ? color : NSColor::blackColor();
}

bool isSame(NSColor* color, ColorParts parts) {
    return color && hexOfColor(color)->isEqualToString(hexOfColor(parts.color()));
}

NSArray* recentDigits() {
    NSArray* digits = NSUserDefaults::standardUserDefaults()->arrayForKey(WRRecentColorsPreference);
    return digits ? digits : NSArray::array();
}

}  // namespace

PELVOR_DEFINE_CLASS(WRColorPanel, windowsLibrary) {
    methods.creator<"init", &WRColorPanel::init>();
    methods.instance<"window", &WRColorPanel::window>();
    methods.instance<"takeDigitsFrom:", &WRColorPanel::takeDigitsFrom>();
    methods.instance<"controlTextDidChange:", &WRColorPanel::controlTextDidChange>();
    methods.instance<"takeRecentColorFrom:", &WRColorPanel::takeRecentColorFrom>();
    methods.instance<"formatsDidChange:", &WRColorPanel::formatsDidChange>();
    methods.instance<"windowDidBecomeKey:", &WRColorPanel::windowDidBecomeKey>();
    methods.instance<"windowDidResignKey:", &WRColorPanel::windowDidResignKey>();
    methods.instance<"windowWillClose:", &WRColorPanel::windowWillClose>();
}

Retained<WRColorPanel> WRColorPanel::init(Class* cls) {
    auto self = make<WRColorPanel>(cls);
    self->makeWindow();
    WRFormatCommands::addObserverOfCurrent(self);
    return self;
}

WRColorPanel::~WRColorPanel() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRColorPanel::makeWindow() {
    auto form = WRFormView::create(this, kMostRecent * kRecentSize.width);
    _digits.set(form->addField(localized(u"_Colour:"_ns)));
    _digits->setDelegate(this);
    _digits->setTarget(this);
    _digits->setAction("takeDigitsFrom:"_sel);
    const struct {
        NSString* label;
        WRColorSlider::Part part;
    } kSliders[] = {{u"_Hue:"_ns, &ColorParts::hue},
                    {u"_Saturation:"_ns, &ColorParts::saturation},
                    {u"_Brightness:"_ns, &ColorParts::brightness}};
    for (const auto& [label, part] : kSliders) {
        const auto panel = std::make_shared<WeakHandle>(this);
        _sliders.push_back(WRColorSlider::create(
            part,
            [panel](ColorParts parts) {
                if (auto found = panel->object()) static_cast<WRColorPanel*>(found.get())->apply(parts);
            },
            [panel] {
                if (auto found = panel->object()) static_cast<WRColorPanel*>(found.get())->showUsedColor();
            }));
        form->addView(localized(label), _sliders.back());
    }
    auto row = NSView::initWithFrame(NSZeroRect);
    for (NSUInteger i = 0; i < kMostRecent; ++i) {
        auto button = cast<NSButton>(
            NSButton::initWithFrame({{static_cast<float>(i) * kRecentSize.width, 0}, kRecentSize}));
        button->setTitle(u""_ns);
        button->setTag(static_cast<NSInteger>(i));
        button->setTarget(this);
        button->setAction("takeRecentColorFrom:"_sel);
        row->addSubview(button);
        _recent.push_back(button);
    }
    form->addView(localized(u"_Used last:"_ns), row);
    _message.set(form->addMessage());
    _window = form->panelWithTitle(localized(u"_Colour"_ns));
    _window->setDelegate(this);
    showRecentColors();
}

void WRColorPanel::windowDidBecomeKey(id) {
    formatsDidChange(nullptr);
    if (cast<NSText>(static_cast<id>(_window->firstResponder()))) _digits->selectText(nullptr);
}

void WRColorPanel::windowDidResignKey(id) { showUsedColor(); }

void WRColorPanel::windowWillClose(id) { endStep(); }

// MARK: The colour

void WRColorPanel::formatsDidChange(id notification) {
    auto* note = cast<NSNotification>(notification);
    auto* view = note ? cast<NSTextView>(note->object()) : nullptr;
    if (_isApplying || (view && view->isFieldEditor())) return;
    endStep();
    WRFormatCommands* commands = _window->isVisible() ? WRFormatCommands::current() : nullptr;
    if (!commands) return;
    NSColor* color = colorIn(commands->currentAttributes());
    // A grey has no hue, but the user may go on with the one from before.
    if (!isSame(color, _parts)) _parts = ColorParts::of(color);
    show(_parts);
}

void WRColorPanel::show(ColorParts parts) {
    _parts = parts;
    if (!isSame(colorOfHex(_digits->stringValue()), parts))  // else it may be written in another way
        _digits->setStringValue(hexOfColor(parts.color()));
    _message->setStringValue(u""_ns);
    for (const auto& slider : _sliders) slider->setColorParts(parts);
}

void WRColorPanel::apply(ColorParts parts) {
    const auto alive = Retained<WRColorPanel>::retaining(this);
    show(parts);
    WRFormatCommands* commands = WRFormatCommands::current();
    if (!commands || !commands->canEdit())
        return _message->setStringValue(
            localized(commands ? u"_This text cannot be changed."_ns : u"_No document is open."_ns));
    const RaisedFlag applying(_isApplying);
    const bool continuesStep = _changed && _changed->object().get() == commands;
    if (!_changed) _recentBeforeStep.set(recentDigits());
    _changed.emplace(commands);
    commands->setTextColor(parts.color(), continuesStep);
}

void WRColorPanel::takeDigitsFrom(id) {
    NSColor* color = colorOfHex(_digits->stringValue());
    if (color && !isSame(color, _parts)) apply(ColorParts::of(color));
    _digits->setStringValue(hexOfColor(_parts.color()));
    showUsedColor();
    if (!color) _message->setStringValue(localized(u"_A colour is written as in #1E50B4."_ns));
}

// Six digits are a colour, three may become one.
void WRColorPanel::controlTextDidChange(id) {
    NSColor* color = _digits->stringValue()->length() >= 6 ? colorOfHex(_digits->stringValue()) : nullptr;
    if (color && !isSame(color, _parts)) apply(ColorParts::of(color));
}

// MARK: Colours that were used last

// The step has one colour among those that were used last: the one that it has come to.
void WRColorPanel::showUsedColor() {
    if (!_changed) return;
    NSString* digits = hexOfColor(_parts.color());
    auto* recent = NSMutableArray::arrayWithArray(_recentBeforeStep);
    recent->removeObject(digits);
    recent->insertObject_atIndex(digits, 0);
    while (recent->count() > kMostRecent) recent->removeLastObject();
    if (recent->isEqual(recentDigits())) return;
    NSUserDefaults::standardUserDefaults()->setObject_forKey(recent, WRRecentColorsPreference);
    showRecentColors();
}

// What is done from now on is another step to undo.
void WRColorPanel::endStep() {
    showUsedColor();
    _changed.reset();
}

void WRColorPanel::showRecentColors() {
    NSArray* digits = recentDigits();
    for (NSUInteger i = 0; i < kMostRecent; ++i) {
        auto* text = i < digits->count() ? cast<NSString>(digits->objectAtIndex(i)) : nullptr;
        NSColor* color = text ? colorOfHex(text) : nullptr;
        _recent[i]->setHidden(!color);
        if (!color) continue;
        _recent[i]->setImage(swatchOfColor(color).get());
        _recent[i]->setToolTip(text);
    }
}

void WRColorPanel::takeRecentColorFrom(id sender) {
    auto* button = cast<NSButton>(sender);
    NSArray* digits = recentDigits();
    const auto place = button ? static_cast<NSUInteger>(button->tag()) : digits->count();
    auto* text = place < digits->count() ? cast<NSString>(digits->objectAtIndex(place)) : nullptr;
    if (NSColor* color = text ? colorOfHex(text) : nullptr) apply(ColorParts::of(color));
}

}  // namespace pelvor
