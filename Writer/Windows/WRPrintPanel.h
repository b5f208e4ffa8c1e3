// SPDX-License-Identifier: Apache-2.0
// WRPrintPanel: the printer, the copies and the pages that the user wants.
#pragma once

#include <vector>

#include "Foundation/NSRange.h"
#include "Writer/Windows/PrintService.h"

namespace pelvor {

class NSButton;
class NSPopUpButton;
class NSTextField;
class PageDocument;
class WRPalette;

/// The pages, of so many, that a text means: "3", "2-5", "7-", "-3", or "" for all. {NSNotFound, 0} if it
/// means none.
NSRange pagesOfText(NSString* text, NSUInteger count);

/// A panel in which the user chooses a printer, or a PDF file, and has pages printed. The print service is
/// asked on another thread: the panel comes up at once and can be cancelled at any time. Main thread.
class WRPrintPanel : public NSObject {
    PELVOR_CLASS(WRPrintPanel, NSObject);

  public:
    // C++ only
    /// Prints pages of the document, which outlives the panel.
    static Retained<WRPrintPanel> create(PageDocument* document, NSString* title);

    /// Until pages were printed or the user cancels. Returns what happened, as a sentence for the user; null
    /// if nothing did.
    NSString* runModal();
    WRPalette* window() { return _panel; }
    /// What the panel says.
    NSString* message();
    /// The tags of the pop-up button with the printers, of the box for both sides of the paper, and of the
    /// field with the number of copies.
    static constexpr int kPrinterTag = 1, kTwoSidedTag = 2, kCopiesTag = 3;
    NSString* outcome() { return _outcome; }
    /// Writes a PDF document of the pages to the path. Returns what happened.
    NSString* writePages(NSRange pages, NSString* path);

    void print(id sender);
    /// The user has chosen a printer.
    void printerDidChange(id sender);
    void cancel(id sender);

  protected:
    WRPrintPanel() = default;
    ~WRPrintPanel();

  private:
    void makePanel();
    void findPrinters();
    void takePrinters(std::vector<Printer> printers, const PrintProblem& problem);
    const Printer* chosenPrinter();
    bool isForFile();
    NSString* pathFromUser();
    void sendPages(NSRange pages, const Printer& printer, unsigned copies);
    void finish(NSString* outcome);

    PageDocument* _document = nullptr;
    Retained<NSString> _title, _outcome;
    std::shared_ptr<PrintService::Flag> _gaveUp;  // the user has closed the panel
    bool _isLooking = true;                       // for printers
    std::vector<Printer> _printers;
    Retained<WRPalette> _panel;
    Retained<NSPopUpButton> _printer;
    Retained<NSTextField> _copies, _pages, _message;
    Retained<NSButton> _isTwoSided, _print;
};

}  // namespace pelvor
