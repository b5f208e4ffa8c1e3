// SPDX-License-Identifier: Apache-2.0
// NSObject: the root of the class tree, and the macros that give a C++ class its class record.
#pragma once

#include "Runtime/Creators.h"
#include "Runtime/Instances.h"
#include "Runtime/Object.h"

namespace pelvor {

template <class T>
class MethodTable;

namespace detail {

/// The nearest base of Self with PELVOR_CLASS, whose `pelvorSuperclass` is the best match: Self's own takes
/// every asker but Self.
template <class Self>
using SuperclassOf = std::remove_pointer_t<decltype(pelvorSuperclass(static_cast<Self*>(nullptr),
                                                                     static_cast<Self*>(nullptr)))>;

}  // namespace detail

/// In the body of a C++ class: ties the class to its class record, which `Self::classObject()` returns. The
/// .cpp of the class has PELVOR_DEFINE_CLASS.
#define PELVOR_CLASS(Self, Base)                                                         \
  public:                                                                                \
    using ClassSelf = Self;                                                              \
    using Super = Base;                                                                  \
    static ::pelvor::Class classRecord;                                                  \
    static ::pelvor::Class metaclassRecord;                                              \
    static ::pelvor::Class* classObject() noexcept { return &classRecord; }              \
    template <class Asker>                                                               \
    requires(!std::is_same_v<Asker, Self>) friend Self* pelvorSuperclass(Asker*, Self*); \
                                                                                         \
  protected:                                                                             \
    void destroy() noexcept override { ::pelvor::Instances::destroy(this); }             \
                                                                                         \
  private:                                                                               \
    friend struct ::pelvor::Instances;                                                   \
    static void defineMethods(::pelvor::MethodTable<Self>& methods)

/// In the .cpp, outside any function, followed by a body that adds the class's methods to
/// `methods`. `library` is the list that names the class.
#define PELVOR_DEFINE_CLASS(Self, library)                                                                   \
    constinit ::pelvor::Class Self::metaclassRecord(::pelvor::Class::Metaclass{}, #Self, &Self::classRecord, \
                                                    &Self::Super::metaclassRecord);                          \
    constinit ::pelvor::Class Self::classRecord(#Self, &Self::metaclassRecord, &Self::Super::classRecord,    \
                                                ::pelvor::Instances::nativeClass<Self>(), &library);         \
    static_assert(std::is_same_v<::pelvor::detail::SuperclassOf<Self>, Self::Super>,                         \
                  "PELVOR_CLASS names another class than the superclass");                                   \
    static_assert(::pelvor::detail::checkCreators<Self>());                                                  \
    void Self::defineMethods([[maybe_unused]] ::pelvor::MethodTable<Self>& methods)

/// The root class. A subclass has PELVOR_CLASS, protected constructors and a protected destructor, and
/// creators that make their object by `make<Self>(cls)`:
///
///     class PBLamp : public NSObject {
///         PELVOR_CLASS(PBLamp, NSObject);
///         PELVOR_CREATORS(initWithLevel);
///
///       public:
///         static Retained<PBLamp> initWithLevel(int level, Class* cls = classObject());
///         int level() { return _level; }
///
///       protected:
///         PBLamp() = default;
///         ~PBLamp() = default;
///
///       private:
///         int _level = 0;
///     };
///
///     // in the .cpp; the list of the library names the class, &PBLamp::classRecord
///     PELVOR_DEFINE_CLASS(PBLamp, lampLibrary) {
///         methods.creator<"initWithLevel:", &PBLamp::initWithLevel>();
///         methods.instance<"level", &PBLamp::level>();
///     }
class PELVOR_EXPORT NSObject : public Object {
    PELVOR_CLASS(NSObject, Object);

  public:
    /// A new object of `cls`, as the constructor leaves it. C++ code writes `make<PBLamp>()` instead.
    static Retained<NSObject> init(Class* cls);

    /// Called once for each class before its first message; the superclass comes first. For a class without
    /// an `initialize` of its own, the superclass's `initialize` is called once more, with the subclass as
    /// `cls`.
    static void initialize(Class* cls);

    /// Whether instances of `cls` have a method for the selector.
    static bool instancesRespondToSelector(SEL selector, Class* cls);

    /// An owned copy, made by `copyWithZone`. Raises NSInvalidArgumentException if the class cannot be
    /// copied.
    Retained<Object> copy();
    Retained<Object> mutableCopy();
    /// For classes that can be copied. The zone is not used.
    virtual Retained<Object> copyWithZone(void* zone);
    virtual Retained<Object> mutableCopyWithZone(void* zone);

  protected:
    constexpr NSObject() noexcept = default;
    constexpr NSObject(Class* isa, std::uint32_t count) noexcept : Object(isa, count) {}
    ~NSObject() = default;
};

}  // namespace pelvor
