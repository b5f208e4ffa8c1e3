// SPDX-License-Identifier: Apache-2.0
// Tests of what strings, character sets and scanners say about arguments that they refuse.
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSMutableCharacterSet.h"
#include "Foundation/NSScanner.h"
#include "Platform/Foundation/OwnCollections.h"

namespace {

/// Each row holds what was raised and the message behind the exception's name.
void expectMessages(const std::string& name,
                    std::initializer_list<std::pair<std::string, std::string>> rows) {
    for (auto& [raised, message] : rows) EXPECT_EQ(raised, name + ": " + message);
}

TEST(NSStringArgumentsTest, IndexesAndRangesOutside) {
    for (NSString* s : everyKindOfString(u"abc")) {
        unichar room[4];
        const std::pair<std::string, std::string> rows[] = {
            {RAISED(s->characterAtIndex(3)), "characterAtIndex: index (3) beyond bounds (3)"},
            {RAISED(s->getCharacters_range(room, {2, 2})),
             "getCharacters:range: range {2, 2} beyond bounds (3)"},
            {RAISED(s->getCharacters_range(room, {0xFFFFFFFF, 2})),
             "getCharacters:range: range {4294967295, 2} beyond bounds (3)"},
            {RAISED(s->substringFromIndex(4)), "substringFromIndex: index (4) beyond bounds (3)"},
            {RAISED(s->substringToIndex(4)), "substringToIndex: index (4) beyond bounds (3)"},
            {RAISED(s->substringWithRange({3, 0xFFFFFFFF})),
             "substringWithRange: range {3, 4294967295} beyond bounds (3)"},
            {RAISED(s->compare_options_range(u"b"_ns, 0, {3, 1})),
             "compare:options:range: range {3, 1} beyond bounds (3)"},
            {RAISED(s->rangeOfString_options_range(u"b"_ns, 0, {1, 0xFFFFFFFF})),
             "rangeOfString:options:range: range {1, 4294967295} beyond bounds (3)"},
            {RAISED(
                 s->rangeOfCharacterFromSet_options_range(NSCharacterSet::letterCharacterSet(), 0, {2, 2})),
             "rangeOfCharacterFromSet:options:range: range {2, 2} beyond bounds (3)"},
            {RAISED(s->rangeOfComposedCharacterSequenceAtIndex(3)),
             "rangeOfComposedCharacterSequenceAtIndex: index (3) beyond bounds (3)"},
            {RAISED(s->stringByPaddingToLength_withString_startingAtIndex(9, u"12"_ns, 2)),
             "stringByPaddingToLength:withString:startingAtIndex: index (2) beyond bounds (2)"},
            {RAISED(NSScanner::scannerWithString(s)->setScanLocation(4)),
             "setScanLocation: index (4) beyond bounds (3)"},
        };
        for (auto& [raised, message] : rows) EXPECT_EQ(raised, "NSRangeException: " + message) << s->isa();
    }
}

TEST(NSStringArgumentsTest, NullWhereStringsAreMade) {
    expectMessages(
        NSInvalidArgumentException,
        {{RAISED(NSString::stringWithString(nullptr)), "stringWithString: the string is null"},
         {RAISED(NSString::initWithString(nullptr)), "initWithString: the string is null"},
         {RAISED(NSString::stringWithCharacters_length(nullptr, 1)),
          "stringWithCharacters:length: the characters must not be null where the length is 1"},
         {RAISED(NSString::initWithCharacters_length(nullptr, 1)),
          "initWithCharacters:length: the characters must not be null where the length is 1"},
         {RAISED(NSString::initWithCharactersNoCopy_length_freeWhenDone(nullptr, 1, true)),
          "initWithCharactersNoCopy:length:freeWhenDone: the characters must not be null where the length is "
          "1"},
         {RAISED(NSString::stringWithUTF8String(nullptr)), "stringWithUTF8String: the text is null"},
         {RAISED(NSString::initWithUTF8String(nullptr)), "initWithUTF8String: the text is null"},
         {RAISED(NSString::stringWithCString_encoding(nullptr, NSUTF8StringEncoding)),
          "stringWithCString:encoding: the text is null"},
         {RAISED(NSString::initWithBytes_length_encoding(nullptr, 1, NSUTF8StringEncoding)),
          "initWithBytes:length:encoding: the bytes must not be null where the length is 1"},
         {RAISED(NSString::initWithData_encoding(nullptr, NSUTF8StringEncoding)),
          "initWithData:encoding: the data is null"},
         {RAISED(NSString::stringWithContentsOfFile(nullptr)), "stringWithContentsOfFile: the path is null"},
         {RAISED(NSString::stringWithFormat(nullptr)), "stringWithFormat: the format is null"},
         {RAISED(NSString::initWithFormat(nullptr)), "initWithFormat: the format is null"},
         {RAISED(send<id>(NSString::classObject(), "initWithFormat:"_sel, nullptr)),
          "initWithFormat: the format is null"},
         {RAISED(NSString::pathWithComponents(nullptr)), "pathWithComponents: the array is null"},
         {RAISED(NSString::pathWithComponents(numbers({7}))),
          "pathWithComponents: a component is no string: 7"},
         {RAISED(NSMutableString::stringWithString(nullptr)), "stringWithString: the string is null"},
         {RAISED(NSMutableString::initWithCharacters_length(nullptr, 1)),
          "initWithCharacters:length: the characters must not be null where the length is 1"},
         {RAISED(NSMutableString::stringWithUTF8String(nullptr)), "stringWithUTF8String: the text is null"},
         {RAISED(NSScanner::scannerWithString(nullptr)), "scannerWithString: the string is null"}});
}

TEST(NSStringArgumentsTest, NullWhereStringsAreRead) {
    NSString* s = u"abc"_ns;
    expectMessages(
        NSInvalidArgumentException,
        {{RAISED(s->getCharacters(nullptr)), "getCharacters: the buffer is null"},
         {RAISED(s->getCharacters_range(nullptr, {0, 1})), "getCharacters:range: the buffer is null"},
         {RAISED(s->stringByAppendingString(nullptr)), "stringByAppendingString: the string is null"},
         {RAISED(s->stringByAppendingFormat(nullptr)), "stringByAppendingFormat: the format is null"},
         {RAISED(s->componentsSeparatedByString(nullptr)),
          "componentsSeparatedByString: the separator is null"},
         {RAISED(s->stringByTrimmingCharactersInSet(nullptr)),
          "stringByTrimmingCharactersInSet: the set is null"},
         {RAISED(s->stringByReplacingOccurrencesOfString_withString(s, nullptr)),
          "stringByReplacingOccurrencesOfString:withString: the replacement is null"},
         {RAISED(s->stringByPaddingToLength_withString_startingAtIndex(9, nullptr, 0)),
          "stringByPaddingToLength:withString:startingAtIndex: the padding is null"},
         {RAISED(s->compare(nullptr)), "compare: the other string is null"},
         {RAISED(s->compare_options(nullptr, 0)), "compare:options: the other string is null"},
         {RAISED(s->caseInsensitiveCompare(nullptr)), "caseInsensitiveCompare: the other string is null"},
         {RAISED(s->localizedCompare(nullptr)), "localizedCompare: the other string is null"},
         {RAISED(s->localizedCaseInsensitiveCompare(nullptr)),
          "localizedCaseInsensitiveCompare: the other string is null"},
         {RAISED(s->hasPrefix(nullptr)), "hasPrefix: the prefix is null"},
         {RAISED(s->hasSuffix(nullptr)), "hasSuffix: the suffix is null"},
         {RAISED(s->rangeOfString(nullptr)), "rangeOfString: the target is null"},
         {RAISED(s->rangeOfString_options(nullptr, 0)), "rangeOfString:options: the target is null"},
         {RAISED(s->rangeOfCharacterFromSet(nullptr)), "rangeOfCharacterFromSet: the set is null"},
         {RAISED(s->stringByAppendingPathComponent(nullptr)),
          "stringByAppendingPathComponent: the component is null"},
         {RAISED(s->stringByAppendingPathExtension(nullptr)),
          "stringByAppendingPathExtension: the extension is null"},
         {RAISED(s->writeToFile_atomically_encoding(nullptr, true, NSUTF8StringEncoding)),
          "writeToFile:atomically:encoding: the path is null"},
         {RAISED(NSScanner::scannerWithString(s)->scanString_intoString(nullptr, nullptr)),
          "scanString:intoString: the string is null"},
         {RAISED(NSScanner::scannerWithString(s)->scanUpToString_intoString(nullptr, nullptr)),
          "scanUpToString:intoString: the string is null"},
         {RAISED(NSScanner::scannerWithString(s)->scanCharactersFromSet_intoString(nullptr, nullptr)),
          "scanCharactersFromSet:intoString: the set is null"},
         {RAISED(NSScanner::scannerWithString(s)->scanUpToCharactersFromSet_intoString(nullptr, nullptr)),
          "scanUpToCharactersFromSet:intoString: the set is null"}});
}

TEST(NSStringArgumentsTest, AMutableStringThatRefusesIsUnchanged) {
    auto s = NSMutableString::initWithString(u"abc"_ns);
    expectMessages(
        NSRangeException,
        {{RAISED(s->replaceCharactersInRange_withString({2, 2}, u"x"_ns)),
          "replaceCharactersInRange:withString: range {2, 2} beyond bounds (3)"},
         {RAISED(s->deleteCharactersInRange({1, 0xFFFFFFFF})),
          "deleteCharactersInRange: range {1, 4294967295} beyond bounds (3)"},
         {RAISED(s->insertString_atIndex(u"x"_ns, 4)), "insertString:atIndex: index (4) beyond bounds (3)"},
         {RAISED(s->replaceOccurrencesOfString_withString_options_range(u"b"_ns, u"c"_ns, 0, {3, 1})),
          "replaceOccurrencesOfString:withString:options:range: range {3, 1} beyond bounds (3)"}});
    expectMessages(
        NSInvalidArgumentException,
        {{RAISED(s->replaceCharactersInRange_withString({0, 1}, nullptr)),
          "replaceCharactersInRange:withString: the string is null"},
         {RAISED(s->setString(nullptr)), "setString: the string is null"},
         {RAISED(s->appendString(nullptr)), "appendString: the string is null"},
         {RAISED(s->appendFormat(nullptr)), "appendFormat: the format is null"},
         {RAISED(s->appendCharacters_length(nullptr, 1)),
          "appendCharacters:length: the characters must not be null where the length is 1"},
         {RAISED(s->insertString_atIndex(nullptr, 0)), "insertString:atIndex: the string is null"}});
    EXPECT_EQ(s->toUTF8(), "abc");
}

TEST(NSStringArgumentsTest, CharacterSets) {
    auto set = NSMutableCharacterSet::init();
    expectMessages(
        NSInvalidArgumentException,
        {{RAISED(NSCharacterSet::characterSetWithRange({0x10FFFF, 2})),
          "characterSetWithRange: range {1114111, 2} beyond the last code point"},
         {RAISED(NSCharacterSet::initWithRange({2, 0xFFFFFFFF})),
          "initWithRange: range {2, 4294967295} beyond the last code point"},
         {RAISED(NSCharacterSet::characterSetWithCharactersInString(nullptr)),
          "characterSetWithCharactersInString: the string is null"},
         {RAISED(NSCharacterSet::characterSetWithBitmapRepresentation(nullptr)),
          "characterSetWithBitmapRepresentation: the data is null"},
         {RAISED(set->isSupersetOfSet(nullptr)), "isSupersetOfSet: the other set is null"},
         {RAISED(set->removeCharactersInRange({0x110000, 1})),
          "removeCharactersInRange: range {1114112, 1} beyond the last code point"},
         {RAISED(set->addCharactersInString(nullptr)), "addCharactersInString: the string is null"},
         {RAISED(set->formUnionWithCharacterSet(nullptr)),
          "formUnionWithCharacterSet: the other set is null"},
         {RAISED(set->formIntersectionWithCharacterSet(nullptr)),
          "formIntersectionWithCharacterSet: the other set is null"}});
}

}  // namespace
