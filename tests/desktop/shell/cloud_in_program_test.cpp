// The cloud in the program with all its windows: a backup from the menu, a report that goes up, and what other shops
// share: their stock, their formulas, their Designs.

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTabWidget>
#include <QTreeWidget>

#include "core/cloud/shared_accounts.h"
#include "core/datafile/databases.h"
#include "core/session/settings.h"
#include "core/shell/data_files.h"
#include "core/shell/opening.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/message_prompt.h"
#include "devices/ftp_connection.h"
#include "furnished_room.h"
#include "running.h"
#include "support/cloud_tasks.h"
#include "support/shop_settings.h"

namespace vellumark::test {
namespace {

using desktop::Grid;
using desktop::Q;
using desktop::U8;

struct CloudInProgramTest : testing::Test {
  CloudInProgramTest() {
    room.folder.Breaks("Parts");  // a share lacks what is nobody else's
    running.session.DataFolder = running.options.folders.data;
    settings = SettingsOf(server, "North Shop", "1001");
    WriteCloudSettings(running.session, settings);
    running.prompt.SetHook([this](const Message& message) {
      told.push_back(message.title);
      return message.buttons == Buttons::Ok || message.buttons == Buttons::OkCancel ? Answer::Ok : Answer::Yes;
    });
    if (!running.Start({desktop::ChooseFile, [this](const auto&) { return room.folder.Path(); }}))
      throw std::runtime_error("the program does not start");
    running.program.Main().activateWindow();
    Settle();
  }
  ~CloudInProgramTest() override {
    running.windows.CloseChildWindows();
    running.program.Main().close();
    Settle();
  }
  bool WasTold(const char* title) const { return std::ranges::find(told, title) != told.end(); }
  QWidget& Main() { return running.program.Main(); }
  void Menu(const char* item) { Main().findChild<QAction*>(item)->trigger(); }
  void BackUp() {
    WithDialog("CloudBackup", [&] { Menu("menuDFBackup_Cloud"); },
              [&](QWidget& task) {
                Click(task, "cmdStart");
                EndsWith(task, "Cloud Backup Complete");
              });
  }
  static std::string Cell(Grid& grid, int row, const char* caption) {
    for (std::size_t i = 0; i < grid.Columns().size(); ++i)
      if (grid.Columns()[i].caption.startsWith(caption))
        return U8(grid.Model().index(row, static_cast<int>(i)).data().toString());
    return "no column";
  }
  /// Whoever shares with this shop is this shop: what it put up comes back as another's.
  void ShareWithOurselves() { ASSERT_TRUE(SaveSharedAccounts(running.session, {{"1001", "North Shop"}})); }

