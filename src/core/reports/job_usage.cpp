#include <fmt/format.h>

#include <map>
#include <set>

#include "core/jobs/job_record.h"
#include "core/reports/batch_rows.h"
#include "core/reports/by_name.h"
#include "core/reports/families.h"
#include "core/reports/lot_columns.h"

// What Jobs used.

namespace vellumark {
namespace {

constexpr std::int32_t kFirstItem = 1'000'000;  // numbers below it are those of Batches

struct JobSums {
  std::int64_t items = 0;
  std::int64_t issued = 0;  // thousandths
  std::int64_t used = 0;
  std::int64_t cost = 0;  // in units of DecimalPlaces
  std::int64_t VOC = 0;   // thousandths
  std::int64_t HAP = 0;

  JobSums& operator+=(const JobSums& other) {
    items += other.items;
    issued += other.issued;
    used += other.used;
    cost += other.cost;
    VOC += other.VOC;
    HAP += other.HAP;
    return *this;
  }
};

struct JobLine {
  std::string JobNumber;
  std::string DesignID;
  std::string DesignDesc;
  std::string Color_Name;
  std::string Color_Code;
  std::string Database;
  std::int32_t BatchNo = 0;
  ColorKind kind = ColorKind::Basic;
  std::int64_t unitCost = 0;
  std::optional<DateTime> Date_Entered;
  std::optional<DateTime> Date_Returned;
  std::optional<DateTime> Date_Completed;
  std::optional<ReportLot> lot;
  std::array<std::string, kBatchUserFields> UD_Text;
  std::array<float, kBatchUserFields> UD_Numeric{};
  JobSums sum;
};

// A colour, a Database or a Job with what it comes to.
struct JobTotal {
  std::string name{};
  ColorKind kind = ColorKind::Basic;
  std::set<std::string, std::less<>> jobs{};  // in capitals
  std::string DesignID{};
  std::string DesignDesc{};
  std::optional<DateTime> first{};
  std::optional<DateTime> completed{};
  JobSums sum{};
};

struct JobQuery {
  std::string where = "1 = 1";
  std::vector<Value> parameters{};  // ?3 and on
  std::string order = "Date_Entered";
  std::string dates = "Date_Entered";
};

JobLine ReadLine(const Statement& row, int decimals) {
  JobLine line{.JobNumber = row.Text(0),
               .DesignID = row.Text(1),
               .DesignDesc = row.Text(2),
               .Color_Name = row.Text(3),
               .Color_Code = row.Text(4),
               .Database = row.Text(5),
               .BatchNo = static_cast<std::int32_t>(row.Whole(6)),
               .kind = row.Whole(7) == 2 ? ColorKind::Mix : ColorKind::Basic,
               .unitCost = WholeUnits(row.Single(8), decimals),
               .Date_Entered = row.Date(9),
               .Date_Returned = row.Date(10),
               .Date_Completed = row.Date(11),
               .lot = ReportLot{row.Text(12), row.Text(13), row.Text(14), row.Date(15)},
               .UD_Text = {},
               .sum = {}};
  JobSums& sum = line.sum;
  sum.items = 1;
  sum.issued = WholeUnits(row.Single(16), 3);
  sum.used = WholeUnits(row.Single(17), 3);
  // By the cost as it stands, which has more decimals than prices where it was worked out for grams.
  const auto amount = [&](int column, int places) {
    return WholeUnits(JobAmount(row.Single(17), row.Single(column), places), places);
  };
  sum.cost = amount(8, decimals);
  sum.VOC = amount(18, 3);
  sum.HAP = amount(19, 3);
  for (int i = 0; i < kBatchUserFields; ++i) {
    line.UD_Text[static_cast<std::size_t>(i)] = row.Text(20 + i);
    line.UD_Numeric[static_cast<std::size_t>(i)] = row.Single(20 + kBatchUserFields + i);
  }
  return line;
}

void ForEachJobLine(const ReportContext& context, const JobQuery& query,
                    const std::function<bool(const JobLine&)>& take) {
  std::string columns =
      "JobNumber, DesignID, DesignDesc, Color_Name, Color_Code, Database, BatchNo, ItemType, UnitCost, Date_Entered, "
      "Date_Returned, Date_Completed, LotNumber, LotLoc, LotContID, LotDate, QtyIssued, QtyUsed, VOC, HAP";
  for (const char* word : {"UD_Text", "UD_Numeric"})
    for (int i = 0; i < kBatchUserFields; ++i) columns += ", " + schema::Numbered(word, i);
  const double all = std::max(1.0, context.File().Scalar("SELECT COUNT(*) FROM JobRecords").Number());
  Statement rows = context.File().Prepare(fmt::format("SELECT {} FROM JobRecords WHERE {} >= ?1 AND {} < ?2 AND ({}){}",
                                                      columns, query.dates, query.dates, query.where,
                                                      query.order.empty() ? "" : " ORDER BY " + query.order));
  rows.Bind(1, context.dates.from.ToText());
  rows.Bind(2, DateTime::FromDayNumber(context.dates.to.DayNumber() + 1).ToText());
  for (std::size_t i = 0; i < query.parameters.size(); ++i) rows.Bind(static_cast<int>(3 + i), query.parameters[i]);
  double done = 0;
  while (rows.Step()) {
    if (!take(ReadLine(rows, context.session.DecimalPlaces))) return;
    if (!context.watch.GoOn(100 * ++done / all)) return;
  }
}

// By kind: a Basic Color and a formula of one name are two colours.
JobQuery OfColor(const ReportContext& context) {
  return {fmt::format("Color_Name = ?3 AND Database = ?4 AND COALESCE(ItemType, 0) {} 2",
                      context.kind == ColorKind::Mix ? "=" : "<>"),
          {context.name, context.databases.front()}};
}

template <class Record>
auto JobQty(std::int64_t JobSums::*figure) {
  return [figure](const Record& r) { return OfWholeUnits(r.sum.*figure, 3); };
}

template <class Record>
void AddSums(TableOf<Record>& table, const ReportContext& context, bool share) {
  const int decimals = context.session.DecimalPlaces;
  table.Add("QtyIssued", JobQty<Record>(&JobSums::issued), context.InUnit("Qty Issued"))
      .Sum()
      .Add("QtyUsed", JobQty<Record>(&JobSums::used), context.InUnit("Qty Used"))
      .Sum();
  if (share)
    table
        .Add(
            "PercentUsed", [](const Record& r) { return ShareOf(r.sum.used, r.sum.issued); }, "% Used", Format::Percent)
        .Ratio("QtyUsed", "QtyIssued");
  table
      .Add(
          "TotalCost", [decimals](const Record& r) { return OfWholeUnits(r.sum.cost, decimals); },
          context.InMoney("Total Cost"), Format::Money, decimals)
      .Sum()
      .Add("TotalVOC", JobQty<Record>(&JobSums::VOC), "Total VOC")
      .Sum()
      .Add("TotalHAP", JobQty<Record>(&JobSums::HAP), "Total HAP")
      .Sum();
}

RowTarget LineTarget(const JobLine& line) {
  if (line.BatchNo < kFirstItem && line.BatchNo > 0) return {RowTarget::Kind::Batch, line.Database, {}, line.BatchNo};
  return {RowTarget::Kind::Job, line.Database, line.JobNumber};
}

TableOf<JobLine> LineColumns(const ReportContext& context, bool colorFirst) {
  using Row = JobLine;
  const int decimals = context.session.DecimalPlaces;
  TableOf<Row> table;
  if (colorFirst) table.Add("Color_Name", &Row::Color_Name, "Color Name");
  table.Add("JobNumber", &Row::JobNumber, "Job Number")
      .Add("DesignID", &Row::DesignID, "Design ID")
      .Add("DesignDesc", &Row::DesignDesc, "Design Desc");
  if (!colorFirst) table.Add("Color_Name", &Row::Color_Name, "Color Name");
  table.Add("Color_Code", &Row::Color_Code, "Color Code")
      .Add("Database", &Row::Database, "Database")
      .Add("BatchNo", &Row::BatchNo, "Batch/Item", Format::Number)
      .Add(
          "ItemType", [](const Row& r) { return std::string(r.kind == ColorKind::Mix ? "Formula" : "Basic"); },
          "Item Type")
      .Add("Date_Entered", &Row::Date_Entered, "Date Entered", Format::Date)
      .Add("Date_Returned", &Row::Date_Returned, "Date Returned", Format::Date)
      .Add("Date_Completed", &Row::Date_Completed, "Date Completed", Format::Date)
      .Add(
          "UnitCost", [decimals](const Row& r) { return OfWholeUnits(r.unitCost, decimals); },
          context.InMoney("Unit Cost"), Format::Money, decimals);
  AddSums(table, context, false);
  table
      .Add(
          "LotNumber", [](const Row& r) { return r.lot->LotNumber; }, "Lot Number")
      .Add(
          "LotLoc", [](const Row& r) { return r.lot->LotLoc; }, "Lot Location")
      .Add(
          "LotContID", [](const Row& r) { return r.lot->LotContID; }, "Lot Cont. ID")
      .Add(
          "LotDate", [](const Row& r) { return r.lot->LotDate; }, "Lot Date", Format::Date);
  AddUserColumns<Row>(
      table, context, true, [](const Row& r) -> const auto& { return r.UD_Text; },
      [](const Row& r) -> const auto& { return r.UD_Numeric; });
  table.Leads(LineTarget);
  return table;
}

ListTable LinesOf(const ReportContext& context, bool colorFirst, JobQuery query) {
  return LineColumns(context, colorFirst)
      .Of([&context, query = std::move(query)](const std::function<bool(const JobLine&)>& take) {
        ForEachJobLine(context, query, take);
      });
}

ListTable ColorDetail(const ReportContext& context) {
  return LinesOf(context, false, OfColor(context));
}

std::string DatesOf(const ReportContext& context) {
  return context.Option("DateQuery") == 1 ? "Date_Completed" : "Date_Entered";
}

ListTable AllJobs(const ReportContext& context) {
  return LinesOf(context, false, {.order = "JobNumber, Date_Entered", .dates = DatesOf(context)});
}

ListTable OneJob(const ReportContext& context) {
  return LinesOf(context, true, {.where = "JobNumber = ?3", .parameters = {context.name}, .dates = DatesOf(context)});
}

ListTable OneDesign(const ReportContext& context) {
  return LinesOf(context, false,
                 {.where = "DesignID = ?3", .parameters = {context.name}, .order = "JobNumber, Date_Entered"});
}

ListTable AllDesigns(const ReportContext& context) {
  return LinesOf(context, false, {.where = "DesignID <> ''", .order = "DesignID, JobNumber, Date_Entered"});
}

void Count(JobTotal& total, const JobLine& line) {
  total.sum += line.sum;
  total.jobs.insert(Upper(line.JobNumber));
  if (line.Date_Entered && (!total.first || *line.Date_Entered < *total.first)) total.first = line.Date_Entered;
  if (line.Date_Completed && (!total.completed || *total.completed < *line.Date_Completed))
    total.completed = line.Date_Completed;
  if (total.DesignID.empty()) {
    total.DesignID = line.DesignID;
    total.DesignDesc = line.DesignDesc;
  }
}

void AddJobCounts(TableOf<JobTotal>& table) {
  table
      .Add(
          "Jobs", [](const JobTotal& r) { return static_cast<std::int64_t>(r.jobs.size()); }, "Jobs")
      .Sum()
      .Add(
          "JobItems", [](const JobTotal& r) { return r.sum.items; }, "Job Items")
      .Sum();
}

// Jobs that stand in several rows count once in all.
void TellJobs(const ReportContext& context, const std::vector<JobTotal*>& totals) {
  std::set<std::string, std::less<>> jobs;
  for (const JobTotal* total : totals) jobs.insert(total->jobs.begin(), total->jobs.end());
  context.watch.SetTotal("Jobs", static_cast<std::int64_t>(jobs.size()));
}

ListTable ByColor(const ReportContext& context) {
  const std::string database = context.databases.front();
  TableOf<JobTotal> table;
  table.Add("Color_Name", &JobTotal::name, "Color Name")
      .Add(
          "Color_Type", [](const JobTotal& r) { return std::string(r.kind == ColorKind::Mix ? "Formula" : "Basic"); },
          "Color Type");
  AddJobCounts(table);
  AddSums(table, context, true);
  table.Leads([database](const JobTotal& r) {
    return RowTarget{r.kind == ColorKind::Mix ? RowTarget::Kind::Mix : RowTarget::Kind::Basic, database, r.name};
  });
  return table.Of([&context, database](const std::function<bool(const JobTotal&)>& take) {
    const bool basics = context.Option("ShowBasics") == 1;
    const bool mixes = context.Option("ShowMixes") == 1;
    ByName<JobTotal> ofBasics;
    ByName<JobTotal> ofMixes;
    ForEachJobLine(context, {.where = "Database = ?3", .parameters = {database}, .order = {}},
                   [&](const JobLine& line) {
                     const bool mix = line.kind == ColorKind::Mix;
                     if (!(mix ? mixes : basics)) return true;
                     JobTotal& total = (mix ? ofMixes : ofBasics).At(line.Color_Name);
                     total.kind = line.kind;
                     Count(total, line);
                     return true;
                   });
    std::vector<JobTotal*> totals = ofBasics.InOrder();
    for (JobTotal* mix : ofMixes.InOrder()) totals.push_back(mix);
    TellJobs(context, totals);
    for (const JobTotal* total : totals)
      if (!take(*total)) return;
  });
}

// A Database that was deleted since has its row too.
ListTable ByDatabase(const ReportContext& context) {
  TableOf<JobTotal> table;
  table.Add("Database", &JobTotal::name, "Database");
  AddJobCounts(table);
  AddSums(table, context, true);
  table.Leads([](const JobTotal& r) { return RowTarget{RowTarget::Kind::Database, r.name}; });
  return table.Of([&context](const std::function<bool(const JobTotal&)>& take) {
    ByName<JobTotal> databases;
    for (const std::string& database : context.databases) databases.At(database);
    ForEachJobLine(context, {.order = {}}, [&](const JobLine& line) {
      Count(databases.At(line.Database), line);
      return true;
    });
    const std::vector<JobTotal*> totals = databases.InOrder();
    TellJobs(context, totals);
    for (const JobTotal* total : totals)
      if (!take(*total)) return;
  });
}

ListTable ByJob(const ReportContext& context) {
  TableOf<JobTotal> table;
  table.Add("JobNumber", &JobTotal::name, "Job Number")
      .Add("DesignID", &JobTotal::DesignID, "Design ID")
      .Add("DesignDesc", &JobTotal::DesignDesc, "Design Desc")
      .Add("Date_Entered", &JobTotal::first, "Date Entered", Format::Date)
      .Add("Date_Completed", &JobTotal::completed, "Date Completed", Format::Date)
      .Add(
          "JobItems", [](const JobTotal& r) { return r.sum.items; }, "Job Items")
      .Sum();
  AddSums(table, context, true);
  table.Leads([](const JobTotal& r) { return RowTarget{RowTarget::Kind::Job, {}, r.name}; });
  return table.Of([&context](const std::function<bool(const JobTotal&)>& take) {
    ByName<JobTotal> jobs;
    ForEachJobLine(context, {.order = {}, .dates = DatesOf(context)}, [&](const JobLine& line) {
      Count(jobs.At(line.JobNumber), line);
      return true;
    });
    for (const JobTotal* job : jobs.InOrder())
      if (!take(*job)) return;
  });
}

ReportOption DateQuery(std::string key) {
  return {"DateQuery", "0 by date entered, 1 by date completed", 2, 0, std::move(key)};
}

void AddUsage(std::vector<ReportDefinition>& catalogue) {
  catalogue.push_back(
      {.key = "JobUsageSpecificColorThisDB",
       .group = "Jobs - Color Usage",
       .caption = "Specific Color - this Database",
       .window = "JobUsageForm",
       .prefix = "DetJobUsage",
       .name = "Job Usage Report",
       .noun = "Job Items",
       .description = "Lists all Job Records within a specified date range that include the specified color.",
       .dateRangeKey = "JobUsageDateRange",
       .subject = ReportSubject::Color,
       .table = ColorDetail});
  catalogue.push_back({.key = "JobUsageAllColorsThisDB",
                       .group = "Jobs - Color Usage",
                       .caption = "All Colors - this Database",
                       .window = "SummarizedJobUsageForm",
                       .prefix = "SumJobUsage",
                       .name = "Job Usage Report",
                       .noun = "Colors",
                       .description =
                           "Lists all Basics / Additives and Master Formulas in this Database that have been "
                           "used in Job Records within a specified date range.",
                       .dateRangeKey = "JobUsageDateRange",
                       .options = {{"ShowBasics", "1 lists Basics and Additives", 2, 1},
                                   {"ShowMixes", "1 lists Master Formulas", 2, 1}},
                       .table = ByColor});
  catalogue.push_back({.key = "JobUsageSummaryAllDBs",
                       .group = "Jobs - Color Usage",
                       .caption = "Summary all Databases",
                       .window = "JobUsageSummaryForm",
                       .prefix = "Sum2JobUsage",
                       .name = "Job Usage Report",
                       .noun = "Databases",
                       .description = "Lists all Databases in the current Datafile. For each Database, statistical job "
                                      "usage information within a specified date range is displayed.",
                       .dateRangeKey = "JobUsageDateRange",
                       .scope = ReportScope::All,
                       .table = ByDatabase});
}

}  // namespace

void AddJobReports(std::vector<ReportDefinition>& catalogue) {
  AddUsage(catalogue);
  catalogue.push_back({.key = "JobRecordDetailSpecific",
                       .group = "Jobs - Number Detail",
                       .caption = "Specific Job Number",
                       .window = "DetailedSpecificJobUsageForm",
                       .prefix = "DetailedSpecificJobUsage",
                       .name = "Detail of Specific Job Record",
                       .noun = "Job Items",
                       .description = "Lists all Basics / Additives and Master Formulas that have been included in a "
                                      "specific Job Record within a specified date range.",
                       .dateRangeKey = "DetailedUsageDateRange",
                       .subject = ReportSubject::Job,
                       .scope = ReportScope::All,
                       .options = {DateQuery("DetailedSpecJobUsage_DateQuery")},
                       .table = OneJob});
  catalogue.push_back(
      {.key = "JobRecordDetailAll",
       .group = "Jobs - Number Detail",
       .caption = "All Job Numbers",
       .window = "DetailedJobUsageForm",
       .prefix = "DetailedJobUsage",
       .name = "Detail of All Job Records",
       .noun = "Job Items",
       .description = "Lists all Job Record detail items for all Job Records within a specified date range.",
       .dateRangeKey = "DetailedJobUsageDateRange",
       .scope = ReportScope::All,
       .options = {DateQuery("DetailedJobUsage_DateQuery")},
       .table = AllJobs});
  catalogue.push_back({.key = "JobRecordSummaryAll",
                       .group = "Jobs - Number Detail",
                       .caption = "Summary all Job Numbers",
                       .window = "JobListForm",
                       .prefix = "JobList",
                       .name = "Summary of All Job Records",
                       .noun = "Records",
                       .description = "Lists all Job Records that have been created within a specified date range.",
                       .dateRangeKey = "JobListDateRange",
                       .scope = ReportScope::All,
                       .options = {DateQuery("JobListForm_DateQuery")},
                       .table = ByJob});
  catalogue.push_back({.key = "lblJobUsageSpecificDesign",
                       .group = "Jobs - Design Usage",
                       .caption = "Specific Design",
                       .window = "DesignUsageForm",
                       .prefix = "DesignUsageForm",
                       .name = "Design Usage Report",
                       .noun = "Job Items",
                       .description = "Lists all Job Records that use a specific Design ID.",
                       .dateRangeKey = "DesignUsageFormDateRange",
                       .subject = ReportSubject::Design,
                       .scope = ReportScope::All,
                       .table = OneDesign});
  catalogue.push_back({.key = "lblJobUsageAllDesigns",
                       .group = "Jobs - Design Usage",
                       .caption = "All Designs",
                       .window = "DesignAllJobsUsageForm",
                       .prefix = "DesignAllJobsUsageForm",
                       .name = "Design Usage Report",
                       .noun = "Job Items",
                       .description = "Lists all Job Records that reference a Design ID.",
                       .dateRangeKey = "DesignAllJobsUsageFormDateRange",
                       .scope = ReportScope::All,
                       .table = AllDesigns});
}

}  // namespace vellumark
