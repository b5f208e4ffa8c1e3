// SPDX-License-Identifier: Apache-2.0
// NSValue: a plain value in an object.
#pragma once

#include <cstring>

#include "Foundation/NSGeometry.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

/// Writes the size and alignment in bytes of a type by its encoding, where asked for, and answers what
/// follows the type in the text. Raises NSInvalidArgumentException for a text that is no encoding.
PELVOR_EXPORT const char* NSGetSizeAndAlignment(const char* type, NSUInteger* size, NSUInteger* alignment);

/// An immutable plain value with the encoding of its type. Two are equal when types and bytes are; so
/// structures should have no unused bytes between their fields. Abstract over `objCType` and
/// `getValue`.
///
///     NSValue* boxed = NSValue::valueWithRange(NSMakeRange(3, 4));
///     NSValue* other = NSValue::of(MyPlainStruct{1, 2});    other->as<MyPlainStruct>()
///
/// Any thread.
class PELVOR_EXPORT NSValue : public NSObject {
    PELVOR_CLASS(NSValue, NSObject);
    PELVOR_CREATORS(valueWithBytes_objCType, initWithBytes_objCType, valueWithRange, valueWithPoint,
                    valueWithSize, valueWithRect, valueWithPointer, valueWithNonretainedObject, of,
                    withTypedBytes);

  public:
    // Creation: borrowed values, an owned one from `initWithBytes_objCType`. A bad encoding raises
    // NSInvalidArgumentException.

    static NSValue* valueWithBytes_objCType(const void* bytes, const char* type);
    static Retained<NSValue> initWithBytes_objCType(const void* bytes, const char* type);
    static NSValue* valueWithRange(NSRange range);
    static NSValue* valueWithPoint(NSPoint point);
    static NSValue* valueWithSize(NSSize size);
    static NSValue* valueWithRect(NSRect rect);
    static NSValue* valueWithPointer(const void* pointer);
    /// The object is not kept alive.
    static NSValue* valueWithNonretainedObject(id object);

    // C++ only
    /// Any plain structure or number; a structure has up to six fields.
    template <class T>
    static NSValue* of(const T& value) {
        return withTypedBytes(&value, sizeof(T), typeEncoding<T>.text).autorelease();
    }

    // Primitives

    virtual const char* objCType() = 0;
    /// Writes the value to the buffer, which must have room for it.
    virtual void getValue(void* buffer) = 0;

    // Reading. A value of another type raises NSInvalidArgumentException.

    NSRange rangeValue() { return as<NSRange>(); }
    NSPoint pointValue() { return as<NSPoint>(); }
    NSSize sizeValue() { return as<NSSize>(); }
    NSRect rectValue() { return as<NSRect>(); }
    void* pointerValue() { return as<void*>(); }
    id nonretainedObjectValue() { return as<id>(); }

    // C++ only
    template <class T>
    T as() {
        T value{};
        requireType(typeEncoding<T>.text);
        getValue(&value);
        return value;
    }

    bool isEqualToValue(NSValue* other);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// The bytes as hexadecimal text in angle brackets; ranges, points, sizes and rectangles readable.
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    constexpr NSValue() noexcept = default;
    constexpr NSValue(Class* isa, std::uint32_t count) noexcept : NSObject(isa, count) {}
    ~NSValue() = default;

  private:
    static Retained<NSValue> withTypedBytes(const void* bytes, std::size_t size, const char* immortalType);
    void requireType(const char* type);
};

}  // namespace pelvor
