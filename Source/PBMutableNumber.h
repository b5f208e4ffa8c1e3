// SPDX-License-Identifier: Apache-2.0
// PBMutableNumber: a number object that changes.
#pragma once

#include "Foundation/NSNumber.h"

namespace pelvor {

class PBMutableIntNumber;

/// A number object that changes:
///
///     PBMutableIntNumber* pages = PBMutableNumber::numberWithInt(0);
///     pages->increment();  // 1
///
/// It must not change while it is a key of a dictionary or a member of a set. The class is abstract; its
/// creators make objects of a subclass.
class PELVOR_EXPORT PBMutableNumber : public NSNumber, NSNumber::HiddenCreators {
    PELVOR_CLASS(PBMutableNumber, NSNumber);
    PELVOR_CREATORS(numberWithBool, numberWithInt, numberWithUnsignedInt);

  public:
    // Creators of borrowed numbers. A boolean becomes 1 or 0, an unsigned number the signed one of the same
    // bits.

    static PBMutableIntNumber* numberWithBool(bool value);
    static PBMutableIntNumber* numberWithInt(int value);
    static PBMutableIntNumber* numberWithUnsignedInt(unsigned value);

    // Null: subclasses define what their copies are.

    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;

  protected:
    PBMutableNumber() = default;
    ~PBMutableNumber() = default;
};

}  // namespace pelvor
