// SPDX-License-Identifier: Apache-2.0
// Creators: class operations that make an object of the class that they are called on, also where they are
// inherited.
#pragma once
// Compilers then show the line that uses a macro of this header, not the hundred steps of its expansion.
#pragma GCC system_header

#include <string_view>
#include <type_traits>
#include <utility>

#include "Runtime/FunctionTypes.h"
#include "Runtime/Object.h"

namespace pelvor {

// A creator is a static member that returns a new object of its class, owned (`Retained<PBLamp>`) or borrowed
// (`PBLamp*`). C++ does not tell a static member through which subclass it was called, so a subclass has to
// say what becomes of each creator that it inherits. A class lists the creators that it declares, after
// PELVOR_CLASS:
//
//     class PBLamp : public NSObject {
//         PELVOR_CLASS(PBLamp, NSObject);
//         PELVOR_CREATORS(lampWithColour, initWithColour);
//
//       public:
//         static PBLamp* lampWithColour(NSString* colour, Class* cls = classObject());
//         static Retained<PBLamp> initWithColour(NSString* colour, Class* cls = classObject());
//
// and a subclass does one of three things with each inherited creator; one that does nothing does not
// compile:
//
//     class PBSpot : public PBLamp {
//         PELVOR_CLASS(PBSpot, PBLamp);
//         PELVOR_CREATORS(initWithColour);            // declared below, with code of its own
//         PELVOR_INHERITED_CREATORS(lampWithColour);  // PBSpot::lampWithColour(colour) makes a PBSpot
//
//       public:
//         static Retained<PBSpot> initWithColour(NSString* colour, Class* cls = classObject());
//
//     // PBTorch::lampWithColour(colour) does not compile:
//     class PBTorch : public PBLamp, PBLamp::HiddenCreators {
//
// Only creators that take the class as their last parameter can be inherited. The creators of NSString,
// NSArray, NSData and the other abstract classes of values and collections do not take the class, since they
// make objects of private classes. A subclass hides such creators, and a message that calls one of them on
// the subclass raises. Final classes need not say anything.

namespace detail {

template <class Self, class T>
inline constexpr bool isOwn = false;
template <class Self, class T>
inline constexpr bool isOwn<Self, Retained<T>> = std::is_base_of_v<Self, T>;
template <class Self, class T>
inline constexpr bool isOwn<Self, T*> = std::is_base_of_v<Self, T>;

/// A function object that calls the superclass's creator with the class that it is to make.
template <class Self, auto creator, class Arguments>
struct CreatorCall;
template <class Self, auto creator, class... A>
struct CreatorCall<Self, creator, TypeList<A...>> {
    using Inherited = typename FunctionTypes<decltype(creator)>::Result;
    using Result = std::conditional_t<isRetained<Inherited>, Retained<Self>, Self*>;

