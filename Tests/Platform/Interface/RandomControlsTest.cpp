// SPDX-License-Identifier: Apache-2.0
// Random events for controls and a table, whose data source, delegate and target change and end them.
#include "ActionTarget.h"
#include "Interface/NSButton.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSSegmentedControl.h"
#include "Interface/NSTableHeaderView.h"
#include "Interface/NSTextField.h"
#include "InterfaceScope.h"
#include "RandomSteps.h"
#include "TableRows.h"

namespace {

class RandomControls : public testing::Test {
  protected:
    int below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

    void build() {
        window = screen.window({{100, 100}, {400, 300}});
        NSView* content = window->contentView();
        rows = TableRows::of({"ant", "bee", "cat"});
        rows->whenAsked = [this] { act(60); };
        target->reaction = [this] { act(3); };
        table = NSTableView::initWithFrame({{0, 0}, {200, 200}});
        table->setAllowsMultipleSelection(below(2));
        table->setAllowsColumnSelection(below(2));
        addColumn(true);
        addColumn(false);
        table->setDelegate(rows);
        table->setDataSource(rows);
        auto scroll = NSScrollView::initWithFrame({{0, 0}, {200, 200}});
        scroll->setHasVerticalScroller(true);
        scroll->setDocumentView(table);
        content->addSubview(scroll);
        auto field = NSTextField::initWithFrame({{210, 20}, {100, 24}});
        auto button = NSButton::initWithFrame({{210, 60}, {100, 26}});
        auto segments = NSSegmentedControl::initWithFrame({{210, 100}, {150, 24}});
        segments->setSegmentCount(3);
        for (NSControl* control : std::initializer_list<NSControl*>{table, field, button, segments}) {
            control->setTarget(target);
            control->setAction("act:"_sel);
            if (control != table) content->addSubview(control);
        }
    }
    void addColumn(bool isText) {
        auto column = NSTableColumn::initWithIdentifier(u"c"_ns);
        if (!isText) {
            auto cell = NSButtonCell::init();
            cell->setButtonType(NSSwitchButton);
            column->setDataCell(cell);
        }
        table->addTableColumn(column);
    }

    // One time in so many, the program does something drastic.
    void act(int seldom) {
        if (below(seldom)) return;
        const auto kept = table;
        const NSInteger columns = table->numberOfColumns();
        switch (below(11)) {
            case 0:
                return rows->values.resize(static_cast<std::size_t>(below(300)),
                                           Retained<Object>(u"emu"_ns->copy()));
            case 1:
                return table->reloadData();
            case 2:
                return addColumn(below(2));
            case 3:
                if (columns)
                    table->removeTableColumn(
                        table->columns()[static_cast<std::size_t>(below(columns))].get());
                return;
            case 4:
                if (columns) table->moveColumn_toColumn(below(columns), below(columns));
                return;
            case 5:
                return table->setEnabled(below(4));
            case 6:
                return (void)table->abortEditing();
            case 7:
                if (columns && table->numberOfRows())
                    table->editColumn_row_withEvent_select(below(columns), below(table->numberOfRows()),
                                                           nullptr, true);
                return;
            case 8:
                if (below(4) == 0) window->close();
                return;
            case 9:
                throw NSException(NSGenericException, "");
            default: {
                NSArray* views = window->contentView()->subviews();
                if (views->count() && below(3) == 0)
                    static_cast<NSView*>(views->objectAtIndex(random() % views->count()))
                        ->removeFromSuperview();
            }
        }
    }

    PixelPoint anyPlace() {
        const PixelRect frame = screen.backend->frame(screen.number(window));
        return {frame.x + below(400), frame.y + below(300)};
    }
    void play() {
        constexpr unichar kKeys[] = {u'a',
                                     u' ',
                                     u'\t',
                                     u'\r',
                                     0x1B,
                                     NSUpArrowFunctionKey,
                                     NSDownArrowFunctionKey,
                                     NSPageDownFunctionKey,
                                     NSHomeFunctionKey,
                                     NSEndFunctionKey,
                                     NSDeleteCharacter};
        if (below(2))
            return screen.press(kKeys[static_cast<std::size_t>(below(std::size(kKeys)))],
                                below(3) ? 0u : std::uint32_t{NSShiftKeyMask});
        screen.backend->movePointer(anyPlace());
        for (int clicks = 1 + below(2); clicks > 0; --clicks) {
            screen.backend->pressButton(1);
            for (int i = below(3); i > 0; --i) screen.backend->movePointer(anyPlace());
            screen.backend->releaseButton(1);
        }
        screen.turn();
        if (below(4)) screen.clock.advance(1);
    }

    InterfaceScope screen;
    Retained<NSWindow> window;
    Retained<TableRows> rows;
    Retained<ActionTarget> target = make<ActionTarget>();
    Retained<NSTableView> table;
    std::mt19937 random{11};
};

TEST_F(RandomControls, StayWhole) {
    const LogSinkScope quiet([](const LogEntry&) {});
    for (int step = 0; step < randomSteps(4'000); ++step) {
        AutoreleasePool pool;
        if (!window || !window->isVisible() || window->contentView()->subviews()->count() < 3 ||
            step % 100 == 0) {
            if (window) window->close();
            build();
        }
        play();
        const NSUInteger last = table->selectedRowIndexes()->lastIndex();
        ASSERT_TRUE(last == NSNotFound || static_cast<NSInteger>(last) < table->numberOfRows()) << step;
        ASSERT_TRUE(table->editedColumn() < table->numberOfColumns()) << step;
        ASSERT_EQ(table->editedRow() >= 0, table->currentEditor() != nullptr) << step;
    }
}

}  // namespace
