// SPDX-License-Identifier: Apache-2.0
// WriterProgram: runs the built program, in a copy of its bundle if need be.
#pragma once

#include <string>
#include <vector>

#include "TemporaryFolder.h"

namespace pelvor {

/// What a run of the program printed and how it ended.
struct WriterRun {
    std::string output;
    std::string errors;
    int status = -1;  ///< -1 for a program that did not end by itself

    bool prints(const std::string& text) const { return output.find(text) != output.npos; }
    bool complains(const std::string& text) const { return errors.find(text) != errors.npos; }
    /// The rest of the line that has the label, "Words: 12"; "" for none.
    std::string valueOf(const std::string& label) const;
};

/// The program, with settings of its own and in the language of the locale.
class WriterProgram {
  public:
    explicit WriterProgram(std::string locale = "en_GB.UTF-8") : _locale(std::move(locale)) {}

    WriterRun run(const std::vector<std::string>& arguments);
    /// From now on runs a copy of the bundle, and answers the copy's folder of plug-ins.
    std::string useCopy();

    TemporaryFolder folder;

  private:
    std::string _locale;
    std::string _program = WRITER_BUNDLE "/Contents/Linux/PelvorWriter";
};

}  // namespace pelvor
