// SPDX-License-Identifier: Apache-2.0
// Subclasses of Foundation's abstract classes with only the primitives, as a program outside would write
// them.
#pragma once

#include "Platform/Foundation/Pebble.h"

namespace pelvor::testing {

/// The numbers from a start down to 1, which exist only when asked for.
class Countdown : public NSArray, NSArray::HiddenCreators {
    PELVOR_CLASS(Countdown, NSArray);

  public:
    static Retained<Countdown> from(NSUInteger start) {
        auto array = make<Countdown>();
        array->_start = start;
        return array;
    }
    NSUInteger count() override { return _start; }
    id objectAtIndex(NSUInteger index) override {
        return NSNumber::numberWithInt(static_cast<int>(_start - index));
    }

  private:
    NSUInteger _start = 0;
};

/// A mutable array over its own storage.
class OwnArray : public NSMutableArray, NSMutableArray::HiddenCreators {
    PELVOR_CLASS(OwnArray, NSMutableArray);

  public:
    NSUInteger count() override { return static_cast<NSUInteger>(_objects.size()); }
    id objectAtIndex(NSUInteger index) override { return _objects.at(index); }
    void addObject(id object) override { _objects.push_back(Retained<Object>::retaining(object)); }
    void insertObject_atIndex(id object, NSUInteger index) override {
        _objects.insert(_objects.begin() + index, Retained<Object>::retaining(object));
    }
    void replaceObjectAtIndex_withObject(NSUInteger index, id object) override {
        _objects.at(index).set(object);
    }
    void removeObjectAtIndex(NSUInteger index) override { _objects.erase(_objects.begin() + index); }
    void removeObjectsInRange(NSRange range) override {
        auto first = _objects.begin() + range.location;
        _objects.erase(first, first + range.length);
    }

  private:
    std::vector<Retained<Object>> _objects;
};

/// An integer that can be changed.
class Tally : public NSNumber, NSNumber::HiddenCreators {
    PELVOR_CLASS(Tally, NSNumber);

  public:
    int value = 0;

    const char* objCType() override { return "i"; }
    void getValue(void* buffer) override { std::memcpy(buffer, &value, sizeof value); }
};

/// A string that has only its primitives.
class SparseString : public NSString, NSString::HiddenCreators {
    PELVOR_CLASS(SparseString, NSString);

  public:
    std::u16string text;

    NSUInteger length() override { return static_cast<NSUInteger>(text.size()); }
    unichar characterAtIndex(NSUInteger index) override;
};

/// The row's texts before and after the mark.
inline std::pair<NSString*, NSString*> halves(const std::string& row, const std::string& mark = "/") {
    const std::size_t at = row.find(mark);
    return {NSString::ofUTF8(row.substr(0, at)), NSString::ofUTF8(row.substr(at + mark.size()))};
}

/// Strings of several classes with one text.
std::vector<NSString*> everyKindOfString(std::u16string_view text);

}  // namespace pelvor::testing
