#include "core/datafile/photo_steps.h"

#include "core/datafile/schema.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

constexpr int kMostName = 250;

// Bytes stand in it as a text, two characters of hexadecimal digits each: a text of the Data File holds characters.
const Table& Layout() {
  static const Table table{
      "MSysPhotoSteps",
      {Field{"Kind", FieldType::Byte}, Field{"Name", FieldType::Text, kMostName, true},
       Field{"Source", FieldType::Text, kMostName, true}, Field{"Bytes", FieldType::Memo, 0, true}},
      {}};
  return table;
}

constexpr std::string_view kDigits = "0123456789abcdef";

std::string Hex(const std::string& bytes) {
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += kDigits[value >> 4U];
    text += kDigits[value & 15U];
  }
  return text;
}

std::string Unhex(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i + 1 < text.size(); i += 2)
    bytes += static_cast<char>((kDigits.find(text[i]) << 4U) | kDigits.find(text[i + 1]));
  return bytes;
}

}  // namespace

void AddPhotoStep(Database& file, const PhotoStep& step) {
  Transaction transaction(file);
  if (!file.TableExists(Layout().name)) file.CreateTable(Layout().name, Layout());
  InsertRow(file, Layout(), Layout().name,
            {{"Kind", static_cast<int>(step.kind)},
             {"Name", step.name},
             {"Source", step.source},
             {"Bytes", Hex(step.bytes)}});
  transaction.Commit();
}

std::optional<PhotoStep> NextPhotoStep(Database& file) {
  if (!file.TableExists(Layout().name)) return std::nullopt;
  Statement row = file.Prepare("SELECT RowKey, Kind, Name, Source, Bytes FROM MSysPhotoSteps ORDER BY RowKey LIMIT 1");
  if (!row.Step()) return std::nullopt;
  return PhotoStep{row.Whole(0), static_cast<PhotoStep::Kind>(row.Whole(1)), row.Text(2), row.Text(3),
                   Unhex(row.TextView(4))};
}

void PhotoStepDone(Database& file, const PhotoStep& step) {
  Transaction transaction(file);
  file.Prepare("DELETE FROM MSysPhotoSteps WHERE RowKey = ?").Bind(1, step.key).Run();
  transaction.Commit();
}

}  // namespace vellumark
