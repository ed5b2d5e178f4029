#include "core/colors/rollup.h"

#include <fmt/format.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/colors/name_map.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

constexpr int kSlots = schema::kIngredientSlots;
// Rows read before they are written: a cursor never walks a table while it changes, and memory stays small.
constexpr std::size_t kWindow = 4096;

struct Figures {
  float cost = 0;
  float voc = 0;
  float hap = 0;
};

using FigureMap = NameMap<Figures>;

FigureMap ReadFigures(Session& session, std::string_view database) {
  FigureMap figures;
  Statement row =
      session.File().Prepare(fmt::format("SELECT Color_Name, PurchaseCost, VOC, HAP FROM {} ORDER BY RowKey",
                                         session.QuotedTable(schema::Basic, database)));
  while (row.Step()) figures.emplace(row.Text(0), Figures{row.Single(1), row.Single(2), row.Single(3)});
  return figures;
}

// The recipe's columns stand behind those of the row number and the stored figures.
constexpr int kFirstName = 4;
constexpr int kFirstAmount = kFirstName + kSlots;

std::string RecipeColumns() {
  std::string columns = "RowKey, BasicCost, BasicVOC, BasicHAP";
  for (int n = 0; n < kSlots; ++n) columns += fmt::format(", BC{}", n);
  for (int n = 0; n < kSlots; ++n) columns += fmt::format(", BQ{}", n);
  return columns;
}

Figures RollUp(const Statement& row, const FigureMap& basics, int decimalPlaces) {
  Figures sum;
  for (int n = 0; n < kSlots; ++n) {
    const std::string_view name = row.TextView(kFirstName + n);
    if (name.empty()) break;
    const auto basic = basics.find(name);
    if (basic == basics.end()) continue;
    const double amount = row.Single(kFirstAmount + n);
    const Figures& figures = basic->second;
    sum.cost = static_cast<float>(sum.cost + figures.cost * amount / 100);
    sum.voc = static_cast<float>(sum.voc + figures.voc * amount / 100);
    sum.hap = static_cast<float>(sum.hap + figures.hap * amount / 100);
  }
  return {RoundSingle(sum.cost, decimalPlaces), RoundSingle(sum.voc, 3), RoundSingle(sum.hap, 3)};
}

struct NewFigures {
  std::int64_t key = 0;
  Figures figures;
};

// What the wanted columns hold already need not be written.
bool Differs(const Statement& row, const Figures& figures, RollUpWanted wanted) {
  const auto differs = [&](int column, float value) { return row.IsNull(column) || row.Single(column) != value; };
  return (wanted.cost && differs(1, figures.cost)) || (wanted.voc && differs(2, figures.voc)) ||
         (wanted.hap && differs(3, figures.hap));
}

std::string UpdateText(const std::string& table, RollUpWanted wanted) {
  std::string sets;
  const auto set = [&](bool want, std::string_view column) {
    if (want) sets += fmt::format("{}{} = ?", sets.empty() ? "" : ", ", column);
  };
  set(wanted.cost, "BasicCost");
  set(wanted.voc, "BasicVOC");
  set(wanted.hap, "BasicHAP");
  return fmt::format("UPDATE {} SET {} WHERE RowKey = ?", table, sets);
}

void Write(Statement& update, const NewFigures& row, RollUpWanted wanted) {
  int parameter = 1;
  if (wanted.cost) update.Bind(parameter++, row.figures.cost);
  if (wanted.voc) update.Bind(parameter++, row.figures.voc);
  if (wanted.hap) update.Bind(parameter++, row.figures.hap);
  update.Bind(parameter, row.key).Run();
}

std::string ProgressText(RollUpWanted wanted) {
  std::string text;
  const auto line = [&](bool want, std::string_view what) {
    if (want) text += fmt::format("{}{}", text.empty() ? "" : "\n", what);
  };
  line(wanted.cost, "Updating Master Formula Basic Costs...");
  line(wanted.voc, "Updating Master Formula VOC values...");
  line(wanted.hap, "Updating Master Formula HAP values...");
  return text;
}

}  // namespace

void MarkRollUpsStale(Session& session, RollUpWanted stale) {
  MarkPendingRollUps(session.File(), session.CurrentDatabase, stale);
  session.CostChanged = session.CostChanged || stale.cost;
  session.VOCChanged = session.VOCChanged || stale.voc;
  session.HAPChanged = session.HAPChanged || stale.hap;
}

std::size_t RunPasses(Session& session, RollUpWanted wanted, std::string_view database) {
  if (!wanted.Any()) return 0;
  Database& file = session.File();
  const std::string of(database.empty() ? session.CurrentDatabase : database);
  const std::string table = session.QuotedTable(schema::Mix, of);
  ProgressRun progress(session.progress, ProgressText(wanted));
  Transaction transaction(file);
  const FigureMap basics = ReadFigures(session, of);
  const auto count = static_cast<std::size_t>(file.Scalar("SELECT COUNT(*) FROM " + table).Whole());
  Statement rows =
      file.Prepare(fmt::format("SELECT {} FROM {} WHERE RowKey > ? ORDER BY RowKey LIMIT ?", RecipeColumns(), table));
  Statement update = file.Prepare(UpdateText(table, wanted));
  std::vector<NewFigures> changed;
  std::int64_t last = 0;
  std::size_t done = 0;
  std::size_t written = 0;
  for (std::size_t read = kWindow; read == kWindow;) {
    read = 0;
    changed.clear();
    rows.Bind(1, last).Bind(2, static_cast<std::int64_t>(kWindow));
    for (; rows.Step(); ++read) {
      last = rows.Whole(0);
      const Figures figures = RollUp(rows, basics, session.DecimalPlaces);
      if (Differs(rows, figures, wanted)) changed.push_back({last, figures});
    }
    rows.Reset();
    for (const NewFigures& row : changed) Write(update, row, wanted);
    written += changed.size();
    progress.Step(done += read, count);
  }
  ClearPendingRollUps(file, of, wanted);
  transaction.Note({Change::Kind::Mix, of, "", Change::What::All, ""});
  transaction.Commit();
  if (of != session.CurrentDatabase) return written;
  if (wanted.cost) session.CostChanged = false;
  if (wanted.voc) session.VOCChanged = false;
  if (wanted.hap) session.HAPChanged = false;
  return written;
}

void UpdateMixBasicCosts(Session& session) {
  RunPasses(session, {.cost = true});
}

void UpdateMixVOC(Session& session) {
  RunPasses(session, {.voc = true});
}

void UpdateMixHAP(Session& session) {
  RunPasses(session, {.hap = true});
}

void RunPendingPasses(Session& session) {
  if (!session.DataFileDB || session.ArchiveView) return;
  const auto run = [&](RollUpWanted stale, const std::string& database) {
    // A Database that lacks its formulas can still be left, and the file be used.
    if (stale.Any() && session.File().TableExists(session.Table(schema::Mix, database)))
      RunPasses(session, stale, database);
  };
  run({session.CostChanged, session.VOCChanged, session.HAPChanged}, session.CurrentDatabase);
  for (const PendingRollUps& pending : ReadPendingRollUps(session.File())) run(pending.stale, pending.database);
}

void RunPendingPassesOrTell(Session& session) {
  try {
    RunPendingPasses(session);
  } catch (const Failure& failure) {
    session.prompt.Tell(
        "Master Formulas",
        fmt::format("The figures of the formulas are not up to date yet.\n{}: {}.", failure.subject, failure.cause),
        Icon::Exclamation);
  }
}

}  // namespace vellumark
