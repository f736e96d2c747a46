// Pictures of the desktop program's dialogs for the docs, each filled in as a user would
// have it, on the demo collection. Run by tools/screenshot.sh.
// Usage: romsteward-dialog-shots DEMO_DIR SETTINGS_FILE OUT_DIR
#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <cstdio>

#include "core/common/strings.h"
#include "core/patch/patch_dialog_model.h"
#include "core/settings/app_settings.h"
#include "core/settings/registry_store.h"
#include "core/tools/report_form.h"
#include "ui/patch/patch_window.h"
#include "ui/qt_host.h"
#include "ui/report/report_editor.h"

namespace {

using namespace romsteward;

bool Shoot(QWidget& widget, const QDir& out, const char* name) {
  widget.show();
  QApplication::processEvents();
  const QString file = out.filePath(name);
  if (!widget.grab().save(file)) {
    std::fprintf(stderr, "dialog-shots: cannot write %s\n", qPrintable(file));
    return false;
  }
  std::printf("Wrote %s\n", qPrintable(file));
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  if (argc != 4) {
    std::fprintf(stderr, "usage: romsteward-dialog-shots DEMO_DIR SETTINGS_FILE OUT_DIR\n");
    return 2;
  }
  const std::string demo = argv[1];
  auto store = RegistryStore::Open(Utf8ToPath(argv[2]));
  if (!store) {
    std::fprintf(stderr, "dialog-shots: %s\n", store.error().message.c_str());
    return 1;
  }
  AppSettings settings(**store);
  ui::QtHost host;
  const QDir out(QString::fromUtf8(argv[3]));

  const std::string image = "Star Courier (W).bin";
  auto model = PatchDialogModel::Load(host, **store, Utf8ToPath(JoinDirName(demo, image)), image);
  if (!model) {
    std::fprintf(stderr, "dialog-shots: %s\n", model.error().message.c_str());
    return 1;
  }
  model->SetName("Infinite lives");
  model->SetValue("4E71");
  model->SetPosition("1A2C");
  ui::PatchWindow patch(*model);

  RomListForm form;
  ui::ReportEditor report(form, host, settings, RomListSource{demo, false, {}});

  const bool ok =
      Shoot(patch, out, "screenshot-patch.png") && Shoot(report, out, "screenshot-report.png");
  return ok ? 0 : 1;
}
