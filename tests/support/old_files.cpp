#include "support/old_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/base/date.h"
#include "core/datafile/engine.h"
#include "core/datafile/references.h"
#include "support/jet_room.h"

namespace vellumark::test {
namespace {

using schema::Numbered;
using Fields = std::vector<Field>;

// ---- The layouts, from the first version in which a field stood to the last one.

class Layout {
 public:
  Layout(std::string name, int version) : version_(version) { table_.name = std::move(name); }
  Layout& Add(std::string name, FieldType type, int size = 0, int from = 2, int to = 40) {
    if (version_ >= from && version_ <= to) table_.fields.push_back({std::move(name), type, size, true});
    return *this;
  }
  Layout& Family(const std::string& word, FieldType type, int size, int first, int count, int from = 2, int to = 40) {
    for (int n = first; n < first + count; ++n) Add(Numbered(word, n), type, size, from, to);
    return *this;
  }
  Layout& Texts(std::initializer_list<const char*> names, int from = 2, int to = 40) {
    for (const char* name : names) Add(name, FieldType::Text, 30, from, to);
    return *this;
  }
  Layout& Of(FieldType type, std::initializer_list<const char*> names, int from = 2, int to = 40) {
    for (const char* name : names) Add(name, type, 0, from, to);
    return *this;
  }
  Table Done() { return std::move(table_); }

