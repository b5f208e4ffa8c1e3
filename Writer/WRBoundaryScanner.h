// SPDX-License-Identifier: Apache-2.0
// WRBoundaryScanner: finds the word boundaries of a language in a string.
#pragma once

#include "Foundation/TextBoundaries.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSString;

/// Finds word boundaries. English has the words that begin with an apostrophe, such as "'twas", and French
/// parts the word after an elision, "l'|eau", but not "aujourd'hui". Borrowed from a WRLanguage. Main thread.
class WRBoundaryScanner : public NSObject {
    PELVOR_CLASS(WRBoundaryScanner, NSObject);
    PELVOR_CREATORS(initWithLanguageIdentifier);

  public:
    static Retained<WRBoundaryScanner> initWithLanguageIdentifier(NSString* identifier,
                                                                  Class* cls = classObject());

    /// The string, which is kept; null lets the last one go.
    void setString(NSString* string);
    /// The next boundary behind the offset, or the last one before it; NSNotFound without one.
    NSUInteger offsetOfWordBoundaryFrom_isForwardSearch(NSUInteger offset, bool isForward);

    // C++ only
    /// Whether the stretch before the boundary is a word.
    bool isWordBefore(NSUInteger boundary);

  protected:
    WRBoundaryScanner();
    ~WRBoundaryScanner();

  private:
    NSUInteger following(NSUInteger offset);
    NSUInteger preceding(NSUInteger offset);
    bool isJoined(NSUInteger boundary);
    NSUInteger elisionEnd(NSUInteger start, NSUInteger end);

    TextBoundaries _boundaries{TextBoundaries::Kind::Word, nullptr};
    Retained<NSString> _string;
    bool _isEnglish = false;
    bool _isFrench = false;
};

}  // namespace pelvor
