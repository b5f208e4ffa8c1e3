// SPDX-License-Identifier: Apache-2.0
// NSButton: a push button, check box or radio button in a view.
#pragma once

#include "Interface/NSButtonCell.h"
#include "Interface/NSControl.h"

namespace pelvor {

/// A control that the user clicks. The blank clicks it too, where keys go to it, and its key equivalent
/// wherever keys go in the window. From a button that has the keys, the arrows to the left and right lead to
/// the next button beside it in the same view.
///
///     auto box = NSButton::initWithFrame({{20, 20}, {120, 20}});
///     box->setButtonType(NSSwitchButton);
///     box->setTitle(u"Justify"_ns);
///
/// The operations are those of NSButtonCell. Main thread.
class PELVOR_EXPORT NSButton : public NSControl {
    PELVOR_CLASS(NSButton, NSControl);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    static Class* cellClass() { return NSButtonCell::classObject(); }

    void setButtonType(NSButtonType type);
    NSString* title();
    virtual void setTitle(NSString* title);
    NSString* alternateTitle();
    void setAlternateTitle(NSString* title);
    NSAttributedString* attributedTitle();
    void setAttributedTitle(NSAttributedString* title);
    NSImage* image();
    void setImage(NSImage* image);
    NSImage* alternateImage();
    void setAlternateImage(NSImage* image);
    NSCellImagePosition imagePosition();
    void setImagePosition(NSCellImagePosition position);
    bool isBordered();
    void setBordered(bool isBordered);
    int state();
    void setState(int state);
    bool allowsMixedState();
    void setAllowsMixedState(bool allows);
    void setNextState();
    NSString* keyEquivalent();
    void setKeyEquivalent(NSString* key);
    NSUInteger keyEquivalentModifierMask();
    void setKeyEquivalentModifierMask(NSUInteger mask);
    void setPeriodicDelay_interval(float delay, float interval);

    bool acceptsFirstResponder() override;
    void keyDown(NSEvent* event) override;
    bool performKeyEquivalent(NSEvent* event) override;

  protected:
    NSButton() = default;
    ~NSButton() = default;

  private:
    NSButton* buttonBeside(bool isLeft);
    NSButtonCell* buttonCell() { return cast<NSButtonCell>(cell()); }
};

}  // namespace pelvor
