#pragma once

#include <QComboBox>
#include <QStringList>

#include "support/desktop.h"

namespace vellumark::test {

inline QStringList ItemsOf(QWidget& dialog, const char* name) {
  const auto& combo = Control<QComboBox>(dialog, name);
  QStringList items;
  for (int i = 0; i < combo.count(); ++i) items += combo.itemText(i);
  return items;
}

/// By keyboard, as in a list that is closed.
inline void Choose(QWidget& dialog, const char* name, const QString& text) {
  auto& combo = Control<QComboBox>(dialog, name);
  combo.setFocus(Qt::TabFocusReason);
  Press(combo, Qt::Key_Home);
  while (combo.currentText() != text && combo.currentIndex() < combo.count() - 1) Press(combo, Qt::Key_Down);
  EXPECT_EQ(combo.currentText(), text);
}

}  // namespace vellumark::test
