// SPDX-License-Identifier: Apache-2.0
#include "Foundation/LibraryTexts.h"

#include <mutex>
#include <vector>

#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/Texts/LibraryTables.h"
#include "Foundation/UserLanguages.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

// The table of a place in the list, which is read once and then kept.
NSDictionary* tableAt(std::size_t index) {
    static std::mutex mutex;
    static auto& tables = *new std::vector<NSDictionary*>(libraryTables.size());
    std::lock_guard guard(mutex);
    if (tables[index]) return tables[index];
    AutoreleasePool pool;
    NSData* data = NSData::of(std::as_bytes(std::span(libraryTables[index].strings)));
    NSPropertyListFormat format;
    id list = NSPropertyListSerialization::propertyListWithData_options_format_error(
        data, NSPropertyListImmutable, &format, nullptr);
    return tables[index] = Retained<NSDictionary>::retaining(cast<NSDictionary>(list)).leak();
}

std::size_t indexOfUsersTable() {
    AutoreleasePool pool;
    for (id language : userLanguages()) {
        const std::string name = static_cast<NSString*>(language)->toUTF8();
        for (std::size_t index = 0; index < libraryTables.size(); ++index)
            if (name == libraryTables[index].language) return index;
    }
    return 0;
}

}  // namespace

NSString* localizedLibraryText(NSString* key) {
    if (!key) return nullptr;
    if (auto* text = cast<NSString>(tableAt(indexOfUsersTable())->objectForKey(key))) return text;
    return cast<NSString>(tableAt(0)->objectForKey(key));
}

}  // namespace pelvor
