// SPDX-License-Identifier: Apache-2.0
#include "FoundationTestSupport.h"

#include "Foundation/FoundationLibrary.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

extern constinit Library library;

}  // namespace

PELVOR_DEFINE_CLASS(SparseString, library) {}

namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&SparseString::classRecord};
constinit Library library{"FoundationTestSupport", kDependencies, kClasses, {}};

}  // namespace

SparseString* SparseString::of(std::u16string_view text) {
    auto string = make<SparseString>();
    string->_text = text;
    return std::move(string).autorelease();
}

unichar SparseString::characterAtIndex(NSUInteger index) {
    if (index >= length())
        raiseException(NSRangeException, u"index (%d) beyond bounds (%d)"_ns, index, length());
    return _text[index];
}

std::vector<NSString*> everyKindOfString(std::u16string_view text) {
    auto* units = static_cast<unichar*>(std::malloc((text.size() + 1) * sizeof(unichar)));
    std::copy(text.begin(), text.end(), units);
    auto external = NSString::initWithCharactersNoCopy_length_freeWhenDone(
        units, static_cast<NSUInteger>(text.size()), true);
    return {NSString::of(text), NSMutableString::of(text), std::move(external).autorelease(),
            SparseString::of(text)};
}

}  // namespace pelvor
