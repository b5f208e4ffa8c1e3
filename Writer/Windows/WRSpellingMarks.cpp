// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRSpellingMarks.h"

#include <cerrno>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Runtime/Registry.h"
#include "Spelling/NSSpellChecker-PelvorAdditions.h"
#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"
#include "Writer/Pages/TextLanguage.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr NSRange kNoWord{NSNotFound, 0};
constexpr NSUInteger kShortLine = 48;  // in units; its words need not tell its language
// Posted by spelling marks when the user has learned or unlearned a word.
constexpr NSString* kRightWordsDidChange = u"WRRightWordsDidChangeNotification"_ns;

NSSpellChecker* checker() { return NSSpellChecker_PelvorAdditions::pelvorSpellChecker(); }

// Also where it stands beside the word.
bool touches(NSRange word, NSUInteger place) { return word.location <= place && place <= NSMaxRange(word); }

bool isLineEnd(unichar unit) { return unit == u'\n' || unit == u'\r' || unit == 0x2028 || unit == 0x2029; }

// The line that the word is in; of a line that is not short, a part that is longer than kShortLine.
NSRange lineAround(NSString* text, NSRange word) {
    NSUInteger start = word.location, end = NSMaxRange(word);
    const auto isShort = [&] { return end - start <= kShortLine; };
    while (start > 0 && !isLineEnd(text->characterAtIndex(start - 1)) && isShort()) --start;
    while (end < text->length() && !isLineEnd(text->characterAtIndex(end)) && isShort()) ++end;
    return {start, end - start};
}

}  // namespace

PELVOR_DEFINE_CLASS(WRSpellingMarks, windowsLibrary) {
    methods.instance<"misspelledWordAt:", &WRSpellingMarks::misspelledWordAt>();
    methods.instance<"isSearching", &WRSpellingMarks::isSearching>();
    methods.instance<"stopSearch", &WRSpellingMarks::stopSearch>();
    methods.instance<"languageAt:", &WRSpellingMarks::languageAt>();
    methods.instance<"isOn", &WRSpellingMarks::isOn>();
    methods.instance<"setOn:", &WRSpellingMarks::setOn>();
    methods.instance<"caretDidMove:", &WRSpellingMarks::caretDidMove>();
    methods.instance<"ignoreWord:", &WRSpellingMarks::ignoreWord>();
    methods.instance<"learnWord:", &WRSpellingMarks::learnWord>();
    methods.instance<"learnedWordAt:", &WRSpellingMarks::learnedWordAt>();
    methods.instance<"ignoredWordAt:", &WRSpellingMarks::ignoredWordAt>();
    methods.instance<"unignoreWord:", &WRSpellingMarks::unignoreWord>();
    methods.instance<"unlearnWord:at:", &WRSpellingMarks::unlearnWord_at>();
    methods.instance<"rightWordsDidChange:", &WRSpellingMarks::rightWordsDidChange>();
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
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(self, "rightWordsDidChange:"_sel,
                                                                            kRightWordsDidChange, nullptr);
    self->start(storage);
    return self;
}

