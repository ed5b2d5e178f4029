#include <QLineEdit>
#include <QTreeWidget>

#include "cloud_desk.h"
#include "desktop/kit/grid.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;
using desktop::Grid;
using desktop::U8;

std::string Cell(Grid& grid, int row, int column) {
  return U8(grid.Model().index(row, column).data().toString());
}

/// Two shops on one host, one of which is the administrator's too.
struct Shops : testing::Test {
  Shops() {
    north.Open({"RED"});
    south.settings.Facility = "South Shop";
    south.settings.AdminUsername = "admin";
    south.settings.AdminPassword = "se cret#1";
    south.Open({"BLUE", "GREEN"});
    south.folder.Breaks("Parts");  // a share lacks what is nobody else's
  }
  void Share(CloudShop& shop, const std::vector<SharedAccount>& accounts) {
    shop.prompt.Expect("Shared Accounts");
    ASSERT_TRUE(SaveSharedAccounts(shop.session, accounts));
  }
  void SendReport(const std::string& text) {
    north.Run("CloudReportUploadForm", {{"Name", "Stock \"Größe\" 1001"}, {"Text", text}},
              [&](QWidget& task) { EndsWith(task, "Cloud Report Upload Complete"); });
  }

  FtpServer server;
  FaultProxy proxy{server};
  CloudShop north{server, "1001"};
  CloudShop south{server, "1002"};
};

TEST_F(Shops, WhatCameOfEachAccountIsTold) {
  north.BackUp();
  south.prompt.Expect("Cloud Share Users");
  EXPECT_FALSE(south.list.RunDialog("Cloud_GetPutData_Form", {{"Task", CloudTask::CloudInvReport}}));
  Share(south, {{"9999", "Nobody"}, {"1001", "North Shop"}});
  south.Run("Cloud_GetPutData_Form", {{"Task", CloudTask::CloudInvReport}}, [&](QWidget& task) {
    auto& accounts = Control<Grid>(task, "fgAccounts");
    EXPECT_EQ(Cell(accounts, 0, 0), "9999");
    EXPECT_EQ(Cell(accounts, 0, 2), "No");
    EXPECT_NE(Cell(accounts, 0, 3), "");
    EXPECT_EQ(Cell(accounts, 1, 2), "Yes");
    Picture(task, "cloud-accounts", {});
    EndsWith(task, "Shared User Inventory Acquired (1 of 2 accounts failed)");
  });
  EXPECT_TRUE(fs::exists(SharedDataFile(south.session, "1001")));
}

TEST_F(Shops, AReportGoesUpOnceAndTheAdministratorReadsIt) {
  SendReport("Color\tStock\r\nRED\t1\r\n");
  SendReport("Color\tStock\r\nRED\t2\r\nBLUE\t3\r\n");
  Share(south, {{"1001", "North Shop"}});
  south.answer = south.folder / "Out";
  fs::create_directories(south.answer);
  south.Run("CloudUtilityReportViewer", {}, [&](QWidget& form) {
    WithTask([&] { Click(form, "cmdFetch"); }, [&](QWidget& task) { EndsWith(task, "User Reports Acquired."); });
    auto& list = Control<QTreeWidget>(form, "lstReports");
    ASSERT_EQ(list.topLevelItemCount(), 1);
    EXPECT_EQ(U8(list.topLevelItem(0)->text(0)), "1001 - North Shop");
    ASSERT_EQ(list.topLevelItem(0)->childCount(), 1);
    auto& grid = Control<Grid>(form, "fg");
    EXPECT_EQ(grid.Columns().at(1).caption, "Stock");
    EXPECT_EQ(Cell(grid, 0, 1), "2");
    EXPECT_EQ(Cell(grid, 1, 0), "BLUE");
    Picture(form, "cloud-report-viewer");
    south.prompt.Expect("File Export");
    WithModal([&] { Click(form, "cmdExport"); },
              [&](QWidget& to) {
                Click(to, "cmdBrowse");
                EXPECT_EQ(Control<QLineEdit>(to, "txtFolder").text(), desktop::Q(south.answer.string()));
                Fill(to, "txtFileName", "north");
                Picture(to, "cloud-report-export", {});
                Click(to, "cmdSave");
              });
    Click(form, "cmdClose");
  });
  EXPECT_EQ(ReadFileBytes(south.answer / "north.txt"), "Color\tStock\r\nRED\t2\r\nBLUE\t3\r\n");

  north.prompt.Expect("Manage Cloud Reports", Answer::Yes);
  north.Run("CloudManageReportFileList", {}, [&](QWidget& form) {
    EXPECT_EQ(U8(Control<QLabel>(form, "lblCount").text()), "1 report on file, 0 checked");
    Click(form, "cmdSelectAll");
    WithTask([&] { Click(form, "cmdDelete"); }, [&](QWidget& task) { EndsWith(task, "1 Reports deleted"); });
    EXPECT_EQ(U8(Control<QLabel>(form, "lblCount").text()), "0 reports on file, 0 checked");
    Click(form, "cmdClose");
  });
}

