#include <array>

#include "core/reports/batch_rows.h"
#include "core/reports/find.h"

namespace vellumark {
namespace {

using Special = FindField::Special;

std::vector<std::string> Slots(std::string_view word, int count) {
  std::vector<std::string> columns;
  for (int i = 0; i < count; ++i) columns.push_back(schema::Numbered(word, i));
  return columns;
}

FindField Text(std::string caption, std::string column) {
  return {std::move(caption), FindKind::Text, {std::move(column)}};
}
FindField Name(std::string caption = "Color Name") {
  return {std::move(caption), FindKind::Text, {"Color_Name"}, 0, Special::ColorName};
}
FindField Number(std::string caption, std::string column, int decimals = 3, Special special = Special::None) {
  return {std::move(caption), FindKind::Number, {std::move(column)}, decimals, special};
}
FindField Date(std::string caption, std::string column) {
  return {std::move(caption), FindKind::Date, {std::move(column)}};
}
FindField Flag(std::string caption, std::string column) {
  return {std::move(caption), FindKind::Flag, {std::move(column)}};
}

void AddUserFields(const Session& session, bool job, std::vector<FindField>& fields) {
  for (int i = 0; i < kBatchUserFields; ++i)
    fields.push_back(Text(UserTextCaption(session, job, i), schema::Numbered("UD_Text", i)));
  for (int i = 0; i < kBatchUserFields; ++i)
    fields.push_back(Number(UserNumberCaption(session, job, i), schema::Numbered("UD_Numeric", i),
                            UserNumberDecimals(session, job, i)));
}

std::vector<FindField> ColorFields(const Session& session, bool mix) {
  std::vector<FindField> fields{Name(), Text("Color Code", "Color_Code")};
  if (mix) {
    fields.push_back({"Ingredients", FindKind::Text, Slots("BC", schema::kIngredientSlots)});
    fields.push_back(Text("Additive Set", "AddSetName"));
  }
  fields.push_back(Number("Inventory", "Inventory", 3, Special::WithLots));
  fields.push_back({"Lot Number", FindKind::Text, {}, 0, Special::LotsOfColor});
  fields.push_back(Number("Reorder", "Reorder"));
  if (session.Perm_Costs != 0) {
    fields.push_back(Number("Purchase Cost", "PurchaseCost", session.DecimalPlaces));
    if (mix) fields.push_back(Number("Basic Cost", "BasicCost", session.DecimalPlaces));
  }
  fields.push_back(Number("VOC", "VOC"));
  fields.push_back(Number("HAP", "HAP"));
  fields.push_back(mix ? Flag("Recyclable", "Recycle") : Flag("Additive", "Additive"));
  fields.push_back(Date("Date Entered", "Date_Entered"));
  if (mix) fields.push_back(Date("Last Modified", "LastModified"));
  fields.push_back(mix ? Date("Last Batch", "LastProduced") : Date("Last Consumed", "LastConsumed"));
  fields.push_back(Text("Inventory Note", "Inv_Note"));
  fields.push_back(Text("Notes", "Notes"));
  return fields;
}

std::vector<FindField> FieldsOfBatches(const Session& session) {
  std::vector<FindField> fields{Name(),
                                Number("Batch ID #", "BatchNo", 0),
                                Text("Batch Lot Num.", "LotNumber"),
                                {"Ing Lot Num.", FindKind::Text, {}, 0, Special::LotsOfBatch},
                                Number("Quantity", "ActualQuantity", 3, Special::InBatchUnit),
                                {"Ingredients", FindKind::Text, Slots("IngName", schema::kBatchLines)},
                                Text("Job Number", "JobNumber"),
                                Text("Short Note", "ShortNote"),
                                Text("Username", "Username"),
                                Number("HAPs - Batch", "HAP"),
                                Number("VOCs - Batch", "VOC"),
                                {"% Recycled", FindKind::Percent, {"PercentRec"}, 4},
                                Date("Date Entered", "Date_Entered"),
                                Text("Notes", "Notes")};
  AddUserFields(session, false, fields);
  return fields;
}

std::vector<FindField> JobFields(const Session& session) {
  std::vector<FindField> fields{Text("Job Number", "JobNumber"),
                                Text("Design ID", "DesignID"),
                                Text("Design Desc", "DesignDesc"),
                                Name(),
                                Text("Color Code", "Color_Code"),
                                Number("Batch/Item", "BatchNo", 0),
                                Text("Lot Number", "LotNumber"),
                                Number("Qty Issued", "QtyIssued"),
                                Number("Qty Used", "QtyUsed"),
                                Number("VOC", "VOC"),
                                Number("HAP", "HAP"),
                                Date("Date Entered", "Date_Entered"),
                                Date("Date Returned", "Date_Returned"),
                                Date("Date Completed", "Date_Completed")};
  if (session.Perm_Costs != 0) fields.push_back(Number("Unit Cost", "UnitCost", session.DecimalPlaces));
  AddUserFields(session, true, fields);
  return fields;
}

std::vector<FindField> DesignFields() {
  return {Text("Design ID", "DesignID"),
          Text("Description", "Description"),
          {"Ingredients", FindKind::Text, Slots("IngName", schema::kDesignSlots)},
          Number("Impressions", "Impressions", 0),
          Number("Length", "Length"),
          Number("Width", "Width"),
          Date("Created", "Created"),
          Date("Last Modified", "LastModified"),
          Date("Last Used", "LastUsed"),
          Text("Notes", "Notes")};
}

}  // namespace

std::vector<std::string_view> FindComparisons(FindKind kind) {
  if (kind == FindKind::Text) return {"is equal to", "contains"};
  if (kind == FindKind::Flag) return {"="};
  return {"=", ">=", "<="};
}

std::vector<FindField> FindFields(const Session& session, FindSubject subject) {
  switch (subject) {
    case FindSubject::Basic:
      return ColorFields(session, false);
    case FindSubject::Mix:
      return ColorFields(session, true);
    case FindSubject::Batch:
      return FieldsOfBatches(session);
    case FindSubject::Job:
      return JobFields(session);
    default:
      return DesignFields();
  }
}

}  // namespace vellumark
