// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSExternalDataPrivate.h"

#include <cstdlib>

#include "Foundation/FoundationLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSExternalData, foundationLibrary) {}

Retained<NSExternalData> NSExternalData::create(GrowingBytes& buffer) {
    auto data = make<NSExternalData>();
    data->_length = static_cast<NSUInteger>(buffer.size());
    data->_bytes = buffer.leak();
    return data;
}

NSExternalData::~NSExternalData() { std::free(_bytes); }

Retained<Object> NSExternalData::copyWithZone(void*) { return Retained<Object>::retaining(this); }

}  // namespace pelvor
