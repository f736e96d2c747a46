// The "Create ROM list" editor: the menus type and choose what they say, and the create
// button writes the report of the window's list.
#include "ui/report/report_editor.h"

#include <QAction>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/tools/report_form.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"
#include "ui/trash_file_operations.h"
#include "ui_test_support.h"

namespace romsteward::ui::test {

namespace {

// Answers the output and script dialogs with fixed files.
class FileHost : public RecordingHost {
public:
  std::optional<std::string> file;
  std::optional<std::string> ChooseSaveFile(const FileDialog&) override { return file; }
  std::optional<std::string> ChooseOpenFile(const FileDialog&) override { return file; }
};

std::string Contents(const QString& path) {
  auto text = ReadWholeFile(Utf8ToPath(FromQt(path)));
  return text ? *text : std::string("(unreadable)");
}

}  // namespace

class ReportEditorTest : public QObject {
  Q_OBJECT
private:
  struct Fixture {
    Sandbox sandbox;
    FileHost host;
    RomListForm form;
    ReportEditor editor{form, host, sandbox.Settings(),
                        RomListSource{sandbox.Demo(), false, {"Quiet Orbit (J).md", "notes.txt"}}};
    void Create() { editor.findChild<QPushButton*>("Command2")->click(); }
  };

private slots:
  void InsertTypesAtTheCursor() {
    Fixture f;
    f.editor.Editor()->setPlainText("AB");
    QTextCursor cursor = f.editor.Editor()->textCursor();
    cursor.setPosition(1);
    f.editor.Editor()->setTextCursor(cursor);
    f.editor.findChild<QAction*>("mnu_insfile")->trigger();
    f.editor.findChild<QAction*>("mnu_insnameoverseas")->trigger();  // under "&Game name"
    QCOMPARE(f.form.Text(), std::string("A%file%%nameoverseas%B"));
  }

  void TheObsoleteNameOptionWarnsThenSwitches() {
    Fixture f;
    auto* domestic = f.editor.findChild<QAction*>("mnu_subname(0)");
    auto* overseas = f.editor.findChild<QAction*>("mnu_subname(1)");
    QVERIFY(overseas->isChecked() && !domestic->isChecked());
    domestic->trigger();
    QCOMPARE(f.host.shown, std::vector<std::string>{std::string(kRomNameWarning)});
    QVERIFY(domestic->isChecked() && !overseas->isChecked());
    domestic->trigger();  // choosing it again keeps it chosen
    QVERIFY(domestic->isChecked());
    QCOMPARE(f.form.RomName(), RomNameChoice::Domestic);
  }

  void TheDefaultTemplateKeepsItsLineEnds() {
    Fixture f;
    const QString output = f.sandbox.Path("romlist.txt");
    f.host.file = FromQt(output);
    f.editor.Editor()->appendPlainText("END");  // an edit keeps CR LF throughout
    f.Create();
    const std::string report = Contents(output);
    QVERIFY2(report.starts_with("     MY ROM LIST\r\n\r\n\r\n\r\nFILE: Quiet Orbit (J).md\r\n"),
             report.c_str());
    QVERIFY(report.ends_with("NUMBER OF ROMS:  1\r\nTOTAL SIZE: 2.00 Meg\r\n\r\nEND"));
    QCOMPARE(f.host.shown.back(), std::string("Rom list created!"));
  }

  void ATemplateWithoutEndOfListWritesNothing() {
    Fixture f;
    const QString output = f.sandbox.Path("romlist.txt");
    f.host.file = FromQt(output);
    f.editor.Editor()->setPlainText("-BOL-\n%file%\n");
    f.Create();
    QCOMPARE(f.host.shown, std::vector<std::string>{"Expected: End of list"});
    QVERIFY(!QFile::exists(output));
  }

  void TheDirectoryMenuReportsTheWindowsList() {
    DemoWindow<FileHost> f;
    auto& [sandbox, host, operations, window] = f;
    window.Start();
    const QString output = sandbox.Path("list.txt");
    host.file = FromQt(output);
    WhenModal([](QWidget* modal) {
      auto* editor = qobject_cast<ReportEditor*>(modal);
      QVERIFY(editor);
      editor->Editor()->setPlainText("-BOL-%file%\n-EOL-");
      editor->findChild<QPushButton*>("Command2")->click();
      editor->reject();
    });
    window.findChild<QAction*>("mnu_lista")->trigger();
    std::string expected;
    for (const std::string& entry : window.Model().Entries())
      if (entry != "notes.txt") expected += entry + "\r\n";  // the default template's line ends
    QCOMPARE(ToQt(Contents(output)), ToQt(expected));
  }
};

}  // namespace romsteward::ui::test

QTEST_MAIN(romsteward::ui::test::ReportEditorTest)
#include "report_editor_test.moc"
