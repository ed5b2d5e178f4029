#pragma once

#include <memory>
#include <vector>

#include "core/base/seams.h"
#include "core/base/sheet.h"
#include "paper/page_setter.h"
#include "paper/table_columns.h"

namespace vellumark::paper {

/// How the widest table of a sheet goes onto its pages.
struct PageFit {
  double needed = 0;  ///< units across, at the full size of the body; a page has 80
  int size = 12;      ///< of the body on a single page width; may be 0 or less than that
  /// The table would be hard to read: whether to spread it over several pages is asked.
  bool asks = false;
};

/// A sheet as it is laid out: widths are measured once, pages set as often as wanted, always the same.
class SheetLayout {
 public:
  /// Reads the tables of the sheet. A cancelled reading is told by Cancelled().
  SheetLayout(const Sheet& sheet, PageOptions options, Progress& progress);

  const PageOptions& Options() const { return options_; }
  const Typeface& Face() const { return typeface_; }
  const PageFit& Fitting() const { return fit_; }
  /// Over further pages at the full size, as when FitToPage is off.
  void Spread() { options_.fitToPage = false; }
  /// A font larger by a point and more would do on the same paper turned.
  bool BetterTurned() const;
  bool Cancelled() const { return cancelled_; }

  /// All pages, one after the other, to the sink. Asks `progress` whether to go on; then Cancelled().
  void SetPages(const PageSink& sink, Progress& progress);

 private:
  void SetBlock(PageSetter& setter, const SheetBlock& block, const TableColumns* columns, Progress& progress);
  void SetFields(PageSetter& setter, const SheetBlock& block, double size) const;
  static void SetPicture(PageSetter& setter, const SheetPicture& picture);
  void SetPhotos(PageSetter& setter, const SheetBlock& block, double size) const;
  void SetLines(PageSetter& setter, const SheetBlock& block, double size) const;
  void SetCodes(PageSetter& setter, const SheetBlock& block, double size) const;
  void SetTable(PageSetter& setter, const SheetBlock& block, const TableColumns& columns, Progress& progress);
  double SizeOf(const SheetBlock& block, const TableColumns& columns) const;
  double BodySize() const { return kBodySize * options_.fontPercent / 100.0; }

  const Sheet& sheet_;
  PageOptions options_;
  Typeface typeface_;
  double across_ = 0;
  std::vector<std::unique_ptr<TableColumns>> columns_;  // for each block, null without a table
  PageFit fit_;
  std::size_t allRows_ = 0;
  std::size_t doneRows_ = 0;
  bool cancelled_ = false;
};

}  // namespace vellumark::paper
