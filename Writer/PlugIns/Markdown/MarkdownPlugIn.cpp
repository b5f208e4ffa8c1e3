// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Markdown/MarkdownPlugIn.h"

#include "BaseLibrary.h"
#include "Writer/PlugIns/Markdown/WRMarkdownReader.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&WRMarkdownReader::classRecord};

}  // namespace

constinit Library markdownPlugIn{"Markdown", kDependencies, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::markdownPlugIn)
