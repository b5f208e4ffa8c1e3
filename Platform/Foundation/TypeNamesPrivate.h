// SPDX-License-Identifier: Apache-2.0
// Type encodings that are only known at run time; for Foundation's own sources.
#pragma once

namespace pelvor {

/// The same text, living as long as the process. One copy of each is kept. Any thread.
const char* immortalTypeName(const char* type);

}  // namespace pelvor
