#include "devices/ftp_connection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "core/base/seams.h"
#include "support/ftp_server.h"

namespace vellumark::test {
namespace {

using Kind = FtpFailure::Kind;

constexpr devices::FtpTimes kShort{.connect = 3000, .stall = 1200};

struct FtpRoom {
  explicit FtpRoom(const FtpServer::Options& options = {}) : server(options), proxy(server) {}

  FtpHost Host(const std::string& address = "127.0.0.1") const {
    FtpHost host;
    host.host = address;
    host.port = server.Port();
    host.user = "shop";
    host.password = "se cret#1";
    host.certFile = server.Certificate();
    return host;
  }
  void Connect(const FtpHost& host) { ftp->Connect(host, progress); }
  void Connect() { Connect(Host()); }

  FtpClient::Give Giving(const std::string& bytes) {
    return [bytes, at = std::size_t{0}](char* piece, std::size_t size) mutable {
      const std::size_t count = std::min(size, bytes.size() - at);
      bytes.copy(piece, count, at);
      at += count;
      return count;
    };
  }
  void Put(const std::string& path, const std::string& bytes) {
    ftp->Put(path, 0, static_cast<std::int64_t>(bytes.size()), Giving(bytes));
  }
  std::string Get(const std::string& path, std::int64_t from = 0, std::int64_t all = 0) {
    std::string bytes;
    ftp->Get(path, from, all, [&](std::string_view piece) { bytes += piece; });
    return bytes;
  }

