// SPDX-License-Identifier: Apache-2.0
// WRLanguage: the language of a text, as the library asks about it.
#pragma once

#include <vector>

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSAttributedString;
class NSCoder;
class NSString;
class WRBoundaryScanner;

/// A language by its identifier. It is the value of the attribute "PBLanguage", which the library asks for
/// words and paragraphs:
///
///     WRLanguage* french = WRLanguage::languageWithIdentifier(u"fr"_ns);
///     attributes->setObject_forKey(french, PBLanguageAttributeName);
///
/// Words follow the common rules of Unicode, and in English and French rules of their own
/// (WRBoundaryScanner). Each identifier has one object, which lives as long as the program. Main thread.
class WRLanguage : public NSObject {
    PELVOR_CLASS(WRLanguage, NSObject);
    PELVOR_CREATORS(initWithCoder);

  public:
    /// The language of an identifier such as "fr" or "pt_BR"; "" is no language in particular. Null for null.
    static WRLanguage* languageWithIdentifier(NSString* identifier);
    /// The first language of the user.
    static WRLanguage* systemLanguage();

    /// An archive holds the identifier. Makes no object but the one of that identifier.
    static Retained<WRLanguage> initWithCoder(NSCoder* coder);
    void encodeWithCoder(NSCoder* coder);

    NSString* identifier() { return _identifier; }
    bool isRightToLeft();

    /// The word at the range's location, or what stands between two words there. Past the end the empty range
    /// at the end. The only granularity is 1, words; other ones count as words, too.
    NSRange rangeWithGranularity_forString_range(int granularity, NSAttributedString* string, NSRange range);

    /// Lends a scanner of word boundaries, which goes back with the second operation.
    WRBoundaryScanner* acquireBoundaryScanner();
    void relinquishBoundaryScanner(WRBoundaryScanner* scanner);

    /// The range up to the first paragraph end in the range and with it; at NSNotFound if there is none.
    /// Writes how many words and characters it passed, unless a pointer is null; paragraph ends are no
    /// characters.
    NSRange paragraphRangeForString_range_wordCount_charCount(NSString* string, NSRange range,
                                                              NSUInteger* wordCount, NSUInteger* charCount);

    NSString* description() override;

  protected:
    WRLanguage();
    ~WRLanguage();

  private:
    Retained<NSString> _identifier;
    std::vector<Retained<WRBoundaryScanner>> _idleScanners;
};

}  // namespace pelvor
