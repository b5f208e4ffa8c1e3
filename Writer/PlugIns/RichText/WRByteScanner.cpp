// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/WRByteScanner.h"

#include <algorithm>

#include "Writer/PlugIns/RichText/RichTextPlugIn.h"

namespace pelvor {
namespace {

constexpr std::size_t kBlockLength = 64 * 1024;

}  // namespace

PELVOR_DEFINE_CLASS(WRByteScanner, richTextPlugIn) {}

Retained<WRByteScanner> WRByteScanner::of(const TextFileSource& source, const TextFileProgress& progress,
                                          Class* cls) {
    auto scanner = cast<WRByteScanner>(OFCharacterScanner::init(cls));
    scanner->_source = &source;
    scanner->_progress = progress;
    scanner->_bytes.resize(kBlockLength);
    scanner->_units.resize(kBlockLength);
    return scanner;
}

bool WRByteScanner::fetchMoreData() {
    const NSUInteger place = scanLocation();
    const std::ptrdiff_t count = _source->readAt(place, _bytes);
    if (_progress && count > 0) _progress(place + static_cast<std::uint64_t>(count), _source->length());
    _hasFailed |= count < 0;
    std::transform(_bytes.begin(), _bytes.begin() + std::max<std::ptrdiff_t>(count, 0), _units.begin(),
                   [](char byte) { return static_cast<std::uint8_t>(byte); });
    _start = place;
    _end = place + static_cast<NSUInteger>(std::max<std::ptrdiff_t>(count, 0));
    return fetchMoreDataFromCharacters_length_offset_freeWhenDone(_units.data(), _end - _start, place, false);
}

std::u16string_view WRByteScanner::nextUnits() {
    peekCharacter();
    const NSUInteger place = scanLocation();
    return {_units.data() + (place - _start), _end - place};
}

std::string WRByteScanner::readBytes(NSUInteger count) {
    const NSUInteger place = scanLocation();
    std::string bytes(
        std::min<std::uint64_t>(count, _source->length() - std::min<std::uint64_t>(place, _source->length())),
        '\0');
    const std::ptrdiff_t read = _source->readAt(place, bytes);
    _hasFailed |= read < 0;
    bytes.resize(static_cast<std::size_t>(std::max<std::ptrdiff_t>(read, 0)));
    setScanLocation(place + static_cast<NSUInteger>(bytes.size()));
    return bytes;
}

}  // namespace pelvor
