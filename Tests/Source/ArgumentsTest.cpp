// SPDX-License-Identifier: Apache-2.0
// What operations say that refuse an argument: themselves, the argument, and what is wrong with it.
#include "NSArray-PelvorAdditions.h"
#include "NSArray-PelvorRangeArray.h"
#include "NSData-PelvorAdditions.h"
#include "NSDictionary-PelvorAdditions.h"
#include "NSIndexSet-PelvorAdditions.h"
#include "NSInvocation-PelvorAdditions.h"
#include "NSMutableDictionary-PelvorAdditions.h"
#include "NSObject-PelvorAdditions.h"
#include "NSRunLoop-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "PBDelayedActionTimer.h"
#include "PBFloatArray.h"
#include "PBNotificationCenter.h"
#include "PBPlanarRange.h"
#include "PBRangeUtil.h"
#include "PBRegistry.h"
#include "PBUnichar32String.h"
#include "PBUtil.h"
#include "Prelude.h"
#include "Scanning/OFStringDecoder.h"
#include "Scanning/OFStringScanner.h"
#include "Scanning/OFTrie.h"
#include "Source/TextInPieces.h"

namespace {

// "scanString:peek:", of the call "scanner->scanString_peek(nullptr, true)".
std::string operationOf(std::string_view call) {
    std::string name(call.substr(0, call.find('(')));
    name.erase(0, name.find_last_of(":>") + 1);
    std::replace(name.begin() + 1, name.end(), '_', ':');
    return name + ':';
}

// The reason is the operation that is called and what follows.
#define REFUSED(fault, ...) \
    EXPECT_EQ(reasonOf([&] { (void)(__VA_ARGS__); }), operationOf(#__VA_ARGS__) + " " + fault)

// That a refusal names its operation is a matter of scripts/check-messages, that null ends no process one of
// the walk over all classes: here are texts, and refusals that an inner operation would make in its own name.
TEST(Arguments, ThatAreNullAreNamed) {
    auto scanner = OFStringScanner::initWithString(u"abc"_ns);
    NSMutableString* text = NSMutableString::of(u"abc");
    auto wide = PBUnichar32String::initWithString(text);
    NSString* pieces = inPieces(u"ab");
    NSData* data = NSData::data();
    auto node = OFTrieNode::init();
    using Strings = NSString_PelvorAdditions;
    using Datas = NSData_PelvorAdditions;
    using Wide = PBUnichar32String;
    const std::string noString = "the string is null";
    const std::string noPoints = "the code points must not be null where the length is 1";
    const std::string noBuffer = "the buffer must not be null where the length is 1";
    REFUSED(noString, scanner->scanString_peek(nullptr, true));
    REFUSED(noString, scanner->readFullTokenUpToString(nullptr));
    REFUSED("the value is null", scanner->scanDouble_maximumLength_exponentLength(nullptr, 9, 9));
    REFUSED("the child is neither an OFTrieNode nor an OFTrieBucket",
            node->addChild_withCharacter(text, u'a'));
    REFUSED(noString, PBRepeatString::initWithString_repeatCount(nullptr, 2));
    REFUSED(noPoints, Wide::initWithCodepoints_count(nullptr, 1));
    REFUSED(noPoints, Wide::initWithOwnedCodepoints_count(nullptr, 1));
    REFUSED(noBuffer, wide->getCodepoints_forCodepointsWithRange(nullptr, {0, 1}));
    REFUSED(noBuffer, wide->getCharacters_range(nullptr, {0, 1}));
    REFUSED(noBuffer, pieces->getCharacters_range(nullptr, {0, 1}));
    REFUSED(noPoints, Strings::stringWithCodepoints_count(nullptr, 1));
    REFUSED(noPoints, Strings::initWithCodepoints_count(nullptr, 1));
    REFUSED("the class is null", Strings::stringWithCharacter(u'a', nullptr));
    REFUSED("the replacement is null",
            stringByReplacingAllOccurrencesOfString_withString(text, text, nullptr));
    REFUSED(noString, Datas::dataWithBase64String(nullptr));
    REFUSED(noString, Datas::initWithHexString(nullptr));
    REFUSED("the prefix must not be null where the length is 1",
            _lowercaseHexStringWithPrefix_length(data, nullptr, 1));
    REFUSED("the bytes must not be null where the length is 1", rangeOfBytes_length(data, nullptr, 1));
}

TEST(Arguments, OfCollectionsAndMessagesAreNamed) {
    NSNumber* one = NSNumber::numberWithInt(1);
    NSArray *texts = NSArray::of({u"a"_ns, u"b"_ns}), *numbers = NSArray::of({one});
    auto record = NSMutableDictionary::init();
    auto registry = PBRegistry::init();
    auto floats = PBFloatArray::initWithCapacity(3);
    Class* cls = NSNumber::classObject();
    SEL unknown = "unknown"_sel;
    using Arrays = NSMutableArray_PelvorAdditions;
    using Centres = NSNotificationCenter_PelvorAdditions;
    using Invocations = NSInvocation_PelvorAdditions;
    using Loops = NSRunLoop_PelvorAdditions;
    using Sets = NSIndexSet_PelvorAdditions;
    REFUSED("the name is null", Centres::disableNotificationName(nullptr));
    REFUSED("the profile is null", registry->addProfile(nullptr));
    REFUSED("the key is null", setInt_forKey(record, 1, nullptr));
    REFUSED("the object is null", dictionarySettingObject_forKey(record, nullptr, one));
    REFUSED("the object is null", Arrays::initWithSingleObject_count(nullptr, 2));
    REFUSED("the pointer to the floats is null",
            floats->replaceFloatsInRange_withFloatsFrom({0, 1}, nullptr));
    REFUSED("the target is null", Loops::performSelector_target_argument_order(unknown, nullptr, one, 0));
    REFUSED("instances of NSNumber have no method unknown",
            Invocations::invocationWithTargetClass_selector(cls, unknown));
    REFUSED("the target is null", Invocations::invocationWithTarget_selector(nullptr, unknown));
    REFUSED("the list holds a, which is no boxed range", PBNormalizeRanges(texts, true));
    REFUSED("the list holds 1, which is no boxed range", PBIndexOfRangeInRanges({0, 1}, numbers));
    REFUSED("the array holds a, which is no number", Sets::indexSetWithNumberArray(texts));
    REFUSED("1 is no boxed planar range", planarRangeValue(one));
    EXPECT_EQ(reasonOf([&] { performSelector_withInt(one, "isEqual:"_sel, 1); }),
              "the message isEqual: cannot be given a number: its method takes an argument of another type");
    EXPECT_EQ(reasonOf([&] { performSelector_withInt(one, "intValue"_sel, 1); }),
              "the message intValue cannot be given a number: its method takes no argument");
    const std::string noMethod = "the class NSNumber has no method unknown";
    REFUSED(noMethod, PBReplaceMethodImplementationWithSelector(cls, unknown, unknown));
    REFUSED(noMethod, PBReplaceMethodImplementationWithSelectorOnClass(cls, unknown, cls, unknown));
    REFUSED("the class is null", PBReplaceMethodImplementation(nullptr, unknown, IMP()));
    REFUSED("the interval is not a number",
            PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector(NAN, true, one, unknown));
    REFUSED("the pointer to the results is null", PBSubtractionRanges({0, 5}, {1, 1}, nullptr));
    REFUSED("the function is null",
            insertObject_withCompareFunction_context(NSMutableArray::array(), one, nullptr, nullptr));
    REFUSED("the array is null", addRange(nullptr, {0, 1}));
}

TEST(Arguments, ThatAreNullAreNamedByFunctions) {
    OFCaseConversionBuffer buffer;
    OFCaseConversionBufferInit(&buffer);
    auto state = OFInitialStateForEncoding(kCFStringEncodingUTF8);
    const unsigned char byte = 'a';
    const std::string raised = "NSInvalidArgumentException: OFScanCharactersIntoBuffer: the ";
    EXPECT_EQ(RAISED(OFScanCharactersIntoBuffer(state, nullptr, 1, nullptr, 0)),
              raised + "bytes must not be null where the length is 1");
    EXPECT_EQ(RAISED(OFScanCharactersIntoBuffer(state, &byte, 1, nullptr, 1)),
              raised + "characters must not be null where the length is 1");
    EXPECT_THROW((void)OFCreateStringByLowercasingCharacters(&buffer, nullptr, 1), NSException);
    EXPECT_THROW(OFCaseInsensitiveHash(nullptr, 1), NSException);
    OFCaseConversionBufferDestroy(&buffer);
}

TEST(Arguments, ThatLieOutsideAreNamed) {
    NSString* text = inPieces(u"abc");
    auto wide = PBUnichar32String::initWithString(text);
    NSData* data = NSData::dataWithBytes_length("abc", 3);
    const NSRange far = {1, 0xFFFFFFFF};
    const std::string beyond = "range {4, 0} beyond bounds (3)",
                      farBeyond = "range {1, 4294967295} beyond bounds (3)";
    REFUSED("range {2, 2} beyond bounds (3)", wordRangeForRange_includePreviousWord(text, {2, 2}, false));
    REFUSED(farBeyond, wordRangeForRange_includePreviousWord(text, far, false));
    REFUSED(beyond, rangeOfTrimmedWordForRange(text, {4, 0}));
    REFUSED(beyond, nonwhitespaceRangeForRange(text, {4, 0}));
    REFUSED("range {3, 1} beyond bounds (3)", rangeOfComposedCharactersForRange(text, {3, 1}));
    REFUSED(beyond, intValueAtIndex_effectiveRange(text, 4, nullptr));
    REFUSED(farBeyond, getCodepoints_range(text, nullptr, far));
    REFUSED(farBeyond, countCodepointsInRange(text, far));
    REFUSED(farBeyond, wide->countCodepointsInRange(far));
    REFUSED("index (2147483648) beyond bounds (0)", rangeAtIndex(NSArray::array(), 0x80000000u));
    REFUSED("index (3) beyond bounds (3)", wide->characterAtIndex(3));
    REFUSED("range {2, 2} beyond bounds (3)", wide->getCharacters_range(nullptr, {2, 2}));
    REFUSED("range {3, 1} beyond bounds (3)", wide->unicharRangeForCodepointsWithRange({3, 1}));
    REFUSED(farBeyond, wide->unicharRangeForCodepointsWithRange(far));
    REFUSED("range {0, 4} beyond bounds (3)", rangeOfData_range(data, data, {0, 4}));
    REFUSED(farBeyond, rangeOfData_range(data, data, far));
}

}  // namespace
