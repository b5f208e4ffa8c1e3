// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/PropertyListWalk.h"

#include <algorithm>
#include <deque>
#include <vector>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/PropertyListLimits.h"
#include "Foundation/PropertyLists/PropertyListFault.h"

namespace pelvor {
namespace {

PropertyListKind findKind(Object* object) {
    if (cast<NSString>(object)) return PropertyListKind::string;
    if (cast<NSNumber>(object)) return PropertyListKind::number;
    if (cast<NSDictionary>(object)) return PropertyListKind::dictionary;
    if (cast<NSArray>(object)) return PropertyListKind::array;
    if (cast<NSDate>(object)) return PropertyListKind::date;
    if (cast<NSData>(object)) return PropertyListKind::data;
    return PropertyListKind::foreign;
}

// The object's class for messages: of the platform's private classes, the public one right below NSObject.
std::string classNameOf(Object* object) {
    if (cast<NSNumber>(object)) return NSNumber::classObject()->name();
    Class* cls = object->isa();
    while (cls->library() == &foundationLibrary && cls->superclass() && cls->superclass()->superclass())
        cls = cls->superclass();
    return cls->name();
}

// Remembers the kinds of the classes that came lately: objects of a list are of few classes.
class KindCache {
  public:
    PropertyListKind kindOf(Object* object) {
        if (!object) return PropertyListKind::foreign;
        Entry& entry = _entries[reinterpret_cast<std::uintptr_t>(object->isa()) / 64 % std::size(_entries)];
        if (entry.cls != object->isa()) entry = {object->isa(), findKind(object)};
        return entry.kind;
    }

  private:
    struct Entry {
        Class* cls = nullptr;
        PropertyListKind kind = PropertyListKind::foreign;
    };
    Entry _entries[64];
};

class Walk {
  public:
    explicit Walk(PropertyListVisitor& visitor)
        : _visitor(visitor), _maximumDepth(propertyListLimits().maximumDepth) {}

    void run(Object* root) {
        try {
            enter(root);
            while (!_frames.empty()) step();
        } catch (PropertyListFault& fault) {
            fault.keyPath = keyPath();
            throw;
        }
    }

  private:
    struct Frame {
        NSArray* array;  // null for a dictionary
        std::size_t next;
        std::size_t count;
        std::size_t firstEntry;
    };
    struct Entry {
        NSString* key;
        Object* value;
        std::u16string_view units;
    };

    void step() {
        Frame& frame = _frames.back();
        if (frame.next == frame.count) return leave();
        std::size_t index = frame.next++;
        if (frame.array) return enter(frame.array->objectAtIndex(static_cast<NSUInteger>(index)));
        const Entry& entry = _entries[frame.firstEntry + index];
        Object* value = entry.value;
        _visitor.visitKey(entry.key);
        enter(value);
    }

    void enter(Object* object) {
        PropertyListKind kind = _kinds.kindOf(object);
        switch (kind) {
            case PropertyListKind::foreign:
                throw PropertyListFault{object ? "an object of class " + classNameOf(object) +
                                                     " has no place in a property list"
                                               : "the object is null"};
            case PropertyListKind::array:
                return enterArray(static_cast<NSArray*>(object));
            case PropertyListKind::dictionary:
                return enterDictionary(static_cast<NSDictionary*>(object));
            default:
                _visitor.visitLeaf(kind, object);
        }
    }

    void enterArray(NSArray* array) {
        checkDepth();
        _visitor.beginArray(array->count());
        _frames.push_back({array, 0, array->count(), _entries.size()});
    }

    void enterDictionary(NSDictionary* dictionary) {
        checkDepth();
        std::size_t first = _entries.size();
        for (auto [key, value] : dictionary) addEntry(key, value);
        sortEntries(first);
        std::size_t count = _entries.size() - first;
        _visitor.beginDictionary(static_cast<NSUInteger>(count));
        _frames.push_back({nullptr, 0, count, first});
    }

    void addEntry(Object* key, Object* value) {
        if (_kinds.kindOf(key) != PropertyListKind::string)
            throw PropertyListFault{"a key of class " + classNameOf(key) + " is no string"};
        auto* string = static_cast<NSString*>(key);
        if (const unichar* units = string->contiguousCharacters())
            _entries.push_back({string, value, {units, string->length()}});
        else
            _entries.push_back({string, value, _copiedKeys.emplace_back(string->toUTF16())});
    }

    void sortEntries(std::size_t first) {
        auto isBefore = [](const Entry& a, const Entry& b) { return a.units < b.units; };
        auto begin = _entries.begin() + static_cast<std::ptrdiff_t>(first);
        if (!std::is_sorted(begin, _entries.end(), isBefore)) std::sort(begin, _entries.end(), isBefore);
    }

    void leave() {
        _visitor.end();
        _entries.resize(_frames.back().firstEntry);
        _frames.pop_back();
    }

    void checkDepth() {
        if (_frames.size() >= _maximumDepth)
            throw PropertyListFault{"arrays and dictionaries are nested more than " +
                                    std::to_string(_maximumDepth) + " deep"};
    }

    // The place of the object that was entered last: keys and indexes from the root on.
    std::string keyPath() {
        std::string path;
        for (const Frame& frame : _frames) {
            if (frame.next == 0) continue;
            if (!path.empty()) path += '.';
            path += frame.array ? std::to_string(frame.next - 1)
                                : _entries[frame.firstEntry + frame.next - 1].key->toUTF8();
        }
        return path;
    }

    PropertyListVisitor& _visitor;
    const std::size_t _maximumDepth;
    KindCache _kinds;
    std::vector<Frame> _frames;
    std::vector<Entry> _entries;  // of all open dictionaries
    std::deque<std::u16string> _copiedKeys;
};

}  // namespace

void walkPropertyList(Object* root, PropertyListVisitor& visitor) { Walk(visitor).run(root); }

}  // namespace pelvor
