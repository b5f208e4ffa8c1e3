// SPDX-License-Identifier: Apache-2.0
#include "PBExternalObjectPool.h"

#include "BaseLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBExternalObjectPool, baseLibrary) {
    methods.creator<"initWithCapacity:useLock:", &PBExternalObjectPool::initWithCapacity_useLock>();
    methods.instance<"popObject", &PBExternalObjectPool::popObject>();
}

Retained<PBExternalObjectPool> PBExternalObjectPool::initWithCapacity_useLock(std::uint32_t capacity,
                                                                              bool useLock, Class* cls) {
    auto pool = initWithCapacity(capacity, cls);
    if (pool && !useLock) pool->_lock = nullptr;
    return pool;
}

bool PBExternalObjectPool::poolObject(id object) {
    if (!object || isFull()) return false;
    auto locked = guard();
    if (!PBObjectPool::poolObject(object)) return false;
    object->retain();
    return true;
}

Retained<Object> PBExternalObjectPool::takeTop() {
    if (isEmpty()) return nullptr;
    auto locked = guard();
    return PBObjectPool::takeTop();
}

}  // namespace pelvor
