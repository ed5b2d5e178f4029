// Speed of formulas that go out and come in, in each format, beside the engine reading and writing their rows.

#include <benchmark/benchmark.h>

#include <chrono>
#include <iterator>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/exchange/formula_import.h"
#include "core/exchange/formula_export.h"
#include "core/exchange/formula_writer.h"
#include "large_room.h"

namespace vellumark::bench {
namespace {

constexpr int kImported = 10000;
// The two that bear the name of a workbook are the same text.
constexpr const char* kNames[] = {"mfe", "rez", "zg", "ja", "header2", "header1"};

bool HasColumns(FormulaFormat format) {
  return format >= FormulaFormat::Header2;
}

std::filesystem::path WriteFormulas(LargeRoom& room, FormulaFormat format) {
  std::vector<SourceColor> basics(static_cast<std::size_t>(room.maker.Basics()));
  for (std::size_t n = 0; n < basics.size(); ++n) basics[n].name = room.maker.BasicName(static_cast<int>(n));
  FormulaFileText file(format, "BENCH", basics);
  for (int i = 0; i < kImported; ++i)
    file.Add("IMPORTED " + std::to_string(i), "I" + std::to_string(i), room.maker.Next());
  const auto path = room.folder / ("bench" + std::string(FormulaFormats()[static_cast<std::size_t>(format)].extension));
  ReplaceFile(path, file.Text());
  return path;
}

// ---- import_10k, import_10k_FORMAT: an .mfe file or one of another format of 10,000 formulas into a Database that has their ingredients

void ImportOurs(benchmark::State& state, FormulaFormat format) {
  LargeRoom room(100);
  const auto path = WriteFormulas(room, format);
  for (auto unused : state) {
    if (!ImportFormulas(room.session, path)) state.SkipWithError("the import was refused");
    state.PauseTiming();
    room.session.File().Execute("DELETE FROM INK_Mix");
    state.ResumeTiming();
  }
}

// The cells of a file with a column for each Basic Color are read as well: it has ten times as many as its formulas
// have ingredients.
void ImportRaw(benchmark::State& state, FormulaFormat format) {
  LargeRoom room(100);
  const auto path = WriteFormulas(room, format);
  if (!ImportFormulas(room.session, path)) state.SkipWithError("the import was refused");
  Database& file = room.session.File();
  std::vector<std::vector<Value>> rows;
  {
    Statement all = file.Prepare("SELECT * FROM INK_Mix WHERE Color_Name LIKE 'IMPORTED%'");
    while (all.Step()) {
      rows.emplace_back();
      for (int i = 0; i < all.ColumnCount(); ++i) rows.back().push_back(all.Get(i));
    }
  }
  std::string marks;
  for (std::size_t i = 0; i < rows.at(0).size(); ++i) marks += i == 0 ? "?" : ", ?";
  for (auto unused : state) {
    state.PauseTiming();
    file.Execute("DELETE FROM INK_Mix");
    state.ResumeTiming();
    if (HasColumns(format)) {
      const std::string bytes = ReadFileBytes(path);
      for (const std::string_view line : Split(bytes, '\n')) benchmark::DoNotOptimize(Split(line, '\t').size());
    }
    Transaction transaction(file);
    Statement insert = file.Prepare("INSERT INTO INK_Mix VALUES (" + marks + ")");
    for (const auto& row : rows) {
      for (std::size_t i = 0; i < row.size(); ++i) insert.Bind(static_cast<int>(i) + 1, row[i]);
      insert.Run();
    }
    transaction.Commit();
  }
}

// ---- export_100k_FORMAT: all formulas of a large Database into a file

LargeRoom& Room() {
  static LargeRoom room(100000);
  return room;
}

void ExportOurs(benchmark::State& state, FormulaFormat format) {
  LargeRoom& room = Room();
  PeakMemory::Reset();
  for (auto unused : state) {
    const auto done = ExportFormulas(room.session, format, {}, room.folder / "all.txt");
    if (!done || done->formulas != 100000) state.SkipWithError("not all were written");
  }
  state.counters["peak_mb"] = PeakMemory::Mb();
}

std::string RecipeColumns() {
  std::string columns;
  for (int n = 0; n < static_cast<int>(schema::kIngredientSlots); ++n)
    columns += ", BC" + std::to_string(n) + ", BQ" + std::to_string(n);
  return columns;
}

// The rows in their order; of a file with a column for each Basic Color, as many cells besides.
void ExportRaw(benchmark::State& state, FormulaFormat format) {
  LargeRoom& room = Room();
  for (auto unused : state) {
    std::string text;
    Statement rows = room.session.File().Prepare("SELECT Color_Name, Color_Code" + RecipeColumns() +
                                                    " FROM INK_Mix ORDER BY Color_Name, RowKey");
    while (rows.Step()) {
      text += rows.TextView(0);
      for (int n = 2; n < rows.ColumnCount() && !rows.TextView(n).empty(); n += 2) {
        text.append(rows.TextView(n)).append("\t");
        benchmark::DoNotOptimize(rows.Number(n + 1));
      }
      if (!HasColumns(format)) continue;
      for (int n = 0; n < room.maker.Basics(); ++n) text += "\t0";
    }
    ReplaceFile(room.folder / "raw.txt", text);
  }
}

// ---- preview_100k: a file of as many formulas as a large Database has, compared with it; every tenth one differs

std::filesystem::path FileToCompare() {
  LargeRoom& room = Room();
  const auto path = room.folder / "compared.mfe";
  if (std::filesystem::exists(path)) return path;
  if (!ExportFormulas(room.session, FormulaFormat::Mfe, {}, path)) throw std::runtime_error("nothing to compare");
  const std::string bytes = ReadFileBytes(path);
  std::string text;
  int n = 0;
  for (const std::string_view line : Split(bytes, '\n')) {
    std::vector<std::string_view> cells = Split(line, '\t');
    if (n++ % 10 == 1 && cells.size() > 5) {
      std::swap(cells[1], cells[3]);
      std::swap(cells[2], cells[4]);
    }
    for (std::size_t i = 0; i < cells.size(); ++i) text.append(i == 0 ? "" : "\t").append(cells[i]);
    text += '\n';
  }
  ReplaceFile(path, text);
  return path;
}

void PreviewOurs(benchmark::State& state) {
  LargeRoom& room = Room();
  const auto path = FileToCompare();
  PeakMemory::Reset();
  double ms = 0;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    auto table = ReadFormulas(room.session, path);
    const auto plan = PlanMerge(room.session, *std::move(table), {});
    if (!plan || plan->Count(MergeMod::Different) == 0 || plan->Count(MergeMod::Same) < 80000)
      state.SkipWithError("the comparison is not as it should be");
    ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
  }
  state.counters["ms"] = ms;
  state.counters["peak_mb"] = PeakMemory::Mb();
}

// The cells of the file and the recipes of the Database.
void PreviewRaw(benchmark::State& state) {
  LargeRoom& room = Room();
  const auto path = FileToCompare();
  for (auto unused : state) {
    const std::string bytes = ReadFileBytes(path);
    for (const std::string_view line : Split(bytes, '\n')) benchmark::DoNotOptimize(Split(line, '\t').size());
    Statement rows = room.session.File().Prepare("SELECT Color_Name" + RecipeColumns() + " FROM INK_Mix");
    while (rows.Step())
      for (int n = 0; n < rows.ColumnCount(); ++n) benchmark::DoNotOptimize(rows.TextView(n).size());
  }
}

const bool kRegistered = [] {
  for (int n = 0; n < static_cast<int>(std::size(kNames)); ++n) {
    const FormulaFormat format{n};
    const std::string name = kNames[n];
    const auto add = [&](const std::string& of, auto* measured, int times) {
      benchmark::RegisterBenchmark((of).c_str(), measured, format)->Unit(benchmark::kMillisecond)->Iterations(times);
    };
    const std::string import = format == FormulaFormat::Mfe ? "import_10k" : "import_10k_" + name;
    add(import + "/ours", ImportOurs, 4);
    add(import + "/raw", ImportRaw, 4);
    add("export_100k_" + name + "/ours", ExportOurs, 2);
    add("export_100k_" + name + "/raw", ExportRaw, 2);
  }
  benchmark::RegisterBenchmark("preview_100k/ours", PreviewOurs)->Unit(benchmark::kMillisecond)->Iterations(1);
  benchmark::RegisterBenchmark("preview_100k/raw", PreviewRaw)->Unit(benchmark::kMillisecond)->Iterations(1);
  return true;
}();

}  // namespace
}  // namespace vellumark::bench
