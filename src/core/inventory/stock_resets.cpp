#include "core/inventory/stock_resets.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/colors/amounts.h"
#include "core/datafile/writer.h"
#include "core/inventory/lot_copies.h"
#include "core/inventory/stock_change.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::size_t kLookEvery = 64;  // colours between two looks at whether the operator wants to stop

struct ColorFigure {
  std::int64_t row = 0;
  std::string name;
  float value = 0;
};

struct ResetTexts {
  std::string_view title;
  std::string_view what;
  std::string_view basicsField;
  std::string_view mixesField;
  std::string undo;  ///< what it is called in the list of what can be taken back
};

struct ReadValues {
  std::optional<float> basics;
  std::optional<float> mixes;
};

Result<std::optional<float>> ReadValue(const std::optional<std::string>& typed, const ResetTexts& texts,
                                       std::string_view field) {
  if (!typed) return std::nullopt;
  const auto number = ParseNumber(*typed);
  const double value = number ? RoundTo(*number, 3) : -1;
  if (value < 0 || value > static_cast<double>(kLargestQty))
    return Refuse(std::string(texts.title),
                  fmt::format("Please enter {} between 0 and {}.", texts.what, Fixed(kLargestQty, 0)),
                  std::string(field));
  return static_cast<float>(value);
}

Result<ReadValues> ReadBoth(const ResetValues& values, const ResetTexts& texts) {
  const auto basics = ReadValue(values.basics, texts, texts.basicsField);
  if (!basics) return std::unexpected(basics.error());
  const auto mixes = ReadValue(values.mixes, texts, texts.mixesField);
  if (!mixes) return std::unexpected(mixes.error());
  return ReadValues{*basics, *mixes};
}

std::vector<ColorFigure> FiguresOf(const Session& session, ColorKind kind, std::string_view field) {
  Statement colors = session.File().Prepare(fmt::format("SELECT RowKey, Color_Name, {} FROM {} ORDER BY RowKey", field,
                                                        session.QuotedTable(ColorTable(kind))));
  std::vector<ColorFigure> figures;
  while (colors.Step()) figures.push_back({colors.Whole(0), colors.Text(1), colors.Single(2)});
  return figures;
}

// Runs over all colours of a kind; false when the operator stopped it.
bool ForAll(Session& session, std::string_view text, const std::vector<ColorFigure>& colors,
            const std::function<void(const ColorFigure&)>& apply) {
  ProgressRun progress(session.progress, text);
  for (std::size_t i = 0; i < colors.size(); ++i) {
    if (i % kLookEvery == 0) {
      if (session.progress.Cancelled()) return false;
      progress.Step(i, colors.size());
    }
    apply(colors[i]);
  }
  return !session.progress.Cancelled();
}

StockChange ResetOf(ColorKind kind, const std::string& name, StockChange::Action action, std::int64_t row, float before,
                    float after) {
  return StockChange{.source = PostingSource::Reset, .kind = kind, .name = name}.Of(action, row, before, after);
}

void DeleteLot(Session& session, ColorKind kind, const std::string& name, std::string_view database,
               const LotRow& lot) {
  StockChange change = ResetOf(kind, name, StockChange::Action::DeleteLot, lot.row, lot.LotQty, 0);
  change.database = database;
  change.lot = lot;
  WriteStockChange(session, change);
}

bool ResetKind(Session& session, ColorKind kind, float value) {
  const bool removeLots = value == 0 && session.InvLotTracking == 1;
  const std::string_view text =
      kind == ColorKind::Mix ? "Reseting Master Formula Inventories..." : "Reseting Basic Color Inventories...";
  return ForAll(session, text, FiguresOf(session, kind, "Inventory"), [&](const ColorFigure& color) {
    if (color.value != value)
      WriteStockChange(session,
                       ResetOf(kind, color.name, StockChange::Action::SetUnlotted, color.row, color.value, value));
    if (!removeLots) return;
    for (const LotRow& lot : LotsOf(session, kind, color.name)) DeleteLot(session, kind, color.name, {}, lot);
  });
}

bool ResetReorderKind(Session& session, Transaction& transaction, ColorKind kind, float value) {
  Statement update = session.File().Prepare(
      fmt::format("UPDATE {} SET Reorder = ?1 WHERE RowKey = ?2", session.QuotedTable(ColorTable(kind))));
  const std::string_view text =
      kind == ColorKind::Mix ? "Reseting Master Formula Reorder Points..." : "Reseting Basic Color Reorder Points...";
  const bool done = ForAll(session, text, FiguresOf(session, kind, "Reorder"),
                           [&](const ColorFigure& color) { update.Bind(1, value).Bind(2, color.row).Run(); });
  transaction.Note({ChangeKind(kind), session.CurrentDatabase, "", Change::What::All, ""});
  return done;
}

