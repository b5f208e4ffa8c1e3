// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRReport.h"

#include "Prelude.h"

namespace {

TEST(Report, HasSectionsOfLines) {
    auto report = WRReport::init();
    report->addHeading(u"One"_ns);
    report->addLine(u"line"_ns);
    report->addHeading(u"Two"_ns);
    EXPECT_EQ(shown(report->takeText()), "One\n    line\n\nTwo\n");
    report->addHeading(u"Three"_ns);
    for (const char* rest : {"\nThree\n", ""}) EXPECT_EQ(shown(report->takeText()), rest);
}

TEST(Report, LetsNoTextOfADocumentWorkOnTheTerminal) {
    EXPECT_EQ(shown(WRReport::printableText(u"a\x1B[31m\n\u202Eb\u0085é👩‍👧"_ns)),
              "a�[31m��b�é👩‍👧");
}

}  // namespace
