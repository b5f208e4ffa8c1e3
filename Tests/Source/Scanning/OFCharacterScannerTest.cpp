// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFCharacterScanner.h"

#include <memory>

#include "BaseLibrary.h"
#include "FileScanner.h"
#include "Foundation/NSCharacterSet.h"
#include "Prelude.h"
#include "Private/UnitFinding.h"
#include "Scanning/OFStringScanner.h"
#include "Scanning/OFTrie.h"
#include "Shared/WideInstructions.h"
#include "Source/TextInPieces.h"

namespace {

// Brings one piece after the other and cannot go back. Of an empty piece it says without end that there is
// more.
class PieceScanner : public OFCharacterScanner, OFCharacterScanner::HiddenCreators {
    PELVOR_CLASS(PieceScanner, OFCharacterScanner);

  public:
    static Retained<PieceScanner> of(std::vector<std::u16string> pieces) {
        auto scanner = make<PieceScanner>();
        scanner->_pieces = std::move(pieces);
        return scanner;
    }
    bool fetchMoreData() override {
        if (_next == _pieces.size()) return false;
        std::u16string& piece = _pieces[_next];
        if (piece.empty()) return true;
        ++_next;
        return fetchMoreDataFromCharacters_length_offset_freeWhenDone(
            piece.data(), static_cast<NSUInteger>(piece.size()), scanLocation(), false);
    }

  private:
    std::vector<std::u16string> _pieces;
    std::size_t _next = 0;
};

PELVOR_DEFINE_CLASS(PieceScanner, baseLibrary) {}

// The text in steps of one, two, three and more bytes, and as one string.
template <class Check>
void forAllScanners(std::u16string text, Check check) {
    std::string bytes = NSString::of(text)->toUTF8();
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fmemopen(bytes.data(), bytes.size(), "r"),
                                                         &std::fclose);
    for (std::size_t size : {1, 2, 3, 7, 1000}) {
        SCOPED_TRACE(size);
        check(FileScanner::of(file.get(), size).get());
    }
    SCOPED_TRACE("string");
    check(OFStringScanner::initWithString(NSString::of(text)).get());
}

std::u16string textOf(NSString* string) { return string ? string->toUTF16() : u"(none)"; }

std::string misuseOf(const std::function<void()>& action) {
    std::string reason = reasonOf(OFCharacterConversionExceptionName, action);
    EXPECT_FALSE(reason.starts_with("raised ")) << reason;
    return reason;
}

constexpr char kForbiddenPlace[] =
    "You are only allowed to set the new scan location to be between the most recent rewind mark and EOF, or "
    "the current position and EOF if there are no rewind marks.";

// The fuzz target CharacterScanner compares random operations on plain text with a model; the tests are about
// what has to fail, about other text and about the operations that the target leaves out.

TEST(CharacterScanner, RefusesPlacesBeforeTheMarkAndMarksThatAreMissingOrTooMany) {
    forAllScanners(u"abcdef", [](OFCharacterScanner* scanner) {
        EXPECT_EQ(scanner->readCharacter(), u'a');
        scanner->setScanLocation(1);
        EXPECT_EQ(misuseOf([&] { scanner->setScanLocation(0); }), kForbiddenPlace);
        scanner->setRewindMark();
        EXPECT_EQ(misuseOf([&] { scanner->skipCharacters(-2); }), kForbiddenPlace) << "before the text";
        scanner->setScanLocation(5);
        scanner->skipCharacters(-2);
        EXPECT_EQ(scanner->peekCharacter(), u'd');
        scanner->rewindToMark();
        EXPECT_EQ(scanner->scanLocation(), 1u);
        EXPECT_EQ(misuseOf([&] { scanner->rewindToMark(); }), "Attempt to use nonexistent rewind mark");
        scanner->discardRewindMark();
        for (int i = 0; i < 8; ++i) scanner->setRewindMark();
        EXPECT_NE(misuseOf([&] { scanner->setRewindMark(); }), "nothing raised");
    });
}

