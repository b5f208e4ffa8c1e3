// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSView.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSEvent.h"
#include "Interface/NSMenu.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/ViewExtras.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSView, interfaceLibrary) {
    methods.creator<"initWithFrame:", &NSView::initWithFrame>();
    methods.instance<"superview", &NSView::superview>();
    methods.instance<"window", &NSView::window>();
    methods.instance<"setSubviews:", &NSView::setSubviews>();
    methods.instance<"subviews", &NSView::subviews>();
    methods.instance<"isDescendantOf:", &NSView::isDescendantOf>();
    methods.instance<"ancestorSharedWithView:", &NSView::ancestorSharedWithView>();
    methods.instance<"enclosingScrollView", &NSView::enclosingScrollView>();
    methods.instance<"opaqueAncestor", &NSView::opaqueAncestor>();
    methods.instance<"viewWithTag:", &NSView::viewWithTag>();
    methods.instance<"tag", &NSView::tag>();
    methods.instance<"addSubview:", &NSView::addSubview>();
    methods.instance<"addSubview:positioned:relativeTo:", &NSView::addSubview_positioned_relativeTo>();
    methods.instance<"replaceSubview:with:", &NSView::replaceSubview_with>();
    methods.instance<"removeFromSuperview", &NSView::removeFromSuperview>();
    methods.instance<"removeFromSuperviewWithoutNeedingDisplay",
                     &NSView::removeFromSuperviewWithoutNeedingDisplay>();
    methods.instance<"sortSubviewsUsingFunction:context:", &NSView::sortSubviewsUsingFunction_context>();
    methods.instance<"viewWillMoveToSuperview:", &NSView::viewWillMoveToSuperview>();
    methods.instance<"viewDidMoveToSuperview", &NSView::viewDidMoveToSuperview>();
    methods.instance<"viewWillMoveToWindow:", &NSView::viewWillMoveToWindow>();
    methods.instance<"viewDidMoveToWindow", &NSView::viewDidMoveToWindow>();
    methods.instance<"didAddSubview:", &NSView::didAddSubview>();
    methods.instance<"willRemoveSubview:", &NSView::willRemoveSubview>();
    methods.instance<"frame", &NSView::frame>();
    methods.instance<"setFrame:", &NSView::setFrame>();
    methods.instance<"setFrameOrigin:", &NSView::setFrameOrigin>();
    methods.instance<"setFrameSize:", &NSView::setFrameSize>();
    methods.instance<"bounds", &NSView::bounds>();
    methods.instance<"setBounds:", &NSView::setBounds>();
    methods.instance<"setBoundsOrigin:", &NSView::setBoundsOrigin>();
    methods.instance<"setBoundsSize:", &NSView::setBoundsSize>();
    methods.instance<"scaleUnitSquareToSize:", &NSView::scaleUnitSquareToSize>();
    methods.instance<"translateOriginToPoint:", &NSView::translateOriginToPoint>();
    methods.instance<"isFlipped", &NSView::isFlipped>();
    methods.instance<"postsFrameChangedNotifications", &NSView::postsFrameChangedNotifications>();
    methods.instance<"setPostsFrameChangedNotifications:", &NSView::setPostsFrameChangedNotifications>();
    methods.instance<"postsBoundsChangedNotifications", &NSView::postsBoundsChangedNotifications>();
    methods.instance<"setPostsBoundsChangedNotifications:", &NSView::setPostsBoundsChangedNotifications>();
    methods.instance<"autoresizesSubviews", &NSView::autoresizesSubviews>();
    methods.instance<"setAutoresizesSubviews:", &NSView::setAutoresizesSubviews>();
    methods.instance<"autoresizingMask", &NSView::autoresizingMask>();
    methods.instance<"setAutoresizingMask:", &NSView::setAutoresizingMask>();
    methods.instance<"resizeSubviewsWithOldSize:", &NSView::resizeSubviewsWithOldSize>();
    methods.instance<"resizeWithOldSuperviewSize:", &NSView::resizeWithOldSuperviewSize>();
    methods.instance<"convertPoint:fromView:", &NSView::convertPoint_fromView>();
    methods.instance<"convertPoint:toView:", &NSView::convertPoint_toView>();
    methods.instance<"convertSize:fromView:", &NSView::convertSize_fromView>();
    methods.instance<"convertSize:toView:", &NSView::convertSize_toView>();
    methods.instance<"convertRect:fromView:", &NSView::convertRect_fromView>();
    methods.instance<"convertRect:toView:", &NSView::convertRect_toView>();
    methods.instance<"centerScanRect:", &NSView::centerScanRect>();
    methods.instance<"visibleRect", &NSView::visibleRect>();
    methods.instance<"isHidden", &NSView::isHidden>();
    methods.instance<"setHidden:", &NSView::setHidden>();
    methods.instance<"isHiddenOrHasHiddenAncestor", &NSView::isHiddenOrHasHiddenAncestor>();
    methods.instance<"isOpaque", &NSView::isOpaque>();
    methods.instance<"drawRect:", &NSView::drawRect>();
    methods.instance<"viewWillDraw", &NSView::viewWillDraw>();
    methods.instance<"setNeedsViewWillDraw", &NSView::setNeedsViewWillDraw>();
    methods.instance<"setNeedsDisplay:", &NSView::setNeedsDisplay>();
    methods.instance<"setNeedsDisplayInRect:", &NSView::setNeedsDisplayInRect>();
    methods.instance<"needsDisplay", &NSView::needsDisplay>();
    methods.instance<"needsToDrawRect:", &NSView::needsToDrawRect>();
    methods.instance<"display", &NSView::display>();
    methods.instance<"displayRect:", &NSView::displayRect>();
    methods.instance<"displayIfNeeded", &NSView::displayIfNeeded>();
    methods.instance<"lockFocus", &NSView::lockFocus>();
    methods.instance<"lockFocusIfCanDraw", &NSView::lockFocusIfCanDraw>();
    methods.instance<"unlockFocus", &NSView::unlockFocus>();
    methods.classLevel<"focusView", &NSView::focusView>();
    methods.instance<"canDraw", &NSView::canDraw>();
    methods.instance<"scrollPoint:", &NSView::scrollPoint>();
    methods.instance<"scrollRectToVisible:", &NSView::scrollRectToVisible>();
    methods.instance<"scrollRect:by:", &NSView::scrollRect_by>();
    methods.instance<"autoscroll:", &NSView::autoscroll>();
    methods.instance<"adjustScroll:", &NSView::adjustScroll>();
    methods.instance<"hitTest:", &NSView::hitTest>();
    methods.instance<"mouse:inRect:", &NSView::mouse_inRect>();
    methods.instance<"acceptsFirstMouse:", &NSView::acceptsFirstMouse>();
    methods.instance<"resetCursorRects", &NSView::resetCursorRects>();
    methods.instance<"addCursorRect:cursor:", &NSView::addCursorRect_cursor>();
    methods.instance<"removeCursorRect:cursor:", &NSView::removeCursorRect_cursor>();
    methods.instance<"discardCursorRects", &NSView::discardCursorRects>();
    methods.instance<"addTrackingRect:owner:userData:assumeInside:",
                     &NSView::addTrackingRect_owner_userData_assumeInside>();
    methods.instance<"removeTrackingRect:", &NSView::removeTrackingRect>();
    methods.instance<"registerForDraggedTypes:", &NSView::registerForDraggedTypes>();
    methods.instance<"unregisterDraggedTypes", &NSView::unregisterDraggedTypes>();
    methods.instance<"registeredDraggedTypes", &NSView::registeredDraggedTypes>();
    methods.instance<"nextKeyView", &NSView::nextKeyView>();
    methods.instance<"previousKeyView", &NSView::previousKeyView>();
    methods.instance<"setNextKeyView:", &NSView::setNextKeyView>();
    methods.instance<"nextValidKeyView", &NSView::nextValidKeyView>();
    methods.instance<"previousValidKeyView", &NSView::previousValidKeyView>();
    methods.instance<"canBecomeKeyView", &NSView::canBecomeKeyView>();
    methods.instance<"menu", &NSView::menu>();
    methods.instance<"setMenu:", &NSView::setMenu>();
    methods.instance<"contextMenuPlace", &NSView::contextMenuPlace>();
    methods.instance<"menuForEvent:", &NSView::menuForEvent>();
    methods.instance<"toolTip", &NSView::toolTip>();
    methods.instance<"setToolTip:", &NSView::setToolTip>();
}

