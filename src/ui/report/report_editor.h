#pragma once

#include <QDialog>

#include "core/tools/report_generator.h"

class QAction;
class QMenu;
class QPlainTextEdit;

namespace romsteward {
class AppSettings;
class Host;
class RomListForm;
}  // namespace romsteward

namespace romsteward::ui {

class MainWindow;

/// The "Create ROM list" editor (`frmLista`): the template text of a RomListForm with its
/// Script, Insert and Options menus and the create button, which writes the report of
/// `source` (the place listed when the editor opened).
class ReportEditor : public QDialog {
  Q_OBJECT
public:
  ReportEditor(RomListForm& form, Host& host, const AppSettings& settings, RomListSource source,
               QWidget* parent = nullptr);

  QPlainTextEdit* Editor() const { return m_text; }

private:
  /// The form's text into the editor. The editor keeps "\n" line ends; a template written
  /// with CR LF gets them back when it is handed to the form.
  void ShowTemplate();
  void TakeTemplate();
  void BuildMenus(QMenu* script, QMenu* insert, QMenu* options);
  void ShowRomNameChoice();

  RomListForm& m_form;
  Host& m_host;
  const AppSettings& m_settings;
  RomListSource m_source;
  QPlainTextEdit* m_text = nullptr;
  QAction* m_domestic = nullptr;
  QAction* m_overseas = nullptr;
  bool m_crlf = false;
};

/// Adds "Create ROM List..." (`mnu_lista`) to `menu`: it opens the editor on the window's
/// place and list.
QAction* AddRomListItem(MainWindow& window, QMenu* menu, Host& host);

}  // namespace romsteward::ui
