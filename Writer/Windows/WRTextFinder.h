// SPDX-License-Identifier: Apache-2.0
// WRTextFinder: finds and replaces text in a text view.
#pragma once

#include <string>
#include <vector>

#include "Foundation/NSRange.h"
#include "Foundation/NSString.h"

namespace pelvor {

class NSAttributedString;
class NSNotification;
class NSTextStorage;
class NSTextView;

/// What is looked for.
struct TextQuery {
    Retained<NSString> text = NSString::init();
    bool matchesCase = false;
    /// Only where words, by the rules that all languages share, begin and end at the ends of the match.
    bool isWholeWords = false;
};

/// The places where the text matches, in order; they do not overlap. Canonically equivalent text matches, and
/// composed characters are not divided (see `NSString::rangeOfString_options_range`).
std::vector<NSRange> placesOfQuery(std::u16string_view text, const TextQuery& query);

/// What a search came to.
struct FindResult {
    enum class Kind {
        noQuery,   ///< there is no text to look for
        notFound,  ///< the text is nowhere
        noMore,    ///< it is only on the other side of the selection, and the search does not wrap around
        found,     ///< it is selected now: the place `number` of `count`, from 1 on
        wrapped,   ///< the same, beyond the end of the text
        replaced,  ///< `count` places
        readOnly,  ///< the view does not let the user change its text
    };
    Kind kind = Kind::noQuery;
    NSUInteger number = 0, count = 0;
};

/// Finds text in text views, selects it, and replaces it, as one change that can be undone:
///
///     finder->setQuery({u"colour"_ns->copy()});
///     finder->setReplacement(u"color"_ns);
///     if (finder->find(view, false).kind == FindResult::Kind::found) finder->replace(view);
///
/// Where a text is searched again without having changed, the places are still known. Main thread.
class WRTextFinder : public NSObject {
    PELVOR_CLASS(WRTextFinder, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRTextFinder> init(Class* cls = classObject());

    // C++ only
    void setQuery(TextQuery query);
    void setReplacement(NSString* replacement) { _replacement.set(replacement); }
    /// Whether a search goes on at the other end of the text. True at first.
    void setWraps(bool wraps) { _wraps = wraps; }

    /// Selects the next place behind, or backwards before, the selection.
    FindResult find(NSTextView* view, bool isBackwards);
    /// Replaces the selection if it is such a place, else selects the next one.
    FindResult replace(NSTextView* view);
    /// Replaces all places. What comes in has the formats of the first character that goes.
    FindResult replaceAll(NSTextView* view);

    /// All places in the text of the view, until it changes.
    const std::vector<NSRange>& places(NSTextView* view) PELVOR_LIFETIMEBOUND;

    /// Observes the text whose places are known.
    void textDidChange(NSNotification* notification);

  protected:
    WRTextFinder() = default;
    ~WRTextFinder();

  private:
    void forgetPlaces();

    TextQuery _query;
    Retained<NSString> _replacement = NSString::init();
    bool _wraps = true;
    Retained<NSTextStorage> _searched;  // null if no places are known
    std::u16string _units;              // of that text
    std::vector<NSRange> _places;
};

}  // namespace pelvor
