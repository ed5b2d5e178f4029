#include "core/batch/additions.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "core/base/text.h"
#include "core/batch/adjust.h"
#include "core/batch/cost.h"
#include "core/batch/recipe.h"
#include "core/batch/rows.h"
#include "core/colors/basic_work.h"
#include "core/colors/basics.h"
#include "core/colors/names.h"

namespace vellumark {
namespace {

bool SameName(std::string_view a, std::string_view b) {
  return EqualNoCase(a, b);
}

std::optional<std::string> KnownBasic(const Session& session, std::string_view typed) {
  const std::string name = Trim(typed);
  if (name.empty()) return std::nullopt;
  for (const std::string& wanted : {name, std::string(kPantonePrefix) + name})
    if (const auto basic = ReadBasic(session, wanted)) return basic->Color_Name;
  return std::nullopt;
}

std::optional<double> ReadAmount(std::string_view text) {
  const auto amount = ParseNumber(text);
  if (!amount || *amount < -kMostAddition || *amount > kMostAddition) return std::nullopt;
  return RoundTo(*amount, 3);
}

// What stands in the Batch of a Basic Color as an ingredient, the round-off included.
double AmountOfIngredient(const BatchWork& work, std::string_view name) {
  double amount = 0;
  for (const BatchRow& row : work.Rows)
    if (row.kind == LineKind::Basic && SameName(row.name, name)) amount += row.amount;
  return amount;
}

// Sums of three-decimals amounts, less the noise of adding them in binary.
double Thousandths(double amount) {
  return RoundTo(amount, 3);
}

AdditionFault FaultOf(const BatchWork& work, const std::vector<BatchIngredient>& earlier, const std::string& name,
                      std::optional<double> amount) {
  const auto holds = [&](const std::vector<BatchIngredient>& list) {
    return std::ranges::any_of(list, [&](const BatchIngredient& i) { return SameName(i.IngName, name); });
  };
  if (holds(earlier)) return AdditionFault::DupFormAdd;
  if (holds(work.Additions)) return AdditionFault::AddOnBatch;
  if (!amount || *amount == 0) return AdditionFault::InvalidNumber;
  if (Thousandths(AmountOfIngredient(work, name) + *amount) < 0) return AdditionFault::InvalidNegative;
  return AdditionFault::None;
}

std::unexpected<Refusal> FullBatch() {
  return Refuse("Batch Additions", fmt::format("A Batch holds at most {} lines.", kMostBatchLines));
}

void WarnOfLots(Session& session) {
  session.prompt.Tell("Re-enter Inventory Lot Selections",
                      "This negative Batch Addition can impact prior Inv. Lot Selections.\n"
                      "The Basic Color that matches this negative Batch Addition,\n"
                      "may need to have its Lotted Inventory selections updated.",
                      Icon::Information);
}

void ShowAdditions(const Session& session, BatchWork& work) {
  ShowBatchRows(session, work);
  CalculateFigures(session, work);
}

// The lines up to the first fault.
struct ReadLines {
  std::vector<BatchIngredient> added;
  AdditionFault fault = AdditionFault::None;
};

ReadLines Read(Session& session, const BatchWork& work, const std::vector<AdditionLine>& lines) {
  ReadLines read;
  for (const AdditionLine& line : lines) {
    const auto name = KnownBasic(session, line.Color_Name);
    auto addition = name ? ReadBatchIngredient(session, work.UMF, *name) : std::nullopt;
    const auto amount = ReadAmount(line.amount);
    read.fault = addition ? FaultOf(work, read.added, addition->IngName, amount) : AdditionFault::InvalidBasic;
    if (read.fault != AdditionFault::None) break;
    addition->Amount = static_cast<float>(*amount);
    read.added.push_back(std::move(*addition));
  }
  return read;
}

}  // namespace

Refusal AdditionRefusal(AdditionFault fault) {
  switch (fault) {
    case AdditionFault::InvalidNumber:
      return {"Batch Additions - Invalid Amount",
              fmt::format("Enter an amount between\n{}  and  {}", Fixed(-kMostAddition, 3), Fixed(kMostAddition, 3)),
              "txtAmount"};
    case AdditionFault::InvalidNegative:
      return {"Batch Addition Adjustment",
              "The negative amount entered is more\n"
              "than what can be remove from the batch.",
              "txtAmount"};
    case AdditionFault::AddOnBatch:
    case AdditionFault::DupFormAdd:
      return {"Duplicate Item",
              "Basic / Additive is already selected.\n"
              "Remove reference and choose another item.",
              "cmbColorName"};
    case AdditionFault::InvalidBasic:
      return {"Invalid Color",
              "Invalid Basic / Additive selected.\n"
              "Update the exisiting selection.",
              "cmbColorName"};
    case AdditionFault::ZeroBatchQty:
      return {"Negative Additions - Batch Size", "The additions would bring the Batch to nothing.", "txtAmount"};
    case AdditionFault::None:
      break;
  }
  throw std::logic_error("a line without a fault is not refused");
}

Result<void> CheckNegativeAdditions(const BatchWork& work) {
  for (const BatchIngredient& addition : work.Additions)
    if (addition.Amount < 0 &&
        Thousandths(AmountOfIngredient(work, addition.IngName) + RoundTo(addition.Amount, 3)) < 0)
      return Refuse("Batch Addition Adjustment",
                    fmt::format("The Batch would hold less {} than its negative addition takes back.\n"
                                "Change the addition first.",
                                addition.IngName),
                    "fgRecList");
  return {};
}

Result<void> CheckAdditions(const BatchWork& work) {
  if (work.QuantityChanged)
    return Refuse("Recalculate Batch",
                  "You've changed the Quantity of this batch.\n"
                  "Click the Recycle(F2) or Mix(F3) button to recalculate\n"
                  "the batch before adding batch additions to the batch.",
                  "txtQuantity");
  if (BatchIsFull(work)) return FullBatch();
  return {};
}

Result<std::optional<std::string>> ReadAdditionName(Session& session, std::string_view typed) {
  if (auto known = KnownBasic(session, typed)) return known;
  const std::string name = ReadName(session, typed);
  if (name.empty()) return std::unexpected(AdditionRefusal(AdditionFault::InvalidBasic));
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  if (auto allowed = CheckNewBasicName(session, name, "cmbColorName"); !allowed)
    return std::unexpected(allowed.error());
  if (!session.prompt.Ask("Add Basic / Additive To Database?",
                          fmt::format("{} is not found in this database.\n"
                                      "Would you like to add this item to this database?\n"
                                      "Hint: Check the spelling in case another reference exists.",
                                      name)))
    return std::nullopt;
  return AddZeroBasic(session, name, false);
}

Result<void> AddAdditions(Session& session, BatchWork& work, const std::vector<AdditionLine>& lines) {
  if (auto open = CheckAdditions(work); !open) return open;
  const ReadLines read = Read(session, work, lines);
  if (read.fault != AdditionFault::None) return std::unexpected(AdditionRefusal(read.fault));
  std::vector<BatchIngredient> added = read.added;
  double sum = 0;
  for (const BatchIngredient& addition : added) sum += RoundTo(addition.Amount, 3);
  const bool negative = std::ranges::any_of(added, [](const BatchIngredient& i) { return i.Amount < 0; });
  if (!added.empty() && Thousandths(work.ShownTotal + sum) <= 0)
    return std::unexpected(AdditionRefusal(AdditionFault::ZeroBatchQty));
  if (work.Rows.size() + added.size() > static_cast<std::size_t>(kMostBatchLines)) return FullBatch();
  std::ranges::move(added, std::back_inserter(work.Additions));
  ShowAdditions(session, work);
  if (negative && session.InvLotTracking != 0) WarnOfLots(session);
  return {};
}

std::optional<std::size_t> FaultyAddition(Session& session, const BatchWork& work,
                                          const std::vector<AdditionLine>& lines) {
  const ReadLines read = Read(session, work, lines);
  if (read.fault == AdditionFault::None) return std::nullopt;
  return read.added.size();
}

Result<void> AdjustAddition(Session& session, BatchWork& work, std::size_t row, std::string_view amount) {
  if (auto adjustable = CheckAdjustable(work); !adjustable) return adjustable;
  if (BatchIsFull(work)) return FullBatch();
  const std::size_t first = work.RecycledColors.size() + work.Ingredients.size();
  BatchIngredient& addition = work.Additions.at(row - first);
  const auto wanted = ReadAmount(amount);
  if (!wanted) return Refuse("Adjust Addition", "Please enter a valid amount.", "txtAmount");
  if (Thousandths(AmountOfIngredient(work, addition.IngName) + *wanted) < 0)
    return std::unexpected(AdditionRefusal(AdditionFault::InvalidNegative));
  if (Thousandths(work.ShownTotal - work.Rows.at(row).amount + *wanted) <= 0)
    return std::unexpected(AdditionRefusal(AdditionFault::ZeroBatchQty));
  if (*wanted == 0) {
    work.Additions.erase(work.Additions.begin() + static_cast<std::ptrdiff_t>(row - first));
  } else {
    addition.Amount = static_cast<float>(*wanted);
  }
  ShowAdditions(session, work);
  if (*wanted < 0 && session.InvLotTracking != 0) WarnOfLots(session);
  return {};
}

void LowerAddition(const Session& session, BatchWork& work, std::string_view basic, double by) {
  const auto addition =
      std::ranges::find_if(work.Additions, [&](const BatchIngredient& i) { return SameName(i.IngName, basic); });
  if (addition == work.Additions.end()) return;
  addition->Amount = static_cast<float>(std::max(0.0, Thousandths(RoundTo(addition->Amount, 3) - by)));
  if (addition->Amount == 0) work.Additions.erase(addition);
  ShowAdditions(session, work);
}

}  // namespace vellumark
