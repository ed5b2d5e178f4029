#pragma once

#include <array>
#include <string>

#include "core/batch/batch_work.h"
#include "core/session/user_fields.h"

namespace vellumark {

// What the settings window of Batches keeps.

constexpr int kQuickInfoFields = setting::QuickInfoField.count;
struct BatchOptions : BatchSettings, UserFieldOptions {
  int UMF = 1;                              ///< unit of a new Batch
  bool ReturnToInventory = true;            ///< what is made goes to stock
  bool BatchComplete = false;               ///< Batches can be marked as complete
  bool BatchDefaultLotNumberValue = false;  ///< LotNumber starts as the Batch's number
  bool ShowQuickInfo = true;                ///< `ShowQuickInfoOption`
  std::array<bool, kQuickInfoFields> QuickInfoField{};
  bool operator==(const BatchOptions&) const = default;
};

/// What the ten lines of the quick information are called.
const char* QuickInfoCaption(int field);

BatchOptions ReadBatchOptions(const Session& session);
/// Stores all of them in one step, takes them into the session and tells of a change of Settings. Refuses an unknown
/// unit; captions that are empty, too long or hold what a column's title cannot; a default that the field cannot hold.
/// The field of the refusal says which of the captions or values, with its number.
Result<void> SaveBatchOptions(Session& session, BatchOptions options);

}  // namespace vellumark
