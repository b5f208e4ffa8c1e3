// SPDX-License-Identifier: Apache-2.0
// Names that nothing in a folder has; for the additions to the file manager.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace pelvor {

class NSString;

/// A name as the system's bytes, and what of it stands before and behind a number: "Report.txt", "Report" and
/// "txt". The parts may be less than the name: the parts of "Report." are "Report" and "".
struct NameParts {
    std::string name, base, extension;
};

/// Returns the name if nothing in the folder has it, else the first free one with the suffix, a format with
/// one conversion of an integer, between base and extension; no value if the numbers up to 99,997 are taken.
/// `isTaken`, if given, may know of further names that are taken.
///
/// Where many names are taken and the conversion is "%d", the folder is listed once instead of asking the
/// system about each name.
std::optional<std::string> uniqueName(const std::string& folder, const NameParts& name, NSString* suffix,
                                      const std::function<bool(const std::string&)>& isTaken = {});

}  // namespace pelvor
