#pragma once

#include <memory>

#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"
#include "support/byte_files.h"

namespace romsteward::test {

/// A fresh settings store in a temporary directory, for tests of anything that reads or
/// writes settings. Close() lets it go; Reopen() reads it afresh, as a restart would.
class SettingsTest : public ByteFileTest {
protected:
  void SetUp() override { Reopen(); }
  void Reopen();
  void Close() {
    m_settings.reset();
    m_store.reset();
  }

  RegistryStore& Store() { return *m_store; }
  AppSettings& Settings() { return *m_settings; }
  /// The store's value of `name` in `section`, or "<missing>".
  std::string Stored(std::string_view section, std::string_view name) const;

private:
  std::unique_ptr<RegistryStore> m_store;
  std::unique_ptr<AppSettings> m_settings;
};

}  // namespace romsteward::test
