// Two shops on one real server, from the command line: each with its own data folder and account.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>

#include "core/base/files.h"
#include "core/datafile/engine.h"
#include "support/cli_run.h"
#include "support/ftp_server.h"
#include "support/old_files.h"
#include "support/places.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPassword = "se cret#1";

struct Shop : test::CliRoom {
  Shop(const test::FtpServer& server, std::string number, const std::string& formula) : account(std::move(number)) {
    folder.Breaks("Parts");  // shares that were fetched lie in this folder, and lack what was cut
    MakeFile();
    Json({"color", "add", "WHITE"});
    Json({"color", "add", "BLUE"});
    Json({"formula", "add", formula, "WHITE=60", "BLUE=40"});
    Json({"stock", "adjust", "BLUE", "12"});
    ReplaceFile(folder / "secret", std::string(kPassword) + "\n");
    const test::CliAnswer set =
        RunWithInput({"cloud", "settings", "Facility=Shop " + account, "AcctNum=" + account, "CloudHost=127.0.0.2",
                      "CloudHostUserName=shop", "CloudHostPassword=-", "RemoteDirectory=/", "Passive=1", "TLS=1",
                      "ssl=0", "Port=" + std::to_string(server.Port()), "CertFile=" + server.Certificate().string()},
                     folder / "secret");
    EXPECT_EQ(set.status, 0) << set.err;
    EXPECT_EQ(set.out.find(kPassword), std::string::npos);
  }
  void Knows(const std::vector<std::string>& accounts) {
    std::string lines;
    for (const std::string& number : accounts) lines.append(number).append(",Shop ").append(number).append("\r\n");
    ReplaceFile(folder / "VKCloudShareUsers.txt", lines);
    EXPECT_EQ(Run({"cloud", "accounts-import", (folder / "VKCloudShareUsers.txt").string()}).status, 0);
  }
  fs::path Share(const std::string& number) const {
    return folder / "VKDat/Cloud Downloads/ShareData" / number / (number + ".vkd");
  }
  std::string account;
};

std::vector<std::string> NamesIn(const fs::path& folder, std::string_view part = {}) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.is_regular_file() && entry.path().filename().string().find(part) != std::string::npos)
      names.push_back(entry.path().filename().string());
  std::ranges::sort(names);
  return names;
}

// No text of a folder holds what must not leave it.
void ExpectNowhere(const fs::path& folder, std::string_view text) {
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    EXPECT_EQ(ReadFileBytes(entry.path()).find(text), std::string::npos) << entry.path();
  }
}