namespace {

float finite(float value) { return std::isfinite(value) ? value : 0; }
NSPoint finite(NSPoint point) { return {finite(point.x), finite(point.y)}; }
NSSize finite(NSSize size) {
    return {std::max(finite(size.width), 0.0F), std::max(finite(size.height), 0.0F)};
}

}  // namespace

NSView::NSView()
    : _isHidden(false),
      _autoresizesSubviews(true),
      _postsFrameChanges(true),
      _postsBoundsChanges(true),
      _delaysFrameNotice(false) {}

NSView::~NSView() {
    if (_extras) {
        if (NSView* next = _extras->nextKeyView) next->extras().previousKeyView = nullptr;
        if (NSView* previous = _extras->previousKeyView) previous->extras().nextKeyView = nullptr;
    }
    for (const auto& subview : _subviews) {
        subview->_superview = nullptr;
        subview->NSResponder::setNextResponder(nullptr);
    }
}

Retained<NSView> NSView::initWithFrame(NSRect frame, Class* cls) {
    auto view = make<NSView>(cls);
    view->_frame = {finite(frame.origin), finite(frame.size)};
    return view;
}

NSView::Extras& NSView::extras() {
    if (!_extras) _extras = std::make_unique<Extras>();
    return *_extras;
}

NSString* NSView::description() {
    return NSString::stringWithFormat(u"<%s %p: frame %@>"_ns, isa()->publicName(), this,
                                      NSStringFromRect(_frame));
}

