#include "core/datafile/references.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/datafile/kept_rows.h"
#include "core/datafile/row_pieces.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

// The old and the new names while they are written, a table of the connection alone.
constexpr std::string_view kNewNames = "MSysNewNames";

struct Place {
  const Table& table;
  std::string_view field;        // the name's field; the first part of it where there is a family
  int slots = 0;                 // members of the family; 0 for a single field
  std::string_view typeField{};  // its kind, of the same family; empty when every row is of the kind
  std::string_view databaseField{};
  std::string_view setField{};  // the search text built from the family
};

const Place kDesigns{schema::Designs, "IngName", schema::kDesignSlots, "IngType", "IngDB", "IngSet"};

// The order is the order of writing.
std::vector<Place> PlacesOf(Database& file, ColorKind kind) {
  const bool mix = kind == ColorKind::Mix;
  std::vector<Place> places;
  if (mix) {
    places.push_back({schema::MixLotInv, "LotCName"});
    places.push_back({schema::MixLab, "Color_Name"});
    places.push_back({schema::Batch, "Color_Name"});
  }
  places.push_back({schema::Batch, "IngName", schema::kBatchLines, "IngType"});
  places.push_back({schema::BatchLotInv, "IngName", 0, "IngType"});
  places.push_back({schema::BatchScaleResults, "ColorName", 0, "IngType"});
  if (!mix) {
    places.push_back({schema::BasicLotInv, "LotCName"});
    places.push_back({schema::BasicLab, "Color_Name"});
  }
  for (const Table* table : TablesOfJobStock(file)) places.push_back({*table, "Color_Name", 0, "ItemType", "Database"});
  if (!mix) places.push_back({schema::Additives, "Add_Name", schema::kSetSlots, "", "", "SetList"});
  places.push_back(kDesigns);
  return places;
}

// Every code but 2 is a Basic Color, such as the 0 of old Job Records.
std::string KindCondition(ColorKind kind, const std::string& typeField) {
  return typeField + (kind == ColorKind::Mix ? " = 2" : " IS DISTINCT FROM 2");
}

std::string Member(const Place& place, std::string_view word, int slot) {
  return Quoted(place.slots == 0 ? std::string(word) : schema::Numbered(word, slot));
}

