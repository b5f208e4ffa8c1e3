// SPDX-License-Identifier: Apache-2.0
// What operations say that refuse an argument: themselves, the argument, and what is wrong with it.
#include "NSData-PelvorAdditions.h"
#include "NSMutableString-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "PBUnichar32String.h"
#include "Prelude.h"
#include "Scanning/OFStringDecoder.h"
#include "Scanning/OFStringScanner.h"
#include "Scanning/OFTrie.h"
#include "Source/TextInPieces.h"

namespace pelvor {
namespace {

#define REFUSED(message, ...) EXPECT_EQ(reasonOf([&] { (void)(__VA_ARGS__); }), message)

TEST(Arguments, ThatAreNullAreNamed) {
    auto scanner = OFStringScanner::initWithString(u"abc"_ns);
    NSMutableString* text = NSMutableString::of(u"abc");
    auto wide = PBUnichar32String::initWithString(text);
    NSData* data = NSData::data();
    using Strings = NSString_PelvorAdditions;
    using Datas = NSData_PelvorAdditions;
    REFUSED("scanString:peek: the string is null", scanner->scanString_peek(nullptr, true));
    REFUSED("scanStringCaseInsensitive:peek: the string is null",
            scanner->scanStringCaseInsensitive_peek(nullptr, true));
    REFUSED("scanUpToString: the string is null", scanner->scanUpToString(nullptr));
    REFUSED("scanUpToStringCaseInsensitive: the string is null",
            scanner->scanUpToStringCaseInsensitive(nullptr));
    REFUSED("readFullTokenUpToString: the string is null", scanner->readFullTokenUpToString(nullptr));
    REFUSED("scanDouble:maximumLength:exponentLength: the value is null",
            scanner->scanDouble_maximumLength_exponentLength(nullptr, 9, 9));
    REFUSED("addChild:withCharacter: the child is neither an OFTrieNode nor an OFTrieBucket",
            OFTrieNode::init()->addChild_withCharacter(text, u'a'));
    REFUSED("initWithString:length: the string is null", PBRepeatString::initWithString_length(nullptr, 2));
    REFUSED("initWithString:repeatCount: the string is null",
            PBRepeatString::initWithString_repeatCount(nullptr, 2));
    REFUSED("initWithString: the string is null", PBUnichar32String::initWithString(nullptr));
    REFUSED("initWithCodepoints:count: the code points must not be null where the length is 1",
            PBUnichar32String::initWithCodepoints_count(nullptr, 1));
    REFUSED("initWithOwnedCodepoints:count: the code points must not be null where the length is 1",
            PBUnichar32String::initWithOwnedCodepoints_count(nullptr, 1));
    REFUSED("getCodepoints:forCodepointsWithRange: the buffer must not be null where the length is 1",
            wide->getCodepoints_forCodepointsWithRange(nullptr, {0, 1}));
    REFUSED("getCharacters:range: the buffer must not be null where the length is 1",
            wide->getCharacters_range(nullptr, {0, 1}));
    REFUSED("getCharacters:range: the buffer must not be null where the length is 1",
            inPieces(u"ab")->getCharacters_range(nullptr, {0, 1}));
    REFUSED("stringWithCodepoints:count: the code points must not be null where the length is 1",
            Strings::stringWithCodepoints_count(nullptr, 1));
    REFUSED("stringWithData:encoding: the data is null",
            Strings::stringWithData_encoding(nullptr, NSUTF8StringEncoding));
    REFUSED("locationOfCharacterFromSet:options:location: the set is null",
            locationOfCharacterFromSet_options_location(text, nullptr, 0, 0));
    REFUSED("stringByReplacingAllOccurrencesOfString:withString: the target is null",
            stringByReplacingAllOccurrencesOfString_withString(text, nullptr, text));
    REFUSED("stringByReplacingAllOccurrencesOfString:withString: the replacement is null",
            stringByReplacingAllOccurrencesOfString_withString(text, text, nullptr));
    REFUSED("stringByReplacingAllOccurrencesOfCharactersInSet:withString: the set is null",
            stringByReplacingAllOccurrencesOfCharactersInSet_withString(text, nullptr, text));
    REFUSED("replaceAllLineEndingsWithString: the line ending is null",
            replaceAllLineEndingsWithString(text, nullptr));
    REFUSED("removeCharactersInSet: the set is null", removeCharactersInSet(text, nullptr));
    REFUSED("replaceAllOccurrencesOfString:withString: the target is null",
            replaceAllOccurrencesOfString_withString(text, nullptr, text));
    REFUSED("dataWithBase64String: the string is null", Datas::dataWithBase64String(nullptr));
    REFUSED("initWithHexString: the string is null", Datas::initWithHexString(nullptr));
    REFUSED("_lowercaseHexStringWithPrefix:length: the prefix must not be null where the length is 1",
            _lowercaseHexStringWithPrefix_length(data, nullptr, 1));
    REFUSED("rangeOfBytes:length: the bytes must not be null where the length is 1",
            rangeOfBytes_length(data, nullptr, 1));
}

TEST(Arguments, ThatAreNullAreNamedByFunctions) {
    OFCaseConversionBuffer buffer;
    OFCaseConversionBufferInit(&buffer);
    auto state = OFInitialStateForEncoding(kCFStringEncodingUTF8);
    const unsigned char byte = 'a';
    EXPECT_EQ(RAISED(OFScanCharactersIntoBuffer(state, nullptr, 1, nullptr, 0)),
              "NSInvalidArgumentException: OFScanCharactersIntoBuffer: the bytes must not be null where the "
              "length is 1");
    EXPECT_EQ(RAISED(OFScanCharactersIntoBuffer(state, &byte, 1, nullptr, 1)),
              "NSInvalidArgumentException: OFScanCharactersIntoBuffer: the characters must not be null where "
              "the length is 1");
    EXPECT_THROW(OFCreateStringByLowercasingCharacters(&buffer, nullptr, 1), NSException);
    EXPECT_THROW(OFCaseInsensitiveHash(nullptr, 1), NSException);
    OFCaseConversionBufferDestroy(&buffer);
}

TEST(Arguments, ThatLieOutsideAreNamed) {
    NSString* text = inPieces(u"abc");
    auto wide = PBUnichar32String::initWithString(text);
    NSData* data = NSData::dataWithBytes_length("abc", 3);
    REFUSED("wordRangeForRange:includePreviousWord: range {2, 2} beyond bounds (3)",
            wordRangeForRange_includePreviousWord(text, {2, 2}, false));
    REFUSED("rangeOfTrimmedWordForRange: range {4, 0} beyond bounds (3)",
            rangeOfTrimmedWordForRange(text, {4, 0}));
    REFUSED("nonwhitespaceRangeForRange: range {4, 0} beyond bounds (3)",
            nonwhitespaceRangeForRange(text, {4, 0}));
    REFUSED("rangeOfComposedCharactersForRange: range {3, 1} beyond bounds (3)",
            rangeOfComposedCharactersForRange(text, {3, 1}));
    REFUSED("intValueAtIndex:effectiveRange: range {4, 0} beyond bounds (3)",
            intValueAtIndex_effectiveRange(text, 4, nullptr));
    REFUSED("getCodepoints:range: range {1, 4294967295} beyond bounds (3)",
            getCodepoints_range(text, nullptr, {1, 0xFFFFFFFF}));
    REFUSED("characterAtIndex: index (3) beyond bounds (3)", wide->characterAtIndex(3));
    REFUSED("unicharRangeForCodepointsWithRange: range {3, 1} beyond bounds (3)",
            wide->unicharRangeForCodepointsWithRange({3, 1}));
    REFUSED("rangeOfData:range: range {0, 4} beyond bounds (3)", rangeOfData_range(data, data, {0, 4}));
}

}  // namespace
}  // namespace pelvor
