// SPDX-License-Identifier: Apache-2.0
// EnvironmentScope: another environment for the scope of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace pelvor {

/// Gives an environment variable another value for a scope.
class EnvironmentScope {
  public:
    /// No value takes the variable away.
    EnvironmentScope(const char* name, const char* value) : _name(name) {
        if (const char* before = std::getenv(name)) _before = before;
        set(value);
    }
    ~EnvironmentScope() { set(_before ? _before->c_str() : nullptr); }
    EnvironmentScope(const EnvironmentScope&) = delete;

  private:
    void set(const char* value) { value ? setenv(_name, value, 1) : unsetenv(_name); }

    const char* _name;
    std::optional<std::string> _before;
};

/// The environment in which the user reads these languages, "fr_CA:de", for a scope.
struct LanguageScope {
    explicit LanguageScope(const char* languages) : _languages("LANGUAGE", languages) {}

  private:
    EnvironmentScope _languages, _locale{"LC_ALL", "en_US.UTF-8"};
};

}  // namespace pelvor
