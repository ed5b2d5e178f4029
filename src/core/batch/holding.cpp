#include "core/batch/holding.h"

#include <fmt/format.h>

#include <optional>
#include <set>
#include <tuple>

#include "core/base/text.h"
#include "core/batch/leave.h"
#include "core/batch/loader.h"
#include "core/datafile/schema.h"
#include "core/inventory/posting.h"

namespace vellumark {
namespace {

constexpr const char* kMarkerTable = "MSysOpenBatch";

struct HeldFigure {
  ColorKind kind = ColorKind::Basic;
  std::string name;
  std::int64_t colorRow = 0;
  std::int32_t ref = 0;
  std::string LotNumber;
  float quantity = 0;
  std::optional<float> before;  ///< nothing: the lot was not there
  std::optional<float> after;
};

struct Figure {
  std::int64_t row = 0;
  float quantity = 0;
};

struct ColorAt {
  std::int64_t row = 0;
  std::string name;
  float inventory = 0;
};

// By row first: the colour may have got another name while the Batch was open.
std::optional<ColorAt> FindColor(const Session& session, const std::string& database, ColorKind kind, std::int64_t row,
                                 const std::string& name) {
  const std::string table = session.QuotedTable(ColorTable(kind), database);
  Statement color = session.File().Prepare(
      row == 0
          ? fmt::format("SELECT RowKey, Color_Name, Inventory FROM {} WHERE Color_Name = ?1 ORDER BY RowKey LIMIT 1",
                        table)
          : fmt::format("SELECT RowKey, Color_Name, Inventory FROM {} WHERE RowKey = ?1", table));
  row == 0 ? color.Bind(1, name) : color.Bind(1, row);
  if (color.Step()) return ColorAt{color.Whole(0), color.Text(1), color.Single(2)};
  if (row == 0) return std::nullopt;
  return FindColor(session, database, kind, 0, name);
}

std::optional<Figure> FigureAt(const Session& session, const std::string& database, ColorKind kind,
                               const ColorAt& color, std::int32_t ref) {
  if (ref == 0) return Figure{color.row, color.inventory};
  const auto lot = FindLot(session, kind, color.name, database, ref);
  if (!lot) return std::nullopt;
  return Figure{lot->row, lot->LotQty};
}

void EnsureMarkerTable(Database& file) {
  if (file.TableExists(kMarkerTable)) {
    file.AddMissingFields(kMarkerTable, schema::OpenBatch);
  } else {
    file.CreateTable(kMarkerTable, schema::OpenBatch);
  }
}

std::vector<HeldFigure> ReadHeld(Database& file, std::string_view database, std::int32_t batchNo) {
  std::vector<HeldFigure> held;
  if (!file.TableExists(kMarkerTable)) return held;
  Statement rows = file.Prepare(
      fmt::format("SELECT Kind, Color_Name, ColorRow, LotRefID, LotNumber, Quantity, StoodBefore, StoodAfter FROM {} "
                  "WHERE DatabaseName = ?1 AND BatchNo = ?2 ORDER BY RowKey",
                  kMarkerTable));
  rows.Bind(1, database).Bind(2, batchNo);
  const auto figure = [&](int column) -> std::optional<float> {
    if (rows.IsNull(column)) return std::nullopt;
    return rows.Single(column);
  };
  while (rows.Step())
    held.push_back({rows.Whole(0) == 2 ? ColorKind::Mix : ColorKind::Basic, rows.Text(1), rows.Whole(2),
                    static_cast<std::int32_t>(rows.Whole(3)), rows.Text(4), rows.Single(5), figure(6), figure(7)});
  return held;
}

void DeleteMarker(Database& file, std::string_view database, std::int32_t batchNo) {
  if (!file.TableExists(kMarkerTable)) return;
  file.Prepare(fmt::format("DELETE FROM {} WHERE DatabaseName = ?1 AND BatchNo = ?2", kMarkerTable))
      .Bind(1, database)
      .Bind(2, batchNo)
      .Run();
}

Posting PostingOf(std::int32_t batchNo, ColorKind kind, const std::string& name, const std::string& database,
                  float quantity) {
  Posting posting;
  posting.source = quantity < 0 ? PostingSource::BatchTakesAgain : PostingSource::BatchReturns;
  posting.kind = kind;
  posting.name = name;
  posting.database = database;
  posting.quantity = quantity < 0 ? -quantity : quantity;
  posting.document = BatchNoText(batchNo);
  return posting;
}

class HeldAgain {
 public:
  HeldAgain(Session& session, std::string database, std::int32_t batchNo)
      : session_(session), database_(std::move(database)), batchNo_(batchNo), rules_(ReadStockRules(session)) {}