TEST(CloudCli, TwoShopsBackUpShareAndRestore) {
  test::FtpServer server;
  Shop north(server, "A100", "NORTH GREEN");
  Shop south(server, "B200", "SOUTH GREEN");
  north.Json({"settings", "set", "DecimalPlaces", "4"});
  north.Json({"color", "set", "BLUE", "PurchaseCost=3.3566"});
  north.Json({"job", "create", "JOB-77"});
  north.Json({"--yes", "batch", "save", "--formula", "NORTH GREEN", "--quantity", "5", "--job", "JOB-77=1"});
  const std::string before = ReadFileBytes(north.folder / "Ink.vkd");

  const auto made = north.Json({"cloud", "backup"});
  EXPECT_TRUE(made["Verified"].get<bool>()) << made;
  EXPECT_EQ(made["OnFile"], 1);
  EXPECT_EQ(made["Ending"], nlohmann::ordered_json({"Cloud Backup Complete", "1 Backups are now on file in the Cloud account"}));
  EXPECT_EQ(ReadFileBytes(north.folder / "Ink.vkd"), before);
  EXPECT_EQ(NamesIn(north.folder / "VKDat/Cloud Uploads").size(), 0U);

  // At the host: the backup with its proof, the Support Files that bear its name, the share, the log.
  const std::string name = made["Name"];
  const fs::path root = server.Root() / "A100";
  EXPECT_EQ(NamesIn(root / "Backups"), (std::vector<std::string>{name, name + ".proof"}));
  EXPECT_EQ(NamesIn(root / "Backups/SUVFiles", name.substr(0, name.size() - 4) + "_SUV_vk50").size(), 5U);
  EXPECT_EQ(NamesIn(root / "ShareDataFile"), (std::vector<std::string>{"A100.vkd", "A100.vkd.proof"}));
  EXPECT_EQ(NamesIn(root / "LogFiles"), std::vector<std::string>{"A100_Backup_Log.txt"});
  EXPECT_NE(ReadFileBytes(root / "LogFiles/A100_Backup_Log.txt").find("5 support files uploaded to: "),
            std::string::npos);
  ExpectNowhere(server.Root(), kPassword);
  ExpectNowhere(north.folder / "VKDat/Cloud Log Files", kPassword);
  // The share has the formula and nothing of the Job; the backup is whole.
  EXPECT_NE(ReadFileBytes(root / "ShareDataFile/A100.vkd").find("NORTH GREEN"), std::string::npos);
  EXPECT_EQ(ReadFileBytes(root / "ShareDataFile/A100.vkd").find("JOB-77"), std::string::npos);
  EXPECT_NE(ReadFileBytes(root / "Backups" / name).find("JOB-77"), std::string::npos);

  // South sees it, though it never had a backup itself; an account that is not there holds nobody up.
  south.Knows({"A100", "C300"});
  const test::CliAnswer fetched = south.Run({"--json", "cloud", "fetch"});
  EXPECT_EQ(fetched.status, 4) << "not all of them came";
  EXPECT_EQ(fetched.err.find("C300: "), 0U) << fetched.err;
  const auto shares = fetched.Json();
  ASSERT_EQ(shares.size(), 2U);
  EXPECT_TRUE(shares[0]["Fetched"].get<bool>());
  EXPECT_EQ(shares[0]["Unit"], "lb.");
  EXPECT_FALSE(shares[1]["Fetched"].get<bool>());
  EXPECT_NE(shares[1]["Why"].get<std::string>().find("is not there"), std::string::npos);
  EXPECT_EQ(ReadFileBytes(south.Share("A100")), ReadFileBytes(root / "ShareDataFile/A100.vkd"));
  const test::CliAnswer formulas = south.Run(
      {"--yes", "formula", "import", "--from-file", south.Share("A100").string(), "--from-db", "INK", "--take", "all"});
  EXPECT_EQ(formulas.status, 0) << formulas.err;
  EXPECT_EQ(south.Run({"formula", "show", "NORTH GREEN"}).status, 0);
  // The stock of north in the unit of south, unlotted and by lot; an account of which nothing lies here is named.
  EXPECT_EQ(south.Run({"settings", "set", "UMI", "2"}).status, 0);
  const test::CliAnswer stock = south.Run({"--json", "cloud", "inventory", "--color", "blue"});
  EXPECT_EQ(stock.status, 4);
  EXPECT_NE(stock.err.find("C300: nothing was fetched yet"), std::string::npos);
  double blue = 0;
  for (const auto& row : stock.Json()) {
    EXPECT_EQ(row["AcctNum"], "A100");
    EXPECT_EQ(row["Unit"], "lb.");
    blue += row["LotQty"].get<double>();
    EXPECT_NEAR(row["LotPrice"].get<double>(), 7.4, 0.0005) << "by the decimals of the other shop";
  }
  EXPECT_NEAR(blue, (12 - 2) * 0.45359237, 0.002);
  EXPECT_EQ(south.Run({"settings", "set", "UMI", "1"}).status, 0);
  const test::CliAnswer none = south.Run({"cloud", "inventory", "--color", "NO SUCH"});
  EXPECT_EQ(none.status, 1);
  EXPECT_NE(none.err.find("No inventory found."), std::string::npos);
  // What lies with the shares is nobody's to back up.
  fs::copy_file(south.folder / "Ink.vkd", south.Share("C300").parent_path().parent_path() / "C300.vkd");
  const test::CliAnswer shared =
      south.Run({"--file", (south.folder / "VKDat/Cloud Downloads/ShareData/C300.vkd").string(), "cloud", "backup"});
  EXPECT_EQ(shared.status, 1);
  EXPECT_NE(shared.err.find("Share User Data File: Currently connected to a Shared User File."), std::string::npos)
      << shared.err << NamesIn(south.folder / "VKDat/Cloud Downloads/ShareData").size();
  // Where there are users, one of them looks, and sees prices only with the right to.
  ReplaceFile(south.folder / "secret", "SECRET\n");
  EXPECT_EQ(south.RunWithInput({"users", "enable", "BOSS"}, south.folder / "secret").status, 0);
  const auto stockFor = [&](const std::string& user, std::vector<std::string> words) {
    words.insert(words.begin(), {"--json", "--user", user, "--password", "SECRET"});
    return south.Run(words);
  };
  EXPECT_EQ(stockFor("BOSS", {"users", "add", "ANNA", "--new-password-file", (south.folder / "secret").string()}).status, 0);
  EXPECT_EQ(stockFor("BOSS", {"users", "modify", "ANNA", "Edit_Costs=0"}).status, 0);
  EXPECT_EQ(south.Run({"cloud", "inventory", "--color", "BLUE"}).status, 1);
  EXPECT_FALSE(stockFor("ANNA", {"cloud", "inventory", "--color", "BLUE"}).Json()[0].contains("LotPrice"));
  EXPECT_TRUE(stockFor("BOSS", {"cloud", "inventory", "--color", "BLUE"}).Json()[0].contains("LotPrice"));

  // Back to the day of the backup.
  north.Json({"formula", "add", "LATER", "WHITE=50", "BLUE=50"});
  const auto back = north.Json({"--yes", "cloud", "restore", name});
  EXPECT_TRUE(back["Done"].get<bool>());
  EXPECT_EQ(north.Run({"formula", "show", "LATER"}).status, 1);
  EXPECT_EQ(north.Run({"formula", "show", "NORTH GREEN"}).status, 0);
  const auto settings = north.Json({"cloud", "settings"});
  EXPECT_FALSE(settings["LastBackup"].is_null());
  EXPECT_FALSE(settings["LastRestore"].is_null());
  EXPECT_EQ(settings["CloudHostPassword"], "(set)");
  EXPECT_EQ(north.Run({"--yes", "cloud", "restore-settings", name}).status, 0);

  // A file that was changed at the host does not come down.
  std::string changed = ReadFileBytes(root / "Backups" / name);
  changed[changed.size() / 2] = static_cast<char>(changed[changed.size() / 2] ^ 1);
  ReplaceFile(root / "Backups" / name, changed);
  server.Own();
  const test::CliAnswer bad = north.Run({"--yes", "cloud", "restore", name});
  EXPECT_EQ(bad.status, 4);
  EXPECT_NE(bad.err.find("what came down is not what went up"), std::string::npos) << bad.err;

  // A backup of years ago comes back up to date, and the answer tells what was done to it.
  test::OldRoom old = test::MakeOldRoom(12);
  old.users = false;
  const std::string years = "Ink_Backup_03_10_2019_17_00_00.vkd";
  test::WriteOldFile(root / "Backups" / years, test::OldTables(old, 28, 0));
  server.Own();
  const auto older = north.Json({"--answer", "Lotted Inventory=no", "--yes", "cloud", "restore", years});
  EXPECT_EQ(older["From"], years);
  EXPECT_EQ(older["Updated"]["FromVersion"], 28);
  EXPECT_EQ(older["Updated"]["Balanced"], true);
  EXPECT_EQ(older["Updated"]["Report"], (north.folder / "Ink Update Report.txt").string());
  ASSERT_EQ(older["Notes"].size(), 0U) << older["Notes"];
  EXPECT_TRUE(older["Since"].is_array());
  EXPECT_EQ(north.Json({"file", "info"})["FileVersion"], 40);
  fs::remove(root / "Backups" / years);

  // With the backup all goes that belongs to it.
  EXPECT_EQ(north.Run({"cloud", "delete", name}).status, 0);
  EXPECT_TRUE(NamesIn(root / "Backups").empty());
  EXPECT_TRUE(NamesIn(root / "Backups/SUVFiles").empty());
}

