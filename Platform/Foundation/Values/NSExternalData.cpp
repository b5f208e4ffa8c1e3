// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Values/NSExternalData.h"

#include <cstdlib>

#include "Foundation/FoundationLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSExternalData, foundationLibrary) {}

Retained<NSExternalData> NSExternalData::create(GrowingBytes& buffer) {
    auto length = static_cast<NSUInteger>(buffer.size());
    return create(buffer.leak(), length, Memory::own);
}

Retained<NSExternalData> NSExternalData::create(void* bytes, NSUInteger length, Memory memory) {
    auto data = make<NSExternalData>();
    data->_bytes = bytes;
    data->_length = length;
    data->_memory = memory;
    return data;
}

NSExternalData::~NSExternalData() {
    if (_memory == Memory::own) std::free(_bytes);
}

Retained<Object> NSExternalData::copyWithZone(void*) {
    if (_memory == Memory::own) return Retained<Object>::retaining(this);
    return initWithBytes_length(_bytes, _length);
}

}  // namespace pelvor
