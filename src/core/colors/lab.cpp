#include "core/colors/lab.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

const Table& LabTableOf(ColorKind kind) {
  return kind == ColorKind::Mix ? schema::MixLab : schema::BasicLab;
}

std::vector<std::string> Known(const Session& session, ColorKind kind, std::string_view field) {
  std::vector<std::string> values;
  Statement row = session.File().Prepare(fmt::format("SELECT DISTINCT {0} FROM {1} WHERE {0} <> '' ORDER BY {0}", field,
                                                     Quoted(session.Table(LabTableOf(kind)))));
  while (row.Step()) values.push_back(row.Text(0));
  return values;
}

}  // namespace

Result<LabReading> ReadLabEntry(const Session& session, const LabEntry& entry) {
  LabReading reading;
  struct Number {
    const std::string& text;
    float& target;
    std::string_view field;
  };
  const std::array<Number, 5> numbers{{{entry.L, reading.Lab_L, "txt_L"},
                                       {entry.a, reading.Lab_a, "txt_a"},
                                       {entry.b, reading.Lab_b, "txt_b"},
                                       {entry.D, reading.Lab_D, "txt_D"},
                                       {entry.density, reading.Lab_Density, "txt_Density"}}};
  for (const Number& number : numbers) {
    const auto value = ReadAmount(session, AmountKey::Lab, number.text, number.field);
    if (!value) return std::unexpected(value.error());
    number.target = *value;
  }
  reading.Lab_LS = Trim(entry.lightSource);
  reading.Lab_PT = Trim(entry.substrate);
  reading.Lab_Note = Trim(entry.note);
  return reading;
}

std::vector<LabReading> ReadLabReadings(const Session& session, ColorKind kind, std::string_view name) {
  std::vector<LabReading> readings;
  Statement row = session.File().Prepare(fmt::format(
      "SELECT Lab_L, Lab_a, Lab_b, Lab_D, Lab_Density, Lab_LS, Lab_PT, Lab_Note FROM {} WHERE Color_Name = ? "
      "ORDER BY RowKey",
      Quoted(session.Table(LabTableOf(kind)))));
  row.Bind(1, name);
  while (row.Step())
    readings.push_back({row.Single(0), row.Single(1), row.Single(2), row.Single(3), row.Single(4), row.Text(5),
                        row.Text(6), row.Text(7)});
  return readings;
}

void WriteLabReadings(Session& session, ColorKind kind, std::string_view name,
                      const std::vector<LabReading>& readings) {
  const Table& table = LabTableOf(kind);
  const std::string tableName = session.Table(table);
  Transaction transaction(session.File());
  session.File().Prepare("DELETE FROM " + Quoted(tableName) + " WHERE Color_Name = ?").Bind(1, name).Run();
  RowWriter writer(session.File(), table, tableName,
                   {"Color_Name", "Lab_L", "Lab_a", "Lab_b", "Lab_D", "Lab_Density", "Lab_LS", "Lab_PT", "Lab_Note"});
  for (const LabReading& reading : readings) {
    writer.Set(0, name).Set(1, reading.Lab_L).Set(2, reading.Lab_a).Set(3, reading.Lab_b).Set(4, reading.Lab_D);
    writer.Set(5, reading.Lab_Density).Set(6, reading.Lab_LS).Set(7, reading.Lab_PT).Set(8, reading.Lab_Note);
    writer.Insert();
  }
  transaction.Note({kind == ColorKind::Mix ? Change::Kind::Mix : Change::Kind::Basic, session.CurrentDatabase,
                    std::string(name), Change::What::Updated, ""});
  transaction.Commit();
}

std::vector<std::string> KnownLightSources(const Session& session, ColorKind kind) {
  return Known(session, kind, "Lab_LS");
}

std::vector<std::string> KnownSubstrates(const Session& session, ColorKind kind) {
  return Known(session, kind, "Lab_PT");
}

}  // namespace vellumark