  FtpServer server;
  FurnishedRoom room;
  CloudSettings settings;
  RunningProgram<desktop::MessagePrompt> running{room.folder.Path()};
  std::vector<std::string> told;
};

TEST_F(CloudInProgramTest, TheOpeningRemindsAndTheStartPageTellsTheLastBackup) {
  EXPECT_TRUE(WasTold("Cloud - Share Data"));
  EXPECT_EQ(U8(Control<QLabel>(Main(), "CloudDataBaseName").text()), "Cloud: 1001 - North Shop");
  BackUp();
  EXPECT_TRUE(WaitFor([&] { return Control<QLabel>(Main(), "lblStartFacts").text().contains("Last proven Cloud backup: "); }));
  told.clear();
  ASSERT_TRUE(OpenOtherDataFile(running.session, running.session.DataFileName, running.program.Windows()));
  EXPECT_FALSE(WasTold("Cloud - Share Data"));
}

TEST_F(CloudInProgramTest, AReportGoesUp) {
  desktop::Window* report = running.windows.OpenForm("InventoryForm", {{"Run", true}});
  ASSERT_NE(report, nullptr);
  ASSERT_TRUE(WaitFor([&] { return Control(*report, "cmdCloudReportUpload").isEnabled(); }));
  Picture(*report, "cloud-report-button");
  WithDialog("CloudReportUploadForm", [&] { Click(*report, "cmdCloudReportUpload"); },
            [&](QWidget& task) { EndsWith(task, "Cloud Report Upload Complete"); });
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(server.Root() / "1001/Reports")) {
    EXPECT_TRUE(entry.path().string().ends_with(" 1001.txt")) << entry.path();
    EXPECT_NE(ReadFileBytes(entry.path()).find("RED"), std::string::npos);
    ++files;
  }
  EXPECT_EQ(files, 1);
}

TEST_F(CloudInProgramTest, TheStockOfOtherShopsIsAReport) {
  BackUp();
  ShareWithOurselves();
  desktop::Window* reports = running.windows.OpenForm("ReportsForm");
  auto& list = Control<QListWidget>(*reports, "lstColorReports");
  const auto choose = [&](const char* caption) {
    QListWidgetItem* item = list.findItems(caption, Qt::MatchContains).value(0);
    ASSERT_NE(item, nullptr);
    list.scrollToItem(item);
    WithTask([&] { QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(item).center()); },
              [&](QWidget& task) { EndsWith(task, "Shared User Inventory Acquired"); });
  };
  choose("Cloud Users - All Colors");
  desktop::Window* report = running.windows.Form("CloudInvReport");
  ASSERT_NE(report, nullptr);
  auto& grid = Control<Grid>(*report, "fg");
  ASSERT_TRUE(WaitFor([&] { return grid.Model().rowCount() > 0; }));
  EXPECT_TRUE(Control<QLabel>(*report, "lblTitle").text().contains("Detail for Selected Databases"));
  std::map<std::string, std::string> stock;  // of each lot
  for (int row = 0; row < grid.Model().rowCount(); ++row)
    stock[Cell(grid, row, "Color Name") + "/" + Cell(grid, row, "Lot Number")] = Cell(grid, row, "Lot Qty.");
  EXPECT_EQ(stock["RED/B"], "50.000");
  EXPECT_EQ(stock["WHITE/Unlotted Inv."], "300.000");
  EXPECT_EQ(stock["GREEN/Unlotted Inv."], "0.000");
  EXPECT_TRUE(Cell(grid, 0, "Database").starts_with("1001 - INK (2026-03-10")) << Cell(grid, 0, "Database");
  const QFontMetrics letters(grid.View().font());
  EXPECT_GT(grid.ColumnWidth(1), letters.horizontalAdvance("1001 - INK (2026-03-10, fetch failed)"));
  Picture(*report, "cloud-inventory");
  const int all = grid.Model().rowCount();
  Click(*report, "chkInvOnly");
  EXPECT_TRUE(WaitFor([&] { return grid.Model().rowCount() < all; }));
  // Kept under a name, it is fetched and shown as it was.
  ASSERT_TRUE(WaitFor([&] { return Control(*report, "cmdSaveReport").isEnabled(); }));
  WithModal([&] { Click(*report, "cmdSaveReport"); },
            [](QWidget&) {
              TypeOn("Stock of the others");
              PressOn(Qt::Key_Return);
            });
  const int inStock = grid.Model().rowCount();
  running.windows.CloseForm("CloudInvReport");
  auto& saved = Control<QListWidget>(*reports, "lstSavedReports");
  QListWidgetItem* kept = saved.findItems("Stock of the others", Qt::MatchExactly).value(0);
  ASSERT_NE(kept, nullptr);
  WithTask([&] { QTest::mouseClick(saved.viewport(), Qt::LeftButton, {}, saved.visualItemRect(kept).center()); },
           [&](QWidget& task) { EndsWith(task, "Shared User Inventory Acquired"); });
  report = running.windows.Form("CloudInvReport");
  ASSERT_NE(report, nullptr);
  EXPECT_TRUE(WaitFor([&] { return Control<Grid>(*report, "fg").Model().rowCount() == inStock; }));
  running.windows.CloseForm("CloudInvReport");

  choose("Cloud Users - Specific Color");
  report = running.windows.Form("CloudInvReport_SpecificColor");
  ASSERT_NE(report, nullptr);
  Fill(*report, "cmbColorName", "BLUE");
  Click(*report, "cmdFind");
  auto& one = Control<Grid>(*report, "fg");
  ASSERT_TRUE(WaitFor([&] { return one.Model().rowCount() > 0; }));
  for (int row = 0; row < one.Model().rowCount(); ++row) EXPECT_EQ(Cell(one, row, "Color Name"), "BLUE");
}

