// SPDX-License-Identifier: Apache-2.0
#include "NSCoder-PelvorAdditions.h"

#include <cstring>

#include "Foundation/NSString.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSCoder>& methods) {
    methods
        .instance<"decodeBytesIntoBuffer:bufferLength:forKey:", &decodeBytesIntoBuffer_bufferLength_forKey>();
}

}  // namespace

constinit const Category NSCoder_PelvorAdditions_category =
    Category::of<NSCoder, defineAdditions>("PelvorAdditions");

unsigned decodeBytesIntoBuffer_bufferLength_forKey(NSCoder* coder, void* buffer, unsigned bufferLength,
                                                   NSString* key) {
    requireArgument(coder, "decodeBytesIntoBuffer:bufferLength:forKey:", "the coder");
    NSUInteger length = 0;
    const void* bytes = coder->decodeBytesForKey_returnedLength(key, &length);
    if (length == 0 || length > bufferLength) return 0;
    std::memcpy(buffer, bytes, length);
    return length;
}

}  // namespace pelvor
