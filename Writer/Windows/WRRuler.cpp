// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRRuler.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "Foundation/LocalizedNumbers.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSUserDefaults.h"
#include "Foundation/UserLanguages.h"
#include "Interface/NSClipView.h"
#include "Interface/NSEvent.h"
#include "Interface/NSMenu.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTextView.h"
#include "NSParagraphStyle-PelvorAdditions.h"
#include "NSView-PelvorAdditions.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSGraphicsContext.h"
#include "Text/NSString-Drawing.h"
#include "Writer/LocalizedText.h"
#include "Writer/ProfileChoice.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRRulerGuide.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr float kReach = 5;         // how near the pointer has to be to a mark
constexpr float kOffDistance = 14;  // how far off the ruler a tab stop is dragged to go
constexpr float kMarkSize = 6;
constexpr float kLeastTick = 5, kLeastLabel = 34;  // distances on the screen

NSColor* grey(float white) { return NSColor::colorWithCalibratedWhite_alpha(white, 1); }

struct Unit {
    NSString* name;
    float points;
};

// What is there without the plug-in for units.
constexpr Unit kCentimetre{u"cm"_ns, 28.3464567F};

std::vector<Unit> allUnits() {
    std::vector<Unit> units;
    for (id object : profilesInOrder(PBRegistry::sharedRegistry()->profilesOfType(PBProfileUnitType))) {
        auto* profile = static_cast<PBProfile*>(object);
        auto* name = cast<NSString>(profile->valueForKey(u"abbreviation"_ns));
        auto* points = cast<NSNumber>(profile->valueForKey(u"points"_ns));
        if (name && points && points->floatValue() > 0) units.push_back({name, points->floatValue()});
    }
    if (units.empty()) units.push_back(kCentimetre);
    return units;
}

// By the country of the user's measures, else of the language.
bool measuresInInches() {
    for (const char* name : {"LC_ALL", "LC_MEASUREMENT", "LANG"}) {
        const char* value = std::getenv(name);
        if (!value || !*value) continue;
        const std::string_view locale(value);
        if (const auto country = locale.find('_'); country != std::string_view::npos)
            return locale.substr(country + 1, 2) == "US" || locale.substr(country + 1, 2) == "LR";
    }
    NSArray* languages = userLanguages();
    return languages->count() > 0 &&
           static_cast<NSString*>(languages->objectAtIndex(0))->hasSuffix(u"-US"_ns);
}

void fill(float x, float y, float width, float height) {
    NSGraphicsContext::currentContext()->fillRect({{x, y}, {width, height}});
}

// With the tip at x.
void drawTriangle(float x, float top, bool pointsDown) {
    constexpr float kStep = 0.5F;
    for (float depth = 0; depth < kMarkSize; depth += kStep) {
        const float half = (pointsDown ? kMarkSize - depth : depth + kStep) * 0.75F;
        fill(x - half, top + depth, 2 * half, kStep);
    }
}

// A stem at x whose foot shows where the text goes.
void drawTab(NSTextTabType type, bool isMirrored, float x, float bottom) {
    constexpr float kStem = 1.5F, kFoot = 5;
    fill(x - kStem / 2, bottom - kMarkSize - 1, kStem, kMarkSize + 1);
    const bool goesBack = (type == NSRightTabStopType) != isMirrored;
    const bool isCentred = type == NSCenterTabStopType || type == NSDecimalTabStopType;
    if (isCentred)
        fill(x - kFoot * 0.7F, bottom - kStem, kFoot * 1.4F, kStem);
    else
        fill(goesBack ? x - kFoot : x, bottom - kStem, kFoot, kStem);
    if (type == NSDecimalTabStopType) fill(x + 2.5F, bottom - kMarkSize, 2, 2);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRRuler, windowsLibrary) {
    methods.instance<"placeDidChange:", &WRRuler::placeDidChange>();
    methods.instance<"takeUnitFrom:", &WRRuler::takeUnitFrom>();
    methods.instance<"defaultsDidChange:", &WRRuler::defaultsDidChange>();
    methods.instance<"isFlipped", &WRRuler::isFlipped>();
    methods.instance<"isOpaque", &WRRuler::isOpaque>();
    methods.instance<"acceptsFirstMouse:", &WRRuler::acceptsFirstMouse>();
    methods.instance<"viewWillDraw", &WRRuler::viewWillDraw>();
    methods.instance<"drawRect:", &WRRuler::drawRect>();
    methods.instance<"mouseDown:", &WRRuler::mouseDown>();
    methods.instance<"mouseDragged:", &WRRuler::mouseDragged>();
    methods.instance<"mouseUp:", &WRRuler::mouseUp>();
    methods.instance<"menuForEvent:", &WRRuler::menuForEvent>();
}

