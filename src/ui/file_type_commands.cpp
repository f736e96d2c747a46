#include "ui/file_type_commands.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>

#include "core/common/strings.h"
#include "core/settings/file_types.h"
#include "ui/message_box.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

namespace {

void Report(QWidget* parent, const Result<FileTypeReport>& report, std::string_view done) {
  if (!report) {
    ShowMessageBox(parent, MessageIcon::Critical, {}, report.error().message, QMessageBox::Ok,
                   QMessageBox::Ok);
    return;
  }
  // A missing desktop tool leaves the files in place; say what the desktop may not know yet.
  std::string text(done);
  for (const auto& note : report->notes)
    text += "\n" + note;
  ShowMessageBox(parent,
                 report->notes.empty() ? MessageIcon::Information : MessageIcon::Exclamation, {},
                 text, QMessageBox::Ok, QMessageBox::Ok);
}

Result<FileTypePlaces> Places() {
  return DefaultFileTypePlaces(Utf8ToPath(FromQt(QCoreApplication::applicationFilePath())));
}

}  // namespace

void RegisterFileTypesForThisProgram(QWidget* window, std::span<const FileTypeEntry> types) {
  auto places = Places();
  // The layouts share the desktop's one Genesis type, whichever were chosen.
  Report(window,
         places ? RegisterFileTypes(*places, types) : Result<FileTypeReport>(places.error()),
         "Genesis images (.bin, .smd, .1, .md) now open with Genesis Romsteward.");
}

void AddFileTypeMenu(QMenu* options, QWidget* window) {
  QMenu* menu = options->addMenu("Register file t&ypes");
  menu->menuAction()->setObjectName("mnu_regtypes");
  for (const FileTypeEntry& type : FileTypes()) {
    QAction* item = menu->addAction(ToQt(type.caption));
    item->setObjectName(ToQt(type.control));
    QObject::connect(item, &QAction::triggered, window, [window, &type] {
      RegisterFileTypesForThisProgram(window, std::span<const FileTypeEntry>(&type, 1));
    });
  }
  menu->addSeparator();
  QObject::connect(menu->addAction("All &four types"), &QAction::triggered, window,
                   [window] { RegisterFileTypesForThisProgram(window, FileTypes()); });
  QAction* remove = options->addAction("R&emove file-type registration");
  remove->setObjectName("mnu_unregtypes");
  QObject::connect(remove, &QAction::triggered, window,
                   [window] { RemoveFileTypeRegistration(window); });
}

void RemoveFileTypeRegistration(QWidget* window) {
  auto places = Places();
  Report(window, places ? RemoveFileTypes(*places) : Result<FileTypeReport>(places.error()),
         "The image types are no longer registered.");
}

}  // namespace romsteward::ui
