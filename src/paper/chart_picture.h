#pragma once

#include <string>

#include "core/base/sheet.h"
#include "core/reports/chart.h"

namespace vellumark::paper {

// A chart in black on white, legible where there is no colour: columns along the calendar, bars under each other for
// names, each with its figure. For callers that know nothing of Qt.

/// "Quantity (lb.) by Month".
std::string ChartTitle(const ReportChart& chart);

std::string ChartPng(const ReportChart& chart);
std::string ChartSvg(const ReportChart& chart);

/// Over the report on paper.
SheetBlock ChartBlock(const ReportChart& chart);

}  // namespace vellumark::paper
