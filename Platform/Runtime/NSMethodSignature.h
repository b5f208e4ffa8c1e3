// SPDX-License-Identifier: Apache-2.0
// NSMethodSignature: the types of a method, and how to call one from an argument frame.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <utility>

#include "Runtime/NSObject.h"
#include "Runtime/TypeEncoding.h"

namespace pelvor {

/// One argument of a frame, or a result: its encoding, its size, and its place in the frame, in bytes.
struct ArgumentLayout {
    const char* encoding;
    std::uint32_t size;
    std::uint32_t offset;
};

/// Calls `function` with the arguments that stand in `frame`; the result, if any, goes to `result`.
using FrameInvoker = void (*)(void (*function)(), Object* self, SEL selector, const std::byte* frame,
                              void* result);

class NSMethodSignature;

namespace detail {

/// The type that an encoding stands for, in words: "an int", "an object", "a struct NSRange".
PELVOR_EXPORT std::string describeType(const char* encoding);
/// "a method that takes (an int, an object) and returns a bool".
std::string describeTypes(const NSMethodSignature* signature);

}  // namespace detail

/// The types of a method, immutable and immortal. Arguments 0 and 1 are the receiver and the
/// selector; the message's own arguments begin at 2. Any thread.
class PELVOR_EXPORT NSMethodSignature final : public NSObject {
    PELVOR_CLASS(NSMethodSignature, NSObject);

  public:
    /// The signature with these encodings, such as "v@:@", if a method or a message with these types is
    /// known; else null.
    static NSMethodSignature* signatureWithObjCTypes(const char* types);

    /// The number of arguments; the receiver and the selector count.
    std::uint32_t numberOfArguments() { return _count + 2; }
    /// Raises NSInvalidArgumentException for an index out of bounds.
    const char* getArgumentTypeAtIndex(std::uint32_t index);
    const char* methodReturnType() { return _result.encoding; }
    /// The size of the result in bytes; 0 for a method without a result.
    std::uint32_t methodReturnLength() { return _result.size; }
    /// The bytes that the message's own arguments take in a frame.
    std::uint32_t frameLength() { return _frameLength; }

    bool isEqual(id other) override;
    std::uintptr_t hash() override { return _key; }
    NSString* description() override;

    // C++ only
    /// All encodings in one text, "i@:{_NSRange=II}".
    const char* types() const { return _types; }
    /// A number that stands for `types` in comparisons.
    std::uint64_t key() const { return _key; }
    /// The argument at `index`, the message's own first at 0.
    const ArgumentLayout& argument(std::uint32_t index) const { return _arguments[index]; }
    std::uint32_t argumentCount() const { return _count; }
    const ArgumentLayout& result() const { return _result; }
    void invoke(void (*function)(), Object* self, SEL selector, const std::byte* frame, void* result) const {
        _invoker(function, self, selector, frame, result);
    }

  private:
    template <class R, class... Arguments>
    friend struct SignatureFor;

    constexpr NSMethodSignature(const char* types, std::uint64_t key, const ArgumentLayout* arguments,
                                std::uint32_t count, ArgumentLayout result, std::uint32_t frameLength,
                                FrameInvoker invoker)
        : NSObject(&classRecord, kImmortal),
          _types(types),
          _key(key),
          _arguments(arguments),
          _result(result),
          _count(count),
          _frameLength(frameLength),
          _invoker(invoker) {}

    const char* _types;
    std::uint64_t _key;
    const ArgumentLayout* _arguments;
    ArgumentLayout _result;
    std::uint32_t _count;
    std::uint32_t _frameLength;
    FrameInvoker _invoker;
};

/// The signature of a method with this result and these arguments, as a compile-time constant.
template <class R, class... Arguments>
struct SignatureFor {
    static constexpr auto kTypes = ((typeEncoding<R> + FixedString("@:")) + ... + typeEncoding<Arguments>);
    static constexpr std::uint64_t kKey = detail::signatureKey(kTypes.view());
    static constexpr std::size_t kCount = sizeof...(Arguments);

    static consteval std::uint32_t wireSize(auto type) {
        using T = typename decltype(type)::type;
        if constexpr (std::is_void_v<T>)
            return 0;
        else
            return sizeof(T);
    }

    // Every argument begins at a multiple of 16 bytes: no plain value needs more.
    static constexpr std::uint32_t kFrameLength =
        (0u + ... + ((wireSize(std::type_identity<Wire<Arguments>>{}) + 15u) / 16u * 16u));

    static constexpr std::array<ArgumentLayout, kCount + 1> kArguments = [] {
        std::array<ArgumentLayout, kCount + 1> layouts{};
        std::uint32_t offset = 0;
        std::size_t index = 0;
        [[maybe_unused]] auto add = [&](const char* encoding, std::uint32_t size) {
            layouts[index++] = {encoding, size, offset};
            offset += (size + 15u) / 16u * 16u;
        };
        (add(typeEncoding<Arguments>.text, wireSize(std::type_identity<Wire<Arguments>>{})), ...);
        return layouts;
    }();

    static void invoke(void (*function)(), Object* self, SEL selector, const std::byte* frame, void* result) {
        [&]<std::size_t... I>(std::index_sequence<I...>) {
            auto call = reinterpret_cast<Wire<R> (*)(Object*, SEL, Wire<Arguments>...)>(function);
            if constexpr (std::is_void_v<R>)
                call(self, selector,
                     *reinterpret_cast<const Wire<Arguments>*>(frame + kArguments[I].offset)...);
            else
                *static_cast<Wire<R>*>(result) =
                    call(self, selector,
                         *reinterpret_cast<const Wire<Arguments>*>(frame + kArguments[I].offset)...);
        }
        (std::index_sequence_for<Arguments...>{});
    }

    inline static constinit NSMethodSignature object{
        kTypes.text,
        kKey,
        kArguments.data(),
        static_cast<std::uint32_t>(kCount),
        ArgumentLayout{typeEncoding<R>.text, wireSize(std::type_identity<Wire<R>>{}), 0},
        kFrameLength,
        &invoke};
};

}  // namespace pelvor
