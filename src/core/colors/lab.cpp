#include "core/colors/lab.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

std::vector<std::string> Known(const Session& session, ColorKind kind, std::string_view field) {
  std::vector<std::string> values;
  Statement row = session.File().Prepare(fmt::format("SELECT DISTINCT {0} FROM {1} WHERE {0} <> '' ORDER BY {0}", field,
                                                     session.QuotedTable(LabTable(kind))));
  while (row.Step()) values.push_back(row.Text(0));
  return values;
}

}  // namespace

const FieldMap<LabReading>& LabFields() {
  using R = LabReading;
  const auto number = [](const char* caption, const char* control) {
    return FieldTraits{.use = FieldUse::Typed, .amount = AmountKey::Lab, .caption = caption, .control = control};
  };
  const auto text = [](const char* caption) { return FieldTraits{.use = FieldUse::Typed, .caption = caption}; };
  static const FieldMap<R> fields = FieldMap<R>()
                                        .Add("Lab_L", &R::Lab_L, number("L", "txt_L"))
                                        .Add("Lab_a", &R::Lab_a, number("a", "txt_a"))
                                        .Add("Lab_b", &R::Lab_b, number("b", "txt_b"))
                                        .Add("Lab_D", &R::Lab_D, number("Delta", "txt_D"))
                                        .Add("Lab_Density", &R::Lab_Density, number("Density", "txt_Density"))
                                        .Add("Lab_LS", &R::Lab_LS, text("Light Source"))
                                        .Add("Lab_PT", &R::Lab_PT, text("Substrate"))
                                        .Add("Lab_Note", &R::Lab_Note, text("Lab Note"));
  return fields;
}

LabEntry LabTexts(const Session& session, const LabReading& reading) {
  LabEntry texts;
  for (std::size_t place = 0; const RecordField& field : LabFields()) {
    const Value value = field.ValueIn(&reading);
    texts.at(place++) = field.amount ? AmountText(session, *field.amount, value.Single()) : value.Text();
  }
  return texts;
}

Result<LabReading> ReadLabEntry(const Session& session, const LabEntry& entry) {
  LabReading reading;
  for (std::size_t place = 0; const RecordField& field : LabFields()) {
    const std::string& typed = entry.at(place++);
    if (field.amount) {
      const auto value = ReadAmount(session, *field.amount, typed, field.Control());
      if (!value) return std::unexpected(value.error());
      field.Single(&reading) = *value;
    } else {
      field.Text(&reading) = Trim(typed);
    }
  }
  return reading;
}

std::vector<LabReading> ReadLabReadings(const Session& session, ColorKind kind, std::string_view name) {
  std::vector<LabReading> readings;
  Statement row = session.File().Prepare(fmt::format("SELECT {} FROM {} WHERE Color_Name = ? ORDER BY RowKey",
                                                     LabFields().Columns(), session.QuotedTable(LabTable(kind))));
  row.Bind(1, name);
  while (row.Step()) LabFields().Read(row, 0, readings.emplace_back());
  return readings;
}

void WriteLabReadings(Session& session, ColorKind kind, std::string_view name,
                      const std::vector<LabReading>& readings) {
  const Table& table = LabTable(kind);
  const std::string tableName = session.Table(table);
  Transaction transaction(session.File());
  session.File().Prepare("DELETE FROM " + Quoted(tableName) + " WHERE Color_Name = ?").Bind(1, name).Run();
  for (const LabReading& reading : readings) {
    std::vector<Cell> cells = LabFields().Cells(reading, {FieldUse::Typed});
    cells.emplace_back("Color_Name", name);
    InsertRow(session.File(), table, tableName, cells);
  }
  transaction.Note({ChangeKind(kind), session.CurrentDatabase, std::string(name), Change::What::Updated, ""});
  transaction.Commit();
}

std::vector<std::string> KnownLightSources(const Session& session, ColorKind kind) {
  return Known(session, kind, "Lab_LS");
}

std::vector<std::string> KnownSubstrates(const Session& session, ColorKind kind) {
  return Known(session, kind, "Lab_PT");
}

}  // namespace vellumark
