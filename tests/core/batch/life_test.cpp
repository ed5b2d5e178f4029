// The life of a Batch: saved, opened, changed, left, deleted; what it does to stock at each step.

#include "life_room.h"

namespace vellumark {
namespace {

using test::LifeRoom;
using test::Use;

TEST(BatchLife, SavePostsTheLinesAndWhatIsMade) {
  LifeRoom room;
  room.PinkRoom();
  room.Mixed("PINK", "40");
  room.record.fields.ShortNote = "for the flag";
  EXPECT_EQ(room.Save(), 1);
  EXPECT_EQ(room.record.state, BatchState::None);
  EXPECT_EQ(room.record.BatchNo, 2);
  EXPECT_EQ(room.Red(), 90);
  EXPECT_EQ(room.White(), 170);
  EXPECT_EQ(room.Pink(), 40);
  EXPECT_EQ(room.Scalar("SELECT ShortNote FROM INK_Batch WHERE BatchNo = 1").Text(), "for the flag");
  EXPECT_EQ(room.Scalar("SELECT ActualQuantity FROM INK_Batch").Single(), 40);
  EXPECT_EQ(room.Scalar("SELECT IngName0 || IngQty0 || IngType0 || IngName19 || IngType19 FROM INK_Batch").Text(),
            "WHITE30.011");
  EXPECT_EQ(room.Scalar("SELECT CostOfBasics FROM INK_Batch").Single(), 70);
  EXPECT_EQ(room.Scalar("SELECT BatchNumber FROM FileInfo").Whole(), 2);
  EXPECT_EQ(room.Scalar("SELECT LastProduced FROM INK_Mix").Text(), "2026-03-10 12:00:00");
  EXPECT_EQ(room.Scalar("SELECT LastConsumed FROM INK_Basic WHERE Color_Name = 'RED'").Text(), "2026-03-10 12:00:00");
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch_LotInv WHERE LotNumber = 'Unlotted Inv.'").Whole(), 2);
}

TEST(BatchLife, OpeningHandsTheIngredientsBackAndLeavingTakesThemAgain) {
  LifeRoom room;
  room.PinkRoom();
  room.Saved("PINK", "40");
  const std::string before = room.Data();
  room.Open(1);
  EXPECT_EQ(room.Red(), 100);
  EXPECT_EQ(room.White(), 200);
  EXPECT_EQ(room.Pink(), 40);
  EXPECT_EQ(room.record.OldLines.size(), 2U);
  EXPECT_EQ(room.record.returned, 40);
  EXPECT_FALSE(RecordHasChanged(room.session, room.record));
  ASSERT_TRUE(CancelBatch(room.session, room.record).value());
  EXPECT_EQ(room.Data(), before);
  EXPECT_TRUE(AbandonedBatches(room.session.File()).empty());
}

TEST(BatchLife, SavedAgainWithAnotherQuantity) {
  LifeRoom room;
  room.PinkRoom();
  room.Saved("PINK", "40");
  room.Open(1);
  room.Remix("60");
  EXPECT_TRUE(RecordHasChanged(room.session, room.record));
  EXPECT_EQ(room.Save(), 1);
  EXPECT_EQ(room.Red(), 85);
  EXPECT_EQ(room.White(), 155);
  EXPECT_EQ(room.Pink(), 60);
  EXPECT_EQ(room.Scalar("SELECT COUNT(*) FROM INK_Batch_LotInv").Whole(), 2);
  EXPECT_EQ(room.Scalar("SELECT BatchNumber FROM FileInfo").Whole(), 2);
}

}  // namespace
}  // namespace vellumark
