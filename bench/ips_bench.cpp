// Creating an IPS patch between two 4 MiB images, reported as MB/s of image compared.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

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

}  // namespace

BENCHMARK(BM_CreateIps_ScatteredAndLongRun)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreateIps_Identical)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreateIps_AlternatingBytes)->Unit(benchmark::kMillisecond);
