#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/labels/barcodes.h"
#include "core/labels/label_data.h"

namespace vellumark {

// Where everything of a label stands, before any device. Places and sizes are twips, font sizes points.

inline constexpr double kTwipsPerInch = 1440;

struct LabelElement {
  enum class What { Text, Code, Square, Picture, Pictogram };
  What what = What::Text;
  std::string item;  ///< "Color Name", "Color Name BC"
  std::string text;  ///< of a code what it says; of a picture its file's name
  double left = 0;
  double top = 0;
  std::string font{};
  double size = 10;  ///< points; of a pictogram twips
  bool bold = false;
  int number = 0;      ///< of a pictogram
  bool wraps = false;  ///< a long line of it goes on in the next one
};

/// One label as a layout draws it, in the order in which it is painted.
struct LabelDrawing {
  Symbology symbology = Symbology::NotUsing;
  double width = 0;  ///< of one label
  double length = 0;
  std::vector<LabelElement> elements{};
};

/// How labels lie on a page.
struct LabelPaper {
  std::string printer;
  std::string paper;    ///< its name; empty: the page is as large as its labels
  int orientation = 0;  ///< 0 portrait, 1 landscape, 2 portrait turned by 180 degrees, 3 by 270
  int across = 1;
  int down = 1;
  double width = 0;
  double length = 0;
  double left = 0;  ///< margins
  double top = 0;

  int Capacity() const { return across * down; }
};
LabelPaper PaperOfLayout(const Session& session, LabelKind kind, std::string_view layout);
LabelPaper PaperOfDesign(const LabelDesign& design);

struct LabelOptions {
  bool identifiers = true;  ///< the scan tag stands in each bar code
  bool qrCode = false;      ///< one square code with all fields that have a tag, a line each
};
/// As `BC_Label_Prefix_Identifier` has it.
LabelOptions OptionsOfLabels(const Session& session);

LabelDrawing DrawLabel(const Session& session, std::string_view layout, const LabelData& data,
                       const LabelOptions& options);
/// The item of that pictogram, from 0, in a layout of hazard labels.
std::string PictogramItem(std::size_t pictogram);
LabelDrawing DrawSmallLabel(const Session& session, LabelKind kind, std::string_view layout,
                            const SmallLabelData& data);
/// The same of a layout that is being worked on.
LabelDrawing DrawLabel(const Session& session, const LabelDesign& design, const LabelData& data,
                       const LabelOptions& options);
LabelDrawing DrawSmallLabel(const LabelDesign& design, const SmallLabelData& data);

/// The page (from 0) and the place on it of the label of that number (from 0), the first of which stands at `start`
/// (from 1, kept within the sheet).
struct LabelPlace {
  int page = 0;
  double left = 0;
  double top = 0;
};
LabelPlace PlaceOfLabel(const LabelPaper& paper, int start, int number);
/// The name of a paper as a driver gives it, without the blanks and zeros behind it.
std::string CleanUpPaperType(std::string_view name);
/// How many labels are wanted, as typed: 1 where it is no number above 0.
int ReadLabelCount(std::string_view typed);

/// The sizes and the resolution that a picture of a label may have.
Result<void> CheckLabelPicture(std::string_view format, int pixelsAcross, int pixelsDown, double pixelsPerInch);

}  // namespace vellumark
