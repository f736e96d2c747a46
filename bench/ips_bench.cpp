// Creating an IPS patch between two 4 MiB images, reported as MB/s of image compared.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/patch/ips_create.h"

namespace {

constexpr std::size_t kImageSize = 4 * 1024 * 1024;

struct ImagePair {
  std::string unchanged;
  std::string changed;
};

// A typical hack: a few hundred scattered edits of 1 to 16 bytes and one long rewritten run.
ImagePair ScatteredEditsAndOneLongRun() {
  std::mt19937 random(1994);
  ImagePair pair;
  pair.unchanged.resize(kImageSize);
  for (char& byte : pair.unchanged)
    byte = static_cast<char>(random());
  pair.changed = pair.unchanged;
  for (int i = 0; i < 400; ++i) {
    const std::size_t at = random() % (kImageSize - 16);
    const std::size_t length = 1 + random() % 16;
    for (std::size_t k = at; k < at + length; ++k)
      pair.changed[k] ^= 0x5A;
  }
  for (std::size_t k = 0x200000; k < 0x200000 + 60000; ++k)
    pair.changed[k] ^= 0xFF;
  return pair;
}

// The worst case for the comparison: every other byte differs.
ImagePair AlternatingBytes() {
  ImagePair pair;
  pair.unchanged.assign(kImageSize, '\0');
  pair.changed = pair.unchanged;
  for (std::size_t k = 0; k < kImageSize; k += 2)
    pair.changed[k] = '\1';
  return pair;
}

void Run(benchmark::State& state, const ImagePair& pair) {
  for (auto _ : state) {
    auto patch = romsteward::DiffToIps(pair.unchanged, pair.changed);
    benchmark::DoNotOptimize(patch);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kImageSize));
}

void BM_CreateIps_ScatteredAndLongRun(benchmark::State& state) {
  static const ImagePair pair = ScatteredEditsAndOneLongRun();
  Run(state, pair);
}

void BM_CreateIps_Identical(benchmark::State& state) {
  static const ImagePair pair{std::string(kImageSize, 'x'), std::string(kImageSize, 'x')};
  Run(state, pair);
}

void BM_CreateIps_AlternatingBytes(benchmark::State& state) {
  static const ImagePair pair = AlternatingBytes();
  Run(state, pair);
}

// The whole command on files, as `ips create` runs it: two 4 MiB images with 300 scattered
// changes read, compared and the patch written, against a plain read of both files from the
// page cache. The counter x_read is the first's time over the second's; the goal is 3.
class PatchFiles {
public:
  PatchFiles() {
    m_dir = std::filesystem::temp_directory_path() /
            ("romsteward-bench-ips-" + std::to_string(::getpid()));
    std::filesystem::create_directories(m_dir);
    std::mt19937 random(300);
    std::string unchanged(kImageSize, '\0');
    for (char& byte : unchanged)
      byte = static_cast<char>(random());
    std::string changed = unchanged;
    for (int i = 0; i < 300; ++i)
      changed[random() % kImageSize] ^= 0x21;
    if (!romsteward::WriteFileAtomically(Unchanged(), unchanged) ||
        !romsteward::WriteFileAtomically(Changed(), changed))
      std::abort();
  }
  ~PatchFiles() {
    std::error_code ignored;
    std::filesystem::remove_all(m_dir, ignored);
  }
  std::filesystem::path Unchanged() const { return m_dir / "unchanged.bin"; }
  std::filesystem::path Changed() const { return m_dir / "changed.bin"; }
  std::filesystem::path Output() const { return m_dir / "changed.ips"; }

private:
  std::filesystem::path m_dir;
};

double Seconds(const std::chrono::steady_clock::time_point& start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_PlainReadOfBothFiles(benchmark::State& state) {
  static const PatchFiles files;
  for (auto _ : state) {
    benchmark::DoNotOptimize(romsteward::ReadWholeFile(files.Unchanged()));
    benchmark::DoNotOptimize(romsteward::ReadWholeFile(files.Changed()));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * 2 * kImageSize));
}

void BM_CreateIpsFile_300Changes(benchmark::State& state) {
  static const PatchFiles files;
  constexpr int kReads = 50;
  auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kReads; ++i) {
    benchmark::DoNotOptimize(romsteward::ReadWholeFile(files.Unchanged()));
    benchmark::DoNotOptimize(romsteward::ReadWholeFile(files.Changed()));
  }
  const double readSeconds = Seconds(start) / kReads;
  double createSeconds = 0;
  for (auto _ : state) {
    start = std::chrono::steady_clock::now();
    auto patch = romsteward::CreateIpsFile(files.Unchanged(), files.Changed(), files.Output());
    createSeconds += Seconds(start);
    if (!patch) state.SkipWithError(patch.error().message.c_str());
    benchmark::DoNotOptimize(patch);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * 2 * kImageSize));
  if (state.iterations() > 0)
    state.counters["x_read"] =
        createSeconds / static_cast<double>(state.iterations()) / readSeconds;
}

}  // namespace

BENCHMARK(BM_PlainReadOfBothFiles)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreateIpsFile_300Changes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreateIps_ScatteredAndLongRun)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreateIps_Identical)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreateIps_AlternatingBytes)->Unit(benchmark::kMillisecond);
