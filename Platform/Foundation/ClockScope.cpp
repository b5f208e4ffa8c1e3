// SPDX-License-Identifier: Apache-2.0
#include "Foundation/ClockScope.h"

namespace pelvor {
namespace {

constinit thread_local ClockScope* currentScope = nullptr;

}  // namespace

ClockScope::ClockScope(NSTimeInterval start) noexcept : _steadyTime(start), _outer(currentScope) {
    currentScope = this;
}

ClockScope::~ClockScope() { currentScope = _outer; }

ClockScope* ClockScope::current() noexcept { return currentScope; }

}  // namespace pelvor
