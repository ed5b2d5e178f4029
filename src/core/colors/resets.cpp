#include "core/colors/resets.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/colors/amounts.h"
#include "core/colors/rollup.h"
#include "core/datafile/cost_decimals.h"
#include "core/datafile/row_pieces.h"
#include "core/datafile/schema.h"
#include "core/session/acts.h"
#include "core/session/rights.h"
#include "core/session/settings.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

std::optional<float> ValueInRange(std::string_view typed, int decimals, double highest) {
  const auto number = ParseNumber(typed);
  if (!number || std::fabs(*number) > 1e9) return std::nullopt;
  const double rounded = RoundTo(*number, decimals);
  if (rounded < 0 || rounded > highest) return std::nullopt;
  return RoundSingle(rounded, decimals);
}

struct Reset {
  const Table& table;
  std::string_view column;
  std::string_view progressText;
  Change::Kind kind;
  RollUpWanted stale;
};

// "Reseting ...", as its progress is told, in the words of a list.
std::string ResetText(const Reset& reset) {
  constexpr std::string_view kDoing = "Reseting", kDots = "...";
  std::string_view text = reset.progressText;
  if (text.starts_with(kDoing)) text.remove_prefix(kDoing.size());
  if (text.ends_with(kDots)) text.remove_suffix(kDots.size());
  return "Reset" + std::string(text);
}

void WriteEverywhere(Session& session, const Reset& reset, float value) {
  ProgressRun progress(session.progress, reset.progressText);
  Transaction transaction(session.File());
  UndoStep step(session, reset.stale.cost ? Undoable::ResetCosts : Undoable::ResetEmissions, ResetText(reset));
  const std::string table = session.Table(reset.table);
  Statement update = session.File().Prepare(
      fmt::format("UPDATE {} SET {} = ? WHERE RowKey BETWEEN ? AND ?", Quoted(table), reset.column));
  ForRowPieces(session.File(), table, [&](std::int64_t first, std::int64_t last, double percent) {
    update.Bind(1, value).Bind(2, first).Bind(3, last).Run();
    session.progress.Percent(percent);
    return true;
  });
  transaction.Note({reset.kind, session.CurrentDatabase, "", Change::What::All, ""});
  MarkRollUpsStale(session, reset.stale);
  step.Keep();
  transaction.Commit();
}

constexpr std::string_view kMixCostProgress = "Reseting Master Formula Purchase Costs...";

std::unexpected<Refusal> InvalidDollarValue(std::string field) {
  return Refuse("Invalid Dollar Value", fmt::format("Please enter a Currency Value between 0 and {}.", kLargestAmount),
                std::move(field));
}

Result<void> MayReset(const Session& session, AmountKey key, std::string_view field = "txtNewValue") {
  if (auto allowed = RequireAct(session, Act::FormulaTools); !allowed) return allowed;
  return RequireRight(session, key, field);
}

enum class Emission { VOC, HAP };

std::string_view NameOf(Emission emission) {
  return emission == Emission::VOC ? "VOC" : "HAP";
}

Result<float> ReadEmission(const Session& session, Emission emission, std::string_view typed, std::string_view field) {
  const AmountKey key = emission == Emission::VOC ? AmountKey::VOC : AmountKey::HAP;
  if (auto may = MayReset(session, key, field); !may) return std::unexpected(may.error());
  if (const auto value = ValueInRange(typed, 3, kLargestAmount)) return *value;
  return Refuse(fmt::format("Invalid {} Value", NameOf(emission)),
                fmt::format("Please enter a {} value between 0 and {}.", NameOf(emission), kLargestAmount),
                std::string(field));
}

void WriteEmission(Session& session, Emission emission, ColorKind kind, float value) {
  const std::string text = fmt::format("Reseting {} {} values...",
                                       kind == ColorKind::Mix ? "Master Formula" : "Basic Color", NameOf(emission));
  WriteEverywhere(session,
                  {ColorTable(kind),
                   NameOf(emission),
                   text,
                   ChangeKind(kind),
                   {.voc = emission == Emission::VOC, .hap = emission == Emission::HAP}},
                  value);
}

}  // namespace

Result<void> ResetBasicCosts(Session& session, std::string_view newValue) {
  if (auto may = MayReset(session, AmountKey::Currency); !may) return may;
  const auto value = ValueInRange(newValue, session.DecimalPlaces, kLargestAmount);
  if (!value)
    return Refuse("Invalid Purchase Cost",
                  fmt::format("Please enter a Purchase Cost between 0 and {}.", kLargestAmount), "txtNewValue");
  WriteEverywhere(
      session,
      {schema::Basic, "PurchaseCost", "Reseting Basic Color Purchase Costs...", Change::Kind::Basic, {.cost = true}},
      *value);
  return {};
}

