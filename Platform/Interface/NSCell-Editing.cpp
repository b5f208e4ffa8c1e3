// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Interface/NSCell.h"
#include "Interface/NSClipView.h"
#include "Interface/NSEvent.h"
#include "Interface/NSTextView.h"
#include "Interface/NSWindow.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"

namespace pelvor {

NSText* NSCell::setUpFieldEditorAttributes(NSText* text) {
    auto* view = cast<NSTextView>(text);
    if (!view) return text;
    setHighlighted(false);
    view->setFieldEditor(true);
    view->setRichText(false);
    view->setDrawsBackground(false);
    view->setEditable(_values.isEditable);
    view->setSelectable(true);
    view->setHorizontallyResizable(!wraps());
    view->setVerticallyResizable(wraps());
    view->setTypingAttributes(textAttributes());
    if (NSTextStorage* storage = view->textStorage())
        storage->setAttributes_range(textAttributes(), {0, storage->length()});
    if (NSTextContainer* container = view->textContainer()) {
        container->setLineFragmentPadding(0);
        container->setWidthTracksTextView(wraps());
        if (!wraps())
            container->setContainerSize(
                {NSTextContainer::kUnlimitedExtent, NSTextContainer::kUnlimitedExtent});
    }
    return text;
}

void NSCell::selectWithFrame_inView_editor_delegate_start_length(NSRect frame, NSView* view, NSText* editor,
                                                                 id delegate, int start, int length) {
    if (!view || !view->window() || !editor || !_values.isSelectable || _values.type != NSTextCellType)
        return;
    const auto self = Retained<NSCell>::retaining(this);
    const auto keptView = Retained<NSView>::retaining(view);
    const auto keptEditor = Retained<NSText>::retaining(editor);
    setControlView(view);
    editor->setDelegate(nullptr);
    editor->setString(stringValue());
    setUpFieldEditorAttributes(editor);
    NSRect place = titleRectForBounds(frame);
    if (!wraps()) place = lineRect(place, font()->defaultLineHeightForFont());
    auto clip = NSClipView::initWithFrame(place);
    clip->setDrawsBackground(false);
    editor->setMinSize(place.size);
    editor->setMaxSize({wraps() ? place.size.width : 1.0e7f, wraps() ? 1.0e7f : place.size.height});
    editor->setFrame({{0, 0}, place.size});
    clip->setDocumentView(editor);
    view->addSubview(clip);
    editor->setDelegate(delegate);
    if (!view->window() || !view->window()->makeFirstResponder(editor)) return endEditing(editor);
    const auto units = static_cast<int>(editor->string()->length());
    const int first = std::clamp(start, 0, units);
    editor->setSelectedRange(
        {static_cast<NSUInteger>(first), static_cast<NSUInteger>(std::clamp(length, 0, units - first))});
    view->setNeedsDisplay(true);
}

void NSCell::editWithFrame_inView_editor_delegate_event(NSRect frame, NSView* view, NSText* editor,
                                                        id delegate, NSEvent* event) {
    const auto keptEditor = Retained<NSText>::retaining(editor);
    const auto keptView = Retained<NSView>::retaining(view);
    selectWithFrame_inView_editor_delegate_start_length(frame, view, editor, delegate, 0, 0);
    if (event && event->type() == NSLeftMouseDown && editor && view && editor->isDescendantOf(view))
        editor->mouseDown(event);
}

void NSCell::endEditing(NSText* editor) {
    if (!editor) return;
    const auto keptEditor = Retained<NSText>::retaining(editor);
    editor->setDelegate(nullptr);
    const auto clip = Retained<NSView>::retaining(editor->superview());
    editor->removeFromSuperview();
    if (cast<NSClipView>(clip.get())) clip->removeFromSuperview();
}

}  // namespace pelvor
