#include <fmt/format.h>

#include <algorithm>
#include <functional>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/record.h"
#include "core/exchange/record_file.h"
#include "core/exchange/text_file.h"
#include "core/jobs/job_record.h"
#include "core/reports/batch_rows.h"
#include "core/reports/report_settings.h"
#include "core/session/rights.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Export Job Records";
constexpr std::int32_t kFirstItem = 1'000'000;  // numbers up to it are those of Batches

struct Column {
  std::string caption;
  std::function<std::string(const Statement&)> text;
  std::string unit = {};
  bool price = false;
  std::string chosenBy = {};  ///< another title by which the grid of Jobs knows it

  std::string Caption() const { return unit.empty() ? caption : fmt::format("{} ({})", caption, unit); }
};

// The fields that are read, by their places.
enum Place : int {
  JobNumber,
  ColorName,
  ColorCode,
  DatabaseName,
  BatchNo,
  Entered,
  Returned,
  Completed,
  Issued,
  Used,
  LotNumber,
  UnitCost,
  VOC,
  HAP,
  UserText,
  UserNumber = UserText + 6
};

std::string Columns() {
  std::string columns =
      "JobNumber, Color_Name, Color_Code, Database, BatchNo, Date_Entered, Date_Returned, Date_Completed, QtyIssued, "
      "QtyUsed, LotNumber, UnitCost, VOC, HAP";
  for (const char* word : {"UD_Text", "UD_Numeric"})
    for (int i = 0; i < kBatchUserFields; ++i) columns += ", " + schema::Numbered(word, i);
  return columns;
}

std::string DateOf(const Statement& row, int place) {
  const auto date = row.Date(place);
  return date ? date->DateText() : "";
}

std::string ItemText(const Statement& row) {
  const auto number = static_cast<std::int32_t>(row.Whole(BatchNo));
  return number > kFirstItem ? std::to_string(number) : BatchNoText(number);
}

std::vector<Column> AllColumns(const Session& session) {
  const int money = session.DecimalPlaces;
  const std::string unit(UnitName(session.UMI));
  const auto text = [](int place) { return [place](const Statement& row) { return row.Text(place); }; };
  const auto date = [](int place) { return [place](const Statement& row) { return DateOf(row, place); }; };
  const auto amount = [](int place) { return [place](const Statement& row) { return Fixed(row.Single(place), 3); }; };
  const auto total = [](int place, int decimals) {
    return [=](const Statement& row) { return Fixed(JobAmount(row.Single(Used), row.Single(place), decimals), decimals); };
  };
  std::vector<Column> columns{
      {"Job Number", text(JobNumber)},
      {"Color Name", text(ColorName)},
      {"Color Code", text(ColorCode)},
      {"Database", text(DatabaseName)},
      {"Batch ID", ItemText, {}, false, "Batch/Item"},
      {"Date Entered", date(Entered)},
      {"Date Returned", date(Returned)},
      {"Date Completed", date(Completed)},
      {"Qty Issued", amount(Issued), unit},
      {"Qty Used", amount(Used), unit},
      {"Lot Number", text(LotNumber)},
      {"Unit Cost", [cost = JobCostDecimals(session)](const Statement& row) { return Fixed(row.Single(UnitCost), cost); },
       {}, true},
      {"Total Cost", total(UnitCost, money), {}, true},
      {"Total VOCs", total(VOC, 3)},
      {"Total HAPs", total(HAP, 3)}};
  for (int i = 0; i < kBatchUserFields; ++i) columns.push_back({UserTextCaption(session, true, i), text(UserText + i)});
  for (int i = 0; i < kBatchUserFields; ++i) {
    const int decimals = UserNumberDecimals(session, true, i);
    columns.push_back({UserNumberCaption(session, true, i),
                       [i, decimals](const Statement& row) { return Fixed(row.Single(UserNumber + i), decimals); }});
  }
  return columns;
}

// A title of the settings, of whatever year: with its unit or without, a Batch under three names.
bool IsChosen(const Column& column, const std::vector<std::string>& chosen) {
  return std::ranges::any_of(chosen, [&](const std::string& title) {
    return EqualNoCase(title, column.caption) || EqualNoCase(title, column.Caption()) ||
           StartsWithNoCase(title, column.caption + " (") ||
           (!column.chosenBy.empty() && (EqualNoCase(title, column.chosenBy) || EqualNoCase(title, "Batch Number")));
  });
}

