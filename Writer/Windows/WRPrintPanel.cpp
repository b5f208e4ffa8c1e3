// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRPrintPanel.h"

#include <cerrno>
#include <utility>

#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSScanner.h"
#include "Interface/NSApplication.h"
#include "Interface/NSButton.h"
#include "Interface/NSMenu.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSSavePanel.h"
#include "Interface/NSTextField.h"
#include "Writer/LocalizedText.h"
#include "Writer/Pages/PagePDF.h"
#include "Writer/Windows/WRBackgroundTask.h"
#include "Writer/Windows/WRFormView.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr int kMostCopies = 999;

// The number that the text is; 0 if it is none above 0.
int numberOf(NSString* text) {
    auto scanner = NSScanner::scannerWithString(text);
    int number = 0;
    return scanner->scanInt(&number) && scanner->isAtEnd() && number > 0 ? number : 0;
}

// Why something could not be had from the print service, as a clause for the user.
NSString* reasonOf(const PrintProblem& problem) {
    switch (problem.kind) {
        case PrintProblem::Kind::noService:
            return localized(u"_no print service is installed"_ns);
        case PrintProblem::Kind::noPrinter:
            return localized(u"_it is not there any more"_ns);
        case PrintProblem::Kind::noAnswer:
            return localized(u"_the print service does not answer"_ns);
        case PrintProblem::Kind::unclear:
            return localized(u"_what the print service answers makes no sense"_ns);
        default:
            break;
    }
    NSString* text = problem.text;  // a sentence
    return text->hasSuffix(u"."_ns) ? text->substringToIndex(text->length() - 1) : text;
}

}  // namespace

NSRange pagesOfText(NSString* text, NSUInteger count) {
    constexpr NSRange kNone{NSNotFound, 0};
    NSArray* ends = text->componentsSeparatedByString(u"-"_ns);
    if (ends->count() > 2) return kNone;
    const auto end = [&](NSUInteger index, NSUInteger open) {
        auto* part = static_cast<NSString*>(ends->objectAtIndex(index));
        return part->length() == 0 ? open : static_cast<NSUInteger>(numberOf(part));
    };
    const NSUInteger first = end(0, 1), last = ends->count() == 2 ? end(1, count)
                                               : text->length()   ? first
                                                                  : count;
    return first == 0 || last < first || last > count ? kNone : NSRange{first - 1, last - first + 1};
}

WRPrintPanel::~WRPrintPanel() = default;

PELVOR_DEFINE_CLASS(WRPrintPanel, windowsLibrary) {
    methods.instance<"runModal", &WRPrintPanel::runModal>();
    methods.instance<"window", &WRPrintPanel::window>();
    methods.instance<"outcome", &WRPrintPanel::outcome>();
    methods.instance<"message", &WRPrintPanel::message>();
    methods.instance<"print:", &WRPrintPanel::print>();
    methods.instance<"printerDidChange:", &WRPrintPanel::printerDidChange>();
    methods.instance<"cancel:", &WRPrintPanel::cancel>();
}

Retained<WRPrintPanel> WRPrintPanel::create(PageDocument* document, NSString* title) {
    auto self = make<WRPrintPanel>();
    self->_document = document;
    self->_title = title->copy();
    self->_gaveUp = std::make_shared<PrintService::Flag>(false);
    self->makePanel();
    self->findPrinters();
    return self;
}

