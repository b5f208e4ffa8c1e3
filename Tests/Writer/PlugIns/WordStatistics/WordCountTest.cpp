// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/WordStatistics/WordCount.h"

#include "Foundation/NSCharacterSet.h"
#include "Prelude.h"

namespace {

WordCount counted(std::initializer_list<std::u16string_view> pieces) {
    WordCount count;
    for (std::u16string_view piece : pieces)
        count.take(piece, NSCharacterSet::letterCharacterSet(),
                   NSCharacterSet::characterSetWithCharactersInString(u".!?"_ns));
    return count;
}

TEST(WordCountTest, CountsWordsLettersAndSentencesOverPieces) {
    const WordCount count = counted({u"the cat. the", u" dog! “really", u"?” 3.5 ...", u"12. 34! \n"});
    EXPECT_EQ(shown(count.words, count.letters, count.sentences, count.timesOfWord.size()), "5 18 3 4");
    EXPECT_EQ(count.longest, u"really");
}

TEST(WordCountTest, TellsFrequentWordsOfFourLettersOrMore) {
    const WordCount count = counted({u"and and and word zeal zeal over word some"});
    EXPECT_THAT(count.mostFrequent(3), ElementsAre(u"word", u"zeal", u"over"));
    EXPECT_EQ(count.mostFrequent(50).size(), 4u);
}

}  // namespace
