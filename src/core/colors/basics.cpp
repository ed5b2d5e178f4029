#include "core/colors/basics.h"

#include <fmt/format.h>

#include "core/colors/names.h"
#include "core/datafile/references.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

std::string TableText(const Session& session, std::string_view database = {}) {
  return session.QuotedTable(schema::Basic, database);
}

std::string Select(const Session& session, std::string_view rest, std::string_view database = {}) {
  return fmt::format("SELECT RowKey, {} FROM {} {}", BasicFields().Columns(), TableText(session, database), rest);
}

BasicColor ReadRow(const Statement& row) {
  BasicColor color;
  color.key = row.Whole(0);
  BasicFields().Read(row, 1, color);
  return color;
}

}  // namespace

const FieldMap<BasicColor>& BasicFields() {
  using C = BasicColor;
  static const FieldMap<C> fields = [] {
    FieldMap<C> map;
    map.Add("Color_Name", &C::Color_Name, {.use = FieldUse::Key, .caption = "Color Name"})
        .Add("Color_Code", &C::Color_Code, {.use = FieldUse::Typed, .shape = TextShape::Code, .caption = "Color Code"})
        .Add("Inventory", &C::Inventory, {.use = FieldUse::Posted, .unit = true, .caption = "Inventory"})
        .Add("Reorder", &C::Reorder,
             {.use = FieldUse::Typed, .amount = AmountKey::Reorder, .unit = true, .caption = "Reorder"})
        .Add("PurchaseCost", &C::PurchaseCost,
             {.use = FieldUse::Typed, .amount = AmountKey::Currency, .price = true, .caption = "Purchase Cost"})
        .Add("Date_Entered", &C::Date_Entered)
        .Add("LastConsumed", &C::LastConsumed)
        .Add("Notes", &C::Notes, {.use = FieldUse::Typed, .shape = TextShape::Note})
        .Add("Inv_Note", &C::Inv_Note, {.use = FieldUse::Typed})
        .Add("IngSort", &C::IngSort)
        .Add("Additive", &C::Additive, {.use = FieldUse::Typed, .format = Format::Mark})
        .Add("VOC", &C::VOC, {.use = FieldUse::Typed, .amount = AmountKey::VOC})
        .Add("HAP", &C::HAP, {.use = FieldUse::Typed, .amount = AmountKey::HAP})
        .Add("LotRefID", &C::LotRefID);
    AddBookFields(map);
    return map;
  }();
  return fields;
}

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

std::optional<BasicColor> ReadBasic(const Session& session, std::string_view name, std::string_view database) {
  Statement row = session.File().Prepare(Select(session, "WHERE Color_Name = ? ORDER BY RowKey LIMIT 1", database));
  row.Bind(1, name);
  if (!row.Step()) return std::nullopt;
  return ReadRow(row);
}

void ForEachBasic(const Session& session, const std::function<bool(const BasicColor&)>& take) {
  Statement row = session.File().Prepare(Select(session, "ORDER BY Color_Name, RowKey"));
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
  const std::string owner(database.empty() ? std::string_view(session.CurrentDatabase) : database);
  BasicColor color;
  color.Color_Name = stored;
  color.Date_Entered = session.clock.Today();
  color.IngSort = NextIngSort(session, database);
  color.Additive = additive;
  color.book = BookDataOfBasic(session, stored, database);
  Transaction transaction(session.File());
  InsertRow(session.File(), schema::Basic, session.Table(schema::Basic, database),
            BasicFields().Cells(color, kNewRowUses));
  transaction.Note({Change::Kind::Basic, owner, stored, Change::What::Added, ""});
  transaction.Commit();
  return stored;
}

bool UsedByAdditiveSet(const Session& session, std::string_view name) {
  std::string where;
  for (int slot = 0; slot < schema::kSetSlots; ++slot)
    where += fmt::format("{}{} = ?1", slot == 0 ? "" : " OR ", schema::Numbered("Add_Name", slot));
  return !session.File()
              .Scalar(fmt::format("SELECT 1 FROM {} WHERE {} LIMIT 1", session.QuotedTable(schema::Additives), where),
                      {name})
              .IsNull();
}

}  // namespace vellumark
