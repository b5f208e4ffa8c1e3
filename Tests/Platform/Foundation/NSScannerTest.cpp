// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSScanner.h"

#include "Foundation/NSCharacterSet.h"
#include "Prelude.h"

namespace {

TEST(NSScanner, ReadsNumbersAsFarAsTheyGo) {
    // Whether there is a number, which it is, and the place after it.
    expectAll({" 12.5 cm -> 1 12.5 5", "-1.5e2x -> 1 -150 6", "1e+ -> 1 1 1", ".5.5 -> 1 0.5 2",
               "5. -> 1 5 2", "1e999 -> 1 inf 5", "+. -> 0 7 0", " -> 0 7 0", "e5 -> 0 7 0", "- 1 -> 0 7 0"},
              [](const std::string& text) {
                  NSScanner* scanner = NSScanner::scannerWithString(NSString::ofUTF8(text));
                  double number = 7;
                  bool isNumber = scanner->scanDouble(&number);
                  return shown(isNumber, number, scanner->scanLocation());
              });
}

TEST(NSScanner, ReadsIntegersUpToTheLimitsOfTheType) {
    NSScanner* scanner =
        NSScanner::scannerWithString(u"-3000000000 -3000000000\n0x1Fz FFFFFFFFF FFFFFFFFF 2.5 x"_ns);
    auto scan = [&](auto method, auto value) {
        bool isFound = (scanner->*method)(&value);
        return isFound ? shown(value) : "none";
    };
    EXPECT_EQ(scan(&NSScanner::scanInt, 0), "-2147483648");
    EXPECT_EQ(scan(&NSScanner::scanLongLong, 0LL), "-3000000000");
    EXPECT_EQ(scan(&NSScanner::scanHexInt, 0u), "31");
    EXPECT_FALSE(scanner->scanInt(nullptr)) << "at the z";
    EXPECT_TRUE(scanner->scanString_intoString(u"Z"_ns, nullptr));
    EXPECT_EQ(scan(&NSScanner::scanHexInt, 0u), "4294967295");
    EXPECT_EQ(scan(&NSScanner::scanHexLongLong, 0ULL), "68719476735");
    EXPECT_EQ(scan(&NSScanner::scanFloat, 0.0f), "2.5");
    EXPECT_FALSE(scanner->isAtEnd());
    EXPECT_EQ(scan(&NSScanner::scanHexLongLong, 0ULL) + scan(&NSScanner::scanInteger, 0), "nonenone");
    EXPECT_TRUE(
        send<bool>(scanner, "scanUpToString:intoString:"_sel, u"-"_ns, static_cast<NSString**>(nullptr)));
    EXPECT_TRUE(scanner->isAtEnd());
}

TEST(NSScanner, ReadsStringsAndRunsOfMembers) {
    NSCharacterSet* letters = NSCharacterSet::letterCharacterSet();
    auto source = NSMutableString::of(u"  Width: e\u0301tat\U00010400, END  ");
    NSScanner* scanner = NSScanner::scannerWithString(source);
    source->setString(u"changed"_ns);
    NSString* value = nullptr;
    EXPECT_FALSE(scanner->scanUpToString_intoString(u"width"_ns, &value)) << "it is next";
    EXPECT_TRUE(scanner->scanUpToCharactersFromSet_intoString(
        NSCharacterSet::characterSetWithCharactersInString(u":"_ns), &value));
    EXPECT_EQ(shown(value), "Width");
    EXPECT_FALSE(scanner->scanCharactersFromSet_intoString(letters, &value));
    EXPECT_TRUE(scanner->scanString_intoString(u":"_ns, &value) &&
                scanner->scanCharactersFromSet_intoString(letters, &value));
    EXPECT_EQ(shown(value), "e\u0301tat\U00010400");
    scanner->setCaseSensitive(true);
    EXPECT_TRUE(scanner->scanUpToString_intoString(u"end"_ns, &value)) << "not found, hence all the rest";
    EXPECT_EQ(shown(value, scanner->isAtEnd()), ", END   1");
}

TEST(NSScanner, SkipsWhatItIsToldTo) {
    NSScanner* scanner = NSScanner::scannerWithString(u"--12 13"_ns);
    int number = 0;
    scanner->setCharactersToBeSkipped(NSCharacterSet::characterSetWithCharactersInString(u"-"_ns));
    EXPECT_TRUE(scanner->scanInt(&number) && number == 12);
    EXPECT_FALSE(scanner->scanInt(&number)) << "a space is no longer skipped";
    scanner->setCharactersToBeSkipped(nullptr);
    scanner->setScanLocation(1);
    EXPECT_TRUE(scanner->scanInt(&number) && number == -12);
    RAISED(scanner->setScanLocation(8));
    EXPECT_EQ(scanner->scanLocation(), 4u);
}

}  // namespace
