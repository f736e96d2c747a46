// Checksum speed against the memory-bound limit: each layout's 4 MiB image is summed from the
// page cache and, beside it, merely read with the same buffer size. The counter x_read is the
// checksum's time over the plain read's; the goal is at most 1.5.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "cli/tool.h"
#include "core/cart/checksum.h"
#include "core/cart/convert.h"
#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/demo/cartridge_builder.h"
#include "core/demo/demo_collection.h"

namespace {

using namespace romsteward;

constexpr std::size_t kImageSize = 4 * 1024 * 1024;
constexpr std::size_t kReadSize = 64 * 1024;  // what CalcChecksum reads per call

// One image per layout in a directory that lives as long as the program.
class Images {
public:
  Images() {
    m_dir =
        std::filesystem::temp_directory_path() / ("romsteward-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(m_dir);
    CartridgeSpec spec;
    spec.size = kImageSize;
    const std::string logical = BuildCartridgeImage(spec);
    for (Layout layout : {Layout::Bin, Layout::Smd, Layout::Md}) {
      if (!WriteFileAtomically(PathOf(layout), EncodeImage(logical, layout))) std::abort();
    }
    if (!WriteDemoCollection(DemoDir())) std::abort();
  }
  ~Images() {
    std::error_code ignored;
    std::filesystem::remove_all(m_dir, ignored);
  }
  std::filesystem::path PathOf(Layout layout) const {
    return m_dir / ("image." + std::string(LayoutCode(layout)));
  }

  std::filesystem::path DemoDir() const { return m_dir / "demo"; }

private:
  std::filesystem::path m_dir;
};

const Images& TheImages() {
  static const Images images;
  return images;
}

BinaryFile OpenImage(Layout layout) {
  auto file = BinaryFile::Open(TheImages().PathOf(layout));
  if (!file) std::abort();
  return std::move(*file);
}

std::uint64_t ReadWhole(const BinaryFile& file, std::span<char> buffer) {
  std::uint64_t total = 0;
  const std::uint64_t length = file.Size();
  for (std::uint64_t at = 0; at < length; at += buffer.size())
    total += file.ReadInto(at, buffer);
  return total;
}

// CPU time of this thread: other work on a shared machine does not count against either side.
double ThreadSeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double SecondsPerRead(const BinaryFile& file, std::span<char> buffer) {
  constexpr int kRounds = 200;
  ReadWhole(file, buffer);  // into the page cache
  const double start = ThreadSeconds();
  for (int i = 0; i < kRounds; ++i)
    benchmark::DoNotOptimize(ReadWhole(file, buffer));
  return (ThreadSeconds() - start) / kRounds;
}

void BM_PlainRead(benchmark::State& state, Layout layout) {
  const BinaryFile file = OpenImage(layout);
  auto buffer = std::make_unique<char[]>(kReadSize);
  for (auto _ : state)
    benchmark::DoNotOptimize(ReadWhole(file, {buffer.get(), kReadSize}));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * file.Size()));
}

void BM_CalcChecksum(benchmark::State& state, Layout layout) {
  const BinaryFile file = OpenImage(layout);
  auto buffer = std::make_unique<char[]>(kReadSize);
  const double readSeconds = SecondsPerRead(file, {buffer.get(), kReadSize});
  double sumSeconds = 0;
  for (auto _ : state) {
    const double start = ThreadSeconds();
    auto sum = CalcChecksum(file, layout);
    sumSeconds += ThreadSeconds() - start;
    if (!sum) state.SkipWithError(sum.error().message.c_str());
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * file.Size()));
  if (state.iterations() > 0)
    state.counters["x_read"] = sumSeconds / static_cast<double>(state.iterations()) / readSeconds;
}

// romsteward-tool checksum over the demo collection, as a script would run it: every file
// opened, detected, summed and reported (the archive and the text file are refused).
void BM_ToolChecksumDemoCollection(benchmark::State& state) {
  std::vector<std::string> args{"checksum"};
  std::int64_t bytes = 0;
  for (const auto& entry : std::filesystem::directory_iterator(TheImages().DemoDir())) {
    args.push_back(entry.path().string());
    bytes += static_cast<std::int64_t>(entry.file_size());
  }
  for (auto _ : state) {
    std::ostringstream out;
    std::ostringstream err;
    benchmark::DoNotOptimize(cli::RunTool(args, out, err));
  }
  state.SetBytesProcessed(state.iterations() * bytes);
  state.counters["files"] = static_cast<double>(args.size() - 1);
}

BENCHMARK_CAPTURE(BM_PlainRead, bin, Layout::Bin);
BENCHMARK_CAPTURE(BM_CalcChecksum, bin, Layout::Bin);
BENCHMARK_CAPTURE(BM_PlainRead, smd, Layout::Smd);
BENCHMARK_CAPTURE(BM_CalcChecksum, smd, Layout::Smd);
BENCHMARK_CAPTURE(BM_PlainRead, md, Layout::Md);
BENCHMARK_CAPTURE(BM_CalcChecksum, md, Layout::Md);
BENCHMARK(BM_ToolChecksumDemoCollection)->Unit(benchmark::kMillisecond);

}  // namespace
