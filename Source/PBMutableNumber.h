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
/// A number must not change while it is a key of a dictionary or a member of a set. The class is abstract,
/// and its creators make objects of PBMutableIntNumber.
class PELVOR_EXPORT PBMutableNumber : public NSNumber, NSNumber::HiddenCreators {
    PELVOR_CLASS(PBMutableNumber, NSNumber);
    PELVOR_CREATORS(numberWithBool, numberWithInt, numberWithUnsignedInt);

  public:
    // Creators of borrowed numbers. A boolean becomes 1 or 0. An unsigned number becomes the signed number
    // with the same bits.

    static PBMutableIntNumber* numberWithBool(bool value);
    static PBMutableIntNumber* numberWithInt(int value);
    static PBMutableIntNumber* numberWithUnsignedInt(unsigned value);

    // These return null; subclasses override them.

    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;

  protected:
    PBMutableNumber() = default;
    ~PBMutableNumber() = default;
};

}  // namespace pelvor