Retained<WRRuler> WRRuler::create(WRFormatCommands* commands, NSRect frame) {
    auto self = cast<WRRuler>(NSView::initWithFrame(frame, WRRuler::classObject()));
    self->_commands.set(commands);
    self->chooseUnit();
    self->setToolTip(
        localized(u"_Click to set a tab stop. Drag marks; drag a tab stop off to remove it."_ns));
    auto* centre = NSNotificationCenter::defaultCenter();
    NSView* pages = commands->pageView();
    for (NSString* name : {NSTextViewDidChangeSelectionNotification, NSTextDidChangeNotification,
                           WRPageViewDidFindPagesNotification, NSViewFrameDidChangeNotification})
        centre->addObserver_selector_name_object(self, "placeDidChange:"_sel, name, pages);
    centre->addObserver_selector_name_object(self, "placeDidChange:"_sel, WRFormatsDidChangeNotification,
                                             commands);
    centre->addObserver_selector_name_object(self, "placeDidChange:"_sel, NSViewFrameDidChangeNotification,
                                             pages->superview());
    for (NSString* name : {NSViewBoundsDidChangeNotification, NSViewFrameDidChangeNotification})
        centre->addObserver_selector_name_object(self, "placeDidChange:"_sel, name,
                                                 pages->superview()->superview());
    centre->addObserver_selector_name_object(self, "defaultsDidChange:"_sel,
                                             NSUserDefaultsDidChangeNotification, nullptr);
    return self;
}

WRRuler::~WRRuler() {
    NSNotificationCenter::defaultCenter()->removeObserver(this);
    if (_guide) _guide->removeFromSuperview();
}

// MARK: What is shown

void WRRuler::placeDidChange(id) { setNeedsViewWillDraw(); }

WRRuler::Look WRRuler::currentLook() {
    WRPageView* pages = _commands->pageView();
    const float left = pages->originOfTextContainer(pages->textContainer()).x;
    const float width = pages->pages()->frame().width();
    const bool isRightToLeft = _commands->isRightToLeft();
    const NSPoint edge = convertPoint_fromView({isRightToLeft ? left + width : left, 0}, pages);
    return {edge.x, width, static_cast<float>(zoomFactor(pages)), isRightToLeft};
}

void WRRuler::viewWillDraw() {
    const Look look = currentLook();
    NSParagraphStyle* style = _commands->currentParagraphStyle();
    if (look != _look || style != _style) setNeedsDisplay(true);
    _look = look;
    _style.set(style);
    NSView::viewWillDraw();
}

float WRRuler::xOfPlace(float place) {
    return _look.edge + place * _look.scale * (_look.isRightToLeft ? -1.0F : 1.0F);
}

std::vector<WRRuler::Mark> WRRuler::marks() {
    std::vector<Mark> marks;
    if (!_style) return marks;
    for (id tab : _style->tabStops())
        marks.push_back({Kind::tab, static_cast<NSTextTab*>(tab)->location(),
                         Retained<NSTextTab>::retaining(static_cast<NSTextTab*>(tab))});
    const float tail = _style->tailIndent();
    marks.push_back({Kind::firstLine, _style->firstLineHeadIndent(), nullptr});
    marks.push_back({Kind::head, _style->headIndent(), nullptr});
    marks.push_back({Kind::tail, tail > 0 ? tail : _look.width + tail, nullptr});
    return marks;
}

// The first line's mark is in the upper half, all others in the lower one.
std::optional<WRRuler::Mark> WRRuler::markAt(NSPoint point) {
    const bool isUpper = point.y < kHeight / 2;
    for (Mark& mark : marks())
        if ((mark.kind == Kind::firstLine) == isUpper && std::abs(xOfPlace(mark.place) - point.x) <= kReach)
            return std::move(mark);
    return std::nullopt;
}

// MARK: Units

NSString* WRRuler::wantedUnit() {
    NSString* wanted = NSUserDefaults::standardUserDefaults()->stringForKey(WRRulerUnitPreference);
    return wanted ? wanted : measuresInInches() ? u"in"_ns : kCentimetre.name;
}

void WRRuler::chooseUnit() {
    NSString* wanted = wantedUnit();
    const std::vector<Unit> units = allUnits();
    const auto found = std::find_if(units.begin(), units.end(),
                                    [&](const Unit& unit) { return unit.name->isEqualToString(wanted); });
    const Unit& unit = found == units.end() ? units.front() : *found;
    _unitName.set(unit.name);
    _unit = unit.points;
    setNeedsDisplay(true);
}

void WRRuler::takeUnitFrom(id sender) {
    auto* item = cast<NSMenuItem>(sender);
    auto* name = item ? cast<NSString>(item->representedObject()) : nullptr;
    if (!name) return;
    NSUserDefaults::standardUserDefaults()->setObject_forKey(name, WRRulerUnitPreference);
}

