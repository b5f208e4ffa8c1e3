// SPDX-License-Identifier: Apache-2.0
// Changes of a whole document that the user requests by arguments.
#pragma once

namespace pelvor {

class WRArguments;
class WRDocument;
class WRReport;

/// Finds and replaces, changes the case, wraps lines and converts their ends, in this order, as far as the
/// arguments request it, and reports what was done.
void changeDocument(WRDocument* document, WRArguments* arguments, WRReport* report);

}  // namespace pelvor
