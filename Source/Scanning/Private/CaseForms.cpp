// SPDX-License-Identifier: Apache-2.0
#include "Scanning/Private/CaseForms.h"

namespace pelvor {
namespace {

using Mapping = NSString* (NSString::*)();

std::u16string mapped(NSString* text, Mapping mapping) {
    std::u16string whole = (text->*mapping)()->toUTF16();
    if (whole.size() == text->length()) return whole;
    std::u16string units = text->toUTF16();
    for (char16_t& unit : units) {
        std::u16string form = (NSString::of({&unit, 1})->*mapping)()->toUTF16();
        // U+0130, the one unit whose lower-case form is two, has the first of them alone.
        if (form.size() == 1 || mapping == &NSString::lowercaseString) unit = form[0];
    }
    return units;
}

}  // namespace

CaseForms caseFormsOf(NSString* text) {
    return {mapped(text, &NSString::lowercaseString), mapped(text, &NSString::uppercaseString)};
}

CaseForms foldedFormsOf(NSString* text) {
    std::u16string upper = mapped(text, &NSString::uppercaseString);
    return {mapped(NSString::of(upper), &NSString::lowercaseString), upper};
}

}  // namespace pelvor
