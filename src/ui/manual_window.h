#pragma once

#include <QString>
#include <QStringList>
#include <QTextBrowser>

namespace romsteward::ui {

/// Where the manual (`desktop.md` and the pages it links to) may be, relative to the program
/// in `programDirectory`: `doc/` beside it (the build tree) and `../share/doc/romsteward/`
/// (an installed program), in that order.
QStringList ManualPlaces(const QString& programDirectory);
/// The first of those that holds the manual; empty when none does.
QString FindManual(const QString& programDirectory);

/// Help > "&Manual": the manual's pages shown in a window of the program, so that no viewer
/// needs to be installed. Links between pages stay in the window; others go to the desktop.
class ManualWindow : public QTextBrowser {
  Q_OBJECT
public:
  explicit ManualWindow(QWidget* parent = nullptr);
  /// Shows `page`; false when it cannot be read.
  bool Open(const QString& page);
};

}  // namespace romsteward::ui
