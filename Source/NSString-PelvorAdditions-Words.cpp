// SPDX-License-Identifier: Apache-2.0
// The word or quantity at a place in a text.
#include <algorithm>
#include <bit>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSMutableCharacterSet.h"
#include "Foundation/NSMutableString.h"
#include "NSCharacterSet-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "PBUtil.h"
#include "PBUtil_Dummy.h"
#include "Private/UnitFinding.h"
#include "Private/UnitReader.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Codepoints.h"
#include "assertions.h"

namespace pelvor {
namespace {

NSCharacterSet* wordSeparators() {
    static NSCharacterSet* const separators = [] {
        auto set = NSCharacterSet::whitespaceAndNewlineCharacterSet()->mutableCopy();
        set->addCharactersInRange({2, 2});
        return immutableCopy(set).leak();
    }();
    return separators;
}

// The kinds of units that words are made of. The sets are there for good.
class WordSets {
  public:
    WordSets() {
        if (!_pbLettersCharacterSet) PBUtil_Dummy::didLoad();
        _letters = _pbLettersCharacterSet->basicPlaneBitmap();
        _digits = _pbDecimalDigitCharacterSet->basicPlaneBitmap();
        _money = _pbMoneyCharacterSet->basicPlaneBitmap();
        _singleQuotes = _pbSingleQuotesCharacterSet->basicPlaneBitmap();
        _separators = wordSeparators()->basicPlaneBitmap();
    }
    bool isLetter(unichar unit) const { return has(_letters, unit); }
    bool isDigit(unichar unit) const { return has(_digits, unit); }
    bool isMoney(unichar unit) const { return has(_money, unit); }
    bool isSingleQuote(unichar unit) const { return has(_singleQuotes, unit); }
    bool isSeparator(unichar unit) const { return has(_separators, unit); }

  private:
    static bool has(const std::uint8_t* bitmap, unichar unit) { return bitmap[unit >> 3] >> (unit & 7) & 1; }

    const std::uint8_t* _letters;
    const std::uint8_t* _digits;
    const std::uint8_t* _money;
    const std::uint8_t* _singleQuotes;
    const std::uint8_t* _separators;
};

const WordSets& wordSets() {
    static const WordSets sets;
    return sets;
}

enum class Rule { word, quantity };

class WordText {
  public:
    explicit WordText(NSString* string) : _units(string) {}

    NSUInteger size() const { return _units.size(); }
    Rule ruleAt(NSUInteger index) { return isInQuantity(index) ? Rule::quantity : Rule::word; }

    // The index is that of the last unit that may belong to the word.
    NSUInteger startOfWord(Rule rule, NSUInteger index, bool crossesSeparator) {
        for (NSUInteger start = index + 1;; --start) {
            if (rule == Rule::word) start -= lettersBefore(start);
            if (start == 0) return 0;
            if (accepts(rule, start - 1)) continue;
            if (!crossesSeparator || !_sets.isSeparator(_units[start - 1])) return start;
            crossesSeparator = false;
        }
    }
    // No rule accepts a separator.
    NSUInteger endOfWord(Rule rule, NSUInteger index) {
        for (;; ++index) {
            if (rule == Rule::word) index += lettersFrom(index);
            if (index >= size() || !accepts(rule, index)) return index;
        }
    }

  private:
    bool accepts(Rule rule, NSUInteger index) {
        return rule == Rule::quantity ? isInQuantity(index) : isInWord(index);
    }
    // Most letters of words are in ASCII, and most words are short: their ends are found without a branch.
    NSUInteger lettersBefore(NSUInteger index) {
        const unichar* units = index < 16 ? nullptr : _units.inMemory(index - 16, 16);
        return units ? static_cast<NSUInteger>(std::countl_one(asciiLetters(units))) : 0;
    }
    NSUInteger lettersFrom(NSUInteger index) {
        const unichar* units = _units.inMemory(index, 16);
        return units ? static_cast<NSUInteger>(std::countr_one(asciiLetters(units))) : 0;
    }
    bool hasNeighbours(NSUInteger index) const { return index > 0 && index + 1 < size(); }

    bool isInWord(NSUInteger index) {
        unichar unit = _units[index];
        if (_sets.isLetter(unit)) return true;
        return _sets.isSingleQuote(unit) && hasNeighbours(index) && _sets.isLetter(_units[index - 1]) &&
               _sets.isLetter(_units[index + 1]);
    }
    bool isInQuantity(NSUInteger index) {
        unichar unit = _units[index];
        if (_sets.isDigit(unit)) return true;
        bool isMoney = _sets.isMoney(unit);
        if ((unit != u',' && unit != u'.' && !isMoney) || !hasNeighbours(index)) return false;
        unichar previous = _units[index - 1], next = _units[index + 1];
        if (unit == u',') return _sets.isDigit(previous) && _sets.isDigit(next);
        return !_sets.isLetter(previous) && (_sets.isDigit(next) || (isMoney && next == u'.'));
    }

    UnitReader _units;
    const WordSets& _sets = wordSets();
};

}  // namespace

NSRange wordRangeForRange_includePreviousWord(NSString* string, NSRange range, bool includePreviousWord) {
    requireArgument(string, "wordRangeForRange:includePreviousWord:", "the string");
    WordText text(string);
    NSUInteger count = text.size();
    requireRange(range, count, "wordRangeForRange:includePreviousWord:");
    if (count == 0) return {0, 0};
    NSUInteger first = range.location == count ? count - 1 : range.location;
    NSUInteger last = range.length ? NSMaxRange(range) - 1 : range.location;
    Rule rule = text.ruleAt(first);
    NSUInteger start = text.startOfWord(rule, first, includePreviousWord);
    NSUInteger end = text.endOfWord(rule, last);
    start = std::min(start, end);
    return {start, end - start};
}

NSRange rangeOfTrimmedWordForRange(NSString* string, NSRange range) {
    requireArgument(string, "rangeOfTrimmedWordForRange:", "the string");
    requireRange(range, string->length(), "rangeOfTrimmedWordForRange:");
    NSCharacterSet* members = NSCharacterSet::alphanumericCharacterSet();
    NSRange first = string->rangeOfCharacterFromSet_options_range(members, NSLiteralSearch, range);
    if (first.location == NSNotFound) return first;
    NSRange last =
        string->rangeOfCharacterFromSet_options_range(members, NSLiteralSearch | NSBackwardsSearch, range);
    if (first.location > last.location)
        PBAssertFailed("Assertion", "missed starting word character", __FILE__, __LINE__);
    return {first.location, NSMaxRange(last) - first.location};
}

}  // namespace pelvor
