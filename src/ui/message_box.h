#pragma once

#include <QMessageBox>

#include "core/host/host.h"

namespace romsteward::ui {

/// Every message box of the program goes through here, so icons and titles stay alike: an
/// empty title is the program's title, as the old message boxes had it. `escape` is also the
/// default button (Enter), so it must be the answer that changes nothing.
QMessageBox::StandardButton ShowMessageBox(QWidget* parent, MessageIcon icon,
                                           std::string_view title, std::string_view text,
                                           QMessageBox::StandardButtons buttons,
                                           QMessageBox::StandardButton escape);

}  // namespace romsteward::ui