TEST_F(CloudInProgramTest, FormulasAndDesignsOfAnotherShopComeIn) {
  BackUp();
  ShareWithOurselves();
  desktop::Window* formulas = running.windows.OpenForm("DBImport_Formulas");
  Click(*formulas, "optSource_Cloud");
  WithTask([&] { Click(*formulas, "cmdCloudGet"); },
            [&](QWidget& task) { EndsWith(task, "Shared User Formulas Acquired"); });
  auto& account = Control<QComboBox>(*formulas, "cmbAccount");
  ASSERT_EQ(account.count(), 1);
  Press(account, Qt::Key_Down);
  auto& databases = Control<QComboBox>(*formulas, "cmbDBList");
  ASSERT_EQ(databases.count(), 2);
  databases.setCurrentIndex(databases.findText("INK"));
  Picture(*formulas, "cloud-formulas");
  Click(*formulas, "cmdCompare");
  EXPECT_TRUE(Control<QLabel>(*formulas, "lblCounts").text().contains("4 the same")) << U8(Control<QLabel>(*formulas, "lblCounts").text());
  Control<Grid>(*formulas, "fgCompare").SetCurrentRow(0);
  WithDialog("ImportCompareCloudFormulas", [&] { Click(*formulas, "cmdView"); }, [](QWidget& form) { Click(form, "cmdOK"); });

  desktop::Window* designs = running.windows.OpenForm("DB_ImportExport_Designs");
  Control<QTabWidget>(*designs, "tabExchange").setCurrentIndex(1);
  WithTask([&] { Click(*designs, "cmdCloudGet"); },
            [&](QWidget& task) {
              Click(task, "chkDesignPhotos");
              Click(task, "cmdStart");
              EndsWith(task, "Shared User Designs Acquired");
            });
  Press(Control<QComboBox>(*designs, "cmbAccount"), Qt::Key_Down);
  auto& incoming = Control<Grid>(*designs, "fgCompare");
  ASSERT_EQ(incoming.Model().rowCount(), 1);
  EXPECT_EQ(Cell(incoming, 0, "Design ID"), "BOX");
  EXPECT_EQ(Cell(incoming, 0, "ModType"), "Same");
  Picture(*designs, "cloud-designs");
  WithDialog("ImportExamineCloudDesign", [&] { Click(*designs, "cmdView"); },
             [](QWidget& form) {
               EXPECT_EQ(U8(Control<QLabel>(form, "lblDesignID").text()), "BOX");
               Picture(form, "cloud-design");
               Click(form, "cmdClose");
             });
  told.clear();
  Click(*designs, "cmdImport");
  EXPECT_EQ(told, (std::vector<std::string>{"Updating Database with Designs", "Designs Import Complete"}));
}

// The start without a usable file: the window that comes then has the way to the Cloud, and to the administrator's file.
TEST_F(CloudInProgramTest, AFileThatIsGoneComesBackFromTheCloud) {
  BackUp();
  const std::filesystem::path file = running.session.DataFileName;
  const auto open = [&](const char* page, const std::function<void(QWidget&)>& inside) {
    running.windows.CloseChildWindows();
    CloseDataFile(running.session, running.program.Windows());
    std::filesystem::remove(file);
    WithDialog("NewDataFileForm", [&] { OpenRecentDataFile(running.session, running.program.Windows()); },
               [&](QWidget& form) {
                 auto& tabs = Control<QTabWidget>(form, "TabDataFile");
                 tabs.setCurrentWidget(tabs.findChild<QWidget*>(page));
                 Settle();
                 inside(form);
               });
  };
  open("TabRestore", [&](QWidget& form) {
    WithDialog("CloudRestoreFileList", [&] { Click(form, "cmdRestoreCloud"); },
               [&](QWidget& list) {
                 WithTask([&] { Click(list, "cmdContinue"); },
                          [](QWidget& task) {
                            Click(task, "cmdStart");
                            EndsWith(task, "Cloud Backup Files Retrieved");
                          });
               });
  });
  ASSERT_TRUE(running.session.DataFileOpen);
  EXPECT_EQ(CountRows(running.session.File(), "INK").formulas, 4);

  const std::filesystem::path standard = room.folder / "Standard.vkd";
  std::filesystem::copy_file(file, standard);
  settings.AdminUsername = "admin";
  settings.AdminPassword = "se cret#1";
  settings.AdminDefaultDF = standard.string();
  WriteCloudSettings(running.session, settings);
  open("TabCloudAdmin", [&](QWidget& form) {
    Picture(form, "cloud-new-data-file");
    Click(form, "cmdCloudAdminDefault_DF");
  });
  EXPECT_TRUE(std::filesystem::equivalent(running.session.DataFileName, standard));
}

