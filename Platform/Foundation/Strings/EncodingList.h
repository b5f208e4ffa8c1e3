// SPDX-License-Identifier: Apache-2.0
// The text encodings that the platform knows, with their numbers and names.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "Foundation/NSStringEncoding.h"

namespace pelvor {

struct EncodingEntry {
    NSStringEncoding number;
    const char* converterName;  // ICU's; null for an encoding that ICU does not know
    const char* documentName;   // what documents call the encoding
    const char* name;           // in English
};

/// Null for an unknown number.
const EncodingEntry* findEncoding(NSStringEncoding number);

/// Null for an unknown name. Case and punctuation do not count.
const EncodingEntry* findEncodingNamed(std::string_view name);

/// Every encoding. Encodings that documents use most come first.
std::span<const EncodingEntry> allEncodings();

/// Every name of the encoding, the document name first.
std::vector<std::string_view> namesOf(const EncodingEntry& encoding);

}  // namespace pelvor
