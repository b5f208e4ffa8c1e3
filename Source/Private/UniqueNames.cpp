// SPDX-License-Identifier: Apache-2.0
#include "Private/UniqueNames.h"

#include <charconv>
#include <filesystem>
#include <string_view>
#include <vector>

#include "Foundation/NSFileManager.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

namespace fs = std::filesystem;

// The last number that is tried.
constexpr int kLastNumber = 99'997;

// So many questions cost less than a list of the folder.
constexpr int kSingleQuestions = 16;

// The names with numbers: what stands before a number and behind it, if the format has "%d".
class NumberedNames {
  public:
    NumberedNames(std::string base, NSString* format, std::string end)
        : _base(std::move(base)), _format(format), _end(std::move(end)) {
        const std::string sample = suffix(kLastNumber), digits = std::to_string(kLastNumber);
        const std::size_t place = sample.find(digits);
        if (place == sample.npos) return;
        _front = _base + sample.substr(0, place);
        _back = sample.substr(place + digits.size()) + _end;
        _isPlain = formatted(7) == plain(7) && formatted(1234) == plain(1234);
    }

    std::string operator[](int number) const { return _isPlain ? plain(number) : formatted(number); }

    // Which numbers are in the names of a folder, as far as a list tells; of other formats none.
    std::vector<bool> numbersIn(const std::string& folder) const {
        std::vector<bool> numbers(kLastNumber + 1);
        if (!_isPlain || _front.find('/') != _front.npos) return numbers;
        NSFileManager::defaultManager()->visitNamesInDirectory(folder, [&](std::string_view name) {
            const int number = numberIn(name);
            if (number >= 0 && number <= kLastNumber) numbers[static_cast<std::size_t>(number)] = true;
        });
        return numbers;
    }

  private:
    std::string suffix(int number) const {
        AutoreleasePool pool;
        return NSString::stringWithFormat(_format, number)->toUTF8();
    }
    std::string formatted(int number) const { return _base + suffix(number) + _end; }
    std::string plain(int number) const { return _front + std::to_string(number) + _back; }

    // -1 for another name.
    int numberIn(std::string_view name) const {
        if (!name.starts_with(_front) || !name.ends_with(_back) ||
            name.size() <= _front.size() + _back.size())
            return -1;
        const char* start = name.data() + _front.size();
        const char* end = name.data() + name.size() - _back.size();
        int number = -1;
        const auto [place, error] = std::from_chars(start, end, number);
        const bool isWritten = error == std::errc() && place == end && (*start != '0' || end == start + 1);
        return isWritten ? number : -1;
    }

    std::string _base;
    NSString* _format;
    std::string _end, _front, _back;
    bool _isPlain = false;
};

// A link to nowhere has a name, too.
bool isThere(const std::string& folder, const std::string& name) {
    std::error_code error;
    return fs::exists(fs::symlink_status(folder + "/" + name, error));
}

}  // namespace

std::optional<std::string> uniqueName(const std::string& folder, const NameParts& name, NSString* suffix,
                                      const std::function<bool(const std::string&)>& isTaken) {
    const auto isFree = [&](const std::string& candidate) {
        return !isThere(folder, candidate) && !(isTaken && isTaken(candidate));
    };
    if (isFree(name.name)) return name.name;
    const std::string end = name.extension.empty() ? "" : "." + name.extension;
    const NumberedNames names(name.base, suffix, end);
    std::vector<bool> listed(kSingleQuestions + 1);
    for (int number = 1; number <= kLastNumber; ++number) {
        if (number == kSingleQuestions + 1) listed = names.numbersIn(folder);
        if (!listed[static_cast<std::size_t>(number)] && isFree(names[number])) return names[number];
    }
    return {};
}

}  // namespace pelvor
