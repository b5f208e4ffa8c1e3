// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSValue.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSRangeValue.h"
#include "Foundation/NSString.h"
#include "Foundation/Strings/ByteText.h"
#include "Foundation/Values/ConcreteValues.h"
#include "Runtime/NSException.h"
#include "Runtime/NSMethodSignature.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSInlineValue, foundationLibrary) {}

PELVOR_DEFINE_CLASS(NSValue, foundationLibrary) {
    methods.creator<"valueWithBytes:objCType:", &NSValue::valueWithBytes_objCType>();
    methods.creator<"initWithBytes:objCType:", &NSValue::initWithBytes_objCType>();
    methods.creator<"valueWithRange:", &NSValue::valueWithRange>();
    methods.creator<"valueWithPoint:", &NSValue::valueWithPoint>();
    methods.creator<"valueWithSize:", &NSValue::valueWithSize>();
    methods.creator<"valueWithRect:", &NSValue::valueWithRect>();
    methods.creator<"valueWithPointer:", &NSValue::valueWithPointer>();
    methods.creator<"valueWithNonretainedObject:", &NSValue::valueWithNonretainedObject>();
    methods.instance<"objCType", &NSValue::objCType>();
    methods.instance<"getValue:", &NSValue::getValue>();
    methods.instance<"rangeValue", &NSValue::rangeValue>();
    methods.instance<"pointValue", &NSValue::pointValue>();
    methods.instance<"sizeValue", &NSValue::sizeValue>();
    methods.instance<"rectValue", &NSValue::rectValue>();
    methods.instance<"pointerValue", &NSValue::pointerValue>();
    methods.instance<"nonretainedObjectValue", &NSValue::nonretainedObjectValue>();
    methods.instance<"isEqualToValue:", &NSValue::isEqualToValue>();
}

namespace {

bool isSameType(const char* a, const char* b) { return a == b || std::strcmp(a, b) == 0; }

}  // namespace

// MARK: Creation

Retained<NSInlineValue> NSInlineValue::create(const void* bytes, std::size_t size, const char* type) {
    auto* value = Instances::createWithExtra<NSInlineValue>(size, &classRecord, type, size);
    std::memcpy(static_cast<void*>(value + 1), bytes, size);
    return Retained<NSInlineValue>::adopting(value);
}

Retained<NSInlineValue> NSInlineValue::createWithTypeName(const void* bytes, std::size_t size,
                                                          std::string_view type) {
    auto* value =
        Instances::createWithExtra<NSInlineValue>(size + type.size() + 1, &classRecord, nullptr, size);
    auto* place = reinterpret_cast<char*>(value + 1);
    std::memcpy(place, bytes, size);
    value->_type = place + size;
    place[size + type.copy(place + size, type.size())] = '\0';
    return Retained<NSInlineValue>::adopting(value);
}

Retained<NSValue> NSValue::withTypedBytes(const void* bytes, std::size_t size, const char* immortalType) {
    if (size != sizeof(NSRange) || !isSameType(immortalType, typeEncoding<NSRange>.text))
        return NSInlineValue::create(bytes, size, immortalType);
    NSRange range;
    std::memcpy(&range, bytes, sizeof range);
    return NSRangeValue::create(range);
}

namespace {

// The size of the one type that the text names.
NSUInteger sizeOfValue(const void* bytes, const char* type, const char* operation) {
    NSUInteger size = 0;
    if (*measureType(type, &size, nullptr, operation) != '\0')
        raiseBadArgument(operation, std::string("\"") + type + "\" is more than one type");
    if (!bytes) raiseNullArgument(operation, "the bytes");
    return size;
}

}  // namespace

NSValue* NSValue::valueWithBytes_objCType(const void* bytes, const char* type) {
    sizeOfValue(bytes, type, "valueWithBytes:objCType:");
    return initWithBytes_objCType(bytes, type).autorelease();
}

Retained<NSValue> NSValue::initWithBytes_objCType(const void* bytes, const char* type) {
    NSUInteger size = sizeOfValue(bytes, type, "initWithBytes:objCType:");
    if (isSameType(type, typeEncoding<NSRange>.text))
        return withTypedBytes(bytes, size, typeEncoding<NSRange>.text);
    return NSInlineValue::createWithTypeName(bytes, size, type);
}

NSValue* NSValue::valueWithRange(NSRange range) { return of(range); }
NSValue* NSValue::valueWithPoint(NSPoint point) { return of(point); }
NSValue* NSValue::valueWithSize(NSSize size) { return of(size); }
NSValue* NSValue::valueWithRect(NSRect rect) { return of(rect); }
NSValue* NSValue::valueWithPointer(const void* pointer) { return of(const_cast<void*>(pointer)); }
NSValue* NSValue::valueWithNonretainedObject(id object) { return of(object); }

// MARK: Reading

void NSValue::requireSameText(const char* own, const char* type, const char* operation) {
    if (std::strcmp(own, type) != 0)
        raiseBadArgument(operation, "the value holds " + detail::describeType(own) + ", not " +
                                        detail::describeType(type));
}

void NSInlineValue::getValue(void* buffer) {
    if (!buffer) raiseNullArgument("getValue:", "the buffer");
    std::memcpy(buffer, span().data(), _size);
}

namespace {

// The bytes of a value, where they stand or in `copy`.
std::span<const std::byte> bytesOf(NSValue* value, std::vector<std::byte>& copy) {
    if (value->isa() == NSInlineValue::classObject()) return static_cast<NSInlineValue*>(value)->span();
    if (value->isa() == NSRangeValue::classObject()) return static_cast<NSRangeValue*>(value)->span();
    NSUInteger size = 0;
    NSGetSizeAndAlignment(value->objCType(), &size, nullptr);
    copy.resize(size);
    value->getValue(copy.data());
    return copy;
}

}  // namespace

bool NSValue::isEqualToValue(NSValue* other) { return isEqual(other); }

bool NSValue::isEqual(id other) {
    if (this == other) return true;
    auto* value = cast<NSValue>(other);
    if (!value || cast<NSNumber>(value) || !isSameType(objCType(), value->objCType())) return false;
    std::vector<std::byte> copy, otherCopy;
    return std::ranges::equal(bytesOf(this, copy), bytesOf(value, otherCopy));
}

std::uintptr_t NSValue::hash() {
    std::vector<std::byte> copy;
    auto bytes = bytesOf(this, copy);
    return std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

NSString* NSValue::description() {
    std::string_view type = objCType();
    if (type == typeEncoding<NSPoint>.text) return NSStringFromPoint(pointValue());
    if (type == typeEncoding<NSSize>.text) return NSStringFromSize(sizeValue());
    if (type == typeEncoding<NSRect>.text) return NSStringFromRect(rectValue());
    if (type == typeEncoding<NSRange>.text) return NSString::ofUTF8(rangeText(rangeValue()));
    std::vector<std::byte> copy;
    return hexadecimalDescription(bytesOf(this, copy));
}

Retained<NSValue> NSValue::copy() { return cast<NSValue>(copyWithZone(nullptr)); }

Retained<Object> NSValue::copyWithZone(void*) { return Retained<Object>::retaining(this); }

}  // namespace pelvor
