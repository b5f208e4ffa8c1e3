// SPDX-License-Identifier: Apache-2.0
#include "FileScanner.h"

#include "BaseLibrary.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

constexpr Class* kClasses[] = {&FileScanner::classRecord};
constexpr Library* kNeeded[] = {&baseLibrary};
constinit Library fileLibrary{"FileScanner", kNeeded, kClasses, {}};

}  // namespace

PELVOR_DEFINE_CLASS(FileScanner, fileLibrary) {}

Retained<FileScanner> FileScanner::of(std::FILE* file, std::size_t stepSize) {
    auto scanner = make<FileScanner>();
    scanner->_file = file;
    scanner->_bytes.resize(stepSize);
    scanner->_steps.push_back({0, 0, OFInitialStateForEncoding(kCFStringEncodingUTF8)});
    return scanner;
}

bool FileScanner::fetchMoreData() {
    NSUInteger place = scanLocation();
    std::size_t step = _steps.size() - 1;
    while (_steps[step].location > place) --step;
    for (;; ++step) {
        if (!decodeStep(step)) return false;
        if (_steps[step + 1].location > place) break;
    }
    return fetchMoreDataFromCharacters_length_offset_freeWhenDone(
        _units.data(), static_cast<NSUInteger>(_units.size()), _steps[step].location, false);
}

bool FileScanner::decodeStep(std::size_t index) {
    Step step = _steps[index];
    std::fseek(_file, step.byteOffset, SEEK_SET);
    auto count = static_cast<NSUInteger>(std::fread(_bytes.data(), 1, _bytes.size(), _file));
    if (!count) return false;
    _units.resize(count + 2);
    auto result = OFScanCharactersIntoBuffer(step.state, _bytes.data(), count, _units.data(), count + 2);
    _units.resize(result.charactersProduced);
    if (index + 1 == _steps.size())
        _steps.push_back({step.location + result.charactersProduced,
                          step.byteOffset + static_cast<long>(result.bytesConsumed), result.state});
    return true;
}

}  // namespace pelvor