TEST_F(CloudInProgramTest, SupportFilesComeBackAlone) {
  StoreSettings(running.session, {setting::AutoBackupCount.To(7)});
  BackUp();
  StoreSettings(running.session, {setting::AutoBackupCount.To(9)});
  told.clear();
  WithDialog("RestoreSupportFiles_Cloud", [&] { Menu("menuDFAdvanced_RestoreBU_SupportFiles_Cloud"); },
             [&](QWidget& list) {
               Picture(list, "cloud-restore-support");
               WithTask([&] { Click(list, "cmdContinue"); },
                        [](QWidget& task) { EndsWith(task, "Cloud Backup Files Retrieved"); });
             });
  EXPECT_TRUE(WasTold("Restore Complete"));
  EXPECT_EQ(GetSetting(running.session, setting::AutoBackupCount), 7);
}

/// A second shop on the same host, which works from the command line, in a place of its own.
struct SouthShop : CliRoom {
  explicit SouthShop(const FtpServer& server) {
    folder.Breaks("Parts");
    MakeFile();
    Json({"color", "add", "WHITE"});
    Json({"color", "add", "OCHRE", "PurchaseCost=3"});
    Json({"formula", "add", "SOUTH SAND", "WHITE=70", "OCHRE=30"});
    Json({"design", "add", "CUP", "SOUTH SAND=2:40", "Impressions=500", "Length=6", "Width=4"});
    Json({"stock", "adjust", "OCHRE", "25"});
    Json({"cloud", "settings", "Facility=South Shop", "AcctNum=1002", "CloudHost=" + server.Host(), "CloudHostUserName=shop",
          "CloudHostPassword=se cret#1", "RemoteDirectory=/", "Passive=1", "TLS=1", "ssl=0",
          "Port=" + std::to_string(server.Port()), "CertFile=" + server.Certificate().string()});
    ReplaceFile(folder / "VKCloudShareUsers.txt", "1001,North Shop\r\n");
    EXPECT_EQ(Run({"cloud", "accounts-import", (folder / "VKCloudShareUsers.txt").string()}).status, 0);
  }
};

