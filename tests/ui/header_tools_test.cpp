// The file tools in the window, answered through the real dialogs: checksum, repair prompts,
// the split size chooser, split and conversion.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFontMetrics>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QToolButton>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/cart/checksum_commands.h"
#include "core/cart/detect.h"
#include "core/common/binary_file.h"
#include "core/tools/split_size_chooser.h"
#include "ui/main_window.h"
#include "ui/qt_host.h"
#include "ui/qt_text.h"
#include "ui/question_dialog.h"
#include "ui/rom_list_view.h"
#include "ui/tools/split_size_dialog.h"
#include "ui/trash_file_operations.h"
#include "ui_test_support.h"

namespace romsteward::ui::test {

namespace {

std::string ReadAll(const QString& path) {
  std::ifstream in(path.toStdString(), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void WriteAll(const QString& path, const std::string& bytes) {
  std::ofstream(path.toStdString(), std::ios::binary) << bytes;
}

// Answers a standard message box and remembers its text.
std::function<void(QWidget*)> Press(QMessageBox::StandardButton button, QString* text) {
  return [button, text](QWidget* modal) {
    auto* box = qobject_cast<QMessageBox*>(modal);
    QVERIFY(box);
    *text = box->text();
    box->button(button)->click();
  };
}

QPushButton* QuestionButton(QWidget* modal, const QString& caption) {
  for (QPushButton* button : modal->findChildren<QPushButton*>())
    if (button->text() == caption && button->isVisible()) return button;
  return nullptr;
}

}  // namespace

class HeaderToolsTest : public QObject {
  Q_OBJECT
private:
  struct Fixture : DemoWindow<QtHost> {
    Fixture() {
      host.SetParent(&window);
      window.show();
      window.Start();
    }
    MainWindowModel& model() { return window.Model(); }
    QString Demo(const char* name) const { return sandbox.Path(QString("demo/") + name); }
    bool Listed(const std::string& name) {
      const auto& entries = model().Entries();
      return std::find(entries.begin(), entries.end(), name) != entries.end();
    }
    void Trigger(const char* name) {
      QAction* action = window.findChild<QAction*>(name);
      if (!action) action = window.Action(name);
      QVERIFY2(action && action->isEnabled(), name);
      action->trigger();
    }
  };

private slots:
  void TheSplitChooserKeepsToItsRules() {
    SplitSizeChooser chooser(4);
    SplitSizeDialog dialog(chooser);
    QCOMPARE(dialog.windowTitle(), " Select split size (rom size: 4 Mbit)");
    QCOMPARE(dialog.findChildren<QRadioButton*>().size(), 13);
    QCOMPARE(dialog.findChild<QRadioButton*>("tam(11)")->text(), "12 MegaBit");
    dialog.show();
    // The whole caption fits beside a title bar's buttons ("Select split s..." did not).
    const QFontMetrics titleFont(QApplication::font("QMdiSubWindowTitleBar"));
    QVERIFY(dialog.width() > titleFont.horizontalAdvance(dialog.windowTitle()) + kTitleBarRoom);
    auto* text = dialog.findChild<QLineEdit*>("Text1");

    // Only digits pass; typing selects "Custom:"; a pasted non-digit is refused whole.
    QTest::keyClicks(text, "3x3");
    QCOMPARE(text->text(), "33");
    QVERIFY(dialog.findChild<QRadioButton*>("tam(12)")->isChecked());
    QApplication::clipboard()->setText("7a");
    text->paste();
    QCOMPARE(text->text(), "33");
    QCOMPARE(chooser.CustomText(), "33");

    // 33 is refused and the chooser stays open; one spin down gives 32, which is taken.
    QString refusal;
    WhenModal(Press(QMessageBox::Ok, &refusal));
    dialog.findChild<QPushButton*>("CmdOk")->click();
    QVERIFY(refusal.startsWith("As the maximum ROM size for Genesis was 32 Megabits"));
    QVERIFY(dialog.isVisible());
    dialog.findChild<QToolButton*>("SpinDown")->click();
    QCOMPARE(text->text(), "32");
    dialog.findChild<QPushButton*>("CmdOk")->click();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.Size(), 32);

    SplitSizeDialog cancelled(chooser);
    cancelled.show();
    cancelled.findChild<QPushButton*>("CmdCancel")->click();
    QCOMPARE(cancelled.Size(), SplitSizeChooser::kCancelled);
  }

  void SplitAndJoinFromTheMenusFollowTheList() {
    Fixture f;
    QVERIFY(f.Select("Harbor Lights (U).smd"));  // 2 Mbit
    QString done;
    WhenModal([&done](QWidget* chooser) {
      QCOMPARE(chooser->objectName(), "frmsplittam");
      chooser->findChild<QRadioButton*>("tam(0)")->click();
      WhenModal(Press(QMessageBox::Ok, &done));
      chooser->findChild<QPushButton*>("CmdOk")->click();
    });
    f.Trigger("mnu_split");
    QCOMPARE(done, "The ROM was splitted in 2 files");
    QVERIFY(f.Listed("Harbor Lights (U).1"));
    QCOMPARE(f.model().SelectedText(), "Harbor Lights (U).smd");

    QVERIFY(f.Select("Iron Meadow.1"));
    WhenModal(Press(QMessageBox::Ok, &done));
    f.Trigger("mnu_join");
    QCOMPARE(done, "3 file(s) joined");
    QCOMPARE(f.model().SelectedText(), "Iron Meadow.smd");
  }

  void CrcFixKeepsTheOldValueUntilRestored() {
    Fixture f;
    const QString image = f.Demo("Broken Lantern (E).bin");
    const ChecksumState before = *ReadChecksumState(image.toStdString());
    QVERIFY(!before.Correct());
    QVERIFY(f.Select("Broken Lantern (E).bin"));

    WhenModal([](QWidget* modal) {
      QCOMPARE(modal->windowTitle(), "CRC error!");
      QPushButton* fix = qobject_cast<QuestionDialog*>(modal)->Button(kEscolhaCancel);
      QCOMPARE(fix->text(), "&Fix 'n Save");
      QCOMPARE(fix->toolTip(), "Fixes CRC and backup the old one");
      fix->click();
    });
    f.Trigger("mnu_crc");
    QVERIFY(ReadChecksumState(image.toStdString())->Correct());
    emit f.window.MenuOf("mnu_tool")->aboutToShow();
    QVERIFY(f.window.Action("mnu_getcrc")->isEnabled());

    QString question;
    WhenModal(Press(QMessageBox::Yes, &question));
    f.Trigger("mnu_getcrc");
    QCOMPARE(question, "Are you sure you want to restore the old CRC?");
    QCOMPARE(ReadChecksumState(image.toStdString())->stored, before.stored);
    emit f.window.MenuOf("mnu_tool")->aboutToShow();
    QVERIFY(!f.window.Action("mnu_getcrc")->isEnabled());
  }

  // A size that is no whole number of blocks: the warning, then the size prompt; "&Shut Up!"
  // is remembered and "&Fix header" makes the header agree with the file.
  void RepairPromptsAnswerThroughTheirButtons() {
    Fixture f;
    WriteAll(f.Demo("Tailed (W).bin"),
             ReadAll(f.Demo("Star Courier (W).bin")) + std::string(100, '\x01'));
    f.model().RefreshRomList();
    f.window.Render();
    QStringList titles;
    WhenModal([&titles](QWidget* warning) {
      titles << warning->windowTitle();
      QVERIFY(!QuestionButton(warning, "&No"));
      QVERIFY(QuestionButton(warning, "&Ok"));
      WhenModal([&titles](QWidget* error) {
        titles << error->windowTitle();
        QVERIFY(QuestionButton(error, "&Truncate"));
        QuestionButton(error, "&Fix header")->click();
      });
      QuestionButton(warning, "&Shut Up!")->click();
    });
    QVERIFY(f.Select("Tailed (W).bin"));
    QCOMPARE(titles, QStringList({"Warning!", "Error!"}));

    QCOMPARE(f.sandbox.Settings().GetSetting(kSectionCartridge, "Tailed (W).bin.shutup"), "1");
    // The header's ROM end now names the file's last byte.
    const std::string header = ReadAll(f.Demo("Tailed (W).bin"));
    std::size_t end = 0;
    for (int i = 0x1A4; i < 0x1A8; ++i)
      end = end * 256 + static_cast<std::uint8_t>(header[i]);
    QCOMPARE(end, header.size() - 1);
  }

  void ConvertingAsksBeforeReplacingAndSelectsTheNewFile() {
    Fixture f;
    const QString smd = f.Demo("Star Courier (W).smd");
    WriteAll(smd, "keep me");
    QVERIFY(f.Select("Star Courier (W).bin"));

    QString question;
    WhenModal(Press(QMessageBox::No, &question));
    f.Trigger("mnu_convSMD");
    QCOMPARE(question, "The file Star Courier (W).smd exists! Do you want to replace it?");
    QCOMPARE(ReadAll(smd), "keep me");

    WhenModal(Press(QMessageBox::Yes, &question));
    f.Trigger("mnu_convSMD");
    auto converted = BinaryFile::Open(smd.toStdString());
    QVERIFY(converted && DetectRomFormat(*converted) == Layout::Smd);
    QCOMPARE(f.model().SelectedText(), "Star Courier (W).smd");
  }
};

}  // namespace romsteward::ui::test

QTEST_MAIN(romsteward::ui::test::HeaderToolsTest)
#include "header_tools_test.moc"
