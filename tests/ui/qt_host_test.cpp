// The Qt Host answers what the user pressed in each of its dialogs.
#include "ui/qt_host.h"

#include <QApplication>
#include <QFontMetrics>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QStyle>
#include <QTest>

#include "ui/list_dialog.h"
#include "ui/qt_text.h"
#include "ui/question_dialog.h"
#include "ui_test_support.h"

namespace romsteward::ui::test {

class QtHostTest : public QObject {
  Q_OBJECT
private slots:
  void MessageBoxesAnswerTheirButtons() {
    QtHost host;
    WhenModal([](QWidget* modal) {
      auto* box = qobject_cast<QMessageBox*>(modal);
      QVERIFY(box);
      QCOMPARE(box->windowTitle(), QString("Genesis Romsteward"));
      QCOMPARE(box->icon(), QMessageBox::Critical);
      box->button(QMessageBox::No)->click();
    });
    QCOMPARE(host.AskYesNo("Sure?", MessageIcon::Critical, {}), Answer::No);

    WhenModal([](QWidget* modal) {
      auto* box = qobject_cast<QMessageBox*>(modal);
      QVERIFY(box);
      QCOMPARE(box->windowTitle(), QString("Warning!"));
      box->reject();  // Escape: the box's cancel
    });
    QCOMPARE(host.AskYesNoCancel("Go on?", MessageIcon::Question, "Warning!"), Answer::Cancel);
  }

  // "... exists! Do you want to replace it?": Enter gives what Escape gives, never Yes.
  void EnterTakesTheAnswerThatChangesNothing() {
    QtHost host;
    const auto pressEnter = [](QWidget* modal) { QTest::keyClick(modal, Qt::Key_Return); };
    WhenModal(pressEnter);
    QCOMPARE(host.AskYesNo("Replace it?", MessageIcon::Question, {}), Answer::No);
    WhenModal(pressEnter);
    QCOMPARE(host.AskYesNoCancel("Save first?", MessageIcon::Question, {}), Answer::Cancel);
    WhenModal(pressEnter);
    host.ShowMessage("Done", MessageIcon::Information, {});  // returns: Ok is still Enter's
  }

  void TheQuestionBoxGivesEscolhaOrZeroWhenClosed() {
    QuestionBox box;
    box.title = "Warning!";
    box.text = "This ROM has an unfixable error";
    box.yes = {"&Ok", "Go on", false};
    box.no = {"&No", {}, true};
    box.cancel = {"&Shut Up!", "Never again", false};
    QtHost host;
    QImage icon;
    WhenModal([&icon](QWidget* modal) {
      auto* dialog = qobject_cast<QuestionDialog*>(modal);
      QVERIFY(dialog);
      icon = dialog->findChild<QLabel*>("Picture1")->pixmap().toImage();
      QCOMPARE(dialog->windowTitle(), QString("Warning!"));
      QVERIFY(dialog->Button(kEscolhaNo)->isHidden());
      QCOMPARE(dialog->Button(kEscolhaCancel)->text(), QString("&Shut Up!"));
      QCOMPARE(dialog->Button(kEscolhaCancel)->toolTip(), QString("Never again"));
      dialog->Button(kEscolhaCancel)->click();
    });
    QCOMPARE(host.ShowQuestionBox(box), kEscolhaCancel);
    QCOMPARE(
        icon,
        QApplication::style()->standardIcon(QStyle::SP_MessageBoxQuestion).pixmap(32).toImage());

    WhenModal([](QWidget* modal) { modal->close(); });
    QCOMPARE(host.ShowQuestionBox(box), kEscolhaClosed);
  }

  void InputBoxesAreMaskedForPasswordsAndCancelGivesNothing() {
    QtHost host;
    WhenModal([](QWidget* modal) {
      auto* dialog = qobject_cast<QInputDialog*>(modal);
      QVERIFY(dialog);
      QCOMPARE(dialog->textEchoMode(), QLineEdit::Password);
      QCOMPARE(dialog->textValue(), QString("old"));
      dialog->setTextValue("secret");
      dialog->accept();
    });
    QCOMPARE(host.AskText("Password:", "Lock", "old", true), std::optional<std::string>("secret"));

    WhenModal([](QWidget* modal) {
      QCOMPARE(qobject_cast<QInputDialog*>(modal)->textEchoMode(), QLineEdit::Normal);
      qobject_cast<QDialog*>(modal)->reject();
    });
    QCOMPARE(host.AskText("Type the new file name", "Rename", "a.bin", false), std::nullopt);
  }

