#include "core/labels/scan_inventory.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/guides.h"
#include "core/colors/names.h"
#include "core/datafile/stock_trail.h"
#include "core/inventory/lot_texts.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Scan";
constexpr double kMost = 99999;
constexpr std::string_view kUpdate = "Update information - Process Again.";

std::unexpected<Refusal> Fail(std::string text, std::string field) {
  return Refuse(std::string(kTitle), std::move(text), std::move(field));
}

struct ScannedColor {
  ColorKind kind = ColorKind::Basic;
  std::string name;
  std::string database;
};

/// The kinds of which a Database has the name, and how it is spelled there.
struct Home {
  std::string database;
  std::string name;
  bool basic = false;
  bool mix = false;
};

std::optional<Home> HomeIn(const Session& session, const std::string& name, const std::string& database) {
  Home home{.database = database, .name = {}};
  for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
    const std::string stored = StoredName(session, kind, name, database);
    if (!ColorIsThere(session, kind, stored, database)) continue;
    home.name = stored;
    (kind == ColorKind::Mix ? home.mix : home.basic) = true;
  }
  if (!home.basic && !home.mix) return std::nullopt;
  return home;
}

// A record that has a code alone takes the name of the colour that bears it; of several the operator chooses.
Result<std::string> NameOfCode(const Session& session, const ScanRecord& record) {
  const std::string code = Trim(record.CC.value_or(""));
  std::vector<std::string> names;
  if (code.empty()) return std::string();
  for (const std::string& database : session.databaseList) {
    if (!Trim(record.DB.value_or("")).empty() && !EqualNoCase(*record.DB, database)) continue;
    for (const ColorKind kind : KindsOf(record)) {
      Statement color =
          session.File().Prepare("SELECT Color_Name FROM " + session.QuotedTable(ColorTable(kind), database) +
                                 " WHERE Color_Code = ?1 ORDER BY Color_Name");
      color.Bind(1, code);
      while (color.Step())
        if (std::ranges::find(names, color.Text(0)) == names.end()) names.push_back(color.Text(0));
    }
  }
  if (names.size() < 2) return names.empty() ? std::string() : names.front();
  return Fail(fmt::format("{} is the Color Code of {} colors.\nEnter one of the following names - Process Again.\n{}",
                          code, names.size(), NameLines(names)),
              "cmbCN");
}

std::string WithoutMark(std::string text) {
  for (std::size_t at = 0; (at = text.find("®")) != std::string::npos;) text.erase(at, std::string_view("®").size());
  return Trim(text);
}

Result<Home> FindHome(const Session& session, const ScanRecord& record, const std::string& name) {
  if (record.DB && !record.DB->empty()) {
    const std::string* database = session.FindDatabase(*record.DB);
    if (database == nullptr)
      return Fail(
          fmt::format("{} wasn't found in Database: {}\nSelect another database - Process Again.", name, *record.DB),
          "cmbDB");
    auto home = HomeIn(session, name, *database);
    if (!home) return Fail(fmt::format("{} can't be found in Database: {}\n\n{}", name, *database, kUpdate), "cmbCN");
    return *std::move(home);
  }
  std::vector<Home> homes;
  for (const std::string& database : session.databaseList)
    if (auto home = HomeIn(session, name, database)) homes.push_back(*std::move(home));
  if (homes.empty())
    return Fail(fmt::format("{} wasn't found in any database, couldn't update the inventory.", name), "cmbCN");
  if (homes.size() == 1) return std::move(homes.front());
  std::string text = fmt::format(
      "{} exists in {} databases.\nSelect another database from the following selections.\n\nDatabases:", name,
      homes.size());
  for (const Home& home : homes) text += "\n" + home.database;
  return Fail(std::move(text), "cmbDB");
}

Result<ScannedColor> FindColor(const Session& session, const ScanRecord& record) {
  std::string name = WithoutMark(record.CN.value_or(""));
  if (name.empty()) {
    const auto named = NameOfCode(session, record);
    if (!named) return std::unexpected(named.error());
    name = *named;
  }
  if (name.empty()) return Fail(fmt::format("A Color Name is required for processing.\n\n{}", kUpdate), "cmbCN");
  const auto home = FindHome(session, record, name);
  if (!home) return std::unexpected(home.error());
  if (record.CT && !record.CT->empty()) {
    const bool mix = *record.CT == "2";
    if (!(mix ? home->mix : home->basic))
      return Fail(fmt::format("{} is not a {} in Database: {}\nChange the Color Type - Process Again.", name,
                              mix ? "Formula" : "Basic", home->database),
                  "optCT");
    return ScannedColor{mix ? ColorKind::Mix : ColorKind::Basic, home->name, home->database};
  }
  if (home->basic && home->mix)
    return Fail(fmt::format("{} in Database: {} is a Basic and Formula.\nChoose a Color Type - Process Again", name,
                            home->database),
                "optCT");
  return ScannedColor{home->mix ? ColorKind::Mix : ColorKind::Basic, home->name, home->database};
}

