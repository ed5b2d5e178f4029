#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>

#include "cloud_desk.h"
#include "desktop/kit/grid.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;
using desktop::Q;
using desktop::U8;

struct CloudBackups : testing::Test {
  CloudBackups() { shop.Open({"RED"}); }
  std::vector<fs::path> AtHost() {
    std::vector<fs::path> found;
    const fs::path folder = server.Root() / "1001/Backups";
    if (!fs::exists(folder)) return found;
    for (const auto& entry : fs::directory_iterator(folder))
      if (entry.path().extension() == ".vkd") found.push_back(entry.path());
    return found;
  }

  FtpServer server;
  FaultProxy proxy{server};
  CloudShop shop{server};
};

TEST_F(CloudBackups, OneGoesUpIsListedRestoredAndDeleted) {
  shop.Run("CloudBackup", {}, [&](QWidget& form) {
    EXPECT_EQ(U8(Control<QLabel>(form, "lblDesignPhotos").text()), "No - Skip");
    Click(form, "chkDesignPhotos");
    EXPECT_EQ(U8(Control<QLabel>(form, "lblDesignPhotos").text()), "Yes - Upload");
    EXPECT_EQ(U8(Control<QLabel>(form, "lblPhotosWarning").text()), "Uploading Design Photos could take a long time.");
    Picture(form, "cloud-backup", {});
    Click(form, "cmdStart");
    ASSERT_TRUE(IsOver(form));
    EXPECT_EQ(Info(form), "Cloud Backup Complete\n1 Backups are now on file in the Cloud account");
    EXPECT_EQ(FocusName(), "cmdClose");
    EXPECT_TRUE(Logs(form, "1 Backups are now on file in the Cloud account"));
    EXPECT_TRUE(Logs(form, "Uploading Share Design Photos to Cloud"));
    EXPECT_FALSE(Control<QProgressBar>(form, "pbMeter").isVisible());
    shop.prompt.Expect("Log File", Answer::Ok, "A log file has been exported to the Desktop.");
    Click(form, "cmdExportLog");
    Picture(form, "cloud-backup-done", {});
    Click(form, "cmdClose");
  });
  EXPECT_TRUE(fs::exists(shop.folder / "1001_Backup_Log.txt"));
  EXPECT_EQ(AtHost().size(), 1U);
  shop.AddColor("BLUE");
  shop.clock.Set({2026, 3, 11, 9, 0, 0});
  shop.BackUp();
  shop.AddColor("GREEN");

  shop.prompt.Expect("Restore Data File", Answer::Yes).Expect("Restore Complete");
  shop.Run("CloudRestoreFileList", {}, [&](QWidget& form) {
    Picture(form, "cloud-restore", {});
    PressOn(Qt::Key_Down);
    WithTask([&] { Click(form, "cmdContinue"); },
              [&](QWidget& task) {
                Click(task, "cmdStart");
                EndsWith(task, "Cloud Backup Files Retrieved");
              });
  });
  EXPECT_EQ(shop.Colors(), 1);
  EXPECT_TRUE(ReadCloudSettings(shop.session).LastRestore);

  shop.Run("CloudManageBackupFileList", {}, [&](QWidget& form) {
    Picture(form, "cloud-manage-backups", {});
    EXPECT_EQ(U8(Control<QLabel>(form, "lblCount").text()), "2 backups on file, 0 checked");
    PressOn(Qt::Key_Space);  // the newest
    shop.prompt.Expect("Manage Cloud Backups", Answer::Yes);
    WithTask([&] { Click(form, "cmdDelete"); },
              [&](QWidget& task) { EndsWith(task, "1 Backups are now on file in the Cloud account"); });
    EXPECT_EQ(U8(Control<QLabel>(form, "lblCount").text()), "1 backup on file, 0 checked");
    Click(form, "cmdClose");
  });
  ASSERT_EQ(AtHost().size(), 1U);
  EXPECT_NE(AtHost().front().string().find("03_10_2026"), std::string::npos);
}

TEST_F(CloudBackups, AFailingHostIsToldAndACancelLeavesNothing) {
  proxy.slow = 20;
  shop.Run("CloudBackup", {}, [&](QWidget& form) {
    bool ran = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
      if (!Logs(form, "Uploading Backup File to Cloud") || proxy.moved < 100) return;
      watch.stop();
      ran = Control<QProgressBar>(form, "pbMeter").isVisible() && !IsOver(form);
      Picture(form, "cloud-backup-runs", {});
      Click(form, "cmdCancel");
    });
    watch.start(20);
    Click(form, "cmdStart");
    EXPECT_TRUE(ran);
    EndsWith(form, "Cancelled");
  });
  EXPECT_TRUE(AtHost().empty());
  proxy.slow = 0;

  shop.settings.Port = 1;
  WriteCloudSettings(shop.session, shop.settings);
  shop.Run("CloudBackup", {}, [&](QWidget& form) {
    Click(form, "cmdStart");
    ASSERT_TRUE(IsOver(form));
    EXPECT_TRUE(Logs(form, "Unable to connect to 127.0.0.1: Connect Rejected (or failed for some other reason)"));
    EXPECT_NE(Info(form).find("An error occured during Cloud procedures"), std::string::npos);
    EXPECT_NE(Info(form).find("Retry task or Test Cloud Acct Settings or check internet service"), std::string::npos);
    Picture(form, "cloud-backup-failed", {});
    PressOn(Qt::Key_Return);  // the button that has the focus closes
  });

  // Nothing to be listed where nobody answers: told, and no window is left.
  shop.prompt.Expect("Cloud");
  EXPECT_FALSE(shop.list.RunDialog("CloudManageBackupFileList"));
  shop.session.DataFileName = SharedDataFile(shop.session, "2001").string();
  shop.prompt.Expect("Share User Data File");
  shop.Run("CloudBackup", {}, [&](QWidget& form) { Click(form, "cmdStart"); });
  shop.session.DataFileName = shop.file.string();
  WriteCloudSettings(shop.session, {});
  shop.prompt.Expect("Cloud");
  EXPECT_FALSE(shop.list.RunDialog("CloudBackup"));
}

}  // namespace
}  // namespace vellumark::test
