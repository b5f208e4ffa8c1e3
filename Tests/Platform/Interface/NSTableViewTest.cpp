// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSTableView.h"

#include "Foundation/NSEnumerator.h"
#include "Interface/NSButtonCell.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTableHeaderView.h"
#include "InterfaceScope.h"
#include "TableRows.h"

namespace {

// A table of two columns, a (60 points) and b (40), in a window of 200 by 120 points. Rows are 20 points
// apart.
class TableTest : public testing::Test {
  protected:
    TableTest() {
        for (NSString* name : {u"a"_ns, u"b"_ns}) {
            auto column = NSTableColumn::initWithIdentifier(name);
            column->setWidth(name->isEqualToString(u"a"_ns) ? 60 : 40);
            column->setEditable(false);
            table->addTableColumn(column);
        }
        table->setIntercellSpacing({0, 0});
        table->setAllowsMultipleSelection(true);
        table->setDelegate(rows);
        table->setDataSource(rows);
        table->setTarget(rows);
        table->setAction("act:"_sel);
        table->setDoubleAction("open:"_sel);
        window->contentView()->addSubview(table);
        window->makeFirstResponder(table);
        screen.turn();
    }

    void clickRow(NSInteger row, std::uint32_t modifiers = 0, int count = 1) {
        screen.click(table, {10, 20.0f * static_cast<float>(row) + 10}, count, modifiers);
    }
    // "1-2 4 | 2": the selected rows, and the last one.
    std::string selection() {
        const std::string text = table->selectedRowIndexes()->description()->toUTF8();
        const std::size_t open = text.find('(');
        return text.substr(open + 1, text.size() - open - 2) + " | " + std::to_string(table->selectedRow());
    }

