#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "core/datafile/recorded_changes.h"
#include "core/session/acts.h"
#include "core/session/session.h"

namespace vellumark {

/// Every act that can be taken back, each of them made in one place. A new one comes with its case in the test of them
/// all.
enum class Undoable {
  SaveBatch,
  ChangeBatch,
  DeleteBatch,
  TakeOverBatch,  ///< out of a backup
  AdjustInventory,
  ResetRowInventories,
  ResetRowLots,
  ResetInventories,
  ResetReorderPoints,
  SaveReorderPoint,
  ScanStock,
  ScanReturn,
  IssueToJob,
  SetQtyUsed,
  DeleteJobItem,
  RenameJob,
  CloseJob,
  SaveBasic,
  RenameBasic,
  DeleteBasic,
  SaveMix,
  SaveFormula,
  DuplicateFormula,
  RenameMix,
  DeleteMix,
  CreateAdditiveSet,
  EditAdditiveSet,
  RenameAdditiveSet,
  DeleteAdditiveSet,
  ApplyAdditiveSet,
  ModifyFormulas,
  RenameBasics,
  RenameMixes,
  DeleteFormulas,
  ResetCosts,
  ResetMixCostsFromBasics,
  ResetEmissions,
  SaveDesign,
  CopyDesign,
  RenameDesign,
  DeleteDesign,
  ImportDesigns,
  ImportFormulas,
};

struct UndoableRow {
  Undoable kind = Undoable::SaveBatch;
  Act act = Act::Work;  ///< what taking it back asks for
};
/// Every kind, in the order of the enumeration.
std::span<const UndoableRow> UndoableRows();

/// An act that can be taken back: hears what is written from its making on, and keeps it with the act. It stands behind
/// the transaction of the act. One inside another is part of that.
class UndoStep {
 public:
  /// `what` in words, such as "Delete RED". `subject` is a Batch that has to be closed before.
  UndoStep(Session& session, Undoable kind, std::string what, std::string subject = {});
  /// All is written. Called before the commit.
  void Keep();

 private:
  Session& session_;
  Undoable kind_;
  std::string what_;
  std::string subject_;
  std::int64_t lastLine_ = 0;  // of the stock history before the act
  ChangeRecorder recorder_;
};

/// The formulas of an import, which keeps itself what it did; in the transaction of the import.
void KeepImportForUndo(Session& session, std::int64_t import, std::string_view source);
/// What the subject of an import begins with.
inline constexpr std::string_view kImportSubject = "Import ";
/// The subject of a Job's new number.
inline constexpr std::string_view kJobSubject = "Job";

}  // namespace vellumark
