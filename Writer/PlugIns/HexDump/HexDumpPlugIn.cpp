// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/HexDump/HexDumpPlugIn.h"

#include "BaseLibrary.h"
#include "Writer/PlugIns/HexDump/WRByteReader.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&WRByteReader::classRecord};

}  // namespace

constinit Library hexDumpPlugIn{"HexDump", kDependencies, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::hexDumpPlugIn)
