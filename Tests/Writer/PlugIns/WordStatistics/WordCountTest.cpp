// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/WordStatistics/WordCount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

using testing::ElementsAre;

class WordCountTest : public testing::Test {
  protected:
    WordCount count(std::u16string_view text) {
        return countWords(text, NSCharacterSet::letterCharacterSet(),
                          NSCharacterSet::characterSetWithCharactersInString(u".!?"_ns));
    }
    AutoreleasePool pool;
};

TEST_F(WordCountTest, CountsWordsLettersAndSentences) {
    const WordCount counted = count(u"the cat. the dog! “really?” 3.5 ...");
    EXPECT_EQ(counted.words, 5u);
    EXPECT_EQ(counted.letters, 18u);
    EXPECT_EQ(counted.sentences, 3u);
    EXPECT_EQ(counted.longest, u"really");
    EXPECT_EQ(counted.timesOfWord.size(), 4u);
}

TEST_F(WordCountTest, TellsFrequentWordsOfFourLettersOrMore) {
    const WordCount counted = count(u"and and and word zeal zeal over word some");
    EXPECT_THAT(counted.mostFrequent(3), ElementsAre(u"word", u"zeal", u"over"));
    EXPECT_EQ(counted.mostFrequent(50).size(), 4u);
}

TEST_F(WordCountTest, FindsNothingWithoutLetters) {
    const WordCount counted = count(u"12. 34! \n");
    EXPECT_EQ(counted.words + counted.sentences, 0u);
    EXPECT_TRUE(counted.mostFrequent(5).empty());
}

}  // namespace
}  // namespace pelvor
