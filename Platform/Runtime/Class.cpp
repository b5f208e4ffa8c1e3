// SPDX-License-Identifier: Apache-2.0
#include "Runtime/Class.h"

#include <string>

#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/Private/RegistryState.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor {

namespace {

// Its address tells threads apart.
constinit thread_local char threadMark = 0;

}  // namespace

const CacheEntry Class::kNoEntry{};

// Class records are not made through their class, which has no instances to give.
constinit Class Class::metaclassRecord(Class::Metaclass{}, "Class", &Class::classRecord,
                                       &NSObject::metaclassRecord);
constinit Class Class::classRecord("Class", &Class::metaclassRecord, &NSObject::classRecord,
                                   {nullptr, sizeof(Class), true, &Instances::defineMethods<Class>},
                                   &runtimeLibrary);

void Class::defineMethods(MethodTable<Class>&) {}

const char* Class::publicName() const {
    const Class* cls = _describes;
    while (cls->_native.isFinal && cls->_nativeSuperclass && cls->_nativeSuperclass->_nativeSuperclass)
        cls = cls->_nativeSuperclass;
    return cls->_name;
}

bool Class::isSubclassOfClass(Class* ancestor) {
    for (Class* cls = this; cls; cls = cls->_superclass)
        if (cls == ancestor) return true;
    return false;
}

bool Class::isNativeSubclassOf(const Class* ancestor) const {
    if (ancestor == &Class::classRecord && _isMetaclass) return true;
    for (const Class* cls = this; cls; cls = cls->_nativeSuperclass)
        if (cls == ancestor) return true;
    return false;
}

bool isNativeKindOf(Object* object, Class* cls) {
    return object->isa() == cls || object->isa()->isNativeSubclassOf(cls);
}

void requireSubclass(Class* cls, Class* ancestor) {
    if (!cls || cls->isMetaclass() || !cls->isNativeSubclassOf(ancestor))
        throw NSException(NSInvalidArgumentException,
                          std::string(cls ? cls->name() : "null") + " is no subclass of " + ancestor->name());
}

void detail::raiseMadeOther(std::string_view creator, Object* made, Class* wanted) {
    throw NSException(NSInvalidArgumentException, std::string(creator) + (creator.ends_with(':') ? "" : ":") +
                                                      " the creator makes objects of class " +
                                                      made->isa()->publicName() + ", not of class " +
                                                      wanted->name() + ", which needs a creator of its own");
}

// MARK: Methods

const MethodGroup* Class::methodGroups() {
    if (!_isRegistered.load(std::memory_order_acquire) && _describes->_library)
        registerLibrary(*_describes->_library);
    return _groups.load(std::memory_order_acquire);
}

void Class::attachPendingCategories() { Registry::shared().attachPendingCategories(_describes); }

// The method that an object of `receiver` has for the selector. Methods whose code needs another C++
// class of receiver, as a posing class's may, are passed over.
const Method* Class::findMethod(SEL selector, Class* receiver) {
    for (Class* cls = this; cls; cls = cls->_superclass) {
        cls->methodGroups();
        cls->attachPendingCategories();
        for (const MethodGroup* group = cls->_groups.load(); group; group = group->next)
            for (const Method& method : group->methods)
                if (method.selector == selector &&
                    (!method.implementation.receiver ||
                     receiver->isNativeSubclassOf(method.implementation.receiver)))
                    return &method;
    }
    return nullptr;
}

const Method* Class::instanceMethod(SEL selector) {
    std::lock_guard guard(Registry::shared().mutex);
    return findMethod(selector, this);
}

IMP Class::findImplementation(SEL selector, Class* receiver) {
    const Method* method = findMethod(selector, receiver);
    return method ? method->implementation : IMP{};
}

bool Class::instancesRespondTo(SEL selector) { return static_cast<bool>(lookUp(selector)); }

NSMethodSignature* Class::signatureOfInstanceMethod(SEL selector) { return lookUp(selector).signature; }

void Class::requireCallable(const IMP& implementation) {
    if (implementation.receiver && !isNativeSubclassOf(implementation.receiver))
        throw NSException(NSInvalidArgumentException, std::string("code that needs a receiver of class ") +
                                                          implementation.receiver->name() +
                                                          " cannot be a method of " + _name);
}

void Class::addMethods(MethodGroup group) {
    std::lock_guard guard(Registry::shared().mutex);
    methodGroups();
    for (const Method& method : group.methods) requireCallable(method.implementation);
    Registry::shared().noteSignatures(group);
    auto* added = new MethodGroup(std::move(group));
    added->next = _groups;
    _groups = added;
    flushCaches();
}

IMP Class::replaceImplementation(SEL selector, IMP implementation) {
    std::lock_guard guard(Registry::shared().mutex);
    auto* method = const_cast<Method*>(findMethod(selector, this));
    if (!method) return {};
    IMP previous = method->implementation;
    if (!implementation || implementation.signature->key() != previous.signature->key())
        throw NSException(NSInvalidArgumentException, std::string("the new code for ") + selector.name() +
                                                          " of " + _name + " must be " +
                                                          detail::describeTypes(previous.signature));
    for (Class* cls = this; cls; cls = cls->_superclass)
        for (MethodGroup* group = cls->_groups.load(); group; group = group->next)
            if (!group->methods.empty() && method >= group->methods.data() &&
                method < group->methods.data() + group->methods.size()) {
                cls->requireCallable(implementation);
                method->implementation = implementation;
                cls->flushCaches();
                return previous;
            }
    return {};
}

