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

namespace {

// The first object that the file describes; null, and a failure, if no object is of that class.
template <class T>
T* objectOf(NSString* file, id owner) {
    NSString* folder = u"" PELVOR_TEST_SOURCES "/"_ns;
    NSNibError* error = nullptr;
    NSArray* top = nullptr;
    auto nib =
        NSNib::initWithContentsOfFile_bundle_error(folder->stringByAppendingString(file), nullptr, &error);
    if (nib) nib->instantiateNibWithOwner_topLevelObjects_error(owner, &top, &error);
    T* object = top ? cast<T>(top->objectAtIndex(0)) : nullptr;
    EXPECT_TRUE(object) << error;
    return object;
}

TEST(InterfaceFiles, DescribeViews) {
    InterfaceScope screen;
    auto owner = NSView::initWithFrame({});
    auto* page = objectOf<NSView>(u"Letter.nib"_ns, owner);
    ASSERT_TRUE(page);
    auto window = screen.window({{0, 0}, {500, 400}});
    window->setContentView(page);
    screen.turn();
    auto* scrollView = static_cast<NSScrollView*>(page->subviews()->objectAtIndex(0));
    auto* letter = cast<NSTextView>(scrollView->documentView());
    ASSERT_TRUE(letter);
    EXPECT_EQ(letter->delegate(), owner.get());
    EXPECT_EQ(scrollView->frame().size, (NSSize{500, 400}));
    EXPECT_EQ(letter->frame().size, (NSSize{488, 400}));
    screen.click(letter, {200, 5});
    screen.type(u",");
    EXPECT_EQ(letter->string()->toUTF8(), "_Dear Anna,");
    page->setSubviews(nullptr);
    EXPECT_EQ(page->subviews()->count(), 0u);
}

TEST(InterfaceFiles, DescribeWindowsMenusAndTables) {
    InterfaceScope screen;
    auto owner = TableRows::of({"Anna", "Bruno"});
    auto* window = objectOf<NSWindow>(u"Guests.nib"_ns, owner);
    ASSERT_TRUE(window);
    window->makeKeyAndOrderFront(nullptr);
    screen.turn();
    EXPECT_EQ(screen.backend->title(screen.number(window)), "_Guests");
    NSArray* parts = window->contentView()->subviews();
    auto* table = cast<NSTableView>(static_cast<NSScrollView*>(parts->objectAtIndex(0))->documentView());
    ASSERT_TRUE(table);
    auto* name = static_cast<NSTableColumn*>(table->tableColumns()->objectAtIndex(0));
    EXPECT_EQ(shown(name->identifier(), name->headerCell()->stringValue(), name->width()), "name _Name 160");
    EXPECT_EQ(shown(table->numberOfColumns(), table->numberOfRows()), "2 2");
    EXPECT_EQ(shown(table->menu()->itemAtIndex(0)->title()), "_Remove");
    auto* order = static_cast<NSPopUpButton*>(parts->objectAtIndex(1));
    EXPECT_EQ(shown(order->titleOfSelectedItem(), order->numberOfItems()), "_By Name 2");
    order->sendAction_to(order->action(), order->target());
    EXPECT_EQ(owner->take(), "act ");

    // New columns and titles take the place of those that there are; refused ones change nothing.
    table->setTableColumns(NSArray::of({table->tableColumns()->objectAtIndex(1), name}));
    EXPECT_EQ(table->columnWithIdentifier(u"name"_ns), 1);
    auto other = NSTableView::initWithFrame({});
    struct {
        NSTableView* table;
        id second;
        const char* problem;
    } const rows[] = {{table, table, "an object of the array is no column"},
                      {table, name, "a column stands in the array twice"},
                      {other, name, "a column of the array is in another table"}};
    for (const auto& row : rows)
        EXPECT_EQ(RAISED(row.table->setTableColumns(NSArray::of({name, row.second}))),
                  std::string("NSInvalidArgumentException: setTableColumns: ") + row.problem);
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
