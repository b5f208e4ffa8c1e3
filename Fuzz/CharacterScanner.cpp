// SPDX-License-Identifier: Apache-2.0
// Random operations on a scanner whose buffer holds but a piece of the text, beside the same operations on
// the plain text.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "BaseLibrary.h"
#include "Foundation/NSCharacterSet.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"
#include "Scanning/OFCharacterScanner.h"

namespace pelvor {
namespace {

using Text = std::u16string;
using Token = std::optional<Text>;

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

class PieceScanner : public OFCharacterScanner, OFCharacterScanner::HiddenCreators {
    PELVOR_CLASS(PieceScanner, OFCharacterScanner);

  public:
    bool fetchMoreData() override {
        NSUInteger place = scanLocation();
        if (place >= text.size()) return false;
        // A buffer of exactly the piece's size, so that the address sanitizer sees its end.
        std::size_t count = std::min<std::size_t>(size, text.size() - place);
        auto* units = static_cast<unichar*>(std::malloc(count * sizeof(unichar)));
        text.copy(units, count, place);
        return fetchMoreDataFromCharacters_length_offset_freeWhenDone(units, static_cast<NSUInteger>(count),
                                                                      place, true);
    }
    void _rewindCharacterSource() override {}

    Text text;
    std::size_t size = 1;

  protected:
    PieceScanner() = default;
    ~PieceScanner() = default;
};

constexpr Library* kNeeded[] = {&baseLibrary};
constexpr Class* kClasses[] = {&PieceScanner::classRecord};
constinit Library pieceLibrary{"Pieces", kNeeded, kClasses, {}};
PELVOR_DEFINE_CLASS(PieceScanner, pieceLibrary) {}

Text folded(Text text) {
    for (char16_t& unit : text)
        if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + 32);
    return text;
}

// What the operations do to a text that lies there as a whole.
struct Model {
    Text text;
    std::size_t place = 0;
    std::vector<std::size_t> marks;

    char16_t peek() const { return place < text.size() ? text[place] : u'\0'; }
    bool goTo(std::size_t found) {
        place = std::min(found, text.size());
        return place < text.size();
    }
    Token token(const Text& delimiters, bool mayBeEmpty) {
        if (place >= text.size()) return std::nullopt;
        std::size_t start = place;
        goTo(text.find_first_of(delimiters, place));
        if (place == start && !mayBeEmpty) return std::nullopt;
        return text.substr(start, place - start);
    }
    std::uint32_t digits(std::size_t max, unsigned base) {
        std::uint32_t value = 0;
        for (; max > 0; --max, ++place) {
            std::size_t digit = Text(u"0123456789abcdef").find(folded(Text(1, peek())));
            if (digit >= base) break;
            value = value * base + static_cast<std::uint32_t>(digit);
        }
        return value;
    }
    Token line() {
        Token result = token(u"\r\n", false);
        if (peek() == u'\r') ++place;
        if (peek() == u'\n') ++place;
        return result;
    }
    Token count(std::size_t number) {
        if (number > text.size() - place) {
            place = text.size();
            return std::nullopt;
        }
        place += number;
        return text.substr(place - number, number);
    }
};

Token tokenOf(NSString* string) { return string ? Token(string->toUTF16()) : std::nullopt; }

struct Pair {
    PieceScanner* scanner;
    Model& model;