TEST(CharacterScanner, StaysAsItWasWhenAnOperationNeedsOneMarkTooMany) {
    auto trie = OFTrie::initCaseSensitive(true);
    trie->addBucket_forString(make<OFTrieBucket>().autorelease(), u"12"_ns);
    while (!trie->index()) continue;
    double value;
    using Self = OFCharacterScanner;
    const struct {
        int marks;
        std::function<void(Self*)> read;
    } cases[] = {
        {8, [](Self* s) { s->scanString_peek(u"12"_ns, false); }},
        {8, [](Self* s) { s->scanStringCaseInsensitive_peek(u"12"_ns, true); }},
        {8, [](Self* s) { s->scanUpToString(u"1"_ns); }},
        {8, [&](Self* s) { s->scanDouble_maximumLength_exponentLength(&value, 9, 9); }},
        {8, [&](Self* s) { s->readLongestTrieElement(trie); }},
        {8, [](Self* s) { s->readFullTokenUpToString(u"e"_ns); }},
        {7, [](Self* s) { s->readFullTokenUpToString(u"ex"_ns); }},
    };
    for (const auto& entry : cases)
        forAllScanners(u"-12e7e", [&](Self* scanner) {
            scanner->readCharacter();
            for (int i = 0; i < entry.marks; ++i) scanner->setRewindMark();
            EXPECT_NE(misuseOf([&] { entry.read(scanner); }), "nothing raised");
            EXPECT_EQ(scanner->scanLocation(), 1u);
            for (int i = 0; i < entry.marks; ++i) scanner->rewindToMark();
            EXPECT_NE(misuseOf([&] { scanner->rewindToMark(); }), "nothing raised");
        });
}

TEST(CharacterScanner, StaysWhereARewindFailedToGo) {
    auto trie = OFTrie::initCaseSensitive(true);
    for (NSString* word : {u"a"_ns, u"abc"_ns})
        trie->addBucket_forString(make<OFTrieBucket>().autorelease(), word);
    const struct {
        const char* name;
        std::vector<std::u16string> pieces;
        std::function<void(OFCharacterScanner*)> read;
        NSUInteger place;
    } rows[] = {
        {"its own mark", {u"ab", u"cd"}, [](auto* s) { s->scanString_peek(u"abx"_ns, false); }, 0},
        {"an inner mark", {u"xxa", u"cd"}, [](auto* s) { s->readFullTokenUpToString(u"ab"_ns); }, 2},
        {"a place of its own", {u"ab", u"d"}, [&](auto* s) { s->readLongestTrieElement(trie); }, 1},
    };
    for (const auto& row : rows) {
        auto scanner = PieceScanner::of(row.pieces);
        EXPECT_EQ(misuseOf([&] { row.read(scanner); }), "Attempt to rewind a nonrewindable stream")
            << row.name;
        EXPECT_EQ(scanner->scanLocation(), row.place) << row.name;
        EXPECT_EQ(misuseOf([&] { scanner->rewindToMark(); }), "Attempt to use nonexistent rewind mark")
            << row.name;
    }
}

TEST(CharacterScanner, ReadsNothingFromASourceThatBringsNothing) {
    auto scanner = PieceScanner::of({u""});
    EXPECT_EQ(scanner->readCharacter(), 0);
    EXPECT_EQ(scanner->readCharacterCount(1), nullptr);
    EXPECT_EQ(scanner->readLine(), nullptr);
    EXPECT_FALSE(scanner->scanUpToCharacter(u'a'));
}

TEST(CharacterScanner, RefusesPlacesOutsideAString) {
    auto scanner = OFStringScanner::initWithString(u"abc"_ns);
    scanner->setScanLocation(3);
    auto value = [&](NSString* key) { return scanner->debugDictionary()->objectForKey(key); };
    EXPECT_EQ(shown(value(u"inputScanLocation"_ns), value(u"inputStringPosition"_ns)), "3 0");
    EXPECT_EQ(misuseOf([&] { scanner->setScanLocation(4); }), "Attempt to rewind a nonrewindable stream");
    EXPECT_EQ(scanner->scanLocation(), 4u);
    EXPECT_EQ(scanner->readCharacter(), 0);
    EXPECT_EQ(OFStringScanner::initWithString(nullptr)->readLine(), nullptr);
}

