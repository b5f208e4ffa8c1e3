// SPDX-License-Identifier: Apache-2.0
// WRPrintPanel: the printer, the copies and the pages that the user wants.
#pragma once

#include <vector>

#include "Foundation/NSRange.h"
#include "Writer/Windows/PrintService.h"

namespace pelvor {

class NSPanel;
class NSPopUpButton;
class NSTextField;
class PageDocument;

/// The pages, of so many, that a text means: "3", "2-5", "7-", "-3", or "" for all. {NSNotFound, 0} if it
/// means none.
NSRange pagesOfText(NSString* text, NSUInteger count);

/// A panel in which the user chooses a printer, or a PDF file, and has pages printed. Main thread.
class WRPrintPanel : public NSObject {
    PELVOR_CLASS(WRPrintPanel, NSObject);

  public:
    // C++ only
    /// Prints pages of the document, which outlives the panel.
    static Retained<WRPrintPanel> create(PageDocument* document, NSString* title);

    /// Until pages were printed or the user cancels. Returns what happened, as a sentence for the user; null
    /// if nothing did.
    NSString* runModal();
    NSPanel* window() { return _panel; }
    /// The tag of the pop-up button with the printers.
    static constexpr int kPrinterTag = 1;
    NSString* outcome() { return _outcome; }
    /// Writes a PDF document of the pages to the path. Returns what happened.
    NSString* writePages(NSRange pages, NSString* path);

    void print(id sender);
    void cancel(id sender);

  protected:
    WRPrintPanel() = default;
    ~WRPrintPanel();

  private:
    void makePanel();
    NSString* pathFromUser();
    NSString* sendPages(NSRange pages, const PrintService::Printer& printer, unsigned copies);

    PageDocument* _document = nullptr;
    Retained<NSString> _title, _outcome;
    std::vector<PrintService::Printer> _printers;
    Retained<NSPanel> _panel;
    Retained<NSPopUpButton> _printer;
    Retained<NSTextField> _copies, _pages, _message;
};

}  // namespace pelvor
