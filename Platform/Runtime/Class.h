// SPDX-License-Identifier: Apache-2.0
// Class records: names, methods, caches, making instances.
#pragma once

#include <array>
#include <atomic>

#include "Runtime/Method.h"

namespace pelvor {

struct Library;

/// A method as a class's cache holds it; immutable, never freed. `function` is null where the class is known
/// to lack the method.
struct alignas(64) CacheEntry {
    SEL selector;
    std::uint64_t signatureKey = 0;
    void (*function)() = nullptr;
    NSMethodSignature* signature = nullptr;
    const CacheEntry* next = nullptr;
};

/// A class. Class records are objects themselves, of a metaclass that holds the class operations;
/// every class object understands the messages that NSObject's instances understand. Records are constants of
/// the program (or made by `createSubclass`), immortal, and usable before their library is registered: the
/// first message registers it. Any thread.
class PELVOR_EXPORT Class final : public NSObject {
    PELVOR_CLASS(Class, NSObject);

  public:
    // C++ only: a message to a class reaches its class operations, not its record.

    /// "PBIdleQueue". Both a class and its metaclass have the name.
    const char* name() const { return _name; }
    /// The name for messages that people read. A final class that only implements its superclass, such as the
    /// private classes behind NSString, has the name of its superclass here.
    const char* publicName() const;
    /// The class that methods are inherited from. If a class poses as the superclass, this is the posing
    /// class.
    Class* superclass() const { return _superclass; }
    bool isMetaclass() const { return _isMetaclass; }
    /// The record that holds the class operations.
    Class* metaclass() const { return isa(); }
    std::size_t instanceSize() const { return _native.instanceSize; }
    /// The list that names the class; null for classes made at run time.
    Library* library() const { return _library; }
    /// Whether the class is registered. A class that is missing in its library's list never is.
    bool isListed() const { return _describes->_isRegistered.load(std::memory_order_acquire); }
    /// An address in the library or plug-in that defines the class. The record is no such address: the
    /// linker may put it among the data of a program that names the class.
    const void* codeAddress() const {
        return reinterpret_cast<const void*>(_describes->_native.defineMethods);
    }

    bool isSubclassOfClass(Class* ancestor);
    /// Whether objects of the class are C++ objects of the class behind `ancestor`. Posing changes nothing
    /// about this.
    bool isNativeSubclassOf(const Class* ancestor) const;

    /// The method that objects of the class have for the selector, their own or an inherited one; null if
    /// they have no such method. The caller may change the record only through `replaceImplementation`.
    const Method* instanceMethod(SEL selector);
    /// The class operation that the class has for the selector, its own or an inherited one; null if it has
    /// no such operation.
    const Method* classMethod(SEL selector) { return metaclass()->instanceMethod(selector); }
    bool instancesRespondTo(SEL selector);
    NSMethodSignature* signatureOfInstanceMethod(SEL selector);

    /// The class's own method groups, the newest category first, its own methods last; chained by
    /// `next`. Categories that wait to be attached are not among them.
    const MethodGroup* methodGroups();
    /// Adds methods as the newest group: they take precedence over the methods that the class already has.
    /// Raises NSInvalidArgumentException if one of the methods cannot be called with objects of the class.
    void addMethods(MethodGroup group);
    /// Replaces the implementation in the record that `instanceMethod` returns, and returns the previous
    /// implementation. An inherited method is replaced in the superclass that has it. Returns an empty
    /// implementation if there is no such method. Raises NSInvalidArgumentException if the types differ or
    /// the code needs another class of receiver.
    IMP replaceImplementation(SEL selector, IMP implementation);
    /// Forgets cached look-ups of the class and its subclasses.
    void flushCaches();
    /// Attaches categories for this class that arrived after it was registered.
    void attachPendingCategories();

    /// Makes a class at run time. Its instances are C++ objects of the class behind `superclass`. It lives as
    /// long as the process. Raises NSInvalidArgumentException if the name is taken.
    static Class* createSubclass(const char* name, Class* superclass);
    /// From now on the receiver stands in for `original`, which is its superclass: creators of `original`
    /// make instances of the receiver, a look-up by name finds the receiver, and the other subclasses inherit
    /// from it. The name of `original` becomes "%Name". Raises NSInvalidArgumentException unless `original`
    /// is the superclass and the receiver adds no fields.
    void poseAsClass(Class* original);
    /// The class whose instances are made when this class is to make one: this class, or the class that poses
    /// as it.
    Class* effectiveClass();

    /// Sends `initialize` to the superclass and then to the class, unless that has been done. A class
    /// operation that needs the set-up of its class and can be called as a plain function begins with this
    /// call.
    void initializeIfNeeded() {
        if (_initialization.load(std::memory_order_acquire) != Initialization::done) [[unlikely]]
            runInitialize();
    }
    /// A new instance of the class or of the class that poses as it, with a count of one. Raises
    /// NSInvalidArgumentException for a class without instances of its own.
    Object* createInstance();
    /// Whether `make` may construct an instance without asking further.
    bool makesOwnInstances() const { return _makesOwnInstances.load(std::memory_order_acquire); }

    const CacheEntry* cached(SEL selector) const {
        return _cache[selector.index() % kCacheSize].load(std::memory_order_acquire);
    }
    /// The implementation for a message: from the cache, else looked up and cached, after the class
    /// has been registered and initialised. An empty implementation if the class has no such method.
    IMP lookUp(SEL selector);

    NSString* description() override;

