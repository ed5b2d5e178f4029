#include "core/datafile/references.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

// ?1 is the old name, ?2 the new one, ?3 the Database.
struct Place {
  const Table& table;
  std::string_view field;        // the name's field; the first part of it where there is a family
  int slots = 0;                 // members of the family; 0 for a single field
  std::string_view typeField{};  // its kind, of the same family; empty when every row is of the kind
  std::string_view databaseField{};
  std::string_view setField{};  // the search text built from the family
};

// The order is the order of writing.
std::vector<Place> PlacesOf(ColorKind kind) {
  const bool mix = kind == ColorKind::Mix;
  std::vector<Place> places;
  if (mix) {
    places.push_back({schema::MixLotInv, "LotCName"});
    places.push_back({schema::MixLab, "Color_Name"});
    places.push_back({schema::Batch, "Color_Name"});
  }
  places.push_back({schema::Batch, "IngName", schema::kBatchLines, "IngType"});
  places.push_back({schema::BatchLotInv, "IngName", 0, "IngType"});
  if (!mix) {
    places.push_back({schema::BasicLotInv, "LotCName"});
    places.push_back({schema::BasicLab, "Color_Name"});
  }
  places.push_back({schema::JobRecords, "Color_Name", 0, "ItemType", "Database"});
  if (!mix) places.push_back({schema::Additives, "Add_Name", schema::kSetSlots, "", "", "SetList"});
  places.push_back({schema::Designs, "IngName", schema::kDesignSlots, "IngType", "IngDB", "IngSet"});
  return places;
}

// Job Records code their items 1 and 2 and nothing else; on a Batch or Design line every code but 2 is a Basic Color.
std::string KindCondition(const Place& place, ColorKind kind, const std::string& typeField) {
  if (kind == ColorKind::Mix) return typeField + " = 2";
  return typeField + (&place.table == &schema::JobRecords ? " = 1" : " IS NOT 2");
}

// The condition under which slot `slot` holds the old name.
std::string SlotCondition(const Place& place, ColorKind kind, int slot) {
  const auto member = [&](std::string_view word) {
    return Quoted(place.slots == 0 ? std::string(word) : schema::Numbered(word, slot));
  };
  std::string condition = member(place.field) + " = ?1";
  if (!place.typeField.empty()) condition += " AND " + KindCondition(place, kind, member(place.typeField));
  if (!place.databaseField.empty()) condition += " AND " + member(place.databaseField) + " = ?3";
  return condition;
}

// The search text, as an expression over the row after its names have changed.
std::string SetExpression(const Place& place, const std::vector<std::string>& names) {
  std::string expression;
  for (const std::string& name : names) {
    if (!expression.empty()) expression += " || ";
    expression += fmt::format("CASE WHEN COALESCE({0}, '') = '' THEN '' ELSE '<' || {0} || '>' END", name);
  }
  return fmt::format("{} = {}", Quoted(place.setField), expression);
}

// All slots of a family in one walk over the table: a row is read once, however many slots it has.
void RenamePlace(Database& file, std::string_view database, ColorKind kind, const Place& place,
                 std::string_view oldName, std::string_view newName) {
  std::string sets;
  std::string where;
  std::vector<std::string> names;
  for (int slot = 0; slot < (place.slots == 0 ? 1 : place.slots); ++slot) {
    const std::string field = Quoted(place.slots == 0 ? std::string(place.field) : schema::Numbered(place.field, slot));
    const std::string condition = SlotCondition(place, kind, slot);
    const std::string renamed = fmt::format("CASE WHEN {} THEN ?2 ELSE {} END", condition, field);
    sets += fmt::format("{}{} = {}", slot == 0 ? "" : ", ", field, renamed);
    where += fmt::format("{}({})", slot == 0 ? "" : " OR ", condition);
    names.push_back("(" + renamed + ")");
  }
  if (!place.setField.empty()) sets += ", " + SetExpression(place, names);
  Statement update =
      file.Prepare(fmt::format("UPDATE {} SET {} WHERE {}", Quoted(TableName(database, place.table)), sets, where));
  update.Bind(1, oldName).Bind(2, newName);
  if (!place.databaseField.empty()) update.Bind(3, database);
  update.Run();
}

}  // namespace

std::string NameSet(const std::vector<std::string>& names) {
  std::string set;
  for (const std::string& name : names)
    if (!name.empty()) set.append("<").append(name).append(">");
  return set;
}

std::string NameSetPattern(std::string_view name) {
  return "%<" + LikeLiteral(name) + ">%";
}

void RenameReferences(Database& file, std::string_view database, ColorKind kind, std::string_view oldName,
                      std::string_view newName) {
  for (const Place& place : PlacesOf(kind)) RenamePlace(file, database, kind, place, oldName, newName);
}

std::vector<std::string> DesignsUsing(Database& file, std::string_view database, ColorKind kind,
                                      std::string_view name) {
  const Place designs{schema::Designs, "IngName", schema::kDesignSlots, "IngType", "IngDB", "IngSet"};
  std::string where;
  for (int slot = 0; slot < designs.slots; ++slot)
    where += fmt::format("{}({})", slot == 0 ? "" : " OR ", SlotCondition(designs, kind, slot));
  Statement hit = file.Prepare(
      fmt::format("SELECT DesignID FROM {} WHERE IngSet LIKE ?2 ESCAPE '\\' AND ({}) ORDER BY DesignID, rowid",
                  Quoted(designs.table.name), where));
  hit.Bind(1, name).Bind(2, NameSetPattern(name)).Bind(3, database);
  std::vector<std::string> found;
  while (hit.Step()) found.push_back(hit.Text(0));
  return found;
}

bool UsedByDesign(Database& file, std::string_view database, ColorKind kind, std::string_view name) {
  return !DesignsUsing(file, database, kind, name).empty();
}

void DeleteLotsAndMeasurements(Database& file, std::string_view database, ColorKind kind, std::string_view name) {
  const bool mix = kind == ColorKind::Mix;
  const std::string lots = TableName(database, mix ? schema::MixLotInv : schema::BasicLotInv);
  const std::string labs = TableName(database, mix ? schema::MixLab : schema::BasicLab);
  file.Prepare("DELETE FROM " + Quoted(lots) + " WHERE LotCName = ?").Bind(1, name).Run();
  file.Prepare("DELETE FROM " + Quoted(labs) + " WHERE Color_Name = ?").Bind(1, name).Run();
}

}  // namespace vellumark
