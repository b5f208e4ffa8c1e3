// SPDX-License-Identifier: Apache-2.0
// The host application's name and versions, what a server knows of newer versions, and whether a host of the
// network can be reached.
//
// What the host application says of itself stands in the Info.plist of the main bundle:
//
//     CFBundleExecutable            its name
//     CFBundleShortVersionString    the version for users, "2.1 beta 4"
//     PBInternalVersion             the version for programs: up to three numbers and a stage, "2.1.0b4"
//     PBReleaseNumber               the number of the release
//
// Texts and versions are kept from the first call on for the life of the process. Results are borrowed. Main
// thread.
#pragma once

#include <cstdint>

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;
class NSURL;

/// The number of the release; 0 if there is none.
PELVOR_EXPORT std::int32_t PBLogicalReleaseNumber();
/// These are null if the bundle does not have the text.
PELVOR_EXPORT NSString* PBPelvorWriterApplicationName();
PELVOR_EXPORT NSString* PBPelvorWriterDisplayVersion();
/// "99.9" if the bundle has no internal version.
PELVOR_EXPORT NSString* PBPelvorWriterInternalVersion();
/// The three numbers of the internal version as one: 20103 for "2.1.3". Each number is at most 99, one that
/// is missing is 0, and 999999 stands for a sum of 0. Reading stops at the first character that is neither a
/// digit nor a full stop.
PELVOR_EXPORT std::uint32_t PBPelvorWriterInternalIntVersion();
/// The stage of the internal version and its number: 10012 for "3.0a12", with 1 for a, 2 for b, 3 for p and 4
/// for f. 0 for a release, which has no letter or a blank before it. Any other letter gives 0, a letter
/// without a number the number 0; both leave a line in the log.
PELVOR_EXPORT std::uint32_t PBPelvorWriterInternalPreReleaseIntVersion();

/// The key under which the online information has what concerns the application: its name.
PELVOR_EXPORT NSString* PBAppOnlineInfoDictionaryProductName();
/// Where the online information lies: the localised text for the key "UpdatesURL", as a URL. The host has the
/// text in its string tables; without it the URL is "UpdatesURL", which has no scheme and cannot be loaded.
/// Null if the text is no URL.
PELVOR_EXPORT NSURL* PBOnlineInfoDictionaryURL();
/// Loads the online information, a dictionary of dictionaries by product as a property list, which waits for
/// the server as `dictionaryWithContentsOfURL` does. Returns the dictionary for the product, an empty one if
/// there is none; null if the information cannot be loaded. `reason`, unless null, receives why not,
/// borrowed, as a clause in the user's language ("the server cannot be reached"); null after a success.
PELVOR_EXPORT NSDictionary* PBOnlineInfoDictionaryForProduct(NSString* product, NSString** reason = nullptr);
/// Does this for the application.
PELVOR_EXPORT NSDictionary* PBOnlineInfoDictionary(NSString** reason = nullptr);

/// Whether the host's name has an address and the machine has a route to the address. Nothing is sent to the
/// host. Waits for the name at most five seconds, then the answer is no.
PELVOR_EXPORT bool PBIsNetworkHostOnline(NSString* host);
/// The same with another time, in seconds. A look-up that takes longer goes on in the background; while eight
/// look-ups are going on, the answer is no.
PELVOR_EXPORT bool PBIsNetworkHostOnlineWithin(NSString* host, double seconds);

}  // namespace pelvor