// MARK: Look-up

void Class::flushCaches() {
    std::lock_guard guard(Registry::shared().mutex);
    for (auto& slot : _cache) slot.store(&kNoEntry, std::memory_order_release);
    for (Class* cls = _firstSubclass; cls; cls = cls->_nextSibling) cls->flushCaches();
}

IMP Class::lookUp(SEL selector) {
    for (const CacheEntry* entry = cached(selector); entry != &kNoEntry; entry = entry->next)
        if (entry->selector == selector) return {entry->function, entry->signature, nullptr};
    if (!selector) return {};
    methodGroups();
    _describes->initializeIfNeeded();
    std::lock_guard guard(Registry::shared().mutex);
    IMP found = findImplementation(selector, this);
    // While `initialize` runs, nothing is cached, so that other threads come here and wait for its end.
    if (_describes->_initialization == Initialization::done) cacheImplementation(selector, found);
    return found;
}

void Class::cacheImplementation(SEL selector, const IMP& implementation) {
    std::atomic<const CacheEntry*>& slot = _cache[selector.index() % kCacheSize];
    auto* entry = new CacheEntry;
    entry->selector = selector;
    entry->function = implementation.function;
    entry->signature = implementation.signature;
    entry->signatureKey = implementation.signature ? implementation.signature->key() : 0;
    entry->next = slot.load(std::memory_order_relaxed);
    Registry::shared().keep(entry);
    slot.store(entry, std::memory_order_release);
}

// MARK: Initialisation and instances

void Class::runInitialize() {
    if (_isMetaclass) return _describes->initializeIfNeeded();
    methodGroups();
    Registry& registry = Registry::shared();
    std::unique_lock lock(registry.mutex);
    if (_initialization == Initialization::running && _initializer == &threadMark) return;
    registry.initialization.wait(lock, [this] { return _initialization != Initialization::running; });
    if (_initialization == Initialization::done) return;
    _initialization = Initialization::running;
    _initializer = &threadMark;
    lock.unlock();
    struct Ending {
        Class* cls;
        Registry& registry;
        ~Ending() {
            std::lock_guard guard(registry.mutex);
            cls->_makesOwnInstances = cls->_native.create && !cls->_poser;
            cls->_initialization.store(Initialization::done, std::memory_order_release);
            registry.initialization.notify_all();
        }
    } ending{this, registry};
    if (_superclass) _superclass->initializeIfNeeded();
    sendInitialize();
}

void Class::sendInitialize() {
    static const SEL initialize = registerSelector("initialize");
    IMP implementation;
    {
        std::lock_guard guard(Registry::shared().mutex);
        implementation = metaclass()->findImplementation(initialize, metaclass());
    }
    if (implementation)
        implementation.signature->invoke(implementation.function, this, initialize, nullptr, nullptr);
}

Class* Class::effectiveClass() {
    Class* cls = this;
    while (Class* poser = cls->_poser.load(std::memory_order_acquire)) cls = poser;
    return cls;
}

Object* Class::createInstance() {
    Class* cls = effectiveClass();
    cls->initializeIfNeeded();
    if (!cls->_native.create || cls->_isMetaclass)
        throw NSException(
            NSInvalidArgumentException,
            std::string(cls->_name) +
                " has no instances of its own: it is abstract, or its constructor takes arguments");
    Object* object = cls->_native.create();
    Instances::setClass(object, cls);
    return object;
}

Class* Class::createSubclass(const char* name, Class* superclass) {
    Registry& registry = Registry::shared();
    std::lock_guard guard(registry.mutex);
    if (const Class* holder = registry.classNamed(name))
        throw NSException(NSInvalidArgumentException, std::string("createSubclass: the class ") + name +
                                                          " cannot be made: " + Registry::ownerOf(*holder) +
                                                          " has a class of that name");
    superclass->methodGroups();
    const char* copy = registry.keepName(name);
    auto* memory = static_cast<Class*>(::operator new(2 * sizeof(Class), std::align_val_t(alignof(Class))));
    Class* cls = memory;
    Class* meta = ::new (memory + 1) Class(Metaclass{}, copy, cls, superclass->metaclass());
    ::new (memory) Class(copy, meta, superclass, superclass->_native, nullptr);
    registry.registerClass(cls);
    return cls;
}

void Class::poseAsClass(Class* original) {
    methodGroups();
    if (!original || _superclass != original || original->_poser ||
        instanceSize() != original->instanceSize())
        throw NSException(NSInvalidArgumentException,
                          std::string(_name) + " cannot pose as " + (original ? original->_name : "null") +
                              ": it must be a direct subclass without fields of its own");
    Registry::shared().pose(this, original);
}

}  // namespace pelvor
