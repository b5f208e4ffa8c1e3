// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/LineBreaks.h"

#include <hyphen.h>
#include <unicode/ubrk.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cctype>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>

#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSRunLoop.h"
#include "Text/NSLayoutManager.h"

namespace pelvor {

Boundaries::~Boundaries() {
    for (auto& [language, iterator] : _lineIterators) ubrk_close(iterator);
    ubrk_close(_characterIterator);
}

UBreakIterator* Boundaries::lineIterator(const std::string& language) {
    auto [place, isNew] = _lineIterators.try_emplace(language);
    if (isNew) {
        UErrorCode status = U_ZERO_ERROR;
        place->second = ubrk_open(UBRK_LINE, language.c_str(), nullptr, 0, &status);
    }
    return place->second;
}

void Boundaries::markLineBreaks(std::u16string_view text, const std::string& language, std::uint8_t mark,
                                std::span<std::uint8_t> marks) {
    UErrorCode status = U_ZERO_ERROR;
    UBreakIterator* iterator = lineIterator(language);
    if (!iterator) return;
    ubrk_setText(iterator, text.data(), static_cast<std::int32_t>(text.size()), &status);
    const auto end = static_cast<std::int32_t>(text.size());
    for (std::int32_t place = ubrk_next(iterator); place != UBRK_DONE && place < end;
         place = ubrk_next(iterator))
        marks[static_cast<std::size_t>(place)] |= mark;
}

// MARK: Characters as users see them

namespace {

// As much text around a place as decides whether it is a boundary, in all but texts made to deceive.
constexpr NSUInteger kCharacterContext = 64;

// In these texts each unit is a character, but for CR LF, which never stand in the middle of a line.
bool isPlain(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x300 && unit != u'\r'; });
}

}  // namespace

UBreakIterator* Boundaries::characterIterator(std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    if (!_characterIterator) _characterIterator = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status);
    ubrk_setText(_characterIterator, text.data(), static_cast<std::int32_t>(text.size()), &status);
    return _characterIterator;
}

NSUInteger Boundaries::characterStart(std::u16string_view text, NSUInteger unit) {
    if (unit == 0 || unit >= text.size()) return unit;
    const NSUInteger from = unit > kCharacterContext ? unit - kCharacterContext : 0;
    const auto around = text.substr(from, 2 * kCharacterContext);
    if (isPlain(text.substr(unit - 1, 2))) return unit;
    UBreakIterator* iterator = characterIterator(around);
    const auto place = static_cast<std::int32_t>(unit - from);
    if (ubrk_isBoundary(iterator, place)) return unit;
    return from + static_cast<NSUInteger>(std::max(ubrk_preceding(iterator, place), 0));
}

NSUInteger Boundaries::characterEnd(std::u16string_view text, NSUInteger unit) {
    if (unit >= text.size()) return static_cast<NSUInteger>(text.size());
    if (isPlain(text.substr(unit, 2))) return unit + 1;
    const NSUInteger from = unit > kCharacterContext ? unit - kCharacterContext : 0;
    // The rest of the text where a character is longer than the context.
    for (NSUInteger reach = kCharacterContext;; reach *= 8) {
        const auto around = text.substr(from, unit - from + reach);
        const auto end = ubrk_following(characterIterator(around), static_cast<std::int32_t>(unit - from));
        if (end == UBRK_DONE) return unit + 1;
        if (static_cast<std::size_t>(end) < around.size() || from + around.size() == text.size())
            return from + static_cast<NSUInteger>(end);
    }
}

// MARK: Hyphenation

namespace {

struct PatternDeleter {
    void operator()(HyphenDict* patterns) const { hnj_hyphen_free(patterns); }
};
struct ConverterDeleter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

constexpr const char* kPatternFolder = "/usr/share/hyphen";

// The file of "de-CH", else that of "de", else the first one of a German.
std::string patternFile(std::string language) {
    const auto isPartOfName = [](unsigned char c) { return std::isalnum(c) || c == '-' || c == '_'; };
    if (!std::all_of(language.begin(), language.end(), isPartOfName)) return {};
    std::replace(language.begin(), language.end(), '-', '_');
    const auto file = [](const std::string& name) {
        return std::filesystem::path(kPatternFolder) / ("hyph_" + name + ".dic");
    };
    std::error_code error;
    const std::string plain = language.substr(0, language.find('_'));
    for (const std::string& name : {language, plain})
        if (std::filesystem::exists(file(name), error)) return file(name);
    std::string first;
    for (const auto& entry : std::filesystem::directory_iterator(kPatternFolder, error)) {
        const std::string name = entry.path().filename();
        if (name.starts_with("hyph_" + plain + "_") && (first.empty() || name < first)) first = name;
    }
    return first.empty() ? first : std::string(std::filesystem::path(kPatternFolder) / first);
}

// The patterns of all languages that were asked for. They live as long as the process, and so does this
// object, since a thread may read patterns when the process ends.
class PatternShelf {
  public:
    static PatternShelf& shared() {
        static auto* const shelf = new PatternShelf;
        return *shelf;
    }

