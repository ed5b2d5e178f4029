#pragma once

#include <string>
#include <vector>

#include "cli/frame.h"
#include "core/batch/dialogs.h"
#include "core/batch/record.h"

namespace vellumark::cli {

/// The options that tell what a Batch is to be: those of calc, save and edit.
struct BatchInput {
  std::string formula;
  std::string quantity;
  std::string unit;
  bool recycle = false;
  bool mix = false;
  std::vector<std::string> take;  ///< "NAME=AMOUNT"
  std::vector<std::string> add;   ///< "NAME=AMOUNT"
  std::vector<std::string> set;   ///< "FIELD=VALUE"

  std::vector<std::string> lots;  ///< "NAME=LOTNUMBER:QTY"
  std::optional<std::string> lotNumber;
  std::optional<std::string> lotLoc;
  std::optional<std::string> lotCont;
  std::vector<std::string> jobs;  ///< "NUMBER=QTYUSED"
  bool noJob = false;
  bool noReturn = false;
  std::optional<std::string> notes;
  std::optional<std::string> shortNote;
  std::string fold;  ///< "", "update" or the name of a new formula
  bool foldNew = false;
};

void AddCalcOptions(CLI::App& verb, BatchInput& input, bool formulaRequired);
void AddSaveOptions(CLI::App& verb, BatchInput& input);
void AddLotOption(CLI::App& verb, BatchInput& input);

/// A new Batch, calculated, with the fields that --set gives.
Result<BatchRecord> NewBatch(Session& session, const BatchInput& input);
/// The changes to an open Batch that the options ask for.
Result<void> ChangeBatch(Session& session, BatchRecord& record, const BatchInput& input);
/// Lots, jobs, what returns to inventory and the texts: what a save takes beside the calculation.
Result<void> TakeSaveOptions(Session& session, BatchRecord& record, const BatchInput& input);

/// What --fold says where the window SaveModifiedBatch would ask, and --set of Complete where the save would. The lot
/// number reminder is for the window alone; stock that does not cover the Batch is told of.
class OptionDialogs final : public BatchDialogs {
 public:
  explicit OptionDialogs(const BatchInput& input) : input_(input) {}
  LotReminderAnswer ShowLotNumReminder() override { return {}; }
  std::optional<ModifiedBatchChoice> ShowSaveModifiedBatch(Session& session, const BatchRecord& record) override;
  bool KnowsComplete() override;
  bool ShowShortStock(Session& session, const std::vector<ShortStock>& lines) override;

  /// Why a formula change was refused.
  std::optional<Refusal> refused;

 private:
  const BatchInput& input_;
};

}  // namespace vellumark::cli