// The condition under which slot `slot` holds a colour of the kind of the Database ?3. What costs least comes first.
std::string SlotCondition(const Place& place, ColorKind kind, int slot, std::string_view nameTest) {
  std::string condition;
  if (!place.typeField.empty()) condition += KindCondition(kind, Member(place, place.typeField, slot)) + " AND ";
  condition += fmt::format("{} {}", Member(place, place.field, slot), nameTest);
  if (!place.databaseField.empty()) condition += " AND " + Member(place, place.databaseField, slot) + " = ?3";
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

// Windows that show rows of the table hear that some of them bear other names now. Lots and measurements are told with
// their colour.
void TellRows(Transaction& transaction, const Table& table, std::string_view database) {
  using Kind = Change::Kind;
  const auto tell = [&](Kind kind, std::string_view of) {
    transaction.Note({kind, std::string(of), "", Change::What::All, ""});
  };
  if (&table == &schema::JobRecords) tell(Kind::Job, "");
  if (&table == &schema::Designs) tell(Kind::Design, "");
  if (&table == &schema::Additives) tell(Kind::AdditiveSet, database);
  if (&table == &schema::Batch || &table == &schema::BatchLotInv || &table == &schema::BatchScaleResults)
    tell(Kind::Batch, database);
}

// Fills the table of names, which a rollback takes back with everything else. False when the work was stopped.
bool WriteNewNames(Database& file, const std::vector<Renaming>& names,
                   const std::function<bool(double percent)>& goOn) {
  constexpr std::size_t kStride = 1000;
  file.MakeScratchTable(kNewNames, schema::NewNames);
  Statement insert = file.Prepare(fmt::format("INSERT INTO {} (OldName, NewName) VALUES (?, ?)", kNewNames));
  std::size_t done = 0;
  for (const Renaming& name : names) {
    insert.Bind(1, name.oldName).Bind(2, name.newName).Run();
    if (++done % kStride == 0 && goOn && !goOn(0)) return false;
  }
  return true;
}

// So many names are few enough to be looked up in an index one by one, at once.
constexpr std::size_t kFewNames = 200;

// All slots of a family in one walk over the table: a row is read once, however many slots and names there are. A
// single field is found through its index where it has one; a family, and a field of which many names change, is walked
// in pieces, ?1 to ?2.
bool RenamePlace(Database& file, Transaction& transaction, std::string_view database, ColorKind kind,
                 const Place& place, bool inPieces, const std::function<bool(double percent)>& goOn) {
  const std::string isOld = fmt::format("IN (SELECT OldName FROM {})", kNewNames);
  std::string sets;
  std::string where;
  std::vector<std::string> names;
  for (int slot = 0; slot < (place.slots == 0 ? 1 : place.slots); ++slot) {
    const std::string field = Member(place, place.field, slot);
    const std::string condition = SlotCondition(place, kind, slot, isOld);
    const std::string newName = fmt::format(
        "CASE WHEN {1} THEN (SELECT NewName FROM {2} WHERE OldName = {0}) ELSE {0} END", field, condition, kNewNames);
    sets += fmt::format("{}{} = {}", slot == 0 ? "" : ", ", field, newName);
    where += fmt::format("{}({})", slot == 0 ? "" : " OR ", condition);
    names.push_back("(" + newName + ")");
  }
  if (!place.setField.empty()) sets += ", " + SetExpression(place, names);
  const std::string table = TableName(database, place.table);
  const std::string pieces = inPieces ? "RowKey BETWEEN ?1 AND ?2 AND " : "";
  Statement update = file.Prepare(fmt::format("UPDATE {} SET {} WHERE {}({})", Quoted(table), sets, pieces, where));
  int renamed = 0;
  const auto run = [&](std::int64_t first, std::int64_t last, double percent) {
    if (inPieces) update.Bind(1, first).Bind(2, last);
    if (!place.databaseField.empty()) update.Bind(3, database);
    renamed += update.Run();
    return goOn(percent);
  };
  if (!(inPieces ? ForRowPieces(file, table, run) : run(0, 0, 100))) return false;
  if (renamed > 0) TellRows(transaction, place.table, database);
  return true;
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
  RenameReferences(file, database, kind, std::vector<Renaming>{{std::string(oldName), std::string(newName)}});
}

bool RenameReferences(Database& file, std::string_view database, ColorKind kind, const std::vector<Renaming>& names,
                      const std::function<bool(double percent)>& goOn) {
  Transaction transaction(file);
  if (!WriteNewNames(file, names, goOn)) return false;
  const std::vector<Place> places = PlacesOf(file, kind);
  for (std::size_t n = 0; n < places.size(); ++n) {
    const bool inPieces = places[n].slots != 0 || names.size() > kFewNames;
    const auto part = [&](double percent) {
      return !goOn || goOn((100.0 * static_cast<double>(n) + percent) / static_cast<double>(places.size()));
    };
    if (!RenamePlace(file, transaction, database, kind, places[n], inPieces, part)) return false;
  }
  file.Execute(fmt::format("DELETE FROM {}", kNewNames));
  transaction.Commit();
  return true;
}

std::unordered_set<std::string> ColorsInDesigns(Database& file, std::string_view database, ColorKind kind) {
  std::unordered_set<std::string> colors;
  for (int slot = 0; slot < kDesigns.slots; ++slot) {
    Statement row =
        file.Prepare(fmt::format("SELECT {} FROM {} WHERE {}", Member(kDesigns, kDesigns.field, slot),
                                 Quoted(kDesigns.table.name), SlotCondition(kDesigns, kind, slot, "<> ''")));
    row.Bind(3, database);
    while (row.Step()) colors.insert(Upper(row.TextView(0)));
  }
  return colors;
}

std::vector<std::string> DesignsUsing(Database& file, std::string_view database, ColorKind kind,
                                      std::string_view name) {
  std::string where;
  for (int slot = 0; slot < kDesigns.slots; ++slot)
    where += fmt::format("{}({})", slot == 0 ? "" : " OR ", SlotCondition(kDesigns, kind, slot, "= ?1"));
  Statement hit = file.Prepare(
      fmt::format("SELECT DesignID FROM {} WHERE IngSet LIKE ?2 ESCAPE '\\' AND ({}) ORDER BY DesignID, RowKey",
                  Quoted(kDesigns.table.name), where));
  hit.Bind(1, name).Bind(2, NameSetPattern(name)).Bind(3, database);
  std::vector<std::string> found;
  while (hit.Step()) found.push_back(hit.Text(0));
  return found;
}

bool UsedByDesign(Database& file, std::string_view database, ColorKind kind, std::string_view name) {
  return !DesignsUsing(file, database, kind, name).empty();
}

namespace {

// Writes into what names a colour's lot: the first of these fields on the Batch that made it (a formula's), all of them on
// the lines of Batches and Job Records that took from it.
void SetInLotCopies(Database& file, std::string_view database, ColorKind kind, std::string_view name, const LotName& lot,
                    const std::vector<Cell>& cells) {
  const bool mix = kind == ColorKind::Mix;
  Transaction transaction(file);
  const auto set = [&](const Table& of, std::size_t fields, const std::string& rows) {
    const bool ofAll = !of.name.starts_with('_');
    std::string values;
    for (std::size_t i = 0; i < fields; ++i)
      values += fmt::format("{}{} = ?{}", i == 0 ? "" : ", ", Quoted(cells[i].first), i + 4);
    Statement copies = file.Prepare(fmt::format(
        "UPDATE {} SET {} WHERE LotRefID = ?1 AND LotNumber = ?2 AND {}{}", ofAll ? Quoted(of.name) : QuotedTable(database, of),
        values, rows, ofAll ? fmt::format(" AND Database = ?{}", fields + 4) : ""));
    copies.Bind(1, lot.LotRefID).Bind(2, lot.LotNumber).Bind(3, name);
    for (std::size_t i = 0; i < fields; ++i) copies.Bind(static_cast<int>(i) + 4, cells[i].second);
    if (ofAll) copies.Bind(static_cast<int>(fields) + 4, database);
    if (copies.Run() > 0) TellRows(transaction, of, database);
  };
  if (mix) set(schema::Batch, 1, "Color_Name = ?3");
  // A Batch line that is not a formula's is a Basic Color's, an addition included.
  set(schema::BatchLotInv, cells.size(), fmt::format("IngName = ?3 AND IngType {} 2", mix ? "=" : "<>"));
  for (const Table* items : JobTables(file))
    set(*items, cells.size(), "Color_Name = ?3 AND " + KindCondition(kind, "ItemType"));
  transaction.Commit();
}

}  // namespace

void RewriteLotCopies(Database& file, std::string_view database, ColorKind kind, std::string_view name,
                      const LotName& lot, const LotCopy& now) {
  SetInLotCopies(file, database, kind, name, lot,
                 {{"LotNumber", now.LotNumber}, {"LotLoc", now.LotLoc}, {"LotContID", now.LotContID}, {"LotDate", now.LotDate}});
}

void MoveLotCopies(Database& file, std::string_view database, ColorKind kind, std::string_view name, const LotName& lot,
                   std::int32_t ref) {
  SetInLotCopies(file, database, kind, name, lot, {{"LotRefID", ref}});
}

void DeleteLotsAndMeasurements(Database& file, std::string_view database, ColorKind kind, std::string_view name) {
  const bool mix = kind == ColorKind::Mix;
  const std::string lots = TableName(database, mix ? schema::MixLotInv : schema::BasicLotInv);
  const std::string labs = TableName(database, mix ? schema::MixLab : schema::BasicLab);
  file.Prepare("DELETE FROM " + Quoted(lots) + " WHERE LotCName = ?").Bind(1, name).Run();
  file.Prepare("DELETE FROM " + Quoted(labs) + " WHERE Color_Name = ?").Bind(1, name).Run();
  if (file.TableExists(GoneLots().name))
    file.Prepare(fmt::format("DELETE FROM {} WHERE Color_Name = ?1 AND Database = ?2 AND {}", Quoted(GoneLots().name),
                             KindCondition(kind, "ItemType")))
        .Bind(1, name)
        .Bind(2, database)
        .Run();
}

}  // namespace vellumark
