// SPDX-License-Identifier: Apache-2.0
// An addition to keyed decoders: bytes that go into a buffer.
#pragma once

#include "Foundation/NSCoder.h"

namespace pelvor {

struct Category;

/// Copies the bytes that are stored under the key to the buffer and returns their number. Returns 0 and
/// copies nothing if no bytes are stored under the key, or more than `bufferLength` bytes.
PELVOR_EXPORT unsigned decodeBytesIntoBuffer_bufferLength_forKey(NSCoder* coder, void* buffer,
                                                                 unsigned bufferLength, NSString* key);

extern const Category NSCoder_PelvorAdditions_category;

}  // namespace pelvor
