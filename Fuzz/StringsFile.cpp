// SPDX-License-Identifier: Apache-2.0
// String tables: any text gives a dictionary or none, the same with braces around it.
#include "Foundation/NSDictionary.h"
#include "Foundation/NSString-PropertyList.h"
#include "PropertyListChecks.h"

using namespace pelvor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    AutoreleasePool pool;
    fuzz::limitSharing();
    std::string text(reinterpret_cast<const char*>(data), size);
    NSString* string = NSString::ofUTF8(text);
    NSDictionary* table = propertyListFromStringsFileFormat(string);
    id list = propertyList(string);
    if (!table) return 0;
    for (auto [key, value] : table)
        fuzz::require(table->objectForKey(key) == value, "an entry is found by its key");
    NSDictionary* braced = propertyListFromStringsFileFormat(NSString::ofUTF8("{" + text + "\n}"));
    if (braced) fuzz::require(braced->isEqual(table), "braces change nothing");
    if (list) fuzz::require(list->isEqual(table), "a table is a list");
    return 0;
}
