#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/common/result.h"

namespace romsteward {

/// Named byte-string values under keys named by full key paths, with the registry's rules:
/// key paths and value names compare case-insensitively (ASCII), values keep 0x00 bytes,
/// a key's values enumerate in the order they were first created (overwriting keeps the
/// place), and every call reports success or failure (deleting a missing value fails).
/// Backed by one SQLite file in WAL mode, so two running copies can share it.
class RegistryStore {
public:
  /// Opens or creates the store. A file that is not a store, or a damaged one, is left
  /// untouched and reported with its name and the reason.
  static Result<std::unique_ptr<RegistryStore>> Open(const std::filesystem::path& file);

  /// $ROMSTEWARD_SETTINGS, else $XDG_CONFIG_HOME/romsteward/settings.sqlite3 (with
  /// ~/.config when XDG_CONFIG_HOME is unset).
  static std::filesystem::path DefaultLocation();

  ~RegistryStore();
  RegistryStore(const RegistryStore&) = delete;
  RegistryStore& operator=(const RegistryStore&) = delete;

  const std::filesystem::path& File() const;

  /// Creates the key when it is missing. Names may hold any byte but 0x00.
  Status SetValue(std::string_view keyPath, std::string_view name, std::string_view data);
  /// Several values of one key in one transaction: all are written or none.
  Status SetValues(std::string_view keyPath,
                   const std::vector<std::pair<std::string, std::string>>& values);
  /// Values of one key made one at a time by `next` (nullopt when there are no more), in one
  /// transaction: all are written or none. An Error from `next` (a cancel) writes nothing and
  /// is returned.
  using NamedValue = std::pair<std::string, std::string>;
  Status SetValuesFrom(std::string_view keyPath,
                       const std::function<Result<std::optional<NamedValue>>()>& next);
  Result<std::string> GetValue(std::string_view keyPath, std::string_view name) const;
  bool HasValue(std::string_view keyPath, std::string_view name) const;
  Status DeleteValue(std::string_view keyPath, std::string_view name);
  /// Value names in creation order; a key that does not exist fails.
  Result<std::vector<std::string>> EnumerateValueNames(std::string_view keyPath) const;
  /// Names and data in creation order; a key that does not exist fails.
  Result<std::vector<std::pair<std::string, std::string>>> EnumerateValues(
      std::string_view keyPath) const;
  /// Whether the key was ever created (a key keeps existing when its last value is deleted).
  bool KeyExists(std::string_view keyPath) const;
  /// Names of the keys directly below `keyPath`, in the order they were created; empty when
  /// there are none.
  Result<std::vector<std::string>> EnumerateSubkeyNames(std::string_view keyPath) const;

private:
  struct Impl;
  explicit RegistryStore(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> m_impl;
};

}  // namespace romsteward
