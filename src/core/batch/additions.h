#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/batch/batch_work.h"

namespace vellumark {

/// What a batch addition may weigh, in the Batch's unit; below zero only to take from what is in the Batch.
constexpr double kMostAddition = 99999;

/// One line of the window in which colours are added: as typed.
struct AdditionLine {
  std::string Color_Name;
  std::string amount;
};

/// How a line of that window was found to be.
enum class AdditionFault {
  None,
  InvalidNumber,    ///< no number, zero, or out of range
  InvalidNegative,  ///< takes more than the Batch holds of the colour
  AddOnBatch,       ///< stands in the Batch as an addition already
  DupFormAdd,       ///< stands twice in the window
  InvalidBasic,     ///< no Basic Color of the Database
  ZeroBatchQty,     ///< the lines would bring the Batch to nothing
};

/// The refusal of a fault; its field is the name or the amount.
Refusal AdditionRefusal(AdditionFault fault);

/// Whether the window of additions may open: not while the quantity was edited since the calculation.
Result<void> CheckAdditions(const BatchWork& work);

/// The Basic Color that a typed name means, with or without "PANTONE ". One that the Database lacks is added after a
/// question; nothing when the operator declined.
Result<std::optional<std::string>> ReadAdditionName(Session& session, std::string_view typed);

/// Adds all the lines to the Batch, or none: the first fault is refused.
Result<void> AddAdditions(Session& session, BatchWork& work, const std::vector<AdditionLine>& lines);

/// Refuses rows in which a negative addition takes back more of a Basic Color than they hold.
Result<void> CheckNegativeAdditions(const BatchWork& work);
/// Runs a change of the rows; the work is as it was when that check then refuses it.
template <class Act>
auto ChangeRows(BatchWork& work, const Act& act) -> decltype(act()) {
  const bool mayFail = std::ranges::any_of(work.Additions, [](const BatchIngredient& i) { return i.Amount < 0; });
  std::optional<BatchWork> before;
  if (mayFail) before = work;
  auto result = act();
  if (!result || !mayFail) return result;
  if (auto kept = CheckNegativeAdditions(work); !kept) {
    work = std::move(*before);
    return std::unexpected(kept.error());
  }
  return result;
}

/// Which of the lines AddAdditions refuses, for the focus; nothing when the fault is in none of them by itself.
std::optional<std::size_t> FaultyAddition(Session& session, const BatchWork& work,
                                          const std::vector<AdditionLine>& lines);

/// Gives an addition row another amount; 0 takes it out and the later ones move up.
Result<void> AdjustAddition(Session& session, BatchWork& work, std::size_t row, std::string_view amount);

/// Takes so much off an addition of that Basic Color, at most all of it.
void LowerAddition(const Session& session, BatchWork& work, std::string_view basic, double by);

}  // namespace vellumark
