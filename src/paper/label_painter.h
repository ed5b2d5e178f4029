#pragma once

#include <QFont>
#include <QImage>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QRectF>
#include <QStringList>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "paper/label_print.h"

namespace vellumark::paper {

/// Paints labels in the dots of a device, so that every module of a code is a whole number of them.
class LabelPainter {
 public:
  LabelPainter(QPainter& painter, int dotsPerInch, std::filesystem::path pictures);
  /// For a screen, whose dots are larger than those of the resolution: edges are smoothed.
  void Smooth() { smooth_ = true; }
  /// `left` and `top` of the label in twips.
  void Paint(const LabelDrawing& drawing, double left, double top);

 private:
  void PaintText(const LabelDrawing& drawing, const LabelElement& element);
  void PaintCode(const LabelDrawing& drawing, const LabelElement& element);
  void PaintSquare(const LabelDrawing& drawing, const LabelElement& element);
  void PaintPicture(const LabelElement& element);
  void PaintPictogram(const LabelElement& element);
  double Dots(double twips) const { return twips * dots_ / kTwipsPerInch; }

  QPainter& painter_;
  int dots_;
  bool smooth_ = false;
  std::filesystem::path pictures_;
  double left_ = 0;
  double top_ = 0;
  std::map<std::string, QImage> images_;
};

/// What a code takes on a label, in dots of the device from the label's corner.
struct CodeBox {
  Bars bars{};
  int module = 1;  ///< dots
  int left = 0;
  int top = 0;
  int height = 1;
  int quiet = 0;

  int Width() const { return bars.modules * module; }
  int Right() const { return left + Width() + quiet; }
};
/// Nothing for a text that has no bars. Modules are as wide as the size of the font asks for and the label allows, at
/// least a dot.
std::optional<CodeBox> BoxOfCode(const LabelDrawing& drawing, const LabelElement& element, int dotsPerInch);

/// What a text takes on a label, in dots of the device from the label's corner.
struct TextBox {
  QFont font{};
  QStringList lines{};
  double baseline = 0;  ///< of the first line
  double spacing = 0;   ///< from one line to the next
  QRectF ink{};         ///< of its letters
};
/// A line that would leave the label or run into what stands beside it is set smaller: as small as need be for the
/// label, down to half for a neighbour.
TextBox BoxOfText(const LabelDrawing& drawing, const LabelElement& element, int dotsPerInch);
/// What an element takes on its label, in twips from the label's corner; nothing of a code without bars and of a
/// picture that cannot be read.
std::optional<QRectF> ExtentOf(const LabelDrawing& drawing, const LabelElement& element, int dotsPerInch,
                               const std::filesystem::path& pictures);
/// The same in dots, of a text its ink alone.
std::optional<QRectF> AreaOf(const LabelDrawing& drawing, const LabelElement& element, int dotsPerInch,
                             const std::filesystem::path& pictures);

void PaintPictogram(QPainter& painter, int number, const QRectF& area);

/// The page that labels are printed on, in points, before any turn.
QSizeF PageOfLabels(const LabelPaper& paper);
/// Sets the pages of a device for them.
void SetUpLabelPages(QPagedPaintDevice& device, const LabelPaper& paper);
/// Paints the labels onto a device whose pages are set as above, or turned by a printer's own orientation. The number
/// of pages; throws Failure, naming `name`, when it takes none.
int PaintLabels(QPagedPaintDevice& device, const std::string& name, const Session& session, const LabelJob& job);

}  // namespace vellumark::paper
