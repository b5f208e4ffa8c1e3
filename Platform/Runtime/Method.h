// SPDX-License-Identifier: Apache-2.0
// Methods: selectors bound to C++ functions, and the tables that a class or category fills.
#pragma once

#include <vector>

#include "Runtime/FunctionTypes.h"
#include "Runtime/NSMethodSignature.h"

namespace pelvor {

/// The code behind a method: a function with its types, and the class whose objects the function may be
/// called with. Two implementations are equal when they have the same function.
struct IMP {
    void (*function)() = nullptr;
    NSMethodSignature* signature = nullptr;
    Class* receiver = nullptr;  ///< null: any object

    explicit operator bool() const { return function != nullptr; }
    friend bool operator==(const IMP& a, const IMP& b) { return a.function == b.function; }
};

struct Method {
    SEL selector;
    IMP implementation;
    bool isCreator = false;  ///< what it returns is an object of the receiving class
};

/// Methods that came to a class together: the class's own methods, or the methods of one category. A group
/// lives for good once it is attached.
struct MethodGroup {
    const char* category = nullptr;  ///< null: the class's own methods
    std::vector<Method> methods;
    MethodGroup* next = nullptr;  ///< the group that was there before
};

/// Raises NSInvalidArgumentException: an argument is of another class than the method takes. Positions count
/// from 1; position 0 is the result.
[[noreturn]] PELVOR_EXPORT void raiseArgumentClass(Object* receiver, SEL selector, int position,
                                                   Object* argument, Class* expected);

/// Whether the C++ object is of the C++ class that stands behind `cls`, whatever has posed or forwards.
PELVOR_EXPORT bool isNativeKindOf(Object* object, Class* cls);

namespace detail {

template <class T>
Wire<T> toWire(const T& value) {
    using Plain = std::decay_t<T>;
    if constexpr (std::is_null_pointer_v<Plain>)
        return nullptr;
    else if constexpr (isRetained<Plain>)
        return value.get();
    else if constexpr (std::is_same_v<Wire<T>, void*>) {
        if constexpr (std::is_function_v<std::remove_pointer_t<Plain>>)
            return reinterpret_cast<void*>(value);
        else
            return const_cast<void*>(static_cast<const volatile void*>(value));
    } else
        return static_cast<Wire<T>>(value);
}

// A method's result leaves as a borrowed object: what the method gave away goes to the pool.
template <class T>
Wire<T> resultToWire(T&& value) {
    if constexpr (isRetained<std::remove_cvref_t<T>>)
        return std::forward<T>(value).autorelease();
    else
        return toWire(value);
}

template <class T>
void checkClass(Wire<T> value, Object* receiver, SEL selector, int position) {
    if constexpr (ObjectPointer<T> && !std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, Object>) {
        Class* expected = std::remove_pointer_t<T>::classObject();
        if (value && !isNativeKindOf(value, expected))
            raiseArgumentClass(receiver, selector, position, value, expected);
    }
}

template <class... A>
void checkClasses([[maybe_unused]] Object* receiver, [[maybe_unused]] SEL selector, Wire<A>... arguments) {
    [[maybe_unused]] int position = 0;
    (checkClass<A>(arguments, receiver, selector, ++position), ...);
}

/// The value that came over the wire, its class unchecked.
template <class T>
T fromWire(Wire<T> value) {
    if constexpr (std::is_pointer_v<T> && !ObjectPointer<T> && !isClassPointer<T>)
        return reinterpret_cast<T>(value);
    else
        return static_cast<T>(value);
}

// How the result of a message is read: an object has to be of the class that the caller named.
template <class R>
R resultFromWire(Wire<R> value, Object* receiver, SEL selector) {
    if constexpr (isRetained<R>) {
        using T = std::remove_pointer_t<decltype(std::declval<R>().get())>;
        return R::retaining(resultFromWire<T*>(value, receiver, selector));
    } else {
        checkClass<R>(value, receiver, selector, 0);
        return fromWire<R>(value);
    }
}

/// The record of a C++ class; null for the root Object, which has no record.
template <class C>
constexpr Class* receiverRecord() {
    if constexpr (std::is_same_v<C, Object>)
        return nullptr;
    else
        return &C::classRecord;
}

// Whether one comparison can tell that an argument is what the method takes: null, or an object of exactly
// the parameter's class. No object is of exactly an abstract class.
template <class T>
inline constexpr bool hasQuickCheck = false;
template <ObjectPointer T>
inline constexpr bool hasQuickCheck<T> =
    !std::is_same_v<T, Object*> && !std::is_abstract_v<std::remove_pointer_t<T>>;

template <class T>
bool passesQuickCheck(Wire<T> value) {
    if constexpr (hasQuickCheck<T>)
        return !value || value->isa() == std::remove_pointer_t<T>::classObject();
    else
        return !ObjectPointer<T> || std::is_same_v<T, Object*>;
}

template <auto Function, class Arguments>
struct MemberThunk;
template <auto Function, class... A>
struct MemberThunk<Function, TypeList<A...>> {
    using Types = FunctionTypes<decltype(Function)>;
    using R = typename Types::Result;
    using C = typename Types::Receiver;