  // A window manager cuts a caption wider than its window, and a field narrower than its
  // text hides the end of a long file name.
  void SmallDialogsFitTheirCaptionsAndTexts() {
    QtHost host;
    const QString name = "Adventures of the Long-Named Cartridge (USA, Europe) (Rev 1) [!].bin";
    const QString title = "Choose the new name of the selected cartridge image";
    const QFontMetrics titleFont(QApplication::font("QMdiSubWindowTitleBar"));
    int fieldWidth = 0;
    int nameWidth = 0;
    int dialogWidth = 0;
    WhenModal([&](QWidget* modal) {
      if (auto* field = modal->findChild<QLineEdit*>()) {
        fieldWidth = field->width();
        nameWidth = field->fontMetrics().horizontalAdvance(name);
      }
      dialogWidth = modal->width();
      qobject_cast<QDialog*>(modal)->reject();
    });
    (void)host.AskText("Type the new file name", FromQt(title), FromQt(name), false);
    QVERIFY(fieldWidth > nameWidth);
    QVERIFY(dialogWidth > titleFont.horizontalAdvance(title) + kTitleBarRoom);

    QuestionBox box;
    box.title = FromQt(title);
    box.text = "Short.";
    QuestionDialog question(box);
    question.show();
    QVERIFY(question.width() > titleFont.horizontalAdvance(title) + kTitleBarRoom);
    ListDialog list(title, {"one"});
    list.show();
    QVERIFY(list.width() > titleFont.horizontalAdvance(title) + kTitleBarRoom);
  }

  void TheListDialogAnswersTheChosenEntryOrDone() {
    QtHost host;
    WhenModal([](QWidget* modal) {
      auto* dialog = qobject_cast<ListDialog*>(modal);
      QVERIFY(dialog);
      dialog->View()->setCurrentIndex(dialog->View()->model()->index(1, 0));
      QTest::keyClick(dialog->View(), Qt::Key_Enter);
      dialog->findChild<QPushButton*>()->click();
    });
    QCOMPARE(host.ChooseFromList("Patches", {"first", "second"}),
             std::optional<std::string>("second"));
    WhenModal([](QWidget* modal) { qobject_cast<QDialog*>(modal)->reject(); });
    QCOMPARE(host.ChooseFromList("Patches", {"first"}), std::nullopt);
  }

  void ProgressReportsCancelAndShiftComesFromTheKeyboard() {
    QtHost host;
    host.BeginProgress({});
    QVERIFY(host.SetProgress(10));
    QProgressDialog* progress = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (auto* found = qobject_cast<QProgressDialog*>(widget)) progress = found;
    QVERIFY(progress);
    QCOMPARE(progress->windowTitle(), QString("Progress"));
    progress->findChild<QPushButton*>()->click();
    QVERIFY(!host.SetProgress(20));
    host.EndProgress();

    QWidget target;
    target.show();
    QTest::keyPress(&target, Qt::Key_Shift, Qt::ShiftModifier);
    QVERIFY(host.IsShiftHeld());
    QTest::keyRelease(&target, Qt::Key_Shift, Qt::NoModifier);
    QVERIFY(!host.IsShiftHeld());
  }

  void FiltersKeepTheirDescriptionsAndPatterns() {
    QCOMPARE(QtFilter({{"Executables", "genem.exe"}, {"Images", "*.smd;*.bin"}}),
             QString("Executables (genem.exe);;Images (*.smd *.bin)"));
    // A description alone lists every file (Join Files' destination), not "()" and none.
    QCOMPARE(QtFilter({{"All files", ""}}), QString("All files (*)"));
  }
};

}  // namespace romsteward::ui::test

QTEST_MAIN(romsteward::ui::test::QtHostTest)
#include "qt_host_test.moc"
