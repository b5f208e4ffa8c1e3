// SPDX-License-Identifier: Apache-2.0
// The mark that a scanner's own operation sets while it tries a reading; for the scanner.
#pragma once

#include "Scanning/OFCharacterScanner.h"

namespace pelvor {

/// The operation either keeps the place that it has reached, or goes back to the mark. If an exception leaves
/// the operation before that, the scanner goes back to the mark; but if the exception is that of a rewind
/// that failed, the place stays where that rewind was to go. The marks that were set before the operation
/// stay.
class OFCharacterScanner::Mark {
  public:
    explicit Mark(OFCharacterScanner& scanner) : _scanner(scanner), _outerCount(scanner._rewindMarkCount) {
        scanner._hasFailedToRewind = false;
        scanner.setRewindMark();
    }
    Mark(const Mark&) = delete;
    ~Mark() {
        if (_scanner._rewindMarkCount <= _outerCount) return;
        _scanner._rewindMarkCount = _outerCount;
        try {
            if (!_scanner._hasFailedToRewind) _scanner.moveTo(_scanner._rewindMarkOffsets[_outerCount]);
        } catch (...) {  // the first exception is on its way
        }
    }

    void keep() { _scanner.discardRewindMark(); }
    void goBack() { _scanner.rewindToMark(); }
    /// Keeps the place or goes back, and returns the result.
    bool finish(bool isKept, bool result) {
        if (isKept)
            keep();
        else
            goBack();
        return result;
    }

  private:
    OFCharacterScanner& _scanner;
    const std::uint16_t _outerCount;
};

}  // namespace pelvor
