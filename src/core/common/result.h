#pragma once

#include <string>
#include <utility>
#include <variant>

namespace romsteward {

/// An expected failure: what went wrong, in words fit to show the user.
struct Error {
  std::string message;
  int systemError = 0;  ///< the errno behind it, when the system reported one
};

/// Either a value or an Error. Expected failures travel as values, never as exceptions.
template <class T>
class [[nodiscard]] Result {
public:
  Result(T value) : m_state(std::move(value)) {}
  Result(Error error) : m_state(std::move(error)) {}

  bool ok() const { return std::holds_alternative<T>(m_state); }
  explicit operator bool() const { return ok(); }

  T& value() & { return std::get<T>(m_state); }
  const T& value() const& { return std::get<T>(m_state); }
  T&& value() && { return std::get<T>(std::move(m_state)); }
  T* operator->() { return &value(); }
  const T* operator->() const { return &value(); }
  T& operator*() & { return value(); }
  const T& operator*() const& { return value(); }

  const Error& error() const { return std::get<Error>(m_state); }

private:
  std::variant<T, Error> m_state;
};

template <>
class [[nodiscard]] Result<void> {
public:
  Result() = default;
  Result(Error error) : m_error(std::move(error)), m_ok(false) {}

  bool ok() const { return m_ok; }
  explicit operator bool() const { return m_ok; }
  const Error& error() const { return m_error; }

private:
  Error m_error;
  bool m_ok = true;
};

using Status = Result<void>;

}  // namespace romsteward
