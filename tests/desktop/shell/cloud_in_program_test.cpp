// The cloud in the program with all its windows: a backup from the menu, a report that goes up, and what other shops
// share: their stock, their formulas, their Designs.

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

#include "core/cloud/shared_accounts.h"
#include "core/shell/data_files.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/message_prompt.h"
#include "devices/ftp_connection.h"
#include "furnished_room.h"
#include "running.h"
#include "support/cloud_tasks.h"
#include "support/ftp_server.h"

namespace vellumark::test {
namespace {

using desktop::Grid;
using desktop::Q;
using desktop::U8;

struct CloudInProgramTest : testing::Test {
  CloudInProgramTest() {
    room.folder.Breaks("Parts");  // a share lacks what is nobody else's
    running.session.DataFolder = running.options.folders.data;
    CloudSettings settings;
    settings.Facility = "North Shop";
    settings.AcctNum = "1001";
    settings.CloudHost = server.Host();
    settings.Port = server.Port();
    settings.CloudHostUserName = "shop";
    settings.CloudHostPassword = "se cret#1";
    settings.RemoteDirectory = "/";
    settings.Passive = settings.TLS = true;
    settings.ssl = false;
    settings.CertFile = server.Certificate().string();
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
  EXPECT_FALSE(Control(*report, "cmdSaveReport").isVisible());
  Picture(*report, "cloud-inventory");
  const int all = grid.Model().rowCount();
  Click(*report, "chkInvOnly");
  EXPECT_TRUE(WaitFor([&] { return grid.Model().rowCount() < all; }));
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
  told.clear();
  Click(*designs, "cmdImport");
  EXPECT_EQ(told, (std::vector<std::string>{"Updating Database with Designs", "Designs Import Complete"}));
}

}  // namespace
}  // namespace vellumark::test
