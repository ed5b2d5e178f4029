#include <gtest/gtest.h>

#include <fstream>

#include "core/base/files.h"
#include "core/datafile/database_changes.h"
#include "core/datafile/references.h"
#include "core/jobs/design_bench.h"
#include "core/jobs/design_tables.h"
#include "core/jobs/design_uses.h"
#include "core/jobs/design_work.h"
#include "core/session/settings.h"
#include "support/ink_room.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;

struct DesignsTest : testing::Test, InkRoom {
  DesignsTest() {
    Basic("RED", {{"PurchaseCost", 4.0F}, {"Color_Code", "R1"}, {"Inventory", 3.0F}});
    Basic("BOTH");
    Mix("PINK", {{"RED", 100.0F}}, {{"PurchaseCost", 9.5F}});
    Mix("BOTH", {{"RED", 100.0F}});
  }

  void Add(const std::string& id, const std::vector<PickedPhoto>& photos = {}) {
    auto work = BeginDesign(session, id);
    ASSERT_TRUE(work);
    for (const PickedPhoto& photo : photos) ASSERT_TRUE(UsePhoto(session, *work, photo));
    const auto saved = SaveDesign(session, *work);
    ASSERT_TRUE(saved) << saved.error().text;
  }
  void JobRow(const std::string& job, const std::string& design, const std::string& date, std::int32_t item) {
    InsertRow(session.File(), schema::JobRecords, "JobRecords",
              {{"JobNumber", job},
               {"DesignID", design},
               {"DesignDesc", "old"},
               {"Color_Name", "RED"},
               {"Database", "INK"},
               {"BatchNo", 1000000 + item},
               {"ItemType", 1},
               {"Date_Entered", date}});
    session.File().Execute("UPDATE FileInfo SET ItemNumber = 100");
  }
  fs::path Photo(const std::string& name) { return PhotoFolder(session) / name; }
  std::string Bytes(const std::string& name) { return fs::exists(Photo(name)) ? ReadFileBytes(Photo(name)) : "(none)"; }
  std::string PhotoSet(const std::string& id) { return ReadDesign(session, id)->PhotoSet; }
};

TEST_F(DesignsTest, TakesTenColorsOfTwoKindsAndCostsThem) {
  auto work = BeginDesign(session, "  gloss box ");
  ASSERT_TRUE(work);
  EXPECT_EQ(work->design.DesignID, "GLOSS BOX");
  ASSERT_TRUE(PutDesignColor(session, *work, {"pink", "", {}, "2", "40", {}}));
  ASSERT_TRUE(PutDesignColor(session, *work, {"red", "", {}, "1.5", "", {}}));
  prompt.Expect("Color Type Selection", Answer::No,
                "BOTH was found in Database INK\nas a Formula & Basic color.\n\nYes - use Formula\nNo  - use Basic.");
  ASSERT_TRUE(PutDesignColor(session, *work, {"BOTH", "INK", {}, "", "", {}}));
  EXPECT_EQ(PutDesignColor(session, *work, {"NONE", "", {}, "", "", {}}).error().title, "Color Not Found");
  EXPECT_EQ(PutDesignColor(session, *work, {"PINK", "", {}, "1", "101", {}}).error().text, "Percent value exceeds 100");
  ASSERT_TRUE(EnterDesignField(*work, "Length", "254", LengthUnit::Millimetre));
  EXPECT_EQ(EnterDesignField(*work, "Width", "wide").error(),
            (Refusal{"Width - Invalid Data", "Bad Value for Width.", "Width", false}));
  ASSERT_TRUE(SaveDesign(session, *work));

  const Design saved = *ReadDesign(session, "Gloss Box");
  EXPECT_EQ(saved.Length, 10.0F);
  EXPECT_EQ(saved.IngSet, "<PINK><RED><BOTH>");
  EXPECT_EQ(saved.slots[2].IngType, 1);
  EXPECT_EQ(saved.slots[1].IngCCode, "R1");
  EXPECT_EQ(saved.Created, session.clock.Today());
  // The formula rolls up to 4 a pound: 2 x 4 + 1.5 x 4; bought it costs 9.50.
  EXPECT_EQ(DesignTotalCost(session, saved.Colors()), "14.00");
  StoreSettings(session, {setting::DesignsCostModelIndex.To(1)});
  EXPECT_EQ(DesignTotalCost(session, saved.Colors()), "25.00");
  session.CurrentUser = "ANN";
  session.Perm_Costs = 0;
  EXPECT_EQ(DesignTotalCost(session, saved.Colors()), "User Permissions - Price Blocked");
  session.CurrentUser.clear();

  auto full = BeginDesign(session, "FULL");
  for (int i = 0; i < 10; ++i) Basic("C" + std::to_string(i));
  for (int i = 0; i < 10; ++i)
    ASSERT_TRUE(PutDesignColor(session, *full, {"C" + std::to_string(i), "", {}, "1", "", {}}));
  EXPECT_EQ(PutDesignColor(session, *full, {"RED", "", {}, "1", "", {}}).error(),
            (Refusal{"Design", "Maximum Colors for a Design is 10", "IngName", false}));
  ASSERT_TRUE(PutDesignColor(session, *full, {"C3", "", {}, "7", "", {}}));  // changes its line
  EXPECT_EQ(full->design.slots[3].IngQty, 7.0F);
}

