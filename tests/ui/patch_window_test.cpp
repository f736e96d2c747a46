// The "Dynamic patching" window: what it lets through, what it says, what reaches the store.
#include "ui/patch/patch_window.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>

#include "core/common/strings.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/patch_dialog_model.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"
#include "ui/trash_file_operations.h"
#include "ui_test_support.h"

namespace romsteward::ui::test {

namespace {

constexpr char kImage[] = "Star Courier (W).bin";

// Answers the removal list with its first entry.
class ChoosingHost : public RecordingHost {
public:
  std::optional<std::string> ChooseFromList(std::string_view,
                                            const std::vector<std::string>& items) override {
    if (items.empty()) return std::nullopt;
    return items.front();
  }
};

}  // namespace

class PatchWindowTest : public QObject {
  Q_OBJECT
private:
  struct Fixture {
    Sandbox sandbox;
    RecordingHost host;
    PatchDialogModel model =
        PatchDialogModel::Load(host, sandbox.Settings().Store(),
                               Utf8ToPath(sandbox.Demo() + "/" + kImage), kImage)
            .value();
    PatchWindow window{model};

    void Save() { window.findChild<QPushButton*>("Command3")->click(); }
    QAction* Item(const char* name) { return window.findChild<QAction*>(name); }
    std::optional<PatchValue> Stored(const std::string& name) {
      auto data = sandbox.Settings().Store().GetValue(PatchKeyPath(), PatchValueName(kImage, name));
      if (!data) return std::nullopt;
      return DecodePatchValue(*data);
    }
  };

private slots:
  void TheWindowStartsOnTheImage() {
    Fixture f;
    QCOMPARE(f.window.windowTitle(), QString("Dynamic patching"));
    QCOMPARE(f.window.findChild<QLabel*>("lbltam")->text(), QString("524,288 bytes (4 Megabits)"));
    QCOMPARE(f.window.NameField()->selectedText(), QString("-Name-"));
  }

  void TheValueFieldTakesOnlyHexDigitsFromTheKeyboard() {
    Fixture f;
    QTest::keyClicks(f.window.ValueField(), "1g2Z a-F9");
    QCOMPARE(f.window.ValueField()->text(), QString("12aF9"));
    QTest::keyClick(f.window.ValueField(), Qt::Key_Backspace);
    QCOMPARE(f.window.ValueField()->text(), QString("12aF"));
    QCOMPARE(f.model.Value(), std::string("12aF"));
  }

  void BadPositionsAndValuesAreRefusedWithTheirMessages() {
    Fixture f;
    f.window.ValueField()->setText("AB");
    QTest::keyClicks(f.window.PositionField(), "80000");  // the image's length
    f.Save();
    QTest::keyClicks(f.window.PositionField(), "z");
    f.Save();
    f.window.PositionField()->clear();
    QTest::keyClicks(f.window.PositionField(), "10");
    f.window.ValueField()->setText("Hi");  // text from a paste: only the keys are filtered
    f.Save();
    const std::string badPosition =
        "The specified file position is invalid! This value must be between 0 and 7FFFF.";
    QCOMPARE(f.host.shown,
             (std::vector<std::string>{
                 badPosition, badPosition,
                 "The value you typed isn't in HEX format. Convert it pressing 'Convert value "
                 "to hex' in edit menu"}));
    QVERIFY(!f.Stored("-Name-"));
  }

  void ASavedPatchReachesTheStore() {
    Fixture f;
    f.window.NameField()->selectAll();
    QTest::keyClicks(f.window.NameField(), "Lives");
    QTest::keyClicks(f.window.PositionField(), "100");
    QTest::keyClicks(f.window.ValueField(), "ABC");
    auto* saved = f.window.findChild<QLabel*>("lblSaved");
    QVERIFY(saved);
    QCOMPARE(saved->text(), QString());
    f.Save();
    QCOMPARE(f.window.ValueField()->text(), QString("0ABC"));  // as stored
    QCOMPARE(saved->text(), QString("Saved \"Lives\": 2 byte(s) at position 100."));
    auto stored = f.Stored("Lives");
    QVERIFY(stored);
    QCOMPARE(stored->position, std::uint64_t{0x101});
    QCOMPARE(stored->newBytes, std::string("\x0A\xBC"));
    QCOMPARE(stored->oldBytes.size(), std::size_t{2});

    // The line speaks of the last save only: a change or a refused save empties it.
    f.window.ValueField()->setText("Hi");
    QCOMPARE(saved->text(), QString());
    f.Save();
    QCOMPARE(saved->text(), QString());
    f.host.shown.clear();
    // Typed text becomes its hexadecimal form; the window stays open for the next patch.
    f.Item("mnu_hexa")->trigger();
    QCOMPARE(f.window.ValueField()->text(), QString("4869"));
    QVERIFY(f.host.shown.empty());
  }