// MARK: The tree

NSArray* NSView::subviews() {
    NSMutableArray* list = NSMutableArray::array();
    for (const auto& subview : _subviews) list->addObject(subview);
    return list;
}

bool NSView::isDescendantOf(NSView* view) {
    for (NSView* level = this; level; level = level->_superview)
        if (level == view) return true;
    return false;
}

NSView* NSView::ancestorSharedWithView(NSView* view) {
    for (NSView* level = view; level; level = level->_superview)
        if (isDescendantOf(level)) return level;
    return nullptr;
}

NSScrollView* NSView::enclosingScrollView() {
    for (NSView* around = _superview; around; around = around->_superview)
        if (auto* scrollView = cast<NSScrollView>(around)) return scrollView;
    return nullptr;
}

NSView* NSView::opaqueAncestor() {
    NSView* level = this;
    while (!level->isOpaque() && level->_superview) level = level->_superview;
    return level;
}

NSView* NSView::viewWithTag(NSInteger tag) {
    if (this->tag() == tag) return this;
    for (const auto& subview : _subviews)
        if (NSView* found = subview->viewWithTag(tag)) return found;
    return nullptr;
}

std::size_t NSView::indexOfSubview(NSView* view) {
    // Views that go were often the last to come.
    for (std::size_t i = _subviews.size(); i-- > 0;)
        if (_subviews[i] == view) return i;
    return _subviews.size();
}

void NSView::noteListChange() {
    if (_blocks) _blocks->isValid = false;
}

void NSView::insertSubview(NSView* view, std::size_t index, const char* operation) {
    requireArgument(view, operation, "the view");
    if (isDescendantOf(view))
        raiseBadArgument(operation, "the view contains the receiver, or is the receiver");
    const auto held = Retained<NSView>::retaining(this);
    const auto heldView = Retained<NSView>::retaining(view);
    view->remove(true);
    if (view->_superview) return;  // somebody was quicker
    view->viewWillMoveToSuperview(this);
    if (view->_superview || isDescendantOf(view)) return;
    _subviews.insert(_subviews.begin() + static_cast<std::ptrdiff_t>(std::min(index, _subviews.size())),
                     heldView);
    view->_superview = this;
    view->setNextResponder(this);
    noteListChange();
    view->setWindow(_window);
    view->noteGeometryChange();
    view->markFrame();
    view->viewDidMoveToSuperview();
    didAddSubview(view);
}

void NSView::addSubview(NSView* view) { insertSubview(view, _subviews.size(), "addSubview:"); }

void NSView::addSubview_positioned_relativeTo(NSView* view, NSWindowOrderingMode place, NSView* sibling) {
    const char* operation = "addSubview:positioned:relativeTo:";
    requireArgument(view, operation, "the view");
    const auto held = Retained<NSView>::retaining(view);
    if (view->_superview == this && view != sibling) view->remove(true);
    const std::size_t count = _subviews.size();
    const std::size_t index = indexOfSubview(sibling);
    const bool isAbove = place != NSWindowBelow;
    insertSubview(view, index == count ? (isAbove ? count : 0) : index + (isAbove ? 1 : 0), operation);
}

