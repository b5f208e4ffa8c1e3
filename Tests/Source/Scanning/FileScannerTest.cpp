// SPDX-License-Identifier: Apache-2.0
// A scanner that streams from a file does what the scanner over the whole string does.
#include "FileScanner.h"

#include <memory>

#include "Foundation/NSCharacterSet.h"
#include "Prelude.h"
#include "Scanning/OFStringScanner.h"
#include "Scanning/OFTrie.h"

namespace pelvor {
namespace {

// What an operation answers, as text.
using Answer = std::function<std::string(OFCharacterScanner*)>;

std::string textOf(NSString* string) { return string ? '"' + string->toUTF8() + '"' : "none"; }

OFTrie* wordTrie(bool isCaseSensitive) {
    auto* trie = OFTrie::initCaseSensitive(isCaseSensitive).autorelease();
    for (NSString* word : {u"in"_ns, u"into"_ns, u"intone"_ns, u"aab"_ns, u"\xC4pfel"_ns}) {
        auto bucket = make<OFTrieBucket>();
        trie->addBucket_forString(bucket, word);
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
    auto* ends = OFCharacterSet::characterSetWithString(u",\r\n"_ns);
    auto* commas = NSCharacterSet::characterSetWithCharactersInString(u",;"_ns);
    auto *letters = NSCharacterSet::letterCharacterSet(),
         *digits = NSCharacterSet::decimalDigitCharacterSet();
    OFTrie *exact = wordTrie(true), *blind = wordTrie(false);
    auto number = [](auto value) { return std::to_string(value); };
    auto within = [=](S scanner, NSUInteger count) {
        return std::min(count, length - scanner->scanLocation());
    };
    auto decimal = [=](S scanner, NSUInteger length, NSUInteger exponent) {
        double value = 7;
        bool isRead = scanner->scanDouble_maximumLength_exponentLength(&value, length, exponent);
        return number(isRead) + ' ' + number(value);
    };
    return {
        {"peek", [=](S s) { return number(s->peekCharacter()); }},
        {"skipPeeked",
         [=](S s) { return s->peekCharacter() ? (s->skipPeekedCharacter(), "skipped") : "end"; }},
        {"read", [=](S s) { return number(s->readCharacter()); }},
        {"nonASCII",
         [=](S s) { return textOf(s->readCharacterCount(11)) + number(s->hasScannedNonASCII()); }},
        {"skip",
         [=](S s) {
             return s->skipCharacters(static_cast<NSInteger>(within(s, 9))), number(s->peekCharacter());
         }},
        {"skipBack",
         [=](S s) {
             s->setRewindMark();
             NSUInteger start = s->scanLocation(), count = within(s, 5);
             s->readCharacterCount(count);
             s->skipCharacters(-static_cast<NSInteger>(count / 2));
             s->discardRewindMark();
             return number(s->scanLocation() - start) + ' ' + number(s->readCharacter());
         }},
        {"setLocation",
         [=](S s) {
             return s->setScanLocation(s->scanLocation() + within(s, 20)), number(s->peekCharacter());
         }},
        {"unsigned", [=](S s) { return number(s->scanUnsignedIntegerMaximumDigits(4)); }},
        {"integer", [=](S s) { return number(s->scanIntegerMaximumDigits(20)); }},
        {"hexadecimal", [=](S s) { return number(s->scanHexadecimalNumberMaximumDigits(7)); }},
        {"double", [=](S s) { return decimal(s, 30, 3); }},
        {"shortDouble", [=](S s) { return decimal(s, 4, 1); }},
        {"match", [=](S s) { return number(s->scanString_peek(u"intonation"_ns, false)); }},
        {"matchPeek", [=](S s) { return number(s->scanString_peek(u"in"_ns, true)); }},
        {"matchBlind", [=](S s) { return number(s->scanStringCaseInsensitive_peek(u"InTo"_ns, false)); }},
        {"matchBlindPeek",
         [=](S s) { return number(s->scanStringCaseInsensitive_peek(u"\xE4PF"_ns, true)); }},
        {"upToString", [=](S s) { return number(s->scanUpToString(u"aab,"_ns)); }},
        {"upToAbsent", [=](S s) { return number(s->scanUpToString(u"intones"_ns)); }},
        {"upToBlind", [=](S s) { return number(s->scanUpToStringCaseInsensitive(u"\xE4PFEL"_ns)); }},
        {"upToCharacter", [=](S s) { return number(s->scanUpToCharacter(u'\xDE00')); }},
        {"upToSet", [=](S s) { return number(s->scanUpToCharacterInSet(commas)); }},
        {"fragment",
         [=](S s) { return joined(s, [=] { return s->readTokenFragmentWithDelimiterCharacter(u','); }); }},
        {"fragmentOFSet",
         [=](S s) {
             return joined(s, [=] { return s->readTokenFragmentWithDelimiterOFCharacterSet(ends); });
         }},
        {"fragmentSet",
         [=](S s) { return joined(s, [=] { return s->readTokenFragmentWithDelimiters(commas); }); }},
        {"token", [=](S s) { return textOf(s->readFullTokenWithDelimiterCharacter(u',')); }},
        {"tokenLow",
         [=](S s) { return textOf(s->readFullTokenWithDelimiterCharacter_forceLowercase(u';', true)); }},
        {"tokenOFSet", [=](S s) { return textOf(s->readFullTokenWithDelimiterOFCharacterSet(ends)); }},
        {"tokenOFSetLow",
         [=](S s) { return textOf(s->readFullTokenWithDelimiterOFCharacterSet_forceLowercase(ends, true)); }},
        {"tokenSet",
         [=](S s) { return textOf(s->readFullTokenWithDelimiters_forceLowercase(commas, true)); }},
        {"tokenOfSet",
         [=](S s) { return textOf(s->readFullTokenOfSet(letters)) + textOf(s->readFullTokenOfSet(digits)); }},
        {"tokenUpToString", [=](S s) { return textOf(s->readFullTokenUpToString(u"aab"_ns)); }},
        {"line", [=](S s) { return textOf(s->readLine()) + textOf(s->readLine()); }},
        {"count", [=](S s) { return textOf(s->readCharacterCount(25)); }},
        {"longest", [=](S s) { return elementOf(s->readLongestTrieElement(exact), exact); }},
        {"longestDelimited",
         [=](S s) {
             return elementOf(s->readLongestTrieElement_delimiterOFCharacterSet(blind, ends), blind);
         }},
        {"shortest", [=](S s) { return elementOf(s->readShortestTrieElement(exact), exact); }},
        {"debug",
         [=](S s) {
             auto* d = (s->readCharacter(), s->debugDictionary());
             auto value = [=](NSString* key) {
                 return std::stoi(cast<NSString>(d->objectForKey(key))->toUTF8());
             };
             return number(value(u"inputStringPosition"_ns) + value(u"inputScanLocation"_ns));
         }},
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
    NSString* text = NSString::of(
        u"intonation,-12.50e2x;into\r\n\n0x1aFfG4294967297,One,,TWO \xC9\U0001F600\n"
        u"aaab,aab \xC4pfel\r\xE4PFEL intone 1e+5;+7 \x4E2D\x6587\U0001F600 in");
    std::string bytes = text->toUTF8();
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
    ASSERT_TRUE(file);
    ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file.get()), bytes.size());
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
}  // namespace pelvor
