#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/labels/label_drawing.h"

namespace vellumark::paper {

// Labels on paper, for callers that know nothing of Qt.

/// Resolution of a PDF of labels, where none is told; that of the finer label printers.
inline constexpr int kLabelDots = 600;

/// What goes on paper: `count` labels from the place `start` of the first sheet, the drawings one after the other and
/// then again.
struct LabelJob {
  LabelPaper paper{};
  std::vector<LabelDrawing> drawings{};
  int count = 1;
  int start = 1;
  int dotsPerInch = kLabelDots;
};

/// A code or text of a label and, of a code, whether it was read from its bars at the resolution of the printer.
struct CodeCheck {
  std::string Field;
  std::string Text;  ///< what it is to say
  bool Reads = false;
  std::string Reason{};  ///< why not
};
/// Renders a label and reads each of its codes, in their order.
std::vector<CodeCheck> CheckCodes(const Session& session, const LabelDrawing& drawing, int dotsPerInch);

/// The texts and pictures of a label that leave it or run into something else.
std::vector<CodeCheck> CheckPlaces(const Session& session, const LabelDrawing& drawing, int dotsPerInch);
/// Asks whether to print where something of a label does not read as it should; declined with No.
Result<void> AskAboutFaults(Session& session, const std::vector<CodeCheck>& checks);

/// Writes the labels as a PDF, true to size; the number of its pages. Throws Failure naming the file.
int PrintLabelsToFile(const Session& session, const LabelJob& job, const std::filesystem::path& file);

/// Reads a picture of a label and refuses one that is none or does not meet the design requirements.
Result<void> CheckLabelPictureFile(const std::filesystem::path& file);

}  // namespace vellumark::paper
