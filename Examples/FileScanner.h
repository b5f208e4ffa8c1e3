// SPDX-License-Identifier: Apache-2.0
// FileScanner: reads a UTF-8 file of any length through a scanner that holds one step of it at a time.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "Scanning/OFCharacterScanner.h"
#include "Scanning/OFStringDecoder.h"

namespace pelvor {

/// A scanner subclass overrides two operations: `fetchMoreData`, which brings the units from the scan
/// location on, and `_rewindCharacterSource`, which it leaves as it is if its source cannot go back. This one
/// goes back to any place, since it remembers where each of its steps began:
///
///     auto scanner = FileScanner::of(file, 4096);
///     while (NSString* name = scanner->readFullTokenWithDelimiterCharacter(u':')) …
class FileScanner : public OFCharacterScanner, OFCharacterScanner::HiddenCreators {
    PELVOR_CLASS(FileScanner, OFCharacterScanner);
    PELVOR_CREATORS(of);

  public:
    /// Reads the file from its start, in steps of `stepSize` bytes. The file stays open, and nobody else
    /// moves in it, as long as the scanner lives. A file that cannot be read ends there.
    static Retained<FileScanner> of(std::FILE* file, std::size_t stepSize, Class* cls = classObject());

    bool fetchMoreData() override;
    /// Does nothing: the next fetch goes to the scan location, wherever that is.
    void _rewindCharacterSource() override {}

  protected:
    FileScanner() = default;
    ~FileScanner() = default;

  private:
    struct Step {
        NSUInteger location;         // of the step's first unit
        long byteOffset;             // of its first byte, which may stand inside a character
        OFStringDecoderState state;  // what came of that character before
    };

    // The units of a step; notes where the next one begins, unless the file has ended.
    std::u16string readStep(std::size_t index);

    std::FILE* _file = nullptr;
    std::size_t _stepSize = 0;
    std::u16string _units;     // the scanner's buffer
    std::vector<Step> _steps;  // those that have been read, and where the next one begins
};

}  // namespace pelvor
