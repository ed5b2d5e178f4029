#pragma once

#include <optional>
#include <string>

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

/// The windows that saving a Batch shows, or whatever stands in their place.
class BatchDialogs {
 public:
  virtual ~BatchDialogs() = default;
  /// `BatchFormLotNumReminder`.
  virtual LotReminderAnswer ShowLotNumReminder() = 0;
  /// `SaveModifiedBatch`; checks its choice with CheckModifiedBatch before it closes. Nothing: the Batch is not saved.
  virtual std::optional<ModifiedBatchChoice> ShowSaveModifiedBatch(Session& session, const BatchRecord& record) = 0;
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
