#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/base/table.h"

namespace vellumark {

/// A caption and what stands beside it.
struct SheetField {
  std::string caption;
  std::string value;
};

/// A drawing, as SVG so that it is sharp on any device; it is as wide as the page, or as high as half of it.
struct SheetPicture {
  std::string svg;
  double across = 1;  ///< its form
  double down = 1;
};

/// A part of a sheet. What is empty is left out; the order is that of the fields here.
struct SheetBlock {
  std::string heading{};
  std::vector<SheetField> fields{};
  std::optional<SheetPicture> picture{};
  std::vector<std::filesystem::path> photos{};  ///< files of pictures, side by side; what is none by now is named
  std::optional<ListTable> table{};
  std::vector<double> widths{};      ///< of the columns shown, in twips, 0 hides one; empty: as wide as their texts
  std::vector<std::string> lines{};  ///< as much text as there is; line ends in it count
  bool large = false;                ///< what is read across a bench
  std::vector<SheetField> codes{};   ///< each value in bars under its caption, for a scanner
};

/// What goes on paper: a title over blocks that stand one below the other. A list is a sheet of one table.
struct Sheet {
  std::string title;
  std::string subtitle{};
  bool incomplete = false;  ///< its making was stopped, which the title tells
  std::vector<SheetBlock> blocks{};

  static Sheet Of(std::string title, ListTable table) {
    Sheet sheet{.title = std::move(title)};
    sheet.blocks.push_back({.table = std::move(table)});
    return sheet;
  }
};

}  // namespace vellumark
