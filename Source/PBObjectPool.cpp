// SPDX-License-Identifier: Apache-2.0
#include "PBObjectPool.h"

#include <new>

#include "BaseLibrary.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

// A lock that may be none.
class Guard {
  public:
    explicit Guard(NSLock* lock) : _lock(lock) {
        if (_lock) _lock->lock();
    }
    ~Guard() {
        if (_lock) _lock->unlock();
    }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

  private:
    NSLock* _lock;
};

}  // namespace

PELVOR_DEFINE_CLASS(PBObjectPool, baseLibrary) {
    methods.classLevel<"initWithCapacity:", &PBObjectPool::initWithCapacity>();
    methods.instance<"poolObject:", &PBObjectPool::poolObject>();
    methods.instance<"popObject", &PBObjectPool::popObject>();
}

PELVOR_DEFINE_CLASS(PBExternalObjectPool, baseLibrary) {
    methods.classLevel<"initWithCapacity:useLock:", &PBExternalObjectPool::initWithCapacity_useLock>();
    methods.instance<"poolObject:", &PBExternalObjectPool::poolObject>();
    methods.instance<"popObject", &PBExternalObjectPool::popObject>();
}

Retained<PBObjectPool> PBObjectPool::initWithCapacity(std::uint32_t capacity, Class* cls) {
    auto pool = make<PBObjectPool>(cls);
    pool->_pool.reset(new (std::nothrow) id[capacity]);
    if (!pool->_pool) return nullptr;
    pool->_capacity = capacity;
    pool->_lock = NSLock::init();
    return pool;
}

PBObjectPool::~PBObjectPool() {
    Guard guard(_lock);
    while (!isEmpty()) popObject() = nullptr;
}

bool PBObjectPool::poolObject(id object) {
    std::uint32_t count = _count.load(std::memory_order_relaxed);
    if (!object || count >= _capacity) return false;
    _pool[count] = object;
    _count.store(count + 1, std::memory_order_relaxed);
    return true;
}

Retained<Object> PBObjectPool::popObject() {
    std::uint32_t count = _count.load(std::memory_order_relaxed);
    if (count == 0) return nullptr;
    _count.store(count - 1, std::memory_order_relaxed);
    return Retained<Object>::adopting(_pool[count - 1]);
}

Retained<PBExternalObjectPool> PBExternalObjectPool::initWithCapacity_useLock(std::uint32_t capacity,
                                                                              bool useLock, Class* cls) {
    auto pool = cast<PBExternalObjectPool>(PBObjectPool::initWithCapacity(capacity, cls).leak());
    if (pool && !useLock) pool->_lock = nullptr;
    return Retained<PBExternalObjectPool>::adopting(pool);
}

bool PBExternalObjectPool::poolObject(id object) {
    if (!object || isFull()) return false;
    Guard guard(_lock);
    if (!PBObjectPool::poolObject(object)) return false;
    object->retain();
    return true;
}

id PBExternalObjectPool::popObject() {
    if (isEmpty()) return nullptr;
    Guard guard(_lock);
    return PBObjectPool::popObject().autorelease();
}

}  // namespace pelvor