TEST_F(DesignsTest, RefusesADatabaseWhoseNameDoesNotFit) {
  CreateEmptyDatabase(session.File(), "A LONG DATABASE X");
  session.databaseList.emplace_back("A LONG DATABASE X");
  session.File().Execute("UPDATE FileInfo SET DBList = 'INK|A LONG DATABASE X|'");
  session.File().Execute("INSERT INTO \"A LONG DATABASE X_Basic\" (Color_Name, IngSort) VALUES ('RED', 0)");
  auto work = BeginDesign(session, "D");
  EXPECT_EQ(PutDesignColor(session, *work, {"RED", "A LONG DATABASE X", {}, "1", "", {}}).error().field, "IngDB");
}

TEST_F(DesignsTest, RenamesWithItsJobRecordsAndNeverOntoAnother) {
  Add("A");
  Add("B");
  JobRow("J1", "A", "2026-02-01 00:00:00", 1);
  JobRow("J2", "A", "2026-01-05 00:00:00", 2);
  FollowLastUsed(session, "a");
  EXPECT_EQ(ReadDesign(session, "A")->LastUsed->DateText(), "2026-02-01");
  for (const auto& [name, title] :
       std::vector<std::pair<std::string, std::string>>{{" ", "Design Name Needed"},
                                                        {"a", "Choose Another Name"},
                                                        {"b", "Choose Another Name"},
                                                        {"- split -", "Choose Another Name"},
                                                        {std::string(31, 'X'), "Invalid Name"},
                                                        {"A\tB", "Invalid Name"}})
    EXPECT_EQ(RenameDesign(session, "A", name).error().title, title) << name;
  EXPECT_EQ(*RenameDesign(session, "A", "c"), "C");
  EXPECT_FALSE(DesignExists(session, "A"));
  EXPECT_EQ(Scalar("SELECT COUNT(*) FROM JobRecords WHERE DesignID = 'C'").Whole(), 2);

  // Down as well as up, also when rows went without a word.
  session.File().Execute("DELETE FROM JobRecords WHERE JobNumber = 'J1'");
  FollowLastUsed(session);
  EXPECT_EQ(ReadDesign(session, "C")->LastUsed->DateText(), "2026-01-05");

  auto work = OpenDesign(session, "C");
  ASSERT_TRUE(EnterDesignField(*work, "Description", "new"));
  prompt.Expect("Update Job Record Design Description", Answer::Yes,
                "Design Description has changed.\n\nYes - Update saved Job Records with new Description\nNo - Keep the "
                "Description used on saved Jobs Records");
  ASSERT_TRUE(SaveDesign(session, *work));
  EXPECT_EQ(Scalar("SELECT DesignDesc FROM JobRecords WHERE JobNumber = 'J2'").Text(), "new");
  EXPECT_FALSE(CopyDesign(session, "C", "b"));
  ASSERT_TRUE(CopyDesign(session, "C", "copy"));
  EXPECT_EQ(ReadDesign(session, "COPY")->Description, "new");
  EXPECT_FALSE(ReadDesign(session, "COPY")->LastUsed);
}

