#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>
#include <QTableWidget>

#include "cloud_desk.h"

namespace vellumark::test {
namespace {

using desktop::Q;
using desktop::U8;

struct AccountSettings : testing::Test {
  void FillIn(QWidget& form) {
    const CloudSettings& as = shop.settings;
    Fill(form, "Facility", as.Facility);
    Fill(form, "AcctNum", as.AcctNum);
    Fill(form, "CloudHost", as.CloudHost);
    Fill(form, "CloudHostUserName", as.CloudHostUserName);
    Fill(form, "CloudHostPassword", as.CloudHostPassword);
    Fill(form, "RemoteDirectory", as.RemoteDirectory);
    Control<QComboBox>(form, "Passive").setCurrentIndex(0);
    Control<QComboBox>(form, "TLS").setCurrentIndex(0);
    Control<QComboBox>(form, "ssl").setCurrentIndex(1);
    Fill(form, "CertFile", as.CertFile);
  }
  void Turn(QWidget& form, int page) { Control<QTabWidget>(form, "tabCloud").setCurrentIndex(page); }
  std::vector<std::string> TestNow(QWidget& form) {
    Turn(form, 2);
    Click(form, "cmdTest");
    std::vector<std::string> lines;
    auto& results = Control<QListWidget>(form, "lstTest");
    EXPECT_TRUE(WaitFor([&] { return results.count() == 4; }, 20000));
    for (int row = 0; row < results.count(); ++row) lines.push_back(U8(results.item(row)->text()));
    return lines;
  }

  FtpServer server;
  FaultProxy proxy{server};
  CloudShop shop{server};
};

TEST_F(AccountSettings, AreTypedTriedAndSaved) {
  shop.Run("CloudAccountSettings", {}, [&](QWidget& form) {
    FillIn(form);
    shop.prompt.Expect("Settings Data", Answer::Ok, "Enter a valid Port Number");
    Click(form, "cmdSave");
    EXPECT_EQ(FocusName(), "Port");
    Fill(form, "Port", std::to_string(server.Port()));
    Picture(form, "cloud-settings", {});

    EXPECT_EQ(TestNow(form),
              (std::vector<std::string>{"Cloud Host Connection: Successful TLS connection to host.",
                                        "SSL Verification: Verified, valid certificate data.",
                                        "User Credentials: Succesfully logged into Cloud host account.",
                                        "Remote Directory Connection: Successful connection to Remote Directory."}));
    EXPECT_EQ(U8(Control<QListWidget>(form, "lstCertificate").item(1)->text()), "SubjectCN: 127.0.0.1");
    Picture(form, "cloud-test", {});
    shop.prompt.Expect("Log File", Answer::Ok, "The Cloud log file has been exported\nto the desktop.");
    Click(form, "cmdExportLog");
    const std::string log = ReadFileBytes(shop.folder / "TestUserSettingsLog_VKCloud.txt");
    EXPECT_NE(log.find("Successful TLS connection"), std::string::npos);
    EXPECT_EQ(log.find("se cret#1"), std::string::npos);

    Turn(form, 0);
    Fill(form, "CloudHostPassword", "guess");
    EXPECT_EQ(TestNow(form)[2], "User Credentials: Unable to log into Cloud host account.");
    Turn(form, 0);
    Fill(form, "Port", "1");
    EXPECT_EQ(TestNow(form),
              (std::vector<std::string>{
                  "Cloud Host Connection: Failed - Connect Rejected (or failed for some other reason)",
                  "SSL Verification: Test not performed.", "User Credentials: Log in test not performed.",
                  "Remote Directory Connection: Test not performed."}));

    Turn(form, 0);
    Fill(form, "Port", std::to_string(server.Port()));
    Fill(form, "CloudHostPassword", "se cret#1");
    shop.prompt.Expect("Settings Data", Answer::Ok, "Settings have been saved");
    Click(form, "cmdSave");
    PressOn(Qt::Key_Escape);  // nothing is unsaved: nothing is asked
  });
  CloudSettings stored = ReadCloudSettings(shop.session);
  EXPECT_FALSE(stored.Installation.empty());
  stored.Installation.clear();
  EXPECT_EQ(stored, shop.settings);
}

TEST_F(AccountSettings, ComeFromAFileAndSoDoTheSharedAccounts) {
  const std::filesystem::path file = shop.folder / "VKCloudSettings.txt";
  std::ofstream(file) << "FC South Shop\nCH host.example\nRD /shops\nCU south\nCP pw\nPT 2121\nPS 1\nTLS 1\nSSL 0\n";
  const std::filesystem::path shares = shop.folder / "VKCloudShareUsers.txt";
  std::ofstream(shares) << "2001,East Shop\n2002,West Shop\n";
  shop.Run("CloudAccountSettings", {}, [&](QWidget& form) {
    shop.answer = shares;
    shop.prompt.Expect("Settings File", Answer::Ok, "Incorrect file was selected");
    Click(form, "cmdImport");
    EXPECT_EQ(shop.asked.title, "Import Cloud Settings From ...");
    Fill(form, "AcctNum", "1002");
    shop.answer = file;
    Click(form, "cmdImport");
    EXPECT_EQ(U8(Control<QLineEdit>(form, "CloudHost").text()), "host.example");
    EXPECT_EQ(U8(Control<QLineEdit>(form, "Port").text()), "2121");

    Turn(form, 1);
    shop.answer = shares;
    shop.prompt.Expect("Shared Accounts", Answer::Ok, "Share Accounts have been Saved");
    Click(form, "cmdImportShares");
    Click(form, "cmdAddShare");
    TypeOn("2003");
    PressOn(Qt::Key_Return);
    Picture(form, "cloud-shares", {});
    // Neither the settings nor the third account are saved.
    shop.prompt.Expect("Cancel Without Saving Changes?", Answer::No);
    PressOn(Qt::Key_Escape);
    ASSERT_TRUE(form.isVisible());
    shop.prompt.Expect("Shared Accounts", Answer::Ok, "Share Accounts have been Saved");
    Click(form, "cmdSaveShares");
    Turn(form, 3);
    Picture(form, "cloud-admin", {});
    shop.prompt.Expect("Cancel Without Saving Changes?", Answer::Yes);
    PressOn(Qt::Key_Escape);
  });
  EXPECT_EQ(ReadSharedAccounts(shop.session),
            (std::vector<SharedAccount>{{"2001", "East Shop"}, {"2002", "West Shop"}, {"2003", ""}}));
  EXPECT_FALSE(ReadCloudSettings(shop.session).Configured());
}

TEST_F(AccountSettings, TheServiceIsExplained) {
  shop.Run("CloudAbout", {}, [&](QWidget& form) {
    Picture(form, "cloud-about", {});
    PressOn(Qt::Key_Escape);
  });
}

}  // namespace
}  // namespace vellumark::test
