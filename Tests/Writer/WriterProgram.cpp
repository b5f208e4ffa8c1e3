// SPDX-License-Identifier: Apache-2.0
#include "WriterProgram.h"

#include <sys/wait.h>

#include <cstdlib>

namespace pelvor {
namespace {

std::string shellQuoted(const std::string& text) {
    std::string quotation = "'";
    for (char character : text) quotation += character == '\'' ? "'\\''" : std::string(1, character);
    return quotation + "'";
}

}  // namespace

std::string WriterRun::valueOf(const std::string& label) const {
    const std::size_t at = output.find("    " + label + ": ");
    if (at == output.npos) return "";
    const std::size_t start = at + label.size() + 6;
    return output.substr(start, output.find('\n', start) - start);
}

WriterRun WriterProgram::run(const std::vector<std::string>& arguments) {
    std::string command = "env -u LANGUAGE -u LC_ALL -u LC_MESSAGES -u XDG_CONFIG_HOME HOME=" +
                          shellQuoted(folder.path("home")) + " LANG=" + shellQuoted(_locale) + " " + shellQuoted(_program);
    for (const std::string& argument : arguments) command += " " + shellQuoted(argument);
    command += " >" + shellQuoted(folder.path("output")) + " 2>" + shellQuoted(folder.path("errors")) + " </dev/null";
    const int status = std::system(command.c_str());
    return {folder.read("output"), folder.read("errors"), WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

std::string WriterProgram::useCopy() {
    const std::string copy = folder.path("PelvorWriter");
    std::filesystem::copy(WRITER_BUNDLE, copy, std::filesystem::copy_options::recursive);
    _program = copy + "/Contents/Linux/PelvorWriter";
    return copy + "/Contents/PlugIns/";
}

}  // namespace pelvor
