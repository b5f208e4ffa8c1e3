// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRPrintPanel.h"

#include <cerrno>

#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSScanner.h"
#include "Interface/NSApplication.h"
#include "Interface/NSButton.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSPanel.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSSavePanel.h"
#include "Interface/NSTextField.h"
#include "Writer/LocalizedText.h"
#include "Writer/Pages/PagePDF.h"
#include "Writer/Windows/WRFormView.h"
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
    methods.instance<"print:", &WRPrintPanel::print>();
    methods.instance<"cancel:", &WRPrintPanel::cancel>();
}

Retained<WRPrintPanel> WRPrintPanel::create(PageDocument* document, NSString* title) {
    auto self = make<WRPrintPanel>();
    self->_document = document;
    self->_title = title->copy();
    self->_printers = PrintService::shared().printers();
    self->makePanel();
    return self;
}

void WRPrintPanel::makePanel() {
    constexpr float kFieldWidth = 220;
    auto form = WRFormView::create(this, kFieldWidth);
    _printer.set(form->addPopUp(localized(u"_Printer:"_ns), NSArray::array(), {}));
    _printer->setTag(kPrinterTag);
    NSInteger selected = 0;
    for (const auto& [name, title, isDefault] : _printers) {
        if (isDefault) selected = _printer->numberOfItems();
        // Two printers may have one title.
        _printer->addItemWithTitle(_printer->indexOfItemWithTitle(title) < 0 ? title : name);
    }
    _printer->addItemWithTitle(localized(u"_PDF file…"_ns));
    _printer->selectItemAtIndex(selected);
    _copies.set(form->addField(localized(u"_Copies:"_ns)));
    _copies->setStringValue(u"1"_ns);
    _pages.set(form->addField(localized(u"_Pages:"_ns)));
    _message.set(form->addMessage());
    _message->setStringValue(localized(u"_All pages, or some: 3, 2-5, 7-"_ns));
    form->addButton(localized(u"_Print"_ns), "print:"_sel)->setKeyEquivalent(u"\r"_ns);
    form->addButton(localized(u"_Cancel"_ns), "cancel:"_sel)->setKeyEquivalent(u"\x1b"_ns);
    _panel = form->panelWithTitle(localized(u"_Print"_ns));
    _panel->setInitialFirstResponder(_pages);
}

NSString* WRPrintPanel::runModal() {
    const auto alive = Retained<WRPrintPanel>::retaining(this);
    _outcome = nullptr;
    NSApplication::sharedApplication()->runModalForWindow(_panel);
    _panel->orderOut(nullptr);
    return _outcome ? _outcome->copy().autorelease() : nullptr;
}

void WRPrintPanel::cancel(id) {
    NSApplication* application = NSApplication::sharedApplication();
    if (application->modalWindow() == _panel) application->stopModal();
    _panel->orderOut(nullptr);
}

// MARK: Printing

void WRPrintPanel::print(id) {
    const auto alive = Retained<WRPrintPanel>::retaining(this);
    const int copies = numberOf(_copies->stringValue());
    if (copies == 0 || copies > kMostCopies)
        return _message->setStringValue(
            localizedFormat(u"_The number of copies is between 1 and %d."_ns, kMostCopies));
    const NSUInteger count = _document->pageCount();
    const NSRange pages = pagesOfText(_pages->stringValue(), count);
    if (pages.length == 0)
        return _message->setStringValue(
            localizedFormat(u"_The document has %u pages; choose some of them: 3, 2-5, 7-"_ns, count));
    const auto chosen = static_cast<std::size_t>(_printer->indexOfSelectedItem());
    if (chosen < _printers.size()) {
        _outcome.set(sendPages(pages, _printers[chosen], static_cast<unsigned>(copies)));
    } else {
        NSString* path = pathFromUser();
        if (!path) return;
        _outcome.set(writePages(pages, path));
    }
    cancel(nullptr);
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

NSString* WRPrintPanel::sendPages(NSRange pages, const PrintService::Printer& printer, unsigned copies) {
    NSString* reason = nullptr;
    NSData* pdf = pdfOfPages(*_document, _title, pages, &reason);
    const int job = pdf ? PrintService::shared().print(printer.name, pdf, _title, copies, &reason) : 0;
    if (job == 0)
        return localizedFormat(u"_Nothing was printed: the printer \"%@\" took no document: %@."_ns,
                               printer.title.get(), reason);
    return localizedFormat(u"_Sent to the printer \"%@\" as job %d; pages: %u"_ns, printer.title.get(), job,
                           pages.length);
}

}  // namespace pelvor
