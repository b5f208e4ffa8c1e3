// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSTextView.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/Message.h"

namespace pelvor {

NSText* NSWindow::fieldEditor_forObject(bool create, id object) {
    const auto delegate = _state->delegate.object();
    const SEL question = "windowWillReturnFieldEditor:toObject:"_sel;
    if (delegate && delegate->respondsToSelector(question))
        if (auto* own = cast<NSText>(send<id>(delegate, question, this, object))) return own;
    if (!_state->fieldEditor && create) {
        auto editor = NSTextView::initWithFrame({});
        editor->setFieldEditor(true);
        _state->fieldEditor = editor;
    }
    return cast<NSText>(_state->fieldEditor.get());
}

void NSWindow::endEditingFor(id object) {
    const auto held = Retained<NSWindow>::retaining(this);
    const auto editor = Retained<NSText>::retaining(fieldEditor_forObject(false, object));
    if (!editor || (object && editor->delegate() != object)) return;
    // A delegate that wants to go on editing is asked, and then not heeded.
    if (firstResponder() == editor && !makeFirstResponder(nullptr)) {
        editor->setDelegate(nullptr);
        makeFirstResponder(nullptr);
    }
    editor->setDelegate(nullptr);
    editor->removeFromSuperview();
}

}  // namespace pelvor
