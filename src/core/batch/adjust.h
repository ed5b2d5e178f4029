#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/batch/batch_work.h"

namespace vellumark {

// Adjusting the lines of a calculated Batch by hand. Every operation refuses while the quantity was edited since.

/// The checks that a click on a row's amount begins with: the quantity, and that it was not edited since the
/// calculation.
Result<void> CheckAdjustable(const BatchWork& work);

// ---- Recycled colours

/// The window in which a recycled colour's amount is adjusted.
struct MixAdjustment {
  std::size_t row = 0;
  std::string Color_Name;
  std::string caption;  ///< " Adjust " and the name
  double amount = 0;
  float maximum = 0;              ///< the most that the recipe takes
  bool offersRemoval = false;     ///< its stock can be written off with it
  bool recycleByDefault = false;  ///< Enter means Recycle, else Mix
};

/// How that window was left.
struct MixAdjustChoice {
  std::string amount;
  bool recycle = false;  ///< further colours are to be recycled after it
  bool removeFromInventory = false;
};

/// Opens the window of a Mix row. Asks first when rows adjusted later stand below it.
Result<MixAdjustment> OpenMixAdjustment(Session& session, BatchWork& work, std::size_t row);

/// Refuses an amount that is no number or negative.
Result<float> ReadMixAmount(std::string_view text);

/// Takes the recycled colours from that row on out of the Batch and puts the colour back with its new amount; 0 leaves
/// it out. Refuses a bad amount, and the removal from inventory while the file must not be written.
Result<void> AdjustMixRow(Session& session, BatchWork& work, std::size_t row, const MixAdjustChoice& choice);

/// Puts a colour of the Recycle List into the Batch with all its stock, or with the quantity when none is in stock.
/// False when the Batch takes no more lines.
Result<bool> ChooseFromRecycleList(Session& session, BatchWork& work, std::string_view name);
/// The same with an amount of the operator's own.
Result<bool> ChooseFromRecycleList(Session& session, BatchWork& work, std::string_view name, std::string_view amount);

// ---- Over-pour

/// What an over-pour did to an amount.
struct AmountChange {
  std::string name;
  float before = 0;
  float after = 0;
};

/// What an over-pour did; `printDetail`: the change is to be printed.
struct Overpour {
  bool reformulated = false;
  bool printDetail = false;
  std::vector<AmountChange> changes;
};

/// The Batch grows until the Basic row's share of it is what was poured. Refuses an amount that is no number or smaller
/// than the row's. Asks before it changes anything and offers to print the change.
Result<Overpour> OverpourBasicRow(Session& session, BatchWork& work, std::size_t row, std::string_view poured);

/// What was poured becomes the row's amount. Within its maximum the quantity stays and the rows below give way; above
/// it the Batch grows until the row's maximum is what was poured. It never shrinks. Once other rows are in the pot
/// (`inThePot`: how much of each row), nothing gives way any more: the Batch grows until it holds all of it by its
/// recipe.
Result<Overpour> OverpourMixRow(Session& session, BatchWork& work, std::size_t row, double poured,
                                const std::vector<double>& inThePot = {});

/// The row's amount is what was poured, whatever was chosen before or after it: those rows keep theirs and the basics give
/// way. Refuses, and changes nothing, where the recipe does not take all of them.
Result<void> SetMixRow(Session& session, BatchWork& work, std::size_t row, double poured);

}  // namespace vellumark
