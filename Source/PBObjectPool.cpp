// SPDX-License-Identifier: Apache-2.0
#include "PBObjectPool.h"

#include <new>
#include <utility>

#include "BaseLibrary.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBObjectPool, baseLibrary) {
    methods.creator<"initWithCapacity:", &PBObjectPool::initWithCapacity>();
    methods.instance<"poolObject:", &PBObjectPool::poolObject>();
    methods.instance<"popObject", &PBObjectPool::popObject>();
}

Retained<PBObjectPool> PBObjectPool::initWithCapacity(std::uint32_t capacity, Class* cls) {
    auto pool = make<PBObjectPool>(cls);
    pool->_pool.reset(new (std::nothrow) id[capacity]);
    if (!pool->_pool) return nullptr;
    pool->_capacity = capacity;
    pool->_lock = NSLock::init();
    return pool;
}

// The pool is emptied and closed before the first object is released, since the end of an object may call the
// pool.
PBObjectPool::~PBObjectPool() {
    std::unique_ptr<id[]> objects;
    std::uint32_t count = 0;
    {
        auto locked = guard();
        objects = std::move(_pool);
        count = _count.exchange(0);
        _capacity = 0;
    }
    while (count > 0) objects[--count]->release();
}

std::unique_lock<NSLock> PBObjectPool::guard() {
    return _lock ? std::unique_lock(*_lock) : std::unique_lock<NSLock>();
}

bool PBObjectPool::poolObject(id object) {
    std::uint32_t count = _count.load(std::memory_order_relaxed);
    if (!object || count >= _capacity) return false;
    _pool[count] = object;
    _count.store(count + 1, std::memory_order_relaxed);
    return true;
}

Retained<Object> PBObjectPool::takeTop() {
    std::uint32_t count = _count.load(std::memory_order_relaxed);
    if (count == 0) return nullptr;
    _count.store(count - 1, std::memory_order_relaxed);
    return Retained<Object>::adopting(_pool[count - 1]);
}

NSString* PBObjectPool::description() {
    return NSString::stringWithFormat(u"<%@ %p> %u of %u, %@"_ns, class_(), static_cast<void*>(this),
                                      _count.load(std::memory_order_relaxed), _capacity,
                                      _lock ? u"with a lock"_ns : u"without a lock"_ns);
}

}  // namespace pelvor
