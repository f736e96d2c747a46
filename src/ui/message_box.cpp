#include "ui/message_box.h"

#include "core/host/app_title.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

namespace {

QMessageBox::Icon QtIcon(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Information:
      return QMessageBox::Information;
    case MessageIcon::Exclamation:
      return QMessageBox::Warning;
    case MessageIcon::Critical:
      return QMessageBox::Critical;
    case MessageIcon::Question:
      return QMessageBox::Question;
    case MessageIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

}  // namespace

QMessageBox::StandardButton ShowMessageBox(QWidget* parent, MessageIcon icon,
                                           std::string_view title, std::string_view text,
                                           QMessageBox::StandardButtons buttons,
                                           QMessageBox::StandardButton escape) {
  QMessageBox box(QtIcon(icon), ToQt(title.empty() ? kAppTitle : title), ToQt(text), buttons,
                  parent);
  // Enter gives what Escape gives: a slip of the key never replaces or deletes anything.
  box.setEscapeButton(escape);
  box.setDefaultButton(escape);
  // Texts come from file names and headers: never let them be read as markup.
  box.setTextFormat(Qt::PlainText);
  const int pressed = box.exec();
  return box.clickedButton() ? box.standardButton(box.clickedButton())
                             : static_cast<QMessageBox::StandardButton>(pressed);
}

}  // namespace romsteward::ui