    InterfaceScope screen;
    Retained<NSWindow> window = screen.window({{100, 100}, {200, 120}});
    Retained<TableRows> rows = TableRows::of({"ant", "bee", "cat", "dog", "eel"});
    Retained<NSTableView> table = NSTableView::initWithFrame({{0, 0}, {200, 120}});
};

// MARK: Places and drawing

TEST_F(TableTest, KnowsThePlacesOfRowsAndColumns) {
    EXPECT_EQ(table->rectOfRow(2), (NSRect{{0, 40}, {200, 20}}));
    EXPECT_EQ(table->rectOfColumn(1), (NSRect{{60, 0}, {40, 120}}));
    EXPECT_EQ(shown(table->rectOfRow(5), table->rectOfRow(-1), table->rectOfColumn(2)),
              shown(NSZeroRect, NSZeroRect, NSZeroRect));
    EXPECT_EQ(shown(table->rowAtPoint({0, 99}), table->rowAtPoint({0, 100}), table->rowAtPoint({-1, 5})),
              "4 -1 -1");
    EXPECT_EQ(
        shown(table->columnAtPoint({59, 0}), table->columnAtPoint({60, 0}), table->columnAtPoint({100, 0})),
        "0 1 -1");
    EXPECT_EQ(shown(table->rowsInRect({{0, 19}, {1, 22}}), table->rowsInRect({{0, 20}, {1, 20}}),
                    table->rowsInRect({{0, 90}, {1, 900}}), table->rowsInRect({{0, 0}, {0, 9}})),
              "{0, 3} {1, 1} {4, 1} {0, 0}");
    EXPECT_EQ(shown(table->columnsInRect({{59, 0}, {2, 1}}), table->columnsInRect({{60, 0}, {90, 1}})),
              "{0, 2} {1, 1}");
    table->setIntercellSpacing({4, 2});
    EXPECT_EQ(table->frameOfCellAtColumn_row(1, 1), (NSRect{{66, 23}, {40, 20}}));
}

TEST_F(TableTest, AsksOnlyForRowsThatAreSeen) {
    rows->values.assign(100'000, rows->values[0]);
    rows->asked = 0;
    table->reloadData();
    screen.turn();
    EXPECT_EQ(table->frame().size.height, 2'000'000);
    EXPECT_EQ(rows->asked, 12) << "six rows of two columns";
    rows->asked = 0;
    table->selectRow_byExtendingSelection(99'997, false);
    screen.turn();
    EXPECT_EQ(rows->asked, 2) << "the row that looks different";
}

TEST_F(TableTest, DrawsTheSelectionByWhereKeysGo) {
    table->selectRow_byExtendingSelection(1, false);
    screen.turn();
    const NSPoint place{150, 30};
    const std::uint32_t active = screen.pixel(table, place);
    window->makeFirstResponder(nullptr);
    screen.turn();
    const std::uint32_t inactive = screen.pixel(table, place);
    window->makeFirstResponder(table);
    screen.turn();
    EXPECT_EQ(screen.pixel(table, place), active);
    EXPECT_NE(active, inactive);
    EXPECT_NE(inactive, screen.pixel(table, {150, 50}));
    auto other = screen.window({{400, 100}, {50, 50}});
    screen.turn();
    EXPECT_EQ(screen.pixel(table, place), inactive) << "another window has the keys";
}

TEST_F(TableTest, SurvivesDataSourcesThatChangeItWhileItIsDrawn) {
    rows->whenAsked = [&] {
        rows->whenAsked = nullptr;
        for (const auto& column : table->columns()) column->setDataCell(NSButtonCell::init().get());
    };
    table->setNeedsDisplay(true);
    screen.turn();
    rows->whenAsked = [&] {
        rows->whenAsked = nullptr;
        table->removeTableColumn(table->tableColumnWithIdentifier(u"a"_ns));
        table->removeTableColumn(table->tableColumnWithIdentifier(u"b"_ns));
        rows->values.clear();
        table->reloadData();
    };
    table->setNeedsDisplay(true);
    screen.turn();
    EXPECT_EQ(shown(table->numberOfColumns(), table->numberOfRows()), "0 0");
    rows = nullptr;
    EXPECT_EQ(table->dataSource(), nullptr);
    table->reloadData();
    screen.turn();
}

TEST_F(TableTest, StandsUnderItsTitlesInAScrollView) {
    auto scroll = NSScrollView::initWithFrame({{0, 0}, {150, 90}});
    table->removeFromSuperview();
    table->setFrameOrigin({20, 20});
    scroll->setDocumentView(table);
    window->contentView()->addSubview(scroll);
    NSTableColumn *a = table->tableColumnWithIdentifier(u"a"_ns),
                  *b = table->tableColumnWithIdentifier(u"b"_ns);
    a->setWidth(150);
    b->setWidth(100);
    screen.turn();
    const auto isAligned = [&] {
        NSTableHeaderView* header = table->headerView();
        return header->convertRect_toView(header->headerRectOfColumn(1), nullptr).origin.x ==
               table->convertRect_toView(table->rectOfColumn(1), nullptr).origin.x;
    };
    EXPECT_TRUE(isAligned());
    table->scrollColumnToVisible(1);
    table->scrollRowToVisible(4);
    screen.turn();
    EXPECT_TRUE(isAligned());
    EXPECT_TRUE(NSContainsRect(table->visibleRect(), table->frameOfCellAtColumn_row(1, 4)));
    scroll->setFrameSize({350, 90});
    EXPECT_EQ(shown(a->width(), b->width()), "150 300") << "the last one has grown by as much";
}

// MARK: Selection by the program

TEST_F(TableTest, SelectsRowsOrColumnsAndTellsEachChangeOnce) {
    table->selectRow_byExtendingSelection(1, false);
    table->selectRow_byExtendingSelection(3, true);
    table->selectRow_byExtendingSelection(3, true);
    EXPECT_EQ(selection() + ", " + rows->take(), "1 3 | 3, changed changed ");
    table->deselectRow(3);
    EXPECT_EQ(selection(), "1 | 1");
    table->selectColumn_byExtendingSelection(1, false);
    EXPECT_EQ(selection() + ", " + shown(table->selectedColumn(), table->selectedColumnIndexes()->count()),
              " | -1, 1 1");
    table->selectRow_byExtendingSelection(2, true);
    EXPECT_EQ(selection() + ", " + shown(table->selectedColumn()), "2 | 2, -1");
    rows->take();
    table->setAllowsMultipleSelection(false);
    table->selectRow_byExtendingSelection(4, true);
    EXPECT_EQ(selection() + ", " + rows->take(), "4 | 4, changed ");
    EXPECT_EQ(RAISED(table->selectRow_byExtendingSelection(5, false)),
              "NSRangeException: selectRow:byExtendingSelection: index (5) beyond bounds (5)");
    EXPECT_THAT(RAISED(table->deselectRow(-1)), StartsWith("NSRangeException: deselectRow:"));
}

TEST_F(TableTest, AsksTheDelegateBeforeItSelectsAllOrNothing) {
    rows->refused = {2};
    table->selectAll(nullptr);
    EXPECT_EQ(selection(), "0-1 3-4 | 4");
    rows->allowsChange = false;
    table->deselectAll(nullptr);
    EXPECT_EQ(table->numberOfSelectedRows(), 4);
    rows->allowsChange = true;
    table->setAllowsEmptySelection(false);
    table->deselectAll(nullptr);
    EXPECT_EQ(table->numberOfSelectedRows(), 4);
    table->setAllowsEmptySelection(true);
    table->deselectAll(nullptr);
    EXPECT_EQ(selection() + ", " + rows->take(), " | -1, changed changed ");
}

TEST_F(TableTest, ForgetsSelectedRowsThatAreGone) {
    table->selectAll(nullptr);
    rows->take();
    rows->values.resize(2);
    table->reloadData();
    EXPECT_EQ(selection() + ", " + rows->take(), "0-1 | 1, changed ");
    std::string numbers;
    NSEnumerator* selected = table->selectedRowEnumerator();
    while (id number = selected->nextObject()) numbers += shown(number) + " ";
    EXPECT_EQ(numbers, "0 1 ");
}

// MARK: Keys and mouse

TEST_F(TableTest, MovesTheSelectionByKeys) {
    rows->refused = {1};
    struct Row {
        unichar key;
        std::uint32_t modifiers;
        const char* selection;
    };
    for (const Row& row : {Row{NSDownArrowFunctionKey, 0, "0 | 0"},
                           {NSDownArrowFunctionKey, 0, "2 | 2"},
                           {NSUpArrowFunctionKey, 0, "0 | 0"},
                           {NSUpArrowFunctionKey, 0, "0 | 0"},
                           {NSEndFunctionKey, 0, "4 | 4"},
                           {NSHomeFunctionKey, 0, "0 | 0"},
                           {NSPageDownFunctionKey, 0, "4 | 4"},
                           {NSUpArrowFunctionKey, NSShiftKeyMask, "3-4 | 3"},
                           {NSUpArrowFunctionKey, NSShiftKeyMask, "2-4 | 2"},
                           {NSDownArrowFunctionKey, NSShiftKeyMask, "3-4 | 3"},
                           {NSPageUpFunctionKey, 0, "0 | 0"}}) {
        screen.press(row.key, row.modifiers);
        EXPECT_EQ(selection(), row.selection) << "key " << int{row.key};
    }
    rows->take();
    screen.press(NSCarriageReturnCharacter);
    EXPECT_EQ(rows->take(), "open ");
    const int beeps = screen.backend->beeps();
    screen.press(u'x');
    EXPECT_EQ(screen.backend->beeps(), beeps + 1) << "nobody takes it";
}

TEST_F(TableTest, SelectsByTheMouse) {
    rows->refused = {4};
    struct Row {
        NSInteger row;
        std::uint32_t modifiers;
        const char* result;
    };
    for (const Row& row : {Row{1, 0, "1 | 1, changing changed act "},
                           {1, 0, "1 | 1, act "},
                           {3, NSShiftKeyMask, "1-3 | 3, changing changed act "},
                           {2, NSCommandKeyMask, "1 3 | 3, changing changed act "},
                           {0, NSCommandKeyMask, "0-1 3 | 0, changing changed act "},
                           {4, 0, "0-1 3 | 0, act "},
                           {5, 0, " | -1, changed act "}}) {
        rows->take();
        clickRow(row.row, row.modifiers);
        EXPECT_EQ(selection() + ", " + rows->take(), row.result) << "row " << row.row;
        EXPECT_EQ(table->clickedRow(), row.row == 5 ? -1 : row.row);
    }
    clickRow(2, 0, 2);
    EXPECT_EQ(rows->take(), "changing changed act open ");
    table->setEnabled(false);
    clickRow(0);
    EXPECT_EQ(selection() + ", " + rows->take(), "2 | 2, ") << "cannot be used";
}

TEST_F(TableTest, SelectsTheRowsOfADrag) {
    screen.drag(table, {10, 10}, {10, 70});
    EXPECT_EQ(selection(), "0-3 | 3");
    table->setAllowsMultipleSelection(false);
    screen.drag(table, {10, 10}, {10, 50});
    EXPECT_EQ(selection(), "2 | 2");
}

TEST_F(TableTest, LetsButtonsOfRowsChangeTheValue) {
    auto cell = NSButtonCell::initTextCell(nullptr);
    cell->setButtonType(NSSwitchButton);
    NSTableColumn* column = table->tableColumnWithIdentifier(u"b"_ns);
    column->setDataCell(cell);
    rows->values[1] = Retained<Object>::retaining(NSNumber::numberWithInt(0));
    screen.click(table, {66, 30});
    EXPECT_EQ(selection() + ", " + rows->take(), "1 | 1, changing changed act ")
        << "the column cannot be changed";
    column->setEditable(true);
    screen.click(table, {66, 10});
    EXPECT_EQ(selection() + ", " + rows->take(), "1 | 1, set ");
    EXPECT_EQ(shown(rows->values[0], column->dataCell()->isHighlighted()), "1 0");
    screen.drag(table, {66, 10}, {66, 90});
    EXPECT_EQ(rows->take(), "") << "released elsewhere";
}

TEST_F(TableTest, LivesThroughItsEndInAnAction) {
    NSTableView* address = table;
    rows->whenAsked = [&] { table->removeFromSuperview(); };
    address->setNeedsDisplay(true);
    screen.turn();
    table = nullptr;
    rows->whenAsked = nullptr;
    screen.press(NSDownArrowFunctionKey);
}

// MARK: Editing

TEST_F(TableTest, EditsByDoubleClicksAndKeys) {
    for (const auto& column : table->columns()) column->setEditable(true);
    clickRow(1, 0, 2);
    EXPECT_EQ(shown(table->editedRow(), table->editedColumn(), rows->take()), "1 0 changing changed act ");
    screen.type(u"wasp");
    EXPECT_EQ(rows->take(), "begun ");
    screen.press(NSTabCharacter);
    EXPECT_EQ(shown(table->editedColumn(), rows->values[1], rows->take()), "1 wasp set ended ");
    screen.type(u"x");
    screen.press(NSEscapeCharacter);
    EXPECT_EQ(shown(table->editedRow(), rows->values[1], rows->take()), "-1 wasp begun ended ");
    EXPECT_EQ(window->firstResponder(), table);
    screen.press(NSDownArrowFunctionKey);
    screen.press(NSCarriageReturnCharacter);
    EXPECT_EQ(shown(table->editedRow(), table->editedColumn()), "2 0");
    screen.type(u"cow");
    screen.press(NSCarriageReturnCharacter);
    EXPECT_EQ(shown(table->editedRow(), rows->values[2]), "-1 cow");
}

TEST_F(TableTest, DrawsChangedCellsAfterItsDataSourceRaised) {
    screen.turn();
    rows->whenAsked = [] { throw 1; };
    EXPECT_THROW(table->editColumn_row_withEvent_select(0, 0, nullptr, true), int);
    rows->whenAsked = nullptr;
    rows->asked = 0;
    table->columns()[0]->dataCell()->setAlignment(NSRightTextAlignment);
    screen.turn();
    EXPECT_EQ(rows->asked, 5);
}

TEST_F(TableTest, EndsEditingWhenItIsLeftOrItsDataChange) {
    table->editColumn_row_withEvent_select(0, 0, nullptr, true);
    screen.type(u"emu");
    clickRow(4);
    EXPECT_EQ(shown(table->editedRow(), rows->values[0], table->selectedRow()), "-1 emu 4")
        << "a click elsewhere";
    table->editColumn_row_withEvent_select(0, 0, nullptr, true);
    screen.type(u"x");
    table->reloadData();
    EXPECT_EQ(shown(table->editedRow(), rows->values[0], table->currentEditor()), "-1 emu 0");
    table->editColumn_row_withEvent_select(0, 0, nullptr, true);
    table->removeFromSuperview();
    table = nullptr;
    screen.type(u"x");
}

// MARK: Columns

TEST_F(TableTest, KeepsWidthsBetweenTheirLimits) {
    NSTableColumn* column = table->tableColumnWithIdentifier(u"a"_ns);
    column->setMinWidth(20);
    column->setMaxWidth(80);
    column->setWidth(500);
    EXPECT_EQ(column->width(), 80);
    column->setWidth(1);
    EXPECT_EQ(column->width(), 20);
    column->setMinWidth(30);
    EXPECT_EQ(shown(column->width(), rows->take()), "30 resized resized resized ");
}

TEST_F(TableTest, FitsColumnsAsItsStyleSays) {
    NSTableColumn* a = table->tableColumnWithIdentifier(u"a"_ns);
    NSTableColumn* b = table->tableColumnWithIdentifier(u"b"_ns);
    struct Row {
        NSTableViewColumnAutoresizingStyle style;
        const char* widths;
    };
    for (const Row& row : {Row{NSTableViewNoColumnAutoresizing, "60 40"},
                           {NSTableViewUniformColumnAutoresizingStyle, "110 90"},
                           {NSTableViewLastColumnOnlyAutoresizingStyle, "60 140"},
                           {NSTableViewFirstColumnOnlyAutoresizingStyle, "160 40"},
                           {NSTableViewSequentialColumnAutoresizingStyle, "60 140"},
                           {NSTableViewReverseSequentialColumnAutoresizingStyle, "160 40"}}) {
        a->setWidth(60);
        b->setWidth(40);
        table->setColumnAutoresizingStyle(row.style);
        table->sizeToFit();
        EXPECT_EQ(shown(a->width(), b->width()), row.widths) << row.style;
    }
    b->setMaxWidth(50);
    a->setWidth(60);
    table->setColumnAutoresizingStyle(NSTableViewSequentialColumnAutoresizingStyle);
    table->sizeToFit();
    EXPECT_EQ(shown(a->width(), b->width()), "150 50") << "the rest goes to the next column";
}

TEST_F(TableTest, MovesAndRemovesColumnsWithTheirSelection) {
    table->addTableColumn(NSTableColumn::initWithIdentifier(u"c"_ns).get());
    table->selectColumn_byExtendingSelection(0, false);
    table->moveColumn_toColumn(0, 2);
    EXPECT_EQ(shown(table->columnWithIdentifier(u"a"_ns), table->selectedColumn(),
                    table->columnWithIdentifier(u"b"_ns)),
              "2 2 0");
    rows->take();
    table->removeTableColumn(table->tableColumnWithIdentifier(u"b"_ns));
    EXPECT_EQ(shown(table->selectedColumn(), table->selectedColumnIndexes()->firstIndex(), rows->take()),
              "1 1 changed ");
    NSTableColumn* a = table->tableColumnWithIdentifier(u"a"_ns);
    EXPECT_THAT(RAISED(table->addTableColumn(a)),
                EndsWith("addTableColumn: the column is in a table already"));
    EXPECT_THAT(RAISED(table->moveColumn_toColumn(0, 2)),
                StartsWith("NSRangeException: moveColumn:toColumn:"));
}

TEST_F(TableTest, SizesMovesAndSelectsColumnsByTheirTitles) {
    NSTableHeaderView* header = table->headerView();
    table->setFrameOrigin({0, -22});
    header->setFrameOrigin({0, 98});
    window->contentView()->addSubview(header);
    screen.turn();
    NSTableColumn* a = table->tableColumnWithIdentifier(u"a"_ns);
    screen.drag(header, {60, 10}, {75, 10});
    EXPECT_EQ(shown(a->width(), rows->take()), "75 resized ");
    screen.drag(header, {20, 10}, {105, 10});
    EXPECT_EQ(shown(table->columnWithIdentifier(u"a"_ns), rows->take()), "1 moved ");
    screen.click(header, {70, 10});
    EXPECT_EQ(shown(table->selectedColumn(), rows->take()), "-1 title a ");
    table->setAllowsColumnSelection(true);
    screen.click(header, {70, 10});
    EXPECT_EQ(shown(table->selectedColumn(), rows->take()), "1 changed title a ");
    table->setAllowsColumnResizing(false);
    screen.drag(header, {40, 10}, {90, 10});
    EXPECT_EQ(a->width(), 75);
}

}  // namespace
