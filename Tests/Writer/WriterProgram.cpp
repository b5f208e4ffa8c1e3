// SPDX-License-Identifier: Apache-2.0
#include "WriterProgram.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

namespace pelvor {
namespace {

std::string shellQuoted(const std::string& text) {
    std::string quotation = "'";
    for (char character : text) quotation += character == '\'' ? "'\\''" : std::string(1, character);
    return quotation + "'";
}

}  // namespace

std::string WriterRun::valueOf(const std::string& label) const {
    const std::size_t at = output.rfind("    " + label + ": ");
    if (at == output.npos) return "";
    const std::size_t start = at + label.size() + 6;
    return output.substr(start, output.find('\n', start) - start);
}

std::size_t WriterRun::countOf(const std::string& text) const {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = output.find(text, at)) != output.npos; at += text.size()) ++count;
    return count;
}

WriterSession::WriterSession(const std::string& command, WriterOutput kind) {
    int input[2], output[2];
    const bool isTerminal = kind == WriterOutput::terminal;
    if (pipe2(input, O_CLOEXEC) != 0) std::abort();
    if (isTerminal ? openpty(&output[0], &output[1], nullptr, nullptr, nullptr) : pipe2(output, O_CLOEXEC))
        std::abort();
    if (kind == WriterOutput::unread)
        close(std::exchange(output[0], open("/dev/null", O_RDONLY | O_CLOEXEC)));
    _process = fork();
    if (_process == 0) {
        dup2(input[0], STDIN_FILENO);
        dup2(output[1], STDOUT_FILENO);
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        _exit(127);
    }
    close(input[0]);
    close(output[1]);
    _input = input[1];
    _output = output[0];
}

void WriterSession::write(const std::string& input) {
    if (::write(_input, input.data(), input.size()) < 0) std::abort();
}

// A terminal that nobody writes to any more fails to be read.
bool WriterSession::read() {
    char bytes[4096];
    const ssize_t count = ::read(_output, bytes, sizeof bytes);
    if (count > 0) _run.output.append(bytes, static_cast<std::size_t>(count));
    return count > 0;
}

bool WriterSession::waitFor(const std::string& text) {
    while (!_run.prints(text))
        if (!read()) return false;
    return true;
}

WriterRun WriterSession::end() {
    close(_input);
    while (read()) continue;
    close(_output);
    int status = 0;
    waitpid(std::exchange(_process, 0), &status, 0);
    _run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return _run;
}

WriterSession WriterProgram::start(const std::vector<std::string>& arguments, WriterOutput kind,
                                   const std::string& inputPath) {
    std::string command = "exec env -u LANGUAGE -u LC_ALL -u LC_MESSAGES -u XDG_CONFIG_HOME HOME=" +
                          shellQuoted(folder.path("home")) + " LANG=" + shellQuoted(locale) + " " +
                          shellQuoted(_program);
    for (const std::string& argument : arguments) command += " " + shellQuoted(argument);
    if (!inputPath.empty()) command += " <" + shellQuoted(inputPath);
    return {command + " 2>" + shellQuoted(folder.path("errors")), kind};
}

WriterRun WriterProgram::run(const std::vector<std::string>& arguments, const std::string& lines,
                             WriterOutput kind) {
    WriterRun run = start(arguments, kind, folder.write("lines", lines)).end();
    run.errors = folder.read("errors");
    return run;
}

std::string WriterProgram::useCopy() {
    const std::string copy = folder.path("PelvorWriter");
    std::filesystem::copy(WRITER_BUNDLE, copy, std::filesystem::copy_options::recursive);
    _program = copy + "/Contents/Linux/PelvorWriter";
    return copy + "/Contents/PlugIns/";
}

}  // namespace pelvor