    static Wire<R> call(Object* self, SEL selector, Wire<A>... arguments) {
        if constexpr ((hasQuickCheck<A> || ...)) {
            if (!(passesQuickCheck<A>(arguments) && ...)) [[unlikely]]
                return callChecked(self, selector, arguments...);
        } else {
            checkClasses<A...>(self, selector, arguments...);
        }
        return callWith(self, fromWire<A>(arguments)...);
    }
    // Apart, so that the quick road saves no registers.
    [[gnu::noinline]] static Wire<R> callChecked(Object* self, SEL selector, Wire<A>... arguments) {
        checkClasses<A...>(self, selector, arguments...);
        return callWith(self, fromWire<A>(arguments)...);
    }
    static Wire<R> callWith(Object* self, A... arguments) {
        if constexpr (std::is_void_v<R>)
            (static_cast<C*>(self)->*Function)(arguments...);
        else
            return resultToWire((static_cast<C*>(self)->*Function)(arguments...));
    }
    static IMP implementation() {
        return {reinterpret_cast<void (*)()>(&call), &SignatureFor<R, A...>::object, receiverRecord<C>()};
    }
};

// A free function whose first parameter is the receiver.
template <auto Function, class First, class Arguments>
struct AdditionThunk;
template <auto Function, class First, class... A>
struct AdditionThunk<Function, First, TypeList<A...>> {
    using R = typename FunctionTypes<decltype(Function)>::Result;
    using C = std::remove_pointer_t<First>;

    static Wire<R> call(Object* self, SEL selector, Wire<A>... arguments) {
        checkClasses<A...>(self, selector, arguments...);
        if constexpr (std::is_void_v<R>)
            Function(static_cast<First>(self), fromWire<A>(arguments)...);
        else
            return resultToWire(Function(static_cast<First>(self), fromWire<A>(arguments)...));
    }
    static IMP implementation() {
        return {reinterpret_cast<void (*)()>(&call), &SignatureFor<R, A...>::object, receiverRecord<C>()};
    }
};

/// Whether a creator's last parameter is the receiving class, and whether what it returns must be of that
/// class.
struct ClassRole {
    bool takesClass;
    bool isCreator;
};

// A static function.
template <auto Function, ClassRole Role, class Arguments>
struct StaticThunk;
template <auto Function, ClassRole Role, class... A>
struct StaticThunk<Function, Role, TypeList<A...>> {
    using R = typename FunctionTypes<decltype(Function)>::Result;

