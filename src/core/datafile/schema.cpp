#include "core/datafile/schema.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/base/number.h"
#include "core/base/refusal.h"
#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr bool kZero = true;

Field Boolean(std::string name) {
  return {std::move(name), FieldType::Boolean};
}
Field Byte(std::string name) {
  return {std::move(name), FieldType::Byte};
}
Field Integer(std::string name) {
  return {std::move(name), FieldType::Integer};
}
Field Long(std::string name) {
  return {std::move(name), FieldType::Long};
}
Field Single(std::string name) {
  return {std::move(name), FieldType::Single};
}
Field Date(std::string name) {
  return {std::move(name), FieldType::Date};
}
Field Text(std::string name, int size, bool zero = false) {
  return {std::move(name), FieldType::Text, size, zero};
}
Field Memo(std::string name) {
  return {std::move(name), FieldType::Memo, 0, kZero};
}

using Fields = std::vector<Field>;

Fields operator+(Fields left, const Fields& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

// `field` once for each number from 0, the number behind its name.
Fields Family(const Field& field, int count) {
  Fields family;
  for (int n = 0; n < count; ++n) {
    family.push_back(field);
    family.back().name = schema::Numbered(field.name, n);
  }
  return family;
}

// All the fields for 0, then all for 1, and so on.
Fields Interleaved(const Fields& fields, int count) {
  Fields all;
  for (int n = 0; n < count; ++n)
    for (Field field : fields) {
      field.name = schema::Numbered(field.name, n);
      all.push_back(std::move(field));
    }
  return all;
}

Fields UserDefined() {
  return Family(Text("UD_Text", 30, kZero), 6) + Family(Single("UD_Numeric"), 6);
}

Fields GuideFields() {
  return {
      Text("Color_Guide", 30, kZero), Text("Page", 5, kZero), Byte("Row"), Byte("Red"), Byte("Green"), Byte("Blue")};
}

Fields LabFields(int noteSize) {
  return {
      Single("Lab_L"),       Single("Lab_a"),           Single("Lab_b"),           Single("Lab_D"),
      Single("Lab_Density"), Text("Lab_LS", 30, kZero), Text("Lab_PT", 30, kZero), Text("Lab_Note", noteSize, kZero)};
}

Table LotTable(std::string suffix) {
  // The index on name and reference finds a colour's lots, and holds its references in order, so that a free one is
  // found without reading a row; references repeat from colour to colour.
  return {
      std::move(suffix),
      {Long("LotRefID"), Text("LotCName", 30), Text("LotNumber", 30), Text("LotLoc", 30, kZero),
       Text("LotContID", 30, kZero), Date("LotDate"), Single("LotQty"), Single("LotPrice"), Boolean("LotConsignment")},
      {{"LotRefID"}, {"LotCName", "LotRefID"}}};
}

Table LabTable(std::string suffix) {
  return {std::move(suffix), Fields{Text("Color_Name", 30)} + LabFields(70), {{"Color_Name"}}};
}

}  // namespace

