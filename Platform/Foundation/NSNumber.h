// SPDX-License-Identifier: Apache-2.0
// NSNumber: a number or boolean in an object.
#pragma once

#include "Foundation/NSValue.h"

namespace pelvor {

class NSString;

/// An immutable number of one of C's types, with the encoding of that type: "c", "i", "d", "B" for a boolean
/// …
///
///     NSNumber* seven = NSNumber::numberWithInt(7);
///     seven->doubleValue();                                      // 7.0
///     seven->isEqual(NSNumber::numberWithDouble(7));             // true
///
/// Numbers are equal, compare and hash by value whatever their types, booleans as 1 and 0, and exactly:
/// nothing is rounded. A NaN is equal to a NaN and below every other number.
///
/// Reading an integer as a smaller type keeps its low bits. Reading a number with a fraction as an integer
/// drops the fraction; a number outside the type's range becomes the nearest end of the range, and NaN
/// becomes 0.
///
/// The class is abstract: a subclass implements NSValue's `objCType` and `getValue`, on which all other
/// operations stand, and may override other operations for speed. The creators may return a shared object.
/// Any thread.
class PELVOR_EXPORT NSNumber : public NSValue, NSValue::HiddenCreators {
    PELVOR_CLASS(NSNumber, NSValue);
    PELVOR_CREATORS(numberWithBool, numberWithChar, numberWithUnsignedChar, numberWithShort,
                    numberWithUnsignedShort, numberWithInt, numberWithUnsignedInt, numberWithLong,
                    numberWithUnsignedLong, numberWithLongLong, numberWithUnsignedLongLong, numberWithFloat,
                    numberWithDouble, initWithBool, initWithInt, initWithUnsignedInt, initWithLongLong,
                    initWithUnsignedLongLong, initWithFloat, initWithDouble);

  public:
    // Creation. Operations whose names begin with "init" return owned numbers, the others borrowed ones.

    static NSNumber* numberWithBool(bool value);
    static NSNumber* numberWithChar(signed char value);
    static NSNumber* numberWithUnsignedChar(unsigned char value);
    static NSNumber* numberWithShort(short value);
    static NSNumber* numberWithUnsignedShort(unsigned short value);
    static NSNumber* numberWithInt(int value);
    static NSNumber* numberWithUnsignedInt(unsigned value);
    static NSNumber* numberWithLong(long value);
    static NSNumber* numberWithUnsignedLong(unsigned long value);
    static NSNumber* numberWithLongLong(long long value);
    static NSNumber* numberWithUnsignedLongLong(unsigned long long value);
    static NSNumber* numberWithFloat(float value);
    static NSNumber* numberWithDouble(double value);

    static Retained<NSNumber> initWithBool(bool value);
    static Retained<NSNumber> initWithInt(int value);
    static Retained<NSNumber> initWithUnsignedInt(unsigned value);
    static Retained<NSNumber> initWithLongLong(long long value);
    static Retained<NSNumber> initWithUnsignedLongLong(unsigned long long value);
    static Retained<NSNumber> initWithFloat(float value);
    static Retained<NSNumber> initWithDouble(double value);

    // Reading

    /// Whether the number is not 0.
    virtual bool boolValue();
    virtual signed char charValue();
    virtual unsigned char unsignedCharValue();
    virtual short shortValue();
    virtual unsigned short unsignedShortValue();
    virtual int intValue();
    virtual unsigned unsignedIntValue();
    virtual long longValue();
    virtual unsigned long unsignedLongValue();
    virtual long long longLongValue();
    virtual unsigned long long unsignedLongLongValue();
    virtual float floatValue();
    virtual double doubleValue();
    /// The shortest text from which the same number is read again, such as "0.1", in every locale. The text
    /// of a boolean is "1" or "0".
    virtual NSString* stringValue();

    /// Compares by value. Raises NSInvalidArgumentException if the other number is null.
    NSComparisonResult compare(NSNumber* other);
    bool isEqualToNumber(NSNumber* other);

    // C++ only
    /// Whether the number was made from a boolean.
    bool isBoolean() { return objCType()[0] == 'B'; }

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    NSString* description() override { return stringValue(); }
    Retained<NSNumber> copy();

  protected:
    constexpr NSNumber() noexcept = default;
    constexpr NSNumber(Class* isa, std::uint32_t count) noexcept : NSValue(isa, count) {}
    ~NSNumber() = default;
};

}  // namespace pelvor
