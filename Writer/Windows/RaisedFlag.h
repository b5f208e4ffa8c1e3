// SPDX-License-Identifier: Apache-2.0
// RaisedFlag: a flag that is true for a while.
#pragma once

namespace pelvor {

/// Raises the flag for as long as the object lives, however the work in between ends.
class RaisedFlag {
  public:
    explicit RaisedFlag(bool& flag) : _flag(flag) { _flag = true; }
    ~RaisedFlag() { _flag = false; }
    RaisedFlag(const RaisedFlag&) = delete;
    RaisedFlag& operator=(const RaisedFlag&) = delete;

  private:
    bool& _flag;
};

}  // namespace pelvor
