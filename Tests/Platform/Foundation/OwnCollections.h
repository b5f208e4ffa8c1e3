// SPDX-License-Identifier: Apache-2.0
// Subclasses of Foundation's abstract classes with only the primitives, as a program outside would write
// them.
#pragma once

#include "Platform/Foundation/Pebble.h"

namespace pelvor::testing {

/// A mutable array over its own storage.
class OwnArray : public NSMutableArray, NSMutableArray::HiddenCreators {
    PELVOR_CLASS(OwnArray, NSMutableArray);

  public:
    /// The numbers from a start down to 1.
    static Retained<OwnArray> countdown(int start) {
        auto array = make<OwnArray>();
        for (; start > 0; --start) array->addObject(num(start));
        return array;
    }
    NSUInteger count() override { return _objects->count(); }
    id objectAtIndex(NSUInteger index) override { return _objects->objectAtIndex(index); }
    void addObject(id object) override { _objects->addObject(object); }
    void insertObject_atIndex(id object, NSUInteger index) override {
        _objects->insertObject_atIndex(object, index);
    }
    void replaceObjectAtIndex_withObject(NSUInteger index, id object) override {
        _objects->replaceObjectAtIndex_withObject(index, object);
    }
    void removeObjectAtIndex(NSUInteger index) override { _objects->removeObjectAtIndex(index); }
    void removeObjectsInRange(NSRange range) override { _objects->removeObjectsInRange(range); }

  private:
    Retained<NSMutableArray> _objects = NSMutableArray::init();
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
