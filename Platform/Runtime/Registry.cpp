// SPDX-License-Identifier: Apache-2.0
#include "Runtime/Registry.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "Runtime/NSException.h"
#include "Runtime/Private/RegistryState.h"

namespace pelvor {
namespace {

// Behind the first two fields, a record that is not that of a library may contain anything.
void requireUsable(const Library& library) {
    if (library.canBeUsed()) return;
    if (library.mark != Library::kMark)
        throw NSException(NSInvalidArgumentException, "registerLibrary: the record is not that of a library");
    throw NSException(NSInvalidArgumentException,
                      "registerLibrary: the library was compiled with interface version " +
                          std::to_string(library.interfaceVersion) + ", this platform with version " +
                          std::to_string(kInterfaceVersion));
}

}  // namespace

Registry& Registry::shared() {
    static auto& registry = *new Registry;
    return registry;
}

void Registry::registerLibrary(Library& library) {
    std::lock_guard guard(mutex);
    std::vector<Library*> libraries;
    collectUnregistered(library, libraries);
    for (Library* each : libraries) refuseTakenNames(*each, libraries);
    defineMethods(libraries);
    // From here on nothing fails.
    for (Library* each : libraries) each->isRegistered.store(true, std::memory_order_release);
    for (Library* each : libraries) {
        for (Class* cls : each->classes) registerClass(cls);
        for (const Category* category : each->categories) addCategory(*category);
    }
}

// The library and the libraries that it needs; these come first.
void Registry::collectUnregistered(Library& library, std::vector<Library*>& libraries) {
    requireUsable(library);
    if (library.isRegistered.load(std::memory_order_relaxed)) return;
    if (std::find(libraries.begin(), libraries.end(), &library) != libraries.end()) return;
    for (Library* dependency : library.dependencies) collectUnregistered(*dependency, libraries);
    libraries.push_back(&library);
}

void Registry::refuseTakenNames(const Library& library, const std::vector<Library*>& libraries) {
    for (const Class* cls : library.classes) {
        const Class* holder = cls->_isRegistered ? nullptr : holderOfName(cls, libraries);
        if (!holder) continue;
        throw NSException(NSInvalidArgumentException, std::string("registerLibrary: the class ") +
                                                          cls->name() + " of the library " + library.name +
                                                          " is refused: " + ownerOf(*holder) +
                                                          " has a class of that name");
    }
}

std::string Registry::ownerOf(const Class& cls) {
    return cls.library() ? std::string("the library ") + cls.library()->name : "the program";
}

// Another class with the name, registered or about to be registered; null if there is no such class.
const Class* Registry::holderOfName(const Class* cls, const std::vector<Library*>& libraries) {
    if (auto found = _classesByName.find(cls->name()); found != _classesByName.end()) return found->second;
    for (const Library* each : libraries)
        for (const Class* other : each->classes)
            if (other != cls && std::strcmp(other->name(), cls->name()) == 0) return other;
    return nullptr;
}

// The code that fills the tables may throw: then no class keeps any.
void Registry::defineMethods(const std::vector<Library*>& libraries) {
    std::vector<Class*> defined;
    try {
        for (const Library* library : libraries)
            for (Class* cls : library->classes) {
                if (cls->_isRegistered || cls->_groups.load() || !cls->_native.defineMethods) continue;
                defineOwnMethods(cls);
                defined.push_back(cls);
            }
    } catch (...) {
        for (Class* cls : defined) {
            delete cls->_groups.exchange(nullptr);
            delete cls->metaclass()->_groups.exchange(nullptr);
        }
        throw;
    }
}

void Registry::registerClass(Class* cls) {
    if (cls->_isRegistered.load(std::memory_order_relaxed)) return;
    if (Class* superclass = cls->_superclass) {
        if (!superclass->_isRegistered && superclass->_library) registerLibrary(*superclass->_library);
        registerClass(superclass);
        link(cls, superclass);
    }
    link(cls->metaclass(), cls->metaclass()->_superclass);
    if (cls->_native.defineMethods && cls->_library && !cls->_groups.load()) defineOwnMethods(cls);
    cls->metaclass()->_isRegistered.store(true, std::memory_order_release);
    cls->_isRegistered.store(true, std::memory_order_release);
    _classes.push_back(cls);
    _classesByName.emplace(cls->name(), cls);
}

void Registry::defineOwnMethods(Class* cls) {
    auto instance = std::make_unique<MethodGroup>();
    auto classLevel = std::make_unique<MethodGroup>();
    cls->_native.defineMethods(*instance, *classLevel);
    for (const MethodGroup* group : {instance.get(), classLevel.get()}) noteSignatures(*group);
    cls->_groups = instance.release();
    cls->metaclass()->_groups = classLevel.release();
}

void Registry::link(Class* cls, Class* superclass) {
    cls->_nextSibling = superclass->_firstSubclass;
    superclass->_firstSubclass = cls;
}

void Registry::unlink(Class* cls, Class* superclass) {
    Class** place = &superclass->_firstSubclass;
    while (*place != cls) place = &(*place)->_nextSibling;
    *place = cls->_nextSibling;
}

void Registry::addCategory(const Category& category) {
    _pendingCategories[category.className].push_back(&category);
    if (auto found = _classesByName.find(category.className); found != _classesByName.end()) {
        found->second->flushCaches();
        found->second->metaclass()->flushCaches();
    }
}

void Registry::attachPendingCategories(Class* cls) {
    std::lock_guard guard(mutex);
    if (_pendingCategories.empty()) return;
    attachPendingCategories(cls, cls->name());
    // A posing class has the names of the classes in whose place it stands.
    if (cls->_poser) return;
    for (Class* poser = cls; poser->_superclass && poser->_superclass->_poser == poser;
         poser = poser->_superclass)
        attachPendingCategories(cls, poser->_superclass->name() + 1);
}

void Registry::attachPendingCategories(Class* cls, std::string_view name) {
    auto found = _pendingCategories.find(name);
    if (found == _pendingCategories.end()) return;
    auto categories = std::move(found->second);
    _pendingCategories.erase(found);
    for (const Category* category : categories) {
        MethodGroup instance{category->name, {}, nullptr};
        MethodGroup classLevel{category->name, {}, nullptr};
        category->defineMethods(instance, classLevel);
        if (!instance.methods.empty()) cls->addMethods(std::move(instance));
        if (!classLevel.methods.empty()) cls->metaclass()->addMethods(std::move(classLevel));
    }
}

void Registry::noteSignatures(const MethodGroup& group) {
    for (const Method& method : group.methods) noteSignature(method.implementation.signature);
}

void Registry::noteSignature(NSMethodSignature* signature) {
    auto [found, isNew] = _signatures.emplace(signature->key(), signature);
    if (!isNew && std::strcmp(found->second->types(), signature->types()) != 0)
        throw NSException(NSInternalInconsistencyException, std::string("the types ") + signature->types() +
                                                                " and " + found->second->types() +
                                                                " have one key");
}

NSMethodSignature* Registry::signatureOfTypes(const char* types) {
    std::lock_guard guard(mutex);
    for (const auto& [key, signature] : _signatures)
        if (std::strcmp(signature->types(), types) == 0) return signature;
    return nullptr;
}

Class* Registry::classNamed(std::string_view name) {
    std::lock_guard guard(mutex);
    auto found = _classesByName.find(name);
    return found == _classesByName.end() ? nullptr : found->second;
}

std::size_t Registry::classList(Class** buffer, std::size_t capacity) {
    std::lock_guard guard(mutex);
    std::copy_n(_classes.begin(), std::min(capacity, _classes.size()), buffer);
    return _classes.size();
}

void Registry::pose(Class* poser, Class* original) {
    std::lock_guard guard(mutex);
    attachPendingCategories(original);
    std::string renamed("%");
    const char* newName = keepName(renamed.append(original->name()));
    for (auto& [name, cls] : _classesByName)
        if (cls == original) cls = poser;
    original->_name = original->metaclass()->_name = newName;
    _classesByName.emplace(newName, original);
    original->_poser.store(poser, std::memory_order_release);
    original->_makesOwnInstances.store(false, std::memory_order_release);
    adoptSubclasses(poser, original);
    adoptSubclasses(poser->metaclass(), original->metaclass());
}

// Every subclass of the original but the poser becomes the poser's.
void Registry::adoptSubclasses(Class* poser, Class* original) {
    for (Class* cls = original->_firstSubclass; cls;) {
        Class* next = cls->_nextSibling;
        if (cls != poser && cls != poser->metaclass()) {
            unlink(cls, original);
            cls->_superclass = poser;
            link(cls, poser);
        }
        cls = next;
    }
    original->flushCaches();
}

const char* Registry::keepName(std::string name) { return _names.emplace_back(std::move(name)).c_str(); }

void Registry::keep(const CacheEntry* entry) { _cacheEntries.push_back(entry); }

void registerLibrary(Library& library) {
    if (!library.canBeUsed() || !library.isRegistered.load(std::memory_order_acquire))
        Registry::shared().registerLibrary(library);
}

std::size_t classList(Class** buffer, std::size_t capacity) {
    return Registry::shared().classList(buffer, capacity);
}

Class* classNamed(std::string_view name) { return Registry::shared().classNamed(name); }

}  // namespace pelvor
