#include "core/inventory/lots.h"

#include <fmt/format.h>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/color_figure.h"
#include "core/inventory/lot_texts.h"

namespace vellumark {
namespace {

constexpr std::int32_t kCounterEnd = 999999;

constexpr std::string_view kAllLots;
constexpr std::string_view kOwned = " AND (LotConsignment IS NULL OR LotConsignment = 0)";
constexpr std::string_view kConsigned = " AND LotConsignment <> 0";

std::string QuotedColors(const Session& session, ColorKind kind, std::string_view database) {
  return session.QuotedTable(ColorTable(kind), database);
}
std::string QuotedLots(const Session& session, ColorKind kind, std::string_view database) {
  return session.QuotedTable(LotTable(kind), database);
}

Statement SelectLots(const Session& session, ColorKind kind, std::string_view database, std::string_view rest) {
  return session.File().Prepare(fmt::format("SELECT RowKey, {} FROM {} WHERE LotCName = ?1 {}", LotFields().Columns(),
                                            QuotedLots(session, kind, database), rest));
}

LotRow ReadLot(const Statement& statement) {
  LotRow lot;
  lot.row = statement.Whole(0);
  LotFields().Read(statement, 1, lot);
  return lot;
}

std::vector<LotRow> ReadLots(Statement& statement) {
  std::vector<LotRow> lots;
  while (statement.Step()) lots.push_back(ReadLot(statement));
  return lots;
}

float SumOfLots(const Session& session, ColorKind kind, std::string_view name, std::string_view database,
                std::string_view which) {
  const Value sum = session.File().Scalar(
      fmt::format("SELECT SUM(LotQty) FROM {} WHERE LotCName = ?1{}", QuotedLots(session, kind, database), which),
      {name});
  return RoundSingle(sum.Number(), 3);
}

float ValueOfLots(const Session& session, ColorKind kind, std::string_view name, std::string_view database,
                  std::string_view which) {
  Statement lots = session.File().Prepare(
      fmt::format("SELECT LotQty, LotPrice FROM {} WHERE LotCName = ?1{} ORDER BY LotRefID, RowKey",
                  QuotedLots(session, kind, database), which));
  lots.Bind(1, name);
  float value = 0;
  while (lots.Step()) value = static_cast<float>(value + lots.Number(0) * lots.Number(1));
  return RoundSingle(value, session.DecimalPlaces);
}

// The first number from `from` to `last` that the ordered references of the colour leave out; nothing when none is.
std::optional<std::int32_t> FirstGap(const Session& session, ColorKind kind, std::string_view name,
                                     std::string_view database, std::int32_t from, std::int32_t last) {
  // In pieces: an engine may fetch all that a query finds, and the gap mostly comes early.
  constexpr int kPiece = 500;
  Statement refs = session.File().Prepare(
      fmt::format("SELECT LotRefID FROM {} WHERE LotCName = ?1 AND LotRefID >= ?2 AND LotRefID <= ?3 ORDER BY LotRefID "
                  "LIMIT {}",
                  QuotedLots(session, kind, database), kPiece));
  std::int32_t free = from;
  for (int read = kPiece; read == kPiece; refs.Reset()) {
    refs.Bind(1, name).Bind(2, free).Bind(3, last);
    for (read = 0; refs.Step(); ++read) {
      const auto used = static_cast<std::int32_t>(refs.Whole(0));
      if (used > free) return free;
      if (used == free) ++free;
    }
  }
  if (free > last) return std::nullopt;
  return free;
}

}  // namespace

const FieldMap<LotRow>& LotFields() {
  static const FieldMap<LotRow> fields =
      FieldMap<LotRow>()
          .Add("LotRefID", &LotRow::LotRefID)
          .Add("LotNumber", &LotRow::LotNumber, {.caption = "Lot Number", .width = 1920})
          .Add("LotLoc", &LotRow::LotLoc, {.caption = "Location", .width = 1500})
          .Add("LotContID", &LotRow::LotContID, {.caption = "Cont ID Num", .width = 1440})
          .Add("LotDate", &LotRow::LotDate, {.caption = "Date", .format = Format::Date, .width = 1440})
          .Add("LotQty", &LotRow::LotQty, {.unit = true, .caption = "Quantity", .width = 1920, .large = true})
          .Add("LotPrice", &LotRow::LotPrice, {.price = true, .caption = "Price", .width = 1440})
          .Add("LotConsignment", &LotRow::LotConsignment, {.caption = "Consignment", .width = 1560});
  return fields;
}

bool ColorIsThere(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  return !session.File()
              .Scalar(
                  fmt::format("SELECT 1 FROM {} WHERE Color_Name = ?1 LIMIT 1", QuotedColors(session, kind, database)),
                  {name})
              .IsNull();
}

std::vector<LotRow> LotsOf(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  Statement statement = SelectLots(session, kind, database, "ORDER BY LotNumber, LotRefID, RowKey");
  return ReadLots(statement.Bind(1, name));
}

std::vector<LotRow> LotsNumbered(const Session& session, ColorKind kind, std::string_view name,
                                 std::string_view database, std::string_view number) {
  number = TrimView(number);
  // The engine takes small and capital for one letter from A to Z alone.
  const bool ascii = CharCount(number) == number.size();
  Statement statement = SelectLots(
      session, kind, database, ascii ? "AND LotNumber = ?2 ORDER BY LotRefID, RowKey" : "ORDER BY LotRefID, RowKey");
  statement.Bind(1, name);
  if (ascii) return ReadLots(statement.Bind(2, number));
  std::vector<LotRow> lots = ReadLots(statement);
  std::erase_if(lots, [number](const LotRow& lot) { return !SameLotText(lot.LotNumber, number); });
  return lots;
}

std::optional<LotRow> FindLot(const Session& session, ColorKind kind, std::string_view name, std::string_view database,
                              std::int32_t ref) {
  Statement statement = SelectLots(session, kind, database, "AND LotRefID = ?2 ORDER BY RowKey LIMIT 1");
  statement.Bind(1, name).Bind(2, ref);
  if (!statement.Step()) return std::nullopt;
  return ReadLot(statement);
}

std::int32_t NextLotRefID(Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  Transaction transaction(session.File());
  const std::int32_t ref = FirstFreeLotRef(session, kind, name, database, LastLotRefID(session, kind, name, database));
  if (ref != -1) StoreLotRefID(session, kind, name, database, ref);
  transaction.Commit();
  return ref;
}

std::int32_t LastLotRefID(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  const std::int64_t counter =
      session.File()
          .Scalar(fmt::format("SELECT LotRefID FROM {} WHERE Color_Name = ?1 ORDER BY RowKey LIMIT 1",
                              QuotedColors(session, kind, database)),
                  {name})
          .Whole();
  return counter >= kCounterEnd ? 1 : static_cast<std::int32_t>(counter) + 1;
}

bool LotRefIDInUse(const Session& session, ColorKind kind, std::string_view name, std::string_view database,
                   std::int32_t ref) {
  return !session.File()
              .Scalar(fmt::format("SELECT 1 FROM {} WHERE LotCName = ?1 AND LotRefID = ?2 LIMIT 1",
                                  QuotedLots(session, kind, database)),
                      {name, ref})
              .IsNull();
}

void StoreLotRefID(Session& session, ColorKind kind, std::string_view name, std::string_view database,
                   std::int32_t ref) {
  Transaction transaction(session.File());
  session.File()
      .Prepare(fmt::format("UPDATE {} SET LotRefID = ?1 WHERE Color_Name = ?2", QuotedColors(session, kind, database)))
      .Bind(1, ref)
      .Bind(2, name)
      .Run();
  transaction.Commit();
}

std::int32_t FirstFreeLotRef(const Session& session, ColorKind kind, std::string_view name, std::string_view database,
                             std::int32_t from, std::int32_t last) {
  if (from < 1 || from > last) from = 1;
  if (const auto free = FirstGap(session, kind, name, database, from, last)) return *free;
  return FirstGap(session, kind, name, database, 1, from - 1).value_or(-1);
}

std::string GetLotNumber(const Session& session, ColorKind kind, std::string_view name, std::int32_t ref) {
  const auto lot = FindLot(session, kind, name, {}, ref);
  return lot ? lot->LotNumber : std::string();
}

std::string GetLotDate(const Session& session, ColorKind kind, std::string_view name, std::int32_t ref) {
  const auto lot = FindLot(session, kind, name, {}, ref);
  return lot && lot->LotDate ? lot->LotDate->DateText() : std::string();
}

float LotQtyTotal(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  return SumOfLots(session, kind, name, database, kAllLots);
}
float LotQtyOwned(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  return SumOfLots(session, kind, name, database, kOwned);
}
float LotQtyConsigned(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  return SumOfLots(session, kind, name, database, kConsigned);
}

float UnlottedQty(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  return RoundSingle(ColorFigure(session, kind, name, "Inventory", database), 3);
}

float TotalStock(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  const float unlotted = UnlottedQty(session, kind, name, database);
  if (session.InvLotTracking != 1) return unlotted;
  return RoundSingle(unlotted + LotQtyTotal(session, kind, name, database), 3);
}

float UnlottedPrice(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  return ColorFigure(session, kind, name, kind == ColorKind::Mix ? "BasicCost" : "PurchaseCost", database);
}

float LotValue(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  return ValueOfLots(session, kind, name, database, kAllLots);
}
float LotValueOwned(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  return ValueOfLots(session, kind, name, database, kOwned);
}
float LotValueConsigned(const Session& session, ColorKind kind, std::string_view name, std::string_view database) {
  return ValueOfLots(session, kind, name, database, kConsigned);
}

void ShowMaxLotUsage(const Session& session) {
  session.prompt.Tell(std::string(25, ' ') + "Max Lot Number Usage",
                      "Unable to add lotted inventory references.\nMaximum lot number usage exceeded.\n\nDelete "
                      "un-needed lot number references.");
}

}  // namespace vellumark
