// SPDX-License-Identifier: Apache-2.0
// LoaderLock: the lock of the system's loader of code; for Foundation's own sources.
#pragma once

#include <pthread.h>

#include <vector>

namespace pelvor {

/// The GNU C library runs the constructors of a file that it loads while it holds a lock of its own, and does
/// not give it back when one of them throws: from then on every other thread that loads code or looks up a
/// symbol would wait for ever. Made before a load, this notes what the thread holds, and gives back the rest
/// when the load has thrown. Where no such lock is found, it does nothing.
class LoaderLock {
  public:
    LoaderLock();
    /// Gives back what this thread has taken since.
    void restore();

  private:
    struct Held {
        pthread_mutex_t* mutex;
        unsigned times;
    };
    static std::vector<Held> heldByThisThread();

    std::vector<Held> _before;
};

}  // namespace pelvor
