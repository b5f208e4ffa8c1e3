// SPDX-License-Identifier: Apache-2.0
// Whether there is a newer version of Writer.
#pragma once

namespace pelvor {

class NSString;
class WRReport;

/// Asks the address that the string tables have as "UpdatesURL" for the newest version, and adds what it says
/// to the report. Returns what went wrong, as a sentence for the user; null if nothing did. The answer is a
/// property list:
///
///     { PelvorWriter = { ReleaseVersion = 20103; DisplayVersion = "2.1.3"; Address = "https://…"; }; }
///
/// ReleaseVersion counts as `PBPelvorWriterInternalIntVersion` does. Waits for the server. Main thread.
NSString* reportUpdates(WRReport* report);

}  // namespace pelvor
