// SPDX-License-Identifier: Apache-2.0
#include "PBObjectPool.h"

#include <new>
#include <utility>

#include "BaseLibrary.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

// Holds a lock, if there is one, for a scope.
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
    methods.creator<"initWithCapacity:", &PBObjectPool::initWithCapacity>();
    methods.instance<"poolObject:", &PBObjectPool::poolObject>();
    methods.instance<"popObject", &PBObjectPool::popObject>();
}

PELVOR_DEFINE_CLASS(PBExternalObjectPool, baseLibrary) {
    methods.creator<"initWithCapacity:useLock:", &PBExternalObjectPool::initWithCapacity_useLock>();
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

// The pool is empty and takes nothing more before the first object is released: its end may come back here.
PBObjectPool::~PBObjectPool() {
    std::unique_ptr<id[]> objects;
    std::uint32_t count = 0;
    {
        Guard guard(_lock);
        objects = std::move(_pool);
        count = _count.exchange(0);
        _capacity = 0;
    }
    while (count > 0) objects[--count]->release();
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

// MARK: The external pool

Retained<PBExternalObjectPool> PBExternalObjectPool::initWithCapacity_useLock(std::uint32_t capacity,
                                                                              bool useLock, Class* cls) {
    auto pool = initWithCapacity(capacity, cls);
    if (pool && !useLock) pool->_lock = nullptr;
    return pool;
}

bool PBExternalObjectPool::poolObject(id object) {
    if (!object || isFull()) return false;
    Guard guard(_lock);
    if (!PBObjectPool::poolObject(object)) return false;
    object->retain();
    return true;
}

Retained<Object> PBExternalObjectPool::takeTop() {
    if (isEmpty()) return nullptr;
    Guard guard(_lock);
    return PBObjectPool::takeTop();
}

}  // namespace pelvor
