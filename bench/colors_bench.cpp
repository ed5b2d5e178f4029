// Speed of the bulk tools of a Database, each measurement beside raw prepared updates of the same rows.

#include <benchmark/benchmark.h>

#include <QLineEdit>

#include "core/colors/additive_control.h"
#include "core/colors/basics.h"
#include "core/colors/formula_modifier.h"
#include "desktop/colors/register.h"
#include "desktop/kit/window.h"
#include "desktop/tools/register.h"
#include "large_room.h"
#include "offscreen.h"

namespace vellumark::bench {
namespace {

constexpr int kFormulas = 10000;
constexpr int kTurns = 4;

// The recipes of all formulas, as a statement binds them.
using Rows = std::vector<std::vector<Value>>;

std::string RecipeFields(std::string_view between) {
  std::string fields;
  for (const std::string_view word : {"BC", "BQ"})
    for (int n = 0; n < schema::kIngredientSlots; ++n) fields += schema::Numbered(word, n) + std::string(between);
  return fields + "Color_Set" + std::string(between) + "AddSetName" + std::string(between) + "LastModified";
}

Rows ReadRows(Database& file) {
  Rows rows;
  Statement all = file.Prepare("SELECT " + RecipeFields(", ") + ", RowKey FROM INK_Mix ORDER BY RowKey");
  while (all.Step()) {
    rows.emplace_back();
    for (int i = 0; i < all.ColumnCount(); ++i) rows.back().push_back(all.Get(i));
  }
  return rows;
}

void WriteRows(Database& file, const Rows& rows) {
  Transaction transaction(file);
  Statement update = file.Prepare("UPDATE INK_Mix SET " + RecipeFields(" = ?, ") + " = ? WHERE RowKey = ?");
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) update.Bind(static_cast<int>(i) + 1, row[i]);
    update.Run();
  }
  transaction.Commit();
}

// Answers every question so that the work is done.
class WillingPrompt final : public Prompt {
 public:
  Answer Show(const Message& message) override { return message.buttons == Buttons::YesNo ? Answer::Yes : Answer::Ok; }
};

// Ten thousand formulas, and two states between which every one of them changes, its search text too.
class ToolRoom {
 public:
  ToolRoom() {
    session.DataFileDB = std::move(room.session.DataFileDB);
    session.support = std::move(room.session.support);
    session.DataFileDB->SetChanges(&session.changes);
    session.CurrentDatabase = "INK";
    AddZeroBasic(session, "NEW INK", false);
    for (const char* name : {"DRIER", "WAX"}) AddZeroBasic(session, name, true);
    for (const auto& [set, additive] : {std::pair{"SLOW", "DRIER"}, {"FAST", "WAX"}}) {
      AdditiveSetWork work{set, {}};
      work.rows[0] = {additive, "5"};
      if (!CreateAdditiveSet(session, work)) throw std::runtime_error("the Additive Set was refused");
    }
    colors = MixNames(session);
  }

  // Adds an ingredient to every formula, or takes it away again.
  bool Modify(int turn) {
    const bool add = turn % 2 == 0;
    const ModifierLine line{true, add ? ModMethod::Add : ModMethod::Remove, "NEW INK", add ? "10" : "100"};
    return ApplyModifier(session, {line}, colors).value_or(false);
  }
  bool ApplySet(int turn) {
    return ApplyAdditiveSet(session, turn % 2 == 0 ? "SLOW" : "FAST", SetMethod::Add, colors).value_or(false);
  }

  LargeRoom room{kFormulas};
  WillingPrompt prompt;
  Session session{prompt, room.progress, room.clock};
  std::vector<std::string> colors;
};

using Work = bool (ToolRoom::*)(int);

void Ours(benchmark::State& state, Work work) {
  ToolRoom tools;
  PeakMemory::Reset();
  int turn = 0;
  for (auto unused : state)
    if (!(tools.*work)(turn++)) state.SkipWithError("the work was refused");
  state.counters["peak_mb"] = PeakMemory::Mb();
}

void Raw(benchmark::State& state, Work work) {
  ToolRoom tools;
  Rows states[2];
  for (int turn = 0; turn < 2; ++turn) {
    if (!(tools.*work)(turn)) state.SkipWithError("the work was refused");
    states[turn] = ReadRows(tools.session.File());
  }
  int turn = 0;
  for (auto unused : state) WriteRows(tools.session.File(), states[turn++ % 2]);
}

void ModifierOurs(benchmark::State& state) {
  Ours(state, &ToolRoom::Modify);
}
BENCHMARK(ModifierOurs)->Name("modifier_10k/ours")->Unit(benchmark::kMillisecond)->Iterations(kTurns);

void ModifierRaw(benchmark::State& state) {
  Raw(state, &ToolRoom::Modify);
}
BENCHMARK(ModifierRaw)->Name("modifier_10k/raw")->Unit(benchmark::kMillisecond)->Iterations(kTurns);

// The same with a desk of windows that hear of it, until each of them shows it.
void ModifierWindowsOurs(benchmark::State& state) {
  NeedApplication();
  ToolRoom tools;
  desktop::WindowList windows{tools.session};
  desktop::RegisterColorsWindows(windows);
  desktop::RegisterToolsWindows(windows);
  Shown(*windows.OpenForm("MixColorsForm", {{"FindRecord", tools.colors.front()}}));
  for (const char* name : {"BasicColorsForm", "DBFormulaModifierForm"}) Shown(*windows.OpenForm(name));
  auto* recipe = windows.Form("MixColorsForm");
  int turn = 0;
  for (auto unused : state) {
    const bool add = turn % 2 == 0;
    if (!tools.Modify(turn++)) state.SkipWithError("the work was refused");
    windows.DeliverChanges();
    QApplication::processEvents();
    bool shown = false;
    for (const QLineEdit* line : recipe->findChildren<QLineEdit*>()) shown = shown || line->text() == "NEW INK";
    if (shown != add) state.SkipWithError("the window does not show the recipe as it is");
  }
}
BENCHMARK(ModifierWindowsOurs)->Name("modifier_windows_10k/ours")->Unit(benchmark::kMillisecond)->Iterations(kTurns);

void ModifierWindowsRaw(benchmark::State& state) {
  Raw(state, &ToolRoom::Modify);
}
BENCHMARK(ModifierWindowsRaw)->Name("modifier_windows_10k/raw")->Unit(benchmark::kMillisecond)->Iterations(kTurns);

void AddsetOurs(benchmark::State& state) {
  Ours(state, &ToolRoom::ApplySet);
}
BENCHMARK(AddsetOurs)->Name("addset_apply_10k/ours")->Unit(benchmark::kMillisecond)->Iterations(kTurns);

void AddsetRaw(benchmark::State& state) {
  Raw(state, &ToolRoom::ApplySet);
}
BENCHMARK(AddsetRaw)->Name("addset_apply_10k/raw")->Unit(benchmark::kMillisecond)->Iterations(kTurns);

}  // namespace
}  // namespace vellumark::bench
