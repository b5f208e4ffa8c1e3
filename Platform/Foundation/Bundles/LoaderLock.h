// SPDX-License-Identifier: Apache-2.0
// LoaderLock: the lock of the system's loader of code; for Foundation's own sources.
#pragma once

#include <pthread.h>

#include <vector>

namespace pelvor {

/// The GNU C library holds a lock of its own while it runs the constructors of a file, and does not give the
/// lock back when a constructor throws: from then on every other thread that loads code or looks up a symbol
/// would wait for ever. An object of this class, made before a load, notes the locks that the thread holds,
/// and gives back all others after a load that threw. Where there is no such lock, the object does nothing.
class LoaderLock {
  public:
    LoaderLock();
    /// Gives back the locks that this thread has taken since the object was made.
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
