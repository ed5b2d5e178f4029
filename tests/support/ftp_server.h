#pragma once

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "core/base/files.h"
#include "support/scratch.h"

namespace vellumark::test {

inline constexpr int kPassivePorts = 12;  ///< behind the port of the server

inline sockaddr_in LoopbackAddress(int host, int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(0x7F000000U + static_cast<unsigned>(host));
  return address;
}

inline int Listener(int host, int port) {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  const sockaddr_in address = LoopbackAddress(host, port);
  if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 && ::listen(fd, 32) == 0) return fd;
  ::close(fd);
  return -1;
}

inline void RunOrThrow(const std::string& command) {
  if (std::system(("{ " + command + "; } >/dev/null 2>&1").c_str()) != 0) throw std::runtime_error("failed: " + command);
}

/// A certificate that signs itself, "cert.pem" and "key.pem" of a folder.
inline void MakeCertificate(const std::filesystem::path& folder, const std::string& name, int days = 30) {
  std::filesystem::create_directories(folder);
  const std::string at = folder.string() + "/";
  std::ofstream(at + "names") << "subjectAltName=" << (name == "127.0.0.1" ? "IP:127.0.0.1,IP:127.0.0.2" : "DNS:" + name);
  RunOrThrow("openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -keyout " + at + "key.pem -out " + at +
             "csr -subj /O=Orravane/CN=" + name);
  RunOrThrow("openssl x509 -req -in " + at + "csr -signkey " + at + "key.pem -extfile " + at + "names -days " +
             std::to_string(days) + " -out " + at + "cert.pem");
}

/// A real server of files on a loopback address, with a folder and users of its own. All users see the same folder.
class FtpServer {
 public:
  struct Options {
    std::string certificate = "127.0.0.1";  ///< the name that it is for; empty: no TLS
    int days = 30;
    bool demandsTls = true;
    bool implicit = false;
    std::string protocols = "TLSv1.2 TLSv1.3";
    long quota = 0;    ///< bytes that "shop" may put there in all; 0: as many as it likes
    rlim_t disk = RLIM_INFINITY;  ///< where the disk of the host is full, for each of its files
    std::string more = {};  ///< further lines of its settings
  };

  FtpServer() : FtpServer(Options{}) {}
  explicit FtpServer(const Options& options) {
    std::filesystem::create_directories(Root());
    if (!options.certificate.empty()) MakeCertificate(folder_ / "cert", options.certificate, options.days);
    std::filesystem::permissions(folder_.Path(), std::filesystem::perms(0755));
    Give(Root());
    WriteUsers();
    disk_ = options.disk;
    if (options.quota > 0) WriteQuota(options.quota);
    for (int attempt = 0; child_ <= 0; ++attempt) {
      if (attempt == 20) throw std::runtime_error("the server does not start: " + ReadFileBytes(folder_ / "log"));
      port_ = FreePort();
      WriteSettings(options);
      Start();
    }
  }
  ~FtpServer() { Stop(); }
  FtpServer(const FtpServer&) = delete;
  FtpServer& operator=(const FtpServer&) = delete;

