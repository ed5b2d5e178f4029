#include <fmt/format.h>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/inventory/adjust.h"
#include "core/inventory/lot_copies.h"
#include "core/inventory/posting.h"
#include "core/inventory/stock_change.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

// Writes one working copy; lives for the length of its transaction.
class InventorySave {
 public:
  InventorySave(Session& session, const InventoryWork& work, Transaction& transaction)
      : session_(session), work_(work), transaction_(transaction), rules_(ReadStockRules(session)) {}

  // The number of new lots that got no reference.
  Result<int> Run() {
    if (const auto written = WriteUnlotted(); !written) return std::unexpected(written.error());
    if (session_.InvLotTracking != 1) return 0;
    int leftOut = 0;
    for (std::size_t i = 1; i < work_.rows.size(); ++i) {
      const InventoryRow& row = work_.rows[i];
      if (!row.key) {
        if (!AddLot(row.now)) ++leftOut;
      } else if (IsChanged(row)) {
        const auto written = ChangeLot(*row.key, row);
        if (!written) return std::unexpected(written.error());
        if (!*written) ++leftOut;
      }
    }
    for (const RemovedLot& lot : work_.removed)
      if (const auto removed = RemoveLot(lot); !removed) return std::unexpected(removed.error());
    return leftOut;
  }

 private:
  StockChange ChangeTo(StockChange::Action action, std::int64_t row, float before, float after) const {
    const StockChange change{.kind = work_.kind, .name = work_.name, .database = work_.database, .document = work_.document,
                             .reason = work_.reason};
    return change.Of(action, row, before, after);
  }

  static bool IsChanged(const InventoryRow& row) { return row.now != row.onFile || row.entered != 0; }

  // What was entered no longer fits what stands there.
  Refusal Moved(std::string_view number, float present, double entered) const {
    const float amount = static_cast<float>(entered);
    return {"Adjust Value",
            fmt::format("{}, {}: the stock moved meanwhile.\n{} stands there now, so {} cannot be {}.\n\nNothing was "
                        "saved. Clear the entry and adjust again.",
                        work_.name, number, Fixed(present, 3), Fixed(amount < 0 ? -amount : amount, 3),
                        amount < 0 ? "taken" : "added"),
            "AdjustInv"};
  }

  Result<void> RequireFits(std::string_view number, float present, double entered) const {
    const float after = RoundSingle(present + entered, 3);
    const bool negative = after < 0 && entered < 0 && (work_.kind == ColorKind::Mix || !rules_.AllowNegInv);
    if (negative || (after > kLargestQty && entered > 0)) return std::unexpected(Moved(number, present, entered));
    return {};
  }

  Result<void> WriteUnlotted() {
    const InventoryRow& row = work_.rows.front();
    if (row.now.qty == row.onFile.qty && row.entered == 0) return {};
    Statement color = session_.File().Prepare(
        fmt::format("SELECT RowKey, Inventory FROM {} WHERE Color_Name = ?1 ORDER BY RowKey LIMIT 1",
                    session_.QuotedTable(ColorTable(work_.kind), work_.database)));
    color.Bind(1, work_.name);
    if (!color.Step()) return {};
    const float present = color.Single(1);
    float after = row.now.qty;
    if (present != row.onFile.qty) {
      if (const auto fits = RequireFits(kUnlottedInv, present, row.entered); !fits) return fits;
      after = UnlottedAfter(PostingSource::ManualAdjust, work_.kind, rules_, present, static_cast<float>(row.entered));
    }
    if (after == present) return {};
    WriteStockChange(session_, ChangeTo(StockChange::Action::SetUnlotted, color.Whole(0), present, after));
    return {};
  }

  bool AddLot(const InventoryValues& values) {
    StockChange change = ChangeTo(StockChange::Action::AddLot, 0, 0, values.qty);
    change.lot.LotRefID = NextLotRefID(session_, work_.kind, work_.name, work_.database);
    if (change.lot.LotRefID == -1) return false;
    change.lot.LotNumber = values.lotNumber;
    change.lot.LotLoc = values.location;
    change.lot.LotContID = values.contID;
    change.lot.LotDate = values.date;
    change.lot.LotPrice = values.price;
    change.lot.LotConsignment = values.consignment;
    WriteStockChange(session_, change);
    return true;
  }

