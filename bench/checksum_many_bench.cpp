// romsteward-tool checksum over 200 images of 4 MiB in one call, against cat of the same
// files into /dev/null: the goal is at most twice cat's time (counter x_cat). Both run from
// the page cache, each timed by the wall clock of its own runs.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "bench/support/peer_command.h"
#include "cli/tool.h"
#include "core/cart/convert.h"
#include "core/common/atomic_file.h"
#include "core/demo/cartridge_builder.h"

extern char** environ;

namespace {

using namespace romsteward;

constexpr int kImages = 200;
constexpr std::size_t kImageSize = 4 * 1024 * 1024;

class ManyImages {
public:
  ManyImages() {
    m_dir = std::filesystem::temp_directory_path() /
            ("romsteward-bench-many-" + std::to_string(::getpid()));
    std::filesystem::create_directories(m_dir);
    for (int i = 0; i < kImages; ++i) {
      CartridgeSpec spec;
      spec.size = kImageSize;
      spec.seed = static_cast<std::uint32_t>(i + 1);
      const Layout layout = i % 3 == 0 ? Layout::Bin : i % 3 == 1 ? Layout::Smd : Layout::Md;
      const auto path =
          m_dir / ("image" + std::to_string(i) + "." + std::string(LayoutCode(layout)));
      if (!WriteFileAtomically(path, EncodeImage(BuildCartridgeImage(spec), layout))) std::abort();
      m_files.push_back(path.string());
    }
  }
  ~ManyImages() {
    std::error_code ignored;
    std::filesystem::remove_all(m_dir, ignored);
  }
  const std::vector<std::string>& Files() const { return m_files; }

private:
  std::filesystem::path m_dir;
  std::vector<std::string> m_files;
};

const ManyImages& TheImages() {
  static const ManyImages images;
  return images;
}

double CatSeconds(const std::vector<std::string>& files) {
  const double seconds = bench::PeerCommandSeconds("cat", files);
  if (seconds < 0) std::abort();
  return seconds;
}

void BM_Cat200Images(benchmark::State& state) {
  const auto& files = TheImages().Files();
  CatSeconds(files);  // into the page cache
  for (auto _ : state)
    benchmark::DoNotOptimize(CatSeconds(files));
  state.SetBytesProcessed(state.iterations() * kImages * static_cast<std::int64_t>(kImageSize));
}

void BM_ToolChecksum200Images(benchmark::State& state) {
  const auto& files = TheImages().Files();
  std::vector<std::string> args{"checksum"};
  args.insert(args.end(), files.begin(), files.end());
  double catSeconds = 0;
  for (int i = 0; i < 3; ++i)
    catSeconds += CatSeconds(files) / 3;
  double toolSeconds = 0;
  for (auto _ : state) {
    std::ostringstream out;
    std::ostringstream err;
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(cli::RunTool(args, out, err));
    toolSeconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  state.SetBytesProcessed(state.iterations() * kImages * static_cast<std::int64_t>(kImageSize));
  if (state.iterations() > 0)
    state.counters["x_cat"] = toolSeconds / static_cast<double>(state.iterations()) / catSeconds;
}

BENCHMARK(BM_Cat200Images)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ToolChecksum200Images)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