  /// Where it listens; a proxy may stand at 127.0.0.1 with the same ports.
  std::string Host() const { return "127.0.0.2"; }
  int Port() const { return port_; }
  std::filesystem::path Root() const { return folder_ / "root"; }
  std::filesystem::path Certificate() const { return folder_ / "cert/cert.pem"; }
  /// What it was asked, one command a line.
  std::string Talk() const {
    std::error_code ignored;
    return std::filesystem::exists(folder_ / "talk", ignored) ? ReadFileBytes(folder_ / "talk") : std::string();
  }
  /// Files and folders that a test put there become the server's.
  void Own() const {
    Give(Root());
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Root())) Give(entry.path());
  }
  void Stop() {
    if (child_ <= 0) return;
    ::kill(child_, SIGTERM);
    ::waitpid(std::exchange(child_, 0), nullptr, 0);
  }

 private:
  static uid_t User() { return ::geteuid() == 0 ? 65534 : ::geteuid(); }
  static gid_t Group() { return ::geteuid() == 0 ? 65534 : ::getegid(); }
  static void Give(const std::filesystem::path& path) {
    if (::chown(path.c_str(), User(), Group()) != 0) throw std::runtime_error("cannot give " + path.string());
  }
  static bool AllFree(int port) {
    for (int p = port; p <= port + kPassivePorts; ++p) {
      for (const int host : {1, 2}) {
        const int fd = Listener(host, p);
        if (fd < 0) return false;
        ::close(fd);
      }
    }
    return true;
  }
  static int FreePort() {
    static int next = 20000 + ::getpid() * 131 % 12000;
    for (int tries = 0; tries < 500; ++tries, next += kPassivePorts + 1) {
      if (next > 32000) next = 20000;
      if (AllFree(next)) return std::exchange(next, next + kPassivePorts + 1);
    }
    throw std::runtime_error("no free ports");
  }
  void WriteUsers() const {
    RunOrThrow("openssl passwd -5 'se cret#1' > " + (folder_ / "hash").string());
    std::string hash = ReadFileBytes(folder_ / "hash");
    while (!hash.empty() && hash.back() == '\n') hash.pop_back();
    std::ofstream users(folder_ / "users");
    for (const std::string name : {"shop", "admin"})
      users << name << ":" << hash << ":" << User() << ":" << Group() << "::" << Root().string() << ":/bin/sh\n";
    users.close();
    std::filesystem::permissions(folder_ / "users", std::filesystem::perms(0600));
  }
  void WriteQuota(long bytes) const {
    for (const std::string type : {"limit", "tally"})
      RunOrThrow("ftpquota --create-table --type=" + type + " --table-path=" + (folder_ / type).string());
    RunOrThrow("ftpquota --add-record --type=limit --name=shop --quota-type=user --limit-type=hard --units=byte --bytes-upload=" +
               std::to_string(bytes) + " --table-path=" + (folder_ / "limit").string());
  }
  void WriteSettings(const Options& options) const {
    const std::string at = folder_.Path().string() + "/";
    std::ofstream out(folder_ / "conf");
    out << "ModulePath /usr/lib/proftpd\nLoadModule mod_tls.c\nLoadModule mod_quotatab.c\nLoadModule mod_quotatab_file.c\n"
        << "ServerType standalone\nServerName shop\nDefaultAddress 127.0.0.2\nSocketBindTight on\nPort " << port_
        << "\nPassivePorts " << port_ + 1 << " " << port_ + kPassivePorts << "\nUseIPv6 off\nUseReverseDNS off\n"
        << "PidFile " << at << "pid\nScoreboardFile " << at << "scoreboard\nSystemLog " << at << "log\nWtmpLog off\n"
        << "TransferLog none\nUser nobody\nGroup nogroup\nAuthOrder mod_auth_file.c\nAuthUserFile " << at
        << "users\nAuthPAM off\nRequireValidShell off\nDefaultRoot ~\nAllowStoreRestart on\nAllowOverwrite on\n"
        << "AllowForeignAddress on\nTimeoutStalled 30\nLogFormat talk \"%m %f\"\nExtendedLog " << at << "talk ALL talk\n"
        << "<IfModule mod_delay.c>\nDelayEngine off\n</IfModule>\n<IfModule mod_ctrls.c>\nControlsEngine off\n</IfModule>\n";
    if (!options.certificate.empty())
      out << "TLSEngine on\nTLSLog " << at << "tls\nTLSRequired " << (options.demandsTls ? "on" : "off")
          << "\nTLSProtocol " << options.protocols << "\nTLSVerifyClient off\nTLSRSACertificateFile " << at
          << "cert/none\n";
    if (options.quota > 0)
      out << "QuotaEngine on\nQuotaLimitTable file:" << at << "limit\nQuotaTallyTable file:" << at << "tally\n";
    if (options.implicit) out << "TLSOptions UseImplicitSSL\n";
    out << options.more << "\n";
    out.close();
    // The kind of the key is told by the name of the directive.
    std::string text = ReadFileBytes(folder_ / "conf");
    if (const auto rsa = text.find("TLSRSACertificateFile"); rsa != std::string::npos)
      text.replace(rsa, text.find('\n', rsa) - rsa,
                   "TLSECCertificateFile " + at + "cert/cert.pem\nTLSECCertificateKeyFile " + at + "cert/key.pem");
    std::ofstream(folder_ / "conf") << text;
  }
  void Start() {
    child_ = ::fork();
    if (child_ == 0) {
      const int out = ::open((folder_ / "out").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
      ::dup2(out, 1);
      ::dup2(out, 2);
      const std::string settings = (folder_ / "conf").string();
      ::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{disk_, disk_};
      ::setrlimit(RLIMIT_FSIZE, &limit);
      ::execlp("proftpd", "proftpd", "-n", "-c", settings.c_str(), nullptr);
      ::execl("/usr/sbin/proftpd", "proftpd", "-n", "-c", settings.c_str(), nullptr);
      ::_exit(127);
    }
    for (int wait = 0; wait < 400; ++wait) {
      const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
      const sockaddr_in address = LoopbackAddress(2, port_);
      const bool up = ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
      ::close(fd);
      if (up) return;
      if (::waitpid(child_, nullptr, WNOHANG) == child_) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(25));
    }
    if (::waitpid(child_, nullptr, WNOHANG) == 0) Stop();
    child_ = 0;
  }

  ScratchFolder folder_;
  int port_ = 0;
  pid_t child_ = 0;
  rlim_t disk_ = RLIM_INFINITY;
};

