// SPDX-License-Identifier: Apache-2.0
// Dictionary: the words of one language.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SpellChecking/Dictionaries/DictionaryFiles.h"

class Hunspell;

namespace pelvor {

/// The verdicts on the words that were looked up last. The hash of a word gives its verdict a place, where
/// the verdict of a later word may replace it. Of a word only the hash is kept: two words with equal hashes
/// would share a verdict, which is too rare to matter among 64 bits. Any thread.
class VerdictTable {
  public:
    std::optional<bool> find(std::uint64_t hash) const {
        const std::uint64_t entry = place(hash).load(std::memory_order_relaxed);
        if ((entry | kMarks) != (hash | kMarks) || !(entry & kIsThere)) return {};
        return entry & kIsCorrect;
    }
    void set(std::uint64_t hash, bool isCorrect) {
        place(hash).store((hash & ~kMarks) | kIsThere | (isCorrect ? kIsCorrect : 0),
                          std::memory_order_relaxed);
    }

  private:
    static constexpr std::uint64_t kIsThere = 1, kIsCorrect = 2, kMarks = 3;
    using Places = std::array<std::atomic<std::uint64_t>, 1 << 15>;

    std::atomic<std::uint64_t>& place(std::uint64_t hash) const { return (*_places)[hash >> 49]; }

    std::unique_ptr<Places> _places = std::make_unique<Places>();
};

/// The dictionary of one pair of files, which is read by `read`, or when a word is first looked up. Words are
/// in the form of `plainWord` (SpelledWords.h). The files are read once for checks and, when guesses are
/// first wanted, once more for guesses: these take so long that no check can wait for them. Any thread.
class Dictionary {
  public:
    explicit Dictionary(DictionaryFiles files);
    ~Dictionary();

    const DictionaryFiles& files() const { return _files; }

    /// Reads the dictionary for checks, unless it has been read. Waits for another thread that is reading it.
    void read();
    /// Whether `isCorrect` does not wait.
    bool isRead() const { return _isRead; }

    /// True for all words if the dictionary cannot be read.
    bool isCorrect(std::u16string_view word);
    /// What may have been meant, the likeliest first.
    std::vector<std::u16string> guesses(std::u16string_view word);

  private:
    // One reading of the files.
    struct Reading {
        std::mutex lock;
        bool isTried = false;
        std::unique_ptr<Hunspell> hunspell;
        NSStringEncoding encoding = 0;

        Reading();
        ~Reading();
        bool make(const DictionaryFiles& files);  // the caller has the lock
    };

    DictionaryFiles _files;
    Reading _checking, _guessing;
    VerdictTable _verdicts;
    std::atomic<bool> _isRead = false;
};

}  // namespace pelvor
