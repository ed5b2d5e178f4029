#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/colors/guides.h"
#include "core/datafile/writer.h"
#include "core/session/session.h"

namespace vellumark {

/// What the windows of a Basic Color and of a Master Formula hold alike. Numbers are texts, as they stand in the
/// fields.
struct ColorWork {
  std::int64_t rowId = 0;  ///< 0 while a new colour is being entered
  std::string Color_Name;
  std::string Color_Code;
  std::string Reorder;
  std::string PurchaseCost;
  std::string VOC;
  std::string HAP;
  std::string Inv_Note;
  std::string Notes;

  // The texts as they were loaded: what has changed needs a right, and makes the formulas' roll-ups stale.
  std::string loadedPurchaseCost;
  std::string loadedVOC;
  std::string loadedHAP;
};

/// The numbers among these fields.
struct ColorFigures {
  float Reorder = 0;
  float PurchaseCost = 0;
  float VOC = 0;
  float HAP = 0;
};
/// Reads and checks them in this order; then each that has changed needs its right.
Result<ColorFigures> ReadColorFigures(const Session& session, const ColorWork& work);
/// Puts them into the fields, as loaded.
void ShowColorFigures(const Session& session, const ColorFigures& figures, ColorWork& work);

/// The fields of a stored row: a BasicColor's or a MixColor's.
template <class Color>
void LoadColorFields(const Session& session, const Color& color, ColorWork& work) {
  work.rowId = color.rowId;
  work.Color_Name = color.Color_Name;
  work.Color_Code = color.Color_Code;
  work.Inv_Note = color.Inv_Note;
  work.Notes = color.Notes;
  ShowColorFigures(session, {color.Reorder, color.PurchaseCost, color.VOC, color.HAP}, work);
}

/// What a save writes of these fields into a row, and what a new row gets besides.
std::vector<Cell> ColorCells(const Session& session, const ColorWork& work, const ColorFigures& figures);
std::vector<Cell> NewColorCells(const Session& session, const BookData& book);

/// Notes as they are saved: blanks at the ends go, then line ends one by one, so that a note ends in no empty line.
std::string TrimmedNotes(std::string_view notes);

}  // namespace vellumark
