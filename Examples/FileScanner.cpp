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

Retained<FileScanner> FileScanner::of(std::FILE* file, std::size_t stepSize, Class* cls) {
    auto scanner = cast<FileScanner>(OFCharacterScanner::init(cls));
    scanner->_file = file;
    scanner->_stepSize = stepSize;
    scanner->_steps.push_back({0, 0, OFInitialStateForEncoding(kCFStringEncodingUTF8)});
    return scanner;
}

bool FileScanner::fetchMoreData() {
    const NSUInteger place = scanLocation();
    std::size_t index = _steps.size() - 1;
    while (_steps[index].location > place) --index;
    for (;; ++index) {
        std::u16string units = readStep(index);
        if (index + 1 == _steps.size()) return false;  // the file has ended
        // A step that ends at the place, or inside a character, brings nothing.
        if (_steps[index + 1].location <= place) continue;
        _units.swap(units);
        return fetchMoreDataFromCharacters_length_offset_freeWhenDone(
            _units.data(), static_cast<NSUInteger>(_units.size()), _steps[index].location, false);
    }
}

std::u16string FileScanner::readStep(std::size_t index) {
    const Step step = _steps[index];
    std::vector<unsigned char> bytes(_stepSize);
    std::fseek(_file, step.byteOffset, SEEK_SET);
    auto count = static_cast<NSUInteger>(std::fread(bytes.data(), 1, bytes.size(), _file));
    std::u16string units(count + 2, u'\0');  // room for two more, and no character is lost
    auto result = OFScanCharactersIntoBuffer(step.state, bytes.data(), count, units.data(), count + 2);
    units.resize(result.charactersProduced);
    if (count > 0 && index + 1 == _steps.size())
        _steps.push_back({step.location + result.charactersProduced,
                          step.byteOffset + static_cast<long>(count), result.state});
    return units;
}

}  // namespace pelvor
