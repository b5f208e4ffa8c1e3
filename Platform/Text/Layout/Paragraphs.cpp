// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/Paragraphs.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "Foundation/NSString.h"
#include "Shared/Vectors.h"

namespace pelvor {
namespace {

constexpr std::uint32_t kBlockUnits = 4096;  // of the pieces of a long paragraph
constexpr std::uint32_t kLongBlock = 8192;   // what is cut into pieces
constexpr NSUInteger kStep = 32768;          // of reading

// How many units at the front neither end paragraphs nor lie between such units.
std::size_t plainUnits(std::u16string_view text) {
    std::size_t i = 0;
    for (; i + 16 <= text.size(); i += 16) {
        const auto holdsEnd = [](Units8 units) {
            return (units - vectorOf(u'\n') <= vectorOf(u'\x03')) | (units == vectorOf(u'\x85')) |
                   (units == vectorOf(u'\u2029'));
        };
        if (bitsOf(holdsEnd(loadUnits(&text[i])), holdsEnd(loadUnits(&text[i + 8])))) break;
    }
    while (i < text.size() && !(text[i] >= 0x0A && text[i] <= 0x0D) && text[i] != 0x85 && text[i] != 0x2029)
        ++i;
    return i;
}

// Makes blocks of a text whose paragraphs end at the places that it is told.
class BlockMaker {
  public:
    BlockMaker(NSUInteger start, bool continues) : _start(start), _continues(continues) {}

    void endParagraph(NSUInteger end) {
        addUpTo(end);
        _continues = false;
    }
    void addUpTo(NSUInteger end) {
        do {
            auto block = std::make_unique<Block>();
            const NSUInteger units = end - _start;
            block->units = units > kLongBlock ? kBlockUnits : units;
            block->continues = std::exchange(_continues, true);
            _start += block->units;
            blocks.push_back(std::move(block));
        } while (_start < end);
    }
    NSUInteger start() const { return _start; }
    bool isInParagraph() const { return _continues; }

    BlockList::Blocks blocks;

  private:
    NSUInteger _start;  // of what is in no block yet
    bool _continues;    // whether that goes on with a paragraph
};

}  // namespace

BlockList::Blocks blocksIn(NSString* string, NSRange range, bool continues, bool endsText) {
    BlockMaker maker(range.location, continues);
    const NSUInteger end = NSMaxRange(range);
    bool isBehindReturn = false;
    std::u16string text;
    for (NSUInteger start = range.location; start < end; start += static_cast<NSUInteger>(text.size())) {
        text.resize(std::min(kStep, end - start));
        string->getCharacters_range(text.data(), {start, static_cast<NSUInteger>(text.size())});
        for (std::size_t i = 0; i < text.size(); ++i) {
            // A return waits for the line feed that may follow.
            if (std::exchange(isBehindReturn, false) && text[i] != '\n')
                maker.endParagraph(start + static_cast<NSUInteger>(i));
            i += plainUnits(std::u16string_view(text).substr(i));
            if (i == text.size()) break;
            isBehindReturn = text[i] == '\r';
            if (isParagraphEnd(text[i]) && !isBehindReturn)
                maker.endParagraph(start + static_cast<NSUInteger>(i) + 1);
        }
    }
    if (isBehindReturn) maker.endParagraph(end);
    if (maker.start() < end) maker.addUpTo(end);
    if (endsText && !maker.isInParagraph()) maker.addUpTo(end);
    return std::move(maker.blocks);
}

BlockList::Blocks firstBlocksIn(NSString* text, NSRange rest) {
    const bool continues = rest.location > 0 && !isParagraphEnd(text->characterAtIndex(rest.location - 1));
    const bool endsText = rest.length <= kStep;
    BlockList::Blocks blocks =
        blocksIn(text, {rest.location, std::min(kStep, rest.length)}, continues, endsText);
    if (!endsText) blocks.pop_back();  // whose paragraph may go on
    return blocks;
}

}  // namespace pelvor
