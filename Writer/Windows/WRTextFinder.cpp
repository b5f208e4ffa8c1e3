// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRTextFinder.h"

#include <algorithm>
#include <span>

#include "Foundation/NSNotificationCenter.h"
#include "Foundation/TextBoundaries.h"
#include "Interface/NSTextView.h"
#include "Runtime/Registry.h"
#include "Text/NSTextStorage.h"
#include "Writer/Windows/UndoPause.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

// MARK: Searching

std::vector<NSRange> placesOfQuery(std::u16string_view text, const TextQuery& query) {
    std::vector<NSRange> places;
    const auto length = static_cast<NSUInteger>(text.size());
    auto string = NSString::initWithCharactersNoCopy_length_freeWhenDone(const_cast<unichar*>(text.data()),
                                                                         length, false);
    TextBoundaries words(TextBoundaries::Kind::Word, nullptr);
    if (query.isWholeWords) words.setString(string);
    const NSStringCompareOptions options = query.matchesCase ? 0U : +NSCaseInsensitiveSearch;
    for (NSUInteger start = 0; start < length;) {
        const NSRange place =
            string->rangeOfString_options_range(query.text, options, {start, length - start});
        if (place.location == NSNotFound) break;
        const bool isMatch =
            !query.isWholeWords || (words.isBoundary(place.location) && words.isBoundary(NSMaxRange(place)));
        if (isMatch) places.push_back(place);
        start = NSMaxRange(isMatch ? place : string->rangeOfComposedCharacterSequenceAtIndex(place.location));
    }
    return places;
}

// MARK: Replacing

namespace {

using Kind = FindResult::Kind;

// Puts an attributed text together from pieces of another one and from new units.
class TextBuilder {
  public:
    void add(std::u16string_view units, NSDictionary* attributes) {
        if (units.empty()) return;
        const auto length = static_cast<NSUInteger>(units.size());
        if (!_runs.empty() && _runs.back().attributes == attributes)
            _runs.back().range.length += length;
        else
            _runs.push_back({{static_cast<NSUInteger>(_units.size()), length}, attributes});
        _units += units;
    }
    Retained<NSAttributedString> text() const {
        return NSAttributedString::initWithString_runs(NSString::of(_units), _runs);
    }

  private:
    std::u16string _units;
    std::vector<AttributeRun> _runs;
};

// The range of the text with the replacement in the places, which lie in the range. The units are those of
// the whole text.
Retained<NSAttributedString> replacing(NSAttributedString* text, std::u16string_view units, NSRange range,
                                       std::span<const NSRange> places, std::u16string_view replacement) {
    TextBuilder result;
    auto place = places.begin();
    NSUInteger at = range.location;  // what is before it is done
    for (const AttributeRun run : text->runsInRange(range)) {
        const NSUInteger end = NSMaxRange(run.range);
        while (at < end) {
            const NSUInteger stop = place == places.end() ? end : std::min(place->location, end);
            if (at < stop) result.add(units.substr(at, stop - at), run.attributes);
            at = stop;
            if (at == end) break;
            result.add(replacement, run.attributes);
            at = NSMaxRange(*place++);
        }
    }
    return result.text();
}

std::u16string unitsOf(NSString* text) {
    std::u16string units(text->length(), u'\0');
    text->getCharacters_range(units.data(), {0, text->length()});
    return units;
}

// One change of the text by the user, with what is selected behind it. It is undone by another such change,
// so that the selection comes back with the text and no more than its place has to be laid out.
bool changeText(NSTextView* view, NSRange range, NSAttributedString* text, NSRange selection) {
    NSUndoManager* manager = view->allowsUndo() ? view->undoManager() : nullptr;
    {
        const UndoPause pause(manager);
        if (!view->shouldChangeTextInRange_replacementString(range, text->string())) return false;
    }
    auto before =
        Retained<NSAttributedString>::retaining(view->textStorage()->attributedSubstringFromRange(range));
    if (manager)
        manager->registerUndo(view, [view, before, now = NSRange{range.location, text->length()},
                                     selectionBefore = view->selectedRange()] {
            if (NSMaxRange(now) <= view->textStorage()->length())
                changeText(view, now, before, selectionBefore);
        });
    view->textStorage()->replaceCharactersInRange_withAttributedString(range, text);
    view->setSelectedRange(selection);
    view->didChangeText();
    view->scrollRangeToVisible(selection);
    return true;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRTextFinder, windowsLibrary) {
    methods.creator<"init", &WRTextFinder::init>();
    methods.instance<"textDidChange:", &WRTextFinder::textDidChange>();
}

Retained<WRTextFinder> WRTextFinder::init(Class* cls) { return make<WRTextFinder>(cls); }

WRTextFinder::~WRTextFinder() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRTextFinder::setQuery(TextQuery query) {
    const bool isSame = query.text->isEqualToString(_query.text) && query.matchesCase == _query.matchesCase &&
                        query.isWholeWords == _query.isWholeWords;
    if (isSame) return;
    forgetPlaces();
    _query = std::move(query);
}

const std::vector<NSRange>& WRTextFinder::places(NSTextView* view) {
    if (_searched == view->textStorage()) return _places;
    forgetPlaces();
    _searched.set(view->textStorage());
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        this, "textDidChange:"_sel, NSTextStorageDidProcessEditingNotification, _searched);
    _units = unitsOf(_searched->string());
    return _places = placesOfQuery(_units, _query);
}

