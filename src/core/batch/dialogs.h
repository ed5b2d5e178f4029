#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/batch/record.h"

namespace vellumark {

/// What a Batch with additions does to its Master Formula.
enum class FormulaChange {
  None,    ///< the Batch is saved, the formula stays
  Update,  ///< the formula takes up the additions
  Create,  ///< a new formula is made of the Batch, which continues under its name
};
struct ModifiedBatchChoice {
  FormulaChange change = FormulaChange::None;
  std::string newName;  ///< with Create
};

/// How the lot number reminder was left.
struct LotReminderAnswer {
  bool returnToBatch = false;  ///< "Return to Batch and update?"
  bool dontShowAgain = false;
};

/// A colour of which a Batch is to take more than there is. Quantities in the inventory unit.
struct ShortStock {
  std::size_t row = 0;  ///< the first line of the Batch that takes it
  std::string name;
  float takes = 0;   ///< from Unlotted Inventory
  float there = 0;   ///< in Unlotted Inventory
  float inLots = 0;  ///< in lots that it could take from instead, beside what it takes from them already
};

/// The windows that saving a Batch shows, or whatever stands in their place.
class BatchDialogs {
 public:
  virtual ~BatchDialogs() = default;
  /// `BatchFormLotNumReminder`.
  virtual LotReminderAnswer ShowLotNumReminder() = 0;
  /// `SaveModifiedBatch`; checks its choice with CheckModifiedBatch before it closes. Nothing: the Batch is not saved.
  virtual std::optional<ModifiedBatchChoice> ShowSaveModifiedBatch(Session& session, const BatchRecord& record) = 0;
  /// Whether the operator has said already if the Batch is complete; nobody is asked then.
  virtual bool KnowsComplete() { return false; }
  /// Tells that stock does not cover the Batch (see ShortStockText). False: back to it, to choose lots.
  virtual bool ShowShortStock(Session&, const std::vector<ShortStock>&) { return true; }
};

/// For callers without windows: no reminder, formulas stay as they are.
class NoBatchDialogs : public BatchDialogs {
 public:
  LotReminderAnswer ShowLotNumReminder() override { return {}; }
  std::optional<ModifiedBatchChoice> ShowSaveModifiedBatch(Session&, const BatchRecord&) override {
    return ModifiedBatchChoice{};
  }
};

}  // namespace vellumark