    static Wire<R> call(Object* self, SEL selector, Wire<A>... arguments);  // both in Class.h
    static IMP implementation();
};

consteval std::size_t colonCount(std::string_view selector) {
    std::size_t count = 0;
    for (char c : selector) count += c == ':';
    return count;
}

// The last component of a function's name as the compiler prints it for `Function`.
template <auto Function>
consteval std::string_view functionName() {
    std::string_view text = __PRETTY_FUNCTION__;
    std::size_t start = text.find("Function = ") + 11;
    text = text.substr(start, text.find_first_of(";]", start) - start);
    if (std::size_t mark = text.find_last_of(":&"); mark != std::string_view::npos)
        text.remove_prefix(mark + 1);
    return text.substr(0, text.find('('));
}

// Whether the function is a static member of T, not one that T inherits.
template <class T, auto Function>
consteval bool isMemberOf() {
    std::string_view text = __PRETTY_FUNCTION__;
    std::size_t start = text.find("Function = ") + 11;
    text = text.substr(start, text.find_first_of(";](", start + 1) - start);
    std::size_t end = text.rfind("::");
    if (end == std::string_view::npos) return false;
    text = text.substr(0, end);
    return text.substr(text.find_last_of(":& ") + 1) == printedName<T>();
}

// "insertRun:atIndex:" is spelt by insertRun_atIndex; a name that is a keyword of C++ ends in "_".
consteval bool spells(std::string_view function, std::string_view selector) {
    if (!selector.empty() && selector.back() == ':') selector.remove_suffix(1);
    if (function.size() == selector.size() + 1 && function.back() == '_') function.remove_suffix(1);
    if (function.size() != selector.size()) return false;
    for (std::size_t i = 0; i < function.size(); ++i)
        if (function[i] != (selector[i] == ':' ? '_' : selector[i])) return false;
    return true;
}

/// Whether a method can have the function's result and arguments. References cannot travel: the caller may
/// send a value that nothing refers to.
template <class Result, class Arguments>
inline constexpr bool canBeSent = false;
template <class Result, class... A>
inline constexpr bool canBeSent<Result, TypeList<A...>> = canTravel<Result> &&
                                                          (canTravel<std::remove_cv_t<A>> && ...);
template <auto Function>
inline constexpr bool isSendable =
    canBeSent<std::remove_cv_t<typename FunctionTypes<decltype(Function)>::Result>,
              typename FunctionTypes<decltype(Function)>::template Arguments<TypeList>>;

template <FixedString Name, auto Function>
consteval void checkSpelling() {
    static_assert(
        spells(functionName<Function>(), Name.view()),
        "the function's name joins the selector's keywords with underscores; a function of another name "
        "takes instanceAs, classLevelAs or creatorAs");
}

template <auto Function, class Arity>
IMP instanceImplementation() {
    using Types = FunctionTypes<decltype(Function)>;
    using Arguments = typename Types::template Arguments<TypeList>;
    if constexpr (std::is_void_v<typename Types::Receiver>) {
        static_assert(Arguments::count == Arity::value + 1,
                      "an addition takes the receiver and one argument a colon");
        return AdditionThunk<Function, typename Front<Arguments>::type,
                             typename Front<Arguments>::rest>::implementation();
    } else {
        static_assert(Arguments::count == Arity::value, "a method takes one argument a colon");
        return MemberThunk<Function, Arguments>::implementation();
    }
}

template <auto Function, class Arity, bool IsCreator>
IMP classImplementation() {
    using Arguments = typename FunctionTypes<decltype(Function)>::template Arguments<TypeList>;
    if constexpr (Arguments::count == Arity::value) {
        return StaticThunk<Function, ClassRole{false, IsCreator}, Arguments>::implementation();
    } else {
        static_assert(Arguments::count == Arity::value + 1, "a class operation takes one argument a colon");
        static_assert(isClassPointer<typename DropLast<Arguments>::last>,
                      "the extra last parameter of a class operation is the receiving class");
        return StaticThunk<Function, ClassRole{true, IsCreator},
                           typename DropLast<Arguments>::type>::implementation();
    }
}

}  // namespace detail

/// The implementation that a function gives for the selector `Name`: a member function, or a free
/// function whose first parameter is the receiver.
template <FixedString Name, auto Function>
IMP implementation() {
    return detail::instanceImplementation<
        Function, std::integral_constant<std::size_t, detail::colonCount(Name.view())>>();
}

/// The implementation that a static or free function gives for a class operation. The function may take the
/// receiving class as its last parameter.
template <FixedString Name, auto Function, bool IsCreator = false>
IMP classImplementation() {
    return detail::classImplementation<
        Function, std::integral_constant<std::size_t, detail::colonCount(Name.view())>, IsCreator>();
}

#define PELVOR_UNSENDABLE "only plain values, objects and pointers travel in messages, and none by reference"

/// What a class or a category fills when it is registered. A selector and its function are named side
/// by side and compared at compile time; the …As forms take a function of any name.
template <class T>
class MethodTable {
  public:
    MethodTable(MethodGroup& instance, MethodGroup& classLevel)
        : _instance(instance), _classLevel(classLevel) {}

    template <FixedString Name, auto Function>
    void instance() {
        detail::checkSpelling<Name, Function>();
        instanceAs<Name, Function>();
    }
    template <FixedString Name, auto Function>
    void instanceAs() {
        static_assert(detail::isSendable<Function>, PELVOR_UNSENDABLE);
        if constexpr (detail::isSendable<Function>)
            _instance.methods.push_back({registerSelector(Name.view()), implementation<Name, Function>()});
    }

    template <FixedString Name, auto Function>
    void classLevel() {
        detail::checkSpelling<Name, Function>();
        classLevelAs<Name, Function>();
    }
    template <FixedString Name, auto Function>
    void classLevelAs() {
        addClassLevel<Name, Function, false>();
    }

    /// A class operation that makes objects of the receiving class (Creators.h). By message it raises
    /// NSInvalidArgumentException for a subclass whose objects the function does not make.
    template <FixedString Name, auto Function>
    void creator() {
        detail::checkSpelling<Name, Function>();
        if constexpr (detail::isOwn<T, typename detail::FunctionTypes<decltype(Function)>::Result> &&
                      !std::is_final_v<T> && requires { T::classRecord; })
            checkListed<Function>();
        creatorAs<Name, Function>();
    }
    template <FixedString Name, auto Function>
    void creatorAs() {
        static_assert(detail::isOwn<T, typename detail::FunctionTypes<decltype(Function)>::Result>,
                      "a creator returns an object of its class");
        addClassLevel<Name, Function, true>();
    }

  private:
    // A category's creators are no members of the class.
    template <auto Function>
    static consteval void checkListed() {
        if constexpr (detail::isMemberOf<T, Function>())
            static_assert(
                requires { requires detail::listsCreator(T::kCreators, detail::functionName<Function>()); },
                "the class names the creators that it declares in PELVOR_CREATORS");
    }

    template <FixedString Name, auto Function, bool IsCreator>
    void addClassLevel() {
        static_assert(detail::isSendable<Function>, PELVOR_UNSENDABLE);
        if constexpr (detail::isSendable<Function>)
            _classLevel.methods.push_back(
                {registerSelector(Name.view()), classImplementation<Name, Function, IsCreator>(), IsCreator});
    }

    MethodGroup& _instance;
    MethodGroup& _classLevel;
};

}  // namespace pelvor
