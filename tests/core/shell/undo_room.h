// A room in the middle of its work, and what is to be seen of it.

#pragma once

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "core/batch/bench.h"
#include "core/batch/dialogs.h"
#include "core/batch/jobs.h"
#include "core/batch/leave.h"
#include "core/batch/row_lots.h"
#include "core/batch/open.h"
#include "core/batch/store.h"
#include "core/colors/rollup.h"
#include "core/inventory/posting.h"
#include "core/settings/support_files.h"
#include "core/shell/undo.h"
#include "support/ink_room.h"
#include "support/snapshot.h"

namespace vellumark::test {

/// Says yes to whatever is asked.
class Agreeing final : public Prompt {
 public:
  Answer Show(const Message& message) override {
    const bool yesNo = message.buttons == Buttons::YesNo || message.buttons == Buttons::YesNoCancel;
    return yesNo ? Answer::Yes : Answer::Ok;
  }
};

struct UndoRoom : InkRoom {
  UndoRoom() {
    for (const char* name : {"RED", "BLUE", "WHITE", "GREEN"}) Basic(name, {{"PurchaseCost", 4.0F}, {"VOC", 0.5F}});
    Basic("WAX", {{"Additive", true}});
    Mix("PINK", {{"RED", 20}, {"WHITE", 80}}, {{"Recycle", true}});
    Mix("SKY", {{"BLUE", 30}, {"WHITE", 70}}, {{"Recycle", true}});
    Mix("SLOW PINK", {{"RED", 19}, {"WHITE", 76}, {"WAX", 5}}, {{"AddSetName", "SLOW"}});
    AddRow(schema::Additives,
           {{"SetName", "SLOW"}, {"SetList", "<WAX>"}, {"Add_Name0", "WAX"}, {"Add_Percent0", 5.0F}});
    Setting("InvLotTracking", "1");
    hands.DataFolder = session.DataFolder;
    hands.support = std::make_unique<SupportFiles>(hands.DataFolder);
    hands.DataFileDB = std::move(session.DataFileDB);
    hands.DataFileDB->SetChanges(&hands.changes);
    hands.DataFileName = session.DataFileName;
    hands.DataFileOpen = hands.RecordsetsOpen = true;
    hands.CurrentDatabase = "INK";
    hands.databaseList = {"INK"};
    ReadSettings(hands);
    for (const char* name : {"RED", "BLUE", "WHITE", "GREEN", "WAX"}) {
      PostStock(hands, {.name = name, .quantity = 500});
      Deliver(name, "A", 60);
    }
    PostStock(hands, {.kind = ColorKind::Mix, .name = "SKY", .quantity = 9});
  }
  /// Into a lot, which is made where it is not there.
  void Deliver(const std::string& color, const std::string& lot, float quantity = 1) {
    PostStock(hands,
              {.source = PostingSource::ScanReturn, .name = color, .quantity = quantity, .place = {.LotNumber = lot}});
  }
  ~UndoRoom() {
    session.DataFileDB = std::move(hands.DataFileDB);
    session.DataFileDB->SetChanges(&session.changes);
  }

  /// All that the file holds but the histories, and the numbers that were given, which stay given.
  std::string Seen() {
    RunPendingPasses(hands);
    std::string text = Snapshot(hands.File());
    for (const std::string_view table : {"FileInfo", "MSysStockHistory", "MSysJobRenames", "MSysUndo"}) {
      const std::size_t begin = text.find(fmt::format("== {}\n", table));
      if (begin == std::string::npos) continue;
      const std::size_t end = text.find("\n== ", begin);
      text.erase(begin, end == std::string::npos ? end : end + 1 - begin);
    }
    return text;
  }
  std::optional<std::int32_t> MakeBatch(const std::string& formula, const std::string& quantity,
                                        const std::string& job = {}) {
    BatchRecord record = NewBatchRecord(hands);
    NoBatchDialogs dialogs;
    if (!EnterBatchColor(hands, record, formula)) return std::nullopt;
    record.work.QuantityText = quantity;
    if (!MixBatch(hands, record) || !TakeOldestLots(hands, record)) return std::nullopt;
    if (!EnterJobNumber(hands, record, job)) return std::nullopt;
    std::int32_t number = 0;
    const auto saved = SaveBatch(hands, record, dialogs, &number);
    if (!saved || *saved != SaveEnd::Stored) return std::nullopt;
    static_cast<void>(CancelBatch(hands, record));
    return number;
  }

  Agreeing agrees;
  Session hands{agrees, progress, clock};
};

}  // namespace vellumark::test
