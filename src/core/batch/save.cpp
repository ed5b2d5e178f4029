#include <optional>

#include "core/base/text.h"
#include "core/batch/bench.h"
#include "core/batch/cover.h"
#include "core/batch/leave.h"
#include "core/batch/open.h"
#include "core/batch/saving.h"
#include "core/batch/store.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

enum class Held { No, Yes };

Result<void> CheckTotal(const BatchRecord& record) {
  if (record.work.Total != 0 && !record.work.Rows.empty()) return {};
  return Refuse(std::string(40, ' ') + "Save Batch",
                "Can't Save this batch.\nBatch total must be greater than zero.\n\nRevise recipe and Save again.");
}

Result<void> CheckRequiredTexts(const Session& session, const BatchRecord& record) {
  for (int i = 0; i < kBatchUserFields; ++i)
    if (GetSetting(session, setting::BatchUDTxtRequired[i]) &&
        TrimView(record.fields.UD_Text[static_cast<std::size_t>(i)]).empty())
      return Refuse("More Data Incomplete",
                    "Required User Defined Text Fields Incomplete.\nPress More Data and complete.",
                    schema::Numbered("UD_Text", i));
  return {};
}

void AskComplete(Session& session, BatchRecord& record, BatchDialogs& dialogs) {
  if (!GetSetting(session, setting::BatchComplete) || record.Complete || dialogs.KnowsComplete()) return;
  record.Complete = session.prompt.Ask("Batch Completion State            ", "Mark this Batch as Complete?");
}

// The answer holds once the Batch is stored; until then the Batch on the bench is as it was.
class CompleteAnswer {
 public:
  explicit CompleteAnswer(BatchRecord& record) : record_(record), before_(record.Complete) {}
  ~CompleteAnswer() {
    if (!stored_) record_.Complete = before_;
  }
  CompleteAnswer(const CompleteAnswer&) = delete;
  CompleteAnswer& operator=(const CompleteAnswer&) = delete;
  void Stored() { stored_ = true; }

 private:
  BatchRecord& record_;
  bool before_;
  bool stored_ = false;
};

// Location and container belong to the lot that is made; of a Batch that is used up there is none.
bool PassLotDetails(Session& session, const BatchRecord& record) {
  if (session.InvLotTracking == 0 || record.returned > 0 || record.JobNumber().empty()) return true;
  if (TrimView(record.fields.LotLoc).empty() && TrimView(record.fields.LotContID).empty()) return true;
  return !session.prompt.Ask(std::string(25, ' ') + "Lotted Inv. Details",
                             "Change Qty to Inv so these items can be saved?");
}

// A Batch whose formula changed is shown only: whatever was typed, Save keeps but its Complete.
bool Changed(const Session& session, const BatchRecord& record) {
  return record.formulaUnchanged && RecordHasChanged(session, record);
}

Result<bool> Checks(Session& session, BatchRecord& record, BatchDialogs& dialogs, Held held) {
  if (const auto storable = CheckStorable(session, record); !storable) return std::unexpected(storable.error());
  if (const auto total = CheckTotal(record); !total) return std::unexpected(total.error());
  if (const auto guarded = PassGuard(session, record); !guarded) return std::unexpected(guarded.error());
  if (held == Held::No) {
    if (const auto texts = CheckRequiredTexts(session, record); !texts) return std::unexpected(texts.error());
    if (!PassLotReminder(session, record, dialogs)) return false;
    if (!PassShortStock(session, record, dialogs)) return false;
    AskComplete(session, record, dialogs);
  } else if (!PassShortStock(session, record, dialogs)) {
    return false;
  }
  return PassLotDetails(session, record);
}

}  // namespace

bool PassLotReminder(Session& session, const BatchRecord& record, BatchDialogs& dialogs) {
  if (session.InvLotTracking == 0) return true;
  if (!GetSetting(session, setting::BatchLotNumReminder)) return true;
  // Lines that stock does not cover are told of by themselves.
  const bool lines = HasUnchosenLots(session, record) && FindShortStock(session, record).empty();
  if (!lines && !TrimView(record.fields.LotNumber).empty()) return true;
  const LotReminderAnswer answer = dialogs.ShowLotNumReminder();
  if (answer.dontShowAgain) StoreSettings(session, {setting::BatchLotNumReminder.To(false)});
  return !answer.returnToBatch;
}

bool PassShortStock(Session& session, const BatchRecord& record, BatchDialogs& dialogs) {
  if (record.state == BatchState::Edit && !RecordHasChanged(session, record)) return true;
  const std::vector<ShortStock> lines = FindShortStock(session, record);
  return lines.empty() || dialogs.ShowShortStock(session, lines);
}

Result<void> PassGuard(Session& session, BatchRecord& record) {
  if (record.mayChange || record.state != BatchState::Edit || !Changed(session, record)) return {};
  return CheckEditable(session, record);
}

Result<SaveEnd> SaveBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs, std::int32_t* savedNo,
                          MoveOn moveOn) {
  CompleteAnswer complete(record);
  const auto passed = Checks(session, record, dialogs, Held::No);
  if (!passed) return std::unexpected(passed.error());
  if (!*passed) return SaveEnd::Stays;
  if (savedNo != nullptr) *savedNo = record.BatchNo;
  const auto next = moveOn == MoveOn::ToNext ? NextBatchRow(session, record) : std::nullopt;
  if (record.state == BatchState::Edit && !Changed(session, record)) {
    LeaveFor(session, record, true, next);
    complete.Stored();
    return SaveEnd::Kept;
  }
  const auto stored = StoreBatch(session, record, dialogs, {.row = next}, savedNo);
  if (stored && *stored == SaveEnd::Stored) complete.Stored();
  return stored;
}

Result<SaveEnd> SaveAndHoldBatch(Session& session, BatchRecord& record, BatchDialogs& dialogs) {
  const auto passed = Checks(session, record, dialogs, Held::Yes);
  if (!passed) return std::unexpected(passed.error());
  if (!*passed) return SaveEnd::Stays;
  if (record.state == BatchState::Edit && !Changed(session, record)) {
    LeaveFor(session, record, true, record.key);
    return SaveEnd::Kept;
  }
  return StoreBatch(session, record, dialogs, {.stored = true});
}

}  // namespace vellumark
