// SPDX-License-Identifier: Apache-2.0
// Bytes from a keyed decoder into a buffer.
#pragma once

#include "Foundation/NSCoder.h"

namespace pelvor {

struct Category;

/// Copies the block of bytes under the key to the buffer and answers its length; 0, and copies nothing, if
/// it is longer than the buffer or not there.
PELVOR_EXPORT unsigned decodeBytesIntoBuffer_bufferLength_forKey(NSCoder* coder, void* buffer,
                                                                 unsigned bufferLength, NSString* key);

extern const Category NSCoder_PelvorAdditions_category;

}  // namespace pelvor
