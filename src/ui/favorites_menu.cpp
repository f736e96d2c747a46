#include "ui/favorites_menu.h"

#include "core/app/main_window_model.h"
#include "ui/main_window.h"
#include "ui/qt_text.h"

namespace romsteward::ui {

FavoritesMenu::FavoritesMenu(MainWindow& window)
    : QMenu(QStringLiteral("Fa&vorites"), &window), m_window(window) {
  setObjectName("mnufavorite");
  m_window.BindAction(menuAction(), "mnufavorite");
  QAction* add = addAction(QStringLiteral("&Add to favorites..."));
  m_window.BindAction(add, "mnu_addfav");
  connect(add, &QAction::triggered, this, [this] {
    m_window.Model().AddFavorite();
    m_window.Model().LoadFavoritesMenu();
    m_window.Render();
  });
  QAction* remove = addAction(QStringLiteral("&Remove favorites..."));
  m_window.BindAction(remove, "mnu_orgfav");
  connect(remove, &QAction::triggered, this, [this] {
    m_window.Model().RemoveFavorites();
    m_window.Render();
  });
  addSeparator();
  connect(this, &QMenu::aboutToShow, this, [this] {
    m_window.Model().OpenFavoritesMenu();
    Reload();
    m_window.Render();
  });
  Reload();
}

void FavoritesMenu::Reload() {
  qDeleteAll(m_favorites);
  m_favorites.clear();
  for (const std::string& title : m_window.Model().FavoriteMenu()) {
    // A title is shown as typed: no access key of its own.
    QString caption = ToQt(title);
    caption.replace('&', QStringLiteral("&&"));
    QAction* favorite = addAction(caption);
    connect(favorite, &QAction::triggered, this, [this, title] {
      m_window.Model().RunFavorite(title, [this] { m_window.Render(); });
      m_window.Render();
    });
    m_favorites << favorite;
  }
}

}  // namespace romsteward::ui
