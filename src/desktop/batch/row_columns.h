#pragma once

#include <QLabel>
#include <QString>

namespace vellumark::desktop {

// What makes the amounts of the rows and their total one column.

/// Amounts are read across a bench.
inline constexpr double kAmountScale = 1.4;
inline const QString kWidestAmount = QStringLiteral("-99999.000");

/// Room for the unit beside an amount.
inline int UnitWidth(const QLabel& label) {
  return label.fontMetrics().horizontalAdvance(QStringLiteral("kg.m"));
}

}  // namespace vellumark::desktop
