// SPDX-License-Identifier: Apache-2.0
// FileScanner: reads a UTF-8 file of any length by a scanner that keeps no more of it than one step.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "Scanning/OFCharacterScanner.h"
#include "Scanning/OFStringDecoder.h"

namespace pelvor {

/// Reads the file in steps of so many bytes. It remembers where each step began, and so finds any place again
/// that somebody goes back to.
class FileScanner : public OFCharacterScanner, OFCharacterScanner::HiddenCreators {
    PELVOR_CLASS(FileScanner, OFCharacterScanner);
    PELVOR_CREATORS(of);

  public:
    /// The file stays open while the scanner lives; nobody else moves in it.
    static Retained<FileScanner> of(std::FILE* file, std::size_t stepSize);

    /// Decodes the step in which the place lies that the scanner is at.
    bool fetchMoreData() override;
    /// Nothing to be done: the next fetch goes wherever the place is.
    void _rewindCharacterSource() override {}

  protected:
    FileScanner() = default;
    ~FileScanner() = default;

  private:
    struct Step {
        NSUInteger location;         // of its first unit
        long byteOffset;             // of its first byte, which may stand inside a character
        OFStringDecoderState state;  // what came before of that character
    };

    bool decodeStep(std::size_t index);

    std::FILE* _file = nullptr;
    std::vector<unsigned char> _bytes;
    std::u16string _units;  // of the step that was decoded last
    std::vector<Step> _steps;
};

}  // namespace pelvor
