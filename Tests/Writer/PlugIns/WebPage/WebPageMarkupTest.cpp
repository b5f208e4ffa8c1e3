// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/WebPage/WebPageMarkup.h"

#include "Prelude.h"

namespace {

TEST(WebPageMarkup, EscapesWhatWouldBeMarkupAndLeavesControlsOut) {
    EXPECT_EQ(webPageOfText(u"A <b> & \"c\"\r\n\x01x\n", u"UTF-8"),
              u"<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"UTF-8\">\n"
              u"<title>A &lt;b&gt; &amp; &quot;c&quot;</title>\n</head>\n<body>\n"
              u"<p>A &lt;b&gt; &amp; &quot;c&quot;</p>\n<p>x</p>\n</body>\n</html>\n");
    const std::u16string empty = webPageOfText(u"", u"a\"b");
    EXPECT_NE(empty.find(u"charset=\"a&quot;b\""), empty.npos);
    EXPECT_EQ(empty.find(u"<p>"), empty.npos);
}

TEST(WebPageMarkup, WritesCharactersByNumberPairsTogether) {
    EXPECT_EQ(withCharacterNumbers(u"aé🐈"), u"a&#233;&#128008;");
    const char16_t half[] = {0xD83D, u'a', 0};
    EXPECT_EQ(withCharacterNumbers(half), u"&#65533;a");
}

}  // namespace
