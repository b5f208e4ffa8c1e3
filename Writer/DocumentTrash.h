// SPDX-License-Identifier: Apache-2.0
// Throwing a document away.
#pragma once

namespace pelvor {

class NSString;
class WRReport;

/// Moves the file to the user's trash and adds to the report where it is now. Returns what went wrong, as a
/// sentence for the user; null if nothing did. Borrowed. Main thread.
NSString* throwDocumentAway(NSString* path, WRReport* report);

}  // namespace pelvor
