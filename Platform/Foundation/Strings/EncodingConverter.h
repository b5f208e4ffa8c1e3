// SPDX-License-Identifier: Apache-2.0
// Converters between text encodings and UTF-16.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Foundation/NSStringEncoding.h"

namespace pelvor {

/// Converts one text between one encoding and UTF-16, exactly: what does not fit is refused.
class EncodingConverter {
  public:
    virtual ~EncodingConverter() = default;

    /// Appends the units of the next bytes; false if the bytes are not valid in the encoding. A piece that is
    /// not the last may end inside a character, which is appended with the next piece.
    virtual bool decode(std::string_view bytes, std::u16string& units, bool isLast);
    virtual bool decodeInto(UnitBuffer& units, std::string_view bytes, bool isLast);
    /// No value if the text does not fit the encoding.
    virtual std::optional<std::string> encode(std::u16string_view units) = 0;
    virtual bool canEncode(char32_t c) = 0;
    /// Whether what `encode` returns is always decoded to the text that was encoded.
    virtual bool isFaithful() { return true; }
    /// The character that replaces a character which cannot be encoded.
    virtual char16_t substitute() { return canEncode(u'?') ? u'?' : u'\uFF1F'; }

  protected:
    /// The bytes behind a character that the last piece cut, without one that they cut themselves. They stand
    /// in `joined` or in what was given.
    std::string_view wholeCharacters(std::string_view bytes, bool isLast, std::string& joined);
    /// Appends the units of bytes that do not end inside a character.
    virtual bool decodeWhole(std::string_view, std::u16string&) { return false; }
    /// How many bytes at the end begin a character that is not complete.
    virtual std::size_t lengthOfCutCharacter(std::string_view) { return 0; }

  private:
    std::string _cutCharacter;
};

/// Null for an encoding that is not available.
std::unique_ptr<EncodingConverter> makeConverter(NSStringEncoding encoding);

}  // namespace pelvor
