#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/color_kind.h"
#include "core/datafile/field_map.h"
#include "core/session/session.h"

namespace vellumark {

/// References of a colour's lots run from 1 to this one and then begin again.
constexpr std::int32_t kLastLotRefID = 999998;
constexpr bool IsLotReference(std::int32_t ref) {
  return ref >= 1 && ref <= kLastLotRefID;
}
/// Of a lot's number, location and container.
inline constexpr std::size_t kLotTextLength = 30;
/// What stands for a lot number wherever stock outside the lots is meant; its reference is 0.
constexpr std::string_view kUnlottedInv = "Unlotted Inv.";

/// One lot of a colour. Quantities are in the inventory unit.
struct LotRow {
  std::int64_t row = 0;  ///< row number in the lot table
  std::int32_t LotRefID = 0;
  std::string LotNumber;
  std::string LotLoc;
  std::string LotContID;
  std::optional<DateTime> LotDate;
  float LotQty = 0;
  float LotPrice = 0;  ///< per inventory unit
  bool LotConsignment = false;
};

/// What of it stands in its row, beside the name of its colour.
const FieldMap<LotRow>& LotFields();

// Of all functions here an empty Database name means the current Database.

bool ColorIsThere(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});

/// The colour's lots by `LotNumber`, those of one number in the order of their references.
std::vector<LotRow> LotsOf(const Session& session, ColorKind kind, std::string_view name,
                           std::string_view database = {});
std::optional<LotRow> FindLot(const Session& session, ColorKind kind, std::string_view name, std::string_view database,
                              std::int32_t ref);
/// Those that bear the number, by reference.
std::vector<LotRow> LotsNumbered(const Session& session, ColorKind kind, std::string_view name,
                                 std::string_view database, std::string_view number);

/// Grants the first free reference after the colour's counter, going round from the last one to 1, and makes it the
/// counter; -1 when all are in use.
std::int32_t NextLotRefID(Session& session, ColorKind kind, std::string_view name, std::string_view database = {});
/// The reference after the colour's counter; 1 after 999999.
std::int32_t LastLotRefID(const Session& session, ColorKind kind, std::string_view name,
                          std::string_view database = {});
bool LotRefIDInUse(const Session& session, ColorKind kind, std::string_view name, std::string_view database,
                   std::int32_t ref);
void StoreLotRefID(Session& session, ColorKind kind, std::string_view name, std::string_view database,
                   std::int32_t ref);
/// The first reference that no lot of the colour has, from `from` to `last` and then from 1; -1 when there is none. One
/// walk over the references in order, whatever their number. `from` outside 1 to `last` starts at 1.
std::int32_t FirstFreeLotRef(const Session& session, ColorKind kind, std::string_view name, std::string_view database,
                             std::int32_t from, std::int32_t last = kLastLotRefID);

/// Of a lot in the current Database; empty when there is none. The date as "YYYY-MM-DD".
std::string GetLotNumber(const Session& session, ColorKind kind, std::string_view name, std::int32_t ref);
std::string GetLotDate(const Session& session, ColorKind kind, std::string_view name, std::int32_t ref);

/// Sum of the colour's `LotQty`, three decimals; of all lots, of those that are owned, of those on consignment.
float LotQtyTotal(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});
float LotQtyOwned(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});
float LotQtyConsigned(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});

/// The colour's `Inventory`, three decimals; 0 when the colour is missing.
float UnlottedQty(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});
/// `Inventory` and, while Lotted Inventory is in use, the lots; three decimals.
float TotalStock(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});

/// What Unlotted Inventory costs per inventory unit: the colour's `PurchaseCost`, a formula's `BasicCost`, read live; 0
/// when the colour is missing.
float UnlottedPrice(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});

/// Sum of `LotQty` times `LotPrice`, with `DecimalPlaces`; of all lots, of those owned, of those on consignment.
float LotValue(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});
float LotValueOwned(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});
float LotValueConsigned(const Session& session, ColorKind kind, std::string_view name, std::string_view database = {});

/// Tells that no reference could be granted.
void ShowMaxLotUsage(const Session& session);

}  // namespace vellumark
