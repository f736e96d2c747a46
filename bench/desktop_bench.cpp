// The desktop program's two speeds that a user feels: from start to the first painted
// window on the demo collection, and a selection change on a 4 MiB image (the whole
// selection routine and the repaint). Runs on the offscreen platform unless another is set.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <chrono>
#include <fstream>
#include <memory>

#include "cli/terminal_host.h"
#include "core/cart/convert.h"
#include "core/common/strings.h"
#include "core/demo/cartridge_builder.h"
#include "core/demo/demo_collection.h"
#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"
#include "ui/main_window.h"
#include "ui/qt_host.h"
#include "ui/rom_list_view.h"
#include "ui/trash_file_operations.h"

namespace romsteward::ui {
namespace {

// One application for the whole program, as the real one has; its start is timed once.
double g_applicationMs = 0;

QApplication& Application() {
  static int argc = 1;
  static char name[] = "desktop_bench";
  static char* argv[] = {name, nullptr};
  static std::unique_ptr<QApplication> app = [] {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QElapsedTimer timer;
    timer.start();
    auto created = std::make_unique<QApplication>(argc, argv);
    g_applicationMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    return created;
  }();
  return *app;
}

// A place and a settings store that opens it, in a temporary folder.
struct Place {
  QTemporaryDir dir;
  std::unique_ptr<RegistryStore> store;
  std::unique_ptr<AppSettings> settings;

  Place() {
    store =
        std::move(RegistryStore::Open(Utf8ToPath(dir.filePath("s.sqlite3").toStdString()))).value();
    settings = std::make_unique<AppSettings>(*store);
    (void)settings->SaveSetting(kSectionSettings, "dir0", Folder());
    (void)settings->SaveSetting(kSectionSettings, "Genem", "/games/genem.exe");
  }
  std::string Folder() const { return dir.filePath("roms").toStdString(); }
};

// Waits for the window's first paint.
class PaintWatch : public QObject {
public:
  bool painted = false;
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) painted = true;
    return false;
  }
};

void StartToFirstPaint(benchmark::State& state) {
  Application();
  Place place;
  (void)WriteDemoCollection(Utf8ToPath(place.Folder()));
  for (auto _ : state) {
    const auto begin = std::chrono::steady_clock::now();
    {
      QtHost host;
      TrashFileOperations operations;
      MainWindow window(host, *place.settings, operations);
      host.SetParent(&window);
      PaintWatch watch;
      window.installEventFilter(&watch);
      window.show();
      window.Start();
      while (!watch.painted)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
      const auto end = std::chrono::steady_clock::now();
      state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
      window.removeEventFilter(&watch);
    }
    QCoreApplication::processEvents();
  }
  state.counters["qapplication_ms"] = g_applicationMs;
}
BENCHMARK(StartToFirstPaint)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

void SelectionChangeOn4MiBImage(benchmark::State& state) {
  Application();
  Place place;
  std::filesystem::create_directories(Utf8ToPath(place.Folder()));
  for (std::uint32_t seed : {1u, 2u}) {
    CartridgeSpec spec;
    spec.size = 4 << 20;
    spec.seed = seed;
    spec.backupRam = true;
    const std::string name = seed == 1 ? "big one.smd" : "big two.smd";
    std::ofstream(Utf8ToPath(JoinDirName(place.Folder(), name)), std::ios::binary)
        << EncodeImage(BuildCartridgeImage(spec), Layout::Smd);
  }
  QtHost host;
  TrashFileOperations operations;
  MainWindow window(host, *place.settings, operations);
  host.SetParent(&window);
  window.show();
  window.Start();
  QCoreApplication::processEvents();
  RomListView* list = window.List();
  int row = 0;
  for (auto _ : state) {
    row = 1 - row;
    list->setCurrentIndex(list->model()->index(row, 0));
    window.repaint();
  }
  if (window.Model().Texts().txtbits != "Size: 32 Mb") state.SkipWithError("not the 4 MiB image");
}
BENCHMARK(SelectionChangeOn4MiBImage)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace
}  // namespace romsteward::ui
