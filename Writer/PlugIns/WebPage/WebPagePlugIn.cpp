// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/WebPage/WebPagePlugIn.h"

#include "BaseLibrary.h"
#include "Writer/PlugIns/WebPage/WRWebPageWriter.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&WRWebPageWriter::classRecord};

}  // namespace

constinit Library webPagePlugIn{"WebPage", kDependencies, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::webPagePlugIn)
