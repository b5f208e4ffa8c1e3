// SPDX-License-Identifier: Apache-2.0
#include "Writer/DocumentTrash.h"

#include "Foundation/NSFileError.h"
#include "NSFileManager-PelvorAdditions.h"
#include "Writer/LocalizedText.h"

namespace pelvor {

NSString* throwDocumentAway(NSString* path, NSString** place) {
    if (trashFileAtPath_placeInTrash(NSFileManager::defaultManager(), path, place) == PBFileOperationSuccess)
        return nullptr;
    return localizedFormat(u"_The document \"%@\" was not moved to the trash: %@."_ns, path,
                           NSFileError::lastWriteErrorAtPath(path)->localizedReason());
}

}  // namespace pelvor