    /// Raises NSInvalidArgumentException if `cls` is no subclass of Self.
    Result operator()(A... arguments, Class* cls = Self::classObject()) const;  // in Class.h
};

/// Whether a function takes the receiving class as its last parameter.
template <class List>
inline constexpr bool takesClassLast = false;
template <class First, class... Rest>
inline constexpr bool takesClassLast<TypeList<First, Rest...>> =
    std::is_same_v<typename DropLast<TypeList<First, Rest...>>::last, Class*>;
template <auto creator>
inline constexpr bool canBeInherited =
    takesClassLast<typename FunctionTypes<decltype(creator)>::template Arguments<TypeList>>;

template <class Self, auto creator>
struct InheritedCreator
    : CreatorCall<
          Self, creator,
          typename DropLast<typename FunctionTypes<decltype(creator)>::template Arguments<TypeList>>::type> {
    static constexpr auto kFunction = creator;
};

/// The function behind a creator: the creator itself, or the function that an inherited creator calls.
template <auto creator>
constexpr auto creatorFunction() {
    if constexpr (requires { creator->kFunction; })
        return creator->kFunction;
    else
        return creator;
}

/// Whether a static member of the type `Member` makes objects of Self.
template <class Self, class Member>
inline constexpr bool makes = false;
template <class Self, class Result, class... Arguments>
inline constexpr bool makes<Self, Result(Arguments...)> = isOwn<Self, Result>;
template <class Self, class Other, auto inherited>
inline constexpr bool makes<Self, const InheritedCreator<Other, inherited>> = std::is_base_of_v<Self, Other>;

/// Whether a class lists the creator, among names that stand with commas and blanks between them.
consteval bool listsCreator(std::string_view list, std::string_view name) {
    while (!list.empty()) {
        std::string_view first = list.substr(0, list.find(','));
        list.remove_prefix(first.size() + (first.size() < list.size()));
        while (first.starts_with(' ')) first.remove_prefix(1);
        if (first == name) return true;
    }
    return false;
}

/// The name of a creator that a class hides.
struct HiddenCreator {};

/// Whether a class fulfils what PELVOR_CREATORS demands; where it does not, the compiler shows a message.
template <class Self>
consteval bool checkCreators() {
    if constexpr (std::is_final_v<Self>)
        return true;
    else
        return sizeof(typename Self::template CreatorCheck<Self>) > 0;
}

}  // namespace detail

// Applies a macro to each of up to 256 names.
#define PELVOR_PARENTHESES ()
#define PELVOR_EXPAND(...) PELVOR_EXPAND3(PELVOR_EXPAND3(PELVOR_EXPAND3(PELVOR_EXPAND3(__VA_ARGS__))))
#define PELVOR_EXPAND3(...) PELVOR_EXPAND2(PELVOR_EXPAND2(PELVOR_EXPAND2(PELVOR_EXPAND2(__VA_ARGS__))))
#define PELVOR_EXPAND2(...) PELVOR_EXPAND1(PELVOR_EXPAND1(PELVOR_EXPAND1(PELVOR_EXPAND1(__VA_ARGS__))))
#define PELVOR_EXPAND1(...) __VA_ARGS__
#define PELVOR_EACH(macro, ...) __VA_OPT__(PELVOR_EXPAND(PELVOR_EACH_STEP(macro, __VA_ARGS__)))
#define PELVOR_EACH_STEP(macro, name, ...) \
    macro(name) __VA_OPT__(PELVOR_EACH_AGAIN PELVOR_PARENTHESES(macro, __VA_ARGS__))
#define PELVOR_EACH_AGAIN() PELVOR_EACH_STEP

#define PELVOR_CHECK_CREATOR(name)                                                                      \
    static_assert(                                                                                      \
        !requires { requires !::pelvor::detail::makes<Self, decltype(Self::name)>; },                   \
        "the inherited creator " #name                                                                  \
        " would make an object of another class: name it in PELVOR_INHERITED_CREATORS, declare one of " \
        "the class's own, or derive from the superclass's HiddenCreators");
#define PELVOR_HIDE_CREATOR(name) static constexpr ::pelvor::detail::HiddenCreator name{};
#define PELVOR_INHERIT_CREATOR(name)                                                                         \
    static_assert(::pelvor::detail::canBeInherited<::pelvor::detail::creatorFunction<&Super::name>()>,       \
                  "the superclass's creator " #name                                                          \
                  " does not take the class, so it cannot be inherited: declare one of the class's own, or " \
                  "derive from the superclass's HiddenCreators");                                            \
    PELVOR_INHERIT_CREATOR_OBJECT(name)
#define PELVOR_INHERIT_CREATOR_OBJECT(name)                                                                \
    static constexpr ::pelvor::detail::InheritedCreator<ClassSelf,                                         \
                                                        ::pelvor::detail::creatorFunction<&Super::name>()> \
        name{};

/// In the body of a class, after PELVOR_CLASS: the names of the creators that the class declares. A class
/// that hides its superclass's creators and may have subclasses has such a list too, even an empty one.
#define PELVOR_CREATORS(...)                                    \
  public:                                                       \
    static constexpr std::string_view kCreators = #__VA_ARGS__; \
    template <class Self>                                       \
    struct CreatorCheck : Super::template CreatorCheck<Self> {  \
        PELVOR_EACH(PELVOR_CHECK_CREATOR, __VA_ARGS__)          \
    };                                                          \
    struct HiddenCreators : Super::HiddenCreators {             \
        PELVOR_EACH(PELVOR_HIDE_CREATOR, __VA_ARGS__)           \
    };                                                          \
                                                                \
  private:                                                      \
    using ListsCreators = void

/// In the body of a class, after PELVOR_CLASS: inherited creators that make this class when they are called
/// on it.
#define PELVOR_INHERITED_CREATORS(...)               \
  public:                                            \
    PELVOR_EACH(PELVOR_INHERIT_CREATOR, __VA_ARGS__) \
                                                     \
  private:                                           \
    using InheritsCreators = void

}  // namespace pelvor
