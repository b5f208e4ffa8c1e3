// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRProfilesPanel.h"

#include <algorithm>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Interface/NSCell.h"
#include "Interface/NSPanel.h"
#include "Interface/NSScreen.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSScroller.h"
#include "Interface/NSTableColumn.h"
#include "PBAutoscrollingTableView.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Writer/LocalizedText.h"
#include "Writer/ProfileChoice.h"
#include "Writer/WRPlugInLoader.h"
#include "Writer/WRProfileListing.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr float kDistance = 8;  // between the window and the one beside it
constexpr NSString* kName = u"name"_ns;
constexpr NSString* kKind = u"kind"_ns;
constexpr NSString* kPlugIn = u"plug-in"_ns;

int compareNames(id a, id b, void*) {
    return nameOfProfile(static_cast<PBProfile*>(a))
        ->localizedCaseInsensitiveCompare(nameOfProfile(static_cast<PBProfile*>(b)));
}

Retained<NSTableColumn> columnWith(NSString* identifier, NSString* title, float width) {
    auto column = NSTableColumn::initWithIdentifier(identifier);
    column->headerCell()->setStringValue(title);
    column->setWidth(width);
    column->setEditable(false);
    return column;
}

// At the right of the other frame, or else at its left; at the right edge of the screen if neither has room.
NSPoint originBeside(NSRect other, NSSize size, NSRect screen) {
    const float left = NSMinX(other) - kDistance - size.width;
    float x = NSMaxX(other) + kDistance;
    if (x + size.width > NSMaxX(screen) && left >= NSMinX(screen)) x = left;
    const auto inside = [](float start, float length, float low, float high) {
        return std::max(std::min(start, high - length), low);
    };
    return {inside(x, size.width, NSMinX(screen), NSMaxX(screen)),
            inside(NSMaxY(other) - size.height, size.height, NSMinY(screen), NSMaxY(screen))};
}

}  // namespace

PELVOR_DEFINE_CLASS(WRProfilesPanel, windowsLibrary) {
    methods.creator<"init", &WRProfilesPanel::init>();
    methods.instance<"showBeside:", &WRProfilesPanel::showBeside>();
    methods.instance<"window", &WRProfilesPanel::window>();
    methods.instance<"numberOfRowsInTableView:", &WRProfilesPanel::numberOfRowsInTableView>();
    methods.instance<"tableView:objectValueForTableColumn:row:",
                     &WRProfilesPanel::tableView_objectValueForTableColumn_row>();
    methods.instance<"profilesDidChange:", &WRProfilesPanel::profilesDidChange>();
}

Retained<WRProfilesPanel> WRProfilesPanel::init(Class* cls) {
    auto self = make<WRProfilesPanel>(cls);
    self->_profiles = NSArray::init();
    self->makeWindow();
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self, "profilesDidChange:"_sel, PBProfilesDidChangeNotification, PBRegistry::sharedRegistry());
    self->profilesDidChange(nullptr);
    return self;
}

WRProfilesPanel::~WRProfilesPanel() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRProfilesPanel::makeWindow() {
    constexpr NSSize kSize{520, 360};
    _window = NSPanel::initWithContentRect_styleMask_backing_defer(
        {{0, 0}, kSize}, NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask,
        NSBackingStoreBuffered, true);
    _window->setTitle(localized(u"_Plug-ins"_ns));
    _table = PBAutoscrollingTableView::initWithFrame({{0, 0}, kSize});
    _table->addTableColumn(columnWith(kName, localized(u"_Name"_ns), 200).get());
    _table->addTableColumn(columnWith(kKind, localized(u"_Kind"_ns), 140).get());
    _table->addTableColumn(columnWith(kPlugIn, localized(u"_Plug-in"_ns), 140).get());
    _table->setUsesAlternatingRowBackgroundColors(true);
    _table->setDataSource(this);
    _table->setDelegate(this);
    auto scrollView = NSScrollView::initWithFrame({{0, 0}, kSize});
    scrollView->setAutoresizingMask(NSViewWidthSizable | NSViewHeightSizable);
    scrollView->setHasVerticalScroller(true);
    scrollView->setAutohidesScrollers(true);
    scrollView->setDocumentView(_table);
    _window->contentView()->addSubview(scrollView);
    _table->sizeLastColumnToFit();
    _window->setInitialFirstResponder(_table);
}

void WRProfilesPanel::showBeside(NSWindow* other) {
    NSScreen* screen = other ? other->screen() : NSScreen::mainScreen();
    if (!_window->isVisible() && screen)
        _window->setFrameOrigin(originBeside(other ? other->frame() : screen->visibleFrame(),
                                             _window->frame().size, screen->visibleFrame()));
    _window->makeKeyAndOrderFront(nullptr);
}

int WRProfilesPanel::numberOfRowsInTableView(NSTableView*) { return static_cast<int>(_profiles->count()); }

id WRProfilesPanel::tableView_objectValueForTableColumn_row(NSTableView*, NSTableColumn* column,
                                                            NSInteger row) {
    auto* profile = static_cast<PBProfile*>(_profiles->objectAtIndex(static_cast<NSUInteger>(row)));
    if (column->identifier() == kName) return nameOfProfile(profile);
    if (column->identifier() == kKind) {
        auto* kind = cast<NSString>(profile->valueForKey(PBProfileTypeKey));
        return kind ? WRProfileListing::nameOfKind(kind) : nullptr;
    }
    return profile->bundle() ? WRPlugInLoader::nameOfBundle(profile->bundle()) : nullptr;
}

void WRProfilesPanel::profilesDidChange(NSNotification*) {
    _profiles.set(
        PBRegistry::sharedRegistry()->profiles()->sortedArrayUsingFunction_context(&compareNames, nullptr));
    _table->reloadData();
}

}  // namespace pelvor