namespace schema {

std::string Numbered(std::string_view word, int number) {
  return fmt::format("{}{}", word, number);
}

const Table FileInfo{
    "FileInfo",
    {Byte("FileVersion"), Text("CurrentDB", 30, kZero), Memo("DBList"), Long("BatchNumber"), Long("ItemNumber"),
     Date("LastBackupDate"), Date("DayBeforeNextBackupDate"), Integer("DaysToRemindBackup")},
    {}};

const Table Designs{
    "Designs",
    Fields{Text("DesignID", 30), Text("Description", 80, kZero), Date("Created"), Date("LastModified"),
           Date("LastUsed"), Long("Impressions"), Single("Length"), Single("Width"), Memo("Notes"), Memo("IngSet")} +
        Interleaved({Text("IngName", 30, kZero), Text("IngCCode", 30, kZero), Byte("IngType"), Single("IngQty"),
                     Integer("IngPercent"), Text("IngDB", 15, kZero)},
                    kDesignSlots) +
        Fields{Memo("PhotoSet")},
    {{"DesignID"}}};

const Table Dispenser{"Dispenser",
                      {Text("Name", 30), Text("Manufacturer", 30), Text("Drive", 50), Text("Pathway", 200),
                       Boolean("Additives"), Boolean("Recycles"), Text("FileType", 5)},
                      {{"Name"}}};

const Table JobRecords{"JobRecords",
                       Fields{Text("JobNumber", 30),
                              Text("DesignID", 30, kZero),
                              Text("DesignDesc", 80, kZero),
                              Text("Color_Name", 30),
                              Text("Color_Code", 30, kZero),
                              Text("Database", 30),
                              Long("BatchNo"),
                              Byte("ItemType"),
                              Single("UnitCost"),
                              Single("VOC"),
                              Single("HAP"),
                              Long("LotRefID"),
                              Text("LotNumber", 30, kZero),
                              Text("LotLoc", 30, kZero),
                              Text("LotContID", 30, kZero),
                              Date("LotDate"),
                              Single("QtyIssued"),
                              Single("QtyUsed"),
                              Date("Date_Entered"),
                              Date("Date_Returned"),
                              Date("Date_Completed")} +
                           UserDefined(),
                       {{"JobNumber"}, {"Color_Name"}, {"Date_Entered"}, {"JobNumber", "Date_Entered"}, {"BatchNo"}, {"DesignID"}}};

const Table Users{"Users",
                  {Text("Username", 15), Text("Password", 15), Boolean("IsAdmin"), Byte("Edit_MasterFormula"),
                   Byte("Edit_Costs"), Byte("Edit_VOCHAP"), Byte("DF_BackupRestore"), Byte("DF_AdvancedMenu"),
                   Byte("DF_OptionsMenu"), Byte("DB_NewRenameDel"), Byte("DBToolsMenu"), Byte("DF_ExportDF_Excel")},
                  {}};

const Table Basic{"_Basic",
                  Fields{Text("Color_Name", 30), Text("Color_Code", 30, kZero), Single("Inventory"), Single("Reorder"),
                         Single("PurchaseCost"), Date("Date_Entered"), Date("LastConsumed"), Memo("Notes"),
                         Text("Inv_Note", 30, kZero), Long("IngSort"), Boolean("Additive"), Single("VOC"),
                         Single("HAP"), Long("LotRefID")} +
                      GuideFields(),
                  {{"Color_Name"}, {"Color_Code"}, {"Reorder", "Inventory"}},
                  "Color_Name"};
const Table BasicLotInv = LotTable("_Basic_LotInv");
const Table BasicLab = LabTable("_Basic_LAB");

// The index on Color_Set is narrow beside the row: who uses a colour, and which inks may be recycled into a recipe, is
// answered from it without touching the table. So is which formulas have an Additive Set.
const Table Mix{"_Mix",
                Fields{Text("Color_Name", 30)} + Family(Text("BC", 30, kZero), kIngredientSlots) +
                    Family(Single("BQ"), kIngredientSlots) +
                    Fields{Text("Color_Code", 30, kZero), Single("Inventory"), Single("Reorder"),
                           Single("PurchaseCost"), Single("BasicCost"), Boolean("Recycle"), Date("Date_Entered"),
                           Date("LastModified"), Date("LastProduced"), Memo("Color_Set"), Memo("Notes"),
                           Text("Inv_Note", 30, kZero), Text("AddSetName", 30, kZero), Single("VOC"),
                           Single("BasicVOC"), Single("HAP"), Single("BasicHAP"), Long("LotRefID")} +
                    GuideFields(),
                {{"Color_Name"}, {"Color_Code"}, {"Color_Set"}, {"AddSetName", "Color_Name"}, {"Reorder", "Inventory"}},
                "Color_Name"};
const Table MixLotInv = LotTable("_Mix_LotInv");
const Table MixLab = LabTable("_Mix_LAB");

const Table Batch{"_Batch",
                  Fields{Text("Color_Name", 30), Single("Quantity")} + Family(Text("IngName", 30, kZero), kBatchLines) +
                      Family(Single("IngQty"), kBatchLines) + Family(Byte("IngType"), kBatchLines) +
                      Fields{Memo("Notes"),
                             Date("Date_Entered"),
                             Long("BatchNo"),
                             Single("PercentRec"),
                             Byte("UMF"),
                             Text("Color_Code", 30, kZero),
                             Memo("IngNotes"),
                             Single("CostOfMixes"),
                             Single("CostOfBasics"),
                             Single("FixedCostOfBatch"),
                             Single("FixedCostPerUnit"),
                             Single("MarkupPercent"),
                             Byte("MixCostOption"),
                             Byte("CostModelType"),
                             Text("JobNumber", 30, kZero),
                             Text("ShortNote", 30, kZero),
                             Text("Username", 15, kZero),
                             Single("ActualQuantity"),
                             Long("ClickedIndex"),
                             Single("Roundoff"),
                             Long("LargestAmountIndex")} +
                      UserDefined() +
                      Fields{Text("LotNumber", 30, kZero), Long("LotRefID"), Single("VOC"), Single("HAP"),
                             Byte("MixVOCModelType"), Byte("MixHAPModelType"), Boolean("Complete")} +
                      LabFields(30),
                  {{"Color_Name"}, {"Date_Entered"}, {"BatchNo"}}};

const Table BatchLotInv{"_Batch_LotInv",
                        {Long("BatchNo"), Date("DateEntered"), Text("IngName", 30), Byte("IngType"),
                         Integer("LotRefID"), Text("LotNumber", 30), Text("LotLoc", 30, kZero),
                         Text("LotContID", 30, kZero), Date("LotDate"), Single("LotQty"), Single("LotPrice")},
                        {{"BatchNo"}, {"IngName"}}};

const Table Additives{"_Additives",
                      Fields{Text("SetName", 30, kZero), Memo("SetList")} +
                          Family(Text("Add_Name", 30, kZero), kSetSlots) + Family(Single("Add_Percent"), kSetSlots),
                      {{"SetName"}},
                      "SetName"};

const Table Info{
    "_Info", {Text("FullName", 50), Memo("Disclaimer"), Memo("TradeMark"), Text("TemplateFile", 30, kZero)}, {}};

// What the scale said of a line of a Batch: `BeginningWeight` was wanted, `EndingWeight` was poured, in the Batch's unit.
const Table BatchScaleResults{
    "_BatchScaleResults",
    {Long("BatchID"), Text("ColorName", 30), Single("BeginningWeight"), Single("EndingWeight"), Byte("IngType")},
    {{"BatchID"}, {"ColorName"}}};

// The system's own. A line of the history has borne its number under this name from the first.
const Table StockHistory{
    "MSysStockHistory",
    {Date("Moment"), Text("Username", 15, kZero), Integer("Source"), Byte("Kind"), Text("Database", 15, kZero),
     Text("Color_Name", 30, kZero), Long("LotRefID"), Text("LotNumber", 30, kZero), Single("Change"), Single("Result"),
     Memo("Document"), Memo("Reason")},
    {},
    "",
    "ID"};
const Table OpenBatch{"MSysOpenBatch",
                      {Text("DatabaseName", 15), Long("BatchNo"), Byte("Kind"), Text("Color_Name", 30),
                       Long("ColorRow"), Long("LotRefID"), Text("LotNumber", 30, kZero), Single("Quantity"),
                       Single("StoodBefore"), Single("StoodAfter"), Memo("Owner")},
                      {}};
const Table PendingRollUps{"MSysPendingRollUps",
                           {Text("DatabaseName", 15), Boolean("Cost"), Boolean("VOC"), Boolean("HAP")},
                           {},
                           "DatabaseName"};
const Table LoginFailures{"MSysLoginFailures", {Text("Username", 15), Long("Failures")}, {}, "Username"};
const Table NewNames{"MSysNewNames", {Text("OldName", 30), Text("NewName", 30)}, {}, "OldName"};

const std::vector<const Table*>& Global() {
  static const std::vector<const Table*> tables{&FileInfo, &Designs, &Dispenser, &JobRecords};
  return tables;
}

const std::vector<const Table*>& PerDatabase() {
  static const std::vector<const Table*> tables{&Basic, &BasicLotInv, &BasicLab,  &Mix,  &MixLotInv,        &MixLab,
                                                &Batch, &BatchLotInv, &Additives, &Info, &BatchScaleResults};
  return tables;
}

}  // namespace schema