TEST(CloudCli, ThirtyBackupsAreTheMost) {
  test::FtpServer server;
  Shop shop(server, "A100", "GREEN");
  // Two of one second are two.
  const std::vector<std::string> backUp{"--now", "2026-03-10 17:00:00", "cloud", "backup"};
  EXPECT_EQ(shop.Run(backUp).status, 0);
  // Of a file with faults; that is told.
  const fs::path file = shop.Json({"file", "info"})["DataFileName"].get<std::string>();
  const auto change = [&](const char* sql) { Database::Open(file, OpenMode::Exclusive)->Execute(sql); };
  change("UPDATE INK_Basic SET VOC = 0.1 WHERE Color_Name = 'BLUE'");  // a Double, which no Single is
  const auto faulty = shop.Json(backUp);
  EXPECT_EQ(faulty["Verified"], false);
  EXPECT_EQ(faulty["Ending"][2], "The Data File has faults, and the backup has them too:");
  EXPECT_EQ(faulty["Ending"].back(), "Repair the Data File, and back up again.");
  change("UPDATE INK_Basic SET VOC = 0 WHERE Color_Name = 'BLUE'");
  const fs::path backups = server.Root() / "A100/Backups";
  for (int i = 2; i < 29; ++i) ReplaceFile(backups / ("X_Backup_" + std::to_string(i) + ".vkd"), "x");
  server.Own();
  const auto last = shop.Json(backUp);
  EXPECT_EQ(last["OnFile"], 30);
  EXPECT_EQ(last["Ending"][2], "Use Manage Cloud Backups to delete extras");
  const auto before = NamesIn(backups);
  const test::CliAnswer refused = shop.Run({"cloud", "backup"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.err.find("Backup was not uploaded to the Cloud\nMaximum Cloud Backups allowed is 30"),
            std::string::npos)
      << refused.err;
  EXPECT_EQ(NamesIn(backups), before);
  EXPECT_NE(ReadFileBytes(server.Root() / "A100/LogFiles/A100_Backup_Log.txt")
                .find("Use Manage Cloud Backups to delete files"),
            std::string::npos);
}

TEST(CloudCli, ReportsGoUpAndTheAdministratorReadsThem) {
  test::FtpServer server;
  Shop shop(server, "A100", "GREEN");
  Shop office(server, "ADMIN", "GREY");
  EXPECT_EQ(shop.Run({"cloud", "backup"}).status, 0);
  const std::string name = "Tinten \"Süd\" it's.txt";
  for (int twice = 0; twice < 2; ++twice) {
    const test::CliAnswer sent = shop.Run({"cloud", "report-upload", "InventoryThisDB", "--name", name});
    EXPECT_EQ(sent.status, 0) << sent.err;
  }
  EXPECT_EQ(NamesIn(server.Root() / "A100/Reports"), std::vector<std::string>{name});
  EXPECT_EQ(shop.Json({"cloud", "reports"}).size(), 1U);
  const test::CliAnswer slash = shop.Run({"cloud", "report-upload", "InventoryThisDB", "--name", "../x.txt"});
  EXPECT_EQ(slash.status, 1);

  // The administrator's work is refused to others.
  office.Knows({"A100"});
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"cloud", "admin", "reports"}, {"cloud", "admin", "data-file", "A100"}}) {
    const test::CliAnswer refused = office.Run(words);
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find("Admin Cloud Account required for this feature."), std::string::npos);
  }
  EXPECT_EQ(office.Run({"cloud", "settings", "AdminUsername=admin", std::string("AdminPassword=") + kPassword}).status,
            0);
  const auto reports = office.Json({"cloud", "admin", "reports"});
  EXPECT_EQ(reports["Accounts"][0]["Files"], 1);
  const fs::path down = office.folder / "VKDat/Cloud Downloads";
  EXPECT_EQ(ReadFileBytes(down / "CloudAdmin_Reports/A100" / name),
            ReadFileBytes(server.Root() / "A100/Reports" / name));
  const auto file = office.Json({"cloud", "admin", "data-file", "A100"});
  EXPECT_TRUE(fs::exists(file["DataFile"].get<std::string>())) << file;
  const test::CliAnswer sending =
      office.Run({"--json", "cloud", "admin", "send", file["DataFile"].get<std::string>(), "A100", "C300"});
  EXPECT_EQ(sending.status, 4) << "C300 has no folder there";
  const auto sent = sending.Json();
  EXPECT_TRUE(sent["Accounts"][0]["Done"].get<bool>());
  EXPECT_FALSE(sent["Accounts"][1]["Done"].get<bool>());
  EXPECT_EQ(NamesIn(server.Root() / "A100/Backups", "Admin_VKDataFile_").size(), 1U);
  EXPECT_EQ(shop.Json({"cloud", "list"}).size(), 2U);
  const test::CliAnswer own = office.Run({"cloud", "admin", "default-file", file["DataFile"].get<std::string>()});
  EXPECT_EQ(own.status, 1);
  EXPECT_NE(own.err.find("Selected file is from a folder dedicated to Vellumark."), std::string::npos);
  EXPECT_EQ(shop.Run({"cloud", "delete-report", name}).status, 0);
  EXPECT_TRUE(NamesIn(server.Root() / "A100/Reports").empty());
}

