#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/patch/dynamic_patches.h"
#include "core/settings/registry_store.h"
#include "support/byte_files.h"
#include "support/scripted_host.h"

namespace romsteward::test {

/// A settings store in the test's directory, a scripted host and an image to patch.
class PatchStoreTest : public ByteFileTest {
protected:
  void SetUp() override {
    auto store = RegistryStore::Open(PathOf("settings.sqlite3"));
    ASSERT_TRUE(store.ok()) << store.error().message;
    m_store = std::move(store).value();
  }

  /// Stores a patch the way the patching window does.
  void StoreRaw(std::string_view valueName, std::string_view data) {
    ASSERT_TRUE(m_store->SetValue(PatchKeyPath(), valueName, data).ok());
  }
  std::string Stored(std::string_view valueName) const {
    auto data = m_store->GetValue(PatchKeyPath(), valueName);
    return data.ok() ? *data : "<missing>";
  }

  std::unique_ptr<RegistryStore> m_store;
  ScriptedHost m_host;
};

}  // namespace romsteward::test
