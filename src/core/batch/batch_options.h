#pragma once

#include <array>
#include <string>

#include "core/batch/batch_work.h"
#include "core/settings/settings.h"

namespace vellumark {

// What the settings window of Batches keeps.

constexpr int kQuickInfoFields = setting::QuickInfoField.count;
constexpr int kUserFields = setting::BatchUDTxtValue.count;  ///< user-defined texts, and as many numbers
constexpr int kMostUserDecimals = static_cast<int>(setting::Batches_UDNum_Format.limits.most);
constexpr std::size_t kUserTextWidth = 30;  ///< characters of a user-defined text, of captions too

/// A user-defined text of a Batch.
struct UserTextOption {
  std::string caption;
  bool hasDefault = false;  ///< a new Batch starts with `value`
  std::string value;
  bool required = false;  ///< a Batch without it is not saved
  bool operator==(const UserTextOption&) const = default;
};

/// A user-defined number of a Batch.
struct UserNumberOption {
  std::string caption;
  int decimals = 3;
  bool operator==(const UserNumberOption&) const = default;
};

struct BatchOptions : BatchSettings {
  int UMF = 1;                              ///< unit of a new Batch
  bool ReturnToInventory = true;            ///< what is made goes to stock
  bool BatchComplete = false;               ///< Batches can be marked as complete
  bool BatchDefaultLotNumberValue = false;  ///< LotNumber starts as the Batch's number
  bool ShowQuickInfo = true;                ///< `ShowQuickInfoOption`
  std::array<bool, kQuickInfoFields> QuickInfoField{};
  std::array<UserTextOption, kUserFields> texts;
  std::array<UserNumberOption, kUserFields> numbers;
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
