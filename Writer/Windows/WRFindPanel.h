// SPDX-License-Identifier: Apache-2.0
// WRFindPanel: the panel in which the user types what to find and what to put in its place.
#pragma once

#include "Runtime/WeakHandle.h"
#include "Writer/Windows/WRTextFinder.h"

namespace pelvor {

class NSButton;
class NSTextField;
class WRPageView;
class WRPalette;

/// Finds and replaces in the document of the main window, and says what happened. While the panel is open,
/// all places are marked in the document. The text to find is that of the find pasteboard, so that all
/// windows look for the same. Main thread.
class WRFindPanel : public NSObject {
    PELVOR_CLASS(WRFindPanel, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRFindPanel> init(Class* cls = classObject());

    /// Shows the panel, with all of the text to find selected.
    void orderFront(id sender);
    WRPalette* window() { return _panel; }
    /// What happened last, as the user sees it.
    NSString* message();
    /// The view of the document in the main window, borrowed; null if there is none.
    static WRPageView* pageView();

    // Commands. A search that finds nothing shows the panel, which says so.

    void findNext(id sender);
    void findPrevious(id sender);
    void replace(id sender);
    void replaceAndFind(id sender);
    void replaceAll(id sender);
    /// From now on the selected text is what is looked for.
    void useSelectionForFind(id sender);
    /// Scrolls the selection into the middle.
    void jumpToSelection(id sender);

    void windowWillClose(id notification);

  protected:
    WRFindPanel() = default;
    ~WRFindPanel();

  private:
    void makePanel();
    void show();
    void takePasteboard();
    void showQuery(NSString* text);
    NSString* textOfField(NSTextField* field);
    template <class Command>
    void perform(Command command);
    void tell(const FindResult& result);
    void showPlaces(WRPageView* view);

    Retained<WRTextFinder> _finder;
    Retained<WRPalette> _panel;
    Retained<NSTextField> _findField, _replacementField, _message;
    Retained<NSButton> _matchesCase, _wholeWords, _wraps, _escapes;
    WeakHandle _shown;                // the view that shows the places
    NSInteger _pasteboardCount = -1;  // of what the field shows
};

}  // namespace pelvor
