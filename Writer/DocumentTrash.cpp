// SPDX-License-Identifier: Apache-2.0
#include "Writer/DocumentTrash.h"

#include "Foundation/NSFileError.h"
#include "NSFileManager-PelvorAdditions.h"
#include "Writer/LocalizedText.h"
#include "Writer/WRReport.h"

namespace pelvor {

NSString* throwDocumentAway(NSString* path, WRReport* report) {
    NSString* place = nullptr;
    if (trashFileAtPath_placeInTrash(NSFileManager::defaultManager(), path, &place) != PBFileOperationSuccess)
        return localizedFormat(u"_The document \"%@\" was not moved to the trash: %@."_ns, path,
                               NSFileError::lastWriteErrorAtPath(path)->localizedReason());
    report->addHeading(localized(u"_In the trash"_ns));
    report->addLabel_value(localized(u"_Path"_ns), place);
    return nullptr;
}

}  // namespace pelvor