 private:
  int version_;
  Table table_;
};

constexpr FieldType kText = FieldType::Text;
constexpr FieldType kSingle = FieldType::Single;
constexpr FieldType kDate = FieldType::Date;
constexpr FieldType kByte = FieldType::Byte;
constexpr FieldType kLong = FieldType::Long;
constexpr FieldType kMemo = FieldType::Memo;
constexpr FieldType kBoolean = FieldType::Boolean;

void AddOldLots(Layout& layout, int first) {
  layout.Family("ILot_Name", kText, 30, first, 10, 22, 36).Family("ILot_Qty", kSingle, 0, first, 10, 22, 36);
  layout.Family("ILot_Date", kDate, 0, first, 10, 24, 36);
}

void AddBook(Layout& layout) {
  layout.Texts({"Color_Guide", "Page"}, 22).Of(kByte, {"Row", "Red", "Green", "Blue"}, 22);
}

Table BasicLayout(const std::string& database, int version, int first) {
  Layout layout(database + "_Basic", version);
  layout.Texts({"Color_Name", "Color_Code"}).Of(kSingle, {"Inventory", "Reorder", "PurchaseCost"});
  layout.Of(kDate, {"Date_Entered", "LastConsumed"}).Of(kMemo, {"Notes"}).Texts({"Inv_Note"}).Of(kLong, {"IngSort"}, 7);
  layout.Of(kBoolean, {"Additive"}, 22).Of(kSingle, {"VOC", "HAP"}, 22);
  AddOldLots(layout, first);
  layout.Of(kLong, {"LotRefID"}, 37);
  AddBook(layout);
  return layout.Done();
}

Table MixLayout(const std::string& database, int version, int first) {
  Layout layout(database + "_Mix", version);
  const int slots = version < 6 ? 10 : 15;
  layout.Texts({"Color_Name"}).Family("BC", kText, 30, first, slots).Family("BQ", kSingle, 0, first, slots);
  layout.Texts({"Color_Code"}).Of(kSingle, {"Inventory", "Reorder", "PurchaseCost", "BasicCost"}).Of(kBoolean, {"Recycle"});
  layout.Of(kDate, {"Date_Entered"}).Of(kDate, {"LastModified"}, 37).Of(kDate, {"LastProduced"}).Of(kMemo, {"Color_Set", "Notes"});
  layout.Texts({"Inv_Note"}).Texts({"AddSetName"}, 22).Of(kSingle, {"VOC", "BasicVOC", "HAP", "BasicHAP"}, 22);
  AddOldLots(layout, first);
  layout.Of(kLong, {"LotRefID"}, 37);
  AddBook(layout);
  return layout.Done();
}

Table BatchLayout(const std::string& database, int version, int first) {
  Layout layout(database + "_Batch", version);
  const bool old = version < 37;
  const int lines = version < 6 ? 15 : 20;
  layout.Texts({"Color_Name"}).Of(kSingle, {"Quantity"});
  layout.Family(old ? "Ingredient" : "IngName", kText, 30, first, lines).Family(old ? "Amount" : "IngQty", kSingle, 0, first, lines);
  layout.Family("IsMix", kBoolean, 0, first, lines, 2, 2).Family("IngType", kByte, 0, first, lines, 3);
  layout.Of(kMemo, {"Notes"}).Of(kDate, {"Date_Entered"}).Of(kLong, {"BatchNo"}).Of(kSingle, {"PercentRec"}).Of(kByte, {"UMF"});
  layout.Texts({"Color_Code"}).Of(kMemo, {"IngNotes"});
  layout.Of(kSingle, {"CostOfMixes", "CostOfBasics", "FixedCostOfBatch", "FixedCostPerUnit", "MarkupPercent"}).Of(kByte, {"MixCostOption"});
  layout.Of(kByte, {"CostModelType"}, 4).Texts({"JobNumber", "ShortNote"}, 4).Texts({"Username"}, 10);
  layout.Of(kSingle, {"ActualQuantity"}, 12).Of(kLong, {"ClickedIndex"}, 14).Of(kSingle, {"Roundoff"}, 15).Of(kLong, {"LargestAmountIndex"}, 15);
  layout.Family("UD_Text", kText, 30, 0, 6, 22).Family("UD_Numeric", kSingle, 0, 0, 6, 22).Texts({"LotNumber"}, 22);
  layout.Of(kLong, {"LotRefID"}, 37).Of(kSingle, {"VOC", "HAP"}, 22).Of(kByte, {"MixVOCModelType", "MixHAPModelType"}, 22);
  layout.Of(kBoolean, {"Complete"}, 34).Of(kSingle, {"Lab_L", "Lab_a", "Lab_b", "Lab_D", "Lab_Density"}, 37).Texts({"Lab_LS", "Lab_PT", "Lab_Note"}, 37);
  return layout.Done();
}

Table InfoLayout(const std::string& database, int version, int first) {
  Layout layout(database + "_Info", version);
  layout.Texts({"FullName"}).Of(kMemo, {"Disclaimer", "TradeMark"}).Texts({"TemplateFile"}, 16);
  layout.Texts({"LabelLayout", "LabelHealth", "LabelFire", "LabelReactivity"}, 11, 21);
  layout.Family("Additive", kText, 30, first, 5, 13, 21).Family("Percentage", kSingle, 0, first, 5, 13, 21);
  return layout.Done();
}

Table ConsumptionLayout(const std::string& database, int version) {
  Layout layout(database + "_Batch_LotInv_Consumption", version);
  layout.Of(kLong, {"BatchNo"}).Of(kDate, {"Date_Entered"}).Texts({"Ingredient"}).Of(kByte, {"Ing_Type"}).Of(kSingle, {"Unlotted_Inv"});
  layout.Texts({"ILot_Name"}).Of(kSingle, {"ILot_Qty"}).Of(kDate, {"ILot_Date"}, 24);
  return layout.Done();
}

Table JobsLayout(int version) {
  Layout layout("JobRecords", version);
  layout.Texts({"JobNumber"}).Texts({"DesignID", "DesignDesc"}, 33).Texts({"Color_Name"}).Texts({"Color_Code"}, 5).Texts({"Database"});
  layout.Of(kLong, {"BatchNo"}).Of(kByte, {"ItemType"}).Of(kSingle, {"UnitCost"}).Of(kSingle, {"VOC", "HAP"}, 22).Of(kLong, {"LotRefID"}, 37);
  layout.Texts({"LotNumber"}, 22).Texts({"LotLoc", "LotContID"}, 37).Of(kDate, {"LotDate"}, 37).Of(kSingle, {"QtyIssued"}, 28).Of(kSingle, {"QtyUsed"});
  layout.Of(kDate, {"Date_Entered"}).Of(kDate, {"Date_Returned", "Date_Completed"}, 29).Family("UD_Text", kText, 30, 0, 6, 22);
  layout.Family("UD_Numeric", kSingle, 0, 0, 6, 22);
  return layout.Done();
}

Table UsersLayout(int version) {
  Layout layout("Users", version);
  layout.Texts({"Username", "Password"}).Of(kBoolean, {"IsAdmin"});
  layout.Of(kByte, {"MixColorFormula", "Costs", "BackupRestore", "DataFileFunctions", "OptionsMenu", "DatabaseFunctions"}, 2, 21);
  layout.Of(kByte, {"Edit_MasterFormula", "Edit_Costs", "Edit_VOCHAP", "DF_BackupRestore", "DF_AdvancedMenu", "DF_OptionsMenu", "DB_NewRenameDel"}, 22);
  layout.Of(kByte, {"DBToolsMenu"}).Of(kByte, {"DF_ExportDF_Excel"}, 40);
  return layout.Done();
}

Table DispenserLayout(int version) {
  Layout layout("Dispenser", version);
  layout.Texts({"Name", "Manufacturer", "Drive"}).Add("Pathway", kText, 200).Of(kBoolean, {"Additives", "Recycles"});
  layout.Add("FileType", kText, 10, 30);
  return layout.Done();
}

Table Renamed(const Table& table, const std::string& name, const char* without = nullptr) {
  Table copy{name, table.fields, {}};
  if (without != nullptr) std::erase_if(copy.fields, [&](const Field& field) { return field.name == without; });
  return copy;
}

// ---- What a row holds, under every name that any version has for it.

void PutLots(OldRow& row, const OldColor& color, int first) {
  for (std::size_t i = 0; i < color.lots.size(); ++i) {
    const int n = first + static_cast<int>(i);
    row[Numbered("ILot_Name", n)] = color.lots[i].number;
    row[Numbered("ILot_Qty", n)] = static_cast<float>(color.lots[i].quantity);
    row[Numbered("ILot_Date", n)] = color.lots[i].date.empty() ? Value() : Value(color.lots[i].date);
  }
  row["LotRefID"] = std::ssize(color.lots);
}

// Money of the versions before 27 had four decimals; a Single holds no more than it holds.
Value Money(double amount, int version) {
  return version < 27 ? Value(amount) : Value(static_cast<float>(amount));
}

OldRow BasicRow(const OldColor& color, int version, int first, int place) {
  OldRow row{{"Color_Name", color.name}, {"Color_Code", color.code}, {"Inventory", color.inventory}, {"Reorder", 5},
             {"PurchaseCost", Money(color.cost, version)}, {"Date_Entered", "2016-02-03 00:00:00"}, {"IngSort", 100 - place},
             {"Additive", color.additive ? 1 : 0}, {"VOC", 0.25F}, {"HAP", Value()}};
  PutLots(row, color, first);
  return row;
}

OldRow MixRow(const OldColor& color, const OldDatabase& of, int version, int first) {
  OldRow row{{"Color_Name", color.name}, {"Color_Code", color.code}, {"Inventory", color.inventory}, {"PurchaseCost", Money(color.cost, version)},
             {"BasicCost", Money(1.2345, version)}, {"Recycle", 1}, {"Date_Entered", "2016-02-03 00:00:00"},
             {"LastModified", "2019-05-06 00:00:00"}, {"Color_Set", Value()}, {"Page", "0"}};
  std::vector<std::string> names;
  for (std::size_t i = 0; i < color.parts.size(); ++i) {
    const int n = first + static_cast<int>(i);
    // Old programs took what was typed.
    const bool loose = version < 8 && i == 0;
    row[Numbered("BC", n)] = loose ? Value(std::string(1, static_cast<char>(color.parts[i].first[0] + 32)) + color.parts[i].first.substr(1) + " ")
                                   : Value(color.parts[i].first);
    row[Numbered("BQ", n)] = color.parts[i].second;
    names.push_back(color.parts[i].first);
  }
  if (version >= 22 && !of.additives.empty() && std::ranges::find(names, of.additives[0].first) != names.end()) row["AddSetName"] = "Add Set 1";
  PutLots(row, color, first);
  return row;
}

const OldColor* FindColor(const OldDatabase& database, const std::string& name, int kind) {
  for (const OldColor& color : kind == 2 ? database.formulas : database.basics)
    if (color.name == name) return &color;
  return nullptr;
}

// The reference of a lot, as an update grants it; 0 of one that is not there.
int RefOf(const OldColor* color, const std::string& number, const std::string& date) {
  if (color == nullptr) return 0;
  for (std::size_t i = 0; i < color->lots.size(); ++i)
    if (color->lots[i].number == number && (color->lots[i].date.empty() || date.empty() || color->lots[i].date == date))
      return static_cast<int>(i) + 1;
  return 0;
}

std::string JobOf(const OldRoom& room, const std::string& database, int batchNo) {
  for (const OldJob& job : room.jobs)
    if (job.database == database && job.batchNo == batchNo) return job.number;
  return "";
}

OldRow BatchRow(const OldRoom& room, const OldDatabase& of, const OldBatch& batch, int version, int first) {
  const std::string job = JobOf(room, of.name, batch.no);
  OldRow row{{"Color_Name", batch.color}, {"Quantity", batch.quantity}, {"Date_Entered", batch.date}, {"BatchNo", batch.no}, {"UMF", 1},
             {"CostOfBasics", Money(33.3333, version)}, {"CostOfMixes", Money(0, version)}, {"MixCostOption", 1}, {"CostModelType", 1},
             {"JobNumber", version < 20 && !job.empty() ? "  " + job : job}, {"ShortNote", "n"}, {"Username", batch.user},
             {"ActualQuantity", batch.actual}, {"ClickedIndex", 2}, {"Roundoff", 0}, {"LargestAmountIndex", 0}, {"UD_Text3", "u"},
             {"LotNumber", batch.lotNumber}, {"LotRefID", RefOf(FindColor(of, batch.color, 2), batch.lotNumber, batch.date)},
             {"Complete", batch.no % 2}, {"Lab_L", 50}};
  for (std::size_t i = 0; i < batch.lines.size(); ++i) {
    const int n = first + static_cast<int>(i);
    const OldLine& line = batch.lines[i];
    row[Numbered(version < 37 ? "Ingredient" : "IngName", n)] = line.name;
    row[Numbered(version < 37 ? "Amount" : "IngQty", n)] = line.quantity;
    row[Numbered("IsMix", n)] = line.kind == 2 ? 1 : 0;
    // One line of each tenth Batch bears a kind that its colour is not.
    row[Numbered("IngType", n)] = version < 9 && batch.no % 10 == 0 && line.kind == 1 ? 2 : line.kind;
  }
  return row;
}

OldRow JobRow(const OldRoom& room, const OldJob& job, int version) {
  return {{"JobNumber", version < 20 ? job.number + " " : job.number}, {"Color_Name", job.color}, {"Color_Code", "C-" + job.color},
          {"Database", job.database}, {"BatchNo", job.batchNo}, {"ItemType", job.type}, {"UnitCost", Money(2.7182, version)},
          {"QtyIssued", job.issued}, {"QtyUsed", job.used}, {"Date_Entered", job.entered}, {"Date_Returned", "2025-12-30 00:00:00"},
          {"Date_Completed", "2025-12-31 00:00:00"}, {"LotNumber", job.lotNumber}, {"LotRefID", 0}, {"DesignID", room.jobs.empty() ? "" : job.design}};
}

OldRow UserRow(const char* name, int admin) {
  return {{"Username", name}, {"Password", "P"}, {"IsAdmin", admin}, {"MixColorFormula", 1}, {"Edit_MasterFormula", 1}, {"Costs", 2},
          {"Edit_Costs", 2}, {"Edit_VOCHAP", 1}, {"BackupRestore", admin}, {"DF_BackupRestore", admin}, {"DataFileFunctions", 1},
          {"DF_AdvancedMenu", 1}, {"OptionsMenu", 0}, {"DF_OptionsMenu", 0}, {"DatabaseFunctions", admin}, {"DB_NewRenameDel", admin}, {"DBToolsMenu", 1}, {"DF_ExportDF_Excel", admin}};
}

OldRow TakenRow(const OldBatch& batch, const OldLine& line, int kind, float quantity, const std::string& number, int ref, const Value& date) {
  return {{"BatchNo", batch.no}, {"DateEntered", batch.date}, {"IngName", line.name}, {"IngType", kind}, {"LotRefID", ref}, {"LotNumber", number},
          {"LotLoc", ""}, {"LotContID", ""}, {"LotDate", date}, {"LotQty", quantity}};
}

OldRow LotTableRow(const OldColor& color, std::size_t i, const Value& date) {
  return {{"LotRefID", static_cast<int>(i) + 1}, {"LotCName", color.name}, {"LotNumber", color.lots[i].number}, {"LotLoc", ""},
          {"LotContID", ""}, {"LotDate", date}, {"LotQty", static_cast<float>(color.lots[i].quantity)}, {"LotPrice", static_cast<float>(color.cost)}};
}

void AddLotTables(std::vector<OldTable>& tables, const OldDatabase& of) {
  OldTable basic{Renamed(schema::BasicLotInv, of.name + "_Basic_LotInv"), {}};
  OldTable mix{Renamed(schema::MixLotInv, of.name + "_Mix_LotInv"), {}};
  for (auto [table, colors] : {std::pair{&basic, &of.basics}, {&mix, &of.formulas}})
    for (const OldColor& color : *colors)
      for (std::size_t i = 0; i < color.lots.size(); ++i) table->rows.push_back(LotTableRow(color, i, color.lots[i].date));
  OldTable taken{Renamed(schema::BatchLotInv, of.name + "_Batch_LotInv"), {}};
  for (const OldBatch& batch : of.batches)
    for (const OldLine& line : batch.lines) {
      if (line.fromLot > 0)
        taken.rows.push_back(TakenRow(batch, line, line.kind, line.fromLot, line.lot, RefOf(FindColor(of, line.name, line.kind), line.lot, line.lotDate), line.lotDate));
      if (line.fromLot != line.quantity) taken.rows.push_back(TakenRow(batch, line, line.kind, line.quantity - line.fromLot, "Unlotted Inv.", 0, Value()));
    }
  tables.insert(tables.end(), {basic, mix, taken, {Renamed(schema::BasicLab, of.name + "_Basic_LAB"), {}}, {Renamed(schema::MixLab, of.name + "_Mix_LAB"), {}}});
}

void AddDatabase(std::vector<OldTable>& tables, const OldRoom& room, const OldDatabase& of, int version, int first) {
  OldTable basic{BasicLayout(of.name, version, first), {}};
  for (std::size_t i = 0; i < of.basics.size(); ++i) basic.rows.push_back(BasicRow(of.basics[i], version, first, static_cast<int>(i)));
  OldTable mix{MixLayout(of.name, version, first), {}};
  for (const OldColor& color : of.formulas) mix.rows.push_back(MixRow(color, of, version, first));
  OldTable batch{BatchLayout(of.name, version, first), {}};
  OldTable taken{ConsumptionLayout(of.name, version), {}};
  for (const OldBatch& one : of.batches) {
    batch.rows.push_back(BatchRow(room, of, one, version, first));
    for (const OldLine& line : one.lines)
      taken.rows.push_back({{"BatchNo", one.no}, {"Date_Entered", one.date}, {"Ingredient", line.name}, {"Ing_Type", line.kind},
                            {"Unlotted_Inv", line.quantity - line.fromLot}, {"ILot_Name", line.lot}, {"ILot_Qty", line.fromLot},
                            {"ILot_Date", line.lotDate.empty() ? Value() : Value(line.lotDate)}});
  }
  OldTable info{InfoLayout(of.name, version, first), {{{"FullName", version < 22 ? Value() : Value("Custom Database")}, {"LabelFire", "3"}}}};
  OldTable sets{Renamed(schema::Additives, of.name + "_Additives"), {}};
  if (!of.additives.empty()) sets.rows.push_back({{"SetName", "Add Set 1"}});
  for (std::size_t i = 0; i < of.additives.size(); ++i) {
    const int n = static_cast<int>(i);
    info.rows[0][Numbered("Additive", first + n)] = of.additives[i].first;
    info.rows[0][Numbered("Percentage", first + n)] = of.additives[i].second;
    sets.rows[0][Numbered("Add_Name", n)] = of.additives[i].first;
    sets.rows[0][Numbered("Add_Percent", n)] = of.additives[i].second;
  }
  tables.insert(tables.end(), {basic, mix, batch, info});
  if (version >= 22) tables.push_back(sets);
  if (version >= 22 && version < 37) tables.push_back(taken);
  if (version >= 37) AddLotTables(tables, of);
}

}  // namespace

OldRoom MakeOldRoom(int batches) {
  OldRoom room;
  const std::string early = "2015-03-04 00:00:00";
  for (const char* name : {"INK", "SPOT"}) {
    OldDatabase of{name, {}, {}, {}, {}};
    of.basics = {{"RED", "C-RED", 100.1F, 12.3456, {}, {{"R1", 33.3, early}, {"R2", 7.7, "2016-01-02 00:00:00"}}, false},
                 {"BLUE", "C-BLUE", 0.7F, 9.9, {}, {{"B1", 0, early}}, false},
                 {"WHITE", "C-WHITE", 1234.567F, 3.1, {}, {}, false},
                 {"VARNISH", "C-V", 50, 2, {}, {}, true}};
    of.formulas = {{"PINK", "C-PINK", 12.3F, 5, {{"WHITE", 80}, {"RED", 20}}, {}, false},
                   {"SKY", "C-SKY", 0, 6.5, {{"WHITE", 70.5F}, {"BLUE", 19.5F}, {"VARNISH", 10}}, {{"S1", 4.4, early}}, false}};
    of.additives = {{"VARNISH", 10}};
    room.databases.push_back(std::move(of));
  }
  const std::int64_t first = DateTime{2016, 1, 4}.DayNumber();
  for (int no = 1; no <= batches; ++no) {
    OldDatabase& of = room.databases[static_cast<std::size_t>(no % 2)];
    const std::string date = DateTime::FromDayNumber(first + std::int64_t{no} * 3640 / (batches + 1)).ToText();
    const float size = 10.0F + static_cast<float>(no % 7) * 0.1F;
    OldBatch batch{no, no % 4 == 0 ? "SKY" : "PINK", size, size + 0.5F, {}, date, no % 5 == 0 ? "S1" : "", no % 2 == 0 ? "ANNA" : ""};
    batch.lines = {{"WHITE", size, 1, "", 0, ""}, {"RED", 2.5F, 1, no % 3 == 0 ? "R1" : "", no % 3 == 0 ? 1.5F : 0.0F, no % 3 == 0 ? early : ""}};
    if (no % 6 == 0) batch.lines.push_back({"SKY", 1.25F, 2, "GONE", 1.25F, early});
    if (no % 7 == 0) batch.lines.push_back({"VARNISH", 0.3F, 3, "", 0, ""});
    if (no % 3 == 0) {
      room.jobs.push_back({fmt::format("J{}", no / 6), batch.color, of.name, no, 2, 3.3F, 2.2F, date, "", no % 2 == 0 ? "LABEL" : ""});
      if (no % 9 == 0) room.jobs.push_back({fmt::format("J{}", no / 6), "RED", of.name, 1'000'000 + no, 1, 1.1F, 0.7F, date, "R2", ""});
    }
    of.batches.push_back(std::move(batch));
  }
  return room;
}

std::vector<OldTable> OldTables(const OldRoom& room, int version, int first) {
  if (version >= 37) first = 0;
  std::vector<OldTable> tables;
  std::string list;
  for (const OldDatabase& of : room.databases) list += of.name + "|";
  int last = 0;
  for (const OldDatabase& of : room.databases)
    for (const OldBatch& batch : of.batches) last = std::max(last, batch.no);
  const std::string current = room.databases.empty() ? "" : room.databases[0].name;
  tables.push_back({Renamed(schema::FileInfo, "FileInfo"),
                    {{{"FileVersion", version}, {"CurrentDB", current}, {"DBList", list}, {"BatchNumber", last + 1}, {"ItemNumber", last + 1}, {"DaysToRemindBackup", 7}}}});
  OldTable jobs{JobsLayout(version), {}};
  for (const OldJob& job : room.jobs) jobs.rows.push_back(JobRow(room, job, version));
  tables.push_back(std::move(jobs));
  if (version >= 29)
    tables.push_back({DispenserLayout(version), {{{"Name", "DOS 1"}, {"Manufacturer", "FGI"}, {"Drive", "C:"}, {"Pathway", "\\OUT"}, {"FileType", ".json9"}}}});
  if (version >= 32)
    tables.push_back({Renamed(schema::Designs, "Designs", version < 36 ? "PhotoSet" : nullptr), {{{"DesignID", "LABEL"}, {"IngName0", "PINK"}, {"IngType0", 2}, {"IngDB0", current}}}});
  if (room.users) tables.push_back({UsersLayout(version), {UserRow("ADMIN", 1), UserRow("ANNA", 0)}});
  for (const OldDatabase& of : room.databases) AddDatabase(tables, room, of, version, first);
  return tables;
}

void WriteOldFile(const std::filesystem::path& path, const std::vector<OldTable>& tables) {
  const auto file = Database::Create(path);
  Transaction transaction(*file);
  for (const OldTable& table : tables) {
    file->CreateTable(table.layout.name, table.layout);
    std::string names;
    std::string marks;
    for (const Field& field : table.layout.fields) {
      names += (names.empty() ? "" : ", ") + Quoted(field.name);
      marks += marks.empty() ? "?" : ", ?";
    }
    Statement insert = file->Prepare(fmt::format("INSERT INTO {} ({}) VALUES ({})", Quoted(table.layout.name), names, marks));
    for (const OldRow& row : table.rows) {
      int parameter = 1;
      for (const Field& field : table.layout.fields) {
        const auto value = row.find(field.name);
        insert.Bind(parameter++, value == row.end() ? Value() : value->second);
      }
      insert.Run();
    }
  }
  transaction.Commit();
}

namespace {

JetType JetTypeOf(const Field& field, const std::vector<OldRow>& rows) {
  switch (field.type) {
    case FieldType::Boolean:
      return JetType::Boolean;
    case FieldType::Byte:
      return JetType::Byte;
    case FieldType::Integer:
      return JetType::Integer;
    case FieldType::Long:
      return JetType::Long;
    case FieldType::Date:
      return JetType::Date;
    case FieldType::Text:
      return JetType::Text;
    case FieldType::Memo:
      return JetType::Memo;
    case FieldType::Single:
      break;
  }
  const auto isMoney = [&](const OldRow& row) {
    const auto value = row.find(field.name);
    return value != row.end() && value->second.IsNumber() &&
           static_cast<double>(static_cast<float>(value->second.Number())) != value->second.Number();
  };
  return std::ranges::any_of(rows, isMoney) ? JetType::Currency : JetType::Single;
}

Value JetValue(const Value& value, JetType type) {
  if (type == JetType::Boolean) return value.Whole();
  if (value.IsNull()) return value;
  if (type == JetType::Date) return JetDays(*value.Date());
  if (type == JetType::Currency) return std::llround(value.Number() * 10000);
  return value;
}

}  // namespace

void WriteOldJetFile(const std::filesystem::path& path, const std::vector<OldTable>& tables) {
  std::vector<JetTableRows> jet;
  for (const OldTable& table : tables) {
    JetTableRows made{table.layout.name, {}, {}};
    for (const Field& field : table.layout.fields) made.columns.push_back({field.name, JetTypeOf(field, table.rows), field.size});
    for (const OldRow& row : table.rows) {
      std::vector<Value> values;
      for (const JetColumn& column : made.columns) {
        const auto value = row.find(column.name);
        values.push_back(JetValue(value == row.end() ? Value() : value->second, column.type));
      }
      made.rows.push_back(std::move(values));
    }
    jet.push_back(std::move(made));
  }
  MakeJetFile(path, jet);
}

namespace {

Value Rounded(double amount) {
  return static_cast<float>(amount);
}

int KindAfter(const OldLine& line, int version) {
  return version < 3 && line.kind == 3 ? 1 : line.kind;
}

Value DateAfter(const std::string& date, int version, const std::string& today) {
  return version < 24 || date.empty() ? Value(today) : Value(date);
}

void ExpectColors(std::map<std::string, std::vector<OldRow>>& all, const OldDatabase& of, int version, const std::string& today) {
  const bool lotted = version >= 22;
  std::vector<std::string> byName;
  for (const OldColor& color : of.basics) byName.push_back(color.name);
  std::ranges::sort(byName);
  for (std::size_t i = 0; i < of.basics.size(); ++i) {
    const OldColor& color = of.basics[i];
    const auto place = std::ranges::find(byName, color.name) - byName.begin();
    all[of.name + "_Basic"].push_back({{"Color_Name", color.name}, {"Color_Code", color.code}, {"Inventory", color.inventory},
                                       {"PurchaseCost", Rounded(color.cost)}, {"IngSort", version < 7 ? place : 100 - static_cast<std::int64_t>(i)},
                                       {"Additive", color.additive && version >= 13 ? 1 : 0}, {"VOC", lotted ? 0.25F : 0.0F}, {"HAP", 0.0F},
                                       {"LotRefID", lotted ? std::ssize(color.lots) : 0}, {"Notes", ""}, {"Row", 0}});
  }
  for (const OldColor& color : of.formulas) {
    OldRow row{{"Color_Name", color.name}, {"Inventory", color.inventory}, {"PurchaseCost", Rounded(color.cost)}, {"Recycle", 1},
               {"LastModified", version < 37 ? "2016-02-03 00:00:00" : "2019-05-06 00:00:00"}, {"Reorder", 0.0F}};
    std::vector<std::string> names;
    for (int n = 0; n < 15; ++n) {
      const bool filled = n < std::ssize(color.parts);
      if (filled) names.push_back(color.parts[static_cast<std::size_t>(n)].first);
      row[Numbered("BC", n)] = filled ? names.back() : "";
      row[Numbered("BQ", n)] = filled ? color.parts[static_cast<std::size_t>(n)].second : 0.0F;
    }
    row["Color_Set"] = NameSet(names);
    row["AddSetName"] = version >= 13 && std::ranges::find(names, "VARNISH") != names.end() ? "Add Set 1" : "";
    all[of.name + "_Mix"].push_back(std::move(row));
  }
  if (lotted)
    for (auto [table, colors] : {std::pair{"_Basic_LotInv", &of.basics}, {"_Mix_LotInv", &of.formulas}})
      for (const OldColor& color : *colors)
        for (std::size_t i = 0; i < color.lots.size(); ++i) {
          OldRow row = LotTableRow(color, i, DateAfter(color.lots[i].date, version, today));
          if (colors == &of.formulas && version < 37) row.erase("LotPrice");  // what its ingredients cost, which is worked out
          all[of.name + table].push_back(std::move(row));
        }
}

void ExpectBatch(std::map<std::string, std::vector<OldRow>>& all, const OldRoom& room, const OldDatabase& of, const OldBatch& batch, int version) {
  // Before there were dates of lots any lot of the number is the one.
  const bool dated = version >= 24;
  const int lotRef = version < 22 ? 0 : RefOf(FindColor(of, batch.color, 2), batch.lotNumber, dated ? batch.date : "");
  OldRow row{{"Color_Name", batch.color}, {"Quantity", batch.quantity}, {"BatchNo", batch.no}, {"Date_Entered", batch.date},
             {"CostOfBasics", Rounded(33.3333)}, {"CostModelType", version < 4 ? 0 : 1}, {"JobNumber", JobOf(room, of.name, batch.no)},
             {"ShortNote", version < 4 ? "" : "n"}, {"Username", version < 10 ? "" : batch.user},
             {"ActualQuantity", version < 12 ? batch.quantity : batch.actual}, {"ClickedIndex", version < 14 ? -1 : 2}, {"Roundoff", 0.0F},
             {"UD_Text3", version < 22 ? "" : "u"}, {"UD_Text0", ""}, {"LotNumber", version < 22 ? "" : batch.lotNumber}, {"LotRefID", lotRef},
             {"Complete", version < 34 ? 1 : batch.no % 2}, {"Lab_L", version < 37 ? 0.0F : 50.0F}, {"Notes", ""}};
  for (int n = 0; n < 20; ++n) {
    const bool filled = n < std::ssize(batch.lines);
    const OldLine line = filled ? batch.lines[static_cast<std::size_t>(n)] : OldLine{};
    row[Numbered("IngName", n)] = line.name;
    row[Numbered("IngQty", n)] = line.quantity;
    row[Numbered("IngType", n)] = filled ? KindAfter(line, version) : 0;
  }
  all[of.name + "_Batch"].push_back(std::move(row));
  std::vector<OldRow>& taken = all[of.name + "_Batch_LotInv"];
  for (const OldLine& line : batch.lines) {
    const int kind = KindAfter(line, version);
    if (version < 22) {
      taken.push_back(TakenRow(batch, line, kind, line.quantity, "Unlotted Inv.", 0, Value()));
      continue;
    }
    const std::string date = dated ? line.lotDate : "";
    if (line.fromLot > 0)
      taken.push_back(TakenRow(batch, line, kind, line.fromLot, line.lot, RefOf(FindColor(of, line.name, line.kind), line.lot, date), date.empty() ? Value() : Value(date)));
    if (line.fromLot != line.quantity) taken.push_back(TakenRow(batch, line, kind, line.quantity - line.fromLot, "Unlotted Inv.", 0, Value()));
  }
}

}  // namespace

std::map<std::string, std::vector<OldRow>> RowsAfterUpdate(const OldRoom& room, int version, const std::string& today) {
  std::map<std::string, std::vector<OldRow>> all;
  std::map<std::string, std::string> completed;
  for (const OldJob& job : room.jobs) completed[job.number] = std::max(completed[job.number], job.entered);
  for (const OldJob& job : room.jobs) {
    const bool lotted = version >= 22 && version < 37 && job.lotNumber == "R2";
    all["JobRecords"].push_back({{"JobNumber", job.number}, {"Color_Name", job.color}, {"Color_Code", "C-" + job.color}, {"Database", job.database},
                                 {"BatchNo", job.batchNo}, {"ItemType", job.type}, {"UnitCost", Rounded(2.7182)},
                                 {"QtyIssued", version < 28 ? job.used : job.issued}, {"QtyUsed", job.used}, {"Date_Entered", job.entered},
                                 {"Date_Returned", version < 29 ? job.entered : "2025-12-30 00:00:00"},
                                 {"Date_Completed", version < 29 ? completed[job.number] : "2025-12-31 00:00:00"},
                                 {"LotNumber", version < 22 ? "" : job.lotNumber}, {"LotRefID", lotted ? 2 : 0},
                                 {"DesignID", version < 33 ? "" : job.design}, {"UD_Text5", ""}});
  }
  if (room.users)
    for (const auto& [name, admin] : {std::pair{"ADMIN", 1}, {"ANNA", 0}})
      all["Users"].push_back({{"Username", name}, {"IsAdmin", admin}, {"Edit_MasterFormula", 1}, {"Edit_Costs", 2}, {"DF_BackupRestore", admin},
                              {"DF_AdvancedMenu", 1}, {"DF_OptionsMenu", 0}, {"DB_NewRenameDel", admin}, {"DBToolsMenu", 1},
                              {"Edit_VOCHAP", version < 22 ? admin : 1}, {"DF_ExportDF_Excel", admin}});
  all["Dispenser"] = {};
  if (version >= 38) all["Dispenser"].push_back({{"Name", "DOS 1"}, {"Manufacturer", "FGI"}, {"FileType", ".json"}});
  for (const OldDatabase& of : room.databases) {
    ExpectColors(all, of, version, today);
    for (const OldBatch& batch : of.batches) ExpectBatch(all, room, of, batch, version);
    all[of.name + "_Info"].push_back({{"FullName", "Custom Database"}, {"TemplateFile", ""}, {"Disclaimer", ""}});
    if (version >= 13 && !of.additives.empty())
      all[of.name + "_Additives"].push_back({{"SetName", "Add Set 1"}, {"SetList", "<VARNISH>"}, {"Add_Name0", "VARNISH"}, {"Add_Percent0", 10.0F}, {"Add_Name1", ""}});
  }
  return all;
}

}  // namespace vellumark::test