WRSpellingMarks::~WRSpellingMarks() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRSpellingMarks::stop() {
    NSNotificationCenter::defaultCenter()->removeObserver(this);
    _view = {};
    stopSearch();
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
    if (_search) {
        const NSUInteger oldEnd = NSMaxRange(range) - static_cast<NSUInteger>(change);
        for (NSUInteger* place : {&_search->start, &_search->place})
            *place = *place >= oldEnd ? *place + static_cast<NSUInteger>(change)
                                      : std::min(*place, range.location);
    }
    if (_isOn || _search) resume();
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

// From the start of the range, which begins and ends between words. No value while dictionaries are being
// read.
std::optional<std::vector<NSRange>> WRSpellingMarks::misspelledWordsIn(NSRange range) {
    std::vector<NSRange> words;
    bool isReady = true;
    NSString* text = textStorage()->string()->substringWithRange(range);
    eachLanguageIn(range, [&](NSString* language, NSRange run) {
        if (!checker()->prepareLanguage(language)) return isReady = false;
        run.location -= range.location;
        for (const NSRange word : checker()->misspelledRanges(text, run, language, _tag))
            if (!isRightBeside({range.location + word.location, word.length}, isReady)) words.push_back(word);
        return isReady;
    });
    return isReady ? std::optional(std::move(words)) : std::nullopt;
}

// Whether the word stands in a short line and is right in the language of a line beside it or in the user's.
bool WRSpellingMarks::isRightBeside(NSRange word, bool& isReady) {
    NSString* text = textStorage()->string();
    const NSRange line = lineAround(text, word);
    if (line.length > kShortLine ||
        textStorage()->attribute_atIndex_effectiveRange(NSLanguageAttributeName, word.location, nullptr))
        return false;
    NSUInteger before = line.location, behind = NSMaxRange(line);
    while (before > 0 && isLineEnd(text->characterAtIndex(before - 1))) --before;
    while (behind < text->length() && isLineEnd(text->characterAtIndex(behind))) ++behind;
    NSString* own = languageAt(word.location);
    for (NSString* language :
         {before > 0 ? languageAt(before - 1) : nullptr, languageAt(behind), checker()->language()}) {
        if (!language || (own && own->isEqualToString(language)) ||
            !checker()->availableLanguageForName(language))
            continue;
        if (!checker()->prepareLanguage(language)) return !(isReady = false);
        const NSRange inLine{word.location - line.location, word.length};
        if (checker()->misspelledRanges(text->substringWithRange(line), inLine, language, _tag).empty())
            return true;
    }
    return false;
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
    NSString* text = textStorage()->string();
    std::optional<TextPieces<Marks>::Taken> piece;
    if (_search) piece = _pieces.takeUnknown(text, {_search->place, 0});
    if (!piece && _isOn && _view.visibleRange) piece = _pieces.takeUnknown(text, _view.visibleRange());
    if (!piece && _isOn) piece = _pieces.takeUnknown(text, {0, text->length()});
    if (!piece) return false;
    auto words = misspelledWordsIn(piece->range);
    if (!words) {
        _pieces.forget(piece->range);  // until the dictionary is there
        return false;
    }
    replaceMarks(*piece->value, std::move(*words), piece->range.location);
    goOnSearching();
    return true;
}

void WRSpellingMarks::dictionaryDidLoad(id) {
    if (_isOn || _search) resume();
}

// MARK: Searching

void WRSpellingMarks::findMisspelledWord(NSUInteger unit, std::function<void(NSRange)> found,
                                         std::function<void(double)> didGoOn) {
    unit = std::min(unit, textStorage()->length());
    _search = Search{unit, unit, false, std::move(found), std::move(didGoOn)};
    goOnSearching();
    if (_search) resume();
}

// Passes what has been checked.
void WRSpellingMarks::goOnSearching() {
    while (_search) {
        const NSUInteger place = _search->place;
        const NSUInteger end = _search->isBefore ? _search->start : textStorage()->length();
        if (place >= end) {
            if (std::exchange(_search->isBefore, true)) return endSearch(kNoWord);
            _search->place = 0;
            continue;
        }
        NSRange found = kNoWord;
        _pieces.eachIn({place, 0}, [&](const Marks& known, NSRange piece, bool isKnown) {
            if (!isKnown) return;
            _search->place = NSMaxRange(piece);
            for (NSRange word : known.words) {
                word.location += piece.location;
                if (found.length == 0 && word.location >= place && word.location < end) found = word;
            }
        });
        if (found.length > 0) return endSearch(found);
        if (_search->place == place) return;
    }
}

void WRSpellingMarks::endSearch(NSRange word) { std::exchange(_search, {})->found(word); }

void WRSpellingMarks::didWork() {
    if (!_search) return;
    const auto length = static_cast<double>(textStorage()->length());
    const double passed = static_cast<double>(_search->place) - static_cast<double>(_search->start);
    const auto tell = _search->didGoOn;  // which may end the search
    tell((_search->isBefore ? length + passed : passed) / length);
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

NSString* WRSpellingMarks::languageAt(NSUInteger unit) {
    return unit < textStorage()->length() ? languageInText(textStorage(), unit, nullptr, {unit, 1}) : nullptr;
}

void WRSpellingMarks::setOn(bool isOn) {
    if (std::exchange(_isOn, isOn) == isOn) return;
    if (_view.didMark) _view.didMark({0, textStorage()->length()});
    resume();
}

// MARK: Words that are right

void WRSpellingMarks::checkAgain() {
    _pieces.forget({0, textStorage()->length()});
    resume();
}

void WRSpellingMarks::rightWordsDidChange(id) { checkAgain(); }

namespace {

// Leaves `errno` as it is, which tells why a word could not be kept.
void tellRightWordsDidChange() {
    const int reason = errno;
    NSNotificationCenter::defaultCenter()->postNotificationName_object(kRightWordsDidChange, nullptr);
    errno = reason;
}

// The form of the word by which it was taught: itself, in small letters, or with a capital.
template <class Predicate>
NSString* formOf(NSString* word, Predicate isTaught) {
    if (word->hasSuffix(u"'s"_ns) || word->hasSuffix(u"\u2019s"_ns))
        if (NSString* stem = formOf(word->substringToIndex(word->length() - 2), isTaught)) return stem;
    for (NSString* form : {word, word->lowercaseString(), word->capitalizedString()})
        if (isTaught(form)) return form;
    return nullptr;
}

}  // namespace

void WRSpellingMarks::ignoreWord(NSRange range) {
    checker()->ignoreWord_inSpellDocumentWithTag(textStorage()->string()->substringWithRange(range), _tag);
    checkAgain();
}

void WRSpellingMarks::unignoreWord(NSString* word) {
    checker()->unignoreWord_inSpellDocumentWithTag(word, _tag);
    checkAgain();
}

NSString* WRSpellingMarks::ignoredWordAt(NSRange range) {
    return formOf(textStorage()->string()->substringWithRange(range), [this](NSString* form) {
        return checker()->isIgnoredWord_inSpellDocumentWithTag(form, _tag);
    });
}

bool WRSpellingMarks::learnWord(NSRange range) {
    const bool isWritten = checker()->learnWord_language(textStorage()->string()->substringWithRange(range),
                                                         languageAt(range.location));
    tellRightWordsDidChange();
    return isWritten;
}

NSString* WRSpellingMarks::learnedWordAt(NSRange range) {
    NSString* language = languageAt(range.location);
    return formOf(textStorage()->string()->substringWithRange(range),
                  [language](NSString* form) { return checker()->hasLearnedWord_language(form, language); });
}

bool WRSpellingMarks::unlearnWord_at(NSString* word, NSRange range) {
    const bool isWritten = checker()->unlearnWord_language(word, languageAt(range.location));
    tellRightWordsDidChange();
    return isWritten;
}

}  // namespace pelvor
