// SPDX-License-Identifier: Apache-2.0
// Views, windows, menus and tables that interface files describe.
#include "Foundation/NSNib.h"
#include "Foundation/NSNibError.h"
#include "Interface/NSMenu.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTextView.h"
#include "InterfaceScope.h"
#include "TableRows.h"
#include "TemporaryFolder.h"
#include "Text/NSColor.h"

namespace {

constexpr const char* kFile = R"({
    Objects = (
        { Identifier = page; Class = NSView; Create = "initWithFrame:"; Arguments = ((0, 0, 400, 300));
          Values = { subviews = ({ Object = scroller; }); }; },
        { Identifier = scroller; Class = NSScrollView; Create = "initWithFrame:"; Arguments = ((0, 0, 400, 300));
          Values = { autoresizingMask = 18; hasVerticalScroller = YES; documentView = { Object = letter; }; }; },
        { Identifier = letter; Class = NSTextView; Create = "initWithFrame:"; Arguments = ((0, 0, 388, 300));
          Values = { autoresizingMask = 2; string = "Dear Anna"; }; },
    );
    Connections = ({ Source = letter; Outlet = delegate; Target = owner; });
    TopLevel = (page);
})";

// As docs/interface-files.md shows it.
constexpr const char* kGuests = R"(
{
    Objects = (
        {
            Identifier = window;
            Class = NSWindow;
            Create = "initWithContentRect:styleMask:backing:defer:";
            Arguments = ((100, 100, 400, 300), 15, 2, YES);
            Values = { contentView = { Object = page; }; title = { Text = "_Guests"; }; };
        },
        {
            Identifier = page;
            Class = NSView;
            Create = "initWithFrame:";
            Arguments = ((0, 0, 400, 300));
            Values = { subviews = ({ Object = scroller; }, { Object = order; }); };
        },
        {
            Identifier = order;
            Class = NSPopUpButton;
            Create = "initWithFrame:pullsDown:";
            Arguments = ((10, 264, 160, 26), NO);
            Values = { autoresizingMask = 8; itemTitles = ({ Text = "_By Name"; }, { Text = "_By Town"; }); };
        },
        {
            Identifier = scroller;
            Class = NSScrollView;
            Create = "initWithFrame:";
            Arguments = ((0, 0, 400, 254));
            Values = { autoresizingMask = 18; documentView = { Object = guests; }; hasVerticalScroller = YES; };
        },
        {
            Identifier = guests;
            Class = NSTableView;
            Create = "initWithFrame:";
            Arguments = ((0, 0, 400, 254));
            Values = { menu = { Object = menu; }; tableColumns = ({ Object = name; }, { Object = town; }); };
        },
        {
            Identifier = name;
            Class = NSTableColumn;
            Create = "initWithIdentifier:";
            Arguments = (name);
            Values = { headerCell = { Object = nameTitle; }; width = 160; };
        },
        {
            Identifier = nameTitle;
            Class = NSTableHeaderCell;
            Create = "initTextCell:";
            Arguments = ({ Text = "_Name"; });
        },
        { Identifier = town; Class = NSTableColumn; Create = "initWithIdentifier:"; Arguments = (town); },
        {
            Identifier = menu;
            Class = NSMenu;
            Create = "initWithTitle:";
            Arguments = ("");
            Values = { itemArray = ({ Object = remove; }); };
        },
        {
            Identifier = remove;
            Class = NSMenuItem;
            Create = "initWithTitle:action:keyEquivalent:";
            Arguments = ({ Text = "_Remove"; }, "delete:", "");
        },
    );
    Connections = (
        { Source = guests; Outlet = dataSource; Target = owner; },
        { Source = order; Action = "act:"; Target = owner; },
    );
    TopLevel = (window);
}
)";

// The top-level objects of the file; null, and a failure, if it describes none.
NSArray* objectsOf(const char* file, id owner) {
    TemporaryFolder folder;
    NSNibError* error = nullptr;
    NSArray* top = nullptr;
    auto nib = NSNib::initWithContentsOfFile_bundle_error(NSString::ofUTF8(folder.write("Some.nib", file)),
                                                          nullptr, &error);
    if (!nib || !nib->instantiateNibWithOwner_topLevelObjects_error(owner, &top, &error)) {
        ADD_FAILURE() << error->description()->toUTF8();
        return nullptr;
    }
    return top;
}

