// SPDX-License-Identifier: Apache-2.0
// XLayoutRegistry: the keyboard layouts that the system has.
#pragma once

#include "Interface/Backend/Backend.h"

namespace pelvor {

/// The layouts of the system's registry, with names and languages. Read on first demand, in some 10 ms, by a
/// library that is loaded then; without it there are none.
class XLayoutRegistry {
  public:
    const std::vector<BackendLayout>& all();
    /// The layout with that name, "de(nodeadkeys)"; null if there is none.
    const BackendLayout* find(std::string_view name);

  private:
    std::vector<BackendLayout> _layouts;  // by name
    bool _isRead = false;
};

/// The language of a layout as a tag with the country that the layout is for, which tells the script where
/// several are in use: "srp-ME". `code` is the registry's: "srp".
std::string languageOfLayout(std::string_view layout, std::string_view variant, std::string_view code);

}  // namespace pelvor