void NSView::replaceSubview_with(NSView* oldView, NSView* newView) {
    if (!oldView || oldView->_superview != this || oldView == newView) return;
    const auto held = Retained<NSView>::retaining(newView);
    if (newView && newView->_superview == this) newView->remove(true);
    const std::size_t index = indexOfSubview(oldView);
    oldView->remove(true);
    if (newView) insertSubview(newView, index, "replaceSubview:with:");
}

void NSView::remove(bool marks) {
    if (!_superview) return;
    const auto held = Retained<NSView>::retaining(this);
    const auto superview = Retained<NSView>::retaining(_superview);
    superview->willRemoveSubview(this);
    if (_window) _window->state().forgetResponders(this);
    if (_superview != superview) return;
    viewWillMoveToSuperview(nullptr);
    if (_superview != superview) return;
    if (marks) markFrame();
    superview->_subviews.erase(superview->_subviews.begin() +
                               static_cast<std::ptrdiff_t>(superview->indexOfSubview(this)));
    superview->noteListChange();
    _superview = nullptr;
    setNextResponder(nullptr);
    setWindow(nullptr);
    viewDidMoveToSuperview();
}

void NSView::removeFromSuperview() { remove(true); }
void NSView::removeFromSuperviewWithoutNeedingDisplay() { remove(false); }

void NSView::setSubviews(NSArray* views) {
    const auto held = Retained<NSView>::retaining(this);
    std::vector<Retained<NSView>> wanted;
    for (id each : views) {
        if (!cast<NSView>(each)) raiseBadArgument("setSubviews:", "an object of the array is no view");
        wanted.push_back(Retained<NSView>::retaining(cast<NSView>(each)));
    }
    for (const auto& old : std::vector<Retained<NSView>>(_subviews))
        if (old->_superview == this && std::find(wanted.begin(), wanted.end(), old) == wanted.end())
            old->removeFromSuperview();
    for (const auto& view : wanted) addSubview(view);
}

void NSView::sortSubviewsUsingFunction_context(NSCompareFunction compare, void* context) {
    requireArgument(reinterpret_cast<const void*>(compare),
                    "sortSubviewsUsingFunction:context:", "the function");
    std::vector<Retained<NSView>> sorted = _subviews;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [&](const auto& a, const auto& b) { return compare(a.get(), b.get(), context) < 0; });
    if (sorted.size() == _subviews.size()) _subviews.swap(sorted);
    noteListChange();
    setNeedsDisplay(true);
}

void NSView::setWindow(NSWindow* window) {
    if (_window == window) return;
    const auto held = Retained<NSView>::retaining(this);
    viewWillMoveToWindow(window);
    if (_window && _extras) _window->state().tracking.forget(this);
    _window = window;
    for (std::size_t i = 0; i < _subviews.size(); ++i) {
        const Retained<NSView> subview = _subviews[i];
        subview->setWindow(_window);
    }
    viewDidMoveToWindow();
}

void NSView::viewWillMoveToSuperview(NSView*) {}
void NSView::viewDidMoveToSuperview() {}
void NSView::viewWillMoveToWindow(NSWindow*) {}
void NSView::viewDidMoveToWindow() {}
void NSView::didAddSubview(NSView*) {}
void NSView::willRemoveSubview(NSView*) {}

// MARK: Frame and bounds

void NSView::noteGeometryChange() {
    if (_superview) _superview->noteListChange();
    if (_window) _window->state().tracking.noteGeometryChange();
}

void NSView::noteFrameChange() {
    if (!_postsFrameChanges || _delaysFrameNotice) return;
    NSNotificationCenter::defaultCenter()->postNotificationName_object(NSViewFrameDidChangeNotification,
                                                                       this);
}

void NSView::noteBoundsChange() {
    noteGeometryChange();
    setNeedsDisplay(true);
    postBoundsChange();
}

void NSView::postBoundsChange() {
    if (_postsBoundsChanges)
        NSNotificationCenter::defaultCenter()->postNotificationName_object(NSViewBoundsDidChangeNotification,
                                                                           this);
}

void NSView::markFrame() {
    if (_superview && !_isHidden) _superview->setNeedsDisplayInRect(_frame);
}

void NSView::markResize(NSRect oldFrame) {
    if (_superview && !_isHidden) _superview->setNeedsDisplayInRect(oldFrame);
    markFrame();
}