TEST(InterfaceFiles, DescribeViews) {
    InterfaceScope screen;
    auto owner = NSView::initWithFrame({});
    NSArray* top = objectsOf(kFile, owner);
    ASSERT_TRUE(top);
    auto* page = static_cast<NSView*>(top->objectAtIndex(0));
    auto window = screen.window({{0, 0}, {500, 400}});
    window->setContentView(page);
    screen.turn();
    auto* scrollView = cast<NSScrollView>(page->subviews()->objectAtIndex(0));
    ASSERT_TRUE(scrollView);
    auto* letter = cast<NSTextView>(scrollView->documentView());
    ASSERT_TRUE(letter);
    EXPECT_EQ(letter->string()->toUTF8(), "Dear Anna");
    EXPECT_EQ(letter->delegate(), owner.get());
    EXPECT_EQ(scrollView->frame().size, (NSSize{500, 400}));
    EXPECT_EQ(letter->frame().size, (NSSize{488, 400}));
    screen.click(letter, {200, 5});
    screen.type(u",");
    EXPECT_EQ(letter->string()->toUTF8(), "Dear Anna,");
    page->setSubviews(nullptr);
    EXPECT_EQ(page->subviews()->count(), 0u);
}

TEST(InterfaceFiles, DescribeWindowsMenusAndTables) {
    InterfaceScope screen;
    auto owner = TableRows::of({"Anna", "Bruno"});
    NSArray* top = objectsOf(kGuests, owner);
    ASSERT_TRUE(top);
    auto* window = static_cast<NSWindow*>(top->objectAtIndex(0));
    window->makeKeyAndOrderFront(nullptr);
    screen.turn();
    EXPECT_EQ(screen.backend->title(screen.number(window)), "_Guests");
    NSArray* parts = window->contentView()->subviews();
    auto* table = cast<NSTableView>(cast<NSScrollView>(parts->objectAtIndex(0))->documentView());
    ASSERT_TRUE(table);
    auto* name = static_cast<NSTableColumn*>(table->tableColumns()->objectAtIndex(0));
    EXPECT_EQ(shown(name->identifier(), name->headerCell()->stringValue(), name->width()), "name _Name 160");
    EXPECT_EQ(shown(table->numberOfColumns(), table->numberOfRows()), "2 2");
    screen.click(table, {10, 25});
    EXPECT_EQ(table->selectedRow(), 1);
    EXPECT_EQ(shown(table->menu()->itemAtIndex(0)->title()), "_Remove");
    auto* order = cast<NSPopUpButton>(parts->objectAtIndex(1));
    ASSERT_TRUE(order);
    EXPECT_EQ(shown(order->titleOfSelectedItem(), order->numberOfItems()), "_By Name 2");
    order->sendAction_to(order->action(), order->target());
    EXPECT_EQ(owner->take(), "act ");

    // New columns and titles take the place of those that there are; refused ones change nothing.
    table->setTableColumns(NSArray::of({table->tableColumns()->objectAtIndex(1), name}));
    EXPECT_EQ(table->columnWithIdentifier(u"name"_ns), 1);
    auto other = NSTableView::initWithFrame({});
    for (const auto& row : std::initializer_list<std::pair<NSArray*, const char*>>{
             {NSArray::of({name, table}), "an object of the array is no column"},
             {NSArray::of({name, name}), "a column stands in the array twice"}})
        EXPECT_EQ(RAISED(table->setTableColumns(row.first)),
                  std::string("NSInvalidArgumentException: setTableColumns: ") + row.second);
    EXPECT_EQ(RAISED(other->setTableColumns(NSArray::of({name}))),
              "NSInvalidArgumentException: setTableColumns: a column of the array is in another table");
    EXPECT_EQ(table->numberOfColumns(), 2);
    table->setTableColumns(nullptr);
    other->setTableColumns(NSArray::of({name}));
    EXPECT_EQ(shown(table->numberOfColumns(), other->numberOfColumns()), "0 1");
    order->setItemTitles(NSArray::of({u"By Age"_ns}));
    EXPECT_EQ(RAISED(order->setItemTitles(NSArray::of({order}))),
              "NSInvalidArgumentException: setItemTitles: an object of the array is no string");
    EXPECT_EQ(shown(order->titleOfSelectedItem(), order->numberOfItems()), "By Age 1");
    order->setItemTitles(nullptr);
    EXPECT_EQ(order->indexOfSelectedItem(), -1);
}

}  // namespace