TEST(CloudCli, SettingsAreCheckedImportedAndTried) {
  test::FtpServer server;
  Shop shop(server, "A100", "GREEN");
  const std::vector<std::pair<std::string, std::string>> faults{
      {"Facility=", "Enter a valid Facility Name"},
      {"CloudHost=", "Enter a valid Cloud Host Name"},
      {"CloudHostUserName=", "Enter a valid User Name"},
      {"CloudHostPassword=", "Enter a valid Password"},
      {"RemoteDirectory=/a/../b", "Remote Directory"},
      {"Port=0", "Enter a valid Port Number"},
      {"CertFile=/none.pem", "Enter a valid Certificate File Name"},
      {"AcctNum=../A", "Enter a valid Account Number"},
      {"Passive=maybe", "Select a Passive value"}};
  for (const auto& [word, text] : faults) {
    const test::CliAnswer refused = shop.Run({"cloud", "settings", word});
    EXPECT_EQ(refused.status, 1) << word;
    EXPECT_NE(refused.err.find("Settings Data: " + text), std::string::npos) << refused.err;
  }
  const auto tried = shop.Json({"cloud", "test"});
  EXPECT_EQ(tried["Host"], "Cloud Host Connection: Successful TLS connection to host.");
  EXPECT_EQ(tried["Certificate"], "SSL Verification: Verified, valid certificate data.");
  EXPECT_EQ(tried["Login"], "User Credentials: Succesfully logged into Cloud host account.");
  EXPECT_EQ(tried["Folder"], "Remote Directory Connection: Successful connection to Remote Directory.");

  const fs::path file = shop.folder / "VKCloudSettings.txt";
  ReplaceFile(file, "FC=South\r\nCH=127.0.0.2\r\nRD=/none\r\nCU=shop\r\nCP=wrong one\r\nPT=" +
                        std::to_string(server.Port()) + "\r\nPS=1\r\nTLS=1\r\nSSL=0\r\nCF=\r\n");
  EXPECT_EQ(shop.Run({"cloud", "settings-import", file.string()}).status, 0);
  const test::CliAnswer self = shop.Run({"--json", "cloud", "test"});
  EXPECT_EQ(self.status, 4);
  EXPECT_EQ(self.Json()["Certificate"], "SSL Verification: Invalid certificate data.");
  EXPECT_EQ(self.Json()["Login"], "User Credentials: Log in test not performed.");
  EXPECT_EQ(shop.Run({"cloud", "settings", "CertFile=" + server.Certificate().string()}).status, 0);
  const test::CliAnswer login = shop.Run({"--json", "cloud", "test"});
  EXPECT_EQ(login.Json()["Login"], "User Credentials: Unable to log into Cloud host account.");
  EXPECT_EQ(login.Json()["Folder"], "Remote Directory Connection: Test not performed.");
  EXPECT_EQ(shop.Run({"cloud", "settings", std::string("CloudHostPassword=") + kPassword}).status, 0);
  EXPECT_EQ(shop.Run({"--json", "cloud", "test"}).Json()["Folder"],
            "Remote Directory Connection: Failed, unable to connect to Remote Directory");
  server.Stop();
  const test::CliAnswer gone = shop.Run({"--json", "cloud", "test"});
  EXPECT_EQ(gone.Json()["Host"], "Cloud Host Connection: Failed - Connect Rejected (or failed for some other reason)");
  EXPECT_EQ(gone.Json()["Certificate"], "SSL Verification: Test not performed.");
  ReplaceFile(file, "hello\r\n");
  EXPECT_NE(
      shop.Run({"cloud", "settings-import", file.string()}).err.find("Settings File: Incorrect file was selected"),
      std::string::npos);
  EXPECT_EQ(fs::status(shop.folder / "VKDat/vk5_cls.json").permissions() & fs::perms::others_all, fs::perms::none);
}

// While the program waits for one password, the list of processes shows none of the others.
TEST(CloudCli, ListsOfProcessesShowNoPassword) {
  test::CliRoom room;
  const std::string pipe = (room.folder / "answer").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const pid_t child = ::fork();
  if (child == 0)
    room.Become({"--password", "first one", "cloud", "settings", "CloudHostPassword=second one", "AdminPassword=-"},
                pipe, [] {});
  const int answer = ::open(pipe.c_str(), O_WRONLY);
  std::string shown;
  for (int wait = 0; wait < 200; ++wait) {
    std::ifstream words("/proc/" + std::to_string(child) + "/cmdline", std::ios::binary);
    shown.assign(std::istreambuf_iterator<char>(words), {});
    if (shown.find("cloud") != std::string::npos && shown.find(" one") == std::string::npos) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  }
  EXPECT_NE(shown.find("cloud"), std::string::npos);
  EXPECT_EQ(shown.find("first one"), std::string::npos);
  EXPECT_EQ(shown.find("second one"), std::string::npos);
  ::close(answer);
  int status = 0;
  ::waitpid(child, &status, 0);
}

}  // namespace
}  // namespace vellumark
