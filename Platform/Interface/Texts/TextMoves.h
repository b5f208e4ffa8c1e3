// SPDX-License-Identifier: Apache-2.0
// TextMove: the ways of a caret.
#pragma once

namespace pelvor {

/// Where a caret goes. Left and right are seen, forward and backward are in the order of the text.
enum class TextMove : int {
    left,
    right,
    up,
    down,
    forward,
    backward,
    wordLeft,
    wordRight,
    wordForward,
    wordBackward,
    lineBeginning,
    lineEnd,
    lineLeft,
    lineRight,
    paragraphBeginning,
    paragraphEnd,
    paragraphForward,   ///< to the paragraph's end, or from there to the next one's
    paragraphBackward,  ///< to the paragraph's beginning, or from there to the one's before
    documentBeginning,
    documentEnd,
    pageUp,
    pageDown,
};

}  // namespace pelvor
