#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/cart/layout.h"
#include "core/demo/cartridge_builder.h"
#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward::test {

/// Fixture for commands that work on a place full of images: a scripted host, a settings
/// store of its own, and helpers that craft folders, images and archives.
class PlaceTest : public TempDirTest {
protected:
  PlaceTest();

  AppSettings& Settings() { return *m_settings; }

  /// A new folder below the test directory, as UTF-8 text the way places are kept.
  std::string MakeDir(std::string_view name);
  /// A made-up cartridge in `layout`, written as `dir`/`name`.
  void WriteImage(std::string_view dir, std::string_view name, Layout layout,
                  const CartridgeSpec& spec = {});
  /// A ZIP archive of the members as `dir`/`name`; returns its path as text.
  std::string WriteZip(std::string_view dir, std::string_view name,
                       const std::vector<std::pair<std::string, std::string>>& members);
  /// The bytes of a made-up cartridge in `layout`.
  static std::string ImageBytes(Layout layout, const CartridgeSpec& spec = {});

  ScriptedHost host;

private:
  std::unique_ptr<RegistryStore> m_store;
  std::unique_ptr<AppSettings> m_settings;
};

}  // namespace romsteward::test
