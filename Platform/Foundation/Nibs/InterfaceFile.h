// SPDX-License-Identifier: Apache-2.0
// InterfaceFile: what an interface file says, checked as far as it can be without its classes; for
// Foundation's own sources. docs/interface-files.md describes the format.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

/// The place of an object in the file's list.
using InterfaceIndex = std::uint32_t;
inline constexpr InterfaceIndex kInterfaceOwner = 0xFFFFFFFE;
inline constexpr InterfaceIndex kNoInterfaceObject = 0xFFFFFFFF;

/// A value that an object is made with or that is set.
struct InterfaceValue {
    enum class Kind : std::uint8_t {
        plain,       ///< `object`, a part of a property list
        text,        ///< `object`, the key of a text in `table`
        reference,   ///< `index`
        array,       ///< `items`
        dictionary,  ///< `items` under the keys in `object`, an array
    };
    Kind kind = Kind::plain;
    InterfaceIndex index = kNoInterfaceObject;
    Retained<Object> object;
    Retained<NSString> table;
    std::vector<InterfaceValue> items;

    /// Whether an object of the file, or its owner, is in the value.
    bool refersToObjects() const;
};

/// A value by the key of its setter. The selector is found when it is first needed.
struct InterfaceSetting {
    Retained<NSString> key;
    InterfaceValue value;
    mutable SEL setter;
};

struct InterfaceObject {
    Retained<NSString> identifier;
    Retained<NSString> className;
    std::string creator;
    std::vector<InterfaceValue> arguments;
    std::vector<InterfaceSetting> settings;
};

struct InterfaceConnection {
    InterfaceIndex source;
    InterfaceIndex target;
    Retained<NSString> outlet;  ///< null for an action
    std::string action;
    mutable SEL setter;
};

struct InterfaceFile {
    std::vector<InterfaceObject> objects;
    std::vector<InterfaceConnection> connections;
    std::vector<InterfaceIndex> topLevel;
    /// All objects; what an object is made with comes before it.
    std::vector<InterfaceIndex> makingOrder;

    /// The identifier of an object or of the owner, for messages.
    std::string identifierOf(InterfaceIndex index) const;

    /// Reads the property list of a file. Throws InterfaceFault.
    static InterfaceFile read(id propertyList);
};

}  // namespace pelvor