    void perform(unsigned operation, unsigned argument) {
        NSUInteger number = argument % 7;
        Text word = Text(u"ab,a12A\rb\n").substr(argument % 10, 1 + argument % 3);
        NSString* string = NSString::of(word);
        OFCharacterSet* set = OFCharacterSet::characterSetWithString(string);
        NSCharacterSet* platformSet = NSCharacterSet::characterSetWithCharactersInString(string);
        bool isNext = model.text.compare(model.place, word.size(), word) == 0;
        Text low = folded(model.text), lowWord = folded(word);
        bool isNextBlind = low.compare(model.place, word.size(), lowWord) == 0;
        switch (operation % 18) {
            case 0:
                require(scanner->peekCharacter() == model.peek(), "peek");
                break;
            case 1:
                require(scanner->readCharacter() == model.peek(), "read");
                model.place += model.place < model.text.size();
                break;
            case 2:
                if (model.marks.size() == 8) break;
                scanner->setRewindMark();
                model.marks.push_back(model.place);
                break;
            case 3:
                if (model.marks.empty()) break;
                scanner->rewindToMark();
                model.place = model.marks.back();
                model.marks.pop_back();
                break;
            case 4:
                scanner->discardRewindMark();
                if (!model.marks.empty()) model.marks.pop_back();
                break;
            case 5:
                number = argument % 25;
                require(scanner->scanUnsignedIntegerMaximumDigits(number) == model.digits(number, 10),
                        "decimal");
                break;
            case 6:
                require(scanner->scanHexadecimalNumberMaximumDigits(number) == model.digits(number, 16),
                        "hex");
                break;
            case 7:
                if (model.marks.size() == 8) break;
                require(scanner->scanString_peek(string, argument & 64) == isNext, "match");
                if (isNext && !(argument & 64)) model.place += word.size();
                break;
            case 8:
                if (model.marks.size() == 8) break;
                require(scanner->scanStringCaseInsensitive_peek(string, argument & 64) == isNextBlind,
                        "blind match");
                if (isNextBlind && !(argument & 64)) model.place += word.size();
                break;
            case 9:
                if (model.marks.size() == 8) break;
                require(scanner->scanUpToString(string) == model.goTo(model.text.find(word, model.place)),
                        "up to");
                break;
            case 10:
                if (model.marks.size() == 8) break;
                require(scanner->scanUpToStringCaseInsensitive(string) ==
                            model.goTo(low.find(lowWord, model.place)),
                        "up to, blind");
                break;
            case 11:
                require(
                    scanner->scanUpToCharacter(word[0]) == model.goTo(model.text.find(word[0], model.place)),
                    "up to character");
                break;
            case 12:
                require(scanner->scanUpToCharacterInSet(platformSet) ==
                            model.goTo(model.text.find_first_of(word, model.place)),
                        "up to set");
                break;
            case 13:
                require(tokenOf(scanner->readFullTokenWithDelimiterCharacter(word[0])) ==
                            model.token(word.substr(0, 1), true),
                        "token of character");
                break;
            case 14: {
                Token expected = model.token(word, false);
                if (expected && argument & 64) expected = folded(*expected);
                require(tokenOf(scanner->readFullTokenWithDelimiterOFCharacterSet_forceLowercase(
                            set, argument & 64)) == expected,
                        "token of set");
                break;
            }
            case 15:
                require(tokenOf(scanner->readLine()) == model.line(), "line");
                break;
            case 16:
                require(tokenOf(scanner->readCharacterCount(number)) == model.count(number), "count");
                break;
            default: {
                // It takes a mark of its own and another while it searches.
                if (model.marks.size() >= 7) break;
                std::size_t start = model.place;
                model.goTo(model.text.find(word, model.place));
                require(tokenOf(scanner->readFullTokenUpToString(string)) ==
                            model.text.substr(start, model.place - start),
                        "token up to string");
            }
        }
        require(scanner->scanLocation() == model.place, "another place");
    }
};

void run(const std::uint8_t* data, std::size_t size) {
    std::size_t scriptSize = std::min<std::size_t>(data[1] * std::size_t{2}, size - 2) & ~std::size_t{1};
    Model model;
    for (std::size_t i = 2 + scriptSize; i < size; ++i) {
        bool isPlain = data[i] < 0x80 && data[i] != 0;
        model.text += isPlain ? static_cast<char16_t>(data[i]) : static_cast<char16_t>(0x3000 + data[i]);
    }
    auto scanner = make<PieceScanner>();
    scanner->text = model.text;
    scanner->size = 1 + data[0] % 50;
    for (std::size_t i = 2; i < 2 + scriptSize; i += 2) {
        AutoreleasePool pool;
        Pair{scanner, model}.perform(data[i], data[i + 1]);
    }
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelvor::AutoreleasePool pool;
    if (size >= 2) pelvor::run(data, std::min<std::size_t>(size, 4000));
    return 0;
}
