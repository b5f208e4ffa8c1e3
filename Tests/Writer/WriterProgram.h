// SPDX-License-Identifier: Apache-2.0
// WriterProgram: runs the built program, in a copy of its bundle if need be.
#pragma once

#include <signal.h>

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
    /// The rest of the last line that has the label, "Words: 12"; "" for none.
    std::string valueOf(const std::string& label) const;
    std::size_t countOf(const std::string& text) const;
};

/// `unread` is a pipe whose other end is closed.
enum class WriterOutput { pipe, terminal, unread };

/// The program while it runs.
class WriterSession {
  public:
    WriterSession(const std::string& command, WriterOutput kind);
    ~WriterSession() {
        if (_process > 0) end();
    }
    WriterSession(const WriterSession&) = delete;

    void write(const std::string& input);
    /// Reads on until the output so far has the text; false if it ends before.
    bool waitFor(const std::string& text);
    void signal(int number) { kill(_process, number); }
    /// Ends the input and reads to the end.
    WriterRun end();

  private:
    bool read();

    WriterRun _run;
    pid_t _process;
    int _input, _output;
};

/// The program, with settings of its own.
class WriterProgram {
  public:
    /// Its input is a file of these lines.
    WriterRun run(const std::vector<std::string>& arguments, const std::string& lines = "",
                  WriterOutput kind = WriterOutput::pipe);
    /// Its input is the file at the path, or what is written to it.
    WriterSession start(const std::vector<std::string>& arguments, WriterOutput kind = WriterOutput::pipe,
                        const std::string& inputPath = "");
    /// From now on runs a copy of the bundle, and returns the copy's folder of plug-ins.
    std::string useCopy();

    TemporaryFolder folder;
    std::string locale = "en_GB.UTF-8";

  private:
    std::string _program = WRITER_BUNDLE "/Contents/Linux/PelvorWriter";
};

}  // namespace pelvor
