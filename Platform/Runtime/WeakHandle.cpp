// SPDX-License-Identifier: Apache-2.0
#include "Runtime/WeakHandle.h"

#include <mutex>
#include <unordered_map>

namespace pelvor {

/// What all handles on one object share. Guarded by the lock of the watches.
struct WeakHandle::Watch {
    Object* object;  ///< null once the object has ended
    std::uint32_t handles;
};

struct WeakHandle::Watches {
    std::mutex mutex;
    std::unordered_map<Object*, Watch*> byObject;
};

// Never destroyed: objects end at any time.
WeakHandle::Watches& WeakHandle::watches() {
    static Watches& all = *new Watches;
    return all;
}

WeakHandle::WeakHandle(Object* object) {
    if (!object) return;
    Watches& all = watches();
    std::lock_guard guard(all.mutex);
    Watch*& watch = all.byObject[object];
    if (!watch) {
        watch = new Watch{object, 0};
        object->_state.fetch_or(Object::kIsWatched, std::memory_order_relaxed);
    }
    ++watch->handles;
    _watch = watch;
}

WeakHandle::~WeakHandle() {
    if (!_watch) return;
    Watches& all = watches();
    std::lock_guard guard(all.mutex);
    if (--_watch->handles > 0) return;
    if (_watch->object) {
        all.byObject.erase(_watch->object);
        // An object that ends waits for the lock until its mark is gone.
        _watch->object->_state.fetch_and(~Object::kIsWatched, std::memory_order_release);
    }
    delete _watch;
}

Retained<Object> WeakHandle::object() const {
    if (!_watch) return nullptr;
    std::lock_guard guard(watches().mutex);
    if (!_watch->object || !retainUnlessEnding(_watch->object)) return nullptr;
    return Retained<Object>::adopting(_watch->object);
}

// Another thread may have counted down to 0 and be waiting to end the watch.
bool WeakHandle::retainUnlessEnding(Object* object) noexcept {
    Object::State state = object->_state.load(std::memory_order_relaxed);
    while (state >= Object::kReference)
        if (object->_state.compare_exchange_weak(state, state + Object::kReference,
                                                 std::memory_order_relaxed))
            return true;
    return false;
}

// The last reference is gone. A handle that is dropped meanwhile may have ended the watch itself.
void Object::endWatch() noexcept {
    WeakHandle::Watches& all = WeakHandle::watches();
    std::lock_guard guard(all.mutex);
    auto found = all.byObject.find(this);
    if (found == all.byObject.end()) return;
    found->second->object = nullptr;
    all.byObject.erase(found);
}

}  // namespace pelvor
