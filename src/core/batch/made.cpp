#include "core/batch/made.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/batch/job_rows.h"
#include "core/datafile/writer.h"
#include "core/inventory/lot_copies.h"
#include "core/inventory/posting.h"

namespace vellumark {
namespace {

StockPlace PlaceOf(const LotRow& lot) {
  return {.LotRefID = lot.LotRefID, .LotNumber = lot.LotNumber};
}

// Whether what is made goes into a lot by that number.
bool NamesLot(const BatchRecord& record) {
  return !StockPlace{.LotNumber = record.fields.LotNumber}.IsUnlotted();
}

class MadeColor {
 public:
  MadeColor(Session& session, BatchRecord& record)
      : session_(session),
        record_(record),
        rules_(ReadStockRules(session)),
        before_(RoundSingle(record.oldReturned, 3)),
        now_(ReturnedQuantity(session, record)),
        oldLot_(MadeLot(session, record)) {}

  bool Post() {
    // The lot bears the number without blanks around it, and so does its Batch.
    record_.fields.LotNumber = Trim(record_.fields.LotNumber);
    const bool tracking = session_.InvLotTracking != 0;
    const bool wasLotted = record_.LotRefID > 0;
    const bool lotted = tracking ? NamesLot(record_) : wasLotted;
    const std::int32_t place = now_ > 0 ? 0 : -1;
    if (record_.key == 0 || record_.LotRefID == -1) {
      if (record_.key != 0) now_ = std::max(0.0F, RoundSingle(now_ - before_, 3));
      record_.LotRefID = place;
      return Add(now_);
    }
    if (lotted && oldLot_ && now_ > 0) {
      ChangeLot();
      return true;
    }
    if (!lotted && !wasLotted) {
      record_.LotRefID = place;
      if (now_ > before_) return Add(RoundSingle(now_ - before_, 3));
      if (now_ < before_) Lower();
      return true;
    }
    return Move(wasLotted, lotted, place);
  }

 private:
  // From a lot to Unlotted Inventory, from there to a lot, or from a lot that is gone to a new one. What is no longer
  // at the old place was used.
  bool Move(bool wasLotted, bool lotted, std::int32_t place) {
    const float there =
        wasLotted ? (oldLot_ ? oldLot_->LotQty : 0) : UnlottedQty(session_, ColorKind::Mix, record_.work.Color_Name);
    const float removed = std::clamp(before_, 0.0F, std::max(there, 0.0F));
    if (removed > 0) Take(rules_, removed);
    const float used = RoundSingle(before_ - removed, 3);
    const float added = std::max(0.0F, RoundSingle(now_ - used, 3));
    if (lotted && wasLotted && !(added > 0) && now_ > 0) return true;  // all of it was used; the reference stays
    record_.LotRefID = place;
    return Add(added);
  }

  Posting PostingOf(PostingSource source, float quantity) const {
    Posting posting;
    posting.source = source;
    posting.kind = ColorKind::Mix;
    posting.name = record_.work.Color_Name;
    posting.quantity = quantity;
    posting.document = BatchNoText(record_.BatchNo);
    return posting;
  }

  bool Add(float quantity) {
    if (!(quantity > 0)) return true;
    Posting posting = PostingOf(PostingSource::BatchMakes, quantity);
    posting.place = {
        .LotNumber = record_.fields.LotNumber, .LotLoc = record_.fields.LotLoc, .LotContID = record_.fields.LotContID};
    const PostingResult posted = PostStock(session_, rules_, posting);
    record_.LotRefID = std::max(posted.LotRefID, 0);
    if (posted.LotRefID != -1) return true;
    record_.fields.LotNumber.clear();
    return false;
  }

  void Take(const StockRules& rules, float quantity) {
    Posting posting = PostingOf(PostingSource::BatchUnmakes, quantity);
    if (oldLot_) posting.place = PlaceOf(*oldLot_);
    PostStock(session_, rules, posting);
  }

  // Less than it had made, where it lies. What the Batch still makes is there however little it is, as it would be had
  // the Batch been saved so at once; only a Batch that makes nothing any more leaves no rest under the cutoff.
  void Lower() {
    StockRules rules = rules_;
    if (now_ > 0) rules.InvCutoff = 0;
    Take(rules, RoundSingle(before_ - now_, 3));
  }

  // The lot keeps its reference, by which jobs and other Batches know it. Ink that lies in a lot is there also while
  // Lotted Inventory is off; the lot's particulars are not shown then, and stay.
  void ChangeLot() {
    const BatchFields& fields = record_.fields;
    const bool same = oldLot_->LotNumber == fields.LotNumber && oldLot_->LotLoc == fields.LotLoc &&
                      oldLot_->LotContID == fields.LotContID;
    if (session_.InvLotTracking != 0 && !same) Rename();
    if (now_ < before_) {
      Lower();
    } else if (now_ > before_) {
      Posting posting = PostingOf(PostingSource::BatchMakes, RoundSingle(now_ - before_, 3));
      posting.place = PlaceOf(*oldLot_);
      PostStock(session_, rules_, posting);
    }
  }

  void Rename() {
    const BatchFields& fields = record_.fields;
    LotRow now = *oldLot_;
    now.LotNumber = fields.LotNumber;
    now.LotLoc = fields.LotLoc;
    now.LotContID = fields.LotContID;
    RewriteLot(session_,
               {ColorKind::Mix, record_.work.Color_Name, {}, StockEvent::BatchMakes, BatchNoText(record_.BatchNo)},
               *oldLot_, now);
    oldLot_->LotNumber = fields.LotNumber;
  }

  Session& session_;
  BatchRecord& record_;
  StockRules rules_;
  float before_;
  float now_;
  std::optional<LotRow> oldLot_;
};

}  // namespace

bool PostMadeColor(Session& session, BatchRecord& record) {
  return MadeColor(session, record).Post();
}

void RemoveMadeColor(Session& session, const BatchRecord& record) {
  Posting posting;
  posting.source = PostingSource::BatchUnmakes;
  posting.kind = ColorKind::Mix;
  posting.name = record.work.Color_Name;
  posting.document = BatchNoText(record.BatchNo);
  if (record.LotRefID > 0) {
    const auto lot = MadeLot(session, record);
    if (!lot) return;  // all of it was used
    posting.place = PlaceOf(*lot);
    posting.quantity = lot->LotQty;
    posting.remove = true;
  } else {
    posting.quantity = RoundSingle(record.oldReturned, 3);
    if (!(posting.quantity > 0)) return;
  }
  PostStock(session, posting);
}

std::optional<LotRow> MadeLot(const Session& session, const BatchRecord& record) {
  if (record.LotRefID <= 0) return std::nullopt;
  return FindLot(session, ColorKind::Mix, record.work.Color_Name, {},
                 StockPlace{.LotRefID = record.LotRefID, .LotNumber = record.madeLotNumber});
}

}  // namespace vellumark