TEST_F(Shops, TheAdministratorFetchesADataFileAndSendsOne) {
  north.BackUp();
  north.prompt.Expect("Cloud Admin Setting", Answer::Ok, "Admin Cloud Account required for this feature.");
  EXPECT_FALSE(north.list.RunDialog("CloudUtilityDataFileManager"));
  Share(south, {{"1001", "North Shop"}, {"1003", "West Shop"}});
  south.prompt.Expect("Open Data File", Answer::Yes);
  south.Run("CloudUtilityDataFileManager", {}, [&](QWidget& form) {
    Picture(form, "cloud-admin-data-file", {});
    WithTask([&] { Click(form, "cmdContinue"); },
              [&](QWidget& task) {
                Click(task, "cmdStart");
                EndsWith(task, "User Data Files Acquired");
              });
  });
  EXPECT_EQ(south.Colors(), 1);  // North's file is open

  ASSERT_TRUE(OpenOtherDataFile(south.session, south.file, south.windows));
  south.Run("CloudUtilitiesDataFileUpload_SelectUsers", {}, [&](QWidget& form) {
    south.prompt.Expect("Cloud - Data File Upload - Select Users", Answer::Ok, "Select a User account.");
    Click(form, "cmdContinue");
    Control<QListWidget>(form, "lstAccounts").item(0)->setCheckState(Qt::Checked);
    Picture(form, "cloud-admin-send", {});
    WithTask([&] { Click(form, "cmdContinue"); },
              [&](QWidget& task) {
                EXPECT_EQ(U8(task.windowTitle()), "Cloud - User Data File Upload");
                Click(task, "cmdStart");
                EndsWith(task, "Data File uploaded to User's Cloud Backup folder.");
              });
  });
  // It stands among North's backups, and is restored from there.
  north.prompt.Expect("Restore Data File", Answer::Yes).Expect("Restore Complete");
  north.Run("CloudRestoreFileList", {}, [&](QWidget& form) {
    auto& grid = Control<Grid>(form, "fgFiles");
    int sent = -1;
    for (int row = 0; row < grid.Model().rowCount(); ++row)
      if (Cell(grid, row, 0).starts_with("Admin_VKDataFile_")) sent = row;
    ASSERT_GE(sent, 0);
    grid.SetCurrentRow(sent);
    WithTask([&] { Click(form, "cmdContinue"); },
              [&](QWidget& task) {
                Click(task, "cmdStart");
                EndsWith(task, "Cloud Backup Files Retrieved");
              });
  });
  EXPECT_EQ(north.Colors(), 2);
  south.prompt.Expect("Cloud Admin Setting", Answer::Ok,
                      "A Default Data File hasn't been selected.\nUse Cloud Settings to choose a Default Data File.");
  EXPECT_FALSE(south.list.RunDialog("OpenCloudAdminDefault_DF"));
}

}  // namespace
}  // namespace vellumark::test
