// The header editor and the properties dialog, reached through their menu items.
#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "core/app/main_window_model.h"
#include "core/cart/header.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/identify/rom_hash.h"
#include "ui/main_window.h"
#include "ui/trash_file_operations.h"
#include "ui_test_support.h"

namespace romsteward::ui::test {

class HeaderEditorTest : public QObject {
  Q_OBJECT
private:
  struct Fixture : DemoWindow<> {
    Fixture() { window.Start(); }
    QAction* Item(const char* name) { return window.findChild<QAction*>(name); }
  };

  static QPushButton* ButtonOf(QWidget* dialog, const QString& text) {
    for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
      if (button->text() == text) return button;
    }
    return nullptr;
  }

private slots:
  void AnEditReachesTheImageAndABadOneKeepsTheDialogOpen() {
    Fixture f;
    QVERIFY(f.Select("Harbor Lights (U).smd"));
    QAction* header = f.Item("mnu_header");
    QVERIFY(header && header->isEnabled());

    bool stayedOpen = false;
    WhenModal([&](QWidget* dialog) {
      auto* version = dialog->findChild<QLineEdit*>("txtVersion");
      auto* name = dialog->findChild<QLineEdit*>("txtOverseas_name");
      QVERIFY(version && name);
      version->setText("123");  // one character too many
      ButtonOf(dialog, "&Save")->click();
      stayedOpen = dialog->isVisible();
      version->setText("01");
      name->setText("HARBOR LIGHTS DELUXE");
      ButtonOf(dialog, "&Save")->click();
    });
    header->trigger();
    QVERIFY(stayedOpen);
    QCOMPARE(f.host.shown.back(),
             std::string("The version is 3 characters long; it holds at most 2."));

    auto file = BinaryFile::Open(Utf8ToPath(f.sandbox.Demo() + "/Harbor Lights (U).smd"));
    QVERIFY(file.ok());
    const CartridgeHeader saved = ReadCartridgeHeader(*file);
    QCOMPARE(saved.overseasName, std::string("HARBOR LIGHTS DELUXE"));
    QCOMPARE(saved.version, std::string("01"));
    QVERIFY(f.window.windowTitle().endsWith("HARBOR LIGHTS DELUXE"));
  }

  void AReadOnlyImageIsRefusedWithAMessage() {
    Fixture f;
    const std::string path = f.sandbox.Demo() + "/Star Courier (W).bin";
    std::filesystem::permissions(Utf8ToPath(path), std::filesystem::perms::owner_read |
                                                       std::filesystem::perms::group_read |
                                                       std::filesystem::perms::others_read);
    QVERIFY(f.Select("Star Courier (W).bin"));
    QVERIFY(!f.Item("mnu_header")->isEnabled());
    f.host.shown.clear();
    f.Item("mnu_header")->setEnabled(true);  // as if the file turned read-only since
    f.Item("mnu_header")->trigger();
    QCOMPARE(f.host.shown, std::vector<std::string>{path + " is read-only; its header cannot be "
                                                           "changed."});
  }

  void PropertiesShowTheImagesCrc32() {
    Fixture f;
    QVERIFY(f.Select("Harbor Lights (U).smd"));
    const auto hashed =
        HashImageFile(Utf8ToPath(f.sandbox.Demo() + "/Harbor Lights (U).smd")).value();
    QString shown;
    WhenModal([&](QWidget* dialog) {
      shown = dialog->findChild<QLabel*>("lblCRC32")->text();
      ButtonOf(dialog, "&Close")->click();
    });
    f.Item("mnu_prop")->trigger();
    QCOMPARE(shown, QString::fromStdString(Crc32Text(hashed.hashes.crc32)));
  }
};

}  // namespace romsteward::ui::test

QTEST_MAIN(romsteward::ui::test::HeaderEditorTest)
#include "header_editor_test.moc"
