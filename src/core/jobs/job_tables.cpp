#include "core/jobs/job_tables.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/jobs/designs.h"
#include "core/jobs/photo_library.h"
#include "core/session/rights.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

std::string InUnit(const Session& session, std::string_view caption) {
  return fmt::format("{} ({})", caption, UnitName(session.UMI));
}

// A figure that is a price, for those who may see it.
TableValue Money(const Session& session, TableValue amount) {
  return SeenBy(session).prices ? std::move(amount) : TableValue();
}

double Returned(const JobRecord& record) {
  return RoundTo(RoundTo(record.QtyIssued, 3) - RoundTo(record.QtyUsed, 3), 3);
}

void AddAmounts(TableOf<JobRecord>& table, const Session& session, bool totals) {
  const int decimals = session.DecimalPlaces;
  const auto sum = [&] {
    if (totals) table.Sum();
  };
  table.Add(
      "", [&session](const JobRecord& r) { return Money(session, r.UnitCost); }, "Unit Cost", Format::Money,
      JobCostDecimals(session));
  table.Add(
      "",
      [&session, decimals](const JobRecord& r) { return Money(session, JobAmount(r.QtyUsed, r.UnitCost, decimals)); },
      "Total Cost", Format::Money, decimals);
  sum();
  table.Add("", &JobRecord::VOC, "VOC");
  table.Add(
      "", [](const JobRecord& r) { return JobAmount(r.QtyUsed, r.VOC, 3); }, "Total VOCs");
  sum();
  table.Add("", &JobRecord::HAP, "HAP");
  table.Add(
      "", [](const JobRecord& r) { return JobAmount(r.QtyUsed, r.HAP, 3); }, "Total HAPs");
  sum();
}

struct JobLine {
  std::string JobNumber;
  std::int64_t items = 0;
  std::vector<JobRecord> rows;  // of this job alone, while it is read
  JobTotals totals;
  std::optional<DateTime> entered;
  std::optional<DateTime> completed;
};

void Finish(const Session& session, JobLine& line) {
  line.items = static_cast<std::int64_t>(line.rows.size());
  line.totals = TotalsOf(session, line.rows);
  for (const JobRecord& row : line.rows) {
    if (row.Date_Entered && (!line.entered || *row.Date_Entered < *line.entered)) line.entered = row.Date_Entered;
    if (row.Date_Completed && (!line.completed || *line.completed < *row.Date_Completed))
      line.completed = row.Date_Completed;
  }
}

}  // namespace

TableOf<JobRecord> JobColumns(const Session& session) {
  TableOf<JobRecord> table;
  table.Add("", &JobRecord::JobNumber, "Job Number")
      .Add("", &JobRecord::DesignID, "Design ID")
      .Add("", &JobRecord::DesignDesc, "Design Desc")
      .Add("", &JobRecord::Color_Name, "Color Name")
      .Add("", &JobRecord::Color_Code, "Color Code")
      .Add("", &JobRecord::Database, "Database")
      .Add("", &JobRecord::BatchNo, "Batch/Item", Format::Number)
      .Add("", &JobRecord::Date_Entered, "Date Entered", Format::Date)
      .Add("", &JobRecord::Date_Returned, "Date Returned", Format::Date)
      .Add("", &JobRecord::QtyIssued, InUnit(session, "Qty Issued"))
      .Add("", &JobRecord::QtyUsed, InUnit(session, "Qty Used"))
      .Large()
      .Total("Totals")
      .Add("", &JobRecord::LotNumber, "Lot Number")
      .Add("", &JobRecord::LotLoc, "Lot Location")
      .Add("", &JobRecord::LotContID, "Lot Cont. ID")
      .Add("", &JobRecord::LotDate, "Lot Date", Format::Date);
  AddAmounts(table, session, true);
  for (int i = 0; i < kJobUserFields; ++i)
    table.Add(
        schema::Numbered("UD_Text", i), [i](const JobRecord& r) { return r.UD_Text.at(static_cast<std::size_t>(i)); },
        GetSetting(session, setting::JobCustomTextLabelCaption[i]));
  for (int i = 0; i < kJobUserFields; ++i)
    table.Add(
        schema::Numbered("UD_Numeric", i),
        [i](const JobRecord& r) { return r.UD_Numeric.at(static_cast<std::size_t>(i)); },
        GetSetting(session, setting::JobCustomNumericLabelCaption[i]), Format::Amount,
        GetSetting(session, setting::Jobs_UDNum_Format[i]));
  return table;
}

TableOf<JobRecord> JobRowColumns(const Session& session) {
  TableOf<JobRecord> table;
  JobFields().AddColumns(table, SeenBy(session));
  return table;
}

ListTable ListJobs(const Session& session) {
  return TableOf<JobLine>()
      .Add("JobNumber", &JobLine::JobNumber, "Job Number")
      .Add("Items", &JobLine::items, "Job Items")
      .Add(
          "TotalQtyUsed", [](const JobLine& line) { return line.totals.QtyUsed; }, InUnit(session, "Qty Used"))
      .Add(
          "TotalCost", [&session](const JobLine& line) { return Money(session, line.totals.Cost); }, "Total Cost",
          Format::Money, session.DecimalPlaces)
      .Add("Date_Entered", &JobLine::entered, "Date Entered", Format::Date)
      .Add("Date_Completed", &JobLine::completed, "Date Completed", Format::Date)
      .Leads([](const JobLine& line) {
        return RowTarget{.kind = RowTarget::Kind::Job, .name = line.JobNumber};
      })
      .Of([&session](const std::function<bool(const JobLine&)>& take) {
        JobLine line;
        bool more = true;
        ForEachJobRecord(session, "1 = 1", {}, "JobNumber, Date_Entered", [&](const JobRecord& record) {
          if (!line.rows.empty() && !EqualNoCase(line.JobNumber, record.JobNumber)) {
            Finish(session, line);
            more = take(line);
            line = {};
          }
          if (line.rows.empty()) line.JobNumber = record.JobNumber;
          line.rows.push_back(record);
          return more;
        });
        if (!more || line.rows.empty()) return;
        Finish(session, line);
        take(line);
      });
}