TEST_F(DesignsTest, PhotosFollowTheRowsAndNothingHappensBeforeTheSave) {
  auto work = BeginDesign(session, "A");
  ASSERT_TRUE(UsePhoto(session, *work, {"front.jpeg", "one"}));
  EXPECT_FALSE(fs::exists(Photo("front.jpg")));
  EXPECT_EQ(UsePhoto(session, *work, {"FRONT.JPG", "x"}).error().title, "Duplicate Design Photo");
  for (const char* bad : {"a<b.jpg", "..jpg", "a/b.jpg", " .png", ".hid.jpg"})
    EXPECT_FALSE(UsePhoto(session, *work, {bad, "x"})) << bad;
  ASSERT_TRUE(SaveDesign(session, *work));
  EXPECT_EQ(Bytes("front.jpg"), "one");
  EXPECT_EQ(PhotoSet("A"), "<front.jpg>");

  // The same picture is shared without a question; another one of that name is asked about, and says whose it changes.
  Add("B", {{"Front.jpg", "one"}});
  auto other = BeginDesign(session, "C");
  prompt.Expect(
      "Duplicate Library Photo", Answer::No,
      "A photo with this name exists in the Designs Photo Library.\n\nIt is the picture of A, B.\n\nYes - USE "
      "this photo and copy over the one in the Library.\nNo - RENAME this photo and try USE again.");
  EXPECT_TRUE(UsePhoto(session, *other, {"front.jpg", "two"}).error().declined);
  prompt.Expect("Duplicate Library Photo", Answer::Yes);
  ASSERT_TRUE(UsePhoto(session, *other, {"front.jpg", "two"}));
  EXPECT_EQ(Bytes("front.jpg"), "one");
  ASSERT_TRUE(SaveDesign(session, *other));
  EXPECT_EQ(Bytes("front.jpg"), "two");

  // A deleted Design leaves the file to those who link it.
  prompt.Expect("Delete Design", Answer::Yes, "Delete Design ID: A");
  ASSERT_TRUE(DeleteDesign(session, "a"));
  EXPECT_EQ(Bytes("front.jpg"), "two");
  auto b = OpenDesign(session, "B");
  prompt.Expect("Photo Rename", Answer::No,
                "Other Designs use the Photo named: front.jpg\n\nUpdate those Designs to use: back.jpg ?");
  ASSERT_TRUE(RenamePhoto(session, *b, "front.jpg", "back"));
  EXPECT_FALSE(fs::exists(Photo("back.jpg")));
  ASSERT_TRUE(SaveDesign(session, *b));
  EXPECT_EQ(PhotoSet("B") + PhotoSet("C"), "<back.jpg><front.jpg>");
  EXPECT_EQ(Bytes("back.jpg") + Bytes("front.jpg"), "twotwo");
  auto c = OpenDesign(session, "C");
  EXPECT_EQ(RenamePhoto(session, *c, "front.jpg", "BACK").error().title, "Photo Rename");
  // The new name and, in the place of the old one, another picture in the same save.
  ASSERT_TRUE(RenamePhoto(session, *c, "front.jpg", "side"));
  prompt.Expect("Duplicate Library Photo", Answer::Yes);
  ASSERT_TRUE(UsePhoto(session, *c, {"front.jpg", "three"}));
  ASSERT_TRUE(SaveDesign(session, *c));
  EXPECT_EQ(Bytes("side.jpg") + Bytes("front.jpg"), "twothree");
  prompt.Expect("Remove Design Photo", Answer::Yes, "Remove picture from this Design");
  ASSERT_TRUE(RemovePhoto(session, *c, "side.jpg"));
  EXPECT_EQ(Bytes("side.jpg"), "two");
  ASSERT_TRUE(SaveDesign(session, *c));
  EXPECT_EQ(Bytes("side.jpg"), "(none)");

  fs::remove(Photo("front.jpg"));
  EXPECT_EQ(RenamePhoto(session, *c, "front.jpg", "gone").error(), MissingPhoto("front.jpg"));
  EXPECT_TRUE(ListLibrary(session).back().missing);
  fs::remove_all(PhotoFolder(session));
}

