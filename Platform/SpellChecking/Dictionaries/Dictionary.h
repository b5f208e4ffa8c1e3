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

/// The verdicts on words that were asked for lately. A verdict has a place by the hash of its word, and goes
/// when another word comes to the place. Of the word only the hash is kept: two words of 64 equal bits would
/// share a verdict, which no text will show. Any thread.
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

/// The dictionary of one pair of files, which is read when it is first asked, or by `read`. Words are in the
/// form of `plainWord` (SpelledWords.h). Checks and guesses go by two readings of the files, since guesses
/// take so long that no check can wait for them; the second one is made with the first guesses. Any thread.
class Dictionary {
  public:
    explicit Dictionary(DictionaryFiles files);
    ~Dictionary();

    const DictionaryFiles& files() const { return _files; }

    /// Reads the dictionary for checks unless that was done, and waits for another thread that does it.
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
