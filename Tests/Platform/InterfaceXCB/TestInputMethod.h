// SPDX-License-Identifier: Apache-2.0
// TestInputMethod: a small input method, which a test may have hang or end.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <thread>

namespace pelvor {

/// The key "a" joins the letter "啊" to what is being composed, whose first letter is highlighted, and Return
/// commits that; "x" is swallowed; all other keys are sent back. XMODIFIERS names it.
class TestInputMethod {
  public:
    /// `encoding` is "COMPOUND_TEXT" or "UTF8_STRING".
    explicit TestInputMethod(const char* encoding = "COMPOUND_TEXT");
    ~TestInputMethod();

    std::atomic<bool> hangs = false;
    std::atomic<int> focusCount = 0;  ///< how often a window of a client got the focus
    std::atomic<int> keyCount = 0;
    std::atomic<int> spotX = -1;  ///< where lists of candidates would be shown

  private:
    struct Server;
    void run();

    std::string _encoding;
    std::atomic<bool> _ends = false;
    std::atomic<bool> _isReady = false;
    std::thread _thread;
};

}  // namespace pelvor