void NSView::setFrame(NSRect frame) {
    const auto held = Retained<NSView>::retaining(this);
    const NSRect old = _frame;
    const bool delayed = _delaysFrameNotice;
    _delaysFrameNotice = true;
    try {
        if (finite(frame.origin) != _frame.origin) setFrameOrigin(frame.origin);
        if (finite(frame.size) != _frame.size) setFrameSize(frame.size);
    } catch (...) {
        _delaysFrameNotice = delayed;
        throw;
    }
    _delaysFrameNotice = delayed;
    if (old != _frame) noteFrameChange();
}

void NSView::setFrameOrigin(NSPoint origin) {
    origin = finite(origin);
    if (origin == _frame.origin) return;
    markFrame();
    _frame.origin = origin;
    noteGeometryChange();
    markFrame();
    noteFrameChange();
}

void NSView::setFrameSize(NSSize size) {
    size = finite(size);
    const NSSize old = bounds().size;
    const NSRect oldFrame = _frame;
    if (size == _frame.size) return;
    const auto held = Retained<NSView>::retaining(this);
    _frame.size = size;
    noteGeometryChange();
    markResize(oldFrame);
    if (_autoresizesSubviews && !_subviews.empty()) resizeSubviewsWithOldSize(old);
    noteFrameChange();
}

NSRect NSView::bounds() {
    if (_scaleX == 1 && _scaleY == 1) return {_boundsOrigin, _frame.size};
    return {
        _boundsOrigin,
        {static_cast<float>(_frame.size.width / _scaleX), static_cast<float>(_frame.size.height / _scaleY)}};
}

void NSView::setBounds(NSRect bounds) {
    const bool posts = _postsBoundsChanges;
    _postsBoundsChanges = false;
    const NSRect old = this->bounds();
    setBoundsOrigin(bounds.origin);
    setBoundsSize(bounds.size);
    _postsBoundsChanges = posts;
    if (old != this->bounds()) noteBoundsChange();
}

void NSView::scrollBoundsOrigin(NSPoint origin) {
    origin = finite(origin);
    if (origin == _boundsOrigin) return;
    const NSSize distance{_boundsOrigin.x - origin.x, _boundsOrigin.y - origin.y};
    _boundsOrigin = origin;
    noteGeometryChange();
    scrollRect_by(bounds(), distance);
    postBoundsChange();
}

void NSView::setBoundsOrigin(NSPoint origin) {
    origin = finite(origin);
    if (origin == _boundsOrigin) return;
    _boundsOrigin = origin;
    noteBoundsChange();
}

void NSView::setBoundsSize(NSSize size) {
    size = finite(size);
    auto factor = [](float frame, float extent) {
        return frame > 0 && extent > 0 ? static_cast<double>(frame) / extent : 1.0;
    };
    const double x = factor(_frame.size.width, size.width), y = factor(_frame.size.height, size.height);
    if (x == _scaleX && y == _scaleY) return;
    _scaleX = x;
    _scaleY = y;
    noteBoundsChange();
}

void NSView::scaleUnitSquareToSize(NSSize factors) {
    if (!(factors.width > 0 && factors.height > 0 && std::isfinite(factors.width) &&
          std::isfinite(factors.height)))
        raiseBadArgument("scaleUnitSquareToSize:", "a factor is not above 0");
    _scaleX *= factors.width;
    _scaleY *= factors.height;
    _boundsOrigin = {_boundsOrigin.x / factors.width, _boundsOrigin.y / factors.height};
    noteBoundsChange();
}

void NSView::translateOriginToPoint(NSPoint place) {
    setBoundsOrigin({_boundsOrigin.x - place.x, _boundsOrigin.y - place.y});
}

void NSView::resizeSubviewsWithOldSize(NSSize oldSize) {
    const auto held = Retained<NSView>::retaining(this);
    for (std::size_t i = 0; i < _subviews.size(); ++i) {
        const Retained<NSView> subview = _subviews[i];
        subview->resizeWithOldSuperviewSize(oldSize);
    }
}

namespace {

// The new origin and extent along one axis.
std::pair<float, float> fitted(float origin, float extent, float change, bool near, bool size, bool far) {
    const int shares = near + size + far;
    if (!shares) return {origin, extent};
    const float share = change / static_cast<float>(shares);
    return {near ? origin + share : origin, size ? std::max(extent + share, 0.0F) : extent};
}

}  // namespace

