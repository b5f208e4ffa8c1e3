// SPDX-License-Identifier: Apache-2.0
// An attributed string beside a plain array of units with their attributes; for tests and fuzzing.
#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNumber.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

class AttributedStringModel {
  public:
    /// A number from 0 to below the limit, which is at least 1.
    using Numbers = std::function<unsigned(unsigned limit)>;

    explicit AttributedStringModel(Numbers numbers, Retained<NSMutableAttributedString> text = init())
        : _numbers(std::move(numbers)), _text(std::move(text)) {}

    /// What was found wrong first; empty if nothing.
    std::string fault;
    NSMutableAttributedString* text() { return _text; }

    void step() {
        AutoreleasePool pool;
        switch (_numbers(_units.size() > 12000 ? 4 : 15)) {
            case 0:
                return replace(range(4000), {});
            case 1:
                return replace(range(9), {});
            case 2:
                return takeSnapshot();
            case 3:
                return replaceWithPart();
            case 4:
                return replace({place(), 0}, units(_numbers(8) ? 3 : 5000));
            case 5:
                return replaceThroughString();
            case 6:
                return setAll(range(600));
            case 7:
                return setOne(range(40));
            case 8:
                return setOne(range(3000));
            case 9:
                return removeOne(range(1500));
            case 10:
                return addSome(range(300));
            case 11:
                return checkOneValue();
            case 12:
                return checkOneRun();
            case 13:
                return replaceWithAttributes();
            default:
                return replace(range(5), units(6));
        }
    }

    void checkAll() {
        check(_text, _units);
        for (const Snapshot& snapshot : _snapshots) check(snapshot.text, snapshot.units);
    }

  private:
    static constexpr unsigned kNames = 3, kValues = 4;  // value 0: the unit lacks the attribute
    struct Unit {
        char16_t unit;
        std::array<std::uint8_t, kNames> values;
        bool operator==(const Unit&) const = default;
    };
    using Units = std::vector<Unit>;
    struct Snapshot {
        Retained<NSAttributedString> text;
        Units units;
    };

    static Retained<NSMutableAttributedString> init() { return NSMutableAttributedString::init(); }
    static NSString* name(unsigned index) {
        static NSString* const names[kNames] = {u"a"_ns, u"b"_ns, u"c"_ns};
        return names[index];
    }
    static id value(unsigned number) { return NSNumber::numberWithInt(static_cast<int>(number)); }
    static NSDictionary* dictionary(const Unit& unit) {
        auto* all = NSMutableDictionary::dictionary();
        for (unsigned i = 0; i < kNames; ++i)
            if (unit.values[i]) all->setObject_forKey(value(unit.values[i]), name(i));
        return all;
    }
    static Units part(const Units& units, NSRange range) {
        return {units.begin() + range.location, units.begin() + NSMaxRange(range)};
    }
    static std::u16string plain(const Units& units) {
        std::u16string text;
        for (const Unit& unit : units) text += unit.unit;
        return text;
    }

    NSUInteger count() const { return static_cast<NSUInteger>(_units.size()); }
    NSUInteger place() { return _numbers(count() + 1); }
    NSRange range(unsigned longest) {
        NSUInteger location = place();
        return {location, _numbers(std::min(longest, count() - location) + 1)};
    }
    Units units(unsigned most) {
        Units made(_numbers(most) + 1);
        for (Unit& unit : made) unit = {static_cast<char16_t>(u'a' + _count++ % 26), {}};
        return made;
    }
    void put(NSRange range, const Units& units) {
        auto first = _units.begin() + range.location;
        _units.insert(_units.erase(first, first + range.length), units.begin(), units.end());
    }

    void replace(NSRange range, Units units) {
        _text->replaceCharactersInRange_withString(range, NSString::of(plain(units)));
        inherit(range, units);
        put(range, units);
    }
    void inherit(NSRange range, Units& units) {
        if (_units.empty()) return;
        NSUInteger from = range.length > 0 ? range.location : std::max(range.location, 1u) - 1;
        for (Unit& unit : units) unit.values = _units[from].values;
    }
    void replaceWithAttributes() {
        NSRange changed = range(20);
        Units added = units(5);
        for (Unit& unit : added) unit.values = {0, static_cast<std::uint8_t>(added.size() % kValues), 0};
        _text->replaceCharactersInRange_withString_attributes(changed, NSString::of(plain(added)),
                                                              dictionary(added.front()));
        put(changed, added);
    }
    void replaceThroughString() {
        NSRange changed = range(50);
        Units added = units(4);
        _text->mutableString()->replaceCharactersInRange_withString(changed, NSString::of(plain(added)));
        inherit(changed, added);
        put(changed, added);
    }
    void replaceWithPart() {
        bool isOwn = _snapshots.empty() || _numbers(2);
        const Units& from = isOwn ? _units : _snapshots.front().units;
        NSAttributedString* source = isOwn ? _text.get() : _snapshots.front().text.get();
        NSUInteger start = _numbers(static_cast<unsigned>(from.size()) + 1);
        NSUInteger longest = std::min<NSUInteger>(static_cast<NSUInteger>(from.size()) - start, 2500);
        NSRange taken{start, _numbers(longest + 1)}, changed = range(2000);
        Units added = part(from, taken);
        _text->replaceCharactersInRange_withAttributedString(changed,
                                                             source->attributedSubstringFromRange(taken));
        put(changed, added);
    }

