#include "core/jobs/ink_estimator.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/session/settings.h"

namespace vellumark {

const std::array<std::string_view, kInkTypes> kInkTypeNames{"Black", "Process Color", "Spot Color",  "Silver",
                                                            "Gold",  "Opaque",        "Fluorescent", "Varnish"};
const std::array<std::string_view, kStockTypes> kStockTypeNames{"Uncoated", "Matte Coated", "Gloss Coated",
                                                                "Nonporous"};
const std::array<std::string_view, kAniloxChoices> kAniloxNames{
    "Rod Coating Station", "Anilox with no doctor blade (roll to roll)",
    "Anilox with doctor blade, cel volume 5 - 7 bcm", "Anilox with doctor blade, cel volume 2 - 4 bcm"};
const std::array<std::string_view, 4> kAreaTypeNames{"Solid", "Halftone", "Text", "Coverage"};

namespace {

constexpr double kSquareInchesPerFoot = 144;
constexpr double kSquareFeetPerFactor = 1000;
constexpr std::array<double, 3> kAreaShares{1, 1.0 / 2, 1.0 / 5};
constexpr double kMostMileage = 1'000'000'000;

struct Area {
  double length = 0;  ///< inches
  double width = 0;
  double sheets = 0;
  double share = 1;
};

Result<double> ReadFigure(std::string_view typed, std::string_view name) {
  const auto number = ParseNumber(typed);
  if (number && *number >= 0) return *number;
  return Refuse(fmt::format("{} - Invalid Data", name), fmt::format("Bad Value for {}.", name), std::string(name));
}

Result<double> ReadShare(std::string_view typed) {
  const auto number = ParseNumber(typed);
  if (number && *number > 100) return Refuse("Percentage Error", "Percent value exceeds 100", "Percent");
  if (!number || *number < 0) return Refuse("Percentage Error", "Enter a percentage from 0 to 100.", "Percent");
  return *number * 0.01;
}

Result<Area> ReadArea(const PrintedArea& typed, bool percent) {
  Area area;
  const auto length = ReadFigure(typed.length, "Length");
  if (!length) return std::unexpected(length.error());
  const auto width = ReadFigure(typed.width, "Width");
  if (!width) return std::unexpected(width.error());
  const auto sheets = ReadFigure(typed.sheets, "Impressions");
  if (!sheets) return std::unexpected(sheets.error());
  area = {InInches(*length, typed.unit), InInches(*width, typed.unit), *sheets, 1};
  if (percent) {
    const auto share = ReadShare(typed.percent);
    if (!share) return std::unexpected(share.error());
    area.share = *share;
  }
  return area;
}

int CellOf(int ink, int stock) {
  return ink * kStockTypes + stock;
}

SheetBlock AreaBlock(const PrintedArea& work, std::vector<SheetField> fields) {
  const std::string unit(LengthUnitName(work.unit));
  fields.push_back({fmt::format("      Length ({}) :", unit), work.length});
  fields.push_back({fmt::format("      Width ({}) :", unit), work.width});
  return {.heading = "Printed Area :", .fields = std::move(fields)};
}

SheetBlock ResultBlock(const InkEstimate& estimate) {
  return {.fields = {{"Pounds Required :", estimate.PoundsText()}, {"Kilograms Required :", estimate.KilogramsText()}},
          .large = true};
}

}  // namespace

std::string InkEstimate::PoundsText() const {
  return Fixed(pounds, 2);
}

std::string InkEstimate::KilogramsText() const {
  return Fixed(Kilograms(), 2);
}

Result<InkEstimate> EstimateSheetfed(const Session& session, const SheetfedWork& work) {
  auto area = ReadArea(work, work.area == AreaType::Coverage);
  if (!area) return std::unexpected(area.error());
  if (work.area != AreaType::Coverage) area->share = kAreaShares.at(static_cast<std::size_t>(work.area));
  const double printed = area->sheets * area->length * area->width * area->share;
  if (!(printed > 0)) return InkEstimate{};
  return InkEstimate{printed / Mileage(session, work.ink, work.stock) * work.up};
}

Result<InkEstimate> EstimateFlexo(const Session& session, const FlexoWork& work) {
  const auto area = ReadArea(work, true);
  if (!area) return std::unexpected(area.error());
  const double squareFeet = area->length * area->width / kSquareInchesPerFoot;
  return InkEstimate{area->sheets * squareFeet * area->share * double{AniloxFactor(session, work.anilox)} /
                     kSquareFeetPerFactor};
}

Result<void> CheckAreaField(std::string_view field, std::string_view typed) {
  const auto read = field == "Percent" ? ReadShare(typed) : ReadFigure(typed, field);
  if (!read) return std::unexpected(read.error());
  return {};
}

int Mileage(const Session& session, int ink, int stock) {
  const int mileage = GetSetting(session, setting::InkEstA[CellOf(ink, stock)]);
  return mileage > 0 ? mileage : DefaultMileage(session, ink, stock);
}

int DefaultMileage(const Session& session, int ink, int stock) {
  const auto named = setting::InkEstD[CellOf(ink, stock)];
  const int mileage = GetSetting(session, named);
  return mileage > 0 ? mileage : named.Of(named.initial);
}

Result<void> SetMileage(Session& session, int ink, int stock, std::string_view typed) {
  const auto number = ParseNumber(typed);
  if (!number || *number < 1 || *number > kMostMileage || std::floor(*number) != *number)
    return Refuse("Mileage - Invalid Data", "Bad Value for Mileage.", "Mileage");
  StoreSettings(session, {setting::InkEstA[CellOf(ink, stock)].To(static_cast<int>(*number))});
  return {};
}

float AniloxFactor(const Session& session, int choice) {
  // Nothing prints with no ink: a settings file of before knows no factors.
  const auto named = setting::Anilox[choice];
  const float factor = GetSetting(session, named);
  return factor > 0 ? factor : named.Of(named.initial);
}

Result<void> SetAniloxFactors(Session& session, const std::array<std::string, kAniloxChoices>& typed) {
  std::vector<SettingText> values;
  for (int choice = 0; choice < kAniloxChoices; ++choice) {
    const auto number = ParseNumber(typed.at(static_cast<std::size_t>(choice)));
    if (!number || !(*number > 0) || *number > setting::kMostMoney)
      return Refuse("Anilox - Invalid Data", "Bad Value for Anilox.", schema::Numbered("Anilox", choice));
    values.push_back(setting::Anilox[choice].To(static_cast<float>(*number)));
  }
  StoreSettings(session, values);
  return {};
}

LengthUnit EstimatorUnit(const Session& session) {
  return ParseLengthUnit(GetSetting(session, setting::InkEstUOM)).value_or(LengthUnit::Inch);
}

void SetEstimatorUnit(Session& session, LengthUnit unit) {
  if (unit != EstimatorUnit(session))
    StoreSettings(session, {setting::InkEstUOM.To(std::string(LengthUnitName(unit)))});
}

float DesignQuantity(const Session& session, const InkEstimate& estimate) {
  return static_cast<float>(estimate.pounds * double{UnitFactor(UnitPound, session.UMI)});
}

Result<Sheet> SheetfedSheet(const Session& session, const SheetfedWork& work) {
  const auto estimate = EstimateSheetfed(session, work);
  if (!estimate) return std::unexpected(estimate.error());
  Sheet sheet{.title = "Ink Estimator - Sheetfed"};
  sheet.blocks.push_back(
      {.fields = {{"Type of Ink :", std::string(kInkTypeNames.at(static_cast<std::size_t>(work.ink)))},
                  {"Type of Stock :", std::string(kStockTypeNames.at(static_cast<std::size_t>(work.stock)))}}});
  std::string area(kAreaTypeNames.at(static_cast<std::size_t>(work.area)));
  if (work.area == AreaType::Coverage) area += fmt::format(" {} %", Trim(work.percent));
  sheet.blocks.push_back(AreaBlock(work, {{"      Area Type :", std::move(area)}}));
  sheet.blocks.push_back(
      {.fields = {{"Number of Sheets :", work.sheets}, {"Impressions Up :", std::to_string(work.up)}}});
  sheet.blocks.push_back(ResultBlock(*estimate));
  sheet.blocks.push_back({.fields = {{"Mileage :", std::to_string(Mileage(session, work.ink, work.stock))}},
                          .lines = {std::string(kMileageNote)}});
  return sheet;
}

Result<Sheet> FlexoSheet(const Session& session, const FlexoWork& work) {
  const auto estimate = EstimateFlexo(session, work);
  if (!estimate) return std::unexpected(estimate.error());
  Sheet sheet{.title = "Ink Estimator - Flexo"};
  sheet.blocks.push_back(AreaBlock(work, {{"      Coverage per Label :  ", Trim(work.percent) + " %"}}));
  sheet.blocks.push_back({.fields = {{"Number of Sheets :", work.sheets}}});
  sheet.blocks.push_back(ResultBlock(*estimate));
  return sheet;
}

}  // namespace vellumark
