// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRLanguage.h"

#include <algorithm>

#include "Foundation/NSArray.h"
#include "Foundation/NSAttributedString.h"
#include "Foundation/NSCoder.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/UserLanguages.h"
#include "NSString-PelvorAdditions.h"
#include "Writer/WRBoundaryScanner.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRLanguage, writerLibrary) {
    methods.classLevel<"languageWithIdentifier:", &WRLanguage::languageWithIdentifier>();
    methods.classLevel<"systemLanguage", &WRLanguage::systemLanguage>();
    methods.classLevel<"initWithCoder:", &WRLanguage::initWithCoder>();
    methods.instance<"encodeWithCoder:", &WRLanguage::encodeWithCoder>();
    methods.instance<"identifier", &WRLanguage::identifier>();
    methods.instance<"isRightToLeft", &WRLanguage::isRightToLeft>();
    methods.instance<"rangeWithGranularity:forString:range:",
                     &WRLanguage::rangeWithGranularity_forString_range>();
    methods.instance<"acquireBoundaryScanner", &WRLanguage::acquireBoundaryScanner>();
    methods.instance<"relinquishBoundaryScanner:", &WRLanguage::relinquishBoundaryScanner>();
    methods.instance<"paragraphRangeForString:range:wordCount:charCount:",
                     &WRLanguage::paragraphRangeForString_range_wordCount_charCount>();
}

namespace {

// A scanner lent for a scope, with its string.
class LentScanner {
  public:
    LentScanner(WRLanguage* language, NSString* string)
        : _language(language), _scanner(language->acquireBoundaryScanner()) {
        _scanner->setString(string);
    }
    ~LentScanner() {
        _scanner->setString(nullptr);
        _language->relinquishBoundaryScanner(_scanner);
    }
    LentScanner(const LentScanner&) = delete;
    WRBoundaryScanner* operator->() { return _scanner; }

  private:
    WRLanguage* _language;
    WRBoundaryScanner* _scanner;
};

NSUInteger countWords(WRLanguage* language, NSString* string, NSRange range) {
    LentScanner scanner(language, string);
    NSUInteger words = 0;
    for (NSUInteger place = range.location; place < NSMaxRange(range);) {
        place = scanner->offsetOfWordBoundaryFrom_isForwardSearch(place, true);
        if (place == NSNotFound) break;
        words += scanner->isWordBefore(place);
    }
    return words;
}

// Counts code points.
NSUInteger countCharacters(NSString* string, NSRange range) {
    NSUInteger characters = range.length;
    unichar units[256];
    bool isAfterHigh = false;
    for (NSUInteger place = range.location; place < NSMaxRange(range); place += 256) {
        const NSUInteger length = std::min<NSUInteger>(256, NSMaxRange(range) - place);
        string->getCharacters_range(units, {place, length});
        for (NSUInteger i = 0; i < length; ++i) {
            characters -= isAfterHigh && (units[i] & 0xFC00) == 0xDC00;
            isAfterHigh = (units[i] & 0xFC00) == 0xD800;
        }
    }
    return characters;
}

}  // namespace

WRLanguage::WRLanguage() = default;
WRLanguage::~WRLanguage() = default;

WRLanguage* WRLanguage::languageWithIdentifier(NSString* identifier) {
    if (!identifier) return nullptr;
    static NSMutableDictionary* languages = NSMutableDictionary::init().leak();
    if (auto* known = cast<WRLanguage>(languages->objectForKey(identifier))) return known;
    auto language = make<WRLanguage>(classObject());
    language->_identifier = identifier->copy();
    languages->setObject_forKey(language, identifier);
    return language;
}

WRLanguage* WRLanguage::systemLanguage() {
    NSArray* languages = userLanguages();
    return languageWithIdentifier(languages->count() ? cast<NSString>(languages->objectAtIndex(0)) : u""_ns);
}

// Identifiers that no language has, such as an archive of strangers may hold, would be kept for ever.
Retained<WRLanguage> WRLanguage::initWithCoder(NSCoder* coder) {
    constexpr NSUInteger kLongest = 100;
    auto* identifier = cast<NSString>(coder->decodeObjectForKey(u"identifier"_ns));
    const bool isUsable = identifier && identifier->length() <= kLongest;
    return Retained<WRLanguage>::retaining(languageWithIdentifier(isUsable ? identifier : u""_ns));
}

void WRLanguage::encodeWithCoder(NSCoder* coder) {
    coder->encodeObject_forKey(_identifier, u"identifier"_ns);
}

bool WRLanguage::isRightToLeft() { return isLanguageWrittenRightToLeft(_identifier); }

NSRange WRLanguage::rangeWithGranularity_forString_range(int, NSAttributedString* string, NSRange range) {
    const NSUInteger length = string ? string->length() : 0;
    if (range.location >= length) return {length, 0};
    LentScanner scanner(this, string->string());
    const NSUInteger end = scanner->offsetOfWordBoundaryFrom_isForwardSearch(range.location, true);
    const NSUInteger start = scanner->offsetOfWordBoundaryFrom_isForwardSearch(range.location + 1, false);
    return {start, end - start};
}

WRBoundaryScanner* WRLanguage::acquireBoundaryScanner() {
    if (_idleScanners.empty())
        return WRBoundaryScanner::initWithLanguageIdentifier(_identifier).autorelease();
    Retained<WRBoundaryScanner> scanner = std::move(_idleScanners.back());
    _idleScanners.pop_back();
    return std::move(scanner).autorelease();
}

void WRLanguage::relinquishBoundaryScanner(WRBoundaryScanner* scanner) {
    if (!scanner || std::find(_idleScanners.begin(), _idleScanners.end(), scanner) != _idleScanners.end())
        return;
    _idleScanners.push_back(Retained<WRBoundaryScanner>::retaining(scanner));
}

NSRange WRLanguage::paragraphRangeForString_range_wordCount_charCount(NSString* string, NSRange range,
                                                                      NSUInteger* wordCount,
                                                                      NSUInteger* charCount) {
    NSUInteger end = 0, contentsEnd = 0;
    getParagraphStart_end_contentsEnd_forRange(string, nullptr, &end, &contentsEnd, {range.location, 0});
    const bool isFound = contentsEnd < NSMaxRange(range);
    const NSUInteger passed = isFound ? contentsEnd : NSMaxRange(range);
    const NSRange contents{range.location, passed - range.location};
    if (wordCount) *wordCount = countWords(this, string, contents);
    if (charCount) *charCount = countCharacters(string, contents);
    return isFound ? NSRange{range.location, end - range.location} : NSRange{NSNotFound, 0};
}

NSString* WRLanguage::description() {
    return NSString::stringWithFormat(u"language %@"_ns, _identifier.get());
}

}  // namespace pelvor
