#include <fmt/format.h>

#include "core/base/text.h"
#include "core/upgrade/ladder.h"

// The blocks that change Job Records, Designs, dispensers and users.

namespace vellumark {
namespace {

constexpr std::string_view kJobs = "JobRecords";
constexpr std::string_view kDispensers = "Dispenser";

}  // namespace

void AddJobColorCodes(UpgradeRun& run) {
  run.Doing("Couldn't add Color_Code field to JobRecords");
  if (!run.Has(kJobs) || run.Has(kJobs, "Color_Code")) return;
  const std::string name = run.Sql(kJobs, "Color_Name");
  std::string code;
  for (const std::string& database : run.databases) {
    const auto of = [&](std::string_view suffix) {
      const std::string table = TableOfDatabase(database, suffix);
      if (!run.Has(table, "Color_Code")) return std::string("NULL");
      run.Index(table, "Color_Name");
      // The colour's own columns: the row around it is that of the job.
      return fmt::format("(SELECT Color.\"Color_Code\" FROM {} AS Color WHERE Color.\"Color_Name\" = {} LIMIT 1)",
                         Quoted(run.Find(table)->name), name);
    };
    code += fmt::format(" WHEN {} = {} THEN CASE WHEN {} = 2 THEN {} ELSE {} END", run.Sql(kJobs, "Database"),
                        SqlText(database), run.Sql(kJobs, "ItemType"), of("_Mix"), of("_Basic"));
  }
  run.Add(kJobs, "Color_Code", code.empty() ? "''" : fmt::format("COALESCE(CASE{} END, '')", code));
  run.Changed(kJobs, "Color_Code is that of the color", run.Rows(kJobs));
}

void RepairJobNumbers(UpgradeRun& run) {
  const auto trim = [&](const std::string& table) {
    if (!run.Has(table, "JobNumber")) return;
    const std::string number = run.Sql(table, "JobNumber");
    if (number == "''") return;
    const std::string column = run.Own(table, "JobNumber", FieldType::Text);
    run.Changed(table, "blanks around the job number are gone",
                run.file
                    .Prepare(fmt::format("UPDATE {} SET {} = TRIM({}) WHERE {} <> TRIM({})", run.From(table), column,
                                         number, number, number))
                    .Run());
  };
  run.Doing("Couldn't repair Job Numbers in JobRecords.");
  trim(std::string(kJobs));
  if (run.Has(kJobs, "JobNumber"))
    if (const std::int64_t none =
            run.file.Scalar(fmt::format("SELECT COUNT(*) FROM {} WHERE COALESCE({}, '') = ''", run.From(kJobs),
                                        run.Sql(kJobs, "JobNumber")))
                .Whole();
        none > 0)
      run.ToLookAt(kJobs, "rows have no job number", none);
  run.ForEachDatabase([&](const std::string& database) {
    const std::string table = TableOfDatabase(database, "_Batch");
    run.Doing("Couldn't repair Job Numbers in " + table);
    trim(table);
  });
}

void AddQuantitiesIssued(UpgradeRun& run) {
  run.Doing("Couldn't add QtyIssued field to JobRecords");
  if (!run.Has(kJobs) || run.Has(kJobs, "QtyIssued")) return;
  run.Add(kJobs, "QtyIssued", run.Sql(kJobs, "QtyUsed"));
  run.Changed(kJobs, "QtyIssued is QtyUsed", run.Rows(kJobs));
}

namespace {

void MakeDispensers(UpgradeRun& run) {
  std::vector<Field> fields = schema::Dispenser.fields;
  fields.pop_back();  // FileType came later
  run.MakeTable(std::string(kDispensers), fields);
}

void AddDispenserFileType(UpgradeRun& run) {
  if (run.Has(kDispensers, "FileType")) return;
  run.Add(kDispensers, "FileType", "'.txt'");
  run.Changed(kDispensers, "FileType is \".txt\"", run.Rows(kDispensers));
}

}  // namespace

// A job of that time was closed when its last line was entered, and nothing came back later.
void AddDispensersAndDates(UpgradeRun& run) {
  run.Doing("Couldn't add Dispenser table");
  MakeDispensers(run);
  run.Doing("Couldn't add Date_Returned field to JobRecords");
  if (!run.Has(kJobs)) return;
  const std::string entered = run.Sql(kJobs, "Date_Entered");
  if (!run.Has(kJobs, "Date_Returned")) {
    run.Add(kJobs, "Date_Returned", entered);
    run.Changed(kJobs, "Date_Returned is the day of the entry", run.Rows(kJobs));
  }
  run.Doing("Couldn't add Date_Completed field to JobRecords");
  if (run.Has(kJobs, "Date_Completed")) return;
  run.Index(kJobs, "JobNumber");
  std::string latest = entered;
  std::string number = run.Sql(kJobs, "JobNumber");
  for (std::string* sql : {&latest, &number})
    if (sql->starts_with("Src.")) sql->replace(0, 3, "Job");
  run.Add(kJobs, "Date_Completed",
          fmt::format("(SELECT MAX({}) FROM {} AS Job WHERE {} = {})", latest, Quoted(run.Find(kJobs)->name), number,
                      run.Sql(kJobs, "JobNumber")));
  run.Changed(kJobs, "Date_Completed is the day of the job's last entry", run.Rows(kJobs));
}

void AddFileTypes(UpgradeRun& run) {
  run.Doing("Couldn't add FileType field to Dispenser");
  AddDispenserFileType(run);
}

void AddDesigns(UpgradeRun& run) {
  run.Doing("Couldn't add Designs table");
  std::vector<Field> fields = schema::Designs.fields;
  fields.pop_back();  // PhotoSet came later
  run.MakeTable("Designs", fields);
}

void AddDesignsOfJobs(UpgradeRun& run) {
  run.Doing("Couldn't add DesignID field to JobRecords");
  run.Add(kJobs, "DesignID", "''");
  run.Add(kJobs, "DesignDesc", "''");
}

void BringDispensersBack(UpgradeRun& run) {
  run.Doing("Adding Dispenser Table Back to DB ");
  if (run.Has(kDispensers)) return;
  MakeDispensers(run);
  AddDispenserFileType(run);
  run.Changed(kDispensers, "the table was made: it was missing");
}

void AddPhotoSets(UpgradeRun& run) {
  run.Doing("Couldn't add PhotoSet field to Designs");
  run.Add("Designs", "PhotoSet", "''");
}

void RemoveDispensers(UpgradeRun& run) {
  run.Doing("Couldn't remove the items of Dispenser");
  if (!run.Has(kDispensers)) return;
  const auto text = [&](const char* field) { return fmt::format("COALESCE({}, '')", run.Sql(kDispensers, field)); };
  Statement row = run.file.Prepare(fmt::format("SELECT {}, {}, {}, {} FROM {}", text("Name"), text("Manufacturer"),
                                               text("Drive"), text("Pathway"), run.From(kDispensers)));
  while (row.Step())
    run.ToLookAt(kDispensers, fmt::format("the dispenser {} ({}, {}{}) was removed: set it up anew", row.TextView(0),
                                          row.TextView(1), row.TextView(2), row.TextView(3)));
  row.Reset();
  const std::int64_t all = run.Rows(kDispensers);
  run.file.Prepare("DELETE FROM " + Quoted(run.Find(kDispensers)->name)).Run();
  run.LeftOut(kDispensers, "dispensers were removed", all);
}

void ShortenFileTypes(UpgradeRun& run) {
  run.Doing("Couldn't change the FileType field of Dispenser");
  if (!run.Has(kDispensers, "FileType")) return;
  const std::string type = run.Sql(kDispensers, "FileType");
  std::vector<std::pair<std::int64_t, std::string>> longer;
  Statement row = run.file.Prepare(fmt::format("SELECT Src.RowKey, {} FROM {}", type, run.From(kDispensers)));
  while (row.Step())
    if (CharCount(row.TextView(1)) > 5) longer.emplace_back(row.Whole(0), row.Text(1));
  row.Reset();
  if (longer.empty()) return;
  const std::string column = run.Own(kDispensers, "FileType", FieldType::Text);
  for (const auto& [key, text] : longer) {
    run.file.Prepare(fmt::format("UPDATE {} SET {} = ?1 WHERE RowKey = ?2", run.From(kDispensers), column))
        .Bind(1, Left(text, 5))
        .Bind(2, key)
        .Run();
    run.Changed(kDispensers, fmt::format("FileType {} is {} now", text, Left(text, 5)));
  }
}

void AddExportRight(UpgradeRun& run) {
  run.Doing("Couldn't add DF_ExportDF_Excel field to Users");
  if (!run.Has("Users") || run.Has("Users", "DF_ExportDF_Excel")) return;
  run.Add("Users", "DF_ExportDF_Excel",
          fmt::format("CASE WHEN COALESCE({}, 0) <> 0 THEN 1 ELSE 0 END", run.Sql("Users", "IsAdmin")));
  run.Changed("Users", "DF_ExportDF_Excel is 1 for administrators", run.Rows("Users"));
}

}  // namespace vellumark
