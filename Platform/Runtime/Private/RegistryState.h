// SPDX-License-Identifier: Apache-2.0
// The state behind the class registry; for the Runtime's own sources.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Runtime/Registry.h"

namespace pelvor {

/// The one registry of the process. Its mutex guards everything in it and all links between class
/// records; message caches are read without it.
class Registry {
  public:
    static Registry& shared();

    void registerLibrary(Library& library);
    void registerClass(Class* cls);
    void attachPendingCategories(Class* cls);
    Class* classNamed(std::string_view name);
    std::size_t classList(Class** buffer, std::size_t capacity);
    NSMethodSignature* signatureOfTypes(const char* types);
    void noteSignatures(const MethodGroup& group);
    void pose(Class* poser, Class* original);
    /// Cache entries may be read long after they were taken out of a cache; none is ever freed.
    void keep(const CacheEntry* entry);
    /// The name of a class made or renamed at run time, kept for good.
    const char* keepName(std::string name);
    /// The owner of the class, for messages: "the library Lamp", or "the program".
    static std::string ownerOf(const Class& cls);

    std::recursive_mutex mutex;
    std::condition_variable_any initialization;  ///< a class's `initialize` has ended

  private:
    static void collectUnregistered(Library& library, std::vector<Library*>& libraries);
    void refuseTakenNames(const Library& library, const std::vector<Library*>& libraries);
    const Class* holderOfName(const Class* cls, const std::vector<Library*>& libraries);
    void defineMethods(const std::vector<Library*>& libraries);
    void attachPendingCategories(Class* cls, std::string_view name);
    void defineOwnMethods(Class* cls);
    void addCategory(const Category& category);
    void noteSignature(NSMethodSignature* signature);
    void adoptSubclasses(Class* poser, Class* original);
    static void link(Class* cls, Class* superclass);
    static void unlink(Class* cls, Class* superclass);

    std::vector<Class*> _classes;
    std::deque<std::string> _names;
    std::vector<const CacheEntry*> _cacheEntries;
    std::unordered_map<std::string_view, Class*> _classesByName;
    std::unordered_map<std::string_view, std::vector<const Category*>> _pendingCategories;
    std::unordered_map<std::uint64_t, NSMethodSignature*> _signatures;
};

}  // namespace pelvor
