#include "core/batch/adjust.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <utility>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/additions.h"
#include "core/batch/cost.h"
#include "core/batch/recipe.h"
#include "core/batch/recycle_list.h"
#include "core/batch/rows.h"
#include "core/inventory/posting.h"

namespace vellumark {
namespace {

using NamedAmount = std::pair<std::string, float>;

std::vector<NamedAmount> MixRows(const BatchWork& work, std::size_t count) {
  std::vector<NamedAmount> rows;
  for (std::size_t i = 0; i < count; ++i)
    rows.emplace_back(work.Rows.at(i).name, static_cast<float>(work.Rows.at(i).amount));
  return rows;
}

const BatchRow& RowOfKind(const BatchWork& work, std::size_t row, LineKind kind) {
  if (row >= work.Rows.size() || work.Rows[row].kind != kind)
    throw std::logic_error(fmt::format("row {} of the Batch is not of the kind {}", row, LineKindName(kind)));
  return work.Rows[row];
}

// Back to the recipe and the list as they were before any colour was chosen.
void RestoreLists(Session& session, BatchWork& work) {
  work.RecycledColors.clear();
  work.Ingredients = work.FormulaIngredients;
  if (work.FormulaRecycleList.empty()) {
    BuildRecycleList(session, work);
  } else {
    work.RecycleList = work.FormulaRecycleList;
  }
}

template <class Do>
void ForColor(BatchWork& work, std::string_view name, const Do& apply) {
  for (auto* list : {&work.FormulaRecycleList, &work.RecycleList, &work.RecycledColors})
    for (RecycleColor& color : *list)
      if (EqualNoCase(color.Color_Name, name)) apply(color);
}

// What an open Batch itself made stays: it is not what was poured out.
void EmptyStock(Session& session, const BatchWork& work, const std::string& name) {
  PostStock(session, {PostingSource::Reset, ColorKind::Mix, name, {}, UnlottedMade(session, work, name), {}});
}

void ShowCalculation(Session& session, BatchWork& work) {
  ShowBatchRows(session, work);
  RefreshRecycleList(session, work);
  CalculateFigures(session, work);
}

struct Adjustment {
  std::string Color_Name;
  std::size_t row = 0;
  float amount = 0;
  bool recycle = false;
  bool stockEmptied = false;
};

// The maximum as it is shown means all that the recipe takes: what the cut left of it would stand as a stray thousandth
// of an ingredient. Stock that ends with the shown amount gives no more.
float WholeMaximum(const BatchWork& work, const Adjustment& adjustment) {
  const auto color = std::ranges::find_if(
      work.RecycleList, [&](const RecycleColor& c) { return EqualNoCase(c.Color_Name, adjustment.Color_Name); });
  if (color == work.RecycleList.end()) return adjustment.amount;
  const double most = MostRecycled(work, *color, RecycledSoFar(work));
  const float whole = RoundSingle(most, 3);
  const bool isShownMaximum = Fixed(CutToThousandths(most), 3) == Fixed(adjustment.amount, 3);
  const bool endsStock = color->Inventory >= adjustment.amount && color->Inventory < whole;
  return isShownMaximum && !endsStock ? whole : adjustment.amount;
}

void RunAdjustment(Session& session, BatchWork& work, const Adjustment& adjustment) {
  const auto row = static_cast<std::int32_t>(adjustment.row);
  if (adjustment.amount != 0) {
    work.ClickedIndex = row;
    AddRecycledColor(session, work, adjustment.Color_Name, WholeMaximum(work, adjustment));
  } else {
    if (work.ClickedIndex >= row && work.ClickedIndex >= 1) --work.ClickedIndex;
    if (!work.RecycleList.empty() && work.RecycleList.front().Recycle_Percent == 0) RecalcRecycleList(work);
  }
  if (adjustment.stockEmptied) ForColor(work, adjustment.Color_Name, [](RecycleColor& color) { color.Inventory = 0; });
  if (adjustment.amount == 0) ForColor(work, adjustment.Color_Name, [](RecycleColor& color) { SetUsable(color, 0); });
  if (adjustment.recycle) {
    AutoRecycle(session, work);
  } else {
    SortRecycleList(work);
  }
  ShowCalculation(session, work);
}

Result<bool> PutIn(Session& session, BatchWork& work, const RecycleColor& color, float amount) {
  return ChangeRows(work, [&]() -> Result<bool> {
    RunAdjustment(session, work, {.Color_Name = color.Color_Name, .row = work.RecycledColors.size(), .amount = amount});
    return true;
  });
}

// The colour of the list by that name, once all checks passed; null when nothing is to be done.
Result<const RecycleColor*> Choosable(const BatchWork& work, std::string_view name) {
  if (work.Rows.size() >= static_cast<std::size_t>(kMostBatchLines)) return nullptr;
  const auto found = std::ranges::find_if(work.RecycleList, [&](const RecycleColor& color) {
    return EqualNoCase(color.Color_Name, name) && color.Recycle_Percent > 0;
  });
  if (found == work.RecycleList.end()) return nullptr;
  if (work.QuantityChanged)
    return Refuse("Recalculate Batch",
                  "You've changed the Quantity of this batch. Click the Recycle(F2) or Mix(F3) button to recalculate "
                  "the batch before selecting a color from the Recycle List.",
                  "txtQuantity");
  if (const auto valid = ValidateQuantity(work); !valid) return std::unexpected(valid.error());
  return &*found;
}

// A share as the person typed it, without the noise of its Single.
double Decimal(float share) {
  return RoundTo(share, 9);
}

// Gives the Batch its grown quantity; refuses one that no Batch may have.
Result<void> GrowQuantity(BatchWork& work, double quantity) {
  std::string before = std::exchange(work.QuantityText, ShortestText(RoundTo(quantity, 3)));
  auto valid = ValidateQuantity(work);
  if (!valid) work.QuantityText = std::move(before);
  return valid;
}

// How much of each ingredient of the recipe the pot holds beside the recycled inks, in hundredths as shares are.
std::vector<double> PouredOfRecipe(const BatchWork& work, const std::vector<double>& inThePot) {
  std::vector<double> poured(work.FormulaIngredients.size(), 0);
  for (std::size_t i = 0; i < inThePot.size(); ++i) {
    if (work.Rows.at(i).kind != LineKind::Basic || !(inThePot[i] > 0)) continue;
    const auto ingredient = std::ranges::find_if(
        work.FormulaIngredients, [&](const BatchIngredient& of) { return EqualNoCase(of.IngName, work.Rows[i].name); });
    if (ingredient != work.FormulaIngredients.end())
      poured[static_cast<std::size_t>(ingredient - work.FormulaIngredients.begin())] += inThePot[i] * 100;
  }
  return poured;
}

// The quantity of the Batch with so much in a Mix row: that of now while the recipe takes it, a larger one when not, in
// which the rows above keep their amounts, and all rows where others are in the pot. Nothing for a colour that the
// recipe takes nothing of.
std::optional<double> QuantityToHold(const BatchWork& work, std::size_t row, double amount,
                                     const std::vector<double>& inThePot) {
  const double now = work.Quantity();
  bool othersPoured = false;
  for (std::size_t i = 0; i < inThePot.size(); ++i) othersPoured = othersPoured || (i != row && inThePot[i] > 0);
  if (!othersPoured && amount <= RoundTo(work.Rows[row].max, 3)) return now;
  std::vector<double> brought = PouredOfRecipe(work, inThePot);
  double recycled = 0;
  const std::size_t kept = othersPoured ? work.RecycledColors.size() : row + 1;
  for (std::size_t i = 0; i < kept; ++i) {
    const double used = i == row ? amount : work.Rows[i].amount;
    recycled += used;
    for (const RecycleSlot& slot : *work.RecycledColors[i].slots) {
      if (slot.recipeSlot < 0 || slot.BQ == 0) return std::nullopt;
      brought[static_cast<std::size_t>(slot.recipeSlot)] += used * Decimal(slot.BQ);
    }
  }
  double quantity = std::max(now, recycled);
  for (std::size_t i = 0; i < brought.size(); ++i) {
    if (brought[i] == 0) continue;
    const double share = Decimal(work.FormulaIngredients[i].Percent);
    if (!(share > 0)) return std::nullopt;
    quantity = std::max(quantity, brought[i] / share);
  }
  return std::ceil(quantity * 1000 - 1e-6) / 1000;
}

std::string AmountText(float amount, const BatchWork& work) {
  return fmt::format("{} {}", Fixed(amount, 3), UnitName(work.UMF));
}

std::vector<AmountChange> ChangesSince(const BatchWork& work, const std::vector<BatchIngredient>& before) {
  std::vector<AmountChange> changes;
  for (const BatchIngredient& ingredient : work.Ingredients) {
    const auto old = std::ranges::find(before, ingredient.IngName, &BatchIngredient::IngName);
    changes.push_back({ingredient.IngName, old == before.end() ? 0 : old->Amount, ingredient.Amount});
  }
  return changes;
}

std::string ChangeLine(const AmountChange& change, const BatchWork& work) {
  std::string line = change.name;
  line.append(35 - std::min<std::size_t>(35, CharCount(line)), ' ');
  return line + AmountText(change.before, work) + "  --->  " + AmountText(change.after, work);
}

bool AskOverpour(Session& session, const char* title) {
  return session.prompt.Ask(title, "Reformulate Batch due to over pour?");
}

}  // namespace

Result<void> CheckAdjustable(const BatchWork& work) {
  if (auto valid = ValidateQuantity(work); !valid) return valid;
  if (!work.QuantityChanged) return {};
  return Refuse("Recalculate Batch",
                "You've changed the Quantity of this batch.\n"
                "Click the Recycle(F2) or Mix(F3) button to recalculate\n"
                "the batch before adjusting a color's amount.",
                "txtQuantity");
}

Result<MixAdjustment> OpenMixAdjustment(Session& session, BatchWork& work, std::size_t row) {
  if (auto valid = CheckAdjustable(work); !valid) return std::unexpected(valid.error());
  const BatchRow& shown = RowOfKind(work, row, LineKind::Mix);
  if (static_cast<std::int32_t>(row) < work.ClickedIndex &&
      session.prompt.Show({"Batch Window - Adjust This Color?",
                           "Adjusting this color now will change the colors and / or amounts\n"
                           "which appear below this color. Do you want to continue?",
                           Buttons::YesNo, Icon::Exclamation, Answer::Yes}) != Answer::Yes)
    return Decline("Batch Window - Adjust This Color?");
  return MixAdjustment{.row = row,
                       .Color_Name = shown.name,
                       .caption = " Adjust " + shown.name,
                       .amount = shown.amount,
                       .maximum = shown.max,
                       .offersRemoval = session.InvLotTracking == 0,
                       .recycleByDefault = !work.settings.mixByDefault};
}

Result<float> ReadMixAmount(std::string_view text) {
  const auto amount = ParseNumber(text);
  if (!amount || *amount < 0)
    return Refuse("Invalid Amount", fmt::format("{} is not a valid amount. Please enter a valid amount.", text),
                  "txtAmount");
  return RoundSingle(*amount, 3);
}

Result<void> AdjustMixRow(Session& session, BatchWork& work, std::size_t row, const MixAdjustChoice& choice) {
  if (auto valid = CheckAdjustable(work); !valid) return valid;
  const auto amount = ReadMixAmount(choice.amount);
  if (!amount) return std::unexpected(amount.error());
  const bool emptyStock = choice.removeFromInventory && session.InvLotTracking == 0;
  if (emptyStock)
    if (auto writable = RequireWritable(session); !writable) return writable;
  const std::string name = RowOfKind(work, row, LineKind::Mix).name;
  const std::vector<NamedAmount> above = MixRows(work, row);
  auto adjusted = ChangeRows(work, [&]() -> Result<void> {
    RestoreLists(session, work);
    for (const auto& [aboveName, aboveAmount] : above) AddRecycledColor(session, work, aboveName, aboveAmount);
    RunAdjustment(
        session, work,
        {.Color_Name = name, .row = row, .amount = *amount, .recycle = choice.recycle, .stockEmptied = emptyStock});
    return {};
  });
  if (adjusted && emptyStock) EmptyStock(session, work, name);
  return adjusted;
}

Result<bool> ChooseFromRecycleList(Session& session, BatchWork& work, std::string_view name) {
  const auto color = Choosable(work, name);
  if (!color) return std::unexpected(color.error());
  if (*color == nullptr) return false;
  const float listed = RoundSingle((*color)->Inventory, 3);
  return PutIn(session, work, **color, listed == 0 ? RoundSingle(work.Quantity(), 3) : listed);
}

Result<bool> ChooseFromRecycleList(Session& session, BatchWork& work, std::string_view name, std::string_view amount) {
  const auto wanted = ReadMixAmount(amount);
  if (!wanted) return std::unexpected(wanted.error());
  const auto color = Choosable(work, name);
  if (!color) return std::unexpected(color.error());
  if (*color == nullptr) return false;
  return PutIn(session, work, **color, *wanted);
}

Result<Overpour> OverpourBasicRow(Session& session, BatchWork& work, std::size_t row, std::string_view poured) {
  if (auto valid = CheckAdjustable(work); !valid) return std::unexpected(valid.error());
  const BatchRow& shown = RowOfKind(work, row, LineKind::Basic);
  if (!work.settings.Overpour || BatchIsFull(work)) return Overpour{};
  const auto amount = ParseNumber(poured);
  if (!amount) return Refuse("Adjust Basic Color", "Please Enter a valid amount.", "txtAmount");
  if (*amount < shown.amount)
    return Refuse("Adjust Basic Color",
                  "You can only enter an amount larger than the current amount.\n"
                  "To use a smaller amount, make a smaller batch.",
                  "txtAmount");
  if (!AskOverpour(session, "Excess Basic Color Weight")) return Overpour{};
  const auto recipe = std::ranges::find_if(work.FormulaIngredients, [&](const BatchIngredient& ingredient) {
    return EqualNoCase(ingredient.IngName, shown.name);
  });
  if (recipe == work.FormulaIngredients.end() || recipe->Percent == 0) return Overpour{};
  const double grown = RoundTo((*amount - shown.amount) * 100 / recipe->Percent, 3);
  if (auto valid = GrowQuantity(work, work.Quantity() + grown); !valid) return std::unexpected(valid.error());
  const std::vector<BatchIngredient> before = work.Ingredients;
  CalculateBatch(session, work, false);
  ShowCalculation(session, work);
  Overpour result{.reformulated = true, .printDetail = false, .changes = ChangesSince(work, before)};
  std::string lines;
  for (const AmountChange& change : result.changes) lines += "\n" + ChangeLine(change, work);
  if (!lines.empty())
    result.printDetail =
        session.prompt.Ask("Change in Amounts" + std::string(50, ' '), "Print out this detail?\n" + lines);
  return result;
}

Result<Overpour> OverpourMixRow(Session& session, BatchWork& work, std::size_t row, double poured,
                                const std::vector<double>& inThePot) {
  if (auto valid = CheckAdjustable(work); !valid) return std::unexpected(valid.error());
  const double amount = RoundTo(poured, 3);
  if (!(amount > RowOfKind(work, row, LineKind::Mix).amount)) return Overpour{};
  const auto quantity = QuantityToHold(work, row, amount, inThePot);
  if (!quantity) return Overpour{};
  if (!AskOverpour(session, "Excess Recycle Color Weight")) return Overpour{};
  return ChangeRows(work, [&]() -> Result<Overpour> {
    std::vector<NamedAmount> rows = MixRows(work, work.RecycledColors.size());
    rows[row].second = static_cast<float>(amount);
    if (auto valid = GrowQuantity(work, *quantity); !valid) return std::unexpected(valid.error());
    // The recipe for the grown quantity, or the round-off would have to make up for the growth.
    LoadFormulaIngredients(session, work);
    RestoreLists(session, work);
    work.ClickedIndex = static_cast<std::int32_t>(row);
    for (const auto& [name, used] : rows) AddRecycledColor(session, work, name, used);
    SortRecycleList(work);
    ShowCalculation(session, work);
    return Overpour{.reformulated = true, .printDetail = false, .changes = {}};
  });
}

Result<void> SetMixRow(Session& session, BatchWork& work, std::size_t row, double poured) {
  if (auto valid = CheckAdjustable(work); !valid) return valid;
  const std::string name = RowOfKind(work, row, LineKind::Mix).name;
  BatchWork before = work;
  return ChangeRows(work, [&]() -> Result<void> {
    std::vector<NamedAmount> rows = MixRows(work, work.RecycledColors.size());
    rows[row].second = RoundSingle(poured, 3);
    RestoreLists(session, work);
    work.ClickedIndex = static_cast<std::int32_t>(row);
    for (const auto& [color, used] : rows) AddRecycledColor(session, work, color, used);
    SortRecycleList(work);
    ShowCalculation(session, work);
    bool kept = work.RecycledColors.size() == rows.size();
    for (std::size_t i = 0; kept && i < rows.size(); ++i)
      kept = Fixed(work.Rows[i].amount, 3) == Fixed(rows[i].second, 3);
    if (kept) return {};
    work = std::move(before);
    return Refuse("Weigh Ingredient",
                  fmt::format("The recipe does not take {} of {}.\nReformulate the Batch, or pour less.",
                              AmountText(RoundSingle(poured, 3), work), name),
                  "cmdSave");
  });
}

}  // namespace vellumark
