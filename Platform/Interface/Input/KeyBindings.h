// SPDX-License-Identifier: Apache-2.0
// KeyBindings: which commands a key stands for.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Interface/Backend/Backend.h"
#include "Runtime/Selector.h"

namespace pelvor {

class NSDictionary;

class KeyBindings {
  public:
    /// The library's own.
    KeyBindings();
    /// Adds and replaces. Returns the first key that cannot be understood, "" if all can.
    std::u16string add(NSDictionary* bindings);
    const std::vector<SEL>& commandsFor(const BackendKey& key) const;
    NSDictionary* dictionary() const;

  private:
    std::unordered_map<std::uint64_t, std::vector<SEL>> _commands;
};

}  // namespace pelvor