void NSView::resizeWithOldSuperviewSize(NSSize oldSize) {
    if (!_autoresizingMask || !_superview) return;
    const NSSize now = _superview->bounds().size;
    const unsigned mask = _autoresizingMask;
    auto [x, width] = fitted(_frame.origin.x, _frame.size.width, now.width - oldSize.width,
                             mask & NSViewMinXMargin, mask & NSViewWidthSizable, mask & NSViewMaxXMargin);
    auto [y, height] = fitted(_frame.origin.y, _frame.size.height, now.height - oldSize.height,
                              mask & NSViewMinYMargin, mask & NSViewHeightSizable, mask & NSViewMaxYMargin);
    setFrame({{x, y}, {width, height}});
}

// MARK: Conversion

ViewTransform NSView::transformToSuperview() {
    ViewTransform result{_scaleX, _frame.origin.x - _boundsOrigin.x * _scaleX, _scaleY,
                         _frame.origin.y - _boundsOrigin.y * _scaleY};
    if (isFlipped() != (_superview && _superview->isFlipped())) {
        result.yFactor = -_scaleY;
        result.yOffset =
            static_cast<double>(_frame.origin.y) + _frame.size.height + _boundsOrigin.y * _scaleY;
    }
    return result;
}

ViewTransform NSView::transformToBase() {
    ViewTransform result = transformToSuperview();
    for (NSView* level = _superview; level; level = level->_superview)
        result = result.then(level->transformToSuperview());
    return result;
}

// What converts from the view's coordinates to the receiver's.
ViewTransform NSView::transformFrom(NSView* view) {
    if (view == this) return {};
    if (view && view->_superview == this) return view->transformToSuperview();
    const ViewTransform toBase = view ? view->transformToBase() : ViewTransform{};
    return toBase.then(transformToBase().inverse());
}

NSPoint NSView::convertPoint_fromView(NSPoint point, NSView* view) {
    return transformFrom(view).point(point);
}

NSPoint NSView::convertPoint_toView(NSPoint point, NSView* view) {
    if (view) return view->transformFrom(this).point(point);
    return transformToBase().point(point);
}

namespace {

NSSize scaled(const ViewTransform& transform, NSSize size) {
    return {static_cast<float>(size.width * transform.xFactor),
            static_cast<float>(size.height * std::abs(transform.yFactor))};
}

NSRect converted(const ViewTransform& transform, NSRect rect) {
    const NSSize size = scaled(transform, rect.size);
    const double edge = transform.yFactor < 0 ? static_cast<double>(rect.origin.y) + rect.size.height
                                              : static_cast<double>(rect.origin.y);
    return {{static_cast<float>(transform.x(rect.origin.x)), static_cast<float>(transform.y(edge))}, size};
}

}  // namespace

NSSize NSView::convertSize_fromView(NSSize size, NSView* view) { return scaled(transformFrom(view), size); }
NSSize NSView::convertSize_toView(NSSize size, NSView* view) {
    return scaled(view ? view->transformFrom(this) : transformToBase(), size);
}
NSRect NSView::convertRect_fromView(NSRect rect, NSView* view) {
    return converted(transformFrom(view), rect);
}
NSRect NSView::convertRect_toView(NSRect rect, NSView* view) {
    return converted(view ? view->transformFrom(this) : transformToBase(), rect);
}

NSRect NSView::centerScanRect(NSRect rect) {
    const ViewTransform toBase = transformToBase();
    const float scale = _window ? _window->userSpaceScaleFactor() : 1;
    ViewRect base = toBase.rect(ViewRect::of(rect));
    for (double* edge : {&base.left, &base.bottom, &base.right, &base.top})
        *edge = std::round(*edge * scale) / scale;
    const ViewRect back = toBase.inverse().rect(base);
    return {{static_cast<float>(back.left), static_cast<float>(back.bottom)},
            {static_cast<float>(back.right - back.left), static_cast<float>(back.top - back.bottom)}};
}

NSRect NSView::visibleRect() {
    ViewTransform toLevel;
    ViewRect visible = ViewRect::of(bounds());
    for (NSView* level = this; level; level = level->_superview) {
        if (level->_isHidden || visible.isEmpty()) return {};
        if (!level->_superview) break;
        const ViewTransform step = level->transformToSuperview();
        toLevel = toLevel.then(step);
        visible = step.rect(visible).intersection(ViewRect::of(level->_superview->bounds()));
    }
    if (visible.isEmpty()) return {};
    return toLevel.inverse().rect(visible).intersection(ViewRect::of(bounds())).rect();
}

