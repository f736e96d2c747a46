// Deleting goes to the desktop's trash unless Shift is held; drops carry files or nothing.
#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include "core/app/main_window_model.h"
#include "ui/rom_list_view.h"
#include "ui/trash_file_operations.h"
#include "ui_test_support.h"

namespace romsteward::ui::test {

class FileOperationsTest : public QObject {
  Q_OBJECT
private slots:
  void DeleteGoesToTheTrashUnlessShiftIsHeld() {
    Sandbox sandbox;
    // The trash of this test only.
    QVERIFY(QDir().mkpath(sandbox.Path("data")));
    qputenv("XDG_DATA_HOME", sandbox.Path("data").toUtf8());
    RecordingHost host;
    TrashFileOperations operations;
    MainWindowModel model(host, sandbox.Settings(), &operations);
    QVERIFY(model.SetDiret(sandbox.Demo()));
    const std::size_t listed = model.Entries().size();

    model.Select(0);
    const QString first = QString::fromStdString(model.SelectedText());
    host.yesNo.push_back(Answer::No);
    model.DeleteSelected();
    QCOMPARE(model.Entries().size(), listed);  // refused: nothing happens

    host.yesNo.push_back(Answer::Yes);
    model.DeleteSelected();
    QCOMPARE(model.Entries().size(), listed - 1);
    QVERIFY(QFile::exists(sandbox.Path("data/Trash/files/" + first)));

    model.Select(0);
    const QString second = QString::fromStdString(model.SelectedText());
    host.shift = true;
    host.yesNo.push_back(Answer::Yes);
    model.DeleteSelected();
    QCOMPARE(model.Entries().size(), listed - 2);
    QVERIFY(!QFile::exists(sandbox.Path("data/Trash/files/" + second)));
    QVERIFY(!QFile::exists(sandbox.Path("demo/" + second)));
  }

  void DropsCarryLocalFilesOrNothing() {
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile("/roms/a b.bin"), QUrl::fromLocalFile("/roms/c.smd")});
    const auto paths = DroppedFiles(files);
    QVERIFY(paths.has_value());
    QCOMPARE(paths->size(), std::size_t{2});
    QCOMPARE(paths->front(), std::string("/roms/a b.bin"));

    QMimeData text;
    text.setText("just words");
    QVERIFY(!DroppedFiles(text).has_value());
    QMimeData remote;
    remote.setUrls({QUrl("sftp://host/rom.bin")});
    QVERIFY(!DroppedFiles(remote).has_value());
  }
};

}  // namespace romsteward::ui::test

QTEST_MAIN(romsteward::ui::test::FileOperationsTest)
#include "file_operations_test.moc"
