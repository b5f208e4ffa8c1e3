// SPDX-License-Identifier: Apache-2.0
// NSNull: an object that stands for none in collections.
#pragma once

#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

/// There is one, which lives as long as the process.
class PELVOR_EXPORT NSNull final : public NSObject {
    PELVOR_CLASS(NSNull, NSObject);

  public:
    static NSNull* null();

    /// "<null>".
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;

  private:
    constexpr NSNull() noexcept : NSObject(&classRecord, kImmortal) {}
};

}  // namespace pelvor
