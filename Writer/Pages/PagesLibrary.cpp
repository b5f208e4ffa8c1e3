// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/PagesLibrary.h"

#include "BaseTextLibrary.h"
#include "Writer/Pages/WRMutableSheetParagraphStyle.h"
#include "Writer/Pages/WRPageLayoutManager.h"
#include "Writer/Pages/WRPictureCell.h"
#include "Writer/Pages/WRSheetParagraphStyle.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseTextLibrary};
constexpr Class* kClasses[] = {&WRMutableSheetParagraphStyle::classRecord, &WRPageLayoutManager::classRecord,
                               &WRPictureCell::classRecord, &WRSheetParagraphStyle::classRecord};

}  // namespace

constinit Library pagesLibrary{"WriterPages", kDependencies, kClasses, {}};

}  // namespace pelvor
