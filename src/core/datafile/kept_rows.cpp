#include "core/datafile/kept_rows.h"

#include "core/base/text.h"

namespace vellumark {

const Table& ReturnedItems() {
  static const Table table = [] {
    Table kept = schema::JobRecords;
    kept.name = "MSysReturnedItems";
    kept.fields.push_back({"Line", FieldType::Long});
    kept.indexes = {{"Line"}};
    return kept;
  }();
  return table;
}

const Table& GoneLots() {
  static const Table table{
      "MSysGoneLots",
      {Field{"Database", FieldType::Text, 30, true}, Field{"Color_Name", FieldType::Text, 30, true},
       Field{"ItemType", FieldType::Byte}, Field{"LotRefID", FieldType::Long},
       Field{"LotNumber", FieldType::Text, 30, true}, Field{"LotPrice", FieldType::Single}},
      {{"Color_Name"}}};
  return table;
}

bool IsOfKeptRows(std::string_view table) {
  return EqualNoCase(table, ReturnedItems().name) || EqualNoCase(table, GoneLots().name);
}

std::vector<const Table*> JobTables(Database& file) {
  std::vector<const Table*> tables{&schema::JobRecords};
  if (file.TableExists(ReturnedItems().name)) tables.push_back(&ReturnedItems());
  return tables;
}

std::vector<const Table*> TablesOfJobStock(Database& file) {
  std::vector<const Table*> tables = JobTables(file);
  if (file.TableExists(GoneLots().name)) tables.push_back(&GoneLots());
  return tables;
}

}  // namespace vellumark
