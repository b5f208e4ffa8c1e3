// SPDX-License-Identifier: Apache-2.0
// WRNoticeBar: tells something in a window without keeping the user from going on.
#pragma once

#include <functional>
#include <vector>

#include "Interface/NSView.h"

namespace pelvor {

class NSButton;
class NSTextField;

/// A button of a notice.
struct NoticeChoice {
    NSString* title;
    std::function<void()> action;  ///< may be null: the button only takes the notice away
};

/// A strip with a sentence and buttons, as wide as the view that it is in. Each button takes the strip away
/// and calls its action. Where there are not two choices, there is a button "Close" besides. Main thread.
class WRNoticeBar : public NSView, NSView::HiddenCreators {
    PELVOR_CLASS(WRNoticeBar, NSView);

  public:
    // C++ only
    static Retained<WRNoticeBar> create(NSString* text, std::vector<NoticeChoice> choices, float width);
    /// Called by each button, before its action.
    void setEndFunction(std::function<void()> function) { _end = std::move(function); }
    /// The sentence.
    NSString* text();
    void setText(NSString* text);
    NSArray* buttons();

    void choose(NSButton* button);
    void setFrameSize(NSSize size) override;
    bool isFlipped() override { return true; }
    bool isOpaque() override { return true; }
    void drawRect(NSRect dirty) override;

  protected:
    WRNoticeBar() = default;
    ~WRNoticeBar();

  private:
    void place();

    Retained<NSTextField> _label;
    std::vector<Retained<NSButton>> _buttons;
    std::vector<std::function<void()>> _actions;
    std::function<void()> _end;
};

}  // namespace pelvor
