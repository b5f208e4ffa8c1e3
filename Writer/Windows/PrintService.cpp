// SPDX-License-Identifier: Apache-2.0
// The one place that knows CUPS. Its library is not linked: programs start without it, and where it is
// missing there are no printers.
#include "Writer/Windows/PrintService.h"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "Foundation/NSData.h"

#if __has_include(<cups/cups.h>)
#include <cups/cups.h>
#include <cups/pwg.h>
#define WRITER_HAS_CUPS
#endif

namespace pelvor {
namespace {

class NoPrinters : public PrintService {
  public:
    PrintProblem findPrinters(std::vector<Printer>&, const Flag&) override { return nothing(); }
    PrintProblem print(const PrintJob&, int&, const Flag&) override { return nothing(); }

  private:
    static PrintProblem nothing() { return {PrintProblem::Kind::noService, nullptr}; }
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
    WRITER_CUPS_FUNCTION(cupsCancelDestJob);
    WRITER_CUPS_FUNCTION(cupsCopyDestInfo);
    WRITER_CUPS_FUNCTION(cupsCreateDestJob);
    WRITER_CUPS_FUNCTION(cupsEncryption);
    WRITER_CUPS_FUNCTION(cupsFinishDestDocument);
    WRITER_CUPS_FUNCTION(cupsFreeDestInfo);
    WRITER_CUPS_FUNCTION(cupsFreeDests);
    WRITER_CUPS_FUNCTION(cupsFreeOptions);
    WRITER_CUPS_FUNCTION(cupsGetDest);
    WRITER_CUPS_FUNCTION(cupsGetDests2);
    WRITER_CUPS_FUNCTION(cupsGetOption);
    WRITER_CUPS_FUNCTION(cupsLastError);
    WRITER_CUPS_FUNCTION(cupsLastErrorString);
    WRITER_CUPS_FUNCTION(cupsServer);
    WRITER_CUPS_FUNCTION(cupsSetPasswordCB2);
    WRITER_CUPS_FUNCTION(cupsStartDestDocument);
    WRITER_CUPS_FUNCTION(cupsWriteRequestData);
    WRITER_CUPS_FUNCTION(httpClose);
    WRITER_CUPS_FUNCTION(httpConnect2);
    WRITER_CUPS_FUNCTION(httpSetTimeout);
    WRITER_CUPS_FUNCTION(ippPort);
    WRITER_CUPS_FUNCTION(pwgMediaForSize);
#undef WRITER_CUPS_FUNCTION
};

// A connection with the server of CUPS that does not wait for ever.
class Connection {
  public:
    Connection(const Cups& cups, const PrintService::Flag& gaveUp) : _cups(cups), _gaveUp(gaveUp) {
        constexpr int kLongestConnecting = 10000;  // in milliseconds
        // Without this the library asks on the terminal.
        cups.cupsSetPasswordCB2(
            [](const char*, http_t*, const char*, const char*, void*) -> const char* { return nullptr; },
            nullptr);
        _http = cups.httpConnect2(cups.cupsServer(), cups.ippPort(), nullptr, AF_UNSPEC,
                                  cups.cupsEncryption(), 1, kLongestConnecting, nullptr);
        if (_http) cups.httpSetTimeout(_http, kTick, goesOnWaiting, this);
    }
    ~Connection() { _cups.httpClose(_http); }
    Connection(const Connection&) = delete;

    http_t* http() const { return _http; }
    /// Why the last request failed.
    PrintProblem problem() const {
        if (!_http || _silence >= kLongestSilence || _gaveUp) return {PrintProblem::Kind::noAnswer, nullptr};
        const char* reason = _cups.cupsLastErrorString();
        // The library asks the system why it understands nothing, and for the system nothing has failed.
        if (!reason || !*reason || !std::strcmp(reason, std::strerror(0)))
            return {PrintProblem::Kind::unclear, nullptr};
        return {PrintProblem::Kind::refused, NSString::ofUTF8(reason)->copy()};
    }

  private:
    static constexpr double kTick = 0.25;  // in seconds
    static constexpr int kLongestSilence = static_cast<int>(30 / kTick);

    // Asked after each tick in which nothing came.
    static int goesOnWaiting(http_t*, void* data) {
        auto* self = static_cast<Connection*>(data);
        return !self->_gaveUp && ++self->_silence < kLongestSilence;
    }

    const Cups& _cups;
    const PrintService::Flag& _gaveUp;
    http_t* _http = nullptr;
    int _silence = 0;  // in ticks
};

// What a printer is told about a job.
class JobOptions {
  public:
    JobOptions(const Cups& cups, const PrintJob& job, bool canPrintTwoSided) : _cups(cups) {
        const bool isSideways = job.paper.width > job.paper.height;
        const auto hundredths = [](float points) {  // of a millimetre
            return static_cast<int>(std::lround(points * 2540 / 72));
        };
        const int width = hundredths(job.paper.width), height = hundredths(job.paper.height);
        // Paper has its name as it lies upright in the tray.
        const pwg_media_t* media = cups.pwgMediaForSize(std::min(width, height), std::max(width, height));
        if (media && media->pwg) add(CUPS_MEDIA, media->pwg);
        add(CUPS_ORIENTATION, isSideways ? CUPS_ORIENTATION_LANDSCAPE : CUPS_ORIENTATION_PORTRAIT);
        add(CUPS_COPIES, std::to_string(job.copies).c_str());
        if (canPrintTwoSided)
            add(CUPS_SIDES, !job.isTwoSided ? CUPS_SIDES_ONE_SIDED
                            : isSideways    ? CUPS_SIDES_TWO_SIDED_LANDSCAPE
                                            : CUPS_SIDES_TWO_SIDED_PORTRAIT);
    }
    ~JobOptions() { _cups.cupsFreeOptions(count, options); }
    JobOptions(const JobOptions&) = delete;

