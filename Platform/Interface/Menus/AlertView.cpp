// SPDX-License-Identifier: Apache-2.0
#include "Interface/Menus/AlertView.h"

#include <algorithm>
#include <cmath>

#include "Foundation/LibraryTexts.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSProcessInfo.h"
#include "Interface/Drawing/Direction.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSAlert.h"
#include "Interface/NSButton.h"
#include "Interface/NSEvent.h"
#include "Interface/NSImage.h"
#include "Interface/NSPanel.h"
#include "Text/NSString-Drawing.h"

namespace pelvor {
namespace {

constexpr float kMargin = 20, kGap = 8, kTextWidth = 340, kIconSize = 48, kLeastButtonWidth = 80;

NSDictionary* attributes(NSFont* font) {
    return NSDictionary::of(
        {{NSFontAttributeName, font}, {NSForegroundColorAttributeName, themeColor(ThemeColor::text)}});
}

NSDictionary* messageAttributes() { return attributes(NSFont::boldSystemFontOfSize(0)); }
NSDictionary* informativeAttributes() { return attributes(NSFont::systemFontOfSize(0)); }

float heightOf(NSString* text, float width, NSDictionary* itsAttributes) {
    if (text->length() == 0) return 0;
    constexpr auto kOptions = NSStringDrawingUsesLineFragmentOrigin | NSStringDrawingUsesFontLeading;
    return std::ceil(
        NSHeight(boundingRectWithSize_options_attributes(text, {width, 1e4F}, kOptions, itsAttributes)));
}

// The title tells who asks; what is asked stands below it.
NSString* programName() {
    for (NSString* key : {u"CFBundleDisplayName"_ns, u"CFBundleName"_ns})
        if (auto* name = cast<NSString>(NSBundle::mainBundle()->objectForInfoDictionaryKey(key))) return name;
    return NSProcessInfo::processInfo()->processName();
}

}  // namespace

PELVOR_DEFINE_CLASS(AlertView, interfaceLibrary) {}

Retained<NSWindow> AlertView::windowFor(NSAlert* alert) {
    auto view = cast<AlertView>(NSView::initWithFrame(NSZeroRect, classObject()));
    view->_alert = WeakHandle(alert);
    view->layOut(alert);
    auto window = NSPanel::initWithContentRect_styleMask_backing_defer(
        {{}, view->frame().size}, NSTitledWindowMask, NSBackingStoreBuffered, true);
    window->setLevel(NSModalPanelWindowLevel);
    window->setTitle(programName());
    window->setContentView(view);
    window->setInitialFirstResponder(cast<NSView>(alert->buttons()->objectAtIndex(0)));
    window->center();
    return window;
}

Retained<NSAlert> AlertView::alert() {
    const auto object = _alert.object();
    return Retained<NSAlert>::retaining(static_cast<NSAlert*>(object.get()));
}

void AlertView::layOut(NSAlert* alert) {
    float buttonsWidth = 0;
    for (id each : alert->buttons()) {
        auto* button = static_cast<NSButton*>(each);
        button->sizeToFit();
        NSSize size = button->frame().size;
        size.width = std::max(size.width, kLeastButtonWidth);
        button->setFrameSize(size);
        buttonsWidth += size.width + kGap;
    }
    NSImage* icon = alert->icon();
    const float textX = kMargin + (icon ? kIconSize + kMargin : 0);
    const float textWidth = std::max(kTextWidth, buttonsWidth - kGap + kMargin - textX);
    const float messageHeight = heightOf(alert->messageText(), textWidth, messageAttributes()),
                informativeHeight = heightOf(alert->informativeText(), textWidth, informativeAttributes());
    _messageRect = {{textX, kMargin}, {textWidth, messageHeight}};
    _informativeRect = {{textX, NSMaxY(_messageRect) + (messageHeight > 0 ? kGap : 0)},
                        {textWidth, informativeHeight}};
    _iconRect = {{kMargin, kMargin}, {kIconSize, kIconSize}};
    const float width = textX + textWidth + kMargin;
    const float buttonsY = std::max(NSMaxY(_informativeRect), icon ? NSMaxY(_iconRect) : 0) + kMargin;
    setFrameSize({width, buttonsY + metrics::kButtonHeight + kMargin});
    const bool isRightToLeft = interfaceRunsFromRightToLeft();
    if (isRightToLeft)
        for (NSRect* rect : {&_messageRect, &_informativeRect, &_iconRect})
            rect->origin.x = width - NSMaxX(*rect);
    float x = width - kMargin;
    for (id each : alert->buttons()) {
        auto* button = static_cast<NSButton*>(each);
        const float itsWidth = NSWidth(button->frame());
        x -= itsWidth;
        button->setFrameOrigin({isRightToLeft ? width - x - itsWidth : x, buttonsY});
        x -= kGap;
        addSubview(button);
    }
}

void AlertView::drawRect(NSRect) {
    const auto alert = this->alert();
    if (!alert) return;
    drawInRect_withAttributes(alert->messageText(), _messageRect, messageAttributes());
    drawInRect_withAttributes(alert->informativeText(), _informativeRect, informativeAttributes());
    if (NSImage* icon = alert->icon())
        icon->drawInRect_fromRect_operation_fraction(
            fittedImage(icon->size(), _iconRect, NSScaleProportionally), NSZeroRect, NSCompositeSourceOver,
            1);
}

bool AlertView::performKeyEquivalent(NSEvent* event) {
    const auto alert = this->alert();
    if (!event || !alert) return false;
    if (NSView::performKeyEquivalent(event)) return true;
    NSArray* buttons = alert->buttons();
    NSString* key = event->charactersIgnoringModifiers();
    if (key->length() == 0 || key->characterAtIndex(0) != NSEscapeCharacter) return false;
    auto* first = static_cast<NSButton*>(buttons->objectAtIndex(0));
    if (buttons->count() != 1 && !first->title()->isEqual(localizedLibraryText(u"_Cancel"_ns))) return false;
    first->performClick(this);
    return true;
}

}  // namespace pelvor
