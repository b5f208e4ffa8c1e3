// SPDX-License-Identifier: Apache-2.0
#include "Runtime/Message.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "Runtime/NSInvocation.h"
#include "Runtime/Private/Failures.h"

namespace pelvor {
namespace {

[[noreturn]] void raiseType(Object* target, SEL selector, const std::string& what, const char* given,
                            const char* expected) {
    throw NSException(NSInvalidArgumentException, methodName(target, selector) + ": " + what + " is " +
                                                      detail::describeType(given) + " where " +
                                                      detail::describeType(expected) + " is expected");
}

// MARK: Conversion between unlike types

// A number on its way from one encoding to another. Integers keep their 64 bits, as a C conversion does.
struct Number {
    bool isFloating;
    std::uint64_t bits;
    double floating;
};

template <class T>
T readAs(const void* place) {
    T value;
    std::memcpy(&value, place, sizeof value);
    return value;
}

template <class T>
Number integer(const void* place) {
    T value = readAs<T>(place);
    return {false, static_cast<std::uint64_t>(static_cast<std::int64_t>(value)), static_cast<double>(value)};
}

bool readNumber(char encoding, const void* place, Number& number) {
    switch (encoding) {
        case 'B':
            number = integer<bool>(place);
            return true;
        case 'c':
            number = integer<std::int8_t>(place);
            return true;
        case 'C':
            number = integer<std::uint8_t>(place);
            return true;
        case 's':
            number = integer<std::int16_t>(place);
            return true;
        case 'S':
            number = integer<std::uint16_t>(place);
            return true;
        case 'i':
            number = integer<std::int32_t>(place);
            return true;
        case 'I':
            number = integer<std::uint32_t>(place);
            return true;
        case 'q':
            number = integer<std::int64_t>(place);
            return true;
        case 'Q':
            number = integer<std::uint64_t>(place);
            return true;
        case 'f':
            number = {true, 0, readAs<float>(place)};
            return true;
        case 'd':
            number = {true, 0, readAs<double>(place)};
            return true;
        default:
            return false;
    }
}

template <class T>
bool write(void* place, T value) {
    std::memcpy(place, &value, sizeof value);
    return true;
}

// The fraction of a floating-point number is cut off, and a number that the integer type cannot hold becomes
// the nearest one that it can.
template <class T>
bool writeInteger(void* place, const Number& number) {
    if (!number.isFloating) return write(place, static_cast<T>(number.bits));
    using Limits = std::numeric_limits<T>;
    if (std::isnan(number.floating)) return write(place, T(0));
    if (number.floating <= static_cast<double>(Limits::min())) return write(place, Limits::min());
    if (number.floating >= static_cast<double>(Limits::max())) return write(place, Limits::max());
    return write(place, static_cast<T>(number.floating));
}

bool writeNumber(char encoding, void* place, const Number& number) {
    switch (encoding) {
        case 'B':
            return write(place, number.isFloating ? number.floating != 0 : number.bits != 0);
        case 'c':
            return writeInteger<std::int8_t>(place, number);
        case 'C':
            return writeInteger<std::uint8_t>(place, number);
        case 's':
            return writeInteger<std::int16_t>(place, number);
        case 'S':
            return writeInteger<std::uint16_t>(place, number);
        case 'i':
            return writeInteger<std::int32_t>(place, number);
        case 'I':
            return writeInteger<std::uint32_t>(place, number);
        case 'q':
            return writeInteger<std::int64_t>(place, number);
        case 'Q':
            return writeInteger<std::uint64_t>(place, number);
        case 'f':
            return write(place, static_cast<float>(number.floating));
        case 'd':
            return write(place, number.floating);
        default:
            return false;
    }
}

// Copies a value by moves of its own width: a wider read of what was just written would have to wait for it.
inline void copyValue(void* destination, const void* source, std::uint32_t size) {
    switch (size) {
        case 4:
            std::memcpy(destination, source, 4);
            break;
        case 8:
            std::memcpy(destination, source, 8);
            break;
        default:
            std::memcpy(destination, source, size);
    }
}

bool isPointer(const char* encoding) { return encoding[0] == '^' || encoding[0] == '*'; }

// Copies a value from one type to another; false when the types have nothing in common.
bool convert(const ArgumentLayout& from, const void* source, const ArgumentLayout& to, void* destination) {
    if (from.encoding == to.encoding || std::strcmp(from.encoding, to.encoding) == 0) {
        copyValue(destination, source, to.size);
        return true;
    }
    Number number;
    if (readNumber(from.encoding[0], source, number)) return writeNumber(to.encoding[0], destination, number);
    bool isAnyPointer = isPointer(from.encoding) && isPointer(to.encoding) &&
                        (std::strcmp(from.encoding, "^v") == 0 || std::strcmp(to.encoding, "^v") == 0);
    if (isAnyPointer || (from.encoding[0] == '#' && to.encoding[0] == '@')) {
        std::memcpy(destination, source, sizeof(void*));
        return true;
    }
    if (from.encoding[0] == '@' && to.encoding[0] == '#') {
        Object* object = readAs<Object*>(source);
        return (!object || asClass(object)) && write(destination, asClass(object));
    }
    return false;
}

// A frame or a result of a size that is known only at run time, on the stack while it is small.
class Buffer {
  public:
    explicit Buffer(std::size_t size) {
        if (size > sizeof _inline) _bytes = _heap = static_cast<std::byte*>(::operator new(size));
        std::memset(_bytes, 0, size);
    }
    ~Buffer() { ::operator delete(_heap); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    std::byte* bytes() { return _bytes; }

  private:
    alignas(16) std::byte _inline[128];
    std::byte* _bytes = _inline;
    std::byte* _heap = nullptr;
};

void convertArguments(Object* target, SEL selector, NSMethodSignature* given, const std::byte* source,
                      NSMethodSignature* expected, std::byte* destination) {
    if (given->key() == expected->key()) {
        for (std::uint32_t i = 0; i < expected->argumentCount(); ++i) {
            const ArgumentLayout& place = expected->argument(i);
            copyValue(destination + place.offset, source + place.offset, place.size);
        }
        return;
    }
    if (given->argumentCount() != expected->argumentCount())
        throw NSException(NSInvalidArgumentException, methodName(target, selector) + ": the method takes " +
                                                          std::to_string(expected->argumentCount()) +
                                                          " arguments, not " +
                                                          std::to_string(given->argumentCount()));
    for (std::uint32_t i = 0; i < expected->argumentCount(); ++i) {
        const ArgumentLayout& from = given->argument(i);
        const ArgumentLayout& to = expected->argument(i);
        if (!convert(from, source + from.offset, to, destination + to.offset))
            raiseType(target, selector, "argument " + std::to_string(i + 1), from.encoding, to.encoding);
    }
}

void convertResult(Object* target, SEL selector, NSMethodSignature* given, const void* source,
                   NSMethodSignature* expected, void* destination) {
    if (expected->result().size == 0 || given->result().size == 0) return;
    if (given->key() == expected->key()) return copyValue(destination, source, expected->result().size);
    if (!convert(given->result(), source, expected->result(), destination))
        raiseType(target, selector, "the result", given->methodReturnType(), expected->methodReturnType());
}

// MARK: Roads of a message

void invokeMethod(const IMP& method, Object* target, SEL selector, NSMethodSignature* types,
                  const std::byte* frame, void* result) {
    if (method.signature->key() == types->key())
        return method.signature->invoke(method.function, target, selector, frame, result);
    Buffer arguments(method.signature->frameLength());
    Buffer answer(method.signature->methodReturnLength());
    convertArguments(target, selector, types, frame, method.signature, arguments.bytes());
    method.signature->invoke(method.function, target, selector, arguments.bytes(), answer.bytes());
    convertResult(target, selector, method.signature, answer.bytes(), types, result);
}

void forward(Object* target, SEL selector, NSMethodSignature* types, const std::byte* frame, void* result) {
    NSMethodSignature* signature = target->methodSignatureForSelector(selector);
    if (!signature) target->doesNotRecognizeSelector(selector);
    auto invocation = NSInvocation::forMessage(signature, target, selector);
    convertArguments(target, selector, types, frame, signature, invocation->frame());
    target->forwardInvocation(invocation);
    convertResult(target, selector, signature, invocation->result(), types, result);
    // One that was kept for another thread owns its result, which must outlive this call.
    if (invocation->argumentsRetained()) std::move(invocation).autorelease();
}

}  // namespace

void (*detail::matchingFunction(Class* cls, SEL selector, std::uint64_t signatureKey))() {
    IMP method = cls->lookUp(selector);
    return method && method.signature->key() == signatureKey ? method.function : nullptr;
}

void sendFrameFrom(Class* cls, Object* target, SEL selector, NSMethodSignature* types, const std::byte* frame,
                   void* result) {
    const CacheEntry* entry = cls->cached(selector);
    IMP method = entry->selector == selector ? IMP{entry->function, entry->signature} : cls->lookUp(selector);
    if (method)
        invokeMethod(method, target, selector, types, frame, result);
    else
        forward(target, selector, types, frame, result);
}

void sendFrame(Object* target, SEL selector, NSMethodSignature* types, const std::byte* frame, void* result) {
    if (target) sendFrameFrom(target->isa(), target, selector, types, frame, result);
}

void raiseArgumentClass(Object* receiver, SEL selector, int position, Object* argument, Class* expected) {
    const std::string what = position ? "argument " + std::to_string(position) : "the result";
    throw NSException(NSInvalidArgumentException, methodName(receiver, selector) + ": " + what +
                                                      " is an object of class " +
                                                      argument->isa()->publicName() + " where one of class " +
                                                      expected->name() + " is expected");
}

}  // namespace pelvor
