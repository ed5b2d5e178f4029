// The tasks of the cloud against a real server that fails in every way: what is told, what stands in the log, and that
// nothing half done is left.

#include <dlfcn.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "core/backup/backup_set.h"
#include "core/base/files.h"
#include "core/cloud/cloud_backup.h"
#include "core/cloud/cloud_sets.h"
#include "core/cloud/remote_listing.h"
#include "core/cloud/shared_accounts.h"
#include "core/cloud/transfer.h"
#include "core/datafile/schema.h"
#include "devices/ftp_connection.h"
#include "support/data_files.h"
#include "support/shop_settings.h"

// Names are resolved as ever, but for one at which nobody answers.
constexpr const char* kNobodyAnswers = "nobody-answers.invalid";
constexpr std::chrono::seconds kNeverAnswers{25};

extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** found) {
  static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
  if (name == nullptr || std::string_view(name) != kNobodyAnswers) return real(name, service, hints, found);
  std::this_thread::sleep_for(kNeverAnswers);
  return EAI_AGAIN;
}

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;

struct CloudRoom : DataFileRoom {
  explicit CloudRoom(const FtpServer::Options& options = {}) : server(options), proxy(server) {
    folder.Breaks("Parts");  // shares that were fetched lie in this folder, and lack what was cut
    MakeFile(folder / "Ink.vkd");
    session.DataFileName = (folder / "Ink.vkd").string();
    session.DataFileDB = Database::Open(session.DataFileName, OpenMode::Exclusive);
    session.DataFileOpen = true;
    settings = SettingsOf(server, "Shop", "A100");
    settings.CloudHost = proxy.Host();
    settings.Installation = "0001";
    Store();
  }
  void Store() { WriteCloudSettings(session, settings); }
  std::string Log() const {
    std::string all;
    for (const auto& entry : fs::directory_iterator(session.DataFolder / "Cloud Log Files"))
      all += ReadFileBytes(entry.path());
    EXPECT_EQ(all.find("se cret"), std::string::npos);
    return all;
  }
  // Names under which somebody could take a file for a whole one.
  std::vector<std::string> AtHost(const std::string& part) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(server.Root()))
      if (entry.is_regular_file() && entry.path().string().find(part) != std::string::npos &&
          entry.path().extension() != ".part")
        names.push_back(entry.path().filename().string());
    return names;
  }
  void ExpectNothingStaged() const {
    for (const auto& entry : fs::recursive_directory_iterator(session.DataFolder / "Cloud Uploads"))
      EXPECT_TRUE(entry.is_directory()) << entry.path();
  }

  FtpServer server;
  FaultProxy proxy;
  CloudSettings settings;
  std::unique_ptr<FtpClient> ftp = devices::FtpConnection(clock, {.connect = 2500, .stall = 2500});
  CloudDesk desk{session, *ftp, progress, {}};
};

struct Fault {
  const char* name;
  FtpServer::Options options;
  void (*harm)(CloudRoom&);
  const char* logged;
  friend void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }
};

class NoBackup : public testing::TestWithParam<Fault> {};

TEST_P(NoBackup, IsToldAndLeavesNothing) {
  CloudRoom room(GetParam().options);
  GetParam().harm(room);
  room.Store();
  const std::string before = ReadFileBytes(room.session.DataFileName);
  const auto begin = std::chrono::steady_clock::now();
  const auto made = BackUpToCloud(room.desk, false);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, kNeverAnswers);
  ASSERT_TRUE(made);
  EXPECT_FALSE(made->outcome.done);
  EXPECT_NE(room.Log().find(GetParam().logged), std::string::npos) << room.Log();
  ASSERT_EQ(made->outcome.ending.size(), 4U);
  EXPECT_EQ(made->outcome.ending[1], "An error occured during Cloud procedures");
  EXPECT_EQ(made->outcome.ending[2], "Retry task or Test Cloud Acct Settings or check internet service");
  EXPECT_TRUE(room.AtHost("/Backups/").empty());
  EXPECT_TRUE(room.AtHost("/ShareDataFile/").empty());
  room.ExpectNothingStaged();
  EXPECT_EQ(ReadFileBytes(room.session.DataFileName), before);
  EXPECT_FALSE(ReadCloudSettings(room.session).LastBackup);
}

void Close(const CloudRoom& room, const char* folder) {
  fs::create_directories(room.server.Root() / folder);
  room.server.Own();
  fs::permissions(room.server.Root() / folder, fs::perms(0555));
}

