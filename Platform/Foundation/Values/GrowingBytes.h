// SPDX-License-Identifier: Apache-2.0
// GrowingBytes: a buffer that writers append to, and whose memory can be handed on; for Foundation's own
// sources.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include "Runtime/Export.h"

namespace pelvor {

/// Bytes in one block of `malloc`, which doubles when it is full and is not cleared beforehand.
class GrowingBytes {
  public:
    GrowingBytes() = default;
    ~GrowingBytes() { std::free(_bytes); }
    GrowingBytes(const GrowingBytes&) = delete;
    GrowingBytes& operator=(const GrowingBytes&) = delete;

    std::size_t size() const { return _size; }
    const char* data() const { return _bytes; }
    char* data() { return _bytes; }
    std::string_view view() const PELVOR_LIFETIMEBOUND { return {_bytes, _size}; }

    /// Room for `count` more bytes behind the last byte. The caller writes bytes there and tells their number
    /// by `advance`.
    char* room(std::size_t count) {
        if (count > _capacity - _size) [[unlikely]]
            grow(count);
        return _bytes + _size;
    }
    void advance(std::size_t count) { _size += count; }

    void append(std::string_view text) {
        if (text.empty()) return;
        std::memcpy(room(text.size()), text.data(), text.size());
        _size += text.size();
    }
    void append(char byte) {
        *room(1) = byte;
        ++_size;
    }
    void append(std::size_t count, char byte) {
        std::memset(room(count), byte, count);
        _size += count;
    }

    /// Hands the block to the caller, who frees it; the buffer is empty afterwards.
    char* leak() {
        _size = _capacity = 0;
        return std::exchange(_bytes, nullptr);
    }

  private:
    void grow(std::size_t count) {
        std::size_t capacity = _capacity < 512 ? 1024 : _capacity * 2;
        if (capacity - _size < count) capacity = _size + count;
        void* bytes = std::realloc(_bytes, capacity);
        if (!bytes) throw std::bad_alloc();
        _bytes = static_cast<char*>(bytes);
        _capacity = capacity;
    }

    char* _bytes = nullptr;
    std::size_t _size = 0;
    std::size_t _capacity = 0;
};

}  // namespace pelvor
