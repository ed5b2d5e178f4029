#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "core/batch/bench.h"
#include "core/batch/jobs.h"
#include "core/batch/leave.h"
#include "core/batch/modified.h"
#include "core/batch/open.h"
#include "core/batch/store.h"
#include "core/inventory/adjust.h"
#include "core/inventory/posting.h"
#include "support/snapshot.h"
#include "support/need_not_last.h"
#include "support/stock_room.h"

namespace vellumark::test {

/// The windows of a save, answered from a script; one that was not expected fails the test.
class ScriptedDialogs final : public BatchDialogs {
 public:
  ~ScriptedDialogs() override { EXPECT_TRUE(reminders.empty() && choices.empty()) << "a window never came"; }

  LotReminderAnswer ShowLotNumReminder() override { return Next(reminders); }
  std::optional<ModifiedBatchChoice> ShowSaveModifiedBatch(Session& session, const BatchRecord& record) override {
    auto choice = Next(choices);
    if (!choice) return choice;
    const auto checked = CheckModifiedBatch(session, record, *choice);
    EXPECT_TRUE(checked) << (checked ? "" : checked.error().text);
    return checked ? std::optional(*checked) : std::nullopt;
  }

  std::deque<LotReminderAnswer> reminders;
  std::deque<std::optional<ModifiedBatchChoice>> choices;

 private:
  template <class T>
  static T Next(std::deque<T>& script) {
    if (script.empty()) {
      ADD_FAILURE() << "an unexpected window";
      return T{};
    }
    T next = script.front();
    script.pop_front();
    return next;
  }
};

/// A room in which Batches are saved: no cutoff, no lot number reminder, unless a test says otherwise.
struct LifeRoom : StockRoom {
  LifeRoom() {
    NeedNotLast(session.File());
    Setting("InvCutoff", "0");
    Setting("BatchLotNumReminder", "0");
  }

  /// A setting that the ladder brings into later files of settings.
  void LaterSetting(std::string_view key, std::string_view value) {
    session.support->settings.AppendSupportValue(key, value);
  }

  void Basic(const std::string& name, float inventory, std::vector<Cell> cells = {}) {
    Color(ColorKind::Basic, name, inventory, std::move(cells));
  }
  void Formula(const std::string& name, const std::vector<std::pair<std::string, float>>& parts, float inventory = 0,
               std::vector<Cell> cells = {}) {
    cells.insert(cells.begin(), {{"Inventory", inventory},
                                 {"Recycle", true},
                                 {"BasicCost", 3.0F},
                                 {"LotRefID", 0},
                                 {"Date_Entered", DateTime{2026, 1, 2}},
                                 {"LastModified", DateTime{2026, 1, 2}}});
    Mix(name, parts, std::move(cells));
  }
  /// Red and white in stock, PINK made of both.
  void MakePink() {
    Basic("RED", 100, {{"PurchaseCost", 4.0F}});
    Basic("WHITE", 200, {{"PurchaseCost", 1.0F}});
    Formula("PINK", {{"RED", 25.0F}, {"WHITE", 75.0F}});
  }

  void Mixed(const std::string& name, const std::string& quantity) {
    record = NewBatchRecord(session);
    ASSERT_TRUE(EnterBatchColor(session, record, name));
    SetQuantityText(record.work, quantity);
    const auto done = MixBatch(session, record);
    ASSERT_TRUE(done && *done);
  }
  std::int32_t Save() {
    std::int32_t number = 0;
    const auto saved = SaveBatch(session, record, dialogs, &number);
    EXPECT_TRUE(saved) << (saved ? "" : saved.error().text);
    return number;
  }
  std::int32_t Saved(const std::string& name, const std::string& quantity) {
    Mixed(name, quantity);
    return Save();
  }
  void Open(std::int32_t number) { ASSERT_TRUE(OpenBatch(session, record, number)); }
  /// Another quantity, mixed anew.
  void Remix(const std::string& quantity) {
    SetQuantityText(record.work, quantity);
    const auto done = MixBatch(session, record);
    ASSERT_TRUE(done && *done) << (done ? "" : done.error().text);
  }
  void Select(std::size_t row, std::vector<LotUse> uses) {
    ASSERT_TRUE(SetRowLots(session, record, row, LotSelection{std::move(uses)}));
  }

  /// Reads the current Batch's row.
  Value OfBatch(std::string_view field, std::int32_t number = 1) {
    return Scalar(fmt::format("SELECT {} FROM INK_Batch WHERE BatchNo = ?1", Quoted(field)), {number});
  }
  /// Title of the refusal; empty when it was done.
  template <class T>
  static std::string Title(const Result<T>& result) {
    return result ? std::string() : result.error().title;
  }

  float Red() { return Inventory(ColorKind::Basic, "RED").Single(); }
  float White() { return Inventory(ColorKind::Basic, "WHITE").Single(); }
  float Pink() { return Inventory(ColorKind::Mix, "PINK").Single(); }

  /// All data but the history of stock and the engine's own tables.
  std::string Data() { return Snapshot(session.File(), false); }

  BatchRecord record;
  ScriptedDialogs dialogs;
};

/// The room that most of these tests begin in.
struct PinkRoom : LifeRoom {
  PinkRoom() { MakePink(); }
};

inline LotUse Use(std::int32_t ref, float quantity, bool remove = false) {
  LotUse use;
  use.LotRefID = ref;
  use.LotNumber = ref == 0 ? std::string(kUnlottedInv) : "L" + std::to_string(ref);
  use.LotQty = quantity;
  use.Remove = remove;
  return use;
}

}  // namespace vellumark::test
