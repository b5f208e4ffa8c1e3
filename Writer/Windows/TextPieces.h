// SPDX-License-Identifier: Apache-2.0
// A text in pieces, and what is known of each of them.
#pragma once

#include <algorithm>
#include <optional>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

/// Whether words end at the unit.
inline bool isBlank(unichar unit) { return unit <= u' ' || unit == 0x85 || unit == 0x2028 || unit == 0x2029; }

/// A text that is cut behind blanks, into pieces of about a thousand units, and what is known of each piece.
/// An edit makes unknown only the pieces that it touches. Of these, what was known is kept for the time until
/// it is found out again.
///
///     TextPieces<Count> pieces(text->length());
///     while (auto piece = pieces.takeUnknown(text, visibleRange)) *piece->value = countIn(piece->range);
///     …
///     pieces.textDidChange(editedRange, changeInLength);
///
/// A value has two operations: `append(const Value& next, NSUInteger offset)` takes in what is known of the
/// piece that follows, which begins at the offset; `edit(NSRange range, NSInteger change)` hears that units
/// of the piece were replaced.
template <class Value>
class TextPieces {
  public:
    struct Taken {
        NSRange range;
        Value* value;
    };

    explicit TextPieces(NSUInteger length = 0) : _pieces{{length}} {}

    /// The range is as it is after the edit.
    void textDidChange(NSRange range, NSInteger change) {
        const NSUInteger oldEnd = NSMaxRange(range) - static_cast<NSUInteger>(change);
        // A word at the edge of a piece depends on the unit beside it.
        seek(range.location > 0 ? range.location - 1 : 0);
        const auto first = _pieces.begin() + static_cast<std::ptrdiff_t>(_index);
        auto last = first + 1;
        for (; last != _pieces.end() && _start + first->length <= oldEnd; ++last) {
            first->value.append(last->value, first->length);
            first->length += last->length;
        }
        first->value.edit({range.location - _start, oldEnd - range.location}, change);
        first->length += static_cast<NSUInteger>(change);
        if (first->length > kLongest) first->value = {};
        first->isKnown = false;
        _pieces.erase(first + 1, last);
        _knownUntil = std::min(_knownUntil, _start);
    }

    /// Everything in the range becomes unknown; what was known is kept meanwhile.
    void forget(NSRange range) {
        visit(range, [this](Piece& piece, NSUInteger start) {
            piece.isKnown = false;
            _knownUntil = std::min(_knownUntil, start);
        });
    }

    /// The first piece that the range touches and that is unknown. It counts as known from now on. The value
    /// is the one from before, and may be changed until the next call.
    std::optional<Taken> takeUnknown(NSString* text, NSRange range) {
        const bool isFirstOfAll = range.location <= _knownUntil;
        const auto isLast = [&] {
            return _index + 1 == _pieces.size() || _start + _pieces[_index].length > NSMaxRange(range);
        };
        seek(std::max(range.location, _knownUntil));
        while (_pieces[_index].isKnown && !isLast()) goOn();
        if (isFirstOfAll) _knownUntil = _start;
        if (_pieces[_index].isKnown || _start > NSMaxRange(range)) return {};
        if (_pieces[_index].length > kLongest) cutOut(text, range.location);
        Piece& piece = _pieces[_index];
        piece.isKnown = true;
        return Taken{{_start, piece.length}, &piece.value};
    }

    /// Calls the function with the value and the range of each piece that the range touches.
    template <class Function>
    void eachIn(NSRange range, Function function) {
        visit(range, [&](Piece& piece, NSUInteger start) {
            function(piece.value, NSRange{start, piece.length}, piece.isKnown);
        });
    }

  private:
    static constexpr NSUInteger kLength = 1024;
    static constexpr NSUInteger kLongest = 4 * kLength;  // texts without blanks are cut anywhere

    struct Piece {
        NSUInteger length = 0;
        bool isKnown = false;
        Value value{};
    };

    void goOn() { _start += _pieces[_index++].length; }

    // Makes the piece with the unit the current one. Most places are close to the one before.
    void seek(NSUInteger unit) {
        if (_index >= _pieces.size()) _index = _start = 0;
        while (unit < _start) _start -= _pieces[--_index].length;
        while (_index + 1 < _pieces.size() && unit >= _start + _pieces[_index].length) goOn();
    }

    template <class Function>
    void visit(NSRange range, Function function) {
        for (seek(range.location);; goOn()) {
            function(_pieces[_index], _start);
            if (_index + 1 == _pieces.size() || _start + _pieces[_index].length >= NSMaxRange(range)) return;
        }
    }

    // Leaves the current piece, a long one, a piece of the usual length from about the unit on.
    void cutOut(NSString* text, NSUInteger unit) {
        const NSUInteger end = _start + _pieces[_index].length;
        NSUInteger from = std::max(unit, _start);
        const NSUInteger lowest = from - std::min(from - _start, kLength);
        while (from > lowest && !isBlank(text->characterAtIndex(from - 1))) --from;
        NSUInteger to = std::min(from + kLength, end);
        while (to < end && to < from + kLongest && !isBlank(text->characterAtIndex(to - 1))) ++to;
        Piece parts[] = {{from - _start}, {to - from}, {end - to}};
        _pieces[_index] = std::move(parts[1]);
        const auto place = _pieces.begin() + static_cast<std::ptrdiff_t>(_index);
        if (to < end) _pieces.insert(place + 1, std::move(parts[2]));
        if (from > _start) {
            _pieces.insert(_pieces.begin() + static_cast<std::ptrdiff_t>(_index), std::move(parts[0]));
            goOn();
        }
    }

    std::vector<Piece> _pieces;  // one at least
    std::size_t _index = 0;      // the current piece
    NSUInteger _start = 0;       // where it starts
    NSUInteger _knownUntil = 0;  // no piece that ends before this unit is unknown
};

}  // namespace pelvor
