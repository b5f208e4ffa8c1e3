// SPDX-License-Identifier: Apache-2.0
#include "PBAutoscrollingTableView.h"

#include "Foundation/NSAttributedString.h"
#include "InterfaceScope.h"
#include "NSTableView-PelvorAdditions.h"
#include "TableRows.h"

namespace {

class TypingTest : public testing::Test {
  protected:
    TypingTest() {
        auto column = NSTableColumn::initWithIdentifier(u"name"_ns);
        column->setEditable(false);
        table->addTableColumn(column);
        table->setIntercellSpacing({0, 0});
        table->setDelegate(rows);
        table->setDataSource(rows);
        table->setAction("act:"_sel);
        table->setDoubleAction("open:"_sel);
        table->setTarget(rows);
        window->contentView()->addSubview(table);
        window->makeFirstResponder(table);
        screen.turn();
    }
    // The row that typing leads to.
    NSInteger typed(std::u16string_view text) {
        screen.type(text);
        return table->selectedRow();
    }

    InterfaceScope screen;
    Retained<NSWindow> window = screen.window({{100, 100}, {200, 120}});
    Retained<TableRows> rows = TableRows::of({"Ant", "bear", "BOAR", "boa", "Owl", "ox"});
    Retained<PBAutoscrollingTableView> table = PBAutoscrollingTableView::initWithFrame({{0, 0}, {200, 120}});
};

TEST_F(TypingTest, JoinsLettersThatFollowQuickly) {
    EXPECT_EQ(typed(u"b"), 1);
    screen.clock.advance(89.0 / 60);
    EXPECT_EQ(typed(u"O"), 2) << "89 ticks later, in capitals";
    screen.clock.advance(89.0 / 60);
    EXPECT_EQ(typed(u"a"), 2);
    screen.clock.advance(1.5);
    EXPECT_EQ(typed(u"o"), 4) << "90 ticks later";
    EXPECT_EQ(typed(u"z"), 4) << "no row, no change";
}

TEST_F(TypingTest, BeginsAgainAfterOtherKeysAndPressesOfTheMouse) {
    typed(u"b");
    screen.press(NSDownArrowFunctionKey);
    EXPECT_EQ(table->selectedRow(), 2) << "what the key does in every table";
    EXPECT_EQ(typed(u"o"), 4);
    screen.backend->movePointer(screen.placeOf(table, {10, 10}));
    screen.backend->pressButton(1);
    screen.backend->releaseButton(1);
    screen.turn();
    EXPECT_EQ(table->selectedRow(), 0);
    EXPECT_EQ(typed(u"o"), 4);
    struct Row {
        unichar key;
        NSInteger row;
    };
    for (const Row& row : {Row{NSHomeFunctionKey, 0},
                           {NSEndFunctionKey, 5},
                           {NSUpArrowFunctionKey, 4},
                           {NSPageUpFunctionKey, 0},
                           {NSPageDownFunctionKey, 5}}) {
        screen.press(row.key);
        EXPECT_EQ(table->selectedRow(), row.row) << int{row.key};
    }
    rows->take();
    screen.press(NSCarriageReturnCharacter);
    EXPECT_EQ(rows->take(), "open ");
}

TEST_F(TypingTest, TellsTheDelegateAndNotTheTarget) {
    auto target = TableRows::of({});
    table->setTarget(target);
    rows->take();
    typed(u"o");
    EXPECT_EQ(rows->take() + "/" + target->take(), "changed act /");
    table->setAction("nobodyHasThis:"_sel);
    typed(u"w");
    EXPECT_EQ(table->selectedRow(), 4);
    auto others = TableRows::of({"wren"});
    table->setDataSource(others);
    screen.clock.advance(9);
    table->insertText(NSAttributedString::initWithString(u"a"_ns).get());
    EXPECT_EQ(table->selectedRow(), 0) << "the delegate's rows are searched";
    table->removeTableColumn(table->columns()[0].get());
    screen.clock.advance(9);
    EXPECT_EQ(typed(u"o"), 0) << "no column";
}

TEST_F(TypingTest, FindsTheFirstTextThatBeginsWithThePrefix) {
    const auto add = [&](id value) { rows->values.push_back(Retained<Object>::retaining(value)); };
    rows->values.clear();
    add(NSNumber::numberWithInt(7));
    add(nullptr);
    add(NSAttributedString::initWithString(u"Marked"_ns).get());
    add(u"\u00C4pfel"_ns);
    add(u"\u0130zmir"_ns);
    auto mutableText = NSMutableString::init();
    mutableText->appendString(u"Changing"_ns);
    add(mutableText);
    table->reloadData();
    expectAll({"m -> 1 2", "marked -> 1 2", "markedly -> 0 -1", "7 -> 0 -1", "\u00E4 -> 1 3",
               "\u00C4P -> 1 3", "a -> 0 -1", "i -> 1 4", "CHANG -> 1 5", " -> 1 2"},
              [&](const std::string& prefix) {
                  table->deselectAll(nullptr);
                  const bool isFound = table->_selectRowWithPrefix_inColumn(NSString::ofUTF8(prefix), 0);
                  return shown(isFound, table->selectedRow());
              });
    EXPECT_EQ(RAISED(table->_selectRowWithPrefix_inColumn(u"a"_ns, 1)),
              "NSRangeException: _selectRowWithPrefix:inColumn: index (1) beyond bounds (1)");
    EXPECT_EQ(
        RAISED(table->insertText(NSNumber::numberWithInt(1))),
        "NSInvalidArgumentException: insertText: the text is neither a string nor an attributed string");
}

TEST_F(TypingTest, SurvivesDelegatesThatChangeTheTable) {
    rows->whenAsked = [&] {
        rows->whenAsked = nullptr;
        rows->values.clear();
        table->reloadData();
    };
    EXPECT_EQ(typed(u"x"), -1);
    rows->values.push_back(Retained<Object>::retaining(u"xylophone"_ns));
    table->reloadData();
    rows->whenAsked = [&] { table->removeFromSuperview(); };
    table->insertText(u"x"_ns);
    rows = nullptr;
    table->insertText(u"x"_ns);
}

TEST_F(TypingTest, SwitchesTheTableOrAColumnOff) {
    table->selectRow_byExtendingSelection(2, false);
    NSTableColumn* column = table->columns()[0];
    const auto state = [&] {
        return shown(table->isEnabled(), column->dataCell()->isEnabled(), column->headerCell()->isEnabled(),
                     table->selectedRow());
    };
    setTableColumn_isEnabled(table, column, false);
    EXPECT_EQ(state(), "1 0 0 2");
    setTableViewEnabled(table, true);
    EXPECT_EQ(state(), "1 1 1 2");
    setTableViewEnabled(table, false);
    EXPECT_EQ(state(), "0 0 0 -1");
    screen.click(table, {10, 10});
    EXPECT_EQ(typed(u"b"), -1);
    setTableViewEnabled(table, true);
    EXPECT_EQ(state(), "1 1 1 -1");
    EXPECT_EQ(RAISED(setTableColumn_isEnabled(table, nullptr, true)),
              "NSInvalidArgumentException: setTableColumn:isEnabled: the column is null");
}

}  // namespace
