// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cstddef>

#include "Foundation/Bundles/LoaderLock.h"

namespace pelvor {

#if defined(__GLIBC__)

// The loader keeps its locks in one variable, whose layout differs between releases; but a recursive lock
// that this thread holds looks like nothing else.
std::vector<LoaderLock::Held> LoaderLock::heldByThisThread() {
    std::vector<Held> held;
    auto* state = static_cast<std::byte*>(dlvsym(RTLD_DEFAULT, "_rtld_global", "GLIBC_PRIVATE"));
    Dl_info info;
    const ElfW(Sym)* symbol = nullptr;
    if (!state ||
        !dladdr1(state, &info, const_cast<void**>(reinterpret_cast<const void**>(&symbol)), RTLD_DL_SYMENT) ||
        !symbol)
        return held;
    for (std::size_t at = 0; at + sizeof(pthread_mutex_t) <= symbol->st_size;
         at += alignof(pthread_mutex_t)) {
        auto* mutex = reinterpret_cast<pthread_mutex_t*>(state + at);
        if (mutex->__data.__kind == PTHREAD_MUTEX_RECURSIVE_NP && mutex->__data.__owner == gettid() &&
            mutex->__data.__lock != 0 && mutex->__data.__count > 0)
            held.push_back({mutex, mutex->__data.__count});
    }
    return held;
}

#else

std::vector<LoaderLock::Held> LoaderLock::heldByThisThread() { return {}; }

#endif

LoaderLock::LoaderLock() : _before(heldByThisThread()) {}

void LoaderLock::restore() {
    for (const Held& now : heldByThisThread()) {
        unsigned keep = 0;
        for (const Held& before : _before)
            if (before.mutex == now.mutex) keep = before.times;
        for (unsigned i = keep; i < now.times; ++i) pthread_mutex_unlock(now.mutex);
    }
}

}  // namespace pelvor