TEST(CharacterScanner, ReadsNumbers) {
    struct {
        const char* name;
        std::u16string text;
        NSUInteger exponentLength;
        double value;  // 7 stays where there is no number
        char16_t next;
    } const rows[] = {
        {"all parts", u"-12.50e2x", 3, -1250, u'x'},
        {"negative", u"-0.5", 3, -0.5, 0},
        {"e without exponent", u"1e", 3, 1, u'e'},
        {"e and sign without exponent", u"1e+x", 3, 1, u'e'},
        {"point alone", u".", 3, 7, u'.'},
        {"sign alone", u"+", 3, 7, u'+'},
        {"second point", u"1.2.3", 3, 1.2, u'.'},
        {"exponent cut short", u"5e12", 1, 50, u'2'},
        {"too large", u"2e999", 3, INFINITY, 0},
        {"exponent beyond 32 bits", u"5e4294967297", 10, INFINITY, 0},
        {"exponent beyond 64 bits", u"-5e99999999999999999999", 20, -INFINITY, 0},
        {"small beyond 32 bits", u"5e-4294967297", 10, 0, 0},
        {"nothing of any size", u"0e4294967297", 10, 0, 0},
        {"too many digits, and smaller", std::u16string(400, u'9') + u"e-99999", 5, 0, 0},
    };
    for (const auto& row : rows)
        forAllScanners(row.text, [&](OFCharacterScanner* scanner) {
            double value = 7;
            bool isNumber = scanner->scanDouble_maximumLength_exponentLength(&value, 500, row.exponentLength);
            EXPECT_EQ(isNumber, row.value != 7) << row.name;
            EXPECT_DOUBLE_EQ(value, row.value) << row.name;
            EXPECT_EQ(scanner->peekCharacter(), row.next) << row.name;
        });
    const std::u16string text = u"-12345+x1aFgZ4294967297 305 12345678901234567890 and sixteen units";
    forAllScanners(text, [](OFCharacterScanner* scanner) {
        EXPECT_EQ(scanner->scanIntegerMaximumDigits(3), -123);
        EXPECT_EQ(scanner->scanUnsignedIntegerMaximumDigits(9), 45u);
        EXPECT_EQ(scanner->scanIntegerMaximumDigits(3), 0) << "the sign stays consumed";
        EXPECT_EQ(scanner->readCharacter(), u'x');
        EXPECT_EQ(scanner->scanHexadecimalNumberMaximumDigits(8), 0x1AFu);
        scanner->skipCharacters(2);
        EXPECT_EQ(scanner->scanUnsignedIntegerMaximumDigits(20), 1u) << "wraps";
        EXPECT_EQ(scanner->scanIntegerMaximumDigits((scanner->readCharacter(), 20)), 305);
        EXPECT_EQ(scanner->scanIntegerMaximumDigits((scanner->readCharacter(), 3)), 123);
        EXPECT_EQ(scanner->scanUnsignedIntegerMaximumDigits(30), 4191226578u) << "wraps";
    });
}

TEST(CharacterScanner, GoesToStringsBlindToCaseAndToMembers) {
    forAllScanners(u"abababac \xC4pfel", [](OFCharacterScanner* scanner) {
        auto expectAt = [=](NSUInteger location, bool isFound) {
            EXPECT_TRUE(isFound && scanner->scanLocation() == location) << scanner->scanLocation();
        };
        expectAt(0, scanner->scanString_peek(inPieces(u""), false));
        expectAt(4, scanner->scanUpToString(inPieces(u"abac")));
        EXPECT_FALSE(scanner->hasScannedNonASCII());
        expectAt(9, scanner->scanUpToStringCaseInsensitive(inPieces(u"\xE4PF")));
        expectAt(12, scanner->scanUpToCharacterInSet(
                         NSCharacterSet::characterSetWithCharactersInString(u"le"_ns)));
        EXPECT_TRUE(scanner->hasScannedNonASCII());
        expectAt(14, !scanner->scanUpToString(u"elf"_ns));
    });
}

