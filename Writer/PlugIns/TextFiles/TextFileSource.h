// SPDX-License-Identifier: Apache-2.0
// TextFileSource: the bytes of a file, read in pieces.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace pelvor {

/// Bytes of a file, or bytes in memory that stand for one. They can be read from anywhere, again and again.
class TextFileSource {
  public:
    /// The file at the path; `isOpen` tells whether there is one.
    explicit TextFileSource(const std::string& path);
    /// The caller's bytes, which stay where they are.
    explicit TextFileSource(std::string_view bytes) : _bytes(bytes), _length(bytes.size()), _isOpen(true) {}
    ~TextFileSource();
    TextFileSource(const TextFileSource&) = delete;
    TextFileSource& operator=(const TextFileSource&) = delete;

    bool isOpen() const { return _isOpen; }
    /// How many bytes there were when it was opened; a file may have more or fewer by now.
    std::uint64_t length() const { return _length; }
    /// Fills the buffer from the place on, as far as there are bytes, and answers how many there were; -1 if
    /// they cannot be read.
    std::ptrdiff_t readAt(std::uint64_t place, std::span<char> buffer) const;

  private:
    std::string_view _bytes;
    int _descriptor = -1;
    std::uint64_t _length = 0;
    bool _isOpen = false;
};

}  // namespace pelvor
