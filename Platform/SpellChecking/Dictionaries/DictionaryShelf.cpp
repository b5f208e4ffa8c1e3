// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/Dictionaries/DictionaryShelf.h"

#include <sys/stat.h>
#include <unicode/uloc.h>

#include <algorithm>

#include "Foundation/NSArray.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSString.h"
#include "Foundation/UserLanguages.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

using Part = int32_t (*)(const char*, char*, int32_t, UErrorCode*);

std::string partOf(const std::string& locale, Part part) {
    char text[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = part(locale.c_str(), text, sizeof text, &status);
    return U_SUCCESS(status) ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

std::string joined(const std::string& language, const std::string& region) {
    return region.empty() ? language : language + "_" + region;
}

}  // namespace

const std::vector<DictionaryFiles>& DictionaryShelf::all() {
    auto folders = dictionaryFolders();
    const bool isOld = folders != _folders;
    if (isOld) _folders = std::move(folders);
    auto now = stamps();
    if (!isOld && now == _stamps) return _all;
    _stamps = std::move(now);
    _all = dictionariesIn(_folders, [&](const std::string& path, const std::string& reason) {
        const std::string line = "NSSpellChecker: " + path + " is left out: " + reason;
        if (_complaints.insert(line).second) logText(line);
    });
    return _all;
}

// When the folders were last changed, 0 for a missing one.
std::vector<std::int64_t> DictionaryShelf::stamps() const {
    std::vector<std::int64_t> stamps;
    for (const std::string& folder : _folders) {
        struct stat status;
        const bool isThere = ::stat(folder.c_str(), &status) == 0;
        stamps.push_back(isThere ? status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec : 0);
    }
    return stamps;
}

const DictionaryFiles* DictionaryShelf::find(std::string_view name) const {
    const auto place = std::ranges::lower_bound(_all, name, {}, &DictionaryFiles::name);
    return place != _all.end() && place->name == name ? &*place : nullptr;
}

std::string DictionaryShelf::bestName(std::string_view wanted) {
    if (find(wanted)) return std::string(wanted);
    const std::string locale = partOf(std::string(wanted.substr(0, wanted.find('\0'))), uloc_getName);
    if (find(locale)) return locale;
    const std::string language = partOf(locale, uloc_getLanguage);
    if (language.empty()) return {};
    const std::string region = partOf(locale, uloc_getCountry);
    std::vector<std::string> names{joined(language, region), language};
    AutoreleasePool pool;
    for (id each : userLanguages()) {
        const std::string own = partOf(cast<NSString>(each)->toUTF8(), uloc_getName);
        if (partOf(own, uloc_getLanguage) == language)
            names.push_back(joined(language, partOf(own, uloc_getCountry)));
    }
    names.push_back(joined(language, partOf(partOf(language, uloc_addLikelySubtags), uloc_getCountry)));
    for (const std::string& name : names)
        if (find(name)) return name;
    const auto first = std::ranges::find_if(
        _all, [&](const DictionaryFiles& files) { return partOf(files.name, uloc_getLanguage) == language; });
    return first == _all.end() ? std::string() : first->name;
}

std::shared_ptr<Dictionary> DictionaryShelf::dictionary(const std::string& name) {
    const DictionaryFiles* files = find(name);
    if (!files) return nullptr;
    auto& dictionary = _open[files->identity];
    if (!dictionary) dictionary = std::make_shared<Dictionary>(*files);
    return dictionary;
}

}  // namespace pelvor