    int count = 0;
    cups_option_t* options = nullptr;

  private:
    void add(const char* name, const char* value) {
        count = _cups.cupsAddOption(name, value, count, &options);
    }

    const Cups& _cups;
};

class CupsPrinters : public PrintService {
  public:
    bool isThere() const { return _cups.isComplete(); }

    PrintProblem findPrinters(std::vector<Printer>& printers, const Flag& gaveUp) override {
        const Connection connection(_cups, gaveUp);
        if (!connection.http()) return connection.problem();
        cups_dest_t* all = nullptr;
        const int count = _cups.cupsGetDests2(connection.http(), &all);
        for (int i = 0; i < count; ++i)
            if (!all[i].instance)
                printers.push_back(printerOf(all[i]));  // else one that is there, with other options
        _cups.cupsFreeDests(count, all);
        return printers.empty() && _cups.cupsLastError() > IPP_STATUS_OK_EVENTS_COMPLETE &&
                       _cups.cupsLastError() != IPP_STATUS_ERROR_NOT_FOUND
                   ? connection.problem()
                   : PrintProblem{};
    }

    PrintProblem print(const PrintJob& job, int& number, const Flag& gaveUp) override {
        const Connection connection(_cups, gaveUp);
        http_t* http = connection.http();
        // Asked for one printer alone, the library may open a connection of its own, which waits for ever.
        cups_dest_t* all = nullptr;
        const int count = http ? _cups.cupsGetDests2(http, &all) : 0;
        cups_dest_t* to = _cups.cupsGetDest(job.printer->UTF8String(), nullptr, count, all);
        cups_dinfo_t* info = to ? _cups.cupsCopyDestInfo(http, to) : nullptr;
        const bool isSent = info && send(http, to, info, job, number);
        PrintProblem problem = isSent ? PrintProblem{} : connection.problem();
        if (problem.kind == PrintProblem::Kind::refused && !to)
            problem = {PrintProblem::Kind::noPrinter, nullptr};
        if (number > 0 && (!isSent || gaveUp)) _cups.cupsCancelDestJob(http, to, number);
        if (info) _cups.cupsFreeDestInfo(info);
        _cups.cupsFreeDests(count, all);
        return problem;
    }

  private:
    const char* option(const cups_dest_t& printer, const char* name) {
        const char* value = _cups.cupsGetOption(name, printer.num_options, printer.options);
        return value ? value : "";
    }

    bool canPrintTwoSided(const cups_dest_t& printer) {
        return std::strtoul(option(printer, "printer-type"), nullptr, 10) & CUPS_PRINTER_DUPLEX;
    }

    Printer printerOf(const cups_dest_t& printer) {
        NSString* name = NSString::ofUTF8(printer.name);
        NSString* title = NSString::ofUTF8(option(printer, "printer-info"));
        return {name->copy(), (title && title->length() ? title : name)->copy(), printer.is_default != 0,
                canPrintTwoSided(printer),
                std::string_view(option(printer, CUPS_SIDES)).substr(0, 3) == "two"};
    }

    bool send(http_t* http, cups_dest_t* to, cups_dinfo_t* info, const PrintJob& job, int& number) {
        const JobOptions with(_cups, job, canPrintTwoSided(*to));
        const char* title = job.title->UTF8String();
        return _cups.cupsCreateDestJob(http, to, info, &number, title, with.count, with.options) <=
                   IPP_STATUS_OK_EVENTS_COMPLETE &&
               _cups.cupsStartDestDocument(http, to, info, number, title, CUPS_FORMAT_PDF, with.count,
                                           with.options, 1) == HTTP_STATUS_CONTINUE &&
               _cups.cupsWriteRequestData(http, static_cast<const char*>(job.pdf->bytes()),
                                          job.pdf->length()) == HTTP_STATUS_CONTINUE &&
               _cups.cupsFinishDestDocument(http, to, info) <= IPP_STATUS_OK_EVENTS_COMPLETE;
    }

    Cups _cups;
};

#endif

std::shared_ptr<PrintService> installedService() {
#ifdef WRITER_HAS_CUPS
    if (auto cups = std::make_shared<CupsPrinters>(); cups->isThere()) return cups;
#endif
    return std::make_shared<NoPrinters>();
}

// Threads may still use it when the program ends.
std::shared_ptr<PrintService>& sharedOne() {
    static auto* service = new std::shared_ptr<PrintService>;
    return *service;
}

}  // namespace

std::shared_ptr<PrintService> PrintService::shared() {
    if (!sharedOne()) sharedOne() = installedService();
    return sharedOne();
}

void PrintService::setShared(std::shared_ptr<PrintService> service) { sharedOne() = std::move(service); }

}  // namespace pelvor
