#pragma once

#include <QMenu>

namespace romsteward::ui {

class MainWindow;

/// "Fa&vorites": add, remove, then the favorites in name order. Its states come from the
/// model each time it opens; a favorite runs through the model's launch step.
class FavoritesMenu : public QMenu {
  Q_OBJECT
public:
  explicit FavoritesMenu(MainWindow& window);

  /// The favorites' own entries, below the separator (for tests).
  QList<QAction*> FavoriteActions() const { return m_favorites; }
  /// Lists the model's favorites again.
  void Reload();

private:
  MainWindow& m_window;
  QList<QAction*> m_favorites;
};

}  // namespace romsteward::ui
