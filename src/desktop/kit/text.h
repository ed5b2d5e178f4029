#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace vellumark::desktop {

/// Texts of the core are UTF-8, those of the windows are QStrings.
inline QString Q(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string U8(const QString& text) {
  return text.toStdString();
}

}  // namespace vellumark::desktop
