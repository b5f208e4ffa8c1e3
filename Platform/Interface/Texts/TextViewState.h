// SPDX-License-Identifier: Apache-2.0
// TextViewState: what a text view remembers.
#pragma once

#include <algorithm>
#include <limits>

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSTimer.h"
#include "Interface/NSEvent.h"
#include "Interface/NSTextView.h"
#include "Interface/Texts/ShownLines.h"
#include "Interface/Texts/TextPlaces.h"
#include "Interface/Texts/TextUndo.h"
#include "Text/NSColor.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"

namespace pelvor {

/// A place in a text, and on which of its two lines a caret there stands.
struct CaretPlace {
    NSUInteger index = 0;
    NSSelectionAffinity affinity = NSSelectionAffinityDownstream;
};

inline constexpr float kNoColumn = -std::numeric_limits<float>::infinity();

struct TextViewState {
    // The storage keeps the layout manager, which keeps its containers.
    Retained<NSTextStorage> storage;
    Retained<NSLayoutManager> layoutManager;
    NSSize inset{};

    // Selection
    NSRange selection{};
    NSSelectionAffinity affinity = NSSelectionAffinityDownstream;
    NSSelectionGranularity granularity = NSSelectByCharacter;
    NSUInteger fixedEnd = NSNotFound;  // of a selection that keys extend
    float column = kNoColumn;          // x of a caret that moves up and down
    Retained<NSColor> caretColor, selectionColor;

    // Editing
    Retained<NSDictionary> typingAttributes;  // null: those of the text at the selection
    Retained<NSDictionary> emptyAttributes;   // those of a text without characters
    NSRange marked{NSNotFound, 0};
    Retained<NSTextUndo> lastUndo;  // which goes on growing while the user types
    Retained<NSTextUndo> undone;    // while it is being taken back
    bool allowsUndo = true;
    bool hasBegunEditing = false;

    // Mouse
    NSRange mouseAnchor{};     // what was selected when the button went down
    NSPoint mouseDown{};       // in the view
    bool isSelecting = false;  // the button is down
    bool mayDrag = false;      // it went down in the selection
    NSUInteger dropIndex = NSNotFound;
    Retained<NSTimer> autoscroll;
    Retained<NSEvent> lastDrag;

    // What is on the screen
    ShownLines shown;
    NSRect preparedRect{};  // what was visible when the lines were compared last
    NSRect shownCaret{};
    bool needsPreparing = true;
    bool isPreparing = false;
    bool isCaretOn = true;
    bool takesText = false;  // an input method knows where the caret is
    Unretained<NSWindow> observedWindow = nullptr;
    Retained<NSTimer> blink;
    double lastChange = 0;  // the moment of the last key or click

    TextPlaces places{nullptr};

    NSUInteger length() const { return storage ? storage->length() : 0; }
    NSUInteger clamped(NSUInteger index) const { return std::min(index, length()); }
    NSRange clamped(NSRange range) const {
        const NSUInteger start = clamped(range.location);
        return {start, std::min(range.length, length() - start)};
    }
};

// Calls the function with each container that the rectangle touches, its origin, and the part in its
// coordinates.
template <class Function>
void NSTextView::eachContainerIn(NSRect rect, const Function& function) {
    const Retained<NSLayoutManager> layout = _state->layoutManager;
    const NSRange near = indexesOfTextContainersNearRect(rect);
    // The function may lay out, with which containers come and go.
    for (NSUInteger i = near.location; i < std::min(NSMaxRange(near), layout->textContainerCount()); ++i) {
        const auto container = Retained<NSTextContainer>::retaining(layout->textContainerAtIndex(i));
        const NSPoint origin = originOfTextContainer(container);
        // The text may stand out at the sides, as italics do.
        const float top = std::max(NSMinY(rect) - origin.y, 0.0F);
        const float bottom = std::min(NSMaxY(rect) - origin.y, container->containerSize().height);
        if (top < bottom)
            function(container, origin, NSRect{{0, top}, {container->containerSize().width, bottom - top}});
    }
}

}  // namespace pelvor
