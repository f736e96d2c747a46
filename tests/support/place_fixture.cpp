#include "support/place_fixture.h"

#include "core/cart/convert.h"
#include "core/common/strings.h"
#include "core/demo/demo_collection.h"

namespace romsteward::test {

PlaceTest::PlaceTest() {
  auto store = RegistryStore::Open(PathOf("settings.sqlite3"));
  if (!store) {
    ADD_FAILURE() << store.error().message;
    return;
  }
  m_store = std::move(store).value();
  m_settings = std::make_unique<AppSettings>(*m_store);
}

std::string PlaceTest::MakeDir(std::string_view name) {
  const auto path = PathOf(name);
  std::filesystem::create_directories(path);
  return PathToUtf8(path);
}

std::string PlaceTest::ImageBytes(Layout layout, const CartridgeSpec& spec) {
  return EncodeImage(BuildCartridgeImage(spec), layout);
}

void PlaceTest::WriteImage(std::string_view dir, std::string_view name, Layout layout,
                           const CartridgeSpec& spec) {
  WriteTestFile(Utf8ToPath(JoinDirName(dir, name)), ImageBytes(layout, spec));
}

std::string PlaceTest::WriteZip(std::string_view dir, std::string_view name,
                                const std::vector<std::pair<std::string, std::string>>& members) {
  auto zip = BuildZipArchive(members);
  if (!zip) ADD_FAILURE() << zip.error().message;
  const std::string path = JoinDirName(dir, name);
  WriteTestFile(Utf8ToPath(path), zip ? *zip : std::string());
  return path;
}

}  // namespace romsteward::test
