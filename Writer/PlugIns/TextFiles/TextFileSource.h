// SPDX-License-Identifier: Apache-2.0
// TextFileSource: the bytes of a file, read in pieces.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace pelvor {

/// The bytes of a file, or bytes in memory that stand for a file. They can be read from any place, any number
/// of times.
class TextFileSource {
  public:
    /// The file at the path; `isOpen` tells whether the file could be opened.
    explicit TextFileSource(const char* path);
    /// The caller's bytes, which must outlive the source.
    explicit TextFileSource(std::string_view bytes) : _bytes(bytes), _length(bytes.size()), _isOpen(true) {}
    ~TextFileSource();
    TextFileSource(const TextFileSource&) = delete;
    TextFileSource& operator=(const TextFileSource&) = delete;

    bool isOpen() const { return _isOpen; }
    /// The system's number of the last failure, to open or to read; 0 if there was none.
    int failure() const { return _failure; }
    /// How many bytes there were when the file was opened; a file may have more or fewer by now.
    std::uint64_t length() const { return _length; }
    /// Fills the buffer with the bytes from the place on, as far as there are any. Returns their number, or
    /// -1 if they cannot be read.
    std::ptrdiff_t readAt(std::uint64_t place, std::span<char> buffer) const;

  private:
    std::string_view _bytes;
    int _descriptor = -1;
    std::uint64_t _length = 0;
    bool _isOpen = false;
    mutable int _failure = 0;
};

}  // namespace pelvor
