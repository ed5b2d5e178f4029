#include "core/batch/actions.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/batch/cost.h"
#include "core/batch/recipe.h"
#include "core/batch/recycle_list.h"
#include "core/batch/rows.h"
#include "core/colors/basics.h"
#include "core/colors/names.h"
#include "core/datafile/schema.h"

namespace vellumark {
namespace {

enum class QuantityStep { Same, Smaller, Larger };

// With the quantity that the rows stand for, not with their total: additions are in that, and a round-off that found no
// ingredient row is not.
QuantityStep CompareWithRows(const BatchWork& work) {
  const Currency rows = Currency::From(work.CalculatedQuantity);
  const Currency quantity = Currency::From(RoundTo(work.Quantity(), 3));
  if (quantity == rows) return QuantityStep::Same;
  return quantity < rows ? QuantityStep::Smaller : QuantityStep::Larger;
}

// Compared in one decimal: an amount that would lose less than that is no reason to ask.
bool RecycledMustShrink(const BatchWork& work) {
  double left = work.Quantity();
  for (const RecycleColor& color : work.RecycledColors) {
    const double usable = RoundTo(color.Usable, 3);
    if (RoundTo(left * color.Recycle_Percent, 1) < usable) return true;
    left -= usable;
  }
  return false;
}

bool HasMore(const RecycleColor& color) {
  return color.Inventory > color.Usable;
}

bool AskQuestion(Session& session, const char* title, std::string text) {
  return session.prompt.Show({title, std::move(text), Buttons::YesNo, Icon::Question, Answer::Yes}) == Answer::Yes;
}

bool AskDecrease(Session& session) {
  return AskQuestion(session, "Batch Window - Allow Recycled Ink Amounts to Decrease?",
                     "Decreasing the Batch Quantity will cause the\n"
                     "Recycled Ink Amounts used in this Batch to decrease.\n\n"
                     "Allow Recycled Ink Amounts to Decrease?");
}

bool AskIncrease(Session& session) {
  return AskQuestion(session, "Batch Window - Allow Recycled Ink Amounts to Increase?",
                     "Increasing the Batch Quantity will cause the\n"
                     "Recycled Ink Amounts used in this Batch to increase.\n\n"
                     "Allow Recycled Ink Amounts to increase?");
}

// Everything in stock is offered anew; the calculation then lowers it to what the recipe takes.
void OfferAllStock(Session& session, BatchWork& work) {
  LoadFormulaIngredients(session, work);
  for (RecycleColor& color : work.RecycledColors) {
    if (!HasMore(color)) continue;
    SetUsable(color, color.Inventory);
    CalcRecyclePercent(work, color);
  }
}

}  // namespace

Result<std::string> FindBatchFormula(const Session& session, std::string_view typed) {
  const std::string name = Trim(typed);
  const std::string table = session.QuotedTable(schema::Mix);
  for (const char* column : {"Color_Name", "Color_Code"}) {
    for (const std::string& wanted : {name, std::string(kPantonePrefix) + name}) {
      const Value found = session.File().Scalar(
          fmt::format("SELECT Color_Name FROM {} WHERE {} = ? ORDER BY RowKey LIMIT 1", table, column), {wanted});
      if (!name.empty() && !found.IsNull()) return found.Text();
    }
  }
  if (!name.empty() && BasicColorExists(session, name))
    return Refuse("Cannot make a batch from a Basic Color",
                  fmt::format("{0} is a Basic Color in your database.\n"
                              "You can only make batches from Mix Colors.\n"
                              "If you are using {0} in a job,\n"
                              "you can add it to a job record using the Job Window.",
                              name),
                  "Color_Name");
  return Refuse("Color Not Found", fmt::format("{} is not found in this database.", name), "Color_Name");
}

void RunCalculation(Session& session, BatchWork& work, bool doRecycle) {
  work.Rows.clear();
  work.Additions.clear();
  work.ClickedIndex = -1;
  CalculateBatch(session, work, doRecycle);
  ShowBatchRows(session, work);
  RefreshRecycleList(session, work);
  CalculateFigures(session, work);
  work.QuantityChanged = false;
}

Result<bool> MixAction(Session& session, BatchWork& work) {
  if (const auto valid = ValidateQuantity(work); !valid) return std::unexpected(valid.error());
  if (work.Color_Name.empty()) return false;
  if (!work.RecycledColors.empty()) {
    const bool remove =
        work.ClickedIndex == -1 || AskQuestion(session, "Batch Window - Remove Mix Colors From Batch?",
                                               "This action will remove all Recycled Colors from the Batch\n\n"
                                               "Remove the Recycled Colors from the Batch?");
    if (remove) work.RecycledColors.clear();
  }
  RunCalculation(session, work, false);
  return true;
}

Result<bool> RecycleAction(Session& session, BatchWork& work) {
  if (const auto valid = ValidateQuantity(work); !valid) return std::unexpected(valid.error());
  if (work.Color_Name.empty()) return false;
  bool doRecycle = true;
  if (!work.RecycledColors.empty()) {
    switch (CompareWithRows(work)) {
      case QuantityStep::Same:
        break;
      case QuantityStep::Smaller:
        if (RecycledMustShrink(work) && !AskDecrease(session)) {
          work.QuantityText = Fixed(work.CalculatedQuantity, 3);
          work.QuantityChanged = false;
          return false;
        }
        break;
      case QuantityStep::Larger:
        if (std::ranges::none_of(work.RecycledColors, HasMore)) break;
        if (AskIncrease(session)) {
          OfferAllStock(session, work);
        } else {
          doRecycle = false;
        }
        break;
    }
  }
  RunCalculation(session, work, doRecycle);
  return true;
}

bool ShowsBatchGraphic(const BatchWork& work) {
  return work.settings.ShowBatchGraphic && !work.RecycledColors.empty();
}

}  // namespace vellumark