TEST_F(DesignsTest, AnotherDataFileOfTheFolderKeepsItsPhotos) {
  Add("A", {{"shared.jpg", "one"}, {"own.jpg", "two"}});
  {
    CreateFile(folder / "other.vkd");
    const auto file = Database::Open(folder / "other.vkd", OpenMode::Exclusive);
    InsertRow(*file, schema::Designs, "Designs", {{"DesignID", "X"}, {"PhotoSet", "<Shared.jpg>"}});
  }
  auto work = OpenDesign(session, "A");
  ASSERT_TRUE(RenamePhoto(session, *work, "shared.jpg", "mine"));
  ASSERT_TRUE(SaveDesign(session, *work));
  EXPECT_EQ(Bytes("shared.jpg") + Bytes("mine.jpg"), "oneone");
  // While somebody works in the other file nobody knows what it links.
  const auto held = Database::Open(folder / "other.vkd", OpenMode::Exclusive);
  prompt.Expect("Delete Design", Answer::Yes);
  ASSERT_TRUE(DeleteDesign(session, "A"));
  EXPECT_EQ(Bytes("own.jpg"), "two");
}

TEST_F(DesignsTest, WhatADeadProgramLeftOfThePhotosTheNextOpeningDoes) {
  Add("A", {{"old.jpg", "one"}});
  auto work = OpenDesign(session, "A");
  ASSERT_TRUE(RenamePhoto(session, *work, "old.jpg", "new"));
  ASSERT_TRUE(UsePhoto(session, *work, {"more.jpg", std::string("\x00\xFF<>", 4)}));
  fs::create_directories(Photo("more.jpg"));  // in the way, as a full disk would be
  EXPECT_THROW((void)SaveDesign(session, *work), Failure);
  EXPECT_EQ(PhotoSet("A"), "<new.jpg><more.jpg>");
  EXPECT_EQ(Bytes("new.jpg"), "one");
  fs::remove(Photo("more.jpg"));
  session.DataFileDB.reset();
  session.DataFileDB = Database::Open(session.DataFileName, OpenMode::Exclusive);
  RunPhotoSteps(session);
  EXPECT_EQ(Bytes("more.jpg"), std::string("\x00\xFF<>", 4));
  EXPECT_EQ(LibraryPhotos(session), (std::vector<std::string>{"more.jpg", "new.jpg"}));
}

TEST_F(DesignsTest, TellsWhatARunNeedsAndWhatIsToBeMade) {
  auto work = BeginDesign(session, "A");
  ASSERT_TRUE(PutDesignColor(session, *work, {"RED", "", {}, "2", "50", {}}));
  ASSERT_TRUE(PutDesignColor(session, *work, {"PINK", "", {}, "1", "", {}}));
  EXPECT_EQ(NeedsOfRun(session, work->design, {"100"}).error().title, "Design");
  ASSERT_TRUE(EnterDesignField(*work, "Impressions", "1000"));
  const auto needs = NeedsOfRun(session, work->design, {"2500"});
  ASSERT_TRUE(needs);
  EXPECT_DOUBLE_EQ((*needs)[0].needed, 5);
  EXPECT_DOUBLE_EQ((*needs)[0].toMake, 2);
  EXPECT_DOUBLE_EQ((*needs)[1].toMake, 2.5);
  Setting("UMF", "2");
  EXPECT_EQ(BatchQuantityText(session, (*needs)[1]), "1.134");  // 1.1339809 kg
  ASSERT_TRUE(EnterDesignField(*work, "Length", "11"));
  ASSERT_TRUE(EnterDesignField(*work, "Width", "10"));
  const auto estimated = NeedsOfRun(session, work->design, {"25000", true, 2, 0});
  EXPECT_DOUBLE_EQ((*estimated)[0].needed, 5);  // 25,000 x 110 x 1/2 square inches at 275,000 a pound
  EXPECT_DOUBLE_EQ((*estimated)[1].needed, 10);
}

}  // namespace
}  // namespace vellumark::test
