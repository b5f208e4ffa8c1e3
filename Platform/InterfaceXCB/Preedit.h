// SPDX-License-Identifier: Apache-2.0
// Preedit: the text that an input method composes, as its messages change it.
#pragma once

#include <span>

#include "Interface/Backend/Backend.h"

namespace pelvor {

class Preedit {
  public:
    /// Replaces characters, counted in whole code points; places beyond the end mean the end. Of each new
    /// character `styles` says how it is shown; missing ones are shown plainly.
    void replace(std::size_t first, std::size_t length, std::u16string_view text,
                 std::span<const std::uint32_t> styles);
    void setCaret(std::size_t caret) { _caret = caret; }
    void clear();
    bool isEmpty() const { return _characters.empty(); }

    /// What is to be shown; the caret and the spans count UTF-16 units.
    struct Shown {
        std::u16string text;
        std::size_t caret = 0;
        std::vector<PreeditSpan> spans;
    };
    Shown shown() const;

  private:
    struct Character {
        std::u16string units;
        bool isHighlighted;
    };
    std::vector<Character> _characters;
    std::size_t _caret = 0;
};

}  // namespace pelvor