int Table::Find(std::string_view field) const {
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (EqualNoCase(fields[i].name, field)) return static_cast<int>(i);
  return -1;
}

std::string TableName(std::string_view database, const Table& table) {
  return table.name.starts_with('_') ? std::string(database) + table.name : table.name;
}

std::string QuotedTable(std::string_view database, const Table& table) {
  return Quoted(TableName(database, table));
}

namespace {

[[noreturn]] void Unfit(const Field& field, std::string_view table, const Value& value, std::string_view why) {
  std::string shown = value.Text();
  if (CharCount(shown) > 60) shown = Left(shown, 57) + "...";
  throw BadValue(fmt::format("The field {}.{} cannot hold \"{}\": {}", table, field.name, shown, why));
}

Value FittedWhole(const Field& field, std::string_view table, const Value& value, std::int64_t low, std::int64_t high) {
  if (value.IsText()) Unfit(field, table, value, "it is not a whole number");
  if (value.IsNumber() && (value.Number() != std::floor(value.Number()) || std::fabs(value.Number()) > 9e15))
    Unfit(field, table, value, "it is not a whole number");
  const std::int64_t whole = value.Whole();
  if (whole < low || whole > high) Unfit(field, table, value, fmt::format("the range is {} to {}", low, high));
  return whole;
}

Value FittedSingle(const Field& field, std::string_view table, const Value& value) {
  if (value.IsText()) Unfit(field, table, value, "it is not a number");
  const double number = value.Number();
  if (!std::isfinite(number) || std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max()))
    Unfit(field, table, value, "it is beyond the range of a Single");
  return static_cast<double>(static_cast<float>(number));
}