// One transaction for both kinds.
Result<bool> ResetBoth(Session& session, Undoable kind, const ResetValues& values, const ResetTexts& texts,
                       const std::function<bool(Transaction&, ColorKind, float)>& reset) {
  if (const auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  const auto read = ReadBoth(values, texts);
  if (!read) return std::unexpected(read.error());
  Transaction transaction(session.File());
  UndoStep step(session, kind, texts.undo);
  if (read->basics && !reset(transaction, ColorKind::Basic, *read->basics)) return false;
  if (read->mixes && !reset(transaction, ColorKind::Mix, *read->mixes)) return false;
  step.Keep();
  transaction.Commit();
  return true;
}

// ---- the Reset tab

// The checked rows that are there, from the bottom up.
std::vector<std::size_t> FromBottom(const InventoryWork& work, std::vector<std::size_t> checked) {
  std::erase_if(checked, [&](std::size_t row) { return row >= work.rows.size(); });
  std::sort(checked.begin(), checked.end(), std::greater<>());
  checked.erase(std::unique(checked.begin(), checked.end()), checked.end());
  return checked;
}

Result<bool> MayRun(const Session& session, const std::vector<std::size_t>& checked, std::string title,
                    std::string question) {
  if (const auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  if (checked.empty()) return Refuse("Reset Task", "Check items to perform a reset task.");
  return session.prompt.Ask(std::move(title), std::move(question));
}

// The lot of a row as it is on file; nothing for a new row or a lot that is gone.
std::optional<LotRow> LotOnFile(const Session& session, const InventoryWork& work, const InventoryRow& row) {
  if (!row.key || *row.key == 0) return std::nullopt;
  return FindLot(session, work.kind, work.name, work.database, *row.key);
}

void ZeroUnlotted(Session& session, InventoryWork& work) {
  Statement color = session.File().Prepare(
      fmt::format("SELECT RowKey, Inventory FROM {} WHERE Color_Name = ?1 ORDER BY RowKey LIMIT 1",
                  session.QuotedTable(ColorTable(work.kind), work.database)));
  color.Bind(1, work.name);
  if (color.Step() && color.Single(1) != 0) {
    StockChange change =
        ResetOf(work.kind, work.name, StockChange::Action::SetUnlotted, color.Whole(0), color.Single(1), 0);
    change.database = work.database;
    WriteStockChange(session, change);
  }
}

// Writes a lot that is on file anew.
void Rewrite(Session& session, const InventoryWork& work, const LotRow& earlier, const LotRow& now,
             Transaction& transaction) {
  RewriteLot(session, {work.kind, work.name, work.database}, earlier, now);
  transaction.Note({ChangeKind(work.kind), work.database, work.name, Change::What::Updated, {}});
}

// Changes the lots of these rows as far as they are on file, all of them or none.
template <class Change>
void RewriteLots(Session& session, const InventoryWork& work, const std::vector<std::size_t>& rows,
                 const Change& change) {
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::ResetRowLots, fmt::format("Reset lots of {}", work.name));
  for (const std::size_t row : rows) {
    const auto lot = LotOnFile(session, work, work.rows[row]);
    if (!lot) continue;
    LotRow now = *lot;
    change(now);
    Rewrite(session, work, *lot, now, transaction);
  }
  step.Keep();
  transaction.Commit();
}

}  // namespace

Result<bool> ResetInventories(Session& session, const ResetValues& values) {
  return ResetBoth(session, Undoable::ResetInventories, values,
                   {"Invalid Inventory Amount", "an Inventory amount", "BasicValue", "MixValue",
                    "Reset the inventory of all colors"},
                   [&](Transaction&, ColorKind kind, float value) { return ResetKind(session, kind, value); });
}

Result<bool> ResetReorderPoints(Session& session, const ResetValues& values) {
  return ResetBoth(session, Undoable::ResetReorderPoints, values,
                   {"Invalid Reorder Point", "a Reorder Point", "txtBasicsNewValue", "txtMixesNewValue",
                    "Reset the reorder points of all colors"},
                   [&](Transaction& transaction, ColorKind kind, float value) {
                     return ResetReorderKind(session, transaction, kind, value);
                   });
}

Result<bool> ResetRowInventories(Session& session, InventoryWork& work, const std::vector<std::size_t>& checked) {
  const std::vector<std::size_t> rows = FromBottom(work, checked);
  const auto may = MayRun(session, rows, "Reset Inventory", "Reset Selected Items Inventory to 0 ?");
  if (!may || !*may) return may;
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::ResetRowInventories, fmt::format("Reset inventory of {}", work.name));
  for (const std::size_t row : rows) {
    if (row == 0) {
      ZeroUnlotted(session, work);
    } else if (const auto lot = LotOnFile(session, work, work.rows[row])) {
      DeleteLot(session, work.kind, work.name, work.database, *lot);
    }
  }
  step.Keep();
  transaction.Commit();
  for (const std::size_t row : rows) {
    if (row == 0) {
      work.rows[0].now.qty = work.rows[0].onFile.qty = 0;
      work.rows[0].entered = 0;
    } else {
      work.rows.erase(work.rows.begin() + static_cast<std::ptrdiff_t>(row));
    }
  }
  return true;
}

Result<bool> ResetRowDates(Session& session, InventoryWork& work, const std::vector<std::size_t>& checked,
                           const DateTime& date) {
  std::vector<std::size_t> rows = FromBottom(work, checked);
  const auto may = MayRun(session, rows, "Reset Dates", "Reset all Lotted Inv Dates ?");
  if (!may || !*may) return may;
  std::erase_if(rows, [&](std::size_t row) { return row == 0 || DatedByBatch(session, work, work.rows[row]); });
  RewriteLots(session, work, rows, [&](LotRow& lot) { lot.LotDate = date; });
  for (const std::size_t row : rows) work.rows[row].now.date = work.rows[row].onFile.date = date;
  return true;
}

Result<bool> ResetRowPrices(Session& session, InventoryWork& work, const std::vector<std::size_t>& checked,
                            float price) {
  if (auto right = RequireRight(session, AmountKey::Currency, "cmbResetPrice"); !right)
    return std::unexpected(right.error());
  std::vector<std::size_t> rows = FromBottom(work, checked);
  const auto may = MayRun(session, rows, "Reset Prices", "Reset all Lotted Prices ?");
  if (!may || !*may) return may;
  std::erase(rows, std::size_t{0});
  const float rounded = RoundSingle(price, session.DecimalPlaces);
  RewriteLots(session, work, rows, [&](LotRow& lot) { lot.LotPrice = rounded; });
  for (const std::size_t row : rows) work.rows[row].now.price = work.rows[row].onFile.price = rounded;
  return true;
}

}  // namespace vellumark