INSTANTIATE_TEST_SUITE_P(
    Cloud, NoBackup,
    testing::Values(
        Fault{"NameNotFound", {}, [](CloudRoom& r) { r.settings.CloudHost = "no-such-host.invalid"; },
              "Unable to connect to no-such-host.invalid: DNS lookup failed"},
        Fault{"NameTimesOut", {}, [](CloudRoom& r) { r.settings.CloudHost = kNobodyAnswers; },
              "Unable to connect to nobody-answers.invalid: DNS timeout"},
        Fault{"PortRefused", {}, [](CloudRoom& r) { r.settings.Port = *r.settings.Port + 2000; },
              "Unable to connect to 127.0.0.1: Connect Rejected (or failed for some other reason)"},
        Fault{"TimedOut", {}, [](CloudRoom& r) { r.proxy.stallAfter = 0, r.proxy.moved = 1; },
              "Unable to connect to 127.0.0.1: Connect timed out"},
        Fault{"WrongPassword", {}, [](CloudRoom& r) { r.settings.CloudHostPassword = "wrong"; },
              "Unable to connect to 127.0.0.1: login failure"},
        Fault{"Expired", {.days = -1}, [](CloudRoom&) {},
              "SSL Certification Test Failed - Cert.SubjectCN: 127.0.0.1 - Cert.Expired: True - Cert.Revoked: False - "
              "Cert.SelfSigned: True"},
        Fault{"WrongName", {.certificate = "ftp.elsewhere.test"}, [](CloudRoom&) {},
              "SSL Certification Test Failed - Cert.SubjectCN: ftp.elsewhere.test - Cert.Expired: False"},
        Fault{"SelfSigned", {}, [](CloudRoom& r) { r.settings.CertFile.clear(); },
              "SSL Certification Test Failed - Cert.SubjectCN: 127.0.0.1 - Cert.Expired: False"},
        Fault{"PlainServer", {.certificate = ""}, [](CloudRoom& r) { r.settings.CertFile.clear(); },
              "Unable to connect to 127.0.0.1: Handshake failed"},
        Fault{"DirectoryMissing", {}, [](CloudRoom& r) { r.settings.RemoteDirectory = "/none"; },
              "Unable to connect to remote directory: /none is not there"},
        Fault{"NoPermission", {}, [](CloudRoom& r) { Close(r, "A100/Backups"); }, "Unable to connect to remote directory"},
        Fault{"NoPermissionForSettings", {},
              [](CloudRoom& r) {
                fs::create_directories(r.server.Root() / "A100/Backups/DesignPhotos");
                Close(r, "A100/Backups/SUVFiles");
              },
              "Unable to upload INK-0001_Backup_03_10_2026_09_00_00_SUV_vk50suvdf.dat: the host says 550"},
        Fault{"Full", {.more = "MaxStoreFileSize 100 Kb"}, [](CloudRoom&) {},
              "Unable to upload INK-0001_Backup_03_10_2026_09_00_00.vkd"},
        // Where the way for the data breaks first, what the host says of it goes with it.
        Fault{"Quota", {.quota = 100'000}, [](CloudRoom&) {},
              "Unable to upload INK-0001_Backup_03_10_2026_09_00_00.vkd: the "},
        Fault{"HostsDiskFull", {.disk = 100'000}, [](CloudRoom&) {},
              "Unable to upload INK-0001_Backup_03_10_2026_09_00_00.vkd"},
        Fault{"Dropped", {}, [](CloudRoom& r) { r.proxy.dropAfter = 100'000; },
              "Unable to upload INK-0001_Backup_03_10_2026_09_00_00.vkd: the connection ended in the middle"},
        Fault{"Stalled", {}, [](CloudRoom& r) { r.proxy.stallAfter = 100'000; },
              "Unable to upload INK-0001_Backup_03_10_2026_09_00_00.vkd: nothing came for too long"},
        Fault{"NoData", {}, [](CloudRoom& r) { r.proxy.refuseData = true; }, "no way for the data could be opened"}),
    [](const auto& fault) { return fault.param.name; });

// The host is well and says no: the log goes up, and a notice for the administrator.
TEST(CloudTasks, AFailureIsToldToTheAdministrator) {
  CloudRoom room;
  fs::create_directories(room.server.Root() / "A100/Backups/DesignPhotos");
  Close(room, "A100/Backups/SUVFiles");
  ASSERT_FALSE(BackUpToCloud(room.desk, false)->outcome.done);
  EXPECT_EQ(room.AtHost("/LogFiles/"), std::vector<std::string>{"A100_Backup_Log.txt"});
  ASSERT_EQ(room.AtHost("_Notices/").size(), 1U);
  const std::string notice = ReadFileBytes(room.server.Root() / "VK_CloudErrors_AllUsers_Notices" / room.AtHost("_Notices/")[0]);
  EXPECT_NE(notice.find("VK Cloud user encountered and error while using the following Cloud feature."), std::string::npos);
}

TEST(CloudTasks, WhatWasCutGoesOnWhereItStopped) {
  CloudRoom room;
  room.folder.Breaks("Rows");  // of a table that only this test knows
  {
    Transaction transaction(*room.session.DataFileDB);
    room.session.DataFileDB->Execute("CREATE TABLE MSysFill (A TEXT)");
    Statement fill = room.session.DataFileDB->Prepare("INSERT INTO MSysFill VALUES (?)");
    for (int i = 0; i < 1500; ++i) fill.Bind(1, std::string(1000, static_cast<char>('a' + i % 26))).Run();
    transaction.Commit();
  }
  room.proxy.slow = 30'000;  // so that both ends have what was on the way
  room.proxy.dropAfter = 1'000'000;
  ASSERT_FALSE(BackUpToCloud(room.desk, false)->outcome.done);
  room.proxy.dropAfter = -1;
  const std::int64_t cut = room.proxy.moved;
  const auto made = BackUpToCloud(room.desk, false);
  ASSERT_TRUE(made->outcome.done) << made->outcome.Text();
  const auto size = static_cast<std::int64_t>(fs::file_size(room.server.Root() / "A100/Backups" / made->name));
  const auto share = static_cast<std::int64_t>(fs::file_size(room.server.Root() / "A100/ShareDataFile/A100.vkd"));
  EXPECT_LT(room.proxy.moved - cut - share, size - 400'000);

  const std::int64_t before = room.proxy.moved;
  room.proxy.dropAfter = before + 1'000'000;
  const auto broken = FetchCloudBackup(room.desk, made->name, false);
  EXPECT_FALSE(broken->outcome.done);
  EXPECT_NE(room.Log().find("Unable to download " + made->name), std::string::npos);
  EXPECT_FALSE(fs::exists(room.session.DataFolder / "Cloud Downloads/Backups" / made->name));
  room.proxy.dropAfter = -1;
  const std::int64_t again = room.proxy.moved;
  const auto fetched = FetchCloudBackup(room.desk, made->name, false);
  ASSERT_TRUE(fetched->outcome.done) << fetched->outcome.Text();
  EXPECT_LT(room.proxy.moved - again, size - 400'000);
  EXPECT_EQ(ReadFileBytes(fetched->dataFile), ReadFileBytes(room.server.Root() / "A100/Backups" / made->name));
  const auto set = ReadSet(fetched->dataFile.parent_path());
  ASSERT_TRUE(set->proof);
  EXPECT_TRUE(VerifySet(room.session, *set).faults.empty());
}

// Files of this process may have no more than so many bytes.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) {
    ::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit small{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
  }
  ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &before_); }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
};

TEST(CloudTasks, ADiskThatIsFullHereLeavesWhatWasThere) {
  CloudRoom room;
  const auto made = BackUpToCloud(room.desk, false);
  ASSERT_TRUE(made->outcome.done);
  {
    const FullDisk full(50'000);
    const auto failed = BackUpToCloud(room.desk, false);
    EXPECT_FALSE(failed->outcome.done);
    EXPECT_EQ(failed->outcome.ending[1], "An error occured during Cloud procedures");
    room.ExpectNothingStaged();
    EXPECT_EQ(room.AtHost("/Backups/I").size(), 2U);  // the first one and its proof
    const auto fetched = FetchCloudBackup(room.desk, made->name, false);
    EXPECT_FALSE(fetched->outcome.done);
    EXPECT_NE(room.Log().find("Unable to download " + made->name), std::string::npos) << room.Log();
    EXPECT_FALSE(fs::exists(room.session.DataFolder / "Cloud Downloads/Backups" / made->name));
  }
  {
    // Not even the log has room: what became of the task is told all the same.
    const FullDisk full(100);
    const auto failed = BackUpToCloud(room.desk, false);
    EXPECT_EQ(failed->outcome.ending.size(), 4U);
    EXPECT_TRUE(failed->outcome.log.empty());
    const auto& lines = failed->outcome.lines;
    EXPECT_TRUE(std::ranges::any_of(lines, [](const std::string& line) {
      return line.ends_with("Local Cloud Log file: A100_Backup_Log.txt not found.");
    }));
  }
  room.prompt.Expect("Shared Accounts");
  ASSERT_TRUE(SaveSharedAccounts(room.session, {{"A100", "Shop"}}));
  ASSERT_TRUE(FetchShares(room.desk, CloudTask::CloudInvReport)->outcome.done);
  const std::string before = ReadFileBytes(SharedDataFile(room.session, "A100"));
  room.session.DataFileDB->Execute("UPDATE FileInfo SET BatchNumber = 7");
  ASSERT_TRUE(ShareToCloud(room.desk, false)->done);
  const FullDisk full(50'000);
  const auto shares = FetchShares(room.desk, CloudTask::CloudInvReport);
  ASSERT_TRUE(shares);
  EXPECT_FALSE(shares->outcome.done);
  EXPECT_NE(shares->rows[0].why.find("File too large"), std::string::npos) << shares->rows[0].why;
  EXPECT_EQ(ReadFileBytes(SharedDataFile(room.session, "A100")), before);
}

// Something happens when a task comes to this step.
class ActsAt final : public Progress {
 public:
  ActsAt(std::string_view step, std::function<void()> act) : step_(step), act_(std::move(act)) {}
  void Begin(std::string_view text) override {
    if (text == step_) act_();
  }
  void Percent(double) override {}

 private:
  std::string step_;
  std::function<void()> act_;
};

TEST(CloudTasks, AFileThatGoesHereInTheMiddleLeavesNothingAtTheHost) {
  CloudRoom room;
  ActsAt progress("Uploading support files to Cloud",
                  [&] { fs::remove_all(room.session.DataFolder / "Cloud Uploads/SUVFiles_Backup"); });
  CloudDesk desk{room.session, *room.ftp, progress, {}};
  EXPECT_FALSE(BackUpToCloud(desk, false)->outcome.done);
  for (const auto& entry : fs::recursive_directory_iterator(room.server.Root() / "A100/Backups"))
    EXPECT_TRUE(entry.is_directory()) << entry.path();
}

// Rows of what is nobody else's, and such as were deleted: their bytes may still be in the file.
TEST(CloudTasks, AShareHoldsNothingThatIsNobodyElses) {
  CloudRoom room;
  Database& file = *room.session.DataFileDB;
  const std::vector<std::pair<std::string, std::string>> own{
      {"Users", "Password"},     {"JobRecords", "JobNumber"},        {"Dispenser", "Pathway"},
      {"INK_Batch", "Color_Name"}, {"INK_Batch_LotInv", "IngName"}, {"INK_BatchScaleResults", "ColorName"}};
  file.CreateTable(schema::Users.name, schema::Users);
  for (const auto& [table, column] : own) {
    for (const char* words : {"hidden words 7", "deleted words 8"})
      file.Execute(fmt::format("INSERT INTO {} ({}) VALUES ('{}')", table, column, words));
    file.Execute(fmt::format("DELETE FROM {} WHERE {} = 'deleted words 8'", table, column));
  }
  const std::string before = ReadFileBytes(room.session.DataFileName);
  const auto made = BackUpToCloud(room.desk, false);
  ASSERT_TRUE(made->outcome.done) << made->outcome.Text();
  EXPECT_EQ(ReadFileBytes(room.session.DataFileName), before);
  const fs::path share = room.server.Root() / "A100/ShareDataFile/A100.vkd";
  for (const char* words : {"hidden words 7", "deleted words 8"})
    EXPECT_EQ(ReadFileBytes(share).find(words), std::string::npos) << words;
  const std::vector<std::string> shared = Database::Open(share, OpenMode::ReadOnly)->TableNames();
  const auto whole = Database::Open(room.server.Root() / "A100/Backups" / made->name, OpenMode::ReadOnly);
  for (const auto& [table, column] : own) {
    EXPECT_EQ(std::ranges::find(shared, table), shared.end()) << table;
    EXPECT_EQ(whole->Scalar(fmt::format("SELECT COUNT(*) FROM {} WHERE {} = 'hidden words 7'", table, column)).Whole(), 1)
        << table;
    file.Execute("DELETE FROM " + table);
  }
  file.DropTable(schema::Users.name);
  EXPECT_TRUE(std::ranges::none_of(shared, [](const std::string& table) { return table.starts_with("MSys"); }));
}

TEST(CloudTasks, AHostThatGoesBeforeTheEndTakesNothingAway) {
  CloudRoom room;
  ActsAt progress("Uploading Log File to Cloud", [&] {
    room.proxy.Cut();
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
  });
  CloudDesk desk{room.session, *room.ftp, progress, {}};
  const auto made = BackUpToCloud(desk, false);
  EXPECT_TRUE(made->outcome.done);
  EXPECT_NE(room.Log().find("Unable to disconnect from ftp server"), std::string::npos)
      << room.Log();
  EXPECT_EQ(room.AtHost("/Backups/I").size(), 2U);
}

// Twenty shops through one connection; what is missing of one holds nobody up.
TEST(CloudTasks, AllShopsComeThroughOneConnection) {
  CloudRoom room;
  ASSERT_TRUE(BackUpToCloud(room.desk, false)->outcome.done);
  std::vector<SharedAccount> accounts;
  for (int i = 0; i < 20; ++i) {
    const std::string number = "S" + std::to_string(i);
    accounts.push_back({number, "Shop " + number});
    if (i == 7) continue;
    fs::create_directories(room.server.Root() / number / "ShareDataFile");
    fs::copy_file(room.server.Root() / "A100/ShareDataFile/A100.vkd",
                  room.server.Root() / number / "ShareDataFile" / (number + ".vkd"));
  }
  room.server.Own();
  room.prompt.Expect("Shared Accounts");
  ASSERT_TRUE(SaveSharedAccounts(room.session, accounts));
  const int connections = room.proxy.connections;
  const auto shares = FetchShares(room.desk, CloudTask::DBImport_Formulas);
  EXPECT_EQ(room.proxy.connections, connections + 1);
  ASSERT_TRUE(shares->outcome.done);
  EXPECT_EQ(std::ranges::count(shares->rows, true, &ShareRow::fetched), 19);
  EXPECT_EQ(shares->rows[7].why, "/S7/ShareDataFile is not there");
  EXPECT_NE(room.Log().find("Unable to download S7: "), std::string::npos);
  EXPECT_EQ(SharesHere(room.session)[7].why, shares->rows[7].why);
}

TEST(CloudTasks, PhotosGoUpAndComeDownWithTheirBackup) {
  CloudRoom room;
  fs::create_directories(room.folder / "DesignPhotos");
  ReplaceFile(room.folder / "DesignPhotos/Böx 1.JPG", "picture one");
  ReplaceFile(room.folder / "DesignPhotos/b.jpg", "picture two");
  const auto made = BackUpToCloud(room.desk, true);
  ASSERT_TRUE(made->outcome.done) << made->outcome.Text();
  EXPECT_EQ(room.AtHost("/Backups/DesignPhotos/").size(), 2U);
  EXPECT_EQ(room.AtHost("/ShareDataFile/DesignPhotos/").size(), 2U);
  room.ExpectNothingStaged();
  const auto fetched = FetchCloudBackup(room.desk, made->name, true);
  EXPECT_EQ(fetched->photos, 2);
  EXPECT_EQ(ReadFileBytes(fetched->dataFile.parent_path() / "DesignPhotos/Böx 1.JPG"), "picture one");
  EXPECT_TRUE(VerifySet(room.session, *ReadSet(fetched->dataFile.parent_path())).faults.empty());
  // Without them there is no folder that could stand for none.
  ASSERT_TRUE(FetchCloudBackup(room.desk, made->name, false)->outcome.done);
  EXPECT_FALSE(fs::exists(fetched->dataFile.parent_path() / "DesignPhotos"));

  room.prompt.Expect("Shared Accounts");
  ASSERT_TRUE(SaveSharedAccounts(room.session, {{"A100", "Shop"}}));
  EXPECT_EQ(FetchShares(room.desk, CloudTask::DB_ImportExport_Designs, true)->rows[0].photos, 2);
  EXPECT_EQ(ReadFileBytes(SharedPhotos(room.session, "A100") / "b.jpg"), "picture two");
  ASSERT_TRUE(DeleteCloudBackups(room.desk, {made->name})->done);
  EXPECT_TRUE(room.AtHost("/Backups/").empty());
}

// The list of days opens without a line: what the host told last is known here, and no proof comes twice.
TEST(CloudTasks, TheDaysOfTheCloudAreKnownHere) {
  CloudRoom room;
  const std::string first = BackUpToCloud(room.desk, false)->name;
  room.clock.Set({2026, 3, 11, 9, 0, 0});
  const std::string second = BackUpToCloud(room.desk, false)->name;
  CloudSets days(room.session);
  EXPECT_EQ(days.Sets().size(), 2U);
  EXPECT_FALSE(days.Asked());
  const fs::path kept = room.session.DataFolder / "Cloud Downloads/backups.json";
  ReplaceFile(kept, "{\"account\": 7");
  EXPECT_TRUE(days.Sets().empty());

  const auto proofs = [&] {
    const std::string talk = room.server.Talk();
    int count = 0;
    for (std::size_t at = 0; (at = talk.find("RETR ", at)) != std::string::npos; ++at) ++count;
    return count;
  };
  ReplaceFile(room.server.Root() / "A100/Backups/OLD_Backup_1.vkd", "of an older program");
  room.server.Own();
  const int before = proofs();
  ASSERT_TRUE(AskForCloudSets(room.desk)->done);
  EXPECT_EQ(proofs(), before + 2);
  ASSERT_TRUE(AskForCloudSets(room.desk)->done);
  EXPECT_EQ(proofs(), before + 2);
  EXPECT_EQ(days.Asked(), (DateTime{2026, 3, 11, 9, 0, 0}));
  const std::array<SetSource*, 1> others{&days};
  const BackupDays known = DaysToGoBackTo(room.session, others);
  ASSERT_EQ(known.days.size(), 3U);
  EXPECT_EQ(known.days[0].set.folder, "OLD_Backup_1.vkd") << "by the date at the host, which is today";
  EXPECT_FALSE(known.days[0].set.proof);
  EXPECT_EQ(known.days[1].set.folder, second);
  EXPECT_EQ(known.days[2].set.made, (DateTime{2026, 3, 10, 9, 0, 0}));
  EXPECT_EQ(known.days[2].place, "Cloud account A100");
  EXPECT_TRUE(known.days[2].elsewhere);

  ASSERT_TRUE(DeleteCloudBackups(room.desk, {first})->done);
  EXPECT_EQ(days.Sets().size(), 2U);
  room.settings.AcctNum = "B200";
  room.Store();
  EXPECT_TRUE(days.Sets().empty());
}

TEST(RemoteListing, ReadsWhatHostsWrite) {
  const DateTime now{2026, 3, 10, 9, 0, 0};
  const auto unix = ReadListing(
      "total 8\r\n-rw-r--r--   1 shop     users      229376 Mar  9 23:15 Ink Böx \"1\".vkd\r\n"
      "-rw-r--r-- 1 shop users 5 Dec 24 08:00 last year\r\ndrwxr-xr-x   2 shop users 4096 Jan 01  2024 Photos\r\n"
      "-rw-r--r--   1 shop           17 Feb 28  2025   two blanks\r\n",
      now);
  ASSERT_EQ(unix.size(), 4U);
  EXPECT_EQ(unix[0].name, "Ink Böx \"1\".vkd");
  EXPECT_EQ(unix[0].size, 229376);
  EXPECT_EQ(unix[0].date, (DateTime{2026, 3, 9, 23, 15, 0}));
  EXPECT_EQ(unix[1].date, (DateTime{2025, 12, 24, 8, 0, 0}));
  EXPECT_TRUE(unix[2].folder);
  EXPECT_EQ(unix[3].name, "  two blanks");
  const auto windows = ReadListing("03-10-26  09:05PM       <DIR>          Old Photos\r\n12-31-25  12:00AM  1234 a b.txt\r\n", now);
  ASSERT_EQ(windows.size(), 2U);
  EXPECT_TRUE(windows[0].folder);
  EXPECT_EQ(windows[0].date, (DateTime{2026, 3, 10, 21, 5, 0}));
  EXPECT_EQ(windows[1].name, "a b.txt");
  EXPECT_EQ(windows[1].date, (DateTime{2025, 12, 31, 0, 0, 0}));
  const auto machine = ReadMachineListing(
      "type=cdir;modify=20260310090000; .\r\ntype=file;size=12;modify=20260310090501.123; a; b=c.vkd\r\n"
      "Size=3;Type=FILE; no date\r\ntype=dir;modify=20260310090000; sub\r\n");
  ASSERT_EQ(machine.size(), 3U);
  EXPECT_EQ(machine[0].name, "a; b=c.vkd");
  EXPECT_EQ(machine[0].date, (DateTime{2026, 3, 10, 9, 5, 1}));
  EXPECT_FALSE(machine[1].date);
  EXPECT_TRUE(machine[2].folder);
}

}  // namespace
}  // namespace vellumark::test
