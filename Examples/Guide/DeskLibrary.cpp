// SPDX-License-Identifier: Apache-2.0
#include "DeskLibrary.h"

#include "BaseLibrary.h"
#include "DKDesk.h"
#include "DKTask.h"

namespace desk {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&DKDesk::classRecord, &DKTask::classRecord};

}  // namespace

constinit Library deskLibrary{"Desk", kDependencies, kClasses, {}};

}  // namespace desk
