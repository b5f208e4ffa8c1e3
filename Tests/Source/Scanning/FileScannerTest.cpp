// SPDX-License-Identifier: Apache-2.0
// A scanner that streams from a file does what the scanner over the whole string does. All strings that
// operations are given stand in no one piece.
#include "FileScanner.h"

#include <memory>

#include "Foundation/NSCharacterSet.h"
#include "Prelude.h"
#include "Scanning/OFStringScanner.h"
#include "Scanning/OFTrie.h"
#include "Scanning/OFTrieEnumerator.h"
#include "Source/TextInPieces.h"

namespace {

// What an operation answers, as text.
using Answer = std::function<std::string(OFCharacterScanner*)>;

std::string textOf(NSString* string) { return string ? '"' + string->toUTF8() + '"' : "none"; }

OFTrie* wordTrie(bool isCaseSensitive) {
    auto* trie = OFTrie::initCaseSensitive(isCaseSensitive).autorelease();
    for (auto word : {u"in", u"into", u"intone", u"aab", u"\xC4pfel"}) {
        auto bucket = make<OFTrieBucket>();
        trie->addBucket_forString(bucket, inPieces(word));
        EXPECT_EQ(trie->bucketForString(inPieces(word)), bucket);
    }
    return trie;
}

std::string elementOf(OFTrieBucket* bucket, OFTrie* trie) {
    OFTrieEnumerator* buckets = trie->objectEnumerator();
    for (int i = 0;; ++i)
        if (id other = buckets->nextObject(); other == bucket) return bucket ? std::to_string(i) : "none";
}

// Fragments end where the buffer does: until nothing comes, or one that leaves the scanner where it was.
std::string joined(OFCharacterScanner* scanner, const std::function<NSString*()>& read) {
    std::u16string all;
    for (int i = 0; i < 400; ++i) {
        NSString* piece = read();
        if (!piece || !piece->length()) break;
        all += piece->toUTF16();
    }
    return textOf(NSString::of(all)) + std::to_string(scanner->peekCharacter());
}

std::vector<std::pair<const char*, Answer>> operations(NSUInteger length) {
    using S = OFCharacterScanner*;
    auto* ends = OFCharacterSet::characterSetWithString(inPieces(u",\r\n"));
    auto* commas = NSCharacterSet::characterSetWithCharactersInString(inPieces(u",;"));
    auto *letters = NSCharacterSet::letterCharacterSet(),
         *digits = NSCharacterSet::decimalDigitCharacterSet();
    OFTrie *exact = wordTrie(true), *blind = wordTrie(false);
    auto number = [](auto read) { return Answer([=](S s) { return std::to_string(read(s)); }); };
    auto text = [](auto read) { return Answer([=](S s) { return textOf(read(s)); }); };
    auto fragments = [](auto read) {
        return Answer([=](S s) { return joined(s, [=] { return read(s); }); });
    };
    auto element = [](OFTrie* trie, auto read) {
        return Answer([=](S s) { return elementOf(read(s), trie); });
    };
    auto decimal = [](NSUInteger length, NSUInteger exponent) {
        return Answer([=](S s) {
            double value = 7;
            bool isRead = s->scanDouble_maximumLength_exponentLength(&value, length, exponent);
            return std::to_string(isRead) + ' ' + std::to_string(value);
        });
    };
    auto within = [=](S s, NSUInteger count) { return std::min(count, length - s->scanLocation()); };
    return {
        {"peek", number([](S s) { return s->peekCharacter(); })},
        {"skipPeeked", number([](S s) { return s->peekCharacter() && (s->skipPeekedCharacter(), true); })},
        {"read", number([](S s) { return s->readCharacter(); })},
        {"nonASCII", number([](S s) { return s->readCharacterCount(11) ? s->hasScannedNonASCII() : 7; })},
        {"skip", number([=](S s) {
             return s->skipCharacters(static_cast<NSInteger>(within(s, 9))), s->peekCharacter();
         })},
        {"skipBack", number([=](S s) {
             s->setRewindMark();
             NSUInteger start = s->scanLocation(), count = within(s, 5);
             s->readCharacterCount(count);
             s->skipCharacters(-static_cast<NSInteger>(count / 2));
             s->discardRewindMark();
             return (s->scanLocation() - start) * 0x10000 + s->readCharacter();
         })},
        {"setLocation", number([=](S s) {
             return s->setScanLocation(s->scanLocation() + within(s, 20)), s->peekCharacter();
         })},
        {"unsigned", number([](S s) { return s->scanUnsignedIntegerMaximumDigits(4); })},
        {"integer", number([](S s) { return s->scanIntegerMaximumDigits(20); })},
        {"hexadecimal", number([](S s) { return s->scanHexadecimalNumberMaximumDigits(7); })},
        {"double", decimal(30, 3)},
        {"shortDouble", decimal(4, 1)},
        {"match", number([](S s) { return s->scanString_peek(inPieces(u"intonation"), false); })},
        {"matchPeek", number([](S s) { return s->scanString_peek(inPieces(u"in"), true); })},
        {"matchBlind",
         number([](S s) { return s->scanStringCaseInsensitive_peek(inPieces(u"InTo"), false); })},
        {"matchBlindPeek",
         number([](S s) { return s->scanStringCaseInsensitive_peek(inPieces(u"\xE4PF"), true); })},
        {"upToString", number([](S s) { return s->scanUpToString(inPieces(u"aab,")); })},
        {"upToAbsent", number([](S s) { return s->scanUpToString(inPieces(u"intones")); })},
        {"upToBlind", number([](S s) { return s->scanUpToStringCaseInsensitive(inPieces(u"\xE4PFEL")); })},
        {"upToCharacter", number([](S s) { return s->scanUpToCharacter(u'\xDE00'); })},
        {"upToSet", number([=](S s) { return s->scanUpToCharacterInSet(commas); })},
        {"fragment", fragments([](S s) { return s->readTokenFragmentWithDelimiterCharacter(u','); })},
        {"fragmentOFSet",
         fragments([=](S s) { return s->readTokenFragmentWithDelimiterOFCharacterSet(ends); })},
        {"fragmentSet", fragments([=](S s) { return s->readTokenFragmentWithDelimiters(commas); })},
        {"token", text([](S s) { return s->readFullTokenWithDelimiterCharacter(u','); })},
        {"tokenLow",
         text([](S s) { return s->readFullTokenWithDelimiterCharacter_forceLowercase(u';', true); })},
        {"tokenOFSet", text([=](S s) { return s->readFullTokenWithDelimiterOFCharacterSet(ends); })},
        {"tokenOFSetLow",
         text([=](S s) { return s->readFullTokenWithDelimiterOFCharacterSet_forceLowercase(ends, true); })},
        {"tokenSet", text([=](S s) { return s->readFullTokenWithDelimiters_forceLowercase(commas, true); })},
        {"tokenOfSet", text([=](S s) { return s->readFullTokenOfSet(letters); })},
        {"tokenOfDigits", text([=](S s) { return s->readFullTokenOfSet(digits); })},
        {"tokenUpToString", text([](S s) { return s->readFullTokenUpToString(inPieces(u"aab")); })},
        {"line", text([](S s) { return s->readLine(); })},
        {"secondLine", text([](S s) { return s->readLine(), s->readLine(); })},
        {"count", text([](S s) { return s->readCharacterCount(25); })},
        {"longest", element(exact, [=](S s) { return s->readLongestTrieElement(exact); })},
        {"longestDelimited",
         element(blind, [=](S s) { return s->readLongestTrieElement_delimiterOFCharacterSet(blind, ends); })},
        {"shortest", element(exact, [=](S s) { return s->readShortestTrieElement(exact); })},
        {"debug", number([](S s) {
             auto* d = (s->readCharacter(), s->debugDictionary());
             auto value = [=](NSString* key) { return cast<NSString>(d->objectForKey(key))->intValue(); };
             return value(u"inputStringPosition"_ns) + value(u"inputScanLocation"_ns);
         })},
    };
}

// The answer and the place after it, which are the same again after a mark has been set and gone back to.
std::string outcome(OFCharacterScanner* scanner, NSUInteger start, const Answer& answer) {
    auto once = [&] {
        std::string result = answer(scanner);
        return result + " at " + std::to_string(scanner->scanLocation());
    };
    // Read rather than gone to: whether a unit above 126 has been met depends on what has been in the buffer.
    scanner->readCharacterCount(start);
    scanner->setRewindMark();
    std::string result = once();
    scanner->rewindToMark();
    EXPECT_EQ(scanner->scanLocation(), start);
    EXPECT_EQ(once(), result);
    return result;
}

TEST(FileScanner, DoesWhatAStringScannerDoesWhateverItsSteps) {
    NSString* text = inPieces(
        u"intonation,-12.50e2x;into\r\n\n0x1aFfG4294967297,One,,TWO \xC9\U0001F600\n"
        u"aaab,aab \xC4pfel\r\xE4PFEL intone 1e+5;+7 \x4E2D\x6587\U0001F600 in");
    std::string bytes = text->toUTF8();
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fmemopen(bytes.data(), bytes.size(), "r"),
                                                         &std::fclose);
    for (auto& [name, answer] : operations(text->length()))
        for (NSUInteger start = 0; start <= text->length(); ++start) {
            AutoreleasePool inner;
            std::string expected = outcome(OFStringScanner::initWithString(text).get(), start, answer);
            for (std::size_t step : {1, 2, 3, 7, 64, 4096})
                ASSERT_EQ(outcome(FileScanner::of(file.get(), step).get(), start, answer), expected)
                    << name << " from " << start << " in steps of " << step;
        }
}

}  // namespace
