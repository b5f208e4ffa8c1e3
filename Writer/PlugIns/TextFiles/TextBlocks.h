// SPDX-License-Identifier: Apache-2.0
// Decodes a text that comes in blocks of bytes.
#pragma once

#include <string_view>

#include "Foundation/NSStringEncoding.h"

namespace pelvor {

class TextUnits;

/// Whether texts in the encoding can be decoded block by block; others only as a whole.
bool decodesInBlocks(NSStringEncoding encoding);

/// How many bytes at the end of the block may be the first ones of a character that goes on in the next
/// block. Less than the block, unless that is shorter than a character may be.
std::size_t lengthOfCutCharacter(std::string_view block, NSStringEncoding encoding);

/// Appends the text of a block of whole characters, or of a whole text; answers false, with anything or
/// nothing appended, if the bytes are not valid in the encoding. Nothing is put in the place of what is not
/// valid.
bool decodeBlock(std::string_view block, NSStringEncoding encoding, TextUnits& units);

}  // namespace pelvor
