#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace romsteward::ui {

/// The core speaks UTF-8 std::string, Qt speaks QString: the one crossing in each direction.
inline QString ToQt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string FromQt(const QString& text) {
  return text.toStdString();
}

}  // namespace romsteward::ui