  // Backwards, so that figures which the opening changed twice come out as they went in.
  void Run() {
    const std::vector<HeldFigure> held = ReadHeld(session_.File(), database_, batchNo_);
    for (auto figure = held.rbegin(); figure != held.rend(); ++figure) Take(*figure);
  }

  bool StandsAsLeft() const {
    std::set<std::tuple<ColorKind, std::int64_t, std::int32_t>> seen;
    const std::vector<HeldFigure> held = ReadHeld(session_.File(), database_, batchNo_);
    for (auto figure = held.rbegin(); figure != held.rend(); ++figure) {
      const auto color = FindColor(session_, database_, figure->kind, figure->colorRow, figure->name);
      if (!color || !figure->before) return false;
      if (!seen.emplace(figure->kind, color->row, figure->ref).second) continue;
      const auto now = FigureAt(session_, database_, figure->kind, *color, figure->ref);
      if (!now || now->quantity != figure->after) return false;
    }
    return true;
  }

 private:
  void Take(const HeldFigure& held) {
    const auto color = FindColor(session_, database_, held.kind, held.colorRow, held.name);
    if (!color) return;  // and its stock went with it
    const auto now = FigureAt(session_, database_, held.kind, *color, held.ref);
    const std::optional<float> quantity = now ? std::optional<float>(now->quantity) : std::nullopt;
    if (now && quantity == held.after) {
      Restore(held, *color, *now);
    } else {
      PostAgain(held, *color, quantity.value_or(0));
    }
  }

  void Restore(const HeldFigure& held, const ColorAt& color, const Figure& now) {
    using Action = StockChange::Action;
    StockChange change;
    change.action = held.ref == 0 ? Action::SetUnlotted : held.before ? Action::SetLot : Action::DeleteLot;
    change.source = PostingSource::BatchRestores;
    change.kind = held.kind;
    change.name = color.name;
    change.database = database_;
    change.row = now.row;
    change.lot.LotRefID = held.ref;
    change.lot.LotNumber = held.LotNumber;
    change.before = now.quantity;
    change.after = held.before.value_or(0);
    change.document = BatchNoText(batchNo_);
    WriteStockChange(session_, change);
  }

  void PostAgain(const HeldFigure& held, const ColorAt& color, float before) {
    Posting posting = PostingOf(batchNo_, held.kind, color.name, database_, -held.quantity);
    if (held.ref != 0) posting.place = {.LotRefID = held.ref, .LotNumber = held.LotNumber};
    const PostingResult posted = PostStock(session_, rules_, posting);
    if (!(held.quantity > 0)) return;
    const float left = ReallyLeft(held.quantity, before, posted.quantity);
    if (left == held.quantity) return;
    NetTaking place{held.kind, color.name, {}};
    place.place.LotRefID = held.ref;
    place.place.LotNumber = held.LotNumber;
    LowerRecorded(session_, database_, batchNo_, place, RoundSingle(RoundTo(held.quantity, 3) - RoundTo(left, 3), 3));
  }

