#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "core/settings/app_settings.h"
#include "support/temp_dir.h"

namespace romsteward::test {

/// A temporary directory with a settings store; Reopen() reads it afresh, as a restart would.
class StoreTest : public TempDirTest {
protected:
  void SetUp() override { Reopen(); }
  void Reopen() {
    m_settings.reset();
    m_store = RegistryStore::Open(PathOf("settings.sqlite3")).value();
    m_settings = std::make_unique<AppSettings>(*m_store);
  }
  AppSettings& Settings() { return *m_settings; }

private:
  std::unique_ptr<RegistryStore> m_store;
  std::unique_ptr<AppSettings> m_settings;
};

}  // namespace romsteward::test
