// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRReport.h"

#include <gtest/gtest.h>

#include "Foundation/NSNumber.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

TEST(Report, HasSectionsOfLines) {
    AutoreleasePool pool;
    auto report = WRReport::init();
    report->addHeading(u"One"_ns);
    report->addLine(u"line"_ns);
    report->addHeading(u"Two"_ns);
    EXPECT_EQ(report->takeText()->toUTF8(), "One\n    line\n\nTwo\n");
    report->addHeading(u"Three"_ns);
    EXPECT_EQ(report->takeText()->toUTF8(), "\nThree\n");
    EXPECT_EQ(report->takeText()->toUTF8(), "");
}

TEST(Report, HasLabelsAndValues) {
    AutoreleasePool pool;
    auto report = WRReport::init();
    report->addLabel_value(u"Words"_ns, NSNumber::numberWithInt(12));
    EXPECT_NE(report->takeText()->toUTF8().find("Words: 12\n"), std::string::npos);
}

TEST(Report, LetsNoTextOfADocumentWorkOnTheTerminal) {
    AutoreleasePool pool;
    EXPECT_EQ(WRReport::printableText(u"a\x1B[31m\n\u202Eb\u0085é👩‍👧"_ns)->toUTF8(), "a�[31m��b�é👩‍👧");
}

}  // namespace
}  // namespace pelvor
