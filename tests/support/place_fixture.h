#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/cart/convert.h"
#include "core/common/strings.h"
#include "core/demo/cartridge_builder.h"
#include "core/demo/demo_collection.h"
#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"
#include "support/scripted_host.h"
#include "support/temp_dir.h"

namespace romsteward::test {

/// Fixture for commands that work on a place full of images: a scripted host, a settings
/// store of its own, and helpers that craft folders, images and archives.
class PlaceTest : public TempDirTest {
protected:
  PlaceTest()
      : m_store(std::move(RegistryStore::Open(PathOf("settings.sqlite3"))).value()),
        settings(*m_store) {}

  /// A new folder below the test directory, as the UTF-8 text places are kept in.
  std::string MakeDir(std::string_view name) {
    std::filesystem::create_directories(PathOf(name));
    return PathToUtf8(PathOf(name));
  }
  static std::string ImageBytes(Layout layout, const CartridgeSpec& spec = {}) {
    return EncodeImage(BuildCartridgeImage(spec), layout);
  }
  /// Writes `bytes` as `dir`/`name` and returns the path as text.
  static std::string Put(std::string_view dir, std::string_view name, std::string_view bytes) {
    const std::string path = JoinDirName(dir, name);
    WriteTestFile(Utf8ToPath(path), bytes);
    return path;
  }
  static std::string Zip(const std::vector<std::pair<std::string, std::string>>& members) {
    auto zip = BuildZipArchive(members);
    return zip ? *zip : std::string();
  }

private:
  std::unique_ptr<RegistryStore> m_store;

protected:
  ScriptedHost host;
  AppSettings settings;
};

}  // namespace romsteward::test
