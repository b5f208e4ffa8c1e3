// SPDX-License-Identifier: Apache-2.0
// NSTextUndo: how one change of a text is undone.
#pragma once

#include "Foundation/NSAttributedString.h"

namespace pelvor {

/// What stood where, before a change by the user. A change can give what stands behind it in its paragraph
/// another paragraph style, so that the one it had is known, too.
class NSTextUndo : public NSObject {
    PELVOR_CLASS(NSTextUndo, NSObject);

  public:
    /// The text was about to take the place of `before`, and to have `newLength` units. `styleBehind` is the
    /// paragraph style of the next unit, or null.
    static Retained<NSTextUndo> change(NSUInteger location, Retained<NSAttributedString> before,
                                       NSUInteger newLength, id styleBehind);

    NSRange range() { return {_location, _newLength}; }
    NSAttributedString* before() { return _before; }
    id styleBehind() { return _styleBehind; }
    /// What is selected before the change, which undoing brings back, and after the change. Nothing at first.
    NSRange selectionBefore() { return _selectionBefore; }
    NSRange selectionAfter() { return _selectionAfter; }
    void setSelectionBefore(NSRange selection) { _selectionBefore = selection; }
    void setSelectionAfter(NSRange selection) { _selectionAfter = selection; }
    /// Takes a further change in, if that goes on where this one ended: typing, deleting backward, or
    /// deleting forward. False leaves everything as it is.
    bool absorb(NSRange range, NSAttributedString* before, NSUInteger newLength, id styleBehind);

  protected:
    NSTextUndo() = default;
    ~NSTextUndo() = default;

  private:
    NSUInteger _location = 0;
    NSUInteger _newLength = 0;
    Retained<NSAttributedString> _before;
    Retained<Object> _styleBehind;
    NSRange _selectionBefore, _selectionAfter;
};

}  // namespace pelvor