Result<float> CheckedQuantity(const Session& session, const ScanRecord& record, const ScannedColor& color) {
  if (!record.Qty || *record.Qty <= 0)
    return Fail(fmt::format("A quantity above 0 is required for Color: {}\n\n{}", color.name, kUpdate), "txtQty");
  const float stock = TotalStock(session, color.kind, color.name, color.database);
  if (RoundTo(double{stock} + *record.Qty, 3) < kMost) return *record.Qty;
  return Fail(
      fmt::format("{} is too large.\n{} is the largest amount that can be used.\nChange Quantity - Process Again.",
                  Fixed(*record.Qty, 3), Fixed(kMost - 0.001 - double{stock}, 3)),
      "txtQty");
}

bool IsUnlotted(const Session& session, const ScanRecord& record) {
  if (session.InvLotTracking != 1) return true;
  return record.LN && EqualNoCase(*record.LN, kUnlottedInv);
}

// The lot that was scanned; several of one number and no container to tell them apart are told.
Result<StockPlace> PlaceOf(const Session& session, const ScanRecord& record, const ScannedColor& color) {
  if (IsUnlotted(session, record)) return StockPlace{};
  const std::string number = Trim(record.LN.value_or(""));
  if (number.empty())
    return Fail(fmt::format("Enter a Lot Number for Color: {}\n{}", color.name, kUpdate), "txtScanLN");
  const std::pair<std::string, const char*> texts[] = {
      {number, "txtScanLN"}, {record.LL.value_or(""), "txtScanLL"}, {record.LC.value_or(""), "txtScanLC"}};
  for (const auto& [text, field] : texts)
    if (auto fits = CheckLotText(text, field); !fits)
      return Fail(fits.error().text + "\n\n" + std::string(kUpdate), field);
  StockPlace place{.LotRefID = record.LR.value_or(0), .LotNumber = number, .LotLoc = record.LL, .LotContID = record.LC};
  if (place.LotRefID != 0) return place;
  const std::vector<LotRow> lots = LotsNumbered(session, color.kind, color.name, color.database, number);
  if (lots.size() < 2) return place;
  std::vector<const LotRow*> meant;
  for (const LotRow& lot : lots)
    if (record.LC && SameLotText(lot.LotContID, *record.LC)) meant.push_back(&lot);
  if (meant.size() == 1) {
    place.LotRefID = meant.front()->LotRefID;
    return place;
  }
  std::string text =
      fmt::format("Multiple Lots: {} of Color: {}\n\nLot Qty.  Lot Location  Lot Cont ID", number, color.name);
  for (const LotRow& lot : lots) text += fmt::format("\n{}  {}  {}", Fixed(lot.LotQty, 3), lot.LotLoc, lot.LotContID);
  return Fail(text + "\n\n" + std::string(kUpdate), "txtScanLC");
}

bool CodeFits(const Session& session, const ScanRecord& record, const ScannedColor& color) {
  if (!record.CC || record.CC->empty()) return true;
  return EqualNoCase(
      session.File()
          .Scalar("SELECT Color_Code FROM " + session.QuotedTable(ColorTable(color.kind), color.database) +
                      " WHERE Color_Name = ?1",
                  {color.name})
          .Text(),
      *record.CC);
}

}  // namespace

std::vector<ColorKind> KindsOf(const ScanRecord& record) {
  if (!record.CT || record.CT->empty()) return {ColorKind::Basic, ColorKind::Mix};
  return {*record.CT == "2" ? ColorKind::Mix : ColorKind::Basic};
}

Result<StockAddition> CheckScannedStock(const Session& session, const ScanRecord& record) {
  const auto color = FindColor(session, record);
  if (!color) return std::unexpected(color.error());
  const auto quantity = CheckedQuantity(session, record, *color);
  if (!quantity) return std::unexpected(quantity.error());
  const auto place = PlaceOf(session, record, *color);
  if (!place) return std::unexpected(place.error());
  if (!CodeFits(session, record, *color))
    return Fail(fmt::format("Unable to find Color: {} with supporting detail.\n{}", color->name, kUpdate), "txtScanCC");
  const bool newLot = !place->IsUnlotted() && !FindLot(session, color->kind, color->name, color->database, *place);
  return StockAddition{color->kind, color->name, color->database, *quantity, *place, newLot};
}

namespace {

Result<std::string> Book(Session& session, ScanRecord& record) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  const auto color = CheckScannedStock(session, record);
  if (!color) return std::unexpected(color.error());
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::ScanStock, fmt::format("Scan {} of {}", Fixed(color->quantity, 3), color->name));
  const PostingResult result = PostStock(session, {.source = PostingSource::ScanReturn,
                                                   .kind = color->kind,
                                                   .name = color->name,
                                                   .database = color->database,
                                                   .quantity = color->quantity,
                                                   .place = color->place,
                                                   .moveLot = true});
  using enum PostingResult::Outcome;
  if (result.outcome != Posted && result.outcome != LotAdded)
    return Fail(fmt::format("Unable process Inv. for : {} with supporting detail.\n{}", color->name, kUpdate),
                "txtScanLN");
  record.Line = LastStockLine(session.File());
  step.Keep();
  transaction.Commit();
  record.CN = color->name;
  record.DB = color->database;
  record.CT = color->kind == ColorKind::Mix ? "2" : "1";
  return color->name + " inventory updated successfully.";
}

}  // namespace

void AddScannedStock(Session& session, ScanRecord& record) {
  if (record.state == ScanRecord::State::Successful) return;
  Conclude(record, Book(session, record));
}

}  // namespace vellumark
