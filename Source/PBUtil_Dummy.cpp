// SPDX-License-Identifier: Apache-2.0
#include "PBUtil_Dummy.h"

#include "BaseLibrary.h"
#include "Foundation/NSCharacterSet.h"
#include "PBUtil.h"

namespace pelvor {

namespace {

// A new set of the characters in a UTF-8 text, which is never released.
NSCharacterSet* keptSetOf(const char* text) {
    return NSCharacterSet::initWithCharactersInString(NSString::stringWithUTF8String(text)).leak();
}

}  // namespace

PELVOR_DEFINE_CLASS(PBUtil_Dummy, baseLibrary) {
    methods.classLevel<"load", &PBUtil_Dummy::load>();
    methods.classLevel<"didLoad", &PBUtil_Dummy::didLoad>();
}

void PBUtil_Dummy::didLoad() {
    _pbLettersCharacterSet = NSCharacterSet::letterCharacterSet();
    _pbWhitespaceCharacterSet = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    _pbDecimalDigitCharacterSet = NSCharacterSet::decimalDigitCharacterSet();
    // These sets are made once, although the hook may run more often: code that reads texts before the
    // load-time sequence calls the hook itself.
    static NSCharacterSet* const money = keptSetOf("$\u20AC\u00A3\u00A5");
    static NSCharacterSet* const doubleQuotes = keptSetOf("\"\u201C\u201D\u00AB\u00BB");
    static NSCharacterSet* const singleQuotes = keptSetOf("'\u2018\u2019");
    _pbMoneyCharacterSet = money;
    _pbDoubleQuotesCharacterSet = doubleQuotes;
    _pbSingleQuotesCharacterSet = singleQuotes;
}

}  // namespace pelvor
