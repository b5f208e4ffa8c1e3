// SPDX-License-Identifier: Apache-2.0
// NSValue: a plain value in an object.
#pragma once

#include <cstring>

#include "Foundation/NSGeometry.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

/// Writes the size and the alignment, in bytes, of the first type in a text of type encodings; either pointer
/// may be null. Returns the rest of the text, behind that type. Raises NSInvalidArgumentException for a text
/// that is no encoding.
PELVOR_EXPORT const char* NSGetSizeAndAlignment(const char* type, NSUInteger* size, NSUInteger* alignment);

/// An immutable object that holds a plain value and the encoding of its type.
///
///     NSValue* boxed = NSValue::valueWithRange(NSMakeRange(3, 4));
///     NSRange range = boxed->rangeValue();                              // {3, 4}
///     struct Cell { int row, column; };
///     int row = NSValue::of(Cell{1, 2})->as<Cell>().row;                // 1
///
/// Two values are equal if their types and their bytes are equal, so structures should have no unused bytes
/// between their fields. The class is abstract: a subclass implements `objCType` and `getValue`. Any thread.
class PELVOR_EXPORT NSValue : public NSObject {
    PELVOR_CLASS(NSValue, NSObject);
    PELVOR_CREATORS(valueWithBytes_objCType, initWithBytes_objCType, valueWithRange, valueWithPoint,
                    valueWithSize, valueWithRect, valueWithPointer, valueWithNonretainedObject, of,
                    withTypedBytes);

  public:
    // Creation. `initWithBytes_objCType` returns an owned value, the other operations borrowed ones. A null
    // pointer to the bytes, and a text that is not the encoding of one type, raise
    // NSInvalidArgumentException.

    static NSValue* valueWithBytes_objCType(const void* bytes, const char* type);
    static Retained<NSValue> initWithBytes_objCType(const void* bytes, const char* type);
    static NSValue* valueWithRange(NSRange range);
    static NSValue* valueWithPoint(NSPoint point);
    static NSValue* valueWithSize(NSSize size);
    static NSValue* valueWithRect(NSRect rect);
    static NSValue* valueWithPointer(const void* pointer);
    /// The value does not retain the object, which may be null.
    static NSValue* valueWithNonretainedObject(id object);

    // C++ only
    /// A value that holds a plain structure or a number. A structure may have up to six fields.
    template <class T>
    static NSValue* of(const T& value) {
        return withTypedBytes(&value, sizeof(T), typeEncoding<T>.text).autorelease();
    }

    // Primitives

    /// The encoding of the value's type. The text is valid as long as the value exists.
    virtual const char* objCType() = 0;
    /// Copies the value to the buffer, which must be large enough for the type. Raises
    /// NSInvalidArgumentException if the buffer is null.
    virtual void getValue(void* buffer) = 0;

    // Reading. These raise NSInvalidArgumentException if the value is of another type.

    NSRange rangeValue() { return read<NSRange>("rangeValue"); }
    NSPoint pointValue() { return read<NSPoint>("pointValue"); }
    NSSize sizeValue() { return read<NSSize>("sizeValue"); }
    NSRect rectValue() { return read<NSRect>("rectValue"); }
    void* pointerValue() { return read<void*>("pointerValue"); }
    /// Returns the object as it was given; whoever made the value sees to it that the object still exists.
    id nonretainedObjectValue() { return read<id>("nonretainedObjectValue"); }

    // C++ only
    /// The value as a T.
    template <class T>
    T as() {
        return read<T>("as");
    }

    /// Returns false for null.
    bool isEqualToValue(NSValue* other);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// The bytes as hexadecimal text in angle brackets; a range, point, size or rectangle as its numbers,
    /// "{3, 4}".
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<NSValue> copy();

  protected:
    constexpr NSValue() noexcept = default;
    constexpr NSValue(Class* isa, std::uint32_t count) noexcept : NSObject(isa, count) {}
    ~NSValue() = default;

  private:
    static Retained<NSValue> withTypedBytes(const void* bytes, std::size_t size, const char* immortalType);
    static void requireSameText(const char* own, const char* type, const char* operation);
    template <class T>
    T read(const char* operation) {
        T value{};
        const char* own = objCType();
        if (own != typeEncoding<T>.text) requireSameText(own, typeEncoding<T>.text, operation);
        getValue(&value);
        return value;
    }
};

}  // namespace pelvor
