// SPDX-License-Identifier: Apache-2.0
#include "Interface/Panels/PanelMessages.h"

#include <cerrno>

#include "Foundation/LibraryTexts.h"
#include "Foundation/NSFileError.h"
#include "Interface/NSAlert.h"

namespace pelvor {

NSString* panelText(NSString* key) {
    NSString* text = localizedLibraryText(key);
    return text ? text : key->substringFromIndex(1);
}

void complain(NSString* key, NSString* name, NSString* reason) {
    constexpr NSUInteger kLongest = 80;
    if (name->length() > kLongest) name = name->substringToIndex(kLongest)->stringByAppendingString(u"…"_ns);
    auto alert = NSAlert::init();
    alert->setMessageText(NSString::stringWithFormat(panelText(key), name, reason));
    alert->runModal();
}

void complainOfFile(NSString* key, NSString* name, NSString* path, bool isWriting) {
    complain(key, name, NSFileError::errorWithCode_path_isWriting(errno, path, isWriting)->localizedReason());
}

}  // namespace pelvor