/// Stands before a server at 127.0.0.1, under the same ports, and does harm.
class FaultProxy {
 public:
  explicit FaultProxy(const FtpServer& server) : port_(server.Port()) {
    for (int port = port_; port <= port_ + kPassivePorts; ++port) listeners_[port] = Listener(1, port);
    thread_ = std::thread([this] { Serve(); });
  }
  ~FaultProxy() {
    stop_ = true;
    thread_.join();
    for (const auto& [port, fd] : listeners_) ::close(fd);
    for (Pair& pair : pairs_) pair.Close();
  }
  FaultProxy(const FaultProxy&) = delete;
  FaultProxy& operator=(const FaultProxy&) = delete;

  std::string Host() const { return "127.0.0.1"; }

  std::atomic<std::int64_t> dropAfter = -1;   ///< bytes of all ways for data together; then every connection is cut
  std::atomic<std::int64_t> stallAfter = -1;  ///< the same; then nothing moves any more
  std::atomic<int> slow = 0;                  ///< bytes in a hundredth of a second
  std::atomic<bool> refuseData = false;       ///< ways for data are cut as they come
  std::atomic<int> connections = 0;           ///< to the server itself
  std::atomic<std::int64_t> moved = 0;        ///< of data
  /// Cuts all that is open.
  void Cut() { cut_ = true; }

 private:
  struct Pair {
    int near = -1;
    int far = -1;
    bool data = false;
    void Close() {
      for (int* fd : {&near, &far})
        if (*fd >= 0) ::close(std::exchange(*fd, -1));
    }
    void Reset() {
      const linger at{1, 0};
      for (const int fd : {near, far}) ::setsockopt(fd, SOL_SOCKET, SO_LINGER, &at, sizeof at);
      Close();
    }
  };
  void Accept(int port, int listener) {
    const int near = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (near < 0) return;
    Pair pair{near, ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), port != port_};
    const sockaddr_in address = LoopbackAddress(2, port);
    if (pair.data && refuseData) return pair.Reset();
    if (::connect(pair.far, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return pair.Reset();
    if (!pair.data) ++connections;
    pairs_.push_back(pair);
  }
  // False at the end of one side.
  bool Pass(const Pair& pair, int from, int to) {
    std::array<char, 65536> bytes{};
    std::size_t most = bytes.size();
    if (pair.data && slow > 0) most = static_cast<std::size_t>(slow.load());
    if (pair.data && dropAfter >= 0) most = std::min(most, static_cast<std::size_t>(dropAfter - moved) + 1);
    const ssize_t came = ::recv(from, bytes.data(), most, MSG_DONTWAIT);
    if (came < 0) return errno == EAGAIN || errno == EINTR;
    if (came == 0) return false;
    if (pair.data) moved += came;
    for (ssize_t at = 0; at < came;) {
      const ssize_t sent = ::send(to, bytes.data() + at, static_cast<std::size_t>(came - at), MSG_NOSIGNAL);
      if (sent <= 0) return false;
      at += sent;
    }
    return true;
  }
  void Serve() {
    while (!stop_) {
      if (cut_.exchange(false) || (dropAfter >= 0 && moved > dropAfter)) {
        for (Pair& pair : pairs_) pair.Reset();
        pairs_.clear();
      }
      const bool stalls = stallAfter >= 0 && moved > stallAfter;
      std::vector<pollfd> waiting;
      for (const auto& [port, fd] : listeners_) waiting.push_back({fd, POLLIN, 0});
      for (const Pair& pair : pairs_) {
        waiting.push_back({pair.near, static_cast<short>(stalls ? 0 : POLLIN), 0});
        waiting.push_back({pair.far, static_cast<short>(stalls ? 0 : POLLIN), 0});
      }
      ::poll(waiting.data(), waiting.size(), 10);
      std::size_t at = 0;
      const std::size_t open = pairs_.size();
      for (const auto& [port, fd] : listeners_)
        if ((waiting[at++].revents & POLLIN) != 0) Accept(port, fd);
      bool slowed = false;
      for (std::size_t i = 0; i < open; ++i) {
        Pair& pair = pairs_[i];
        const short near = waiting[at++].revents;
        const short far = waiting[at++].revents;
        if (stalls) continue;
        slowed = slowed || (pair.data && slow > 0);
        const bool goes = (near == 0 || Pass(pair, pair.near, pair.far)) && (far == 0 || Pass(pair, pair.far, pair.near));
        if (!goes) pair.Close();
      }
      std::erase_if(pairs_, [](const Pair& pair) { return pair.near < 0; });
      if (slowed) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }

  int port_;
  std::map<int, int> listeners_;
  std::vector<Pair> pairs_;
  std::atomic<bool> cut_ = false;
  std::atomic<bool> stop_ = false;
  std::thread thread_;
};

}  // namespace vellumark::test