Value FittedText(const Field& field, std::string_view table, const Value& value) {
  if (!value.IsText()) return FittedText(field, table, Value(value.Text()));
  const std::string& text = std::get<std::string>(value.Held());
  if (text.empty() && !field.zeroLength) Unfit(field, table, value, "it may not be empty");
  if (!IsUtf8(text) || text.find('\0') != std::string::npos) Unfit(field, table, value, "it is not a text");
  if (field.type == FieldType::Text && text.size() > static_cast<std::size_t>(field.size) &&
      CharCount(text) > static_cast<std::size_t>(field.size))
    Unfit(field, table, value, fmt::format("it has {} characters, the limit is {}", CharCount(text), field.size));
  return value;
}

}  // namespace

Value FittedValue(const Field& field, std::string_view table, const Value& value) {
  if (value.IsNull()) return value;
  switch (field.type) {
    case FieldType::Boolean:
      if (value.IsText()) Unfit(field, table, value, "it is neither true nor false");
      return value.Number() != 0 ? 1 : 0;
    case FieldType::Byte:
      return FittedWhole(field, table, value, 0, 255);
    case FieldType::Integer:
      return FittedWhole(field, table, value, -32768, 32767);
    case FieldType::Long:
      return FittedWhole(field, table, value, std::numeric_limits<std::int32_t>::min(),
                         std::numeric_limits<std::int32_t>::max());
    case FieldType::Single:
      return FittedSingle(field, table, value);
    case FieldType::Date: {
      const auto date = value.Date();
      if (!date) Unfit(field, table, value, "it is not a date");
      return *date;
    }
    default:
      return FittedText(field, table, value);
  }
}

std::vector<std::string> MissingFields(Database& file, std::string_view name, const Table& table) {
  const std::vector<std::string> present = file.StoredFields(name);
  std::vector<std::string> missing;
  for (const Field& field : table.fields)
    if (std::ranges::none_of(present, [&](const std::string& stored) { return EqualNoCase(stored, field.name); }))
      missing.push_back(field.name);
  return missing;
}

std::vector<std::string> MissingParts(Database& file, const std::vector<std::string>& databases) {
  std::vector<std::string> missing;
  const auto check = [&](const std::string& name, const Table& table) {
    if (!file.TableExists(name)) {
      missing.push_back("table " + name);
      return;
    }
    for (const std::string& field : MissingFields(file, name, table)) missing.push_back(fmt::format("field {}.{}", name, field));
  };
  for (const Table* table : schema::Global()) check(table->name, *table);
  for (const std::string& database : databases)
    for (const Table* table : schema::PerDatabase()) check(TableName(database, *table), *table);
  return missing;
}

}  // namespace vellumark
