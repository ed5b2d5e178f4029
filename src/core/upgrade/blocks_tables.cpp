#include <fmt/format.h>

#include <map>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/upgrade/ladder.h"

// The blocks that go through many tables: the step to version 5, money, the order of fields.

namespace vellumark {
namespace {

using schema::Numbered;

constexpr int kUserDefined = 6;
constexpr int kOldLots = 10;

void RenameUserRights(UpgradeRun& run) {
  const std::string users = "Users";
  if (!run.Has(users)) return;
  static const std::pair<const char*, const char*> kRights[] = {{"Costs", "Edit_Costs"},
                                                                {"MixColorFormula", "Edit_MasterFormula"},
                                                                {"BackupRestore", "DF_BackupRestore"},
                                                                {"DataFileFunctions", "DF_AdvancedMenu"},
                                                                {"OptionsMenu", "DF_OptionsMenu"},
                                                                {"DatabaseFunctions", "DB_NewRenameDel"}};
  for (const auto& [old, now] : kRights) {
    run.Doing(fmt::format("User Records, couldn't rename the {} field to {}", old, now));
    run.Rename(users, old, now);
  }
  run.Doing("User Records, couldn't add new Edit_VOCHAP field");
  if (run.Has(users, "Edit_VOCHAP")) return;
  run.Add(users, "Edit_VOCHAP", fmt::format("CASE WHEN COALESCE({}, 0) <> 0 THEN 1 ELSE 0 END", run.Sql(users, "IsAdmin")));
  run.Changed(users, "Edit_VOCHAP is 1 for administrators", run.Rows(users));
}

void AddUserDefined(UpgradeRun& run, const std::string& table, std::string_view records) {
  run.Doing(fmt::format("{}, couldn't add new UD Text field to {}", records, table));
  run.AddFamily(table, "UD_Text", 0, kUserDefined, "''");
  run.Doing(fmt::format("{}, couldn't add new UD Numeric field to {}", records, table));
  run.AddFamily(table, "UD_Numeric", 0, kUserDefined, "0");
  run.Doing(fmt::format("{}, couldn't add new Lot Number, VOC and HAP fields to {}", records, table));
  run.Add(table, "LotNumber", "''");
  run.Add(table, "VOC", "0");
  run.Add(table, "HAP", "0");
}

void AddLotFields(UpgradeRun& run, const std::string& table) {
  run.Doing("Couldn't add ILot_Name field to " + table);
  run.AddFamily(table, "ILot_Name", run.First(table, "ILot_Name"), kOldLots, "''");
  run.AddFamily(table, "ILot_Qty", run.First(table, "ILot_Qty"), kOldLots, "0");
}

struct OldSet {
  std::string name;
  std::vector<std::pair<std::string, double>> additives;
};

// Each distinct list of the Database's texts is a set.
std::vector<OldSet> ReadOldSets(UpgradeRun& run, const std::string& info) {
  std::vector<OldSet> sets;
  const int first = run.First(info, "Additive");
  const int shares = run.First(info, "Percentage");
  const int count = std::min(run.Count(info, "Additive"), schema::kSetSlots);
  if (count == 0) return sets;
  std::string columns;
  for (int n = 0; n < count; ++n)
    columns += fmt::format("{}{}, {}", n == 0 ? "" : ", ", run.Sql(info, Numbered("Additive", first + n)),
                           run.Sql(info, Numbered("Percentage", shares + n)));
  Statement row = run.file.Prepare(fmt::format("SELECT {} FROM {}", columns, run.From(info)));
  while (row.Step()) {
    OldSet set;
    for (int n = 0; n < count; ++n) {
      const std::string name = Trim(row.TextView(2 * n));
      const double percent = row.Number(2 * n + 1);
      if (name.empty()) continue;
      if (percent > 0) {
        set.additives.emplace_back(name, percent);
      } else {
        run.ToLookAt(info, fmt::format("the Additive {} has {} percent and stands in no set", name, Fixed(percent, 3)));
      }
    }
    const bool known = std::ranges::any_of(sets, [&](const OldSet& other) { return other.additives == set.additives; });
    if (!set.additives.empty() && !known) sets.push_back(std::move(set));
  }
  for (std::size_t i = 0; i < sets.size(); ++i) sets[i].name = fmt::format("Add Set {}", i + 1);
  return sets;
}

// A formula has the set of which it holds all Additives.
void GiveSets(UpgradeRun& run, const std::string& mix, const std::vector<OldSet>& sets) {
  if (sets.empty() || !run.Has(mix)) return;
  const std::string column = run.Own(mix, "AddSetName", FieldType::Text);
  const int first = run.First(mix, "BC");
  for (const OldSet& set : sets) {
    std::string all;
    for (const auto& [additive, percent] : set.additives) {
      std::string any;
      for (int n = first; n < first + run.Count(mix, "BC"); ++n)
        any += fmt::format("{}{} = {}", any.empty() ? "" : " OR ", run.Sql(mix, Numbered("BC", n)), SqlText(additive));
      all += fmt::format(" AND ({})", any);
    }
    run.Changed(mix, fmt::format("AddSetName is {}", set.name),
                run.file
                    .Prepare(fmt::format("UPDATE {} SET {} = ?1 WHERE COALESCE({}, '') = ''{}", run.From(mix), column, column, all))
                    .Bind(1, set.name)
                    .Run());
  }
}

void MakeAdditiveSets(UpgradeRun& run, const std::string& database) {
  const std::string info = TableOfDatabase(database, "_Info");
  const std::string table = TableOfDatabase(database, "_Additives");
  const std::string basic = TableOfDatabase(database, "_Basic");
  run.Doing("Couldn't make " + table);
  run.MakeTable(table, schema::Additives.fields);
  const std::vector<OldSet> sets = ReadOldSets(run, info);
  for (const OldSet& set : sets) {
    std::string fields = "SetName, SetList";
    std::string marks = "?1, ?2";
    std::string list;
    for (std::size_t n = 0; n < set.additives.size(); ++n) {
      const int slot = static_cast<int>(n);
      fields += ", " + Numbered("Add_Name", slot) + ", " + Numbered("Add_Percent", slot);
      marks += fmt::format(", ?{}, ?{}", 3 + 2 * slot, 4 + 2 * slot);
      list += "<" + set.additives[n].first + ">";
    }
    Statement row = run.file.Prepare(fmt::format("INSERT INTO {} ({}) VALUES ({})", Quoted(table), fields, marks));
    row.Bind(1, set.name).Bind(2, list);
    for (std::size_t n = 0; n < set.additives.size(); ++n)
      row.Bind(static_cast<int>(3 + 2 * n), set.additives[n].first).Bind(static_cast<int>(4 + 2 * n), set.additives[n].second);
    row.Run();
  }
  run.Changed(table, "Additive Sets were made of Additive and Percentage", std::ssize(sets));
  GiveSets(run, TableOfDatabase(database, "_Mix"), sets);
  run.Doing("Couldn't remove the Additive field from " + info);
  for (const char* word : {"Additive", "Percentage"}) run.RemoveFamily(info, word);
  for (const char* field : {"LabelLayout", "LabelHealth", "LabelFire", "LabelReactivity"}) run.Remove(info, field);
  if (sets.empty() || !run.Has(basic)) return;
  run.Doing("Couldn't mark the Additives of " + basic);
  const std::string column = run.Own(basic, "Additive", FieldType::Boolean);
  for (const OldSet& set : sets)
    for (const auto& [additive, percent] : set.additives)
      run.Changed(basic, fmt::format("{} is an Additive", additive),
                  run.file
                      .Prepare(fmt::format("UPDATE {} SET {} = 1 WHERE {} = ?1 AND COALESCE({}, 0) = 0", run.From(basic), column,
                                           run.Sql(basic, "Color_Name"), column))
                      .Bind(1, additive)
                      .Run());
}

void TakeDatabaseToVersionFive(UpgradeRun& run, const std::string& database) {
  const std::string basic = TableOfDatabase(database, "_Basic");
  const std::string mix = TableOfDatabase(database, "_Mix");
  const std::string batch = TableOfDatabase(database, "_Batch");
  run.Doing("Basic Records, couldn't add new Additive, VOC and HAP fields to " + basic);
  for (const char* field : {"Additive", "VOC", "HAP"}) run.Add(basic, field, "0");
  AddLotFields(run, basic);
  run.Doing("Mix Records, couldn't add new fields to " + mix);
  run.Add(mix, "AddSetName", "''");
  for (const char* field : {"VOC", "BasicVOC", "HAP", "BasicHAP"}) run.Add(mix, field, "0");
  AddLotFields(run, mix);
  AddUserDefined(run, batch, "Batch Records");
  run.Doing("Batch Records, couldn't add new model fields to " + batch);
  for (const char* field : {"MixVOCModelType", "MixHAPModelType"}) run.Add(batch, field, "0");
  MakeAdditiveSets(run, database);
  run.Doing("Couldn't make the consumption table of " + database);
  MakeConsumption(run, database);
}

}  // namespace

void TellInkEstimates(UpgradeRun& run) {
  run.Changed("", "the ink estimator's values stand with the settings, which have their defaults");
}

void TellReportKeys(UpgradeRun& run) {
  run.Changed("", "columns and sorts of the job usage reports stand with the settings, which have their defaults");
}

// Rows are found by the names of their fields; all are written in the order of the layout at the end.
void OrderFields(UpgradeRun& run) {
  run.Doing("Couldn't set the order of the fields");
}

void TakeVersionFive(UpgradeRun& run) {
  const std::string status = "Updating datafile for Verison 5 compatability...";
  run.Show(status, "User and Job tables.");
  RenameUserRights(run);
  if (run.Has("JobRecords")) {
    AddUserDefined(run, "JobRecords", "Job Records");
    run.Changed("JobRecords", "user-defined fields, LotNumber, VOC and HAP are empty and 0", run.Rows("JobRecords"));
  }
  run.ForEachDatabase([&](const std::string& database) { TakeDatabaseToVersionFive(run, database); });
  CompleteInfo(run);
  AddGuideColors2016(run);
  ReadBookPages(run);
}

// A column holds what is put into it: what was Currency becomes a Single where the rows are written in the end, through no
// other field. The report tells how many figures a Single does not hold to the last digit.
void ConvertCurrency(UpgradeRun& run) {
  run.ForEachDatabase([&](const std::string& database) {
    const std::string table = TableOfDatabase(database, "_Additives");
    run.Doing("Couldn't convert the currency fields of " + database);
    if (!run.Has(table) || run.Count(table, "Add_Name") == 0) return;
    run.Doing("Couldn't rebuild SetList of " + table);
    run.Add(table, "SetList", "''");
    std::string list;
    for (int n = run.First(table, "Add_Name"), end = n + run.Count(table, "Add_Name"); n < end; ++n) {
      const std::string name = run.Sql(table, Numbered("Add_Name", n));
      list += fmt::format("{}CASE WHEN COALESCE({}, '') = '' THEN '' ELSE '<' || {} || '>' END", list.empty() ? "" : " || ", name, name);
    }
    const std::string column = run.Own(table, "SetList", FieldType::Memo);
    run.Changed(table, "SetList was rebuilt from the Additives",
                run.file
                    .Prepare(fmt::format("UPDATE {} SET {} = {} WHERE COALESCE({}, '') <> {}", run.From(table), column, list, column, list))
                    .Run());
  });
}

}  // namespace vellumark