void WRRuler::defaultsDidChange(id) {
    if (!wantedUnit()->isEqual(_unitName)) chooseUnit();
}

void WRRuler::addUnitsToMenu(NSMenu* menu) {
    for (id object : profilesInOrder(PBRegistry::sharedRegistry()->profilesOfType(PBProfileUnitType))) {
        auto* profile = static_cast<PBProfile*>(object);
        menu->addItemWithTitle_action_keyEquivalent(nameOfProfile(profile), SEL(), u""_ns)
            ->setRepresentedObject(profile->valueForKey(u"abbreviation"_ns));
    }
}

NSMenu* WRRuler::menuForEvent(NSEvent*) {
    auto menu = NSMenu::initWithTitle(u""_ns);
    addUnitsToMenu(menu);
    for (const auto& item : menu->items()) {
        item->setAction("takeUnitFrom:"_sel);
        item->setTarget(this);
        item->setState(_unitName->isEqual(item->representedObject()));
    }
    return std::move(menu).autorelease();
}

// In points of the text.
float WRRuler::labelStep() {
    constexpr float kFactors[] = {1, 2, 5, 10, 20, 50, 100, 200, 500};
    for (float factor : kFactors)
        if (factor * _unit * _look.scale >= kLeastLabel) return factor * _unit;
    return 1000 * _unit;
}

float WRRuler::tickStep() {
    const float label = labelStep();
    const bool halves = _unit >= 72;
    constexpr float kHalves[] = {16, 8, 4, 2}, kTenths[] = {10, 5, 4, 2};
    for (float parts : halves ? kHalves : kTenths)
        if (label / parts * _look.scale >= kLeastTick) return label / parts;
    return label;
}

// MARK: Drawing

void WRRuler::drawRect(NSRect) {
    auto* context = NSGraphicsContext::currentContext();
    context->setColor(grey(0.93F));
    context->fillRect(bounds());
    const float one = xOfPlace(0), other = xOfPlace(_look.width);
    context->setColor(NSColor::whiteColor());
    fill(std::min(one, other), 3, std::abs(other - one), kHeight - 7);
    drawScale();
    context->setColor(grey(0.7F));
    fill(0, kHeight - 1, NSWidth(bounds()), 1);
    for (const Mark& mark : marks()) {
        const bool isDragged = _drag && !_drag->isNew && mark.kind == _drag->mark.kind &&
                               (mark.kind != Kind::tab || mark.tab == _drag->mark.tab);
        if (!isDragged) drawMark(mark, mark.place);
    }
    if (_drag && !_drag->isOff) drawMark(_drag->mark, _drag->place);
}

void WRRuler::drawScale() {
    auto* context = NSGraphicsContext::currentContext();
    NSDictionary* attributes = NSDictionary::of(
        {{NSFontAttributeName, NSFont::labelFontOfSize(8)}, {NSForegroundColorAttributeName, grey(0.35F)}});
    const float tick = tickStep(), label = labelStep();
    const auto perLabel = static_cast<int>(std::lround(label / tick));
    const float middle = (kHeight - 1) / 2;
    const float ends[] = {placeAt(0), placeAt(NSWidth(bounds()))};
    const int first = static_cast<int>(std::floor(std::min(ends[0], ends[1]) / tick));
    const int last = static_cast<int>(std::ceil(std::max(ends[0], ends[1]) / tick));
    for (int i = first; i <= last; ++i) {
        const float x = xOfPlace(static_cast<float>(i) * tick);
        if (i % perLabel != 0) {
            const float half = perLabel % 2 == 0 && i % (perLabel / 2) == 0 ? 3 : 1.5F;
            context->setColor(grey(0.6F));
            fill(std::floor(x), middle - half, 1, 2 * half);
        } else if (i != 0) {
            const double value = static_cast<double>(std::abs(static_cast<float>(i) * tick / _unit));
            NSString* text =
                localizedNumber(NSString::stringWithFormat(u"%g"_ns, std::round(value * 100) / 100));
            const NSSize size = sizeWithAttributes(text, attributes);
            drawAtPoint_withAttributes(text, {x - size.width / 2, middle - size.height / 2}, attributes);
        }
    }
}

void WRRuler::drawMark(const Mark& mark, float place) {
    const float x = xOfPlace(place);
    auto* context = NSGraphicsContext::currentContext();
    context->setColor(_commands->canEdit() ? WRRulerGuide::color() : grey(0.6F));
    switch (mark.kind) {
        case Kind::tab:
            return drawTab(mark.tab->tabStopType(), _look.isRightToLeft, x, kHeight - 2);
        case Kind::firstLine:
            return drawTriangle(x, 1, true);
        default:
            return drawTriangle(x, kHeight - 2 - kMarkSize, false);
    }
}

// MARK: Dragging

