// SPDX-License-Identifier: Apache-2.0
// The code pages of rich text files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Foundation/NSStringEncoding.h"

namespace pelvor {

/// The code page of a font's character set; 0 for one that stands for the document's own.
int codePageOfCharacterSet(int characterSet);

/// Turns the bytes of one code page into text.
class CodePage {
  public:
    /// That of a symbol font has its characters in the private area from U+F000 on.
    static constexpr int symbol = 42;
    /// That of the font "Symbol", whose characters are known.
    static constexpr int greekSymbols = -1;

    /// An unknown number stands for 1252.
    explicit CodePage(int number);

    int number() const { return _number; }
    /// Whether bytes below 0x80 are something else than ASCII.
    bool isSymbolic() const { return _number == symbol || _number == greekSymbols; }
    /// How many bytes the character has that begins with this byte.
    std::size_t lengthAfterLead(std::uint8_t lead) const;
    /// Appends the character, whose length is right. Returns false, and appends U+FFFD, if there is no such
    /// character.
    bool append(std::string_view character, std::u16string& units);

  private:
    int _number;
    NSStringEncoding _encoding = 0;
    std::vector<char16_t> _known;  // characters of one and two bytes, as far as they came up; 0 otherwise
};

}  // namespace pelvor