  Session& session_;
  std::string database_;
  std::int32_t batchNo_;
  StockRules rules_;
};

}  // namespace

void HoldBatch(Session& session, std::int32_t batchNo, std::vector<BatchTaking>& takings) {
  Database& file = session.File();
  EnsureMarkerTable(file);
  const StockRules rules = ReadStockRules(session);
  for (const NetTaking& taking : NetTakings(session, takings)) {
    if (taking.place.LotQty == 0) continue;
    const auto color = FindColor(session, {}, taking.kind, 0, taking.name);
    if (!color) continue;
    std::int32_t ref = taking.place.LotRefID;
    Posting posting = PostingOf(batchNo, taking.kind, color->name, {}, taking.place.LotQty);
    if (ref != 0)
      posting.place = {.LotRefID = ref,
                       .LotNumber = taking.place.LotNumber,
                       .LotLoc = taking.place.LotLoc,
                       .LotContID = taking.place.LotContID,
                       .LotDate = taking.place.LotDate,
                       .LotPrice = taking.place.LotPrice};
    const PostingResult posted = PostStock(session, rules, posting);
    using Outcome = PostingResult::Outcome;
    // Nothing came back: there is nothing to be taken again.
    if (posted.outcome != Outcome::Posted && posted.outcome != Outcome::LotAdded) continue;
    if (posted.outcome == Outcome::LotAdded && posted.LotRefID != ref) {
      for (BatchTaking& of : takings)
        if (IsOfPlace(session, of, taking)) of.use.LotRefID = posted.LotRefID;
      ref = posted.LotRefID;
    }
    file.Prepare(fmt::format("INSERT INTO {} (DatabaseName, BatchNo, Kind, Color_Name, ColorRow, LotRefID, "
                             "LotNumber, Quantity, StoodBefore, StoodAfter, Owner) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, "
                             "?8, ?9, ?10, ?11)",
                             kMarkerTable))
        .Bind(1, session.CurrentDatabase)
        .Bind(2, batchNo)
        .Bind(3, static_cast<int>(taking.kind))
        .Bind(4, color->name)
        .Bind(5, color->row)
        .Bind(6, ref)
        .Bind(7, taking.place.LotNumber)
        .Bind(8, taking.place.LotQty)
        .Bind(9, posted.outcome == Outcome::Posted ? Value(posted.before) : Value())
        .Bind(10, posted.quantity)
        .Bind(11, file.Opening())
        .Run();
  }
}

bool HeldStandsAsLeft(Session& session, std::int32_t batchNo) {
  return HeldAgain(session, session.CurrentDatabase, batchNo).StandsAsLeft();
}

void HoldStored(Session& session, const BatchRecord& record) {
  const auto stored = ReadStoredLines(session, record.key);
  if (!stored) return;
  std::vector<BatchTaking> takings = ReadTakings(session, *stored);
  HoldBatch(session, record.BatchNo, takings);
}

void TakeHeldAgain(Session& session, std::string_view database, std::int32_t batchNo) {
  Transaction transaction(session.File());
  HeldAgain(session, std::string(database), batchNo).Run();
  DeleteMarker(session.File(), database, batchNo);
  transaction.Commit();
}

void DropHold(Session& session, std::int32_t batchNo) {
  DeleteMarker(session.File(), session.CurrentDatabase, batchNo);
}

bool SameAsHeld(Session& session, std::int32_t batchNo, const std::vector<NetTaking>& takings) {
  const std::vector<HeldFigure> held = ReadHeld(session.File(), session.CurrentDatabase, batchNo);
  std::size_t counted = 0;
  for (const NetTaking& taking : takings) {
    if (taking.place.Remove) return false;
    const float leaves = Covered(session, taking);
    if (leaves == 0) continue;
    bool same = false;
    for (const HeldFigure& figure : held)
      same = same || (figure.kind == taking.kind && figure.ref == taking.place.LotRefID && figure.quantity == leaves &&
                      EqualNoCase(figure.name, taking.name));
    if (!same) return false;
    ++counted;
  }
  return counted == held.size();
}

// ---- What a killed process left

std::vector<MarkedBatch> MarkedBatches(Database& file) {
  std::vector<MarkedBatch> marked;
  if (!file.TableExists(kMarkerTable)) return marked;
  // An earlier program did not write down whose mark it is; it has ended.
  const bool owned = MissingFields(file, kMarkerTable, schema::OpenBatch).empty();
  Statement rows =
      file.Prepare(fmt::format("SELECT DatabaseName, BatchNo, {} FROM {} GROUP BY 1, 2 ORDER BY MIN(RowKey)",
                               owned ? "MAX(Owner)" : "NULL", kMarkerTable));
  while (rows.Step())
    marked.push_back({rows.Text(0), static_cast<std::int32_t>(rows.Whole(1)), file.IsAtWork(rows.TextView(2))});
  return marked;
}

void HealAbandonedBatches(Session& session) {
  std::vector<MarkedBatch> abandoned = MarkedBatches(session.File());
  std::erase_if(abandoned, [](const MarkedBatch& batch) { return batch.atWork; });
  if (abandoned.empty()) return;
  std::string told;
  Transaction transaction(session.File());
  for (const MarkedBatch& batch : abandoned) {
    if (session.FindDatabase(batch.database) == nullptr) {
      DeleteMarker(session.File(), batch.database, batch.BatchNo);
      continue;
    }
    TakeHeldAgain(session, batch.database, batch.BatchNo);
    told += fmt::format("\nBatch {} of the {} database", BatchNoText(batch.BatchNo), batch.database);
  }
  transaction.Commit();
  if (!told.empty())
    session.prompt.Tell("Open Batch",
                        "The program ended while a saved Batch was open.\n"
                        "Its ingredients have been taken from inventory again:\n" +
                            told,
                        Icon::Information);
}

std::vector<HeldStock> ReadHeldStock(Database& file) {
  std::vector<HeldStock> held;
  if (!file.TableExists(kMarkerTable)) return held;
  Statement rows = file.Prepare(fmt::format(
      "SELECT DatabaseName, Kind, Color_Name, LotRefID, StoodBefore, StoodAfter, BatchNo FROM {}", kMarkerTable));
  while (rows.Step())
    held.push_back({rows.Text(0), rows.Whole(1) == 2 ? ColorKind::Mix : ColorKind::Basic, rows.Text(2),
                    static_cast<std::int32_t>(rows.Whole(3)), RoundTo(rows.Number(5) - rows.Number(4), 3),
                    !rows.IsNull(4), static_cast<std::int32_t>(rows.Whole(6))});
  return held;
}

}  // namespace vellumark
