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
    int number = 0;
    long long large = 0;
    unsigned hex = 0;
    unsigned long long largeHex = 0;
    float decimal = 0;
    EXPECT_TRUE(scanner->scanInt(&number) && number == std::numeric_limits<int>::min());
    EXPECT_TRUE(scanner->scanLongLong(&large) && large == -3000000000);
    EXPECT_TRUE(scanner->scanHexInt(&hex) && hex == 0x1F);
    EXPECT_FALSE(scanner->scanInt(nullptr)) << "at the z";
    EXPECT_TRUE(scanner->scanString_intoString(u"Z"_ns, nullptr));
    EXPECT_TRUE(scanner->scanHexInt(&hex) && hex == 0xFFFFFFFF);
    EXPECT_TRUE(scanner->scanHexLongLong(&largeHex) && largeHex == 0xFFFFFFFFF);
    EXPECT_TRUE(scanner->scanFloat(&decimal) && decimal == 2.5f);
    EXPECT_FALSE(scanner->isAtEnd());
    EXPECT_FALSE(scanner->scanHexLongLong(&largeHex));
    EXPECT_FALSE(scanner->scanInteger(&number));
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
    EXPECT_EQ(value->toUTF8(), "Width");
    EXPECT_FALSE(scanner->scanCharactersFromSet_intoString(letters, &value));
    EXPECT_TRUE(scanner->scanString_intoString(u":"_ns, &value));
    EXPECT_TRUE(scanner->scanCharactersFromSet_intoString(letters, &value));
    EXPECT_EQ(value->toUTF16(), u"e\u0301tat\U00010400");
    scanner->setCaseSensitive(true);
    EXPECT_TRUE(scanner->scanUpToString_intoString(u"end"_ns, &value)) << "not found, hence all the rest";
    EXPECT_EQ(value->toUTF8(), ", END  ");
    EXPECT_TRUE(scanner->isAtEnd());
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
    EXPECT_THROW(scanner->setScanLocation(8), NSException);
    EXPECT_EQ(scanner->scanLocation(), 4u);
    EXPECT_THROW(scanner->scanCharactersFromSet_intoString(nullptr, nullptr), NSException);
    EXPECT_THROW(NSScanner::scannerWithString(nullptr), NSException);
}

}  // namespace
