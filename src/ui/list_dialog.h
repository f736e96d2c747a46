#pragma once

#include <QDialog>
#include <optional>
#include <string>
#include <vector>

class QListView;
class QStringListModel;

namespace romsteward::ui {

/// The list dialog (`frmListagem`): offers entries; "&Choose" (or a double click) answers
/// the current one, "&Done" or closing answers nothing.
class ListDialog : public QDialog {
  Q_OBJECT
public:
  ListDialog(const QString& title, const std::vector<std::string>& items,
             QWidget* parent = nullptr);

  /// The chosen entry after exec(); nullopt for "done".
  std::optional<std::string> Choice() const { return m_choice; }
  QListView* View() const { return m_view; }

private:
  void ChooseCurrent();

  QStringListModel* m_model = nullptr;
  QListView* m_view = nullptr;
  std::optional<std::string> m_choice;
};

}  // namespace romsteward::ui
