// SPDX-License-Identifier: Apache-2.0
// A trie beside an ordered map of the same words: look-ups, order, and the longest word at every place.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "Runtime/AutoreleasePool.h"
#include "Scanning/OFStringScanner.h"
#include "Scanning/OFTrie.h"
#include "Scanning/OFTrieEnumerator.h"

namespace pelvor {
namespace {

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

std::u16string lowered(std::u16string text) {
    for (char16_t& unit : text)
        if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + 32);
    return text;
}

using Words = std::map<std::u16string, OFTrieBucket*>;

void checkReads(OFTrie* trie, const Words& words, const std::u16string& text, bool isFolding) {
    std::u16string folded = isFolding ? lowered(text) : text;
    for (std::size_t place = 0; place < text.size(); ++place) {
        auto scanner = OFStringScanner::initWithString(NSString::of(text.substr(place)));
        std::size_t longest = 0;
        OFTrieBucket* expected = nullptr;
        for (std::size_t length = 1; place + length <= text.size(); ++length) {
            auto found = words.find(folded.substr(place, length));
            if (found == words.end()) continue;
            longest = length;
            expected = found->second;
        }
        require(scanner->readLongestTrieElement(trie) == expected, "another longest word");
        require(scanner->scanLocation() == longest, "another place after the longest word");
    }
}

void run(const std::uint8_t* data, std::size_t size) {
    bool isFolding = data[0] & 1;
    std::vector<std::u16string> parts(1);
    for (std::size_t i = 1; i < size; ++i) {
        // Few letters, so that words share much; 0 parts them.
        if (data[i] % 8 == 0)
            parts.emplace_back();
        else
            parts.back() += u"abcABC\x2019"[data[i] % 8 - 1];
    }
    std::u16string text = parts.back().substr(0, 40);
    parts.pop_back();
    auto trie = OFTrie::initCaseSensitive(!isFolding);
    Words words;
    for (auto& word : parts) {
        auto bucket = make<OFTrieBucket>();
        trie->addBucket_forString(bucket, NSString::of(word));
        words[isFolding ? lowered(word) : word] = bucket;
    }
    for (auto& [word, bucket] : words) {
        require(trie->bucketForString(NSString::of(word)) == bucket, "a word is not found");
        bool hasLonger = words.contains(word + u"a");
        require((trie->bucketForString(NSString::of(word + u"a")) != nullptr) == hasLonger,
                "a word too many");
    }
    OFTrieEnumerator* walk = trie->objectEnumerator();
    for (auto& [word, bucket] : words) require(walk->nextObject() == bucket, "another order");
    require(!walk->nextObject(), "more buckets than words");
    // Again and again, so that it gets its index; then another word, and it loses it.
    for (int i = 0; i < 3; ++i) checkReads(trie, words, text, isFolding);
    auto bucket = make<OFTrieBucket>();
    trie->addBucket_forString(bucket, NSString::of(text.substr(0, text.size() / 2)));
    words[(isFolding ? lowered(text) : text).substr(0, text.size() / 2)] = bucket;
    checkReads(trie, words, text, isFolding);
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelvor::AutoreleasePool pool;
    if (size) pelvor::run(data, std::min<std::size_t>(size, 600));
    return 0;
}