void WRPrintPanel::makePanel() {
    constexpr float kFieldWidth = 280;
    auto form = WRFormView::create(this, kFieldWidth);
    NSArray* choices = NSArray::of({localized(u"_Looking for printers…"_ns), localized(u"_PDF file…"_ns)});
    _printer.set(form->addPopUp(localized(u"_Printer:"_ns), choices, "printerDidChange:"_sel));
    _printer->setTag(kPrinterTag);
    _copies.set(form->addField(localized(u"_Copies:"_ns)));
    _copies->setTag(kCopiesTag);
    _copies->setStringValue(u"1"_ns);
    _pages.set(form->addField(localized(u"_Pages (empty for all):"_ns)));
    _isTwoSided.set(form->addCheckBox(localized(u"_Print on both sides"_ns)));
    _isTwoSided->setTag(kTwoSidedTag);
    _message.set(form->addMessage());
    _message->setStringValue(localized(u"_All pages, or some: 3, 2-5, 7-"_ns));
    _print.set(form->addButton(localized(u"_Print"_ns), "print:"_sel));
    _print->setKeyEquivalent(u"\r"_ns);
    form->addButton(localized(u"_Cancel"_ns), "cancel:"_sel)->setKeyEquivalent(u"\x1b"_ns);
    _panel = form->panelWithTitle(localized(u"_Print"_ns));
    _panel->setInitialFirstResponder(_pages);
    printerDidChange(nullptr);
}

NSString* WRPrintPanel::message() { return _message->stringValue(); }

// MARK: Printers

void WRPrintPanel::findPrinters() {
    struct Found {
        std::vector<Printer> printers;
        PrintProblem problem;
    };
    auto found = std::make_shared<Found>();
    const auto self = Retained<WRPrintPanel>::retaining(this);
    WRBackgroundTask::start(
        [found, service = PrintService::shared(), gaveUp = _gaveUp] {
            found->problem = service->findPrinters(found->printers, *gaveUp);
        },
        [found, self] {
            if (!*self->_gaveUp) self->takePrinters(std::move(found->printers), found->problem);
        });
}

// What the user has chosen meanwhile stays.
void WRPrintPanel::takePrinters(std::vector<Printer> printers, const PrintProblem& problem) {
    const bool hasChosen = _printer->indexOfSelectedItem() > 0;
    _isLooking = false;
    _printers = std::move(printers);
    _printer->removeAllItems();
    NSInteger selected = 0;
    // The button itself would take the place of an item with the same title, and the places of printers
    // count.
    const auto add = [menu = _printer->menu()](NSString* title) {
        menu->addItemWithTitle_action_keyEquivalent(title, SEL(), u""_ns);
    };
    for (const Printer& printer : _printers) {
        if (printer.isDefault) selected = _printer->numberOfItems();
        // Two printers may have one title.
        add(_printer->indexOfItemWithTitle(printer.title) < 0 ? printer.title : printer.name);
    }
    add(localized(u"_PDF file…"_ns));
    _printer->selectItemAtIndex(hasChosen ? _printer->numberOfItems() - 1 : selected);
    if (problem)
        _message->setStringValue(localizedFormat(u"_No printers: %@."_ns, reasonOf(problem)));
    else if (_printers.empty())
        _message->setStringValue(localized(u"_No printers were found."_ns));
    printerDidChange(nullptr);
}

// Null stands for a PDF file, and for none yet.
const Printer* WRPrintPanel::chosenPrinter() {
    const auto index = static_cast<std::size_t>(_printer->indexOfSelectedItem());
    return index < _printers.size() ? &_printers[index] : nullptr;
}

// That choice is the last one.
bool WRPrintPanel::isForFile() { return _printer->indexOfSelectedItem() == _printer->numberOfItems() - 1; }

void WRPrintPanel::printerDidChange(id) {
    const Printer* printer = chosenPrinter();
    _isTwoSided->setEnabled(printer && printer->canPrintTwoSided);
    _isTwoSided->setState(printer && printer->isTwoSided ? NSOnState : NSOffState);
    _copies->setEnabled(!isForFile());
}

// MARK: Running

NSString* WRPrintPanel::runModal() {
    const auto alive = Retained<WRPrintPanel>::retaining(this);
    _outcome = nullptr;
    NSApplication::sharedApplication()->runModalForWindow(_panel);
    cancel(nullptr);  // it may have ended in another way, with the display
    return _outcome ? _outcome->copy().autorelease() : nullptr;
}

