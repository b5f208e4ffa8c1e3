// SPDX-License-Identifier: Apache-2.0
// What a test does in a process of its own, and as another user.
#pragma once

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pelvor {

/// Does the work in a child process. Returns its exit status, or the number of the signal that ended it below
/// 0.
template <class Work>
int inChild(Work work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// Becomes another user for good, for a process that may.
inline bool becomeUser(uid_t user) {
    return setgroups(0, nullptr) == 0 && setresgid(user, user, user) == 0 && setresuid(user, user, user) == 0;
}

}  // namespace pelvor
