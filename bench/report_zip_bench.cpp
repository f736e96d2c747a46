// romsteward-tool report of a ZIP archive of 1,000 to 4,000 small images: the time must grow
// with the number of members, not with its square (the fitted complexity is printed), and
// stay close to `list` of the same archive.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cli/tool.h"
#include "core/cart/convert.h"
#include "core/common/atomic_file.h"
#include "core/demo/cartridge_builder.h"
#include "core/demo/demo_collection.h"

namespace {

using namespace romsteward;

class Archives {
public:
  Archives() {
    m_dir = std::filesystem::temp_directory_path() /
            ("romsteward-bench-report-" + std::to_string(::getpid()));
    std::filesystem::create_directories(m_dir);
  }
  ~Archives() {
    std::error_code ignored;
    std::filesystem::remove_all(m_dir, ignored);
  }
  // An archive of `members` images of 16 KiB, made once.
  std::string Of(int members) {
    auto& path = m_paths[members];
    if (!path.empty()) return path;
    std::vector<std::pair<std::string, std::string>> contents;
    for (int i = 0; i < members; ++i) {
      CartridgeSpec spec;
      spec.size = 16 * 1024;
      spec.seed = static_cast<std::uint32_t>(i + 1);
      contents.emplace_back("game" + std::to_string(i) + ".bin",
                            EncodeImage(BuildCartridgeImage(spec), Layout::Bin));
    }
    auto zip = BuildZipArchive(contents);
    path = (m_dir / ("set" + std::to_string(members) + ".zip")).string();
    if (!zip || !WriteFileAtomically(path, *zip)) std::abort();
    return path;
  }
  std::string Settings() const { return (m_dir / "settings.sqlite3").string(); }

private:
  std::filesystem::path m_dir;
  std::map<int, std::string> m_paths;
};

Archives& TheArchives() {
  static Archives archives;
  return archives;
}

void RunCommand(benchmark::State& state, const char* command) {
  Archives& archives = TheArchives();
  const std::vector<std::string> args{"--settings", archives.Settings(), command,
                                      archives.Of(static_cast<int>(state.range(0)))};
  for (auto _ : state) {
    std::ostringstream out;
    std::ostringstream err;
    if (cli::RunTool(args, out, err) != 0) state.SkipWithError(err.str().c_str());
  }
  state.SetComplexityN(state.range(0));
}

void BM_ReportOfZip(benchmark::State& state) {
  RunCommand(state, "report");
}
void BM_ListOfZip(benchmark::State& state) {
  RunCommand(state, "list");
}

BENCHMARK(BM_ReportOfZip)
    ->Arg(1000)
    ->Arg(2000)
    ->Arg(4000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Complexity();
BENCHMARK(BM_ListOfZip)->Arg(4000)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
