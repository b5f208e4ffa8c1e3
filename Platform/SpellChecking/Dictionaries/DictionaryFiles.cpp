// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/Dictionaries/DictionaryFiles.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "Foundation/NSFileError.h"
#include "Foundation/StandardFolders.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kHead = 1 << 16;
// Far above all dictionaries that there are.
constexpr std::uint64_t kLargestFile = 1 << 28;

std::string_view withoutMark(std::string_view text) {
    return text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\r");
    if (start == text.npos) return {};
    return text.substr(start, text.find_last_not_of(" \t\r") + 1 - start);
}

void addList(std::vector<std::string>& folders, std::string_view list, std::string_view below) {
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(':'), list.size());
        if (list.starts_with('/')) folders.push_back(std::string(list.substr(0, end)).append(below));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
}

// The head of one of the two files; no value, with the reason, if the dictionary cannot be used.
std::optional<FileHead> usableHead(const std::string& path, std::string& reason) {
    auto head = readHead(path, kHead);
    if (!head) reason = errno ? reasonOfFileError(errno) : "it is no regular file";
    if (head && head->size > kLargestFile) {
        reason = "it is larger than 256 MB";
        head.reset();
    }
    return head;
}

// The reason why the files cannot be used, with the file; empty if they can.
std::pair<std::string, std::string> examine(DictionaryFiles& files) {
    std::string reason;
    const auto words = usableHead(files.words, reason);
    if (!words) return {files.words, reason};
    const auto affixes = usableHead(files.affixes, reason);
    if (!affixes) return {files.affixes, reason};
    if (!beginsWithWordCount(words->bytes, words->size))
        return {files.words, "its first line is not the count of its words"};
    const std::string encoding = encodingNameInAffixes(affixes->bytes);
    if (!encodingOfDictionary(encoding))
        return {files.affixes, "its encoding, \"" + encoding.substr(0, 40) + "\", is unknown"};
    files.identity = {words->identity, affixes->identity};
    std::error_code error;
    files.ownName = fs::canonical(files.words, error).stem();
    if (error) files.ownName = files.name;
    return {};
}

}  // namespace

std::vector<std::string> dictionaryFolders() {
    std::vector<std::string> folders;
    const auto environment = [](const char* name) -> std::string_view {
        const char* value = std::getenv(name);
        return value ? value : "";
    };
    addList(folders, environment("DICPATH"), "");
    AutoreleasePool pool;
    if (NSString* own = folderOfType(folderType("asup"), FolderDomainUser))
        folders.push_back(own->fileSystemRepresentation() + std::string("/hunspell"));
    std::string_view shared = environment("XDG_DATA_DIRS");
    if (shared.empty()) shared = "/usr/local/share:/usr/share";
    for (const char* below : {"/hunspell", "/myspell/dicts", "/myspell"}) addList(folders, shared, below);
    return folders;
}

std::vector<DictionaryFiles> dictionariesIn(
    const std::vector<std::string>& folders,
    const std::function<void(const std::string&, const std::string&)>& complain) {
    std::map<std::string, DictionaryFiles> found;
    for (const std::string& folder : folders) {
        std::error_code error;
        for (fs::directory_iterator each(folder, error), end; !error && each != end; each.increment(error)) {
            const fs::path path = each->path();
            // Hyphenation patterns have the same ending and sometimes lie in the same folder.
            if (path.extension() != ".dic" || path.stem().string().starts_with("hyph_")) continue;
            DictionaryFiles files{path.stem(), path, fs::path(path).replace_extension(".aff"), {}, {}};
            if (found.contains(files.name)) continue;
            const auto [culprit, reason] = examine(files);
            if (reason.empty())
                found.emplace(files.name, files);
            else
                complain(culprit, reason);
        }
    }
    std::vector<DictionaryFiles> all;
    for (auto& [name, files] : found) all.push_back(std::move(files));
    return all;
}

std::string encodingNameInAffixes(std::string_view head) {
    head = withoutMark(head);
    while (!head.empty()) {
        const std::size_t end = std::min(head.find('\n'), head.size());
        const std::string_view line = trimmed(head.substr(0, end));
        if (line.size() > 3 && line.starts_with("SET") && (line[3] == ' ' || line[3] == '\t')) {
            const std::string_view name = trimmed(line.substr(3));
            return std::string(name.substr(0, name.find_first_of(" \t")));
        }
        head.remove_prefix(std::min(end + 1, head.size()));
    }
    return "ISO8859-1";
}

NSStringEncoding encodingOfDictionary(std::string_view name) {
    // Names that only dictionaries use.
    if (name.starts_with("microsoft-")) name.remove_prefix(10);
    if (name == "TIS620-2533") name = "TIS-620";
    if (name == "ISCII-DEVANAGARI") name = "x-iscii-de";
    return encodingForName(name);
}

bool beginsWithWordCount(std::string_view head, std::uint64_t size) {
    const std::string_view line = trimmed(withoutMark(head.substr(0, head.find('\n'))));
    std::uint64_t count = 0;
    const auto result = std::from_chars(line.data(), line.data() + line.size(), count);
    const bool isNumber = result.ec == std::errc() && result.ptr != line.data();
    const bool ends = result.ptr == line.data() + line.size() || *result.ptr == ' ' || *result.ptr == '\t';
    // Some dictionaries count too many words; a word has two bytes at least.
    return isNumber && ends && count > 0 && count <= size;
}

}  // namespace pelvor
