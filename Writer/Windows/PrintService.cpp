// SPDX-License-Identifier: Apache-2.0
// The one place that knows CUPS. Its library is not linked: programs start without it, and where it is
// missing there are no printers.
#include "Writer/Windows/PrintService.h"

#include <dlfcn.h>

#include <string>

#include "Foundation/NSData.h"
#include "Writer/LocalizedText.h"

#if __has_include(<cups/cups.h>)
#include <cups/cups.h>
#define WRITER_HAS_CUPS
#endif

namespace pelvor {
namespace {

class NoPrinters : public PrintService {
  public:
    std::vector<Printer> printers() override { return {}; }
    int print(NSString*, NSData*, NSString*, unsigned, NSString** reason) override {
        *reason = localized(u"_there are no printers"_ns);
        return 0;
    }
};

#ifdef WRITER_HAS_CUPS

// The functions of the library, found by their names.
class Cups {
  public:
    bool isComplete() const { return _isComplete; }

  private:
    template <class Function>
    Function find(const char* name) {
        void* found = _library ? dlsym(_library, name) : nullptr;
        if (!found) _isComplete = false;
        return reinterpret_cast<Function>(found);
    }

    void* _library = dlopen("libcups.so.2", RTLD_NOW | RTLD_LOCAL);
    bool _isComplete = true;

  public:
#define WRITER_CUPS_FUNCTION(name) decltype(&::name) name = find<decltype(&::name)>(#name)
    WRITER_CUPS_FUNCTION(cupsAddOption);
    WRITER_CUPS_FUNCTION(cupsCopyDestInfo);
    WRITER_CUPS_FUNCTION(cupsCreateDestJob);
    WRITER_CUPS_FUNCTION(cupsFinishDestDocument);
    WRITER_CUPS_FUNCTION(cupsFreeDestInfo);
    WRITER_CUPS_FUNCTION(cupsFreeDests);
    WRITER_CUPS_FUNCTION(cupsFreeOptions);
    WRITER_CUPS_FUNCTION(cupsGetDests2);
    WRITER_CUPS_FUNCTION(cupsGetNamedDest);
    WRITER_CUPS_FUNCTION(cupsGetOption);
    WRITER_CUPS_FUNCTION(cupsLastErrorString);
    WRITER_CUPS_FUNCTION(cupsStartDestDocument);
    WRITER_CUPS_FUNCTION(cupsWriteRequestData);
#undef WRITER_CUPS_FUNCTION
};

class CupsPrinters : public PrintService {
  public:
    bool isThere() const { return _cups.isComplete(); }

    std::vector<Printer> printers() override {
        std::vector<Printer> found;
        cups_dest_t* all = nullptr;
        const int count = _cups.cupsGetDests2(CUPS_HTTP_DEFAULT, &all);
        for (int i = 0; i < count; ++i) {
            if (all[i].instance) continue;  // the same printer with other options
            const char* title = _cups.cupsGetOption("printer-info", all[i].num_options, all[i].options);
            NSString* name = NSString::ofUTF8(all[i].name);
            found.push_back({name->copy(), (title && *title ? NSString::ofUTF8(title) : name)->copy(),
                             all[i].is_default != 0});
        }
        _cups.cupsFreeDests(count, all);
        return found;
    }

    int print(NSString* printer, NSData* pdf, NSString* title, unsigned copies, NSString** reason) override {
        cups_dest_t* to = _cups.cupsGetNamedDest(CUPS_HTTP_DEFAULT, printer->UTF8String(), nullptr);
        cups_dinfo_t* info = to ? _cups.cupsCopyDestInfo(CUPS_HTTP_DEFAULT, to) : nullptr;
        const int job = info ? send(to, info, pdf, title->UTF8String(), copies) : 0;
        if (job == 0) *reason = NSString::ofUTF8(_cups.cupsLastErrorString());
        if (info) _cups.cupsFreeDestInfo(info);
        if (to) _cups.cupsFreeDests(1, to);
        return job;
    }

  private:
    int send(cups_dest_t* to, cups_dinfo_t* info, NSData* pdf, const char* title, unsigned copies) {
        cups_option_t* options = nullptr;
        const int count = _cups.cupsAddOption("copies", std::to_string(copies).c_str(), 0, &options);
        int job = 0;
        const ipp_status_t made =
            _cups.cupsCreateDestJob(CUPS_HTTP_DEFAULT, to, info, &job, title, count, options);
        bool isSent = made <= IPP_STATUS_OK_EVENTS_COMPLETE &&
                      _cups.cupsStartDestDocument(CUPS_HTTP_DEFAULT, to, info, job, title, CUPS_FORMAT_PDF,
                                                  count, options, 1) == HTTP_STATUS_CONTINUE;
        isSent =
            isSent && _cups.cupsWriteRequestData(CUPS_HTTP_DEFAULT, static_cast<const char*>(pdf->bytes()),
                                                 pdf->length()) == HTTP_STATUS_CONTINUE;
        isSent = isSent &&
                 _cups.cupsFinishDestDocument(CUPS_HTTP_DEFAULT, to, info) <= IPP_STATUS_OK_EVENTS_COMPLETE;
        _cups.cupsFreeOptions(count, options);
        return isSent ? job : 0;
    }

    Cups _cups;
};

#endif

std::unique_ptr<PrintService>& sharedOne() {
    static std::unique_ptr<PrintService> service;
    return service;
}

}  // namespace

PrintService& PrintService::shared() {
    std::unique_ptr<PrintService>& service = sharedOne();
#ifdef WRITER_HAS_CUPS
    if (!service)
        if (auto cups = std::make_unique<CupsPrinters>(); cups->isThere()) service = std::move(cups);
#endif
    if (!service) service = std::make_unique<NoPrinters>();
    return *service;
}

void PrintService::setShared(std::unique_ptr<PrintService> service) { sharedOne() = std::move(service); }

}  // namespace pelvor
