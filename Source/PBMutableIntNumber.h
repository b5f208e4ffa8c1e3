// SPDX-License-Identifier: Apache-2.0
// PBMutableIntNumber: an integer object that changes.
#pragma once

#include "PBMutableNumber.h"

namespace pelvor {

/// A 32-bit integer that changes:
///
///     PBMutableIntNumber* pages = PBMutableNumber::numberWithInt(41);
///     int count = pages->increment();  // 42
///
/// For one thread at a time.
class PELVOR_EXPORT PBMutableIntNumber : public PBMutableNumber {
    PELVOR_CLASS(PBMutableIntNumber, PBMutableNumber);
    PELVOR_CREATORS(initWithInt);

  public:
    static Retained<PBMutableIntNumber> initWithInt(int value, Class* cls = classObject());

    int intValue() override { return _value; }
    void setIntValue(int value) { _value = value; }
    // These return the new value. The value behind the largest integer is the smallest one, and the other way
    // round.

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
