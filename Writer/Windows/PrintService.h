// SPDX-License-Identifier: Apache-2.0
// The printers that can be reached from here.
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "Foundation/NSGeometry.h"
#include "Foundation/NSString.h"

namespace pelvor {

class NSData;

struct Printer {
    Retained<NSString> name;   ///< what the service calls it
    Retained<NSString> title;  ///< what the user calls it
    bool isDefault = false;
    bool canPrintTwoSided = false;
    bool isTwoSided = false;  ///< prints on both sides unless it is told otherwise
};

/// Why something could not be had from the service.
struct PrintProblem {
    enum class Kind {
        none,
        noService,  ///< nothing here prints
        noPrinter,  ///< the service has no printer of that name any more
        noAnswer,   ///< the service does not answer, or the caller gave up
        unclear,    ///< what replies is no print service, or a broken one
        refused,    ///< the service says why, in `text`
    };
    Kind kind = Kind::none;
    Retained<NSString> text;

    explicit operator bool() const { return kind != Kind::none; }
};

/// A PDF document to be printed.
struct PrintJob {
    Retained<NSString> printer, title;
    Retained<NSData> pdf;
    NSSize paper;  ///< of the pages as they are read, in points
    unsigned copies = 1;
    /// Ignored by printers that have one side only.
    bool isTwoSided = false;
};

/// What prints documents: CUPS, where it is installed. It is loaded when somebody asks for printers first.
///
/// A service in a network may take its time, and one that is broken may never answer; so these operations are
/// called on a thread of their own. They return at most ten seconds after the caller has set `gaveUp`, for so
/// long they may wait for a connection, and by themselves when the service has said nothing for half a
/// minute. Any thread.
class PrintService {
  public:
    using Flag = std::atomic<bool>;

    virtual ~PrintService() = default;

    /// Puts the printers into the vector, which stays empty where no printer is set up.
    virtual PrintProblem findPrinters(std::vector<Printer>& printers, const Flag& gaveUp) = 0;
    /// Sends the job, and sets its number, which is above 0. A job that was sent when the caller had given up
    /// is taken back.
    virtual PrintProblem print(const PrintJob& job, int& number, const Flag& gaveUp) = 0;

    /// Main thread.
    static std::shared_ptr<PrintService> shared();
    /// For tests. Main thread.
    static void setShared(std::shared_ptr<PrintService> service);
};

}  // namespace pelvor
