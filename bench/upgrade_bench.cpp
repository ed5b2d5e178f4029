// The update of a file of version 36 with 100,000 formulas and 200,000 Batches, beside the bare reading and writing of the
// same rows.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "core/backup/proof.h"
#include "core/datafile/schema.h"
#include "core/upgrade/upgrade.h"
#include "large_room.h"
#include "support/old_files.h"

namespace vellumark::bench {
namespace {

namespace fs = std::filesystem;

// Rows of a table again and again, with the values of some fields made anew from the number of the copy.
void Multiply(Database& file, const std::string& table, int copies, const std::map<std::string, std::string>& anew) {
  std::string fields;
  std::string values;
  for (const std::string& field : file.StoredFields(table)) {
    const auto found = anew.find(field);
    fields += (fields.empty() ? "" : ", ") + Quoted(field);
    values += (values.empty() ? "" : ", ") + (found == anew.end() ? Quoted(field) : found->second);
  }
  const std::int64_t rows = file.Scalar("SELECT MAX(RowKey) FROM " + Quoted(table)).Whole();
  Statement copy = file.Prepare(fmt::format("INSERT INTO {0} ({1}) SELECT {2} FROM {0} WHERE RowKey <= {3}", Quoted(table), fields, values, rows));
  for (int n = 1; n < copies; ++n) copy.Bind(1, n).Run();
}

// Made once: what an ink room has after very many years.
const fs::path& OldFile() {
  static const fs::path path = [] {
    LargeRoom& room = Room100k();
    const fs::path made = room.folder / "Old36.vkd";
    test::OldRoom shop = test::MakeOldRoom(2000);
    shop.databases.resize(1);
    for (test::OldDatabase& of : shop.databases)
      for (int n = of.formulas.size(); n < 1000; ++n) of.formulas.push_back({fmt::format("MIX {}", n), "", 1, 2, {{"WHITE", 80}, {"RED", 20}}, {}, false});
    test::WriteOldFile(made, test::OldTables(shop, 36, 1));
    const auto file = Database::Open(made, OpenMode::Exclusive);
    file->Execute("UPDATE INK_Mix SET Color_Set = '<' || BC1 || '><' || BC2 || '>' || CASE WHEN BC3 <> '' THEN '<' || BC3 || '>' ELSE '' END");
    Transaction transaction(*file);
    Multiply(*file, "INK_Mix", 100, {{"Color_Name", "Color_Name || ' ' || ?1"}});
    Multiply(*file, "INK_Batch", 200, {{"BatchNo", "BatchNo + 2000 * ?1"}, {"JobNumber", "''"}});
    Multiply(*file, "INK_Batch_LotInv_Consumption", 200, {{"BatchNo", "BatchNo + 2000 * ?1"}});
    file->Execute("UPDATE FileInfo SET BatchNumber = 400001");
    transaction.Commit();
    return made;
  }();
  return path;
}

void UpdateOurs(benchmark::State& state) {
  LargeRoom& room = Room100k();
  const fs::path& old = OldFile();
  for (auto unused : state) {
    state.PauseTiming();
    const fs::path to = room.folder / "Updated.vkd";
    fs::remove(to);
    SilentPrompt prompt;
    NoProgress progress;
    Session session(prompt, progress, room.clock);
    session.DataFolder = room.session.DataFolder;
    session.support = std::make_unique<SupportFiles>(session.DataFolder);
    PeakMemory::Reset();
    state.ResumeTiming();
    const auto report = UpdateDataFile(session, {.source = old, .to = to});
    if (!report || !report->Balanced()) state.SkipWithError("the update does not balance");
    state.counters["peak_mb"] = PeakMemory::Mb();
  }
}
BENCHMARK(UpdateOurs)->Name("update_200k/ours")->Unit(benchmark::kMillisecond)->Iterations(1);

// Every value read, and put into a table of the same fields with the indexes that rows are found by.
void UpdateRaw(benchmark::State& state) {
  LargeRoom& room = Room100k();
  const fs::path& old = OldFile();
  for (auto unused : state) {
    const fs::path to = room.folder / "Raw.vkd";
    fs::remove(to);
    const auto from = Database::Open(old, OpenMode::ReadOnly);
    const auto file = Database::Create(to);
    Transaction transaction(*file);
    for (const std::string& name : from->TableNames()) {
      Table table{name, {}, {}};
      std::string marks;
      for (const std::string& field : from->StoredFields(name)) {
        table.fields.push_back({field, FieldType::Memo});
        marks += marks.empty() ? "?" : ", ?";
      }
      file->CreateTable(name, table);
      Statement row = from->Prepare("SELECT * FROM " + Quoted(name));
      Statement insert = file->Prepare(fmt::format("INSERT INTO {} VALUES ({}, NULL)", Quoted(name), marks));
      const int columns = static_cast<int>(table.fields.size());
      while (row.Step()) {
        for (int i = 0; i < columns; ++i) insert.Bind(i + 1, row.Get(i));
        insert.Run();
      }
    }
    for (const auto& [name, field] : {std::pair{"INK_Basic", "Color_Name"}, {"INK_Mix", "Color_Name"}, {"INK_Mix", "Color_Code"},
                                      {"INK_Mix", "Color_Set"}, {"INK_Mix", "AddSetName"}, {"INK_Mix", "Reorder"},
                                      {"INK_Batch", "Color_Name"}, {"INK_Batch", "Date_Entered"}, {"INK_Batch", "BatchNo"},
                                      {"INK_Batch_LotInv_Consumption", "BatchNo"}, {"INK_Batch_LotInv_Consumption", "Ingredient"}})
      file->EnsureIndex(name, std::string(name) + "_" + field, {field});
    transaction.Commit();
  }
}
BENCHMARK(UpdateRaw)->Name("update_200k/raw")->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace vellumark::bench