void WRPrintPanel::cancel(id) {
    *_gaveUp = true;
    NSApplication* application = NSApplication::sharedApplication();
    if (application->modalWindow() == _panel) application->stopModal();
    _panel->orderOut(nullptr);
}

void WRPrintPanel::finish(NSString* outcome) {
    _outcome.set(outcome);
    cancel(nullptr);
}

// MARK: Printing

void WRPrintPanel::print(id) {
    const auto alive = Retained<WRPrintPanel>::retaining(this);
    if (_isLooking && !isForFile())
        return _message->setStringValue(localized(u"_Printers are still being looked for."_ns));
    const int copies = isForFile() ? 1 : numberOf(_copies->stringValue());
    if (copies == 0 || copies > kMostCopies)
        return _message->setStringValue(
            localizedFormat(u"_The number of copies is between 1 and %d."_ns, kMostCopies));
    const NSUInteger count = _document->pageCount();
    const NSRange pages = pagesOfText(_pages->stringValue(), count);
    if (pages.length == 0)
        return _message->setStringValue(
            localizedFormat(u"_The document has %u pages; choose some of them: 3, 2-5, 7-"_ns, count));
    if (const Printer* printer = chosenPrinter())
        return sendPages(pages, *printer, static_cast<unsigned>(copies));
    if (NSString* path = pathFromUser()) finish(writePages(pages, path));
}

NSString* WRPrintPanel::pathFromUser() {
    NSSavePanel* panel = NSSavePanel::savePanel();
    panel->setRequiredFileType(u"pdf"_ns);
    NSString* name = _title->stringByDeletingPathExtension()->stringByAppendingPathExtension(u"pdf"_ns);
    return panel->runModalForDirectory_file(nullptr, name) == NSOKButton ? panel->filename() : nullptr;
}

NSString* WRPrintPanel::writePages(NSRange pages, NSString* path) {
    NSString* reason = nullptr;
    NSData* pdf = pdfOfPages(*_document, _title, pages, &reason);
    if (pdf && !pdf->writeToFile_atomically(path, true)) {
        const int code = errno;
        pdf = nullptr;
        reason = NSFileError::errorWithCode_path_isWriting(code, path, true)->localizedReason();
    }
    if (!pdf) return localizedFormat(u"_The document \"%@\" could not be written: %@."_ns, path, reason);
    return localizedFormat(u"_Written to \"%@\"; pages: %u"_ns, path, pages.length);
}

void WRPrintPanel::sendPages(NSRange pages, const Printer& printer, unsigned copies) {
    const auto refused = [title = printer.title](NSString* reason) {
        return localizedFormat(u"_Nothing was printed: the printer \"%@\" took no document: %@."_ns,
                               title.get(), reason);
    };
    NSString* reason = nullptr;
    NSData* pdf = pdfOfPages(*_document, _title, pages, &reason);
    if (!pdf) return finish(refused(reason));
    struct Sending {
        PrintJob job;
        int number = 0;
        PrintProblem problem;
    };
    auto sending = std::make_shared<Sending>();
    sending->job = {printer.name,
                    _title,
                    Retained<NSData>::retaining(pdf),
                    _document->frame().paper,
                    copies,
                    _isTwoSided->state() == NSOnState};
    _print->setEnabled(false);
    _message->setStringValue(localizedFormat(u"_Sending to the printer \"%@\"…"_ns, printer.title.get()));
    const auto self = Retained<WRPrintPanel>::retaining(this);
    WRBackgroundTask::start(
        [sending, service = PrintService::shared(), gaveUp = _gaveUp] {
            sending->problem = service->print(sending->job, sending->number, *gaveUp);
        },
        [sending, self, refused, title = printer.title, count = pages.length] {
            if (*self->_gaveUp) return;
            self->finish(sending->problem
                             ? refused(reasonOf(sending->problem))
                             : localizedFormat(u"_Sent to the printer \"%@\" as job %d; pages: %u"_ns,
                                               title.get(), sending->number, count));
        });
}

}  // namespace pelvor
