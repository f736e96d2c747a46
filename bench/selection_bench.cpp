// The selection update: what a click on a 4 MiB image in the list costs (detection, header,
// copier-header and size checks, saved games, the option controls). The goal is one frame,
// 16 ms. Two images are selected in turn, so every step really updates the panel.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>

#include "cli/terminal_host.h"
#include "core/app/main_window_model.h"
#include "core/cart/convert.h"
#include "core/common/atomic_file.h"
#include "core/common/strings.h"
#include "core/demo/cartridge_builder.h"
#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"

namespace romsteward {
namespace {

constexpr std::size_t kImageSize = 4 * 1024 * 1024;

void Selection(benchmark::State& state, Layout layout) {
  std::string pattern =
      (std::filesystem::temp_directory_path() / "romsteward-bench-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    state.SkipWithError("cannot create a folder");
    return;
  }
  const std::filesystem::path root = pattern;
  std::filesystem::create_directory(root / "roms");
  for (std::uint32_t seed : {1u, 2u}) {
    CartridgeSpec spec;
    spec.size = kImageSize;
    spec.seed = seed;
    spec.backupRam = seed == 2;
    const auto name = "game" + std::to_string(seed) + "." + std::string(LayoutCode(layout));
    if (!WriteFileAtomically(root / "roms" / name, EncodeImage(BuildCartridgeImage(spec), layout)))
      state.SkipWithError("cannot write the images");
  }
  {
    auto store = RegistryStore::Open(root / "settings.sqlite3");
    if (!store) {
      state.SkipWithError("cannot open the settings");
      return;
    }
    AppSettings settings(**store);
    std::istringstream noInput;
    std::ostringstream discarded;
    cli::TerminalHost host(noInput, discarded, {});
    MainWindowModel model(host, settings);
    if (!model.SetDiret(PathToUtf8(root / "roms"))) state.SkipWithError("cannot list");
    std::size_t next = 0;
    for (auto _ : state) {
      model.Select(next);
      next ^= 1;
      benchmark::DoNotOptimize(model.Texts());
    }
  }
  std::error_code ignored;
  std::filesystem::remove_all(root, ignored);
}

void BM_SelectBin(benchmark::State& state) {
  Selection(state, Layout::Bin);
}
void BM_SelectSmd(benchmark::State& state) {
  Selection(state, Layout::Smd);
}
void BM_SelectMd(benchmark::State& state) {
  Selection(state, Layout::Md);
}

BENCHMARK(BM_SelectBin)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SelectSmd)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SelectMd)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace romsteward
