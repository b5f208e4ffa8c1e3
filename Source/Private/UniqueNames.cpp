// SPDX-License-Identifier: Apache-2.0
#include "Private/UniqueNames.h"

#include <filesystem>

#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

namespace fs = std::filesystem;

// The last number that is tried.
constexpr int kLastNumber = 99'997;

// So many questions cost less than a list of the folder.
constexpr int kSingleQuestions = 16;

std::string formatted(NSString* format, int number) {
    AutoreleasePool pool;
    return NSString::stringWithFormat(format, number)->toUTF8();
}

// A format with an integer in it. Most formats have "%d", whose texts need no formatter.
class NumberedSuffix {
  public:
    explicit NumberedSuffix(NSString* format) : _format(format) {
        const std::string sample = formatted(format, kLastNumber), digits = std::to_string(kLastNumber);
        const std::size_t place = sample.find(digits);
        if (place == sample.npos) return;
        _front = sample.substr(0, place);
        _back = sample.substr(place + digits.size());
        _isPlain = formatted(format, 7) == plain(7) && formatted(format, 1234) == plain(1234);
    }

    std::string with(int number) const { return _isPlain ? plain(number) : formatted(_format, number); }

  private:
    std::string plain(int number) const { return _front + std::to_string(number) + _back; }

    NSString* _format;
    std::string _front, _back;
    bool _isPlain = false;
};

}  // namespace

bool TakenNames::contains(const std::string& name) {
    if (++_questions <= kSingleQuestions || name.find('/') != name.npos) return isThere(name);
    return isListed(name) || isThere(name);
}

// A link to nowhere has a name, too.
bool TakenNames::isThere(const std::string& name) const {
    std::error_code error;
    return fs::exists(fs::symlink_status(_folder + "/" + name, error));
}

bool TakenNames::isListed(const std::string& name) {
    std::error_code error;
    if (_names.empty())
        for (fs::directory_iterator entry(_folder, error), end; !error && entry != end;
             entry.increment(error))
            _names.insert(entry->path().filename().string());
    return _names.contains(name);
}

std::optional<std::string> uniqueName(const std::string& base, const std::string& extension, NSString* suffix,
                                      const std::function<bool(const std::string&)>& isTaken) {
    const std::string end = extension.empty() ? "" : "." + extension;
    if (!isTaken(base + end)) return base + end;
    const NumberedSuffix suffixes(suffix);
    for (int number = 1; number <= kLastNumber; ++number) {
        std::string name = base + suffixes.with(number) + end;
        if (!isTaken(name)) return name;
    }
    return {};
}

}  // namespace pelvor
