#pragma once

#include <QLocale>
#include <QPageLayout>
#include <QPageSize>
#include <QString>

#include "core/base/date.h"

namespace vellumark::paper {

inline constexpr int kLeastFontPercent = 60;
inline constexpr double kBodySize = 12;  ///< points, at 100 percent

/// The paper and what stands on all pages of it.
struct PageOptions {
  QPageSize::PageSizeId paper = QPageSize::A4;
  bool landscape = false;
  QString family = "Arial";
  int fontPercent = 100;  ///< 60 to 100, of the size of the body
  bool fitToPage = true;  ///< a wide table gets a smaller font rather than further pages
  bool headings = true;   ///< the captions of tables
  bool data = true;
  bool totals = true;
  bool guideLines = false;  ///< rows of dots

  QString caption;  ///< of the program, above at the left
  QString database;
  QString trademark;  ///< of the Data File; empty without one
  DateTime printed;
  QLocale locale = QLocale::c();  ///< how numbers and dates are written; C: as files have them

  /// With margins of half an inch.
  QPageLayout Layout() const;
};

/// Letter where that is the custom, else A4.
QPageSize::PageSizeId PaperOf(const QLocale& locale);

}  // namespace vellumark::paper
