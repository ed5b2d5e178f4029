#include "core/colors/color_work.h"

#include <array>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"

namespace vellumark {
namespace {

struct Figure {
  AmountKey key;
  std::string_view field;
  float ColorFigures::*value;
  std::string ColorWork::*text;
  std::string ColorWork::*loaded;  // null for a figure that needs no right
};

constexpr std::array kFigures{
    Figure{AmountKey::Reorder, "Reorder", &ColorFigures::Reorder, &ColorWork::Reorder, nullptr},
    Figure{AmountKey::Currency, "PurchaseCost", &ColorFigures::PurchaseCost, &ColorWork::PurchaseCost,
           &ColorWork::loadedPurchaseCost},
    Figure{AmountKey::VOC, "VOC", &ColorFigures::VOC, &ColorWork::VOC, &ColorWork::loadedVOC},
    Figure{AmountKey::HAP, "HAP", &ColorFigures::HAP, &ColorWork::HAP, &ColorWork::loadedHAP}};

}  // namespace

Result<ColorFigures> ReadColorFigures(const Session& session, const ColorWork& work) {
  ColorFigures figures;
  for (const Figure& figure : kFigures) {
    const auto value = ReadAmount(session, figure.key, work.*figure.text, figure.field);
    if (!value) return std::unexpected(value.error());
    figures.*figure.value = *value;
  }
  // The fields drop keys without the right; a caller without fields is stopped here.
  for (const Figure& figure : kFigures) {
    if (figure.loaded == nullptr) continue;
    if (AmountText(session, figure.key, figures.*figure.value) == work.*figure.loaded) continue;
    if (auto right = RequireRight(session, figure.key, figure.field); !right) return std::unexpected(right.error());
  }
  return figures;
}

void ShowColorFigures(const Session& session, const ColorFigures& figures, ColorWork& work) {
  for (const Figure& figure : kFigures) {
    work.*figure.text = AmountText(session, figure.key, figures.*figure.value);
    if (figure.loaded != nullptr) work.*figure.loaded = work.*figure.text;
  }
}

std::vector<Cell> ColorCells(const Session& session, const ColorWork& work, const ColorFigures& figures) {
  std::vector<Cell> cells{{"Color_Name", work.Color_Name},
                          {"Color_Code", Left(work.Color_Code, static_cast<std::size_t>(session.NameLength))},
                          {"Reorder", figures.Reorder},
                          {"Inv_Note", work.Inv_Note},
                          {"PurchaseCost", figures.PurchaseCost},
                          {"Notes", TrimmedNotes(work.Notes)},
                          {"VOC", figures.VOC},
                          {"HAP", figures.HAP}};
  return cells;
}

std::vector<Cell> NewColorCells(const Session& session, const BookData& book) {
  return {{"LotRefID", 0},
          {"Inventory", 0.0F},
          {"Date_Entered", session.clock.Today()},
          {"Color_Guide", book.Color_Guide},
          {"Page", book.Page},
          {"Row", book.Row},
          {"Red", book.Red},
          {"Green", book.Green},
          {"Blue", book.Blue}};
}

std::string TrimmedNotes(std::string_view notes) {
  std::string trimmed = Trim(notes);
  while (!trimmed.empty() && (trimmed.back() == '\r' || trimmed.back() == '\n')) trimmed.pop_back();
  return trimmed;
}

}  // namespace vellumark
