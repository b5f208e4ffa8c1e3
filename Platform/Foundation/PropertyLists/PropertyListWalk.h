// SPDX-License-Identifier: Apache-2.0
// A walk over the objects of a property list in the order in which they are written; for the writers.
#pragma once

#include <cstdint>

#include "Foundation/NSString.h"

namespace pelvor {

/// What an object is in a property list.
enum class PropertyListKind : std::uint8_t { foreign, string, data, date, number, array, dictionary };

/// Receives the objects of a property list in their order.
class PropertyListVisitor {
  public:
    virtual void visitLeaf(PropertyListKind kind, Object* object) = 0;
    virtual void beginArray(NSUInteger count) = 0;
    virtual void beginDictionary(NSUInteger count) = 0;
    /// Comes before the key's value.
    virtual void visitKey(NSString* key) = 0;
    /// Ends the innermost array or dictionary.
    virtual void end() = 0;

  protected:
    ~PropertyListVisitor() = default;
};

/// Calls the visitor for the root and for all objects below the root; for the entries of a dictionary in the
/// order of the units of their keys. Throws PropertyListFault, with the key path, for an object that no
/// property list holds, for a key that is no string and for nesting past the limit. Adds the key path to
/// faults that the visitor throws.
void walkPropertyList(Object* root, PropertyListVisitor& visitor);

}  // namespace pelvor
