// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRSpellingMarks.h"

#include "Foundation/NSDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"
#include "Spelling/NSSpellChecker-PelvorAdditions.h"
#include "Text/NSTextStorage.h"
#include "Writer/Pages/TextLanguage.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr NSRange kNoWord{NSNotFound, 0};

NSSpellChecker* checker() { return NSSpellChecker_PelvorAdditions::pelvorSpellChecker(); }

// Also where it stands beside the word.
bool touches(NSRange word, NSUInteger place) { return word.location <= place && place <= NSMaxRange(word); }

}  // namespace

PELVOR_DEFINE_CLASS(WRSpellingMarks, windowsLibrary) {
    methods.instance<"misspelledWordAt:", &WRSpellingMarks::misspelledWordAt>();
    methods.instance<"nextMisspelledWord:", &WRSpellingMarks::nextMisspelledWord>();
    methods.instance<"languageAt:", &WRSpellingMarks::languageAt>();
    methods.instance<"isOn", &WRSpellingMarks::isOn>();
    methods.instance<"setOn:", &WRSpellingMarks::setOn>();
    methods.instance<"caretDidMove:", &WRSpellingMarks::caretDidMove>();
    methods.instance<"ignoreWord:", &WRSpellingMarks::ignoreWord>();
    methods.instance<"learnWord:", &WRSpellingMarks::learnWord>();
    methods.instance<"checkMarksAgain", &WRSpellingMarks::checkMarksAgain>();
    methods.instance<"dictionaryDidLoad:", &WRSpellingMarks::dictionaryDidLoad>();
    methods.instance<"stop", &WRSpellingMarks::stop>();
}

Retained<WRSpellingMarks> WRSpellingMarks::create(NSTextStorage* storage, View view) {
    auto self = make<WRSpellingMarks>();
    self->_pieces = TextPieces<Marks>(storage->length());
    self->_view = std::move(view);
    self->_tag = NSSpellChecker::uniqueSpellDocumentTag();
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        self, "dictionaryDidLoad:"_sel, NSSpellCheckerDidPrepareLanguageNotification, nullptr);
    self->start(storage);
    return self;
}

WRSpellingMarks::~WRSpellingMarks() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRSpellingMarks::stop() {
    _view = {};
    checker()->closeSpellDocumentWithTag(_tag);
    WRTextWork::stop();
}

// MARK: Edits

void WRSpellingMarks::Marks::append(const Marks& next, NSUInteger offset) {
    for (const NSRange word : next.words) words.push_back({word.location + offset, word.length});
}

void WRSpellingMarks::Marks::edit(NSRange range, NSInteger change) {
    std::erase_if(words, [range](NSRange word) {
        return NSMaxRange(word) >= range.location && word.location <= NSMaxRange(range);
    });
    for (NSRange& word : words)
        if (word.location > range.location) word.location += static_cast<NSUInteger>(change);
}

void WRSpellingMarks::textDidChange(unsigned mask, NSRange range, NSInteger change) {
    _pieces.textDidChange(range, change);
    if (mask & NSTextStorageEditedCharacters) _typed = NSMaxRange(range);
    if (_isOn) resume();
}

bool WRSpellingMarks::isTyped(NSRange word) { return _typed != NSNotFound && touches(word, _typed); }

void WRSpellingMarks::caretDidMove(NSRange selection) {
    if (_typed == NSNotFound) return;
    const NSRange word = misspelledWordAt(_typed);
    const bool isThere = selection.length == 0 && (selection.location == _typed ||
                                                   (word.length > 0 && touches(word, selection.location)));
    if (isThere) return;
    _typed = NSNotFound;
    if (word.length > 0 && _view.didMark) _view.didMark(word);
}

// MARK: Checking

template <class Function>
void WRSpellingMarks::eachLanguageIn(NSRange range, Function function) {
    for (NSUInteger place = range.location; place < NSMaxRange(range);) {
        NSRange run;
        NSString* language = languageInText(textStorage(), place, &run, range);
        if (!function(language, run)) return;
        place = NSMaxRange(run);
    }
}

bool WRSpellingMarks::areDictionariesReady(NSRange range) {
    bool isReady = true;
    eachLanguageIn(
        range, [&](NSString* language, NSRange) { return isReady = checker()->prepareLanguage(language); });
    return isReady;
}

// From the start of the range, which begins and ends between words.
std::vector<NSRange> WRSpellingMarks::misspelledWordsIn(NSRange range) {
    std::vector<NSRange> words;
    NSString* text = textStorage()->string()->substringWithRange(range);
    eachLanguageIn(range, [&](NSString* language, NSRange run) {
        run.location -= range.location;
        const auto found = checker()->misspelledRanges(text, run, language, _tag);
        words.insert(words.end(), found.begin(), found.end());
        return true;
    });
    return words;
}

