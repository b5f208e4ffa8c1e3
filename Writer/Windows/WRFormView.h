// SPDX-License-Identifier: Apache-2.0
// WRFormView: the contents of a panel in which the user fills in fields.
#pragma once

#include <vector>

#include "Interface/NSView.h"

namespace pelvor {

class NSArray;
class NSButton;
class NSPopUpButton;
class NSTextField;
class WRPalette;

/// Rows of labels and controls, one below the other, and push buttons at the bottom. Labels are as wide as
/// the widest one needs, and everything is mirrored for languages that are written from right to left:
///
///     auto form = WRFormView::create(this, 260);
///     _name = form->addField(u"Name:"_ns);
///     form->addButton(u"OK"_ns, "accept:"_sel)->setKeyEquivalent(u"\r"_ns);
///     _panel = form->panelWithTitle(u"New Style"_ns);
///
/// Escape presses the button whose key it is, or else closes the window. Main thread.
class WRFormView : public NSView, NSView::HiddenCreators {
    PELVOR_CLASS(WRFormView, NSView);

  public:
    // C++ only
    /// Actions are sent to the target, which is not kept. The fields are at least so wide.
    static Retained<WRFormView> create(id target, float fieldWidth);

    // What is returned is borrowed; the view keeps it.

    NSTextField* addField(NSString* label);
    // Actions of pop-up buttons and boxes may be null.

    NSPopUpButton* addPopUp(NSString* label, NSArray* titles, SEL action);
    /// A view of the caller's own, which is made as wide as the fields.
    void addView(NSString* label, Retained<NSView> view);
    NSButton* addCheckBox(NSString* title, SEL action = {});
    /// A line over the whole width for what happened, at first empty.
    NSTextField* addMessage();
    /// From the right to the left.
    NSButton* addButton(NSString* title, SEL action);

    /// A panel with a title bar and these contents, in the middle of the screen, not shown yet, in which the
    /// first control will have the keys. Nothing is added any more.
    Retained<WRPalette> panelWithTitle(NSString* title);

    bool isFlipped() override { return true; }
    bool performKeyEquivalent(NSEvent* event) override;

  protected:
    WRFormView() = default;
    ~WRFormView();

  private:
    struct Row {
        Retained<NSTextField> label;  // null where there is none
        Retained<NSView> control;
        bool isWide = false;  // begins where labels do
    };

    template <class Control>
    Control* add(NSString* label, Retained<Control> control, bool isWide = false);
    void layOut();

    id _target = nullptr;
    float _fieldWidth = 0;
    std::vector<Row> _rows;
    std::vector<Retained<NSButton>> _buttons;
};

}  // namespace pelvor
