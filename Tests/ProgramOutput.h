// SPDX-License-Identifier: Apache-2.0
// What a command of the shell prints.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace pelvor {

struct ProgramOutput {
    std::string text;
    int status;  ///< as the shell tells it; -1 if a signal ended the command
};

inline ProgramOutput outputOf(const std::string& command) {
    std::string text;
    std::FILE* pipe = ::popen(command.c_str(), "re");
    char bytes[4096];
    while (const std::size_t count = std::fread(bytes, 1, sizeof bytes, pipe)) text.append(bytes, count);
    const int status = ::pclose(pipe);
    return {text, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

}  // namespace pelvor
