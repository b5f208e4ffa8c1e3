// SPDX-License-Identifier: Apache-2.0
// WRByteScanner: scans the bytes of a file as units, each byte a unit.
#pragma once

#include <vector>

#include "Scanning/OFCharacterScanner.h"
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"

namespace pelvor {

/// Positions are those of bytes.
class WRByteScanner : public OFCharacterScanner, OFCharacterScanner::HiddenCreators {
    PELVOR_CLASS(WRByteScanner, OFCharacterScanner);
    PELVOR_CREATORS(of);

  public:
    /// The source, which has fewer than NSNotFound bytes, outlives the scanner.
    static Retained<WRByteScanner> of(const TextFileSource& source, const TextFileProgress& progress,
                                      Class* cls = classObject());

    bool fetchMoreData() override;
    /// Does nothing: the next fetch goes to the scan location, wherever that is.
    void _rewindCharacterSource() override {}

    /// The units from the scan location on that are read already; empty at the end of the data.
    std::u16string_view nextUnits();
    bool isAtEnd() { return peekCharacter() == 0 && scanLocation() >= _source->length(); }
    /// Consumes `count` bytes and returns them; fewer if the file ends before.
    std::string readBytes(NSUInteger count);
    /// Whether bytes could not be read: the scanner found an end of the data there.
    bool hasFailed() { return _hasFailed; }

  protected:
    WRByteScanner() = default;
    ~WRByteScanner() = default;

  private:
    const TextFileSource* _source = nullptr;
    TextFileProgress _progress;
    std::vector<char> _bytes;
    std::vector<unichar> _units;      // the scanner's buffer
    NSUInteger _start = 0, _end = 0;  // the places of its first unit and behind its last one
    bool _hasFailed = false;
};

}  // namespace pelvor
