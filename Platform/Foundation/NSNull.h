// SPDX-License-Identifier: Apache-2.0
// NSNull: an object that stands for "nothing" in collections, which cannot hold null.
#pragma once

#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

/// The class of one object, which lives as long as the process.
///
///     NSDictionary* row = NSDictionary::of({{u"name"_ns, u"Anna"_ns}, {u"age"_ns, NSNull::null()}});
///     bool isKnown = row->objectForKey(u"age"_ns) != NSNull::null();     // false
class PELVOR_EXPORT NSNull final : public NSObject {
    PELVOR_CLASS(NSNull, NSObject);

  public:
    static NSNull* null();

    /// "<null>".
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<NSNull> copy();

  private:
    constexpr NSNull() noexcept : NSObject(&classRecord, kImmortal) {}
};

}  // namespace pelvor
