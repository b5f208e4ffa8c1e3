// SPDX-License-Identifier: Apache-2.0
// Text in many languages, in Unicode and in the encodings of the time before it, read without a name.
#include <fstream>

#include "Foundation/EncodingDetection.h"
#include "Prelude.h"
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"

namespace {

struct Passage {
    std::string language;
    std::vector<std::string> legacyEncodings;
    std::u16string text;
};

std::vector<Passage> passages() {
    std::ifstream file(WRITER_CORPUS);
    std::vector<Passage> list;
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("= ")) {
            list.back().text += decodeBytes(line + "\n", NSUTF8StringEncoding).value();
            continue;
        }
        Passage& passage = list.emplace_back();
        std::istringstream names(line.substr(line.find(':') + 1));
        passage.language = line.substr(2, line.find(':') - 2);
        for (std::string name; names >> name;) passage.legacyEncodings.push_back(name);
    }
    return list;
}

struct Score {
    std::size_t texts = 0, right = 0, sure = 0, sureAndRight = 0;
    std::string misses;

    void add(const std::string& situation, const TextFileContent& content, std::u16string_view text) {
        const bool isRight = content.text.view() == text;
        const bool isSure = content.confidence.value_or(100) >= 80;
        ++texts;
        right += isRight;
        sure += isSure;
        sureAndRight += isSure && isRight;
        if (!isRight)
            misses += situation + " as " + content.encodingName + " " +
                      std::to_string(content.confidence.value_or(100)) + "\n";
    }
};

// The first characters of every passage in its legacy encodings.
Score legacyScore(std::size_t length) {
    Score score;
    for (const Passage& passage : passages())
        for (const std::string& name : passage.legacyEncodings) {
            const auto text = passage.text.substr(0, length);
            const auto bytes = encodeUnits(text, encodingForName(name));
            EXPECT_TRUE(bytes) << passage.language << " in " << name;
            if (!bytes) continue;
            const TextFileContent content = decodeTextFile(TextFileSource(*bytes), {});
            score.add(passage.language + " in " + name, content, text);
            // A guess that is wrong loses nothing.
            if (content.fault != TextFileFault::none || content.isLossy) continue;
            EXPECT_EQ(encodeUnits(content.text.view(), encodingForName(content.encodingName)), *bytes);
        }
    return score;
}

TEST(TextFileCorpus, OfUnicodeIsReadWithAndWithoutMarks) {
    for (const Passage& passage : passages())
        for (const char* name : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"})
            for (const bool isMarked : {false, true}) {
                const NSStringEncoding encoding = encodingForName(name);
                std::string bytes(isMarked ? markOfEncoding(encoding) : "");
                bytes += encodeUnits(passage.text, encoding).value();
                const TextFileContent content = decodeTextFile(TextFileSource(bytes), {});
                EXPECT_EQ(content.encodingName, name) << passage.language;
                EXPECT_EQ(content.hasByteOrderMark, isMarked);
                EXPECT_TRUE(content.text.view() == passage.text) << passage.language << " in " << name;
            }
}

// The shares are those that were measured; a change of the guessing may not lower them.
TEST(TextFileCorpus, OfLegacyEncodingsIsMostlyReadRightAndSaysHowSureTheGuessIs) {
    const struct {
        std::size_t length;
        std::size_t leastRight, leastSureAndRight;  // of a hundred
    } rows[] = {{1000, 98, 98}, {60, 90, 90}, {20, 80, 85}};
    for (const auto& row : rows) {
        const Score score = legacyScore(row.length);
        const std::string counts = std::to_string(score.right) + " of " + std::to_string(score.texts) +
                                   "; sure: " + std::to_string(score.sureAndRight) + " of " +
                                   std::to_string(score.sure);
        RecordProperty("right_of_" + std::to_string(row.length) + "_characters", counts);
        EXPECT_GE(score.right * 100, row.leastRight * score.texts) << counts << "\n" << score.misses;
        EXPECT_GE(score.sureAndRight * 100, row.leastSureAndRight * score.sure) << counts;
    }
}

}  // namespace