  FtpServer server;
  FaultProxy proxy;
  SystemClock clock;
  NoProgress progress;
  std::unique_ptr<FtpClient> ftp = devices::FtpConnection(clock, kShort);
};

template <class Work>
std::optional<FtpFailure> FailureOf(Work work) {
  try {
    work();
  } catch (const FtpFailure& failure) {
    EXPECT_EQ(std::string(failure.what()).find("se cret"), std::string::npos);
    return failure;
  }
  throw std::logic_error("nothing failed");
}

std::string Content(std::size_t size) {
  std::string bytes(size, '\0');
  unsigned word = 1;
  for (char& c : bytes) c = static_cast<char>((word = word * 1664525U + 1013904223U) >> 24);
  return bytes;
}

struct Way {
  const char* name;
  FtpServer::Options options;
  bool tls = true;
  bool ssl = false;
  bool passive = true;
  bool clear = false;
  friend void PrintTo(const Way& way, std::ostream* out) { *out << way.name; }
};

class Ways : public testing::TestWithParam<Way> {};

// Everything that a task does, on each kind of connection, through one connection alone.
TEST_P(Ways, MoveFilesThereAndBack) {
  const Way& way = GetParam();
  FtpRoom room(way.options);
  FtpHost host = room.Host();
  host.tls = way.tls;
  host.ssl = way.ssl;
  host.passive = way.passive;
  host.clearControlChannel = way.clear;
  room.Connect(host);
  EXPECT_EQ(room.ftp->Certificate().has_value(), host.Secure());
  EXPECT_TRUE(room.ftp->ControlChannelCleared());

  const std::string name = "Größe \"A\" it's 50% #1.txt";
  const std::string bytes = Content(3'000'000);
  EXPECT_FALSE(room.ftp->FolderExists("/Shop 1"));
  room.ftp->MakeFolder("/Shop 1");
  EXPECT_TRUE(room.ftp->FolderExists("/Shop 1"));
  room.Put("/Shop 1/" + name, bytes);
  EXPECT_EQ(room.ftp->Size("/Shop 1/" + name), 3'000'000);
  EXPECT_EQ(room.ftp->Size("/Shop 1/none"), std::nullopt);
  EXPECT_EQ(room.Get("/Shop 1/" + name), bytes);
  EXPECT_EQ(room.Get("Shop 1/" + name, 2'999'990, 3'000'000), bytes.substr(2'999'990));
  room.ftp->Put("/Shop 1/" + name, 3'000'000, 3'000'003, room.Giving("end"));
  EXPECT_EQ(room.ftp->Size("/Shop 1/" + name), 3'000'003);
  room.Put("/Shop 1/empty", "");
  room.ftp->Rename("/Shop 1/empty", "/Shop 1/b.txt");
  const std::vector<RemoteFile> files = room.ftp->List("/Shop 1");
  ASSERT_EQ(files.size(), 2U);
  for (const RemoteFile& file : files) EXPECT_TRUE(file.name == name || file.name == "b.txt") << file.name;
  room.ftp->Delete("/Shop 1/b.txt");
  EXPECT_EQ(room.ftp->List("/Shop 1").size(), 1U);
  room.ftp->Disconnect();
  // Where the host speaks new TLS alone, the old one is tried before.
  EXPECT_EQ(room.proxy.connections, way.options.protocols == "TLSv1.3" ? 2 : 1);
}

INSTANTIATE_TEST_SUITE_P(
    Ftp, Ways,
    testing::Values(Way{"ExplicitPassive", {}}, Way{"ExplicitActive", {}, true, false, false},
                    Way{"Implicit", {.implicit = true}, false, true},
                    Way{"NewTlsAlone", {.protocols = "TLSv1.3", .more = "TLSOptions NoSessionReuseRequired"}}, Way{"Plain", {.certificate = ""}, false},
                    Way{"PlainActive", {.certificate = ""}, false, false, false},
                    Way{"Cleared", {.demandsTls = false}, true, false, true, true},
                    Way{"WithoutMachineListing", {.more = "<Limit MLSD MLST>\nDenyAll\n</Limit>"}}),
    [](const auto& way) { return way.param.name; });

struct Refused {
  const char* name;
  FtpServer::Options options;
  void (*change)(FtpHost&);
  Kind kind;
  ConnectReason reason;
  friend void PrintTo(const Refused& refused, std::ostream* out) { *out << refused.name; }
};

class NoConnection : public testing::TestWithParam<Refused> {};

TEST_P(NoConnection, TellsWhy) {
  const Refused& wanted = GetParam();
  FtpRoom room(wanted.options);
  FtpHost host = room.Host();
  wanted.change(host);
  const auto failure = FailureOf([&] { room.Connect(host); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, wanted.kind) << failure->what();
  EXPECT_EQ(failure->reason, wanted.reason) << failure->what();
  // What is wrong with a certificate is found before a name or a password is told.
  if (wanted.kind == Kind::Certificate) {
    EXPECT_EQ(room.server.Talk().find("USER"), std::string::npos);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Ftp, NoConnection,
    testing::Values(
        Refused{"EmptyHost", {}, [](FtpHost& h) { h.host.clear(); }, Kind::Connect, ConnectReason::EmptyHostname},
        Refused{"NoSuchName", {}, [](FtpHost& h) { h.host = "no-such-host.invalid"; }, Kind::Connect,
                ConnectReason::DnsFailed},
        Refused{"PortRefused", {}, [](FtpHost& h) { h.port += 2000; }, Kind::Connect, ConnectReason::Rejected},
        Refused{"WrongPassword", {}, [](FtpHost& h) { h.password = "wrong"; }, Kind::Connect, ConnectReason::Login},
        Refused{"PlainServer", {.certificate = ""}, [](FtpHost& h) { h.certFile.clear(); }, Kind::Connect,
                ConnectReason::Handshake},
        Refused{"TlsDemanded", {}, [](FtpHost& h) { h.tls = false; }, Kind::Connect, ConnectReason::Login},
        Refused{"CertificateFileGone", {}, [](FtpHost& h) { h.certFile = "/no/such/file.pem"; }, Kind::Connect,
                ConnectReason::Credentials},
        Refused{"SelfSigned", {}, [](FtpHost& h) { h.certFile.clear(); }, Kind::Certificate, ConnectReason::Handshake},
        Refused{"Expired", {.days = -1}, [](FtpHost&) {}, Kind::Certificate, ConnectReason::Handshake},
        Refused{"WrongName", {.certificate = "ftp.elsewhere.test"}, [](FtpHost&) {}, Kind::Certificate,
                ConnectReason::Handshake}),
    [](const auto& refused) { return refused.param.name; });

TEST(FtpConnection, TellsWhatIsWrongWithACertificate) {
  FtpRoom expired({.days = -1});
  FailureOf([&] { expired.Connect(); });
  const auto& shown = expired.ftp->Certificate();
  ASSERT_TRUE(shown);
  EXPECT_EQ(shown->SubjectCN, "127.0.0.1");
  EXPECT_TRUE(shown->Expired);
  EXPECT_TRUE(shown->SelfSigned);
  EXPECT_EQ(shown->fault, "certificate has expired");
  FtpHost trusting = expired.Host();
  trusting.verify = false;
  expired.Connect(trusting);
  EXPECT_TRUE(expired.ftp->FolderExists("/"));
}

// A host that takes the call and says nothing.
TEST(FtpConnection, DoesNotWaitForeverForAConnection) {
  FtpRoom room;
  room.proxy.stallAfter = 0;
  room.proxy.moved = 1;
  const auto failure = FailureOf([&] { room.Connect(); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->reason, ConnectReason::TimedOut);
}

struct Harm {
  const char* name;
  void (*harm)(FaultProxy&);
  Kind kind;
  friend void PrintTo(const Harm& harm, std::ostream* out) { *out << harm.name; }
};

class Broken : public testing::TestWithParam<Harm> {};

TEST_P(Broken, TransferEndsWithItsReason) {
  const std::string bytes = Content(2'000'000);
  for (const bool upload : {true, false}) {
    FtpRoom room;
    std::ofstream(room.server.Root() / "there") << bytes;
    room.server.Own();
    room.Connect();
    GetParam().harm(room.proxy);
    const auto failure = FailureOf([&] {
      upload ? room.Put("/up", bytes) : static_cast<void>(room.Get("/there", 0, 2'000'000));
    });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->kind, GetParam().kind) << failure->what();
  }
}

INSTANTIATE_TEST_SUITE_P(Ftp, Broken,
                         testing::Values(Harm{"Dropped", [](FaultProxy& p) { p.dropAfter = 500'000; }, Kind::Dropped},
                                         Harm{"Stalled", [](FaultProxy& p) { p.stallAfter = 500'000; }, Kind::Stalled},
                                         Harm{"NoData", [](FaultProxy& p) { p.refuseData = true; }, Kind::NoData}),
                         [](const auto& harm) { return harm.param.name; });

TEST(FtpConnection, SaysWhyTheHostWantsNoMore) {
  FtpRoom room({.more = "MaxStoreFileSize 300 Kb"});
  std::filesystem::create_directories(room.server.Root() / "closed");
  room.server.Own();
  std::filesystem::permissions(room.server.Root() / "closed", std::filesystem::perms(0555));
  room.Connect();
  const auto denied = FailureOf([&] { room.Put("/closed/a", "a"); });
  EXPECT_EQ(denied->kind, Kind::Denied) << denied->what();
  EXPECT_EQ(FailureOf([&] { room.Get("/none"); })->kind, Kind::Missing);
  EXPECT_EQ(FailureOf([&] { room.ftp->Delete("/none"); })->kind, Kind::Missing);
  // The line is as good as before.
  room.Put("/small", "small");
  EXPECT_EQ(room.Get("/small"), "small");
  const auto full = FailureOf([&] { room.Put("/large", Content(30'000'000)); });
  EXPECT_NE(full->cause.find("room"), std::string::npos) << full->what();
}

TEST(FtpConnection, ADeadLineIsNotMadeAnew) {
  FtpRoom room;
  room.Connect();
  room.proxy.Cut();
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  EXPECT_EQ(FailureOf([&] { room.ftp->FolderExists("/"); })->kind, Kind::Dropped);
  EXPECT_EQ(room.proxy.connections, 1);
  FtpRoom gone;
  gone.Connect();
  gone.server.Stop();
  gone.proxy.Cut();
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  EXPECT_EQ(FailureOf([&] { gone.ftp->Disconnect(); })->kind, Kind::Dropped);
}

class StopsAtThird final : public Progress {
 public:
  void Begin(std::string_view) override {}
  void Percent(double percent) override { last = percent; }
  bool Cancelled() override { return last > 20; }
  double last = 0;
};

TEST(FtpConnection, ALongTransferShowsItselfAndCanBeCancelled) {
  FtpRoom room;
  StopsAtThird progress;
  room.ftp->Connect(room.Host(), progress);
  room.proxy.slow = 20'000;
  const auto cancelled = FailureOf([&] { room.Put("/up", Content(4'000'000)); });
  EXPECT_EQ(cancelled->kind, Kind::Cancelled);
  EXPECT_GT(progress.last, 20);
  EXPECT_LT(progress.last, 90);
}

}  // namespace
}  // namespace vellumark::test
