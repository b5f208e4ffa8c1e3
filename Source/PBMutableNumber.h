// SPDX-License-Identifier: Apache-2.0
// PBMutableNumber and PBMutableIntNumber: number objects that change.
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

/// A 32-bit integer that changes. For one thread at a time.
class PELVOR_EXPORT PBMutableIntNumber : public PBMutableNumber {
    PELVOR_CLASS(PBMutableIntNumber, PBMutableNumber);
    PELVOR_CREATORS(initWithInt);

  public:
    static Retained<PBMutableIntNumber> initWithInt(int value, Class* cls = classObject());

    int intValue() override { return _value; }
    void setIntValue(int value) { _value = value; }
    // These return the new value, which wraps around at both ends.

    int increment();
    int decrement();

    /// "i".
    const char* objCType() override;
    void getValue(void* buffer) override;

    /// An immutable number of the present value.
    Retained<Object> copyWithZone(void* zone) override;
    /// Another mutable number of the same class and value.
    Retained<Object> mutableCopyWithZone(void* zone) override;
    Retained<NSNumber> copy() { return cast<NSNumber>(copyWithZone(nullptr)); }
    Retained<PBMutableIntNumber> mutableCopy() {
        return cast<PBMutableIntNumber>(mutableCopyWithZone(nullptr));
    }

  protected:
    PBMutableIntNumber() = default;
    ~PBMutableIntNumber() = default;

  private:
    std::int32_t _value = 0;
};

}  // namespace pelvor