TEST(CharacterScanner, ReadsTokensInSmallLettersTokensOfASetAndFragments) {
    forAllScanners(u"One,TWO \xC9\rx\r\n", [](OFCharacterScanner* scanner) {
        auto* letters = NSCharacterSet::letterCharacterSet();
        EXPECT_EQ(textOf(scanner->readFullTokenWithDelimiterCharacter_forceLowercase(u',', false)), u"One");
        scanner->skipCharacters(1);
        EXPECT_EQ(textOf(scanner->readFullTokenWithDelimiterCharacter_forceLowercase(u' ', true)), u"two");
        EXPECT_EQ(scanner->readFullTokenOfSet(letters), nullptr);
        scanner->skipCharacters(1);
        OFCharacterSet* ends = OFCharacterSet::characterSetWithString(u"\r"_ns);
        EXPECT_EQ(textOf(scanner->readFullTokenWithDelimiterOFCharacterSet_forceLowercase(ends, true)),
                  u"\xE9");
        EXPECT_EQ(scanner->readLine(), nullptr);
        EXPECT_EQ(textOf(scanner->readFullTokenOfSet(letters)), u"x");
        EXPECT_EQ(scanner->readLine(), nullptr);
        EXPECT_EQ(scanner->readFullTokenWithDelimiterCharacter(u','), nullptr);
    });
    char bytes[] = "abcd";
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fmemopen(bytes, 4, "r"), &std::fclose);
    auto pieces = FileScanner::of(file.get(), 3);
    EXPECT_EQ(textOf(pieces->readTokenFragmentWithDelimiterCharacter(u'x')), u"abc");
    EXPECT_EQ(textOf(pieces->readTokenFragmentWithDelimiters(NSCharacterSet::characterSet())), u"d");
}

TEST(CharacterScanner, FindsMembersTheSameWayWithAndWithoutWideInstructions) {
    OFCharacterSet* set = OFCharacterSet::characterSetWithString(u"\x7F;\x3B1"_ns);
    for (std::size_t length : {0, 1, 15, 16, 31, 80, 200})
        for (unichar fill : {u'a', u'\x7E', u'\xFFFF', u'\x3B0'})
            for (std::size_t place = 0; place <= length; ++place) {
                std::u16string text(length, fill);
                if (place < length) text[place] = u"\x7F;\x3B1"[place % 3];
                ASSERT_EQ(findMember(text, set->bitmapRep()), place);
                PlainInstructionsScope plain;
                ASSERT_EQ(findMember(text, set->bitmapRep()), place);
            }
}

TEST(CharacterScanner, ReadsTrieElements) {
    auto trie = OFTrie::initCaseSensitive(true);
    std::vector<Retained<OFTrieBucket>> buckets;
    for (NSString* word : {u"in"_ns, u"into"_ns, u"intone"_ns, u"aab"_ns}) {
        buckets.push_back(make<OFTrieBucket>());
        trie->addBucket_forString(buckets.back(), word);
    }
    OFCharacterSet* space = OFCharacterSet::whitespaceOFCharacterSet();
    forAllScanners(u"intonation in, aaab", [&](OFCharacterScanner* scanner) {
        EXPECT_EQ(scanner->readLongestTrieElement_delimiterOFCharacterSet(trie, space), nullptr);
        EXPECT_EQ(scanner->scanLocation(), 0u);
        scanner->setRewindMark();
        EXPECT_EQ(scanner->readShortestTrieElement(trie), buckets[0]);
        EXPECT_EQ(scanner->scanLocation(), 1u) << "the unit that led there is not consumed";
        scanner->rewindToMark();
        EXPECT_EQ(scanner->readLongestTrieElement(trie), buckets[1]);
        EXPECT_EQ(scanner->scanLocation(), 4u);
        EXPECT_TRUE(scanner->scanUpToString(u"aaab"_ns));
        EXPECT_EQ(scanner->readShortestTrieElement(trie), nullptr);
        EXPECT_EQ(scanner->scanLocation(), 16u) << "what matched of the remainder \"ab\" stays consumed";
    });
}

}  // namespace