  // A lot that was used up meanwhile comes back with what was put into it; false when no reference was free.
  Result<bool> BringBack(const InventoryRow& row) {
    if (row.entered <= 0)
      return Refuse(
          "Adjust Value",
          fmt::format("{}, {}: the lot is not there any more.\n\nNothing was saved. Clear the entry and adjust "
                      "again.",
                      work_.name, row.onFile.lotNumber),
          "AdjustInv");
    InventoryValues values = row.now;
    values.qty = RoundSingle(row.entered, 3);
    return AddLot(values);
  }

  // Of a field that was not touched, what another window gave it meanwhile stays.
  template <class T>
  static const T& Touched(const InventoryRow& row, T InventoryValues::*field, const T& present) {
    return row.now.*field == row.onFile.*field ? present : row.now.*field;
  }

  // Whether the lot is there or came back.
  Result<bool> ChangeLot(std::int32_t ref, const InventoryRow& row) {
    auto lot = FindLot(session_, work_.kind, work_.name, work_.database, ref);
    if (!lot) return BringBack(row);
    const LotRow earlier = *lot;
    lot->LotNumber = Touched(row, &InventoryValues::lotNumber, lot->LotNumber);
    lot->LotLoc = Touched(row, &InventoryValues::location, lot->LotLoc);
    lot->LotContID = Touched(row, &InventoryValues::contID, lot->LotContID);
    lot->LotDate = Touched(row, &InventoryValues::date, lot->LotDate);
    lot->LotPrice = Touched(row, &InventoryValues::price, lot->LotPrice);
    lot->LotConsignment = Touched(row, &InventoryValues::consignment, lot->LotConsignment);
    RewriteLot(session_, {work_.kind, work_.name, work_.database}, earlier, *lot);
    transaction_.Note({ChangeKind(work_.kind), work_.database, work_.name, Change::What::Updated, {}});
    if (row.now.qty != row.onFile.qty || row.entered != 0) {
      std::optional<float> after = row.now.qty;
      if (lot->LotQty != row.onFile.qty) {
        if (const auto fits = RequireFits(earlier.LotNumber, lot->LotQty, row.entered); !fits)
          return std::unexpected(fits.error());
        after = LotAfter(PostingSource::ManualAdjust, rules_, lot->LotQty, static_cast<float>(row.entered));
      }
      SetLot(*lot, after);
    }
    return true;
  }

  // Nothing to be left takes the lot away.
  void SetLot(const LotRow& lot, std::optional<float> after) {
    if (after == lot.LotQty) return;
    StockChange change = ChangeTo(after ? StockChange::Action::SetLot : StockChange::Action::DeleteLot, lot.row,
                                  lot.LotQty, after.value_or(0));
    change.lot = lot;
    WriteStockChange(session_, change);
  }

  // By number as well as by reference: a lot that was given another number meanwhile stays. What came into the lot
  // meanwhile stays in it.
  Result<void> RemoveLot(const RemovedLot& removed) {
    const auto lot = FindLot(session_, work_.kind, work_.name, work_.database, removed.LotRefID);
    if (!lot || !EqualNoCase(lot->LotNumber, removed.LotNumber)) return {};
    std::optional<float> after;
    if (lot->LotQty != removed.qty) {
      if (const auto fits = RequireFits(removed.LotNumber, lot->LotQty, removed.entered); !fits) return fits;
      after = LotAfter(PostingSource::ManualAdjust, rules_, lot->LotQty, static_cast<float>(removed.entered));
    }
    SetLot(*lot, after);
    return {};
  }

  Session& session_;
  const InventoryWork& work_;
  Transaction& transaction_;
  const StockRules rules_;
};

}  // namespace

Result<int> WriteInventory(Session& session, const InventoryWork& work) {
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::AdjustInventory, fmt::format("Adjust inventory of {}", work.name));
  auto leftOut = InventorySave(session, work, transaction).Run();
  if (!leftOut) return leftOut;
  step.Keep();
  transaction.Commit();
  return leftOut;
}

Result<int> SaveInventory(Session& session, const InventoryWork& work) {
  if (const auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  if (!ColorIsThere(session, work.kind, work.name, work.database))
    return std::unexpected(InventoryColorNotFound(session));
  const auto leftOut = WriteInventory(session, work);
  if (leftOut && *leftOut > 0) ShowMaxLotUsage(session);
  return leftOut;
}

}  // namespace vellumark