// MARK: Events

NSView* NSView::hitTest(NSPoint point) {
    const bool isFlippedAround = _superview && _superview->isFlipped();
    if (_isHidden || !NSMouseInRect(point, _frame, isFlippedAround)) return nullptr;
    if (_subviews.empty()) return this;
    const NSPoint inside = transformToSuperview().inverse().point(point);
    NSView* hit = nullptr;
    eachSubviewIn({inside.x, inside.y, inside.x, inside.y}, true, [&](NSView* subview) {
        hit = subview->hitTest(inside);
        return hit != nullptr;
    });
    return hit ? hit : this;
}

bool NSView::mouse_inRect(NSPoint point, NSRect rect) { return NSMouseInRect(point, rect, isFlipped()); }

bool NSView::acceptsFirstMouse(NSEvent*) { return true; }

bool NSView::performKeyEquivalent(NSEvent* event) {
    const auto held = Retained<NSView>::retaining(this);
    for (std::size_t i = _subviews.size(); i-- > 0;) {
        if (i >= _subviews.size()) continue;
        const Retained<NSView> subview = _subviews[i];
        if (!subview->_isHidden && subview->performKeyEquivalent(event)) return true;
    }
    return false;
}

// MARK: Cursor and tracking rectangles

void NSView::resetCursorRects() {}

void NSView::addCursorRect_cursor(NSRect rect, NSCursor* cursor) {
    if (cursor && !NSIsEmptyRect(rect))
        extras().cursorRects.push_back({rect, Retained<NSCursor>::retaining(cursor)});
}

void NSView::removeCursorRect_cursor(NSRect rect, NSCursor* cursor) {
    if (_extras)
        std::erase_if(_extras->cursorRects,
                      [&](const CursorRect& known) { return known.rect == rect && known.cursor == cursor; });
}

void NSView::discardCursorRects() {
    if (_extras) _extras->cursorRects.clear();
}

NSTrackingRectTag NSView::addTrackingRect_owner_userData_assumeInside(NSRect rect, id owner, void* userData,
                                                                      bool isInside) {
    requireArgument(owner, "addTrackingRect:owner:userData:assumeInside:", "the owner");
    if (!_window)
        throw NSException(NSInternalInconsistencyException,
                          "addTrackingRect:owner:userData:assumeInside: the view is in no window");
    extras();
    return _window->state().tracking.add(this, rect, owner, userData, isInside);
}

void NSView::removeTrackingRect(NSTrackingRectTag tag) {
    if (_window) _window->state().tracking.remove(tag);
}

// MARK: Key views

NSView* NSView::nextKeyView() { return _extras ? _extras->nextKeyView : nullptr; }
NSView* NSView::previousKeyView() { return _extras ? _extras->previousKeyView : nullptr; }

void NSView::setNextKeyView(NSView* next) {
    linkKeyView(next);
    if (_window) _window->setAutorecalculatesKeyViewLoop(false);
}

void NSView::linkKeyView(NSView* next) {
    if (NSView* old = extras().nextKeyView) old->extras().previousKeyView = nullptr;
    _extras->nextKeyView = next;
    if (!next) return;
    if (NSView* old = next->extras().previousKeyView) old->extras().nextKeyView = nullptr;
    next->_extras->previousKeyView = this;
    _extras->nextKeyView = next;
}

NSView* NSView::validKeyView(NSView* (NSView::*step)()) {
    // A chain may run into a circle that does not contain the receiver.
    std::size_t left = 100'000;
    for (NSView* view = (this->*step)(); view && view != this && --left; view = (view->*step)())
        if (view->canBecomeKeyView()) return view;
    return nullptr;
}

NSView* NSView::nextValidKeyView() { return validKeyView(&NSView::nextKeyView); }
NSView* NSView::previousValidKeyView() { return validKeyView(&NSView::previousKeyView); }

bool NSView::canBecomeKeyView() {
    return acceptsFirstResponder() && _window && !isHiddenOrHasHiddenAncestor();
}

NSString* NSView::toolTip() { return _extras ? _extras->toolTip.get() : nullptr; }

void NSView::setToolTip(NSString* text) {
    if (text || _extras) extras().toolTip = text ? text->copy() : nullptr;
}

}  // namespace pelvor
