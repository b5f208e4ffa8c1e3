// SPDX-License-Identifier: Apache-2.0
// AutoreleasePool: a scope at whose end autoreleased objects are released.
#pragma once

#include <cstddef>

#include "Runtime/Object.h"

namespace pelvor {

/// Releases, when its scope ends, the objects that were autoreleased on this thread since it was made, in the
/// order in which they came:
///
///     while (NSString* line = readLine()) {
///         AutoreleasePool pool;
///         process(line);  // what this call autoreleases is released before the next line
///     }
///
/// Pools nest like scopes. An object that is autoreleased outside any pool is released when its thread ends.
class PELVOR_EXPORT AutoreleasePool {
  public:
    AutoreleasePool() noexcept;
    ~AutoreleasePool();
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

    /// Releases the objects that the pool holds now. The pool can be used further.
    void drain();
    /// How many releases the pools of this thread hold.
    static std::size_t pendingCount() noexcept;

  private:
    std::size_t _start;
};

}  // namespace pelvor
