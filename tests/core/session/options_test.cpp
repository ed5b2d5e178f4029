#include "core/session/options.h"

#include <gtest/gtest.h>

#include "core/session/settings.h"
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
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::InvCutoff.key), "0.25");
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::AllowNegInv.key), "1");
  EXPECT_EQ(told, 1);
  settings.InvCutoff = "0";
  settings.UMI = 5;
  EXPECT_FALSE(SaveInventorySettings(room.session, settings));
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::InvCutoff.key), "0.25");
}

TEST(Options, NameLengthIsTenToThirty) {
  test::InkRoom room;
  StoreSettings(room.session, {setting::UDCNameCCodeLen.To(30)});
  const struct {
    const char* typed;
    int length;  // 0: refused
  } cases[] = {{"9", 0}, {"10", 10}, {" 15 ", 15}, {"30", 30}, {"31", 0}, {"30.5", 0}, {"10.5", 0}, {"", 0}, {"X", 0}};
  for (const auto& c : cases) {
    room.Setting(setting::UDCNameCCodeLen.key, "20");
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
  const auto days = [&] { return room.Scalar("SELECT DaysToRemindBackup FROM FileInfo").Whole(); };
  ASSERT_TRUE(SaveReminders(room.session, {true, 14, "/mnt/backup, weekly", false, true}));
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::RemindBackup.key), "0");
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::BackupFileLocation.key), "/mnt/backup, weekly");
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::LottedInvReminder.key), "0");
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::BatchLotNumReminder.key), "1");
  EXPECT_EQ(days(), 14);
  EXPECT_TRUE(ReadReminders(room.session).shutdownBackup);
  EXPECT_EQ(ReadReminders(room.session).DaysToRemindBackup, 14);

  EXPECT_EQ(SaveReminders(room.session, {true, 31, "", true, true}).error().field, "cmbDays");
  EXPECT_EQ(days(), 14);
  ASSERT_TRUE(SaveReminders(room.session, {true, 14, "/mnt/\"back\", up", true, true}));
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::BackupFileLocation.key), "/mnt/\"back\", up");

  // Off forgets the folder and leaves the days.
  ASSERT_TRUE(SaveReminders(room.session, {false, 5, "/mnt/backup", true, false}));
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::RemindBackup.key), "1");
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::BackupFileLocation.key), "");
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::BatchLotNumReminder.key), "0");
  EXPECT_EQ(days(), 14);
  room.session.File().Execute("UPDATE FileInfo SET DaysToRemindBackup = 0");
  EXPECT_EQ(ReadReminders(room.session).DaysToRemindBackup, 1);
}

TEST(Options, SetupStoresPositionsAsUnitCodes) {
  test::InkRoom room;
  ASSERT_TRUE(SaveNewSetup(room.session, 1, 3, "LPT_OFFICE"));
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::UMI.key), "2");
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::UMF.key), "4");
  EXPECT_EQ(room.session.support->settings.GetSupportValue(setting::PrinterDevice.key), "LPT_OFFICE");
  EXPECT_EQ(room.session.UMF, 4);
  EXPECT_EQ(SaveNewSetup(room.session, -1, 0, "").error().field, "cmbUMI");
  EXPECT_EQ(SaveNewSetup(room.session, 0, 4, "").error().field, "cmbUMF");
  ASSERT_TRUE(SaveDefaultPrinter(room.session, "LPT_LAB", "Courier"));
  EXPECT_EQ(room.session.PrinterFont, "Courier");
  const auto offered = PrintersOffered({{"Office", "a"}, {"Rendering Subsystem", "b"}, {"Lab", "c"}});
  ASSERT_EQ(offered.size(), 2U);
  EXPECT_EQ(offered[1].device, "c");
}

TEST(Options, SettingsAreStoredInOneStepAddedWhereTheyAreMissingAndTold) {
  test::InkRoom room;
  int told = 0;
  const auto subscription = room.session.changes.Subscribe([&](const std::vector<Change>&) { ++told; });
  const auto sortedBy = setting::SortCol.Of("NewReport");
  EXPECT_EQ(GetSetting(room.session, sortedBy), 0);
  StoreSettings(room.session, {setting::UMF.To(4), sortedBy.To(7), setting::ColWidth.Of("NewReport", 2).To(1500),
                               setting::BatchComplete.To(true), setting::QuickInfoField[3].To(false)});
  EXPECT_EQ(told, 1);
  EXPECT_EQ(room.session.UMF, 4);
  EXPECT_EQ(GetSetting(room.session, sortedBy), 7);
  EXPECT_EQ(room.session.support->settings.GetSupportValue("NewReportColWidth2"), "1500");
  EXPECT_TRUE(GetSetting(room.session, setting::BatchComplete)) << "a key that was not there is not lost";
  EXPECT_FALSE(GetSetting(room.session, setting::QuickInfoField[3]));
  EXPECT_TRUE(GetSetting(room.session, setting::QuickInfoField[4]));
  const std::size_t records = room.session.support->settings.Read().Records().size();
  StoreSettings(room.session, {sortedBy.To(8)});
  EXPECT_EQ(room.session.support->settings.Read().Records().size(), records);
}

TEST(Options, ValuesThatMeanNothingAreToldInOneMessage) {
  test::InkRoom room;
  TellUnusableSettings(room.session);  // nothing to tell
  room.Setting("UMI", "7");
  room.Setting("BatchListColWidth3", "wide");
  room.Setting("PrinterFont", "7");
  room.prompt.Expect(
      "Settings", Answer::Ok,
      "BatchListColWidth3 is a whole number of 0 or more, not \"wide\".\nUMI is a whole number from 1 to "
      "4, not \"7\".\nUntil they are set anew, their defaults are in force.");
  TellUnusableSettings(room.session);
  EXPECT_EQ(room.session.UMI, 1);

  // A file that lost its end: what it says no more is told with what counts instead.
  room.Setting("UMI", "2");
  room.Setting("BatchListColWidth3", "0");
  SupportRecords cut(RecordShape::KeyValue);
  for (const SupportRecord& record : room.session.support->settings.Read().Records()) {
    if (record.key == "InvCutoff") break;
    cut.Append(record.key, record.value);
  }
  room.session.support->settings.Write(cut);
  ReadSettings(room.session);
  room.prompt.Expect("Settings", Answer::Ok,
                     "InvCutoff is missing in the file and counts as 0.227.\nInvLotTracking is missing in the file and "
                     "counts as 0.\nSet them anew, or restore the settings of a backup.");
  TellUnusableSettings(room.session);
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