  void TabGoesThroughTheFieldsThenTheCommands() {
    Fixture f;
    f.window.show();
    QVERIFY(QTest::qWaitForWindowActive(&f.window));
    QCOMPARE(QApplication::focusWidget(), f.window.NameField());
    for (const char* next : {"txtval", "txtpos", "Command3", "CmdX1", "txtNome"}) {
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
      QCOMPARE(QApplication::focusWidget()->objectName(), QString(next));
    }
  }

  void TheGetValueCommandFillsTheValue() {
    Fixture f;
    QVERIFY(f.window.EditMenu()->actions().contains(f.Item("mnu_get")));
    f.Item("mnu_get")->trigger();
    QCOMPARE(f.host.shown, std::vector<std::string>{"Invalid file position!"});
    f.host.shown.clear();
    QTest::keyClicks(f.window.PositionField(), "100");  // the header's "SEGA"
    f.host.texts = {"4", "4"};
    f.host.yesNo = {Answer::Yes, Answer::No};
    f.Item("mnu_get")->trigger();
    QCOMPARE(f.window.ValueField()->text(), QString("SEGA"));
    f.Item("mnu_get")->trigger();
    QCOMPARE(f.window.ValueField()->text(), QString("53454741"));
  }

  void TheToolsMenuOpensItForAWritableImageOnly() {
    DemoWindow<ChoosingHost> f;
    auto& [sandbox, host, operations, window] = f;
    window.Start();
    MainWindowModel& model = window.Model();
    auto* patch = window.findChild<QAction*>("mnu_patch");
    auto* chkIPS = window.findChild<QCheckBox*>("chkIPS");
    QVERIFY(model.SetDiret(sandbox.Demo() + "/Pocket Pair.zip"));
    QVERIFY(f.Select("Tin Soldier (U).bin"));
    QVERIFY(!patch->isEnabled());
    QVERIFY(model.SetDiret(sandbox.Demo()));

    QVERIFY(f.Select(kImage));
    QVERIFY(patch->isEnabled() && !chkIPS->isEnabled());
    WhenModal([](QWidget* modal) {
      auto* dialog = qobject_cast<PatchWindow*>(modal);
      QVERIFY(dialog);
      QTest::keyClicks(dialog->PositionField(), "200");
      QTest::keyClicks(dialog->ValueField(), "4E71");
      dialog->findChild<QPushButton*>("Command3")->click();
      dialog->reject();
    });
    patch->trigger();
    QVERIFY(chkIPS->isEnabled());  // the panel follows the new patch
    // Ticked here, it is not shown ticked (greyed) on an image without patches.
    chkIPS->click();
    QVERIFY(model.Options().activateDynamicPatch);
    QVERIFY(f.Select("Harbor Lights (U).smd"));
    QVERIFY(!chkIPS->isEnabled() && !chkIPS->isChecked());
    QVERIFY(f.Select(kImage));
    chkIPS->click();

    host.yesNo = {Answer::Yes};
    window.findChild<QAction*>("mnu_tirapatch")->trigger();
    QVERIFY(!chkIPS->isEnabled() && !chkIPS->isChecked());
    QVERIFY(!HasDynamicPatches(sandbox.Settings().Store(), kImage));
  }
};

}  // namespace romsteward::ui::test

QTEST_MAIN(romsteward::ui::test::PatchWindowTest)
#include "patch_window_test.moc"
