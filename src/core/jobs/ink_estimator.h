#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "core/base/sheet.h"
#include "core/jobs/design_work.h"

namespace vellumark {

// How much ink a job will need, from the area that is printed: sheetfed by mileage, flexo by the volume of the anilox.

inline constexpr int kInkTypes = 8;
inline constexpr int kStockTypes = 4;
inline constexpr int kAniloxChoices = 4;
inline constexpr int kMostUp = 16;

/// "Black" to "Varnish", "Uncoated" to "Nonporous", the four stations.
extern const std::array<std::string_view, kInkTypes> kInkTypeNames;
extern const std::array<std::string_view, kStockTypes> kStockTypeNames;
extern const std::array<std::string_view, kAniloxChoices> kAniloxNames;
extern const std::array<std::string_view, 4> kAreaTypeNames;  ///< in the order of AreaType

enum class AreaType { Solid, Halftone, Text, Coverage };

/// Unrounded: what is carried over is not what is shown.
struct InkEstimate {
  double pounds = 0;
  double Kilograms() const { return pounds / 2.2; }
  std::string PoundsText() const;  ///< two decimals
  std::string KilogramsText() const;
};

/// What is typed on a tab. `length` and `width` in `unit`.
struct PrintedArea {
  std::string length;
  std::string width;
  LengthUnit unit = LengthUnit::Inch;
  std::string sheets;
  std::string percent;  ///< of coverage: flexo, and sheetfed with AreaType::Coverage
};
struct SheetfedWork : PrintedArea {
  int ink = 0;
  int stock = 0;
  AreaType area = AreaType::Solid;
  int up = 1;
};
struct FlexoWork : PrintedArea {
  int anilox = 0;
};

/// Refused, with the field at fault (Length, Width, Impressions, Percent), what is no number or below zero, and a
/// percentage above 100.
Result<InkEstimate> EstimateSheetfed(const Session& session, const SheetfedWork& work);
Result<InkEstimate> EstimateFlexo(const Session& session, const FlexoWork& work);

/// One field as it is left, refused as the estimate would: Length, Width, Impressions or Percent.
Result<void> CheckAreaField(std::string_view field, std::string_view typed);

/// Square inches that a pound of the ink prints on the stock: in force, and as delivered.
int Mileage(const Session& session, int ink, int stock);
int DefaultMileage(const Session& session, int ink, int stock);
/// The mileage in force: a whole number above 0. What was delivered stays as it was.
Result<void> SetMileage(Session& session, int ink, int stock, std::string_view typed);
/// The factor of an anilox choice: pounds of ink on 1,000 square feet.
float AniloxFactor(const Session& session, int choice);
Result<void> SetAniloxFactors(Session& session, const std::array<std::string, kAniloxChoices>& typed);
LengthUnit EstimatorUnit(const Session& session);
void SetEstimatorUnit(Session& session, LengthUnit unit);

/// An estimate as the quantity of a Design's colour, in the inventory unit.
float DesignQuantity(const Session& session, const InkEstimate& estimate);

inline constexpr std::string_view kMileageNote = "Mileage = Square inches that can be printed with 1 lb. of ink.";
inline constexpr std::string_view kAniloxNote = "Pounds of ink on 1,000 square feet of solid print.";
/// What is printed of an estimate.
Result<Sheet> SheetfedSheet(const Session& session, const SheetfedWork& work);
Result<Sheet> FlexoSheet(const Session& session, const FlexoWork& work);

}  // namespace vellumark
