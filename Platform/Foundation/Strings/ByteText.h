// SPDX-License-Identifier: Apache-2.0
// Bytes as hexadecimal text.
#pragma once

#include <cstddef>
#include <span>

namespace pelvor {

class NSString;

/// "<0102aaff 00>": hexadecimal, in groups of four bytes. Borrowed.
NSString* hexadecimalDescription(std::span<const std::byte> bytes);

}  // namespace pelvor