std::vector<Column> ColumnsFor(const Session& session, bool all) {
  std::vector<Column> columns = AllColumns(session);
  const std::vector<std::string> chosen = SplitColumnSet(GetSetting(session, setting::Columns.Of("JobRecord")));
  // Whose row it is stands on it in any case.
  const auto always = [](const Column& column) {
    return column.caption == "Job Number" || column.caption == "Color Name";
  };
  std::erase_if(columns, [&](const Column& column) {
    if (column.price && !SeenPrice(session, 0)) return true;
    return !all && !always(column) && !IsChosen(column, chosen);
  });
  return columns;
}

// A Job that begins with a number counts as that, so that 1001-A stands beside 1001.
std::optional<double> NumberOf(std::string_view job) {
  if (const auto number = ParseNumber(job)) return number;
  return ParseNumber(job.substr(0, job.find_first_not_of("0123456789")));
}

// Both ends as typed; numbers when both are.
struct JobSpan {
  std::string first;
  std::string last;
  std::optional<double> firstNumber;
  std::optional<double> lastNumber;

  bool Holds(std::string_view job) const {
    if (firstNumber && lastNumber) {
      const auto number = NumberOf(job);
      return number && *number >= *firstNumber && *number <= *lastNumber;
    }
    return CompareNoCase(job, first) >= 0 && CompareNoCase(job, last) <= 0;
  }
};

Result<JobSpan> SpanOf(const RecordRange& range) {
  JobSpan span{Trim(range.first), Trim(range.last), ParseNumber(range.first), ParseNumber(range.last)};
  if (span.first.empty() || span.last.empty())
    return Refuse("Invalid Job Number", "Please enter a valid Job Number.", span.first.empty() ? "First" : "Last");
  return span;
}

// The row numbers of what is wanted, by job.
Result<std::vector<std::int64_t>> FindRows(Session& session, const RecordRange& range) {
  std::vector<std::int64_t> found;
  if (range.ByNumber()) {
    const auto span = SpanOf(range);
    if (!span) return std::unexpected(span.error());
    struct Hit {
      std::optional<double> number;
      std::int64_t row;
    };
    std::vector<Hit> hits;
    Statement rows = session.File().Prepare("SELECT RowKey, JobNumber FROM JobRecords ORDER BY JobNumber, RowKey");
    while (rows.Step())
      if (span->Holds(rows.TextView(1))) hits.push_back({NumberOf(rows.TextView(1)), rows.Whole(0)});
    if (span->firstNumber && span->lastNumber)
      std::ranges::stable_sort(hits, {}, [](const Hit& hit) { return hit.number.value_or(0); });
    for (const Hit& hit : hits) found.push_back(hit.row);
    return found;
  }
  const auto days = DaysOf(range);
  if (!days) return std::unexpected(days.error());
  Statement rows = session.File().Prepare(
      "SELECT RowKey FROM JobRecords WHERE Date_Entered >= ?1 AND Date_Entered < ?2 ORDER BY JobNumber, RowKey");
  rows.Bind(1, days->from).Bind(2, days->before);
  while (rows.Step()) found.push_back(rows.Whole(0));
  return found;
}

}  // namespace

Result<RecordGrid> GatherJobRecords(Session& session, const RecordRange& range, bool allColumns) {
  const auto found = FindRows(session, range);
  if (!found) return std::unexpected(found.error());
  if (found->empty()) return Refuse(std::string(kTitle), "No Job Records were selected for export.");
  session.prompt.Tell(std::string(kTitle), fmt::format("{} Job {} are selected for export. Click OK to continue.",
                                                       found->size(), range.ByNumber() ? "Records" : "records"));
  const std::vector<Column> columns = ColumnsFor(session, allColumns);
  RecordGathering gathering(session, "Gathering Job Records ...", found->size());
  std::vector<std::string> captions;
  for (const Column& column : columns) captions.push_back(column.Caption());
  gathering.Row(std::move(captions));
  gathering.grid.captions = 1;
  Statement row = session.File().Prepare(fmt::format("SELECT {} FROM JobRecords WHERE RowKey = ?", Columns()));
  for (const std::int64_t number : *found) {
    row.Reset();
    if (row.Bind(1, number).Step()) {
      std::vector<std::string> cells;
      for (const Column& column : columns) cells.push_back(column.text(row));
      gathering.Row(std::move(cells));
    }
    if (!gathering.GoOn()) break;
  }
  return gathering.Finish(kTitle);
}

std::string JobExportName(const RecordRange& range) {
  return "Export Jobs - " + RangeText(range) + ".txt";
}

}  // namespace vellumark