// What two shops and their administrator do on one host, one of them in the program and one from the command line.
TEST_F(CloudInProgramTest, TwoShopsShareRestoreAndAreAdministered) {
  const SouthShop south(server);
  // Its first task is no backup: the log finds its place at the host all the same.
  EXPECT_EQ(south.Run({"cloud", "fetch"}).status, 4);
  EXPECT_TRUE(std::filesystem::exists(server.Root() / "1002/LogFiles/1002_SharedUsers_Formulas_Log.txt"));
  const std::string southBackup = south.Json({"cloud", "backup"})["Name"];
  EXPECT_EQ(south.Run({"cloud", "report-upload", "InventoryForm", "--name", "Stock of South"}).status, 0);
  BackUp();

  // The list of shops comes from the host.
  std::filesystem::create_directories(server.Root() / "1001/ShareUserList");
  ReplaceFile(server.Root() / "1001/ShareUserList/VKCloudShareUsers.txt", "1002,South Shop\r\n");
  server.Own();
  WithDialog("CloudAccountSettings", [&] { Menu("menuCloud_Settings"); },
             [&](QWidget& form) {
               Control<QTabWidget>(form, "tabCloud").setCurrentIndex(1);
               WithTask([&] { Click(form, "cmdFetchShares"); },
                        [](QWidget& task) { EndsWith(task, "Shared Users data acquired."); });
               EXPECT_EQ(U8(Control<QTableWidget>(form, "lstShares").item(0, 1)->text()), "South Shop");
               Picture(form, "cloud-shares-fetched");
               Click(form, "cmdClose");
             });

  // North takes South's formula and Design over and sees its stock.
  desktop::Window* formulas = running.windows.OpenForm("DBImport_Formulas");
  Click(*formulas, "optSource_Cloud");
  WithTask([&] { Click(*formulas, "cmdCloudGet"); },
           [](QWidget& task) { EndsWith(task, "Shared User Formulas Acquired"); });
  Press(Control<QComboBox>(*formulas, "cmbAccount"), Qt::Key_Down);
  auto& databases = Control<QComboBox>(*formulas, "cmbDBList");
  databases.setCurrentIndex(databases.findText("INK"));
  Click(*formulas, "cmdCompare");
  told.clear();
  Click(*formulas, "cmdImport");
  EXPECT_TRUE(WasTold("Cloud Formula Import Complete"));
  desktop::Window* designs = running.windows.OpenForm("DB_ImportExport_Designs");
  Control<QTabWidget>(*designs, "tabExchange").setCurrentIndex(1);
  WithTask([&] { Click(*designs, "cmdCloudGet"); },
           [](QWidget& task) {
             Click(task, "cmdStart");
             EndsWith(task, "Shared User Designs Acquired");
           });
  Press(Control<QComboBox>(*designs, "cmbAccount"), Qt::Key_Down);
  Click(*designs, "cmdImport");
  EXPECT_TRUE(WasTold("Designs Import Complete"));
  Database& file = running.session.File();
  EXPECT_EQ(file.Scalar("SELECT COUNT(*) FROM INK_Mix WHERE Color_Name = 'SOUTH SAND'").Whole(), 1);
  EXPECT_EQ(file.Scalar("SELECT COUNT(*) FROM Designs WHERE DesignID = 'CUP'").Whole(), 1);
  desktop::Window* stock = running.windows.OpenForm("CloudInvReport", {{"Run", true}});
  auto& grid = Control<Grid>(*stock, "fg");
  ASSERT_TRUE(WaitFor([&] { return grid.Model().rowCount() > 0; }));
  std::map<std::string, std::string> has;
  for (int row = 0; row < grid.Model().rowCount(); ++row) has[Cell(grid, row, "Color Name")] = Cell(grid, row, "Lot Qty.");
  EXPECT_EQ(has["OCHRE"], "25.000");

  // And South of North, from the command line; then it goes back to the day of its backup.
  EXPECT_EQ(south.Run({"cloud", "fetch", "--photos"}).status, 0);
  const std::string share = (south.folder / "VKDat/Cloud Downloads/ShareData/1001/1001.vkd").string();
  const CliAnswer taken = south.Run({"--yes", "formula", "import", "--from-file", share, "--from-db", "INK", "--take", "all"});
  EXPECT_EQ(taken.status, 0) << taken.err;
  EXPECT_EQ(south.Run({"formula", "show", "TINT"}).status, 0);
  const auto foreign = south.Json({"report", "run", "CloudInvReport_SpecificColor", "--color", "WHITE"});
  EXPECT_EQ(foreign["Count"], 1);
  EXPECT_EQ(foreign["Title"].get<std::string>().find("WHITE") == std::string::npos, false) << foreign["Title"];
  EXPECT_EQ(south.Run({"report", "save", "Others", "CloudInvReport", "--set", "InvOnly=1"}).status, 0);
  EXPECT_GT(south.Json({"report", "run", "--saved", "Others"})["Rows"].size(), 3U);
  const auto days = south.Json({"backup", "list", "--cloud"});
  ASSERT_EQ(days.size(), 1U) << days;
  EXPECT_EQ(days[0]["Set"], southBackup);
  EXPECT_EQ(days[0]["Place"], "Cloud account 1002");
  EXPECT_EQ(days[0]["Formulas"], 1);
  EXPECT_TRUE(days[0]["Verified"].get<bool>());
  EXPECT_EQ(south.Run({"--yes", "cloud", "restore", southBackup}).status, 0);
  EXPECT_EQ(south.Run({"formula", "show", "TINT"}).status, 1);

  // North is the administrator too: it reads South's report, removes it at the host and sends a file.
  settings.AdminUsername = "admin";
  settings.AdminPassword = "se cret#1";
  WriteCloudSettings(running.session, settings);
  WithDialog("CloudUtilityReportViewer", [&] { Menu("menuCloudUtilities_Reports"); },
             [&](QWidget& form) {
               WithTask([&] { Click(form, "cmdFetch"); }, [](QWidget& task) { EndsWith(task, "User Reports Acquired."); });
               auto& report = Control<Grid>(form, "fg");
               std::string shown;
               for (int row = 0; row < report.Model().rowCount(); ++row) shown += Cell(report, row, "Color Name") + " ";
               EXPECT_NE(shown.find("OCHRE"), std::string::npos) << shown;
               WithDialog("CloudUtilityReport_DeleteFiles", [&] { Click(form, "cmdDeleteFiles"); },
                          [](QWidget& files) {
                            Picture(files, "cloud-delete-files");
                            Click(files, "cmdSelectAll");
                            WithTask([&] { Click(files, "cmdDelete"); },
                                     [](QWidget& task) { EndsWith(task, "1 Reports deleted"); });
                            EXPECT_EQ(U8(Control<QLabel>(files, "lblCount").text()), "0 reports on file, 0 checked");
                            Click(files, "cmdClose");
                          });
               Click(form, "cmdClose");
             });
  EXPECT_EQ(south.Json({"cloud", "reports"}).size(), 0U);
  WithDialog("CloudUtilitiesDataFileUpload_SelectUsers", [&] { Menu("menuCloudUtilities_Upload"); },
             [](QWidget& form) {
               Control<QListWidget>(form, "lstAccounts").item(0)->setCheckState(Qt::Checked);
               WithTask([&] { Click(form, "cmdContinue"); },
                        [](QWidget& task) {
                          Click(task, "cmdStart");
                          EndsWith(task, "Data File uploaded to User's Cloud Backup folder.");
                        });
             });
  std::string sent;
  for (const auto& row : south.Json({"cloud", "list"}))
    if (row["Name"].get<std::string>().starts_with("Admin_VKDataFile_")) sent = row["Name"];
  const CliAnswer restored = south.Run({"--yes", "cloud", "restore", sent});
  EXPECT_EQ(restored.status, 0) << restored.err;
  EXPECT_EQ(south.Run({"formula", "show", "TINT"}).status, 0);

  // North goes back by the list of days, in which its backup stands as it was told when it went up.
  WithDialog("RestoreAutomaticForm", [&] { Menu("menuDFRestore_AutoBU"); },
             [&](QWidget& form) {
               auto& list = Control<QTreeWidget>(form, "lstSets");
               const auto cloudDay = [&] { return list.findItems("Cloud account 1001", Qt::MatchExactly, 5).value(0); };
               ASSERT_NE(cloudDay(), nullptr);
               EXPECT_EQ(U8(cloudDay()->text(2)), "4");
               EXPECT_EQ(U8(cloudDay()->text(4)), "proven");
               const int known = list.topLevelItemCount();
               Click(form, "cmdCloud");
               EXPECT_TRUE(Control<QLabel>(form, "lblNotes").text().startsWith("What the Cloud account has is told as of "));
               EXPECT_EQ(list.topLevelItemCount(), known);
               list.setCurrentItem(cloudDay());
               EXPECT_FALSE(Control(form, "cmdVerify").isEnabled());
               Picture(form, "cloud-days");
               WithTask([&] { Click(form, "cmdContinue"); },
                        [](QWidget& task) {
                          Click(task, "cmdStart");
                          EndsWith(task, "Cloud Backup Files Retrieved");
                        });
             });
  EXPECT_EQ(running.session.File().Scalar("SELECT COUNT(*) FROM INK_Mix WHERE Color_Name = 'SOUTH SAND'").Whole(), 0);
}

}  // namespace
}  // namespace vellumark::test
