// SPDX-License-Identifier: Apache-2.0
// StuckTest: says where a test waits that does not end.
#pragma once

namespace pelvor {

/// Writes to standard error, shortly before CTest ends a test for taking too long, in which calls each of the
/// program's threads is. The test goes on. Lines like `libPelvorBase.so.1(+0x1234)` are read with
/// `addr2line -Cfpie LIBRARY 0x1234`.
struct StuckTest {
    /// Begins to count the time anew.
    static void begin();
    static void end();
};

}  // namespace pelvor
