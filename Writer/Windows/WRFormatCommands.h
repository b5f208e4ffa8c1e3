// SPDX-License-Identifier: Apache-2.0
// WRFormatCommands: the commands that change the formats of a document's text.
#pragma once

#include <functional>
#include <memory>
#include <span>

#include "Interface/NSResponder.h"
#include "Writer/Pages/StyleSheet.h"

namespace pelvor {

class NSColor;
class NSMutableAttributedString;
class NSMutableParagraphStyle;
class NSTextStorage;
class WRDocument;
class WRPageView;

/// Posted by format commands when they have changed formats of the text, or of what is typed next.
inline constexpr NSString* WRFormatsDidChangeNotification = u"WRFormatsDidChangeNotification"_ns;

/// Stands behind the window in the chain of responders and takes the commands of the Format menu, for the
/// text of the window's page view.
///
/// Commands that concern characters change the selected text or, without any, what is typed next; commands
/// that concern paragraphs change all that the selection touches. Each is one step to undo, named after the
/// menu item. The first one makes a plain document one with formats, but not before something is typed in
/// them; undoing that makes the document plain again.
///
/// Menu items show the state of the selection: checked, or with a dash where only part of it has the format.
/// They are disabled where the text cannot be edited. Main thread.
class WRFormatCommands : public NSResponder {
    PELVOR_CLASS(WRFormatCommands, NSResponder);

  public:
    // C++ only
    static Retained<WRFormatCommands> create(WRDocument* document, WRPageView* pageView,
                                             std::shared_ptr<const StyleSheet> sheet);
    /// Those of the window that the user works in, also while a palette has the keys; null if there is none.
    static WRFormatCommands* current();
    /// Sends "formatsDidChange:" to the object whenever these may be others, or their selection or its
    /// formats, until the notification centre is told to remove the observer.
    static void addObserverOfCurrent(id observer);

    using AttributeChange = std::function<Retained<NSDictionary>(NSDictionary* old)>;
    using StyleChange = std::function<void(NSMutableParagraphStyle* style)>;

    /// The sizes in points that menus and palettes offer, in ascending order.
    static std::span<const float> usualSizes();

    WRPageView* pageView() { return _pageView; }
    const StyleSheet& sheet() { return *_sheet; }
    bool canEdit();
    /// Of the first selected character, or of what is typed next. Borrowed.
    NSDictionary* currentAttributes();
    /// The style of the first paragraph of the selection, never null. Borrowed.
    NSParagraphStyle* currentParagraphStyle();
    /// Whether that paragraph runs from right to left.
    bool isRightToLeft();
    /// Does what commands do. The sender, a menu item or null, gives the name of the step to undo; null gives
    /// the name. A change that continues the step to undo before, which changed the same characters in the
    /// same way, belongs to that step.
    void changeCharacters(id sender, NSString* name, const AttributeChange& change,
                          bool continuesStep = false);
    void changeParagraphs(id sender, NSString* name, const StyleChange& change);
    /// Changes the colour of characters; null stands for that of the paragraph's style.
    void setTextColor(NSColor* color, bool continuesStep);

    /// Whether the document is one with formats; undoing takes the change back.
    void setDocumentHasFormats(bool hasFormats);
    /// Is called before the user types something.
    void textWillBeTyped();
    /// Is called when the user presses Return. At the end of a heading, that is of a paragraph whose style
    /// keeps it with the next one, begins a paragraph of plain text in one step to undo; else returns false.
    bool endHeading();

    // Commands. Senders are menu items; what the item stands for is in its tag or its represented object.

    void makeTextBigger(id sender);
    void makeTextSmaller(id sender);
    /// The represented object is an NSColor; null stands for the colour of the paragraph's style.
    void takeColorFrom(id sender);
    /// Sends `convertFont:` with each font of the text to the sender, a font palette.
    void changeFont(id sender);
    /// The tag is an NSTextAlignment.
    void alignParagraphs(id sender);
    /// The tag is the line height in hundredths.
    void takeLineSpacingFrom(id sender);
    void increaseIndent(id sender);
    void decreaseIndent(id sender);
    /// The represented object is the name of a style; null stands for no character style.
    void takeParagraphStyleFrom(id sender);
    void takeCharacterStyleFrom(id sender);
    void clearFormats(id sender);

    bool validateMenuItem(id item);
    bool validateTakeColorFrom(id item);
    bool validateAlignParagraphs(id item);
    bool validateTakeLineSpacingFrom(id item);
    bool validateDecreaseIndent(id item);
    bool validateTakeParagraphStyleFrom(id item);
    bool validateTakeCharacterStyleFrom(id item);

  protected:
    WRFormatCommands() = default;
    ~WRFormatCommands();

  private:
    template <unsigned trait>
    void toggleTrait(id sender);
    template <unsigned trait>
    bool validateToggleTrait(id item);
    template <NSString* const& key>
    void toggleLine(id sender);
    template <NSString* const& key>
    bool validateToggleLine(id item);

    NSRange selection();
    NSRange selectedParagraphs();
    void setParagraphStyle(id sender, NSString* name);
    NSUInteger placeInParagraph();
    template <class Has>
    int stateOf(NSRange range, const Has& has);
    bool showState(id item, int state);
    void changeSizes(id sender, bool isBigger);
    void moveIndents(id sender, float distance);
    bool edit(id sender, NSString* name, NSRange range,
              const std::function<void(NSTextStorage* text)>& change, bool continuesStep = false);
    void setTyping(NSDictionary* attributes);
    void chooseTyping(NSDictionary* attributes);

    Retained<WRDocument> _document;
    Retained<WRPageView> _pageView;
    std::shared_ptr<const StyleSheet> _sheet;
    // What the user has chosen for what is typed next, and what that would have been otherwise.
    Retained<NSDictionary> _chosenTyping, _usualTyping;
};

}  // namespace pelvor
