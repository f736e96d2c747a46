#include "ui/qt_host.h"

#include <QApplication>
#include <QFileDialog>
#include <QGuiApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QProgressDialog>
#include <QScreen>
#include <algorithm>

#include "core/tools/split_size_chooser.h"
#include "ui/caption_width.h"
#include "ui/list_dialog.h"
#include "ui/message_box.h"
#include "ui/qt_text.h"
#include "ui/question_dialog.h"
#include "ui/tools/split_size_dialog.h"

namespace romsteward::ui {

namespace {

constexpr std::string_view kProgressTitle = "Progress";
// A line edit's frame and margins around its text, and room to type a name into.
constexpr int kFieldPadding = 16;
constexpr int kFieldWidth = 320;

QString StartPath(const FileDialog& dialog) {
  if (dialog.initialName.empty()) return ToQt(dialog.initialDir);
  if (dialog.initialDir.empty()) return ToQt(dialog.initialName);
  return ToQt(dialog.initialDir) + '/' + ToQt(dialog.initialName);
}

std::optional<std::string> Chosen(const QString& path) {
  if (path.isEmpty()) return std::nullopt;
  return FromQt(path);
}

}  // namespace

QString QtFilter(const std::vector<FileFilter>& filters) {
  QStringList parts;
  for (const FileFilter& filter : filters) {
    QString patterns = ToQt(filter.patterns);
    patterns.replace(';', ' ');
    // A description without a pattern lists every file; Qt would show "()" and list none.
    if (patterns.trimmed().isEmpty()) patterns = "*";
    parts << ToQt(filter.description) + " (" + patterns + ")";
  }
  return parts.join(";;");
}

QtHost::~QtHost() {
  delete m_progress;
}

void QtHost::ShowMessage(std::string_view text, MessageIcon icon, std::string_view title) {
  ShowMessageBox(m_parent, icon, title, text, QMessageBox::Ok, QMessageBox::Ok);
}

Answer QtHost::AskYesNo(std::string_view text, MessageIcon icon, std::string_view title) {
  const auto pressed = ShowMessageBox(m_parent, icon, title, text,
                                      QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
  return pressed == QMessageBox::Yes ? Answer::Yes : Answer::No;
}

Answer QtHost::AskYesNoCancel(std::string_view text, MessageIcon icon, std::string_view title) {
  const auto pressed =
      ShowMessageBox(m_parent, icon, title, text,
                     QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Cancel);
  if (pressed == QMessageBox::Yes) return Answer::Yes;
  if (pressed == QMessageBox::No) return Answer::No;
  return Answer::Cancel;
}

int QtHost::ShowQuestionBox(const QuestionBox& box) {
  QuestionDialog dialog(box, m_parent);
  dialog.exec();
  return dialog.Escolha();
}

std::optional<std::string> QtHost::AskText(std::string_view prompt, std::string_view title,
                                           std::string_view initial, bool masked) {
  QInputDialog dialog(m_parent);
  dialog.setWindowTitle(ToQt(title));
  dialog.setLabelText(ToQt(prompt));
  dialog.setTextValue(ToQt(initial));
  dialog.setTextEchoMode(masked ? QLineEdit::Password : QLineEdit::Normal);
  // Each hidden character shows as "*", as password fields have always done here.
  if (masked) dialog.setStyleSheet("QLineEdit { lineedit-password-character: 42; }");
  if (auto* field = dialog.findChild<QLineEdit*>()) {
    // Wide enough for the caption and the whole text (a long file name), within the screen.
    const int text = masked ? 0 : field->fontMetrics().horizontalAdvance(ToQt(initial));
    const QScreen* screen = m_parent ? m_parent->screen() : QGuiApplication::primaryScreen();
    const int limit = screen ? screen->availableGeometry().width() * 2 / 3 : 800;
    field->setMinimumWidth(
        std::min(std::max({text + kFieldPadding, CaptionWidth(ToQt(title)), kFieldWidth}), limit));
  }
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return FromQt(dialog.textValue());
}

std::optional<std::string> QtHost::ChooseOpenFile(const FileDialog& dialog) {
  return Chosen(QFileDialog::getOpenFileName(m_parent, ToQt(dialog.title), StartPath(dialog),
                                             QtFilter(dialog.filters)));
}

std::vector<std::string> QtHost::ChooseOpenFiles(const FileDialog& dialog) {
  std::vector<std::string> paths;
  for (const QString& path : QFileDialog::getOpenFileNames(
           m_parent, ToQt(dialog.title), StartPath(dialog), QtFilter(dialog.filters)))
    paths.push_back(FromQt(path));
  return paths;
}

std::optional<std::string> QtHost::ChooseSaveFile(const FileDialog& dialog) {
  return Chosen(QFileDialog::getSaveFileName(m_parent, ToQt(dialog.title), StartPath(dialog),
                                             QtFilter(dialog.filters)));
}

std::optional<std::string> QtHost::ChooseFolder(std::string_view title,
                                                std::string_view initialDir) {
  return Chosen(QFileDialog::getExistingDirectory(m_parent, ToQt(title), ToQt(initialDir)));
}

std::optional<std::string> QtHost::ChooseFromList(std::string_view title,
                                                  const std::vector<std::string>& items) {
  ListDialog dialog(ToQt(title), items, m_parent);
  dialog.exec();
  return dialog.Choice();
}

int QtHost::ChooseSplitSize(SplitSizeChooser& chooser) {
  SplitSizeDialog dialog(chooser, m_parent);
  dialog.exec();
  return dialog.Size();
}

void QtHost::BeginProgress(std::string_view caption) {
  // Nested work shares the one dialog.
  if (m_progressDepth++ > 0 && m_progress) return;
  m_progress = new QProgressDialog(m_parent);
  m_progress->setWindowModality(Qt::WindowModal);
  m_progress->setRange(0, 100);
  m_progress->setMinimumDuration(250);
  m_progress->setAutoReset(false);
  m_progress->setAutoClose(false);
  SetProgressCaption(caption.empty() ? kProgressTitle : caption);
  m_progress->setValue(0);
}

void QtHost::SetProgressCaption(std::string_view caption) {
  if (!m_progress) return;
  m_progress->setWindowTitle(ToQt(caption));
  m_progress->setLabelText(ToQt(caption));
}

bool QtHost::SetProgress(int percent) {
  if (!m_progress) return true;
  m_progress->setValue(std::clamp(percent, 0, 100));
  // The work runs on this thread: let the window repaint and the Cancel click arrive.
  QCoreApplication::processEvents();
  return !m_progress->wasCanceled();
}

void QtHost::EndProgress() {
  if (m_progressDepth > 0 && --m_progressDepth > 0) return;
  delete m_progress;
}

bool QtHost::IsShiftHeld() {
  return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ShiftModifier);
}

}  // namespace romsteward::ui
