// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/Words/LearnedWords.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <span>

#include "Foundation/NSData.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSFileManager.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSStringEncoding.h"
#include "Foundation/StandardFolders.h"
#include "Runtime/AutoreleasePool.h"
#include "SpellChecking/Dictionaries/FileHead.h"
#include "SpellChecking/Words/SpelledWords.h"

namespace pelvor {
namespace {

// What nobody has learned; a larger file is not ours.
constexpr std::size_t kLargestFile = 1 << 24;

NSString* stringOfPath(const std::string& path) {
    return NSFileManager::defaultManager()->stringWithFileSystemRepresentation_length(
        path.data(), static_cast<NSUInteger>(path.size()));
}

}  // namespace

std::u16string wordInLine(std::string_view line) {
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
        line.remove_suffix(1);
    if (line.empty() || line.starts_with('#')) return {};
    const auto word = decodeBytes(line, NSUTF8StringEncoding);
    if (!word || word->size() > kLongestWord) return {};
    std::u16string room;
    return std::u16string(plainWord(*word, room));
}

LearnedWords::LearnedWords(std::string path) : _path(std::move(path)) {
    if (!read() && errno != ENOENT)
        logText("NSSpellChecker: the learned words in " + _path +
                " cannot be read: " + (errno ? reasonOfFileError(errno) : "it is no regular file"));
}

bool LearnedWords::read() {
    const auto file = readHead(_path, kLargestFile);
    if (!file) return false;
    if (file->size > kLargestFile) {
        errno = EFBIG;
        return false;
    }
    _lines.clear();
    _words = {};
    std::string_view rest = file->bytes;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        _lines.emplace_back(rest.substr(0, end));
        if (auto word = wordInLine(_lines.back()); !word.empty()) _words.add(std::move(word));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return true;
}

bool LearnedWords::write() {
    std::string content;
    for (const std::string& line : _lines) content += line + "\n";
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(_path).parent_path(), error);
    AutoreleasePool pool;
    return NSData::of(std::as_bytes(std::span(content)))->writeToFile_atomically(stringOfPath(_path), true);
}

bool LearnedWords::learn(const std::u16string& word) {
    _unwritten.add(word);
    const bool isKnown = read() || errno == ENOENT;
    const int reason = errno;
    for (const std::u16string& each : _unwritten) {
        if (!_words.contains(each)) _lines.push_back(encodeUnits(each, NSUTF8StringEncoding).value_or(""));
        _words.add(each);
    }
    errno = reason;
    if (!isKnown || !write()) return false;
    _unwritten = {};
    return true;
}

bool LearnedWords::unlearn(const std::u16string& word) {
    const bool isKnown = read() || errno == ENOENT;
    const int reason = errno;
    std::erase_if(_lines, [&](const std::string& line) { return wordInLine(line) == word; });
    _words.remove(word);
    _unwritten.remove(word);
    errno = reason;
    return isKnown && write();
}

std::string LearnedWords::pathFor(const std::string& dictionary) {
    AutoreleasePool pool;
    NSString* folder = folderOfType(folderType("asup"), FolderDomainUser);
    if (!folder) return {};
    return folder->fileSystemRepresentation() + ("/pelvor/spelling/" + dictionary + ".words");
}

}  // namespace pelvor
