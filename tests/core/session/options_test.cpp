#include "core/session/options.h"

#include <gtest/gtest.h>

#include "core/settings/settings_keys.h"
#include "support/ink_room.h"

namespace vellumark {
namespace {

TEST(Options, InventorySettingsAreCheckedStoredAndInForceAtOnce) {
  test::InkRoom room;
  int told = 0;
  const auto subscription = room.session.changes.Subscribe([&](const std::vector<Change>& changes) {
    for (const Change& change : changes) told += change.kind == Change::Kind::Settings ? 1 : 0;
  });
  InventorySettings settings{3, "", true, false, 1};
  for (const char* bad : {"", "abc", "-0.1", "1,5", "1e3", "0.5.5"}) {
    settings.InvCutoff = bad;
    const auto saved = SaveInventorySettings(room.session, settings);
    ASSERT_FALSE(saved) << bad;
    EXPECT_EQ(saved.error(), (Refusal{"Invalid Inventory Cutoff",
                                      "You must enter an amount greater than or equal to zero.", "txtCutoff"}));
  }
  EXPECT_EQ(room.session.UMI, 1);
  EXPECT_EQ(told, 0);
  settings.InvCutoff = " 0.250 ";
  room.prompt.Expect("Inventory Unit");
  ASSERT_TRUE(SaveInventorySettings(room.session, settings));
  EXPECT_EQ(room.session.UMI, 3);
  EXPECT_EQ(room.session.InvLotTracking, 0);
  EXPECT_EQ(GetSupportValue(room.session, keys::InvCutoff), "0.25");
  EXPECT_EQ(GetSupportValue(room.session, keys::AllowNegInv), "1");
  EXPECT_EQ(told, 1);
  settings.InvCutoff = "0";
  settings.UMI = 5;
  EXPECT_FALSE(SaveInventorySettings(room.session, settings));
  EXPECT_EQ(GetSupportValue(room.session, keys::InvCutoff), "0.25");
}

TEST(Options, NameLengthIsTenToThirty) {
  test::InkRoom room;
  room.session.support->settings.AppendSupportValue(keys::UDCNameCCodeLen, "30");
  const struct {
    const char* typed;
    int length;  // 0: refused
  } cases[] = {{"9", 0}, {"10", 10}, {" 15 ", 15}, {"30", 30}, {"31", 0}, {"30.5", 0}, {"10.5", 0}, {"", 0}, {"X", 0}};
  for (const auto& c : cases) {
    room.Setting(keys::UDCNameCCodeLen, "20");
    const auto saved = SaveNameLength(room.session, c.typed);
    EXPECT_EQ(saved.has_value(), c.length != 0) << c.typed;
    EXPECT_EQ(room.session.NameLength, c.length == 0 ? 20 : c.length) << c.typed;
    if (!saved) {
      EXPECT_EQ(saved.error().text, "You must enter a whole number between 10 and 30.");
    }
  }
}

TEST(Options, RemindersWriteTheirKeysInBothSenses) {
  test::InkRoom room;
  room.session.support->settings.AppendSupportValue(keys::BackupFileLocation, "");
  const auto days = [&] { return room.Scalar("SELECT DaysToRemindBackup FROM FileInfo").Whole(); };
  ASSERT_TRUE(SaveReminders(room.session, {true, 14, "/mnt/backup, weekly", false, true}));
  EXPECT_EQ(GetSupportValue(room.session, keys::RemindBackup), "0");
  EXPECT_EQ(GetSupportValue(room.session, keys::BackupFileLocation), "/mnt/backup, weekly");
  EXPECT_EQ(GetSupportValue(room.session, keys::LottedInvReminder), "0");
  EXPECT_EQ(GetSupportValue(room.session, keys::BatchLotNumReminder), "1");
  EXPECT_EQ(days(), 14);
  EXPECT_TRUE(ReadReminders(room.session).shutdownBackup);
  EXPECT_EQ(ReadReminders(room.session).DaysToRemindBackup, 14);

  EXPECT_EQ(SaveReminders(room.session, {true, 31, "", true, true}).error().field, "cmbDays");
  EXPECT_EQ(days(), 14);
  ASSERT_TRUE(SaveReminders(room.session, {true, 14, "/mnt/\"back\", up", true, true}));
  EXPECT_EQ(GetSupportValue(room.session, keys::BackupFileLocation), "/mnt/\"back\", up");

  // Off forgets the folder and leaves the days.
  ASSERT_TRUE(SaveReminders(room.session, {false, 5, "/mnt/backup", true, false}));
  EXPECT_EQ(GetSupportValue(room.session, keys::RemindBackup), "1");
  EXPECT_EQ(GetSupportValue(room.session, keys::BackupFileLocation), "");
  EXPECT_EQ(GetSupportValue(room.session, keys::BatchLotNumReminder), "0");
  EXPECT_EQ(days(), 14);
  room.session.File().Execute("UPDATE FileInfo SET DaysToRemindBackup = 0");
  EXPECT_EQ(ReadReminders(room.session).DaysToRemindBackup, 1);
}

TEST(Options, SetupStoresPositionsAsUnitCodes) {
  test::InkRoom room;
  ASSERT_TRUE(SaveNewSetup(room.session, 1, 3, "LPT_OFFICE"));
  EXPECT_EQ(GetSupportValue(room.session, keys::UMI), "2");
  EXPECT_EQ(GetSupportValue(room.session, keys::UMF), "4");
  EXPECT_EQ(GetSupportValue(room.session, keys::PrinterDevice), "LPT_OFFICE");
  EXPECT_EQ(room.session.UMF, 4);
  EXPECT_EQ(SaveNewSetup(room.session, -1, 0, "").error().field, "cmbUMI");
  EXPECT_EQ(SaveNewSetup(room.session, 0, 4, "").error().field, "cmbUMF");
  ASSERT_TRUE(SaveDefaultPrinter(room.session, "LPT_LAB", "Courier"));
  EXPECT_EQ(room.session.PrinterFont, "Courier");
  const auto offered = PrintersOffered({{"Office", "a"}, {"Rendering Subsystem", "b"}, {"Lab", "c"}});
  ASSERT_EQ(offered.size(), 2U);
  EXPECT_EQ(offered[1].device, "c");
}

TEST(Options, EachWindowAsksForTheRight) {
  test::InkRoom room;
  room.session.CurrentUser = "ANNA";
  room.session.Perm_Options = 0;
  const Refusal denied{"Permission Denied", "ANNA, you do not have permission to change Options.", ""};
  EXPECT_EQ(SaveInventorySettings(room.session, {2, "1", false, true, 0}).error(), denied);
  EXPECT_EQ(SaveNameLength(room.session, "12").error(), denied);
  EXPECT_EQ(SaveAutofill(room.session, false).error(), denied);
  EXPECT_EQ(SaveReminders(room.session, {}).error(), denied);
  EXPECT_EQ(SaveDefaultPrinter(room.session, "X", "Arial").error(), denied);
  room.session.Perm_Options = 1;
  ASSERT_TRUE(SaveAutofill(room.session, false));
  EXPECT_EQ(room.session.AutoFillText, 0);
}

}  // namespace
}  // namespace vellumark