    // The patterns of a language; null if there are none, or if they are not read yet and the caller does not
    // wait.
    HyphenDict* patternsFor(const std::string& language, bool waits) {
        std::unique_lock guard(_mutex);
        auto [place, isNew] = _all.try_emplace(language);
        Patterns& patterns = place->second;  // stays where it is
        if (isNew) {
            patterns.file = patternFile(language);
            patterns.isRead = patterns.file.empty();
            if (!patterns.isRead)
                std::thread([this, language, &patterns] { read(language, patterns); }).detach();
        }
        if (waits) _isOneRead.wait(guard, [&] { return patterns.isRead; });
        patterns.isMissed |= !patterns.isRead;
        return patterns.isRead ? patterns.content.get() : nullptr;
    }

  private:
    struct Patterns {
        std::string file;
        std::unique_ptr<HyphenDict, PatternDeleter> content;
        bool isRead = false;
        bool isMissed = false;  // somebody did not wait
    };

    void read(const std::string& language, Patterns& patterns) {
        std::unique_ptr<HyphenDict, PatternDeleter> content(hnj_hyphen_load(patterns.file.c_str()));
        std::unique_lock guard(_mutex);
        patterns.content = std::move(content);
        patterns.isRead = true;
        const bool isMissed = patterns.isMissed;
        guard.unlock();
        _isOneRead.notify_all();
        if (isMissed)
            NSRunLoop::mainRunLoop()->perform(
                [language] {
                    NSNotificationCenter::defaultCenter()->postNotificationName_object(
                        NSHyphenationPatternsDidLoadNotification, NSString::ofUTF8(language));
                },
                nullptr);
    }

    std::mutex _mutex;
    std::condition_variable _isOneRead;
    std::unordered_map<std::string, Patterns> _all;
};

// The word in small letters and the encoding of the patterns; empty if it does not fit.
std::string encodedWord(std::u16string_view word, const HyphenDict* patterns) {
    UErrorCode status = U_ZERO_ERROR;
    std::u16string small(word.size(), 0);
    const auto length = static_cast<std::int32_t>(word.size());
    if (u_strToLower(small.data(), length, word.data(), length, "", &status) != length || U_FAILURE(status))
        return {};
    std::unique_ptr<UConverter, ConverterDeleter> converter(ucnv_open(patterns->cset, &status));
    std::string bytes(word.size() * 4 + 1, 0);
    const auto size = ucnv_fromUChars(converter.get(), bytes.data(), static_cast<std::int32_t>(bytes.size()),
                                      small.data(), length, &status);
    if (U_FAILURE(status)) return {};
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

}  // namespace

std::vector<std::uint32_t> Boundaries::hyphenationPoints(std::u16string_view word,
                                                         const std::string& language) {
    constexpr std::size_t kLongestWord = 100;
    std::vector<std::uint32_t> points;
    HyphenDict* patterns = language.empty() || word.size() > kLongestWord
                               ? nullptr
                               : PatternShelf::shared().patternsFor(language, waitsForPatterns);
    if (!patterns) return points;
    const std::string bytes = encodedWord(word, patterns);
    if (bytes.empty()) return points;
    std::vector<char> hyphens(bytes.size() + 5);
    char** replacements = nullptr;
    int* positions = nullptr;
    int* cuts = nullptr;
    if (hnj_hyphen_hyphenate2(patterns, bytes.data(), static_cast<int>(bytes.size()), hyphens.data(), nullptr,
                              &replacements, &positions, &cuts) == 0) {
        // The marks count characters; those that would change the spelling are passed over.
        std::uint32_t character = 0;
        for (std::uint32_t unit = 0; unit + 1 < word.size(); ++unit) {
            if ((word[unit] & 0xFC00) == 0xD800) continue;
            if ((hyphens[character] & 1) && !(replacements && replacements[character]))
                points.push_back(unit + 1);
            ++character;
        }
    }
    if (replacements)
        for (std::size_t i = 0; i < bytes.size(); ++i) std::free(replacements[i]);
    std::free(replacements);
    std::free(positions);
    std::free(cuts);
    return points;
}

}  // namespace pelvor
