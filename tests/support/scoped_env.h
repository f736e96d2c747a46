#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace romsteward::test {

/// Sets an environment variable (nullopt unsets it) until the object goes, then puts back
/// what was there.
class ScopedEnv {
public:
  ScopedEnv(const char* name, const std::optional<std::string>& value) : m_name(name) {
    if (const char* old = std::getenv(name)) m_saved = old;
    Apply(value);
  }
  ~ScopedEnv() { Apply(m_saved); }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
  void Apply(const std::optional<std::string>& value) {
    if (value) {
      setenv(m_name, value->c_str(), 1);
    } else {
      unsetenv(m_name);
    }
  }
  const char* m_name;
  std::optional<std::string> m_saved;
};

}  // namespace romsteward::test