    template <class Change>
    void change(NSRange range, Change change) {
        for (NSUInteger i = range.location; i < NSMaxRange(range); ++i) change(_units[i].values);
    }
    void setAll(NSRange range) {
        Unit like{
            0,
            {static_cast<std::uint8_t>(_numbers(kValues)), static_cast<std::uint8_t>(_numbers(kValues)), 0}};
        _text->setAttributes_range(dictionary(like), range);
        change(range, [&](auto& values) { values = like.values; });
    }
    void setOne(NSRange range) {
        unsigned index = _numbers(kNames), number = _numbers(kValues - 1) + 1;
        _text->addAttribute_value_range(name(index), value(number), range);
        change(range, [&](auto& values) { values[index] = static_cast<std::uint8_t>(number); });
    }
    void removeOne(NSRange range) {
        unsigned index = _numbers(kNames);
        _text->removeAttribute_range(name(index), range);
        change(range, [&](auto& values) { values[index] = 0; });
    }
    void addSome(NSRange range) {
        Unit like{
            0,
            {0, static_cast<std::uint8_t>(_numbers(kValues)), static_cast<std::uint8_t>(_numbers(kValues))}};
        _text->addAttributes_range(dictionary(like), range);
        change(range, [&](auto& values) {
            for (unsigned i = 0; i < kNames; ++i)
                if (like.values[i]) values[i] = like.values[i];
        });
    }
    void takeSnapshot() {
        _snapshots.push_back({_text->copy(), _units});
        if (_snapshots.size() <= 3) return;
        std::size_t dropped = _numbers(3);
        check(_snapshots[dropped].text, _snapshots[dropped].units);
        _snapshots.erase(_snapshots.begin() + static_cast<std::ptrdiff_t>(dropped));
    }

    // The stretch around the index, inside the limit, over which the units are alike.
    template <class IsAlike>
    NSRange stretch(NSUInteger index, NSRange limit, IsAlike isAlike) {
        NSUInteger start = index, end = index + 1;
        while (start > limit.location && isAlike(_units[start - 1], _units[index])) --start;
        while (end < NSMaxRange(limit) && isAlike(_units[end], _units[index])) ++end;
        return {start, end - start};
    }
    void checkOneRun() {
        if (_units.empty()) return;
        NSUInteger index = _numbers(count());
        NSRange run, expected = stretch(index, {0, count()},
                                        [](const Unit&a, const Unit&b) { return a.values == b.values; });
        NSDictionary* attributes = _text->attributesAtIndex_effectiveRange(index, &run);
        require(run == expected && attributes->isEqual(dictionary(_units[index])), "a run");
        require(_text->string()->characterAtIndex(index) == _units[index].unit, "a unit");
    }
    void checkOneValue() {
        if (_units.empty()) return;
        NSRange limit = range(5000);
        if (limit.length == 0) return;
        NSUInteger index = limit.location + _numbers(limit.length);
        unsigned which = _numbers(kNames), number = _units[index].values[which];
        NSRange found, expected = stretch(index, limit, [which](const Unit&a, const Unit&b) {
                           return a.values[which] == b.values[which];
                       });
        id has = _text->attribute_atIndex_longestEffectiveRange_inRange(name(which), index, &found, limit);
        require(found == expected && (number ? has && has->isEqual(value(number)) : !has),
                "a value's stretch");
    }
    void check(NSAttributedString* text, const Units& units) {
        require(text->string()->toUTF16() == plain(units), "the text");
        NSUInteger place = 0;
        NSDictionary* last = nullptr;
        for (auto [range, attributes] : text->runs()) {
            require(range.location == place && range.length > 0 && attributes != last, "the runs' places");
            place = NSMaxRange(range);
            if (place > units.size()) break;
            last = attributes;
            const Unit& first = units[range.location];
            require(attributes->isEqual(dictionary(first)), "a run's attributes");
            for (NSUInteger i = range.location; i < place; ++i)
                require(units[i].values == first.values, "a run's length");
        }
        require(place == units.size(), "the runs' end");
    }
    void require(bool holds, const char* what) {
        if (!holds && fault.empty()) fault = what;
    }

    Numbers _numbers;
    Retained<NSMutableAttributedString> _text;
    Units _units;
    std::vector<Snapshot> _snapshots;
    unsigned _count = 0;
};

}  // namespace pelvor
