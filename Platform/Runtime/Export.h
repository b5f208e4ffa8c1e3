// SPDX-License-Identifier: Apache-2.0
// Marks what a library shows to the programs that link it; all else stays inside.
#pragma once

#define PELVOR_EXPORT __attribute__((visibility("default")))