std::vector<OutOnJob> ReadOut(const Session& session) {
  Statement rows = session.File().Prepare(
      fmt::format("SELECT JobNumber, Database, Color_Name, LotNumber, LotContID, QtyUsed, Date_Entered, ItemType, "
                  "LotRefID FROM {} WHERE Date_Completed IS NULL AND QtyUsed > 0 ORDER BY Date_Entered, RowKey",
                  Quoted(schema::JobRecords.name)));
  const std::int64_t today = session.clock.Today().DayNumber();
  std::unordered_map<std::string, std::size_t> places;
  std::vector<OutOnJob> lines;
  while (rows.Step()) {
    OutOnJob line{rows.Text(0), rows.Text(1), rows.Text(2), rows.Text(3), rows.Text(4), 0, rows.Date(6), 0};
    line.days = today - (line.Date_Entered ? line.Date_Entered->DayNumber() : 0);
    const std::string key = Upper(fmt::format("{}\t{}\t{}\t{}\t{}\t{}\t{}", line.JobNumber, line.Database, line.Color_Name,
                                              rows.Whole(7), line.LotNumber, rows.Whole(8), line.LotContID));
    const auto [found, isNew] = places.emplace(key, lines.size());
    if (isNew) lines.push_back(std::move(line));
    lines[found->second].used += WholeUnits(rows.Single(5), 3);
  }
  return lines;
}

TableOf<OutOnJob> OutColumns(const Session& session) {
  using Row = OutOnJob;
  return TableOf<Row>()
      .Add("JobNumber", &Row::JobNumber, "Job Number")
      .Width(2640)
      .Add("Database", &Row::Database)
      .Width(1920)
      .Add("Color_Name", &Row::Color_Name, "Color Name")
      .Width(3360)
      .Add("LotNumber", &Row::LotNumber, "Lot Number")
      .Width(2160)
      .Add("LotContID", &Row::LotContID, "Lot Cont. ID")
      .Width(2160)
      .Add(
          "QtyUsed", [](const Row& row) { return OfWholeUnits(row.used, 3); }, InUnit(session, "Qty Out"))
      .Width(2160)
      .Total("Totals")
      .Add("Date_Entered", &Row::Date_Entered, "Out Since", Format::Date)
      .Width(1920)
      .Add("Days", &Row::days)
      .Width(1080)
      .Leads([](const Row& row) { return RowTarget{.kind = RowTarget::Kind::Job, .name = row.JobNumber}; });
}

ListTable ListJobsOut(const Session& session) {
  return OutColumns(session).Of([&session](const std::function<bool(const OutOnJob&)>& take) {
    for (const OutOnJob& line : ReadOut(session))
      if (!take(line)) return;
  });
}

Sheet JobSheet(const Session& session, const Job& job) {
  TableOf<JobRecord> items;
  items.Add("", &JobRecord::ItemText, "Batch/Item")
      .Add("", &JobRecord::Color_Name, "Color Name")
      .Add("", &JobRecord::LotNumber, "Lot Number")
      .Add("", &JobRecord::QtyIssued, InUnit(session, "Qty Issued"))
      .Sum()
      .Add("", &JobRecord::QtyUsed, InUnit(session, "Qty Used"))
      .Total("Totals")
      .Add("", Returned, InUnit(session, "Returned"))
      .Sum();
  AddAmounts(items, session, true);
  const auto day = [](const std::optional<DateTime>& date) { return date ? date->DateText() : std::string(); };
  Sheet sheet{.title = "Job Cost Sheet"};
  sheet.blocks.push_back({.heading = job.JobNumber, .large = true});
  SheetBlock head{.fields = {{"Date Entered", day(job.Date_Entered)},
                             {"Date Completed", job.Date_Completed ? day(job.Date_Completed) : "open"}}};
  std::set<std::string> designs;
  for (const JobRecord& item : job.items) {
    if (item.DesignID.empty() || !designs.insert(Upper(item.DesignID)).second) continue;
    head.fields.push_back(
        {"Design", item.DesignDesc.empty() ? item.DesignID : item.DesignID + " - " + item.DesignDesc});
    const auto design = ReadDesign(session, item.DesignID);
    for (const std::string& photo : design ? design->Photos() : std::vector<std::string>{})
      head.photos.push_back(PhotoFile(session, photo).value_or(PhotoFolder(session) / photo));
  }
  head.fields.push_back({InUnit(session, "Total Qty Used"), Fixed(job.totals.QtyUsed, 3)});
  if (SeenBy(session).prices)
    head.fields.push_back({"Total Cost", Fixed(job.totals.Cost, session.DecimalPlaces)});
  head.fields.push_back({"Total VOCs", Fixed(job.totals.VOC, 3)});
  head.fields.push_back({"Total HAPs", Fixed(job.totals.HAP, 3)});
  sheet.blocks.push_back(std::move(head));
  sheet.blocks.push_back({.table = items.Of(job.items)});
  return sheet;
}

}  // namespace vellumark
