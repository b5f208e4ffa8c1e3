// SPDX-License-Identifier: Apache-2.0
// The records of recovery files.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Foundation/NSData.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Writer/Recovery/RecoveryOrigin.h"

namespace pelvor {

// A file is the signature and records. A record is the length of its content, its kind and a checksum of all
// else, four bytes each, and the content. Numbers are in the order of the machine, which a file never leaves.
//
//     origin      a keyed archive of the RecoveryOrigin; the first record
//     attributes  a keyed archive of the attributes of runs; they are numbered as they come
//     edit        location, number of units removed, number of runs; for each run the number of its
//                 attributes and its length; the units
//
// The text is empty before the first edit. The last edit ends where the user was; an edit that changes
// nothing may stand there to tell that place. Each record is written in one step; a reader takes the records
// from the front on that are whole, and drops the rest.

inline constexpr std::string_view kRecoverySignature = "WRRecovery 1\n";
/// Longer files are neither written nor read.
inline constexpr std::uint64_t kLongestRecoveryFile = std::uint64_t{1} << 30;

/// The attributes that a file has, by their dictionaries, of which there is one for each content.
class RecoveryAttributes {
  public:
    /// The number of the attributes. Ones that the file lacks are added to `bytes` as a record.
    std::uint32_t numberOf(NSDictionary* attributes, std::string& bytes);

  private:
    std::unordered_map<Unretained<NSDictionary>, std::uint32_t> _numbers;
    std::vector<Retained<NSDictionary>> _kept;  // so that no other dictionary gets the address
};

/// The content of an origin's record.
Retained<NSData> archivedOrigin(const RecoveryOrigin& origin);

/// Adds the record of an origin.
void addOriginRecord(std::string& bytes, NSData* origin);
/// Adds the record of an edit, and before it those of new attributes. The range of the text took the place of
/// `removed` units. Returns false, with EFBIG in `errno`, if the edit is too long for a record.
bool addEditRecord(std::string& bytes, RecoveryAttributes& attributes, NSAttributedString* text,
                   NSRange range, NSUInteger removed);

/// What a file holds.
struct RecoveryContent {
    RecoveryOrigin origin;
    Retained<NSMutableAttributedString> text;
    NSUInteger place = 0;  ///< the end of the last edit
};

/// Reads a file's bytes, whatever they are. No value, and the reason in English, if they hold no text.
std::optional<RecoveryContent> readRecovery(std::string_view bytes, std::string& reason);

/// The checksum of records: CRC-32.
std::uint32_t recoveryChecksum(std::string_view bytes, std::uint32_t before = 0);

}  // namespace pelvor
