// SPDX-License-Identifier: Apache-2.0
// PBAutoscrollingTableView: a table in which typing the first letters of a row selects the row.
#pragma once

#include "Interface/NSTableView.h"

namespace pelvor {

/// A table in which typed letters select, and show, the first row whose text begins with them, in the first
/// column from the left and without regard to upper and lower case. Letters that follow within one and a half
/// seconds continue the word; a command key such as an arrow, or a press of the mouse, begins a new one.
///
///     auto table = PBAutoscrollingTableView::initWithFrame({{0, 0}, {200, 300}});
///     table->setDelegate(names);                    // which is the data source, too
///     table->setAction("showName:"_sel);            // sent to the delegate when typing has selected a row
///
/// The rows' values come from the delegate, `tableView:objectValueForTableColumn:row:`. Values that are
/// neither strings nor attributed strings are never found. Main thread.
class PELVOR_EXPORT PBAutoscrollingTableView : public NSTableView {
    PELVOR_CLASS(PBAutoscrollingTableView, NSTableView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    /// Adds the text, a string or an attributed string, to the letters, or begins with it, and selects the
    /// row. Null does nothing; another object raises NSInvalidArgumentException.
    void insertText(id text) override;
    /// Selects the first row whose lower-case text in the column begins with the lower-case form of the
    /// prefix, shows the row, and sends the table's action to the delegate if the delegate has a method for
    /// it. Returns false, and changes nothing, if there is no such row. The empty prefix finds the first row
    /// that has a text. Raises NSInvalidArgumentException for null and NSRangeException for a column that
    /// does not exist.
    bool _selectRowWithPrefix_inColumn(NSString* prefix, int colIdx);

    void keyDown(NSEvent* event) override;
    void mouseDown(NSEvent* event) override;

    /// Commands that the table has no method for are keys that are no letters, too.
    void doCommandBySelector(SEL selector) override;

    // Keys that are no letters. Each forgets the letters and does what it does in every table.

    void moveUp(id sender);
    void moveDown(id sender);
    void moveToBeginningOfDocument(id sender);
    void moveToEndOfDocument(id sender);
    void pageUp(id sender);
    void pageDown(id sender);
    void insertNewline(id sender);
    void insertNewlineIgnoringFieldEditor(id sender);

  protected:
    PBAutoscrollingTableView() = default;
    ~PBAutoscrollingTableView() = default;

  private:
    void handOnCurrentEvent();

    Retained<NSString> _autoscrollTypingString;
    std::int32_t _autoscrollTypingTime = 0;  // by TickCount
};

}  // namespace pelvor
