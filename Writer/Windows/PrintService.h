// SPDX-License-Identifier: Apache-2.0
// The printers that can be reached from here.
#pragma once

#include <memory>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

class NSData;

/// What prints documents: CUPS, where it is installed. It is loaded when somebody asks for printers first.
/// Main thread; printers in a network may take a moment.
class PrintService {
  public:
    struct Printer {
        Retained<NSString> name;   ///< what the service calls it
        Retained<NSString> title;  ///< what the user calls it
        bool isDefault = false;
    };

    virtual ~PrintService() = default;

    /// Empty where there are none, and where nothing prints.
    virtual std::vector<Printer> printers() = 0;
    /// Sends a PDF document to the printer, so many copies. Returns the number of the job; or 0, and the
    /// reason as a clause for the user, borrowed.
    virtual int print(NSString* printer, NSData* pdf, NSString* title, unsigned copies,
                      NSString** reason) = 0;

    static PrintService& shared();
    /// For tests.
    static void setShared(std::unique_ptr<PrintService> service);
};

}  // namespace pelvor
