#pragma once

#include <string>
#include <vector>

#include "core/labels/label_drawing.h"
#include "core/session/options.h"

namespace vellumark {

/// The printer of a layout is told and there; refused otherwise, with where to change it.
Result<void> CheckLabelPrinter(const LabelPaper& paper, LabelKind kind, const std::vector<PrinterNames>& printers);

/// Refuses labels of which none has anything on it.
Result<void> CheckAnythingToPrint(const std::vector<LabelDrawing>& labels);

/// The place of the first label as typed, kept within the sheet.
int ReadStartLabel(std::string_view typed, const LabelPaper& paper);

}  // namespace vellumark
