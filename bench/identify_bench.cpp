// Identification speed against sha1sum of the same files: romsteward-tool identify hashes a
// collection (CRC32 and SHA-1 of each image in plain order, SMD and MD de-interleaved) and
// sha1sum reads the same files once. The counter x_sha1sum is identify's wall time over
// sha1sum's; the goal is at most 1.5.
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
#include "core/demo/demo_dat.h"

extern char** environ;

namespace {

using namespace romsteward;

constexpr std::size_t kImageSize = 4 * 1024 * 1024;
constexpr int kImages = 12;

// A collection of 48 MiB in every layout, with a DAT naming half of it.
class Collection {
public:
  Collection() {
    m_dir = std::filesystem::temp_directory_path() /
            ("romsteward-identify-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(m_dir);
    std::vector<DemoDatGame> games;
    for (int i = 0; i < kImages; ++i) {
      CartridgeSpec spec;
      spec.size = kImageSize;
      spec.seed = static_cast<std::uint32_t>(i + 1);
      const std::string logical = BuildCartridgeImage(spec);
      const Layout layout = i % 3 == 0 ? Layout::Bin : i % 3 == 1 ? Layout::Smd : Layout::Md;
      const auto path =
          m_dir / ("game" + std::to_string(i) + "." + ToLower(std::string(LayoutCode(layout))));
      if (!WriteFileAtomically(path, EncodeImage(logical, layout))) std::abort();
      m_files.push_back(path.string());
      if (i % 2 == 0) games.push_back({"Game " + std::to_string(i), logical});
    }
    m_dat = (m_dir / "bench.dat").string();
    if (!WriteFileAtomically(m_dat, BuildDemoDat(games))) std::abort();
  }
  ~Collection() {
    std::error_code ignored;
    std::filesystem::remove_all(m_dir, ignored);
  }
  const std::vector<std::string>& Files() const { return m_files; }
  const std::string& Dat() const { return m_dat; }

private:
  static std::string ToLower(std::string text) {
    for (char& c : text)
      c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
  }
  std::filesystem::path m_dir;
  std::vector<std::string> m_files;
  std::string m_dat;
};

const Collection& TheCollection() {
  static const Collection collection;
  return collection;
}

double Seconds(std::chrono::steady_clock::duration duration) {
  return std::chrono::duration<double>(duration).count();
}

double Sha1sumSeconds(const std::vector<std::string>& files) {
  return bench::PeerCommandSeconds("sha1sum", files);
}

std::int64_t TotalBytes(const std::vector<std::string>& files) {
  std::int64_t total = 0;
  for (const std::string& file : files)
    total += static_cast<std::int64_t>(std::filesystem::file_size(file));
  return total;
}

void BM_Sha1sum(benchmark::State& state) {
  const auto& files = TheCollection().Files();
  for (auto _ : state) {
    if (Sha1sumSeconds(files) < 0) state.SkipWithError("sha1sum could not be run");
  }
  state.SetBytesProcessed(state.iterations() * TotalBytes(files));
}

// The whole command, DAT reading and matching included; sha1sum is timed beside it in the
// same rounds, so both see the same page cache and the same load on the machine.
void BM_ToolIdentify(benchmark::State& state) {
  const auto& files = TheCollection().Files();
  std::vector<std::string> args{"identify", "--dat", TheCollection().Dat()};
  args.insert(args.end(), files.begin(), files.end());
  double identifySeconds = 0;
  double sha1sumSeconds = 0;
  for (auto _ : state) {
    std::ostringstream out;
    std::ostringstream err;
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(cli::RunTool(args, out, err));
    identifySeconds += Seconds(std::chrono::steady_clock::now() - start);
    state.PauseTiming();
    const double sha1sum = Sha1sumSeconds(files);
    if (sha1sum < 0) state.SkipWithError("sha1sum could not be run");
    sha1sumSeconds += sha1sum;
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * TotalBytes(files));
  if (sha1sumSeconds > 0) state.counters["x_sha1sum"] = identifySeconds / sha1sumSeconds;
}

BENCHMARK(BM_Sha1sum)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ToolIdentify)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
