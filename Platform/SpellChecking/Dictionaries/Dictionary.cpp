// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/Dictionaries/Dictionary.h"

#include <hunspell.hxx>

#include <exception>
#include <functional>
#include <utility>

#include "Foundation/NSLog.h"

namespace pelvor {
namespace {

// std::hash promises nothing of its upper bits, by which places are found.
std::uint64_t hashOf(std::u16string_view word) {
    return std::hash<std::u16string_view>()(word) * 0x9E3779B97F4A7C15;
}

}  // namespace

Dictionary::Dictionary(DictionaryFiles files) : _files(std::move(files)) {}
Dictionary::~Dictionary() = default;
Dictionary::Reading::Reading() = default;
Dictionary::Reading::~Reading() = default;

bool Dictionary::Reading::make(const DictionaryFiles& files) {
    if (std::exchange(isTried, true)) return bool(hunspell);
    const char* reason = "its encoding is unknown";
    try {
        hunspell = std::make_unique<Hunspell>(files.affixes.c_str(), files.words.c_str());
        encoding = encodingOfDictionary(hunspell->get_dict_encoding());
        if (encoding) return true;
    } catch (const std::exception& exception) {
        reason = exception.what();
    }
    hunspell = nullptr;
    logText("NSSpellChecker: " + files.words + " cannot be used: " + reason);
    return false;
}

void Dictionary::read() {
    if (_isRead) return;
    std::lock_guard guard(_checking.lock);
    _checking.make(_files);
    _isRead = true;
}

bool Dictionary::isCorrect(std::u16string_view word) {
    const std::uint64_t hash = hashOf(word);
    if (const auto verdict = _verdicts.find(hash)) return *verdict;
    read();
    std::lock_guard guard(_checking.lock);
    if (!_checking.hunspell) return true;
    const auto bytes = encodeUnits(word, _checking.encoding);
    const bool isCorrect = bytes && _checking.hunspell->spell(*bytes);
    _verdicts.set(hash, isCorrect);
    return isCorrect;
}

std::vector<std::u16string> Dictionary::guesses(std::u16string_view word) {
    std::lock_guard guard(_guessing.lock);
    std::vector<std::u16string> guesses;
    if (!_guessing.make(_files)) return guesses;
    // Letters that the encoding lacks become similar ones, which is a guess.
    const auto bytes = encodeUnits(word, _guessing.encoding, EncodingLoss::allowed);
    if (!bytes) return guesses;
    for (const std::string& guess : _guessing.hunspell->suggest(*bytes))
        if (auto units = decodeBytes(guess, _guessing.encoding); units && !units->empty())
            guesses.push_back(std::move(*units));
    return guesses;
}

}  // namespace pelvor