void WRTextFinder::forgetPlaces() {
    if (!_searched) return;
    NSNotificationCenter::defaultCenter()->removeObserver_name_object(
        this, NSTextStorageDidProcessEditingNotification, _searched);
    _searched = nullptr;
    _units = {};
    _places = {};
}

void WRTextFinder::textDidChange(NSNotification*) { forgetPlaces(); }

FindResult WRTextFinder::find(NSTextView* view, bool isBackwards) {
    if (_query.text->length() == 0) return {Kind::noQuery};
    const std::vector<NSRange>& all = places(view);
    if (all.empty()) return {Kind::notFound};
    const NSRange selection = view->selectedRange();
    const auto behind = std::partition_point(all.begin(), all.end(), [&](NSRange place) {
        return isBackwards ? NSMaxRange(place) <= selection.location : place.location < NSMaxRange(selection);
    });
    const bool isAtEnd = behind == (isBackwards ? all.begin() : all.end());
    if (isAtEnd && !_wraps) return {Kind::noMore, 0, static_cast<NSUInteger>(all.size())};
    const auto found = isBackwards ? (isAtEnd ? all.end() : behind) - 1 : isAtEnd ? all.begin() : behind;
    const FindResult result{isAtEnd ? Kind::wrapped : Kind::found,
                            static_cast<NSUInteger>(found - all.begin()) + 1,
                            static_cast<NSUInteger>(all.size())};
    const NSRange place = *found;  // the delegate may edit when it hears of the selection
    view->setSelectedRange(place);
    view->scrollRangeToVisible(view->selectedRange());
    return result;
}

FindResult WRTextFinder::replace(NSTextView* view) {
    if (_query.text->length() == 0) return {Kind::noQuery};
    const std::vector<NSRange>& all = places(view);
    const NSRange selection = view->selectedRange();
    if (std::find(all.begin(), all.end(), selection) == all.end()) return find(view, false);
    auto text = replacing(_searched, _units, selection, {&selection, 1}, unitsOf(_replacement));
    const bool isDone = changeText(view, selection, text, {selection.location + text->length(), 0});
    return {isDone ? Kind::replaced : Kind::readOnly, 0, 1};
}

FindResult WRTextFinder::replaceAll(NSTextView* view) {
    if (_query.text->length() == 0) return {Kind::noQuery};
    const std::vector<NSRange>& all = places(view);
    if (all.empty()) return {Kind::notFound};
    const auto count = static_cast<NSUInteger>(all.size());
    const NSRange range{all.front().location, NSMaxRange(all.back()) - all.front().location};
    auto text = replacing(_searched, _units, range, all, unitsOf(_replacement));
    // The caret stays between the characters where it was.
    NSUInteger caret = view->selectedRange().location, moved = caret;
    for (const NSRange place : all) {
        if (place.location >= caret) break;
        moved += _replacement->length() - std::min(place.length, caret - place.location);
    }
    return {changeText(view, range, text, {moved, 0}) ? Kind::replaced : Kind::readOnly, 0, count};
}

}  // namespace pelvor
