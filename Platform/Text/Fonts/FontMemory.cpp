// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/FontMemory.h"

#include <fontconfig/fontconfig.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <sstream>

#include "Foundation/Files/FileContents.h"
#include "Foundation/StandardFolders.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

// The file has a line for the environment, lines that begin with their kind, and one for the end. Fields are
// parted by tabs.
constexpr std::string_view kDependency = "on", kFont = "font", kBest = "best", kEnd = "end";

// In bytes: a hundred thousand fonts take less. What is longer would be slower to read than the fonts are
// found.
constexpr std::uintmax_t kLongestFile = 32 << 20;

// What fontconfig looks at, or what its ranking depends on.
std::string environment() {
    std::string line = "Pelvor fonts 1, fontconfig " + std::to_string(FcGetVersion());
    for (const char* name :
         {"FONTCONFIG_FILE", "FONTCONFIG_PATH", "FONTCONFIG_SYSROOT", "HOME", "XDG_CONFIG_HOME",
          "XDG_CONFIG_DIRS", "XDG_DATA_HOME", "XDG_DATA_DIRS", "FC_LANG", "LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        line += '\t' + (value ? '=' + std::string(value) : "");
    }
    return line;
}

// When the file was changed, and its size; "-" if it is not there.
std::string stateOf(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return "-";
    return std::to_string(status.st_mtim.tv_sec) + '.' + std::to_string(status.st_mtim.tv_nsec) + ' ' +
           std::to_string(status.st_size);
}

// Takes what comes before the separator off the front of the text.
std::string_view takeUntil(char separator, std::string_view& text) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

template <class Number>
bool takeNumber(std::string_view& fields, Number& number) {
    const std::string_view digits = takeUntil('\t', fields);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size();
}

bool takeFont(std::string_view fields, ListedFont& font) {
    FontEntry& entry = font.entry;
    int isColoured = 0;
    if (!takeNumber(fields, entry.index) || !takeNumber(fields, entry.weight) ||
        !takeNumber(fields, entry.traits) || !takeNumber(fields, isColoured) || entry.weight < 0 ||
        entry.weight > kGreatestWeight)
        return false;
    entry.isColoured = isColoured;
    for (std::string* text :
         {&entry.postScriptName, &entry.family, &entry.fullName, &entry.style, &entry.file})
        *text = takeUntil('\t', fields);
    while (!fields.empty())
        if (const std::string_view family = takeUntil('\t', fields); !family.empty())
            font.families.emplace_back(family);
    return true;
}

}  // namespace

FontMemory FontMemory::ofUser() {
    AutoreleasePool pool;
    NSString* folder = folderOfType(folderType("cach"), FolderDomainUser);
    return FontMemory(folder ? std::string(folder->fileSystemRepresentation()) + "/pelvor-fonts" : "");
}

std::optional<FontList> FontMemory::read() const {
    std::error_code error;
    if (!std::filesystem::is_regular_file(_path, error)) return {};  // opening a pipe would wait
    if (std::filesystem::file_size(_path, error) > kLongestFile) return {};
    std::ifstream file(_path, std::ios::binary);
    std::ostringstream content;
    if (!file || !(content << file.rdbuf())) return {};
    const std::string text = std::move(content).str();
    std::string_view rest = text;
    if (takeUntil('\n', rest) != environment()) return {};
    FontList list;
    while (!rest.empty()) {
        std::string_view fields = takeUntil('\n', rest);
        const std::string_view kind = takeUntil('\t', fields);
        if (kind == kEnd) return list;
        if (kind == kDependency) {
            const std::string path(takeUntil('\t', fields));
            if (stateOf(path) != fields) return {};
        } else if (kind == kFont) {
            if (!takeFont(fields, list.fonts.emplace_back())) return {};
        } else if (kind == kBest) {
            auto& [family, place] = list.best.emplace_back(takeUntil('\t', fields), 0);
            if (!takeNumber(fields, place) || place >= list.fonts.size()) return {};
        }
    }
    return {};
}

void FontMemory::write(const FontList& list, const std::vector<std::string>& dependencies) const {
    std::string text;
    bool isPossible = !_path.empty();
    const auto add = [&](std::string_view field, char behind = '\t') {
        isPossible = isPossible && field.find_first_of("\t\n") == std::string_view::npos;
        text += field;
        text += behind;
    };
    for (const std::string& path : dependencies) {
        add(kDependency);
        add(path);
        add(stateOf(path), '\n');
    }
    for (const auto& [entry, families] : list.fonts) {
        add(kFont);
        for (long number :
             {long{entry.index}, long{entry.weight}, long{entry.traits}, long{entry.isColoured}})
            add(std::to_string(number));
        for (const std::string& field :
             {entry.postScriptName, entry.family, entry.fullName, entry.style, entry.file})
            add(field);
        for (const std::string& family : families) add(family);
        text.back() = '\n';
    }
    for (const auto& [family, place] : list.best) {
        add(kBest);
        add(family);
        add(std::to_string(place), '\n');
    }
    if (!isPossible) return;
    text.insert(0, environment() + '\n').append(kEnd) += '\n';
    // A file whose end a loss of power has taken is written anew.
    writeFile(_path, std::as_bytes(std::span(text)), FileWriting::atomicCache);
}

}  // namespace pelvor