void WRRuler::mouseDown(NSEvent* event) {
    if (!event || !_commands->canEdit()) return;
    viewWillDraw();  // the marks may be those of a paragraph before
    const NSPoint point = convertPoint_fromView(event->locationInWindow(), nullptr);
    if (auto mark = markAt(point)) {
        if (mark->kind == Kind::tab && event->clickCount() == 2) return changeKind(mark->tab);
        const float place = mark->place;
        _drag = Drag{std::move(*mark), place, false, false, false};
        return;
    }
    const float place = placeAt(point.x);
    if (place < 0 || place > _look.width || event->clickCount() > 1) return;
    _drag = Drag{{Kind::tab, place, NSTextTab::initWithType_location(NSLeftTabStopType, place)},
                 place,
                 true,
                 false,
                 true};
    follow(point, !(event->modifierFlags() & NSAlternateKeyMask));
}

void WRRuler::follow(NSPoint point, bool snaps) {
    const float tick = tickStep();
    const float place = placeAt(point.x);
    _drag->hasMoved = true;
    _drag->place = std::clamp(snaps ? std::round(place / tick) * tick : place, 0.0F, _look.width);
    _drag->isOff =
        _drag->mark.kind == Kind::tab && (point.y < -kOffDistance || point.y > kHeight + kOffDistance);
    setNeedsDisplay(true);
    showGuide();
}

// A line over the pages at the place of the dragged mark, as long as there is one.
void WRRuler::showGuide() {
    NSScrollView* pages = _commands->pageView()->enclosingScrollView();
    const bool isShown = _drag && _drag->hasMoved && !_drag->isOff && pages && superview();
    if (!isShown) {
        if (_guide) _guide->removeFromSuperview();
        _guide = nullptr;
        return;
    }
    NSView* content = superview();
    const NSRect room = content->convertRect_fromView(pages->contentView()->bounds(), pages->contentView());
    const float x = content->convertPoint_fromView({xOfPlace(_drag->place), 0}, this).x;
    if (!_guide) {
        _guide = WRRulerGuide::create();
        content->addSubview(_guide);
    }
    _guide->setHidden(x < NSMinX(room) || x >= NSMaxX(room));
    _guide->setFrame({{std::floor(x), NSMinY(room)}, {1, NSHeight(room)}});
}

void WRRuler::mouseDragged(NSEvent* event) {
    if (!event || !_drag) return;
    const NSPoint point = convertPoint_fromView(event->locationInWindow(), nullptr);
    // A press that shakes a little moves nothing.
    const bool isNear =
        std::abs(point.x - xOfPlace(_drag->mark.place)) < 2 && point.y >= 0 && point.y < kHeight;
    if (_drag->hasMoved || !isNear) follow(point, !(event->modifierFlags() & NSAlternateKeyMask));
}

void WRRuler::mouseUp(NSEvent*) {
    if (!_drag) return;
    const auto alive = Retained<WRRuler>::retaining(this);
    const Drag drag = std::move(*_drag);
    _drag.reset();
    setNeedsDisplay(true);
    showGuide();
    if (drag.hasMoved && !(drag.isNew && drag.isOff)) apply(drag);
}

void WRRuler::apply(const Drag& drag) {
    const float place = drag.place;
    const float width = _look.width;
    switch (drag.mark.kind) {
        case Kind::firstLine:
            return _commands->changeParagraphs(nullptr, localized(u"_Indent"_ns),
                                               [=](auto* style) { style->setFirstLineHeadIndent(place); });
        case Kind::head:
            return _commands->changeParagraphs(nullptr, localized(u"_Indent"_ns),
                                               [=](auto* style) { style->setHeadIndent(place); });
        case Kind::tail:
            return _commands->changeParagraphs(nullptr, localized(u"_Indent"_ns), [=](auto* style) {
                style->setTailIndent(std::min(place - width, 0.0F));
            });
        case Kind::tab:
            return _commands->changeParagraphs(nullptr, localized(u"_Tab Stop"_ns), [&](auto* style) {
                style->removeTabStop(drag.mark.tab);
                if (!drag.isOff) style->addTabStop(textTabBySettingLocation(drag.mark.tab, place));
            });
    }
}

// Left, centred, right, at the decimal mark, and from the front again.
void WRRuler::changeKind(NSTextTab* tab) {
    static constexpr NSTextTabType kNext[] = {NSCenterTabStopType, NSDecimalTabStopType, NSRightTabStopType,
                                              NSLeftTabStopType};
    const auto old = Retained<NSTextTab>::retaining(tab);
    const auto changed = NSTextTab::initWithType_location(kNext[tab->tabStopType()], tab->location());
    _commands->changeParagraphs(nullptr, localized(u"_Tab Stop"_ns), [&](auto* style) {
        style->removeTabStop(old);
        style->addTabStop(changed);
    });
}

}  // namespace pelvor
