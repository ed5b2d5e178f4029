// Every way in which a saved Batch can be changed, against the guard before a change; and what the operator hears
// before a save that stock does not cover.

#include "core/batch/cover.h"
#include "core/batch/more_data.h"
#include "life_room.h"

namespace vellumark {
namespace {

using test::LifeRoom;
using test::PinkRoom;
using test::Use;

struct Way {
  const char* name;
  std::function<Result<void>(LifeRoom&)> change;
};

template <class T>
Result<void> Plain(const Result<T>& result) {
  if (!result) return std::unexpected(result.error());
  return {};
}

Result<void> Text(LifeRoom& room, const char* column) {
  return EnterBatchField(room.session, room.record, column, "typed");
}

// A change of a field from anywhere, and the save of it.
Result<void> Typed(LifeRoom& room, const std::function<void(BatchRecord&)>& type) {
  type(room.record);
  return Plain(SaveBatch(room.session, room.record, room.dialogs));
}

std::vector<Way> Ways() {
  return {{"mix", [](LifeRoom& r) { return Plain(MixBatch(r.session, r.record)); }},
          {"recycle", [](LifeRoom& r) { return Plain(RecycleBatch(r.session, r.record)); }},
          {"take", [](LifeRoom& r) { return Plain(TakeRecycled(r.session, r.record, "ROSE", "1")); }},
          {"unit", [](LifeRoom& r) { return EnterBatchUnit(r.session, r.record, 3); }},
          {"formula name", [](LifeRoom& r) { return EnterBatchColor(r.session, r.record, "ROSE"); }},
          {"basic row", [](LifeRoom& r) { return Plain(PourBasicRow(r.session, r.record, 0, "31")); }},
          {"additions",
           [](LifeRoom& r) {
             return AddBatchAdditions(r.session, r.record, {{"RED", "1"}});
           }},
          {"lots", [](LifeRoom& r) { return SetRowLots(r.session, r.record, 0, LotSelection{{Use(0, 30)}}); }},
          {"lot window", [](LifeRoom& r) { return OpenRowLots(r.session, r.record, 0); }},
          {"costs", [](LifeRoom& r) { return SetBatchCostModel(r.session, r.record, {.MarkupPercent = 5}, false); }},
          {"emissions",
           [](LifeRoom& r) { return SetBatchEmissionModel(r.session, r.record, {.MixVOCModelType = 1}, false); }},
          {"job", [](LifeRoom& r) { return EnterJobNumber(r.session, r.record, "J9"); }},
          {"no job", [](LifeRoom& r) { return EnterJobNumber(r.session, r.record, ""); }},
          {"quantity used", [](LifeRoom& r) { return EnterQtyUsed(r.session, r.record, "3"); }},
          {"split",
           [](LifeRoom& r) {
             return SaveJobItems(r.session, r.record, {{"J1", "1"}, {"J2", "2"}});
           }},
          {"lot number", [](LifeRoom& r) { return Text(r, "LotNumber"); }},
          {"location", [](LifeRoom& r) { return Text(r, "LotLoc"); }},
          {"container", [](LifeRoom& r) { return Text(r, "LotContID"); }},
          {"notes", [](LifeRoom& r) { return Text(r, "Notes"); }},
          {"ingredient notes", [](LifeRoom& r) { return Text(r, "IngNotes"); }},
          {"short note", [](LifeRoom& r) { return Text(r, "ShortNote"); }},
          {"user number", [](LifeRoom& r) { return EnterBatchField(r.session, r.record, "UD_Numeric0", "7"); }},
          {"more data",
           [](LifeRoom& r) {
             MoreData typed = ShowMoreData(r.session, r.record.fields);
             typed.texts[1] = "typed";
             return EnterMoreData(r.session, r.record, typed);
           }},
          {"a field that no procedure saw",
           [](LifeRoom& r) { return Typed(r, [](BatchRecord& record) { record.fields.Lab_LS = "D65"; }); }}};
}

enum class Held { Completed, ANo, FormulaChanged };

// The Batch of a job, by then completed, of an earlier day, or of a formula that was changed.
void OpenHeld(LifeRoom& room, Held held) {
  room.MakePink();
  room.Formula("ROSE", {{"RED", 50.0F}, {"WHITE", 50.0F}}, 8);
  room.LaterSetting("BatchComplete", held == Held::Completed ? "1" : "0");
  room.Setting("Overpour", "1");
  room.Mixed("PINK", "40");
  ASSERT_TRUE(EnterJobNumber(room.session, room.record, "J1"));
  if (held == Held::Completed) room.prompt.Expect("Batch Completion State            ", Answer::Yes);
  room.Save();
  if (held == Held::ANo) room.session.File().Execute("UPDATE INK_Batch SET Date_Entered = '2026-03-09 10:00:00'");
  if (held == Held::FormulaChanged)
    room.session.File().Execute("UPDATE INK_Mix SET Date_Entered = '2026-03-11 10:00:00'");
  room.Open(1);
}

TEST(BatchGuards, NoWayGoesByThem) {
  for (const Held held : {Held::Completed, Held::ANo, Held::FormulaChanged})
    for (const Way& way : Ways()) {
      SCOPED_TRACE(fmt::format("{} {}", static_cast<int>(held), way.name));
      LifeRoom room;
      OpenHeld(room, held);
      const std::string before = room.Data();
      const BatchRecord shown = room.record;
      const bool name = std::string_view(way.name) == "formula name";
      const bool unseen = std::string_view(way.name).starts_with("a field");
      if (held == Held::ANo && !name) room.prompt.Expect("Allow Editing?", Answer::No);
      const auto changed = way.change(room);
      if (unseen && held == Held::FormulaChanged) {
        EXPECT_TRUE(changed);  // shown only: the save keeps it as it is on file
        continue;
      }
      ASSERT_FALSE(changed);
      EXPECT_EQ(changed.error().title, name || held == Held::FormulaChanged ? "Batches Window - Edit State"
                                       : held == Held::Completed            ? "Completed Batch - Changes Not Allowed"
                                                                            : "Allow Editing?");
      if (!unseen) {
        EXPECT_EQ(room.record.fields, shown.fields);
        EXPECT_EQ(room.record.jobs, shown.jobs);
        EXPECT_FALSE(RecordHasChanged(room.session, room.record));
      }
      EXPECT_EQ(TakesChanges(room.session, room.record), held == Held::ANo);
      EXPECT_EQ(room.Data(), before);
    }
}

// Asked once, a Batch of an earlier day is changed in every way; unchecked, a completed one too.
TEST(BatchGuards, PassedOnceTheyLetEverythingThrough) {
  LifeRoom room;
  OpenHeld(room, Held::ANo);
  room.prompt.Expect("Allow Editing?", Answer::Yes);
  for (const char* field : {"Notes", "ShortNote"}) EXPECT_TRUE(Text(room, field));
  EXPECT_TRUE(EnterQtyUsed(room.session, room.record, "3"));
  room.Save();
  EXPECT_EQ(room.OfBatch("Notes").Text(), "typed");

  LifeRoom completed;
  OpenHeld(completed, Held::Completed);
  completed.record.Complete = false;
  EXPECT_TRUE(Text(completed, "Notes"));
  completed.record.Complete = true;
  completed.Save();
  EXPECT_EQ(completed.OfBatch("Notes").Text(), "typed");
}

// ---- Before a save

// Shows what it is told, and answers by the script.
struct Warned final : BatchDialogs {
  LotReminderAnswer ShowLotNumReminder() override {
    ++reminders;
    return {.returnToBatch = true};
  }
  std::optional<ModifiedBatchChoice> ShowSaveModifiedBatch(Session&, const BatchRecord&) override {
    return ModifiedBatchChoice{};
  }
  bool ShowShortStock(Session& session, const std::vector<ShortStock>& lines) override {
    told = ShortStockText(session, lines);
    return goesOn;
  }
  int reminders = 0;
  std::string told;
  bool goesOn = false;
};

TEST(BatchSave, TellsWhatStockDoesNotCover) {
  PinkRoom room;
  room.Setting("AllowNegInv", "0");
  room.Basic("BLACK", 0);
  room.HaveStock(ColorKind::Basic, 3);
  room.session.File().Execute("UPDATE INK_Basic SET Inventory = 0 WHERE Color_Name = 'BLACK'");
  room.session.File().Execute("UPDATE MSysStockHistory SET Change = 0, Result = 0 WHERE Color_Name = 'BLACK'");
  room.Lot(ColorKind::Basic, "RED", 1, 60);
  room.Lot(ColorKind::Basic, "RED", 2, 60, {{"LotConsignment", true}});
  room.Formula("DARK", {{"RED", 50.0F}, {"BLACK", 25.0F}, {"WHITE", 25.0F}});
  room.Mixed("DARK", "40");
  Warned dialogs;
  EXPECT_EQ(SaveBatch(room.session, room.record, dialogs).value(), SaveEnd::Stays);
  // BLACK is not kept in stock at all.
  EXPECT_EQ(dialogs.told,
            "The Batch takes more from inventory than is there:\n\n"
            "RED: 20.000 lb. needed, 3.000 in Unlotted Inv., 60.000 in lots not chosen\n"
            "WHITE: 10.000 lb. needed, 3.000 in Unlotted Inv.\n\n"
            "Only what is there is taken.");
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch").Whole(), 0);
  EXPECT_EQ(room.record.state, BatchState::Add);
  dialogs.goesOn = true;
  room.Select(0, {Use(1, 20)});
  EXPECT_EQ(SaveBatch(room.session, room.record, dialogs).value(), SaveEnd::Stored);
  EXPECT_EQ(dialogs.told.find("RED"), std::string::npos) << dialogs.told;
}

// The lot number may be there by itself; what counts is whether the lines say where they come from.
TEST(BatchSave, RemindsOfLinesWithoutLots) {
  PinkRoom room;
  room.Setting("BatchLotNumReminder", "1");
  room.LaterSetting("BatchDefaultLotNumberValue", "1");
  room.Lot(ColorKind::Basic, "RED", 1, 60);
  room.Mixed("PINK", "40");
  ASSERT_FALSE(room.record.fields.LotNumber.empty());
  Warned dialogs;
  EXPECT_EQ(SaveBatch(room.session, room.record, dialogs).value(), SaveEnd::Stays);
  EXPECT_EQ(dialogs.reminders, 1);
  room.Select(room.record.work.Rows[0].name == "RED" ? 0 : 1, {Use(1, 10)});
  EXPECT_EQ(SaveBatch(room.session, room.record, dialogs).value(), SaveEnd::Stored);
  EXPECT_EQ(dialogs.reminders, 1);
}

}  // namespace
}  // namespace vellumark