    struct Metaclass {};
    constexpr Class(Metaclass, const char* name, Class* describes, Class* superclass)
        : NSObject(&NSObject::metaclassRecord, kImmortal),
          _name(name),
          _superclass(superclass),
          _nativeSuperclass(superclass),
          _describes(describes),
          _isMetaclass(true) {}
    constexpr Class(const char* name, Class* metaclass, Class* superclass, NativeClass native,
                    Library* library)
        : NSObject(metaclass, kImmortal),
          _name(name),
          _superclass(superclass),
          _nativeSuperclass(superclass),
          _native(native),
          _library(library),
          _describes(this) {}

  private:
    friend class Registry;
    enum class Initialization : std::uint8_t { none, running, done };
    static constexpr std::uint32_t kCacheSize = 64;
    static const CacheEntry kNoEntry;
    using Cache = std::array<std::atomic<const CacheEntry*>, kCacheSize>;

    static constexpr Cache emptyCache() {
        return []<std::size_t... I>(std::index_sequence<I...>) { return Cache{((void)I, &kNoEntry)...}; }
        (std::make_index_sequence<kCacheSize>{});
    }

    void runInitialize();
    void sendInitialize();
    IMP findImplementation(SEL selector, Class* receiver);
    const Method* findMethod(SEL selector, Class* receiver);
    void cacheImplementation(SEL selector, const IMP& implementation);
    void requireCallable(const IMP& implementation);

    Cache _cache = emptyCache();
    const char* _name;
    Class* _superclass;
    Class* _nativeSuperclass;
    NativeClass _native;
    Library* _library = nullptr;
    Class* _describes = nullptr;  // of a metaclass, the class it is the class of
    std::atomic<MethodGroup*> _groups{nullptr};
    Class* _firstSubclass = nullptr;
    Class* _nextSibling = nullptr;
    std::atomic<Class*> _poser{nullptr};
    const void* _initializer =
        nullptr;  // the thread in `initialize`, by the address of a variable of its own
    std::atomic<Initialization> _initialization{Initialization::none};
    std::atomic<bool> _makesOwnInstances{false};
    std::atomic<bool> _isRegistered{false};
    bool _isMetaclass = false;
};

/// Raises NSInvalidArgumentException unless instances of `cls` are C++ objects of `ancestor`.
PELVOR_EXPORT void requireSubclass(Class* cls, Class* ancestor);

/// A new object of class T, or of the subclass `cls` of T, initialised only by its constructor. If a class
/// poses as that class, the object is of the posing class. Raises NSInvalidArgumentException if `cls` is no
/// subclass of T.
template <class T>
Retained<T> make(Class* cls = T::classObject()) {
    static_assert(std::is_same_v<T, typename T::ClassSelf>, "the class lacks PELVOR_CLASS");
    if constexpr (!std::is_abstract_v<T>)
        if (cls == T::classObject() && cls->makesOwnInstances()) [[likely]]
            return Retained<T>::adopting(Instances::create<T>(cls));
    requireSubclass(cls, T::classObject());
    return Retained<T>::adopting(static_cast<T*>(cls->createInstance()));
}

/// The object as a T if it is one, else null.
template <class T>
T* cast(Object* object) {
    return object && isNativeKindOf(object, T::classObject()) ? static_cast<T*>(object) : nullptr;
}

/// The owned object as an owned T if it is a T; else null, and the object is released. In this way the
/// creator of a subclass takes over the object that the superclass's creator made:
///
///     auto self = cast<PBSpot>(PBLamp::initWithColour(colour, cls));
template <class T, class U>
Retained<T> cast(Retained<U>&& object) {
    T* same = cast<T>(object.get());
    if (same) static_cast<void>(object.leak());
    return Retained<T>::adopting(same);
}

/// The object as a class record if it is a class, else null.
inline Class* asClass(Object* object) {
    return object && object->isa()->isMetaclass() ? static_cast<Class*>(object) : nullptr;
}

namespace detail {

/// Raises NSInvalidArgumentException: the creator returned an object of another class than it was to make.
[[noreturn]] PELVOR_EXPORT void raiseMadeOther(std::string_view creator, Object* made, Class* wanted);

template <class Self, auto creator, class... A>
auto CreatorCall<Self, creator, TypeList<A...>>::operator()(A... arguments, Class* cls) const -> Result {
    requireSubclass(cls, Self::classObject());
    Inherited made = creator(arguments..., cls);
    auto* object = static_cast<Object*>(static_cast<std::remove_reference_t<decltype(*made)>*>(made));
    if (object && !isNativeKindOf(object, Self::classObject()))
        raiseMadeOther(functionName<creator>(), object, cls);
    if constexpr (isRetained<Inherited>)
        return cast<Self>(std::move(made));
    else
        return static_cast<Self*>(made);
}

template <auto Function, ClassRole Role, class... A>
Wire<typename FunctionTypes<decltype(Function)>::Result> StaticThunk<Function, Role, TypeList<A...>>::call(
    Object* self, SEL selector, Wire<A>... arguments) {
    checkClasses<A...>(self, selector, arguments...);
    auto run = [&] {
        if constexpr (Role.takesClass)
            return Function(fromWire<A>(arguments)..., static_cast<Class*>(self));
        else
            return Function(fromWire<A>(arguments)...);
    };
    if constexpr (std::is_void_v<R>) {
        run();
    } else if constexpr (Role.isCreator) {
        Object* made = resultToWire(run());
        auto* wanted = static_cast<Class*>(self);
        if (made && !made->isa()->isSubclassOfClass(wanted)) raiseMadeOther(selector.name(), made, wanted);
        return made;
    } else {
        return resultToWire(run());
    }
}

template <auto Function, ClassRole Role, class... A>
IMP StaticThunk<Function, Role, TypeList<A...>>::implementation() {
    return {reinterpret_cast<void (*)()>(&call), &SignatureFor<R, A...>::object,
            Role.takesClass || Role.isCreator ? Class::classObject() : nullptr};
}

}  // namespace detail
}  // namespace pelvor
