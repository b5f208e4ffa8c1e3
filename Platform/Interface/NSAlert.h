// SPDX-License-Identifier: Apache-2.0
// NSAlert: a panel that tells the user something, or asks which of a few things to do.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSButton;
class NSImage;
class NSMutableArray;
class NSWindow;

/// Which button of an alert was pressed: the first, second, third, and so on. The buttons of NSRunAlertPanel
/// and of alerts made by the long creator have the numbers of the second kind.
enum : NSInteger {
    NSAlertFirstButtonReturn = 1000,
    NSAlertSecondButtonReturn = 1001,
    NSAlertThirdButtonReturn = 1002,

    NSAlertDefaultReturn = 1,
    NSAlertAlternateReturn = 0,
    NSAlertOtherReturn = -1,
    NSAlertErrorReturn = -2,  ///< nobody could be asked, or nobody can reply any more
};

/// A panel that tells the user something, or asks which of a few things to do:
///
///     auto alert = NSAlert::init();
///     alert->setMessageText(u"Save the changes to “Letter”?"_ns);
///     alert->addButtonWithTitle(u"Save"_ns);
///     alert->addButtonWithTitle(u"Cancel"_ns);
///     if (alert->runModal() == NSAlertFirstButtonReturn) save();
///
/// Return presses the first button. Escape presses the one that is called "Cancel" in the user's language, or
/// the only one. Main thread.
class PELVOR_EXPORT NSAlert : public NSObject {
    PELVOR_CLASS(NSAlert, NSObject);
    PELVOR_CREATORS(init, alertWithMessageText_defaultButton_alternateButton_otherButton_informativeText);

  public:
    static Retained<NSAlert> init(Class* cls = classObject());

    NSString* messageText() { return _messageText; }
    /// Copies the text, which stands above all else; null stands for "".
    void setMessageText(NSString* text);
    NSString* informativeText() { return _informativeText; }
    /// Copies the text, which explains the message; null stands for "".
    void setInformativeText(NSString* text);
    /// The picture beside the texts; null for none.
    NSImage* icon() { return _icon; }
    void setIcon(NSImage* icon);

    /// Adds a button to the left of those that there are, and returns it. Its tag is what `runModal` returns
    /// when it is pressed, at first the next NSAlert…ButtonReturn. Null stands for "OK".
    NSButton* addButtonWithTitle(NSString* title);
    /// The buttons in the order in which they were added.
    NSArray* buttons();

    /// Shows the alert until a button is pressed, and returns that button's tag. An alert without buttons
    /// gets an "OK" button. In a program without a display, where nobody can press a button, this logs the
    /// texts and returns NSAlertErrorReturn at once; when the display goes while the alert is shown, it
    /// returns NSAlertErrorReturn, too.
    NSInteger runModal();
    /// The panel while the alert runs, else null.
    NSWindow* window() { return _window; }
    /// What the buttons do.
    void buttonPressed(id button);

    // C++ only
    /// An alert with up to three buttons. Null as the first stands for "OK", as another one for no button.
    static Retained<NSAlert> alertWithMessageText_defaultButton_alternateButton_otherButton_informativeText(
        NSString* message, NSString* defaultButton, NSString* alternateButton, NSString* otherButton,
        NSString* informativeText, Class* cls = classObject());

  protected:
    NSAlert();
    ~NSAlert();

  private:
    Retained<NSString> _messageText, _informativeText;
    Retained<NSImage> _icon;
    Retained<NSMutableArray> _buttons;
    Retained<NSWindow> _window;
};

/// Shows an alert with the title and a formatted message, until one of its up to three buttons is pressed.
/// Returns NSAlertDefaultReturn, NSAlertAlternateReturn or NSAlertOtherReturn, or as `NSAlert::runModal`
/// where nobody can be asked. Null as the first button stands for "OK", as another one for no button. Raises
/// NSInvalidArgumentException if the format is null.
///
///     NSRunAlertPanel(u"Writer"_ns, u"“%@” cannot be read."_ns, nullptr, nullptr, nullptr, name);
template <class... A>
NSInteger NSRunAlertPanel(NSString* title, NSString* format, NSString* defaultButton,
                          NSString* alternateButton, NSString* otherButton, const A&... arguments) {
    return NSAlert::alertWithMessageText_defaultButton_alternateButton_otherButton_informativeText(
               title, defaultButton, alternateButton, otherButton,
               NSString::stringWithFormat(format, arguments...))
        ->runModal();
}

}  // namespace pelvor
