// SPDX-License-Identifier: Apache-2.0
// The result, the receiver and the arguments of a function's type.
#pragma once

#include <cstddef>

namespace pelvor::detail {

/// The parts of a function's type. `Receiver` is the class of a member function.
template <class F>
struct FunctionTypes;
template <class R, class... A>
struct FunctionTypes<R (*)(A...)> {
    using Result = R;
    using Receiver = void;
    template <template <class...> class List>
    using Arguments = List<A...>;
};
template <class R, class... A>
struct FunctionTypes<R (*)(A...) noexcept> : FunctionTypes<R (*)(A...)> {};
template <class R, class C, class... A>
struct FunctionTypes<R (C::*)(A...)> : FunctionTypes<R (*)(A...)> {
    using Receiver = C;
};
template <class R, class C, class... A>
struct FunctionTypes<R (C::*)(A...) const> : FunctionTypes<R (C::*)(A...)> {};
template <class R, class C, class... A>
struct FunctionTypes<R (C::*)(A...) noexcept> : FunctionTypes<R (C::*)(A...)> {};
template <class R, class C, class... A>
struct FunctionTypes<R (C::*)(A...) const noexcept> : FunctionTypes<R (C::*)(A...)> {};

template <class... A>
struct TypeList {
    static constexpr std::size_t count = sizeof...(A);
};
template <class List>
struct Front;
template <class First, class... Rest>
struct Front<TypeList<First, Rest...>> {
    using type = First;
    using rest = TypeList<Rest...>;
};
template <class List, class... Kept>
struct DropLast;
template <class Last, class... Kept>
struct DropLast<TypeList<Last>, Kept...> {
    using type = TypeList<Kept...>;
    using last = Last;
};
template <class First, class Second, class... Rest, class... Kept>
struct DropLast<TypeList<First, Second, Rest...>, Kept...>
    : DropLast<TypeList<Second, Rest...>, Kept..., First> {};

}  // namespace pelvor::detail
