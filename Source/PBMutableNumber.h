// SPDX-License-Identifier: Apache-2.0
// PBMutableNumber and PBMutableIntNumber: numbers that change.
#pragma once

#include "Foundation/NSNumber.h"

namespace pelvor {

class PBMutableIntNumber;

/// A number that changes; abstract. What it is made from decides which of its subclasses is made. It must
/// not change while it is a key of a dictionary or a member of a set.
class PELVOR_EXPORT PBMutableNumber : public NSNumber {
    PELVOR_CLASS(PBMutableNumber, NSNumber);

  public:
    /// Borrowed numbers; a boolean is 1 or 0, an unsigned number the signed one of the same bits.
    static PBMutableIntNumber* numberWithBool(bool value);
    static PBMutableIntNumber* numberWithInt(int value);
    static PBMutableIntNumber* numberWithUnsignedInt(unsigned value);

    /// None: subclasses say what their copies are.
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;

  protected:
    PBMutableNumber() = default;
    ~PBMutableNumber() = default;
};

/// A 32-bit integer that changes. One thread at a time.
class PELVOR_EXPORT PBMutableIntNumber : public PBMutableNumber {
    PELVOR_CLASS(PBMutableIntNumber, PBMutableNumber);

  public:
    static Retained<PBMutableIntNumber> initWithInt(int value, Class* cls = classObject());

    int intValue() override { return _value; }
    void setIntValue(int value) { _value = value; }
    /// Answer the new value, which wraps around at both ends.
    int increment();
    int decrement();

    /// "i".
    const char* objCType() override;
    void getValue(void* buffer) override;

    /// An NSNumber of the present value, which does not follow later changes.
    Retained<Object> copyWithZone(void* zone) override;
    /// A number of the same class and value that changes by itself.
    Retained<Object> mutableCopyWithZone(void* zone) override;

  protected:
    PBMutableIntNumber() = default;
    ~PBMutableIntNumber() = default;

  private:
    std::int32_t _value = 0;
};

}  // namespace pelvor
