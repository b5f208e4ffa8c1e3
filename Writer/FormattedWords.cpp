// SPDX-License-Identifier: Apache-2.0
#include "Writer/FormattedWords.h"

#include <algorithm>
#include <vector>

#include "Foundation/NSMutableAttributedString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

using View = std::u16string_view;

constexpr View kSpace = u" \t\n\r\f\v\u0085\u00A0\u2028\u2029";

// The white space or the word at the place; both may be empty.
NSUInteger endOfSpace(View text, NSUInteger place) {
    return static_cast<NSUInteger>(std::min(text.find_first_not_of(kSpace, place), text.size()));
}
NSUInteger endOfWord(View text, NSUInteger place) {
    return static_cast<NSUInteger>(std::min(text.find_first_of(kSpace, place), text.size()));
}

// Walks through both texts from the front; `_shift` is how much longer the rich text has become.
class WordReplacement {
  public:
    WordReplacement(NSMutableAttributedString* richText, View old, View text)
        : _richText(richText), _old(old), _text(text) {}

    void run() {
        while (_oldPlace < _old.size() || _place < _text.size()) {
            replace(endOfSpace(_old, _oldPlace), endOfSpace(_text, _place));
            NSUInteger oldEnd = endOfWord(_old, _oldPlace);
            const NSUInteger end = endOfWord(_text, _place);
            const View word = _text.substr(_place, end - _place);
            const bool isFront =
                !word.empty() && _old.substr(_oldPlace, oldEnd - _oldPlace).starts_with(word);
            if (isFront) oldEnd = _oldPlace + (end - _place);
            replace(oldEnd, end);
        }
    }

  private:
    // What stands in the old text up to one place, by what stands in the new one up to the other.
    void replace(NSUInteger oldEnd, NSUInteger end) {
        const View old = _old.substr(_oldPlace, oldEnd - _oldPlace),
                   text = _text.substr(_place, end - _place);
        if (old != text) {
            const NSUInteger start = static_cast<NSUInteger>(static_cast<std::int64_t>(_oldPlace) + _shift);
            const NSRange range{start, static_cast<NSUInteger>(old.size())};
            if (old.size() == text.size())
                replaceLetters(range, text);
            else
                _richText->replaceCharactersInRange_withString(range, NSString::of(text));
            _shift += static_cast<std::int64_t>(text.size()) - static_cast<std::int64_t>(old.size());
        }
        _oldPlace = oldEnd;
        _place = end;
    }
    // A replacement takes the formats of the first letter, so there is one for each run.
    void replaceLetters(NSRange range, View text) {
        std::vector<NSRange> runs;
        for (AttributeRun run : _richText->runsInRange(range)) runs.push_back(run.range);
        for (NSRange run : runs)
            _richText->replaceCharactersInRange_withString(
                run, NSString::of(text.substr(run.location - range.location, run.length)));
    }

    NSMutableAttributedString* _richText;
    const View _old, _text;
    NSUInteger _oldPlace = 0, _place = 0;
    std::int64_t _shift = 0;
};

}  // namespace

void replaceWords(NSMutableAttributedString* richText, NSString* text) {
    AutoreleasePool pool;
    const std::u16string old = richText->string()->toUTF16();  // the string changes with the rich text
    const StringUnits units(text);
    richText->beginEditing();
    WordReplacement(richText, old, units).run();
    richText->endEditing();
}

}  // namespace pelvor
