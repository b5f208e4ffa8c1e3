// SPDX-License-Identifier: Apache-2.0
// NSButtonCell: a push button, check box or radio button.
#pragma once

#include "Interface/NSActionCell.h"

namespace pelvor {

/// What a click does to a button, and how it looks.
enum NSButtonType : int {
    NSMomentaryLightButton = 0,
    NSPushOnPushOffButton = 1,  ///< looks pressed while it is on
    NSToggleButton = 2,         ///< shows its alternate title and image while it is on
    NSSwitchButton = 3,         ///< a check box
    NSRadioButton = 4,          ///< one of the buttons of a view with the same action
    NSMomentaryChangeButton = 5,
    NSOnOffButton = 6,
    NSMomentaryPushInButton = 7,  ///< a push button, which every button is at first
};

/// A button: a title or an image or both, on a face that can be pressed, or beside a mark. Its value is its
/// state as a number.
///
///     auto cell = NSButtonCell::initTextCell(u"Justify"_ns);
///     cell->setButtonType(NSSwitchButton);
///     cell->setState(NSOnState);
///
/// Main thread.
class PELVOR_EXPORT NSButtonCell : public NSActionCell {
    PELVOR_CLASS(NSButtonCell, NSActionCell);
    PELVOR_INHERITED_CREATORS(init, initTextCell, initImageCell);

  public:
    NSButtonType buttonType() { return _button.type; }
    void setButtonType(NSButtonType type);

    NSString* title() override { return _button.title; }
    /// Copies the title, in the place of an attributed one; null stands for "".
    void setTitle(NSString* title) override;
    /// The title with the attributes that it is drawn with.
    NSAttributedString* attributedTitle();
    /// Null leaves the plain title.
    void setAttributedTitle(NSAttributedString* title);
    /// What a button that toggles is called while it is on; "" for no other title.
    NSString* alternateTitle() { return _button.alternateTitle; }
    void setAlternateTitle(NSString* title);
    NSImage* alternateImage() { return _button.alternateImage; }
    /// The image of a button that toggles or changes while it is on or held down; null for no other image.
    void setAlternateImage(NSImage* image);
    /// Puts the image beside the title if there was none.
    void setImage(NSImage* image) override;
    NSCellImagePosition imagePosition() { return _button.imagePosition; }
    void setImagePosition(NSCellImagePosition position);

    /// The key that clicks the button, with the modifiers of the mask; "" for none. A button whose key is
    /// "\r" looks like the one that is meant.
    NSString* keyEquivalent() override { return _button.keyEquivalent; }
    void setKeyEquivalent(NSString* key);
    NSUInteger keyEquivalentModifierMask() { return _button.keyEquivalentModifiers; }
    void setKeyEquivalentModifierMask(NSUInteger mask) { _button.keyEquivalentModifiers = mask; }

    /// A radio button is switched on, and the other ones with its action in the same view off. A push button
    /// keeps its state.
    void setNextState() override;

    // The value is the state.

    id objectValue() override;
    void setObjectValue(id value) override;

    /// Sets how long a continuous button is held before it sends its action again, and how often it does
    /// then, in seconds. At first 0.4 and 0.075.
    void setPeriodicDelay_interval(float delay, float interval);
    void getPeriodicDelay_interval(float* delay, float* interval) override;

    NSSize cellSizeForBounds(NSRect bounds) override;
    NSRect titleRectForBounds(NSRect bounds) override;
    NSRect imageRectForBounds(NSRect bounds) override;
    void drawWithFrame_inView(NSRect frame, NSView* view) override;
    void drawInteriorWithFrame_inView(NSRect frame, NSView* view) override;
    /// The face of a button with a border.
    virtual void drawBezelWithFrame_inView(NSRect frame, NSView* view);
    virtual void drawImage_withFrame_inView(NSImage* image, NSRect frame, NSView* view);
    /// Returns the part of the frame that the title covers.
    virtual NSRect drawTitle_withFrame_inView(NSAttributedString* title, NSRect frame, NSView* view);

    // C++ only

    NSColor* effectiveTextColor() override;

  protected:
    NSButtonCell();
    ~NSButtonCell() = default;

    void takeProperties(NSCell* other) override;
    /// Where the contents go that are laid out beside each other.
    struct Parts {
        NSRect mark, image, title;
    };
    virtual Parts partsInFrame(NSRect frame);
    /// The title and image that are to be seen now.
    id shownTitle();
    NSImage* shownImage();

  private:
    bool hasMark() { return _button.type == NSSwitchButton || _button.type == NSRadioButton; }
    bool isDefault();
    bool looksPressed();
    void drawMark(NSRect place);

    struct ButtonValues {
        NSButtonType type = NSMomentaryPushInButton;
        NSCellImagePosition imagePosition = NSNoImage;
        NSUInteger keyEquivalentModifiers = 0;
        float periodicDelay = 0.4f, periodicInterval = 0.075f;
        Retained<NSString> title, alternateTitle, keyEquivalent;
        Retained<NSAttributedString> attributedTitle;
        Retained<NSImage> alternateImage;
    };
    ButtonValues _button;
};

}  // namespace pelvor
