#pragma once

#include <QDialog>
#include <vector>

#include "core/cart/file_properties.h"

namespace romsteward::ui {

/// The properties of one entry: the core's rows as a form of selectable texts.
class PropertiesDialog : public QDialog {
  Q_OBJECT
public:
  PropertiesDialog(const QString& name, const std::vector<PropertyRow>& rows,
                   QWidget* parent = nullptr);
};

}  // namespace romsteward::ui
