// The ROM list of a directory of 10,000 files, in both sort orders: what F5 costs.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "cli/terminal_host.h"
#include "core/app/main_window_model.h"
#include "core/common/strings.h"
#include "core/host/host.h"
#include "core/library/rom_sort.h"
#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"

namespace romsteward {
namespace {

constexpr int kFiles = 10000;

// Names as collections have them: titles of a few words, region tags, the four image
// extensions and some other files; in the random order a file system hands them out.
std::vector<std::string> CollectionNames() {
  static const char* const kWords[] = {"Star",  "Harbor", "Quiet", "Orbit",  "Iron",
                                       "Coral", "Tin",    "Comet", "Velvet", "Lantern",
                                       "Storm", "Knight", "Racer", "Galaxy", "Dragon"};
  static const char* const kTags[] = {" (U)", " (E)", " (J)", " (W)", " (U) [!]", ""};
  static const char* const kExtensions[] = {".bin", ".smd", ".md", ".1", ".BIN", ".txt"};
  std::mt19937 random(2024);
  std::vector<std::string> names;
  for (int i = 0; i < kFiles; ++i) {
    std::string name;
    const int words = 1 + static_cast<int>(random() % 4);
    for (int w = 0; w < words; ++w)
      name += std::string(w ? " " : "") + kWords[random() % 15];
    name += " " + std::to_string(i) + kTags[random() % 6] + kExtensions[random() % 6];
    names.push_back(std::move(name));
  }
  return names;
}

class Collection {
public:
  Collection() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "romsteward-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) return;
    m_root = pattern;
    std::filesystem::create_directory(m_root / "roms");
    for (const std::string& name : CollectionNames())
      std::ofstream(m_root / "roms" / name);
    auto store = RegistryStore::Open(m_root / "settings.sqlite3");
    if (!store) return;
    m_store = std::move(store).value();
    m_settings = std::make_unique<AppSettings>(*m_store);
  }
  ~Collection() {
    m_settings.reset();
    m_store.reset();
    std::error_code ignored;
    if (!m_root.empty()) std::filesystem::remove_all(m_root, ignored);
  }
  bool Ready() const { return m_settings != nullptr; }
  std::string Dir() const { return PathToUtf8(m_root / "roms"); }
  AppSettings& Settings() { return *m_settings; }

private:
  std::filesystem::path m_root;
  std::unique_ptr<RegistryStore> m_store;
  std::unique_ptr<AppSettings> m_settings;
};

Collection& SharedCollection() {
  static Collection collection;
  return collection;
}

void RefreshRomList(benchmark::State& state, SortOrder order) {
  Collection& collection = SharedCollection();
  if (!collection.Ready()) {
    state.SkipWithError("cannot create the test collection");
    return;
  }
  // Nothing is asked while a list is refreshed; without a terminal every prompt would get
  // its safe answer and print to the discarded stream.
  std::istringstream noInput;
  std::ostringstream discarded;
  cli::TerminalHost host(noInput, discarded, {});
  MainWindowModel model(host, collection.Settings());
  model.ChooseSort(order);
  if (!model.SetDiret(collection.Dir())) {
    state.SkipWithError("cannot open the test collection");
    return;
  }
  for (auto _ : state) {
    model.RefreshRomList();
    benchmark::DoNotOptimize(model.Entries().data());
  }
  state.counters["entries"] = static_cast<double>(model.Entries().size());
}

void BM_RefreshRomListByName(benchmark::State& state) {
  RefreshRomList(state, SortOrder::Name);
}
void BM_RefreshRomListByType(benchmark::State& state) {
  RefreshRomList(state, SortOrder::Type);
}

// The sort alone, on the names in the order the directory gave them.
void SortOnly(benchmark::State& state, SortOrder order) {
  const std::vector<std::string> names = CollectionNames();
  for (auto _ : state) {
    std::vector<std::string> copy = names;
    SortRomNames(copy, order);
    benchmark::DoNotOptimize(copy.data());
  }
}

void BM_SortRomNamesByName(benchmark::State& state) {
  SortOnly(state, SortOrder::Name);
}
void BM_SortRomNamesByType(benchmark::State& state) {
  SortOnly(state, SortOrder::Type);
}

BENCHMARK(BM_RefreshRomListByName)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RefreshRomListByType)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortRomNamesByName)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortRomNamesByType)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace romsteward