Result<void> ResetMixCosts(Session& session, std::string_view newValue) {
  if (auto may = MayReset(session, AmountKey::Currency); !may) return may;
  const auto value = ValueInRange(newValue, session.DecimalPlaces, kLargestAmount);
  if (!value) return InvalidDollarValue("txtNewValue");
  WriteEverywhere(session, {schema::Mix, "PurchaseCost", kMixCostProgress, Change::Kind::Mix, {.cost = true}}, *value);
  return {};
}

Result<void> ResetMixCostsFromBasics(Session& session, std::string_view markup, std::string_view fixed) {
  if (auto may = MayReset(session, AmountKey::Currency); !may) return may;
  const auto percent = ValueInRange(markup, 2, 100);
  if (!percent) return Refuse("Invalid Markup Percent", "Please enter a Markup Percent between 0 and 100", "txtMarkup");
  const auto added = ValueInRange(fixed, session.DecimalPlaces, kLargestAmount);
  if (!added) return InvalidDollarValue("txtFixed");
  RunPendingPasses(session);

  const int decimals = session.DecimalPlaces;
  const std::string table = session.QuotedTable(schema::Mix);
  ProgressRun progress(session.progress, kMixCostProgress);
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::ResetMixCostsFromBasics, "Reset Master Formula costs from their ingredients");
  Statement rows = session.File().Prepare(
      fmt::format("SELECT RowKey, BasicCost FROM {} WHERE RowKey > ? ORDER BY RowKey LIMIT 1", table));
  Statement update = session.File().Prepare(fmt::format("UPDATE {} SET PurchaseCost = ? WHERE RowKey = ?", table));
  const auto count = static_cast<std::size_t>(session.File().Scalar("SELECT COUNT(*) FROM " + table).Whole());
  std::size_t done = 0;
  for (std::int64_t last = 0;; progress.Step(++done, count)) {
    rows.Bind(1, last);
    if (!rows.Step()) break;
    last = rows.Whole(0);
    const double basicCost = RoundTo(rows.Single(1), decimals);
    rows.Reset();
    const double marked = RoundTo(basicCost + basicCost * RoundTo(*percent, 2) / 100, decimals);
    const double cost = RoundTo(marked + RoundTo(*added, decimals), decimals);
    update.Bind(1, RoundSingle(std::clamp(cost, 0.0, kLargestAmount), decimals)).Bind(2, last).Run();
  }
  transaction.Note({Change::Kind::Mix, session.CurrentDatabase, "", Change::What::All, ""});
  MarkRollUpsStale(session, {.cost = true});
  step.Keep();
  transaction.Commit();
  return {};
}

Result<void> ResetEmissions(Session& session, ColorKind kind, const EmissionReset& reset) {
  std::optional<float> voc;
  std::optional<float> hap;
  for (const auto& [typed, emission, value] :
       {std::tuple{&reset.VOC, Emission::VOC, &voc}, {&reset.HAP, Emission::HAP, &hap}}) {
    if (!*typed) continue;
    const auto read = ReadEmission(session, emission, **typed, NameOf(emission));
    if (!read) return std::unexpected(read.error());
    *value = *read;
  }
  Transaction transaction(session.File());
  UndoStep step(
      session, Undoable::ResetEmissions,
      kind == ColorKind::Mix ? "Reset VOC and HAP of all Master Formulas" : "Reset VOC and HAP of all Basic Colors");
  if (voc) WriteEmission(session, Emission::VOC, kind, *voc);
  if (hap) WriteEmission(session, Emission::HAP, kind, *hap);
  step.Keep();
  transaction.Commit();
  return {};
}

Result<bool> ChangeDecimalPlaces(Session& session, int decimalPlaces) {
  if (decimalPlaces < 2 || decimalPlaces > 4)
    return Refuse("Unit Cost Accuracy",
                  "The standard Unit Cost accuracy is 2 decimal places, the maximum decimal place accuracy is 4.",
                  "cmbDecimalPlaces");
  if (auto allowed = RequireCommandRight(session, CommandRight::Options); !allowed)
    return std::unexpected(allowed.error());
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  if (decimalPlaces < session.DecimalPlaces &&
      !session.prompt.Ask("Warning",
                          "Reducing unit cost accuracy may result in the permanent loss of precise unit cost data. For "
                          "example, if you have unit costs that are accurate to four decimal places and you set the "
                          "decimal place accuracy to two, the unit cost information in the third and fourth decimal "
                          "places will be permanently lost.\n\nDo you wish to continue?",
                          Answer::No)) {
    session.prompt.Tell("Unit Cost Accuracy", "Unit cost data has not been modified.");
    return false;
  }
  if (decimalPlaces == session.DecimalPlaces) return true;
  // Marked before the setting, which stands in another file: whoever dies between the two leaves nothing behind.
  if (session.DataFileDB) {
    Transaction transaction(session.File());
    SettleCostDecimals(session.File(), session.databaseList, decimalPlaces);
    MarkRollUpsStale(session, {.cost = true});
    transaction.Commit();
  }
  StoreSettings(session, {setting::DecimalPlaces.To(decimalPlaces)});
  RunPendingPasses(session);
  return true;
}

}  // namespace vellumark
