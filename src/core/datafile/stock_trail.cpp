#include "core/datafile/stock_trail.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr std::string_view kTable = kStockHistoryTable;
constexpr std::int64_t kPiece = 500;

StockLine ReadLine(const Statement& row) {
  StockLine line;
  line.id = row.Whole(0);
  line.when = row.Date(1).value_or(DateTime{});
  line.user = row.Text(2);
  line.event = static_cast<StockEvent>(row.Whole(3));
  line.kind = row.Whole(4) == static_cast<int>(ColorKind::Mix) ? ColorKind::Mix : ColorKind::Basic;
  line.database = row.Text(5);
  line.Color_Name = row.Text(6);
  line.LotRefID = static_cast<std::int32_t>(row.Whole(7));
  line.LotNumber = row.Text(8);
  line.change = row.Number(9);
  line.result = row.Single(10);
  line.document = row.Text(11);
  line.reason = row.Text(12);
  return line;
}

}  // namespace

std::optional<StockTrail::Turn> StockTrail::LastTurn(const Stretch& stretch, int kind) const {
  Statement row = file_->Prepare(
      fmt::format("SELECT ID, Source, Reason FROM {} WHERE Color_Name = ?1 AND Kind = ?2 AND Database = ?3 AND ID < ?4 "
                  "AND Source >= {} ORDER BY ID DESC LIMIT 1",
                  kTable, static_cast<int>(StockEvent::Renamed)));
  row.Bind(1, kind == kWholeDatabase ? std::string_view() : std::string_view(stretch.name))
      .Bind(2, kind)
      .Bind(3, stretch.database)
      .Bind(4, stretch.before);
  if (!row.Step()) return std::nullopt;
  return Turn{row.Whole(0), static_cast<StockEvent>(row.Whole(1)), row.Text(2)};
}

bool StockTrail::HasLinesAfter(const Stretch& stretch, std::int64_t id) const {
  return !file_
              ->Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ?1 AND Kind = ?2 AND Database = ?3 AND ID > ?4 "
                                   "LIMIT 1",
                                   kTable),
                       {stretch.name, kind_, stretch.database, id})
              .IsNull();
}

void StockTrail::Follow(Stretch stretch, bool present) {
  for (;;) {
    auto turn = LastTurn(stretch, kind_);
    if (turn && turn->event == StockEvent::Renamed && stretches_.empty() && !present &&
        !HasLinesAfter(stretch, turn->id)) {
      // Only the past bears this name: its last line is the one that tells the new name.
      Stretch past = stretch;
      past.before = turn->id;
      turn = LastTurn(past, kind_);
    }
    const auto whole = LastTurn(stretch, kWholeDatabase);
    if (whole && (!turn || whole->id > turn->id)) turn = whole;
    stretch.after = turn ? turn->id : 0;
    // The line that gave the name belongs to it.
    if (turn && turn->event == StockEvent::RenamedFrom) --stretch.after;
    stretches_.push_back(stretch);
    if (!turn) return;
    if (turn->event == StockEvent::RenamedFrom) {
      stretch.name = turn->reason;
    } else if (turn->event == StockEvent::DatabaseRenamedFrom) {
      stretch.database = turn->reason;
    } else {
      return;
    }
    // The line before it is the other one of the pair.
    stretch.before = turn->id - 1;
  }
}

void StockTrail::FollowDatabase(Stretch stretch) {
  for (;;) {
    const auto turn = LastTurn(stretch, kWholeDatabase);
    const bool cameFrom = turn && turn->event == StockEvent::DatabaseRenamedFrom;
    stretch.after = turn ? turn->id - (cameFrom ? 1 : 0) : 0;
    stretches_.push_back(stretch);
    if (!cameFrom) return;
    stretch.database = turn->reason;
    // The line before it is the other one of the pair.
    stretch.before = turn->id - 1;
  }
}

StockTrail StockTrail::OfColor(Database& file, std::string_view database, ColorKind kind, std::string_view name,
                               bool present) {
  StockTrail trail(file);
  trail.kind_ = static_cast<int>(kind);
  trail.Follow({std::string(database), std::string(name), 0, kNow}, present);
  return trail;
}

StockTrail StockTrail::OfDatabase(Database& file, std::string_view database) {
  StockTrail trail(file);
  const std::int64_t last = file.Scalar(fmt::format("SELECT MAX(ID) FROM {}", kTable)).Whole();
  trail.FollowDatabase({std::string(database), "", 0, last + 1});
  return trail;
}

StockTrail StockTrail::OfName(Database& file, std::string_view database, ColorKind kind, std::string_view name) {
  StockTrail trail(file);
  trail.FollowDatabase({std::string(database), std::string(name), 0, kNow});
  trail.kind_ = static_cast<int>(kind);
  return trail;
}

void StockTrail::ReadOldestFirst() {
  oldestFirst_ = true;
  std::ranges::reverse(stretches_);
}

