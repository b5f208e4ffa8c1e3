// SPDX-License-Identifier: Apache-2.0
#include "Runtime/AutoreleasePool.h"

#include <cstdlib>
#include <new>

namespace pelvor {
namespace {

// Each thread has one stack, and a pool is the part above the height at which the pool began. The stack has
// no constructor or destructor, so that a push need not check whether the thread's stack exists.
struct PoolStack {
    Object** objects = nullptr;
    std::size_t count = 0;
    std::size_t capacity = 0;

    void grow();

    // A release may autorelease further objects; they join the part of the stack that is being released.
    void releaseAbove(std::size_t height) {
        for (std::size_t next = height; next < count; ++next) objects[next]->release();
        count = height;
    }
    void releaseAll() {
        releaseAbove(0);
        std::free(objects);
        *this = {};
    }
};

constinit thread_local PoolStack poolStack;

// Empties the thread's stack when the thread ends; what is autoreleased after that begins a new one.
struct EndOfThread {
    ~EndOfThread() { poolStack.releaseAll(); }
};

void PoolStack::grow() {
    static thread_local EndOfThread endOfThread;
    std::size_t newCapacity = capacity == 0 ? 512 : capacity * 2;
    void* memory = std::realloc(objects, newCapacity * sizeof(Object*));
    if (!memory) throw std::bad_alloc();
    objects = static_cast<Object**>(memory);
    capacity = newCapacity;
}

}  // namespace

Object* Object::autorelease() {
    PoolStack& stack = poolStack;
    if (stack.count == stack.capacity) [[unlikely]]
        stack.grow();
    stack.objects[stack.count++] = this;
    return this;
}

AutoreleasePool::AutoreleasePool() noexcept : _start(poolStack.count) {}

AutoreleasePool::~AutoreleasePool() { drain(); }

void AutoreleasePool::drain() { poolStack.releaseAbove(_start); }

std::size_t AutoreleasePool::pendingCount() noexcept { return poolStack.count; }

}  // namespace pelvor
