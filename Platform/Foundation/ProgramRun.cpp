// SPDX-License-Identifier: Apache-2.0
#include "Foundation/ProgramRun.h"

#include <spawn.h>
#include <sys/wait.h>

#include <csignal>
#include <thread>
#include <vector>

#include "Foundation/Files/SystemPath.h"
#include "Foundation/NSArray.h"
#include "Shared/CodeFolder.h"

namespace pelvor {
namespace {

// What the program is given, with a null pointer at the end.
class Words {
  public:
    explicit Words(std::vector<std::string> words) : _words(std::move(words)) {
        for (std::string& word : _words) _pointers.push_back(word.data());
        _pointers.push_back(nullptr);
    }
    operator char* const*() const { return _pointers.data(); }

  private:
    std::vector<std::string> _words;
    std::vector<char*> _pointers;
};

std::vector<std::string> argumentsOf(const std::string& program, NSArray* arguments) {
    std::vector<std::string> words{program};
    if (!arguments) return words;
    for (id argument : arguments) words.push_back(systemPath(cast<NSString>(argument)));
    return words;
}

std::vector<std::string> environmentWith(NSString* searchPath) {
    std::vector<std::string> variables;
    for (char** entry = environ; entry && *entry; ++entry)
        if (!searchPath || !std::string_view(*entry).starts_with("PATH=")) variables.emplace_back(*entry);
    if (searchPath) variables.push_back("PATH=" + systemPath(searchPath));
    return variables;
}

// How the program begins: without the host's signals; with its output in the pipe, or, without one, in a
// session of its own.
class Beginning {
  public:
    explicit Beginning(int output = -1) {
        ::posix_spawn_file_actions_init(&_files);
        ::posix_spawn_file_actions_addopen(&_files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (output >= 0) ::posix_spawn_file_actions_adddup2(&_files, output, STDOUT_FILENO);
        ::posix_spawnattr_init(&_attributes);
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        ::posix_spawnattr_setsigmask(&_attributes, &none);
        ::posix_spawnattr_setsigdefault(&_attributes, &all);
        const int session = output < 0 ? POSIX_SPAWN_SETSID : 0;
        ::posix_spawnattr_setflags(
            &_attributes, static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | session));
    }
    Beginning(const Beginning&) = delete;
    ~Beginning() {
        ::posix_spawn_file_actions_destroy(&_files);
        ::posix_spawnattr_destroy(&_attributes);
    }
    int run(pid_t& process, const std::string& program, const Words& arguments, const Words& environment) {
        return ::posix_spawn(&process, program.c_str(), &_files, &_attributes, arguments, environment);
    }
    int runNamed(pid_t& process, const std::string& name, const Words& arguments, const Words& environment) {
        return ::posix_spawnp(&process, name.c_str(), &_files, &_attributes, arguments, environment);
    }

  private:
    posix_spawn_file_actions_t _files;
    posix_spawnattr_t _attributes;
};

void readAll(int pipe, std::string* output) {
    char piece[4096];
    for (;;) {
        const ssize_t count = uninterrupted([&] { return ::read(pipe, piece, sizeof piece); });
        if (count <= 0) return;
        if (output) output->append(piece, static_cast<std::size_t>(count));
    }
}

}  // namespace

int runProgram(NSString* path, NSArray* arguments, std::string* output, NSString* searchPath) {
    const std::string program = systemPath(path);
    int ends[2];
    if (!isSystemPath(program) || ::pipe2(ends, O_CLOEXEC) != 0) return -1;
    Descriptor reading(ends[0]), writing(ends[1]);
    pid_t process = 0;
    const int reason = Beginning(writing).run(process, program, Words(argumentsOf(program, arguments)),
                                              Words(environmentWith(searchPath)));
    if (reason != 0) return errno = reason, -1;
    writing.set(-1);
    readAll(reading, output);
    int status = 0;
    if (uninterrupted([&] { return ::waitpid(process, &status, 0); }) < 0) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool startProgram(NSString* name, NSArray* arguments) {
    const std::string program = systemPath(name);
    if (!isSystemPath(program)) return false;
    pid_t process = 0;
    const int reason = Beginning().runNamed(process, program, Words(argumentsOf(program, arguments)),
                                            Words(environmentWith(nullptr)));
    if (reason != 0) return errno = reason, false;
    // Somebody has to take note of its end.
    std::thread([process] { uninterrupted([&] { return ::waitpid(process, nullptr, 0); }); }).detach();
    return true;
}

NSString* libraryProgramsFolder() {
    const void* code = reinterpret_cast<const void*>(&libraryProgramsFolder);
    return stringOfSystemPath((folderOfCode(code) / "pelvor").string());
}

}  // namespace pelvor
