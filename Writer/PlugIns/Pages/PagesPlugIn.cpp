// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Pages/PagesPlugIn.h"

#include "BaseTextLibrary.h"
#include "Writer/PlugIns/Pages/WRPageLayoutManager.h"
#include "Writer/PlugIns/Pages/WRPageSetter.h"
#include "Writer/PlugIns/Pages/WRPictureCell.h"
#include "Writer/PlugIns/Pages/WRSheetParagraphStyle.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseTextLibrary};
constexpr Class* kClasses[] = {&WRPageLayoutManager::classRecord, &WRPageSetter::classRecord,
                               &WRPictureCell::classRecord, &WRSheetParagraphStyle::classRecord};

}  // namespace

constinit Library pagesPlugIn{"Pages", kDependencies, kClasses, {}};

}  // namespace pelvor