void WRSpellingMarks::replaceMarks(Marks& marks, std::vector<NSRange> words, NSUInteger start) {
    std::vector<NSRange> changed;
    const auto isBefore = [](NSRange a, NSRange b) {
        return a.location != b.location ? a.location < b.location : a.length < b.length;
    };
    std::ranges::set_symmetric_difference(marks.words, words, std::back_inserter(changed), isBefore);
    marks.words = std::move(words);
    if (!changed.empty() && _view.didMark)
        _view.didMark(
            {start + changed.front().location, NSMaxRange(changed.back()) - changed.front().location});
}

bool WRSpellingMarks::workABit() {
    if (!_isOn) return false;
    NSString* text = textStorage()->string();
    auto piece = _pieces.takeUnknown(text, _view.visibleRange ? _view.visibleRange() : NSRange{});
    if (!piece) piece = _pieces.takeUnknown(text, {0, text->length()});
    if (!piece) return false;
    if (areDictionariesReady(piece->range)) {
        replaceMarks(*piece->value, misspelledWordsIn(piece->range), piece->range.location);
        return true;
    }
    _pieces.forget(piece->range);  // until the dictionary is there
    return false;
}

void WRSpellingMarks::dictionaryDidLoad(id) {
    if (_isOn) resume();
}

// MARK: Marks

std::vector<NSRange> WRSpellingMarks::marksInRange(NSRange range) {
    std::vector<NSRange> marks;
    if (!_isOn) return marks;
    _pieces.eachIn(range, [&](const Marks& known, NSRange piece, bool) {
        for (NSRange word : known.words) {
            word.location += piece.location;
            if (NSIntersectionRange(word, range).length > 0 && !isTyped(word)) marks.push_back(word);
        }
    });
    return marks;
}

NSRange WRSpellingMarks::misspelledWordAt(NSUInteger unit) {
    NSRange found = kNoWord;
    if (!_isOn) return found;
    const NSUInteger before = unit > 0 ? unit - 1 : 0;
    _pieces.eachIn({before, unit + 1 - before}, [&](const Marks& known, NSRange piece, bool) {
        for (NSRange word : known.words) {
            word.location += piece.location;
            if (touches(word, unit)) found = word;
        }
    });
    return found;
}

NSRange WRSpellingMarks::nextMisspelledWord(NSUInteger unit) {
    const NSUInteger length = textStorage()->length();
    const auto search = [this](NSRange range) {
        NSRange found = kNoWord;
        while (auto piece = _pieces.takeUnknown(textStorage()->string(), range))
            replaceMarks(*piece->value, misspelledWordsIn(piece->range), piece->range.location);
        _pieces.eachIn(range, [&](const Marks& known, NSRange piece, bool) {
            for (NSRange word : known.words) {
                word.location += piece.location;
                if (found.length == 0 && NSLocationInRange(word.location, range)) found = word;
            }
        });
        return found;
    };
    // Bit by bit: the next one is mostly near.
    constexpr NSUInteger kBit = 16 * 1024;
    const auto searchAll = [&](NSUInteger from, NSUInteger end) {
        NSRange found = kNoWord;
        for (; found.length == 0 && from < end; from += std::min(kBit, end - from)) {
            AutoreleasePool pool;
            found = search({from, std::min(kBit, end - from)});
        }
        return found;
    };
    unit = std::min(unit, length);
    const NSRange found = searchAll(unit, length);
    return found.length > 0 ? found : searchAll(0, unit);
}

NSString* WRSpellingMarks::languageAt(NSUInteger unit) {
    return unit < textStorage()->length() ? languageInText(textStorage(), unit, nullptr, {unit, 1}) : nullptr;
}

void WRSpellingMarks::setOn(bool isOn) {
    if (std::exchange(_isOn, isOn) == isOn) return;
    if (_view.didMark) _view.didMark({0, textStorage()->length()});
    resume();
}

// MARK: Words that are right

void WRSpellingMarks::checkMarksAgain() {
    std::vector<NSRange> marked;
    _pieces.eachIn({0, textStorage()->length()}, [&](const Marks& known, NSRange piece, bool) {
        if (!known.words.empty()) marked.push_back({piece.location, 0});
    });
    for (const NSRange piece : marked) _pieces.forget(piece);
    resume();
}

void WRSpellingMarks::ignoreWord(NSRange range) {
    checker()->ignoreWord_inSpellDocumentWithTag(textStorage()->string()->substringWithRange(range), _tag);
    checkMarksAgain();
}

bool WRSpellingMarks::learnWord(NSRange range) {
    const bool isWritten = checker()->learnWord_language(textStorage()->string()->substringWithRange(range),
                                                         languageAt(range.location));
    checkMarksAgain();
    return isWritten;
}

}  // namespace pelvor
