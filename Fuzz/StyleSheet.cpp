// SPDX-License-Identifier: Apache-2.0
// A property list as a style sheet: it is refused with a place and a reason, or its styles set a text.
#include "Writer/Pages/StyleSheet.h"

#include "Foundation/NSData.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSString.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"

using namespace pelvor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    AutoreleasePool pool;
    NSData* data = NSData::dataWithBytes_length(bytes, static_cast<NSUInteger>(size));
    auto* list = cast<NSDictionary>(NSPropertyListSerialization::propertyListWithData_options_format_error(
        data, NSPropertyListImmutable, nullptr, nullptr));
    if (!list) return 0;
    NSString* problem = nullptr;
    const auto sheet = StyleSheet::of(list, u"s"_ns, &problem);
    require(sheet.has_value() == !problem, "a sheet or a problem");
    if (!sheet) return 0;
    auto text = NSAttributedString::initWithString(u"some words"_ns);
    require(textInStyles(text, *sheet, &*sheet)->length() == text->length(), "the text as it was");
    return 0;
}
