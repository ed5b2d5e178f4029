#include "core/colors/basics.h"

#include <fmt/format.h>

#include "core/colors/color_figure.h"
#include "core/colors/names.h"
#include "core/datafile/references.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

constexpr std::string_view kColumns =
    "RowKey, Color_Name, Color_Code, Inventory, Reorder, PurchaseCost, Date_Entered, LastConsumed, Notes, Inv_Note, "
    "IngSort, Additive, VOC, HAP, LotRefID";

std::string TableText(const Session& session, std::string_view database = {}) {
  return Quoted(session.Table(schema::Basic, database));
}

BasicColor ReadRow(const Statement& row) {
  BasicColor color;
  color.rowId = row.Whole(0);
  color.Color_Name = row.Text(1);
  color.Color_Code = row.Text(2);
  color.Inventory = row.Single(3);
  color.Reorder = row.Single(4);
  color.PurchaseCost = row.Single(5);
  color.Date_Entered = row.Date(6);
  color.LastConsumed = row.Date(7);
  color.Notes = row.Text(8);
  color.Inv_Note = row.Text(9);
  color.IngSort = static_cast<std::int32_t>(row.Whole(10));
  color.Additive = row.Bool(11);
  color.VOC = row.Single(12);
  color.HAP = row.Single(13);
  color.LotRefID = static_cast<std::int32_t>(row.Whole(14));
  color.book = ReadBookData(row, 15);
  return color;
}

}  // namespace

bool BasicColorExists(const Session& session, std::string_view name, std::string_view database) {
  return !session.File()
              .Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ? LIMIT 1", TableText(session, database)),
                      {name})
              .IsNull();
}

std::int32_t NextIngSort(const Session& session, std::string_view database) {
  return static_cast<std::int32_t>(
      session.File().Scalar("SELECT COUNT(*) FROM " + TableText(session, database)).Whole());
}

float GetBasicPurchaseCost(const Session& session, std::string_view name) {
  return ColorFigure(session, ColorKind::Basic, name, "PurchaseCost");
}

float GetBasicVOC(const Session& session, std::string_view name) {
  return ColorFigure(session, ColorKind::Basic, name, "VOC");
}

float GetBasicHAP(const Session& session, std::string_view name) {
  return ColorFigure(session, ColorKind::Basic, name, "HAP");
}

std::optional<BasicColor> ReadBasic(const Session& session, std::string_view name, std::string_view database) {
  Statement row =
      session.File().Prepare(fmt::format("SELECT {}, {} FROM {} WHERE Color_Name = ? ORDER BY RowKey LIMIT 1", kColumns,
                                         kBookFields, TableText(session, database)));
  row.Bind(1, name);
  if (!row.Step()) return std::nullopt;
  return ReadRow(row);
}

void ForEachBasic(const Session& session, const std::function<bool(const BasicColor&)>& take) {
  Statement row = session.File().Prepare(
      fmt::format("SELECT {}, {} FROM {} ORDER BY Color_Name, RowKey", kColumns, kBookFields, TableText(session)));
  while (row.Step() && take(ReadRow(row))) continue;
}

std::vector<std::string> BasicNames(const Session& session, BasicFilter filter) {
  std::string_view condition;
  if (filter == BasicFilter::Colors) condition = " WHERE COALESCE(Additive, 0) = 0";
  if (filter == BasicFilter::Additives) condition = " WHERE Additive <> 0";
  std::vector<std::string> names;
  Statement row = session.File().Prepare(
      fmt::format("SELECT Color_Name FROM {}{} ORDER BY Color_Name", TableText(session), condition));
  while (row.Step()) names.push_back(row.Text(0));
  return names;
}

std::string AddZeroBasic(Session& session, std::string_view name, bool additive, std::string_view database) {
  const std::string stored = StoredName(session, ColorKind::Basic, name, database);
  if (BasicColorExists(session, stored, database)) return stored;
  const BookData book = BookDataOfBasic(session, stored, database);
  const std::string owner(database.empty() ? std::string_view(session.CurrentDatabase) : database);
  Transaction transaction(session.File());
  InsertRow(session.File(), schema::Basic, session.Table(schema::Basic, database),
            {{"Color_Name", stored},
             {"Color_Code", ""},
             {"Inventory", 0.0F},
             {"Reorder", 0.0F},
             {"PurchaseCost", 0.0F},
             {"Date_Entered", session.clock.Today()},
             {"Notes", ""},
             {"Inv_Note", ""},
             {"IngSort", NextIngSort(session, database)},
             {"Additive", additive},
             {"VOC", 0.0F},
             {"HAP", 0.0F},
             {"LotRefID", 0},
             {"Color_Guide", book.Color_Guide},
             {"Page", book.Page},
             {"Row", book.Row},
             {"Red", book.Red},
             {"Green", book.Green},
             {"Blue", book.Blue}});
  transaction.Note({Change::Kind::Basic, owner, stored, Change::What::Added, ""});
  transaction.Commit();
  return stored;
}

bool UsedByAdditiveSet(const Session& session, std::string_view name) {
  std::string where;
  for (int slot = 0; slot < schema::kSetSlots; ++slot)
    where += fmt::format("{}{} = ?1", slot == 0 ? "" : " OR ", schema::Numbered("Add_Name", slot));
  return !session.File()
              .Scalar(fmt::format("SELECT 1 FROM {} WHERE {} LIMIT 1", Quoted(session.Table(schema::Additives)), where),
                      {name})
              .IsNull();
}

}  // namespace vellumark
