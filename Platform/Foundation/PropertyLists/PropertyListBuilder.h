// SPDX-License-Identifier: Apache-2.0
// PropertyListBuilder: makes the objects of a property list as a reader comes across them; for the readers.
#pragma once

#include <array>
#include <memory>
#include <string_view>
#include <vector>

#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSString.h"
#include "Foundation/PropertyLists/PropertyListNumbers.h"

namespace pelvor {

/// Takes keys, values and the ends of arrays and dictionaries in the order of the text, and makes the root
/// object of them. Throws PropertyListFault, without a position, if they do not fit together, and for nesting
/// beyond the limit. If keys are equal, the last one counts.
class PropertyListBuilder {
  public:
    explicit PropertyListBuilder(NSPropertyListMutabilityOptions options);
    ~PropertyListBuilder();
    PropertyListBuilder(const PropertyListBuilder&) = delete;
    PropertyListBuilder& operator=(const PropertyListBuilder&) = delete;

    // Leaves, owned; mutable if the caller wanted mutable leaves.

    Retained<Object> makeString(std::u16string_view units);
    Retained<Object> makeData(std::span<const std::byte> bytes);
    static Retained<Object> makeInteger(PropertyListInteger value);
    static Retained<Object> makeReal(double value);
    static Retained<Object> makeBoolean(bool value);
    static Retained<Object> makeDate(double secondsSinceReferenceDate);

    // The tree.

    void beginArray() { begin(Container::array); }
    void beginDictionary() { begin(Container::dictionary); }
    /// Ends the innermost array or dictionary, adds it to the container around it, and returns it, borrowed.
    Object* end();
    void add(Retained<Object> value);
    /// Adds a string. Throws PropertyListFault if the bytes are not UTF-8.
    void addString(std::string_view utf8);
    void addKey(Retained<Object> key);
    /// These add the key with the units, or with the UTF-8. A key that came lately is not made again.
    void addKey(std::u16string_view units);
    void addKey(std::string_view utf8);

    /// Throws PropertyListFault where there may be no value.
    void requireValuePlace() const;
    /// Returns how many arrays and dictionaries are open.
    std::size_t depth() const { return _frames.size(); }
    bool isInDictionary() const { return !_frames.empty() && _frames.back().kind == Container::dictionary; }
    bool hasRoot() const { return _root != nullptr; }
    Retained<Object> takeRoot() { return std::move(_root); }

  private:
    enum class Container : std::uint8_t { array, dictionary };
    struct Frame {
        Container kind;
        std::size_t firstKey;
        std::size_t firstValue;
    };
    /// A key that came lately, found by its bytes.
    struct RecentKey {
        static constexpr std::size_t kLongest = 39;
        std::uint8_t length = 0;
        char bytes[kLongest] = {};
        Retained<Object> string;
    };
    using RecentKeys = std::array<RecentKey, 256>;

    void begin(Container kind);
    bool awaitsValue(const Frame& frame) const;
    Retained<Object> makeArray(const Frame& frame);
    Retained<Object> makeDictionary(const Frame& frame);
    void dropFrom(std::vector<Object*>& objects, std::size_t first);
    Retained<Object> stringFromUTF8(std::string_view utf8, bool isMutable);

    const NSPropertyListMutabilityOptions _options;
    const std::size_t _maximumDepth;
    std::vector<Frame> _frames;
    std::vector<Object*> _keys;    // owned, of all open dictionaries
    std::vector<Object*> _values;  // owned, of all open containers
    Retained<Object> _root;
    std::unique_ptr<RecentKeys> _recentKeys;
    std::u16string _units;
};

}  // namespace pelvor
