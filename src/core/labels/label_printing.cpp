#include "core/labels/label_printing.h"

#include <algorithm>

#include "core/base/number.h"

namespace vellumark {

Result<void> CheckLabelPrinter(const LabelPaper& paper, LabelKind kind, const std::vector<PrinterNames>& printers) {
  const bool known = std::ranges::find(printers, paper.printer, &PrinterNames::device) != printers.end();
  if (!paper.printer.empty() && known) return {};
  const std::string why = paper.printer.empty() ? "A printer has to be selected for the label template."
                                                : "Selected printer is no longer recognized on the PC.";
  const std::string where = kind == LabelKind::Label ? "Click the Label Design button to change the printer."
                                                     : "Click the Edit Label Layout button to change printer.";
  return Refuse("Label Template - Print", why + "\n" + where, "cmdLabelDesign");
}

Result<void> CheckAnythingToPrint(const std::vector<LabelDrawing>& labels) {
  const auto isEmpty = [](const LabelDrawing& label) { return label.elements.empty(); };
  if (!std::ranges::all_of(labels, isEmpty)) return {};
  return Refuse("Label Template - Print", "There is nothing on this label that could be printed.");
}

int ReadStartLabel(std::string_view typed, const LabelPaper& paper) {
  return std::clamp(LeadingInteger(typed), 1, paper.Capacity());
}

}  // namespace vellumark
