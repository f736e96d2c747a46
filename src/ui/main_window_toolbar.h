#pragma once

class QToolBar;

namespace romsteward::ui {

class MainWindow;

/// The toolbar under the menus ("toolbar"): btnProp, btnDeleta, btnheader, btncrc, Btnlista
/// and BtnImagem, each bound to the model's control of its name. A click triggers the menu
/// item of the same command, looked up by its object name at that moment; a command the
/// window does not offer makes the click do nothing.
QToolBar* AddMainToolbar(MainWindow& window);

}  // namespace romsteward::ui
