// SPDX-License-Identifier: Apache-2.0
#include "Writer/Recovery/RecoveryLibrary.h"

#include "Text/TextLibrary.h"
#include "Writer/Recovery/WRRecoveryJournal.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&textLibrary};
constexpr Class* kClasses[] = {&WRRecoveryJournal::classRecord};

}  // namespace

constinit Library recoveryLibrary{"WriterRecovery", kDependencies, kClasses, {}};

}  // namespace pelvor
