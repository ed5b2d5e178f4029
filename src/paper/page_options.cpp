#include "paper/page_options.h"

namespace vellumark::paper {

QPageLayout PageOptions::Layout() const {
  constexpr double kMargin = 36;  // points
  return {QPageSize(paper), landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
          QMarginsF(kMargin, kMargin, kMargin, kMargin), QPageLayout::Point};
}

QPageSize::PageSizeId PaperOf(const QLocale& locale) {
  return locale.measurementSystem() == QLocale::ImperialUSSystem ? QPageSize::Letter : QPageSize::A4;
}

}  // namespace vellumark::paper
