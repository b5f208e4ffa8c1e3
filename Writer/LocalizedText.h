// SPDX-License-Identifier: Apache-2.0
// Writer's messages in the user's language.
#pragma once

#include "Foundation/NSString.h"
#include "PBUtil.h"

namespace pelvor {

/// The text for the key in Writer's own string table; the key itself if the table has no text for it.
/// Borrowed.
inline NSString* localized(NSString* key) { return _PBDoLocalize(key, nullptr); }

/// The text for the key with the arguments in place:
///
///     complain(localizedFormat(u"_The line \"%@\" means nothing."_ns, line));
template <class... Arguments>
NSString* localizedFormat(NSString* key, const Arguments&... arguments) {
    return NSString::stringWithFormat(localized(key), arguments...);
}

}  // namespace pelvor
