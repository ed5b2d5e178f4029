#include "postgres/server.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

#include "core/base/files.h"

namespace vellumark::test {
namespace {

namespace fs = std::filesystem;

// Of the newest that is installed.
fs::path Programs() {
  fs::path newest;
  int version = 0;
  for (const auto& entry : fs::directory_iterator("/usr/lib/postgresql"))
    if (const int number = std::atoi(entry.path().filename().c_str());
        number > version && fs::exists(entry.path() / "bin/postgres")) {
      version = number;
      newest = entry.path() / "bin";
    }
  if (newest.empty()) throw std::runtime_error("no server is installed under /usr/lib/postgresql");
  return newest;
}

// The server refuses to run as root.
const passwd* PlainUser() {
  if (::geteuid() != 0) return nullptr;
  const passwd* user = ::getpwnam("postgres");
  return user != nullptr ? user : ::getpwnam("nobody");
}

pid_t Begin(const std::vector<std::string>& words, const fs::path& log) {
  const passwd* user = PlainUser();
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const pid_t child = ::fork();
  if (child != 0) return child;
  const int out = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  ::dup2(out, 1);
  ::dup2(out, 2);
  if (user != nullptr && (::setgid(user->pw_gid) != 0 || ::setuid(user->pw_uid) != 0)) ::_exit(126);
  ::prctl(PR_SET_PDEATHSIG, SIGQUIT);
  ::execv(arguments[0], arguments.data());
  ::_exit(127);
}

}  // namespace

OwnServer::OwnServer() {
  if (const passwd* user = PlainUser();
      user != nullptr && ::chown(folder_.Path().c_str(), user->pw_uid, user->pw_gid) != 0)
    throw std::runtime_error("cannot give " + folder_.Path().string());
  const pid_t maker = Begin({Programs() / "initdb", "-D", folder_ / "data", "-U", "vellumark", "-A", "trust", "-E",
                             "UTF8", "--locale=C", "--no-sync"},
                            folder_ / "log");
  int status = 0;
  ::waitpid(maker, &status, 0);
  if (status != 0) throw std::runtime_error("no server could be made: " + ReadFileBytes(folder_ / "log"));
  Start();
}

// Its rows are thrown away, so nothing has to last.
void OwnServer::Start() {
  const std::string folder = folder_.Path().string();
  child_ = Begin({Programs() / "postgres",
                  "-D",
                  folder_ / "data",
                  "-k",
                  folder,
                  "-c",
                  "listen_addresses=",
                  "-c",
                  "fsync=off",
                  "-c",
                  "full_page_writes=off",
                  "-c",
                  "autovacuum=off",
                  "-c",
                  "wal_level=minimal",
                  "-c",
                  "max_wal_senders=0",
                  "-c",
                  "shared_buffers=256MB",
                  "-c",
                  "max_wal_size=2GB"},
                 folder_ / "log");
  const std::string place = "host=" + folder + " user=vellumark dbname=postgres";
  for (int tries = 0; PQping(place.c_str()) != PQPING_OK; ++tries) {
    if (tries > 1200 || ::waitpid(child_, nullptr, WNOHANG) != 0)
      throw std::runtime_error("the server does not start: " + ReadFileBytes(folder_ / "log"));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

OwnServer::~OwnServer() {
  ::kill(child_, SIGINT);
  ::waitpid(child_, nullptr, 0);
}

PostgresServer OwnServer::Place() const {
  return {folder_.Path().string(), "vellumark", "postgres"};
}

namespace {

// The tests of a room know nothing of it.
class OnPostgres : public testing::Environment {
 public:
  void SetUp() override {
    server_ = std::make_unique<OwnServer>();
    UsePostgres(server_->Place());
  }
  void TearDown() override { server_.reset(); }

 private:
  std::unique_ptr<OwnServer> server_;
};

const testing::Environment* const kOnPostgres = testing::AddGlobalTestEnvironment(new OnPostgres);

}  // namespace
}  // namespace vellumark::test
