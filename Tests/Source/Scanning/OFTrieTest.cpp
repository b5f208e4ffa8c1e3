// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFTrie.h"

#include "Prelude.h"
#include "Scanning/OFStringScanner.h"
#include "Scanning/OFTrieEnumerator.h"

namespace {

OFTrieBucket* add(OFTrie* trie, std::u16string_view string) {
    auto* bucket = make<OFTrieBucket>().autorelease();
    trie->addBucket_forString(bucket, NSString::of(string));
    return bucket;
}

TEST(OFTrie, HangsBucketsWhereTheirStringsPart) {
    auto trie = OFTrie::initCaseSensitive(true);
    EXPECT_EQ(trie->bucketForString(u"cat"_ns), nullptr);
    OFTrieBucket *cat = add(trie, u"cat"), *car = add(trie, u"car");
    ASSERT_EQ(trie->headNode()->childCount(), 1u);
    OFTrieNode* node = trie->headNode()->childForCharacter(u'c').node->childForCharacter(u'a').node;
    ASSERT_EQ(node->childCount(), 2u);
    EXPECT_EQ(node->childAtIndex(0), car);
    EXPECT_EQ(node->childAtIndex(1), cat);
    EXPECT_EQ(cat->lowerCharacters()[0], 0);
    OFTrieBucket* dogma = add(trie, u"dogma");
    add(trie, u"dot");
    for (const unichar* rest : {dogma->lowerCharacters(), dogma->upperCharacters()})
        EXPECT_EQ(std::u16string_view(rest), u"ma");
    OFTrieBucket* ca = add(trie, u"ca");
    EXPECT_EQ(node->endMarker(), ca);
    OFTrieBucket* other = add(trie, u"cat");
    EXPECT_EQ(trie->bucketForString(u"cat"_ns), other) << "the second one replaces the first";
    EXPECT_EQ(trie->bucketForString(u"CAT"_ns), nullptr);
    auto* entries = cast<NSDictionary>(send<id>(node, "debugDictionary"_sel));
    EXPECT_EQ(entries->count(), 3u);
    EXPECT_EQ(entries->objectForKey(u"2. 't'"_ns), other);
    node->addChild_withCharacter(OFTrieNode::init().autorelease(), 0);
    OFTrieBucket* last = add(trie, u"ca");
    EXPECT_EQ(node->endMarker(), last) << "not hung below the node that was under 0";
}

TEST(OFTrie, FindsBothFormsWhereItDoesNotTellThemApart) {
    auto trie = OFTrie::initCaseSensitive(false);
    OFTrieBucket *cat = add(trie, u"Cat"), *street = add(trie, u"Stra\u00DFe");
    for (NSString* text : {u"CAT"_ns, u"cat"_ns, u"cAt"_ns}) EXPECT_EQ(trie->bucketForString(text), cat);
    EXPECT_EQ(trie->bucketForString(u"STRA\u00DFE"_ns), street) << "forms of one length";
    auto* entries = cat->debugDictionary();
    EXPECT_TRUE(cast<NSString>(entries->objectForKey(u"upperCharacters"_ns))->isEqualToString(u"AT"_ns));
    OFTrieEnumerator* walk = trie->objectEnumerator();
    EXPECT_EQ(walk->nextObject(), cat);
    EXPECT_EQ(walk->nextObject(), street);
    EXPECT_EQ(walk->nextObject(), nullptr);
}

TEST(OFTrie, SurvivesWordsOfAMillionUnits) {
    auto trie = OFTrie::initCaseSensitive(true);
    std::u16string word(1000000, u'a');
    OFTrieBucket* shorter = add(trie, word);
    OFTrieBucket* longer = add(trie, word + u"a");
    EXPECT_EQ(trie->bucketForString(NSString::of(word)), shorter);
    auto scanner = OFStringScanner::initWithString(NSString::of(word + u"ab"));
    scanner->setRewindMark();
    for (int i = 0; i < 100; ++i) {
        scanner->setScanLocation(999990);
        EXPECT_EQ(scanner->readLongestTrieElement(trie), nullptr) << "gets its index meanwhile";
    }
    scanner->rewindToMark();
    EXPECT_EQ(scanner->readLongestTrieElement(trie), longer);
    EXPECT_EQ(scanner->readCharacter(), u'b');
}

}  // namespace
