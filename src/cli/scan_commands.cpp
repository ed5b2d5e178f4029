#include <filesystem>
#include <memory>

#include "cli/frame.h"
#include "cli/stock_text.h"
#include "core/base/files.h"
#include "core/base/number.h"
#include "core/exchange/text_rows.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_record.h"
#include "core/labels/scan_step.h"
#include "core/labels/scan_undo.h"

namespace vellumark::cli {
namespace {

struct ScanOptions {
  std::string file;
  bool reprocess = false;
};

// The texts of a record, each under its tag.
struct ScanField {
  const char* key;
  std::optional<std::string> ScanRecord::*value;
};
constexpr ScanField kFields[] = {{"CN", &ScanRecord::CN}, {"CC", &ScanRecord::CC}, {"CT", &ScanRecord::CT},
                                 {"DB", &ScanRecord::DB}, {"LN", &ScanRecord::LN}, {"LL", &ScanRecord::LL},
                                 {"LC", &ScanRecord::LC}, {"JN", &ScanRecord::JN}};

// The item of the Job that was picked, by the number that the Job shows it with.
Json PickedItem(const Session& session, const ScanRecord& record) {
  const auto item = record.jobRow ? ReadJobRecord(session, *record.jobRow) : std::nullopt;
  return item ? Json(item->BatchNo) : Json();
}

Json RecordJson(const Session& session, const ScanRecord& record) {
  Json json;
  for (const ScanField& field : kFields) {
    json[field.key] = record.*field.value ? Json(*(record.*field.value)) : Json();
    if (field.key == std::string_view("DB")) json["LR"] = record.LR ? Json(*record.LR) : Json();
  }
  json["BatchNo"] = PickedItem(session, record);
  json["Qty"] = record.Qty ? Number(*record.Qty) : Json();
  json["Success"] = record.state == ScanRecord::State::Successful;
  json["Message"] = record.Message;
  json["Line"] = record.Line == 0 ? Json() : Json(record.Line);
  return json;
}

// A number that no item of the Job has picks a row that is not there, which the record is told when it is booked.
std::int64_t RowOfItem(const Session& session, const ScanRecord& record, std::int32_t number) {
  const auto item = FindJobItem(session, ReadJobNumber(record.JN.value_or("")), number, record.DB.value_or(""));
  return item ? item->row : 0;
}

// What an earlier run answered, with whatever was changed in it since.
Result<std::vector<ScanRecord>> ReadAnswer(const Session& session, const std::string& path) {
  std::vector<ScanRecord> records;
  try {
    for (const Json& json : Json::parse(TextOfAnyEncoding(ReadFileBytes(path)))) {
      ScanRecord record;
      for (const ScanField& field : kFields)
        if (json.contains(field.key) && !json[field.key].is_null())
          record.*field.value = json[field.key].get<std::string>();
      if (json.contains("LR") && !json["LR"].is_null()) record.LR = json["LR"].get<std::int32_t>();
      if (json.contains("Qty") && !json["Qty"].is_null()) record.Qty = json["Qty"].get<float>();
      record.Message = json.value("Message", "");
      if (json.contains("Line") && !json["Line"].is_null()) record.Line = json["Line"].get<std::int64_t>();
      record.state = json.at("Success").get<bool>() ? ScanRecord::State::Successful : ScanRecord::State::Failed;
      if (json.contains("BatchNo") && !json["BatchNo"].is_null())
        record.jobRow = RowOfItem(session, record, json["BatchNo"].get<std::int32_t>());
      records.push_back(std::move(record));
    }
  } catch (const Json::exception&) {
    return Refuse("Scan", path + " is no answer of an earlier scan: it is read as JSON where --reprocess is given.",
                  "FILE");
  }
  return records;
}

// What the scanner typed into a file.
Result<std::vector<ScanRecord>> ReadScan(const std::string& path) {
  const std::string text = TextOfAnyEncoding(ReadFileBytes(path));
  auto records = ParseScan(text);
  if (records.empty() && text.find_first_not_of(" \t\r\n") != std::string::npos)
    return Refuse("Scan", "No line of " + path + " is a code of a label or a quantity.", "FILE");
  return records;
}

Result<Json> ScanFile(Context& context, const ScanOptions& options) {
  const std::string path = std::filesystem::absolute(options.file).string();
  auto records = options.reprocess ? ReadAnswer(context.session, path) : ReadScan(path);
  if (!records) return std::unexpected(records.error());
  Json answer = Json::array();
  ProcessScan(context.session, *records);
  for (const ScanRecord& record : *records) {
    if (record.state != ScanRecord::State::Successful) context.exitStatus = ExitRefused;
    answer.push_back(RecordJson(context.session, record));
  }
  if (answer.empty()) context.text = "Nothing was scanned.\n";
  return answer;
}

}  // namespace

void AddScanCommand(CLI::App& stockNoun, Commands& commands) {
  auto* scan =
      stockNoun.add_subcommand("scan", "Book scanned lines: stock that is added, and ink that comes back from Jobs");
  const auto options = std::make_shared<ScanOptions>();
  scan->add_option("FILE", options->file, "What the scanner typed, a code or a quantity on each line")
      ->required()
      ->check(NotEmpty);
  scan->add_flag("--reprocess", options->reprocess,
                 "FILE is the JSON answer of an earlier scan, mended: what failed is booked, what was done is not "
                 "again. Of several "
                 "items of a Job that are alike, BatchNo is the number of the one that is meant");
  scan->footer("Each record is booked by itself. Exit status 1 when one was not, and why is told with it.");
  commands.Add(scan, Needs::Writable, [options](Context& context) { return ScanFile(context, *options); });

  auto* undo = stockNoun.add_subcommand("undo", "Take a scanned booking back by its line of the stock history");
  const auto line = std::make_shared<std::int64_t>(0);
  undo->add_option("LINE", *line, "The ID of the line")->required()->check(CLI::PositiveNumber);
  commands.Add(undo, Needs::Writable, [line](Context& context) -> Result<Json> {
    if (auto undone = UndoScan(context.session, *line); !undone) return std::unexpected(undone.error());
    return Json{{"Line", *line}, {"Undone", true}};
  });
}

}  // namespace vellumark::cli
