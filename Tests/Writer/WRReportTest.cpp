// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRReport.h"

#include "Prelude.h"

namespace pelvor {
namespace {

TEST(Report, HasSectionsOfLines) {
    auto report = WRReport::init();
    report->addHeading(u"One"_ns);
    report->addLine(u"line"_ns);
    report->addHeading(u"Two"_ns);
    EXPECT_EQ(report->takeText()->toUTF8(), "One\n    line\n\nTwo\n");
    report->addHeading(u"Three"_ns);
    EXPECT_EQ(report->takeText()->toUTF8(), "\nThree\n");
    EXPECT_EQ(report->takeText()->toUTF8(), "");
}

TEST(Report, LetsNoTextOfADocumentWorkOnTheTerminal) {
    EXPECT_EQ(WRReport::printableText(u"a\x1B[31m\n\u202Eb\u0085é👩‍👧"_ns)->toUTF8(),
              "a�[31m��b�é👩‍👧");
}

}  // namespace
}  // namespace pelvor
