#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/refusal.h"
#include "core/inventory/lots.h"

namespace vellumark {

/// The largest quantity that one entry of stock may hold, in the inventory unit.
constexpr float kLargestQty = 99999;

/// One row of an inventory list as it stands on the screen.
struct InventoryValues {
  std::string lotNumber;
  std::string location;
  std::string contID;
  float qty = 0;
  std::optional<DateTime> date;
  float price = 0;
  bool consignment = false;
  bool operator==(const InventoryValues&) const = default;
};

struct InventoryRow {
  std::optional<std::int32_t> key;  ///< `LotRefID` of a lot on file, 0 of Unlotted Inventory, nothing of a new row
  InventoryValues now;
  InventoryValues onFile;  ///< of a row that has a key: what was loaded
  double entered = 0;      ///< what was added by hand since; a save adds it to what stands on file then
};

struct RemovedLot {
  std::int32_t LotRefID = 0;
  std::string LotNumber;
  float qty = 0;       ///< on file when it was loaded
  double entered = 0;  ///< what was added by hand until it went
};

struct InventoryTotals {
  float unlotted = 0;
  float lotted = 0;
  float total = 0;
};

/// The working copy of one colour's stock: what a window edits by hand before it is saved. The first row is Unlotted
/// Inventory, always; the lots follow by `LotNumber`, and only while Lotted Inventory is in use.
struct InventoryWork {
  ColorKind kind = ColorKind::Basic;
  std::string name;
  std::string database;
  float purchaseCost = 0;
  float basicCost = 0;  ///< of a formula
  std::vector<InventoryRow> rows;
  std::vector<RemovedLot> removed;
  std::string document{};  ///< for the history: what moves the stock, and why
  std::string reason{};

  /// What a new entry costs unless told otherwise, and what Unlotted Inventory costs.
  float UnitCost() const { return kind == ColorKind::Mix ? basicCost : purchaseCost; }
  InventoryTotals Totals() const;
  /// Distinct lot numbers and non-empty locations of the lots, in order.
  std::vector<std::string> LotNumbers() const;
  std::vector<std::string> Locations() const;
};

/// The refusal of a name that neither a Basic Color nor a formula bears.
Refusal InventoryColorNotFound(const Session& session);

/// Which colour of that name is meant. A name that both a Basic Color and a formula bear is asked for, unless `wanted`
/// tells. Refused when there is none.
Result<ColorKind> ChooseInventoryColor(const Session& session, const std::string& name,
                                       std::optional<ColorKind> wanted = {});

/// Throws std::logic_error when the colour is missing.
InventoryWork LoadInventory(const Session& session, ColorKind kind, const std::string& name,
                            std::string_view database = {});

/// What the adjust fields hold.
struct AdjustFields {
  std::optional<std::size_t> selected;  ///< index of the selected row
  float quantity = 0;                   ///< added to what stands there; of one container
  std::string lotNumber;
  std::string location;
  std::string contID;
  std::optional<int>
      count;  ///< number of containers; nothing when left open, which is one whose `contID` stays as it is
  std::optional<DateTime> date;
  float price = 0;
  bool consignment = false;
};

/// Empty fields: dated today, at the colour's cost.
AdjustFields ClearedFields(const Session& session, const InventoryWork& work);
/// The fields after a click on a row: what the row holds, with the quantity 0.
AdjustFields FieldsOfRow(const Session& session, const InventoryWork& work, std::size_t row);
/// The lot that bears number, location and container together.
std::optional<std::size_t> FindRow(const InventoryWork& work, std::string_view lotNumber, std::string_view location,
                                   std::string_view contID);

// What is typed into the fields.

/// A number with three decimals, -99999 to 99999.
Result<float> ReadAdjustQuantity(std::string_view text);
/// Nothing for an empty text, or when a count above 100 is asked about and not confirmed.
Result<std::optional<int>> ReadUnitCount(const Session& session, std::string_view text);
/// The entries of the price list; the first is the default.
std::vector<std::string> PriceChoices(ColorKind kind);
/// The price of an entry of the list (or of its number with the bracket, "2)"), or a number typed; the default for an
/// empty text, and for a user who may not see prices whatever is typed.
Result<float> ReadLotPrice(const Session& session, const InventoryWork& work, std::string_view text);
/// A day of the year 2000 or later.
Result<DateTime> ReadLotDate(std::string_view text);
/// True for a formula's lot that a Batch made, and so dated.
bool DatedByBatch(const Session& session, const InventoryWork& work, const InventoryRow& row);
/// Refuses the calendar for such a lot.
Result<void> RequireDateChangeable(const Session& session, const InventoryWork& work, std::size_t row);

/// What container `i` (from 1) of `count` is called: a number goes on counting, "B10" becomes "B10_1", nothing the number
/// alone. Without a count what was typed stands as it is.
std::string ContainerName(const std::string& typed, int i, std::optional<int> count);

/// Applies the fields to the working copy: to the selected row, to Unlotted Inventory when no lot is named, to the lot
/// that matches, or as new lots. Refused: too large, negative where that is not allowed, too many containers.
Result<void> ApplyAdjust(const Session& session, InventoryWork& work, const AdjustFields& fields);

/// The same for the figure that Unlotted Inventory is to have, as typed: the entry that leads there.
Result<void> SetUnlotted(const Session& session, InventoryWork& work, std::string_view typed);

/// Writes what differs from the tables, in one transaction: stock, lots changed, added and removed, and the copies of
/// changed lots in Batches and Job Records. Stock that moved since it was loaded keeps that movement: what was entered
/// is added to the present figure, and a lot that was used up meanwhile comes back with what was put into it. The
/// number of new lots that got no reference and so were left out, which is also told; the working copy has to be loaded
/// anew afterwards. Refused while the file is an archive copy, when the colour is gone, and when what was entered no
/// longer fits what stands there; then nothing is written.
Result<int> SaveInventory(Session& session, const InventoryWork& work);
/// The same within the caller's transaction; whether the file may be written, and telling of what was left out, are the
/// caller's.
Result<int> WriteInventory(Session& session, const InventoryWork& work);

}  // namespace vellumark
