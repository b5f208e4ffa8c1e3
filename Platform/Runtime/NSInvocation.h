// SPDX-License-Identifier: Apache-2.0
// NSInvocation: a message as an object.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

/// A message with its target, its arguments and, once it was invoked, its result:
///
///     NSMethodSignature* types = lamp->methodSignatureForSelector("setLevel:animated:"_sel);
///     NSInvocation* message = NSInvocation::invocationWithMethodSignature(types);
///     message->setSelector("setLevel:animated:"_sel);
///     message->setArgument(2, 50);  // arguments 0 and 1 are the target and the selector
///     message->setArgument(3, true);
///     message->invokeWithTarget(lamp);
///
/// The target and arguments that are objects are borrowed, until `retainArguments` is called. One thread at a
/// time.
class PELVOR_EXPORT NSInvocation final : public NSObject {
    PELVOR_CLASS(NSInvocation, NSObject);

  public:
    /// An invocation whose arguments are all zero. Raises NSInvalidArgumentException if the signature is
    /// null.
    static NSInvocation* invocationWithMethodSignature(NSMethodSignature* signature);
    static Retained<NSInvocation> initWithMethodSignature(NSMethodSignature* signature);

    // C++ only
    /// The message that is on its way to `target`, arguments still zero.
    static Retained<NSInvocation> forMessage(NSMethodSignature* signature, Object* target, SEL selector);

    NSMethodSignature* methodSignature() { return _signature; }
    Object* target() { return _target; }
    void setTarget(Object* target);
    SEL selector() { return _selector; }
    void setSelector(SEL selector) { _selector = selector; }

    /// These copy the argument from, or to, the caller's buffer, which must have the argument's type. They
    /// raise NSInvalidArgumentException for an index out of bounds.
    void setArgument_atIndex(const void* buffer, int index);
    void getArgument_atIndex(void* buffer, int index);

    /// These copy the result from, or to, the caller's buffer. They do nothing if the method has no result.
    void getReturnValue(void* buffer);
    void setReturnValue(const void* buffer);

    /// From now on the invocation retains its target and the arguments that are objects, and copies
    /// zero-terminated texts.
    void retainArguments();
    bool argumentsRetained() { return _retainsArguments; }

    /// Sends the message to the target and keeps the result; a result object is kept alive by the
    /// current autorelease pool, or by the invocation if it retains its arguments.
    void invoke();
    /// Makes `target` the target and sends the message to it.
    void invokeWithTarget(Object* target);

    // C++ only
    /// Sets the argument to the value. Raises NSInvalidArgumentException if the argument is of another type.
    template <class T>
    void setArgument(int index, T value) {
        const ArgumentLayout& argument = argumentAtIndex(index);
        if (argument.encoding != typeEncoding<T>.text) [[unlikely]]
            requireType(argument, typeEncoding<T>.text);
        Wire<T> wire = detail::toWire(value);
        if (_retainsArguments) [[unlikely]]
            return setArgument_atIndex(&wire, index);
        ::new (_frame + argument.offset) Wire<T>(wire);
    }
    /// Returns the result. Raises NSInvalidArgumentException if the result is of another type.
    template <class T>
    T returnValue() {
        const ArgumentLayout& result = _signature->result();
        if (result.encoding != typeEncoding<T>.text) [[unlikely]]
            requireType(result, typeEncoding<T>.text);
        return detail::resultFromWire<T>(*reinterpret_cast<Wire<T>*>(_result), _target, _selector);
    }
    /// The argument frame, and the place of the result, for the message machinery.
    std::byte* frame() { return _frame; }
    void* result() { return _result; }

  protected:
    NSInvocation(NSMethodSignature* signature, Object* target, SEL selector);
    ~NSInvocation();

    // Invocations come and go with every forwarded message: each thread keeps the memory of a few.
    static void* operator new(std::size_t size);
    static void operator delete(void* memory) noexcept;

  private:
    const ArgumentLayout& argumentAtIndex(int index) {
        if (index < 2 || static_cast<std::uint32_t>(index) >= _signature->numberOfArguments()) [[unlikely]]
            raiseIndex(index);
        return _signature->argument(static_cast<std::uint32_t>(index) - 2);
    }
    [[noreturn]] void raiseIndex(int index);
    void requireType(const ArgumentLayout& place, const char* encoding);
    void clearResult();
    void hold(const ArgumentLayout& argument, void* place);
    void drop(const ArgumentLayout& argument, void* place);

    static constexpr std::uint32_t kInlineFrame = 64;
    static constexpr std::uint32_t kInlineResult = 16;

    Unretained<NSMethodSignature> _signature;
    Unretained<Object> _target;  // owned once the arguments are retained
    SEL _selector;
    bool _retainsArguments = false;
    bool _holdsResult = false;
    std::byte* _frame;
    std::byte* _result;
    alignas(16) std::byte _inlineFrame[kInlineFrame];
    alignas(16) std::byte _inlineResult[kInlineResult];
};

}  // namespace pelvor
