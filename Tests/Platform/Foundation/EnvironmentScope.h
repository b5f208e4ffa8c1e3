// SPDX-License-Identifier: Apache-2.0
// EnvironmentScope: an environment variable that has another value for the time of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace pelvor {

class EnvironmentScope {
  public:
    /// No value takes the variable away.
    EnvironmentScope(const char* name, const char* value) : _name(name) {
        if (const char* before = std::getenv(name)) _before = before;
        set(value);
    }
    ~EnvironmentScope() { set(_before ? _before->c_str() : nullptr); }
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;

  private:
    void set(const char* value) {
        if (value)
            setenv(_name, value, 1);
        else
            unsetenv(_name);
    }

    const char* _name;
    std::optional<std::string> _before;
};

}  // namespace pelvor
