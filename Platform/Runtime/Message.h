// SPDX-License-Identifier: Apache-2.0
// Sending messages by selector.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

namespace detail {

/// The function of the method if the method has exactly these types, else null.
PELVOR_EXPORT void (*matchingFunction(Class* cls, SEL selector, std::uint64_t signatureKey))();

template <class R, class... Arguments>
R sendFrom(Class* cls, Object* target, SEL selector, const Arguments&... arguments);

}  // namespace detail

/// Sends a message whose arguments stand in a frame laid out by `types`: looks the method up, converts
/// arguments and result between unlike number types, or forwards the message. Raises
/// NSInvalidArgumentException for types that cannot be converted, naming method, argument and types,
/// and for a message that the target does not understand. Does nothing if `target` is null.
PELVOR_EXPORT void sendFrame(Object* target, SEL selector, NSMethodSignature* types, const std::byte* frame,
                             void* result);
/// Sends the message as `sendFrame` does, with the method that objects of `cls` have.
PELVOR_EXPORT void sendFrameFrom(Class* cls, Object* target, SEL selector, NSMethodSignature* types,
                                 const std::byte* frame, void* result);

/// Sends a message: `send<int>(object, "indexOf:"_sel, other)`. A message to null does nothing and returns
/// zero. The number types may differ from those of the method. An object that is the result is borrowed, even
/// if the method returns it owned; with `Retained<T>` as the result type, the result is retained. Any thread.
template <class R = void, class... Arguments>
R send(Object* target, SEL selector, const Arguments&... arguments) {
    if (!target) [[unlikely]]
        return R();
    return detail::sendFrom<R>(target->isa(), target, selector, arguments...);
}

/// Sends a message to `target`, and uses the method that objects of the superclass of `cls` have. Inside a
/// method of `cls`, this calls the method that it overrides.
template <class R = void, class... Arguments>
R sendSuper(Class* cls, Object* target, SEL selector, const Arguments&... arguments) {
    return detail::sendFrom<R>(cls->superclass(), target, selector, arguments...);
}

namespace detail {

// The road for a message without a method of exactly these types.
template <class R, class... Arguments>
[[gnu::noinline]] R sendThroughFrame(Class* cls, Object* target, SEL selector, Wire<Arguments>... arguments) {
    using Signature = SignatureFor<R, Arguments...>;
    alignas(16) std::byte frame[Signature::kFrameLength + 1];
    if constexpr (Signature::kCount == 0) frame[0] = {};
    std::size_t index = 0;
    [[maybe_unused]] auto store = [&]<class W>(W value) {
        ::new (frame + Signature::kArguments[index++].offset) W(value);
    };
    (store(arguments), ...);
    if constexpr (std::is_void_v<R>) {
        sendFrameFrom(cls, target, selector, &Signature::object, frame, nullptr);
    } else {
        Wire<R> result{};
        sendFrameFrom(cls, target, selector, &Signature::object, frame, &result);
        return resultFromWire<R>(result, target, selector);
    }
}

template <class R, class... Arguments>
inline R sendFrom(Class* cls, Object* target, SEL selector, const Arguments&... arguments) {
    constexpr std::uint64_t key = SignatureFor<R, std::decay_t<Arguments>...>::kKey;
    const CacheEntry* entry = cls->cached(selector);
    void (*function)() = entry->function;
    if (entry->selector != selector || entry->signatureKey != key) [[unlikely]] {
        // What the cache knows under the selector has other types, or is known to be missing.
        function = entry->selector == selector ? nullptr : matchingFunction(cls, selector, key);
        if (!function)
            return sendThroughFrame<R, std::decay_t<Arguments>...>(cls, target, selector,
                                                                   toWire(arguments)...);
    }
    auto call = reinterpret_cast<Wire<R> (*)(Object*, SEL, Wire<std::decay_t<Arguments>>...)>(function);
    if constexpr (std::is_void_v<R>)
        call(target, selector, toWire(arguments)...);
    else
        return resultFromWire<R>(call(target, selector, toWire(arguments)...), target, selector);
}

}  // namespace detail
}  // namespace pelvor
