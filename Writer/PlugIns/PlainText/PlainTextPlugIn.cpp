// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/PlainText/PlainTextPlugIn.h"

#include "BaseLibrary.h"
#include "Writer/PlugIns/PlainText/WRPlainTextReader.h"
#include "Writer/PlugIns/PlainText/WRPlainTextWriter.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&WRPlainTextReader::classRecord, &WRPlainTextWriter::classRecord};

}  // namespace

constinit Library plainTextPlugIn{"PlainText", kDependencies, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::plainTextPlugIn)