void StockTrail::ReadName(Stretch& stretch, std::vector<StockLine>& lines) const {
  Statement row = file_->Prepare(
      fmt::format("SELECT ID, {} FROM {} WHERE Color_Name = ?1 AND Kind = ?2 AND Database = ?3 AND ID > ?4 AND ID < ?5 "
                  "ORDER BY ID {} LIMIT {}",
                  kStockLineFields, kTable, oldestFirst_ ? "ASC" : "DESC", kPiece));
  row.Bind(1, stretch.name).Bind(2, kind_).Bind(3, stretch.database).Bind(4, stretch.after).Bind(5, stretch.before);
  std::int64_t read = 0;
  for (; row.Step(); ++read) lines.push_back(ReadLine(row));
  if (read < kPiece) {
    stretch.before = stretch.after + 1;
  } else {
    (oldestFirst_ ? stretch.after : stretch.before) = lines.back().id;
  }
}

// By ranges of the key, since another Database may have written the latest million lines.
void StockTrail::ReadDatabase(Stretch& stretch, std::vector<StockLine>& lines) const {
  Stretch piece = stretch;
  if (oldestFirst_) {
    piece.before = std::min(stretch.before, stretch.after + 1 + kPiece);
    stretch.after = piece.before - 1;
  } else {
    piece.after = std::max(stretch.after, stretch.before - 1 - kPiece);
    stretch.before = piece.after + 1;
  }
  Statement row =
      file_->Prepare(fmt::format("SELECT ID, {} FROM {} WHERE Database = ?1 AND ID > ?2 AND ID < ?3 ORDER BY ID {}",
                                 kStockLineFields, kTable, oldestFirst_ ? "ASC" : "DESC"));
  row.Bind(1, piece.database).Bind(2, piece.after).Bind(3, piece.before);
  while (row.Step()) lines.push_back(ReadLine(row));
}

bool StockTrail::ReadOn(std::vector<StockLine>& lines) {
  if (at_ == stretches_.size()) return false;
  Stretch& stretch = stretches_[at_];
  kind_ == kWholeDatabase ? ReadDatabase(stretch, lines) : ReadName(stretch, lines);
  if (stretch.before <= stretch.after + 1) ++at_;
  return at_ < stretches_.size();
}

std::set<StockTrail::Lot> StockTrail::LotsOfNumber(std::string_view number) const {
  Statement row = file_->Prepare(
      fmt::format("SELECT DISTINCT Kind, Color_Name, LotRefID FROM {} WHERE LotNumber = ?1 AND LotRefID <> 0 AND "
                  "Database = ?2 AND ID > ?3 AND ID < ?4{}",
                  kTable, kind_ == kWholeDatabase ? "" : " AND Color_Name = ?5 AND Kind = ?6"));
  std::set<Lot> lots;
  for (const Stretch& stretch : stretches_) {
    row.Bind(1, number).Bind(2, stretch.database).Bind(3, stretch.after).Bind(4, stretch.before);
    if (kind_ != kWholeDatabase) row.Bind(5, stretch.name).Bind(6, kind_);
    while (row.Step())
      lots.emplace(row.Whole(0) == static_cast<int>(ColorKind::Mix) ? ColorKind::Mix : ColorKind::Basic,
                   Upper(row.TextView(1)), static_cast<std::int32_t>(row.Whole(2)));
    row.Reset();
  }
  return lots;
}

void ForEachStockLine(Database& file, StockEvent event, const std::function<bool(StockLine& line)>& take) {
  if (!HasStockHistory(file)) return;
  Statement rows =
      file.Prepare(fmt::format("SELECT ID, {} FROM {} WHERE Source = ?1 ORDER BY ID DESC", kStockLineFields, kTable));
  rows.Bind(1, static_cast<int>(event));
  while (rows.Step()) {
    StockLine line = ReadLine(rows);
    if (!take(line)) return;
  }
}

PresentName NamesNow(Database& file, const StockLine& line) {
  PresentName now{line.database, line.Color_Name};
  Statement next = file.Prepare(fmt::format(
      "SELECT ID, Source, Reason FROM {} WHERE Database = ?1 AND ID > ?2 AND ((Color_Name = ?3 AND Kind = ?4 "
      "AND Source = {}) OR (Color_Name = '' AND Kind = {} AND Source IN ({}, {}))) ORDER BY ID LIMIT 1",
      kTable, static_cast<int>(StockEvent::Renamed), kWholeDatabase, static_cast<int>(StockEvent::DatabaseRenamed),
      static_cast<int>(StockEvent::DatabaseDeleted)));
  for (std::int64_t at = line.id; !now.database.empty();) {
    next.Reset();
    next.Bind(1, now.database).Bind(2, at).Bind(3, now.Color_Name).Bind(4, static_cast<int>(line.kind));
    if (!next.Step()) break;
    at = next.Whole(0);
    switch (static_cast<StockEvent>(next.Whole(1))) {
      case StockEvent::Renamed:
        now.Color_Name = next.Text(2);
        break;
      case StockEvent::DatabaseRenamed:
        now.database = next.Text(2);
        break;
      default:
        now.database.clear();
    }
  }
  return now;
}

std::int64_t LastStockLine(Database& file) {
  return HasStockHistory(file) ? file.Scalar(fmt::format("SELECT MAX(ID) FROM {}", kTable)).Whole() : 0;
}

std::optional<StockLine> ReadStockLine(Database& file, std::int64_t id) {
  if (!HasStockHistory(file)) return std::nullopt;
  Statement row = file.Prepare(fmt::format("SELECT ID, {} FROM {} WHERE ID = ?1", kStockLineFields, kTable));
  if (!row.Bind(1, id).Step()) return std::nullopt;
  return ReadLine(row);
}

}  // namespace vellumark
