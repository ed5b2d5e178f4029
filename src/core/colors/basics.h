#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/guides.h"
#include "core/session/session.h"

namespace vellumark {

/// A row of `<DB>_Basic`: a raw ink, or an Additive when it is flagged so. Quantities in the inventory unit, costs and
/// emissions per inventory unit.
struct BasicColor {
  std::int64_t key = 0;
  std::string Color_Name;
  std::string Color_Code;
  float Inventory = 0;  ///< Unlotted stock only
  float Reorder = 0;
  float PurchaseCost = 0;
  std::optional<DateTime> Date_Entered;
  std::optional<DateTime> LastConsumed;
  std::string Notes;
  std::string Inv_Note;
  std::int32_t IngSort = 0;
  bool Additive = false;
  float VOC = 0;
  float HAP = 0;
  std::int32_t LotRefID = 0;
  BookData book;
};

/// Its fields, told once.
const FieldMap<BasicColor>& BasicFields();

// Where a `database` may be given, empty means the current one.

bool BasicColorExists(const Session& session, std::string_view name, std::string_view database = {});
/// The place in the weighing order of the next new row: the number of rows.
std::int32_t NextIngSort(const Session& session, std::string_view database = {});

/// The row of exactly that name, in any case.
std::optional<BasicColor> ReadBasic(const Session& session, std::string_view name, std::string_view database = {});
/// Every row in Color_Name order, one at a time, until `take` answers false.
void ForEachBasic(const Session& session, const std::function<bool(const BasicColor&)>& take);
/// Names in order; of Additives only, of Colors only, or of both.
enum class BasicFilter { All, Colors, Additives };
std::vector<std::string> BasicNames(const Session& session, BasicFilter filter = BasicFilter::All);

/// Adds a Basic Color with zero figures at the end of the weighing order, as a recipe does that names an unknown
/// ingredient; one that is on file under its stored name is left as it is. The guide gives spelling and data where it
/// applies. Returns the name as stored.
std::string AddZeroBasic(Session& session, std::string_view name, bool additive, std::string_view database = {});

/// True when the named item stands in an Additive Set.
bool UsedByAdditiveSet(const Session& session, std::string_view name);

}  // namespace vellumark
