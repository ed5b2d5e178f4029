#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "core/base/refusal.h"
#include "core/base/seams.h"

namespace vellumark {

/// Why there is no connection. The numbers are those that the log has always had.
enum class ConnectReason {
  Success = 0,
  EmptyHostname = 1,
  DnsFailed = 2,
  DnsTimeout = 3,
  Aborted = 4,
  Internal = 5,
  TimedOut = 6,
  Rejected = 7,
  InternalTls = 100,
  Credentials = 101,
  ProxyMessage = 102,
  Handshake = 103,
  NoCertificate = 104,
  Busy = 300,
  Login = 301,
};
/// "Connect timed out".
std::string_view ReasonText(ConnectReason reason);

/// Where to log in, and how.
struct FtpHost {
  std::string host;
  int port = 21;
  std::string user;
  std::string password;
  bool passive = true;  ///< ways for data are opened from here; with TLS they always are
  bool tls = true;  ///< explicit: demanded before the login
  bool ssl = false;  ///< implicit: the connection begins with it
  bool clearControlChannel = false;
  bool verify = true;              ///< the certificate has to be good; it is looked at during the handshake
  std::filesystem::path certFile;  ///< what to check it against; empty for the authorities that the system knows

  bool Secure() const { return tls || ssl; }
};

/// What a host showed of itself.
struct HostCertificate {
  std::string SubjectDN;
  std::string SubjectCN;
  std::string IssuerDN;
  std::string IssuerCN;
  bool Revoked = false;
  bool SignatureVerified = false;
  bool SelfSigned = false;
  bool Expired = false;
  bool nameMatches = true;
  int version = 0;
  std::string ValidFrom;  ///< as text of a date, "2026-03-10 09:00:00", in UTC
  std::string ValidTo;
  std::string fault;  ///< why it was not accepted, in the words of the check; empty when it was
};

/// What went wrong on the line or at either end of it.
class FtpFailure : public Failure {
 public:
  enum class Kind {
    Connect,      ///< no connection, for `reason`
    Certificate,  ///< the certificate is not accepted; nobody has logged in
    Missing,      ///< no such file or folder
    Denied,
    Full,     ///< no room at the host
    Dropped,  ///< the connection ended in the middle
    Stalled,  ///< nothing came or went for too long
    Cancelled,
    NoData,  ///< the way for the data could not be opened
    Other,
  };
  FtpFailure(Kind kindOfFailure, std::string subjectOfFailure, std::string causeOfFailure,
             ConnectReason reasonOfFailure = ConnectReason::Success)
      : Failure(std::move(subjectOfFailure), std::move(causeOfFailure)), kind(kindOfFailure), reason(reasonOfFailure) {}

  Kind kind;
  ConnectReason reason;
};

/// An entry of a folder of the host.
struct RemoteFile {
  std::string name;
  std::int64_t size = 0;
  std::optional<DateTime> date{};  ///< in UTC, to the minute where the host tells no more
  bool folder = false;
};

/// A connection to a host of files, one at a time. Whatever fails is an FtpFailure that names the host or the path; no
/// text of it holds a password. Paths begin at the root of the host or, without "/", where the login leads to. Every
/// wait has an end, and asks `progress` whether it was cancelled.
class FtpClient {
 public:
  /// Takes a piece of what comes.
  using Take = std::function<void(std::string_view piece)>;
  /// Fills a piece of what goes; the number of bytes, 0 at the end.
  using Give = std::function<std::size_t(char* piece, std::size_t size)>;

  virtual ~FtpClient() = default;
  /// Connects, checks the certificate, logs in. A second call ends the first connection.
  virtual void Connect(const FtpHost& host, Progress& progress) = 0;
  /// Of the last Connect, also of one that failed on it; nothing of an open link.
  virtual const std::optional<HostCertificate>& Certificate() const = 0;
  /// False when the control channel was to be cleared and the host refused that.
  virtual bool ControlChannelCleared() const = 0;
  /// Takes leave of the host.
  virtual void Disconnect() = 0;

  /// Whether the folder is there.
  virtual bool FolderExists(const std::string& folder) = 0;
  virtual void MakeFolder(const std::string& folder) = 0;
  virtual std::vector<RemoteFile> List(const std::string& folder) = 0;
  /// Nothing of a file that is not there.
  virtual std::optional<std::int64_t> Size(const std::string& path) = 0;
  /// Reads a file from its byte `from` on. `all` is how large it is, for the percent.
  virtual void Get(const std::string& path, std::int64_t from, std::int64_t all, const Take& take) = 0;
  /// Writes `all` bytes less the first `from`, behind those that are there already when `from` is not 0.
  virtual void Put(const std::string& path, std::int64_t from, std::int64_t all, const Give& give) = 0;
  virtual void Delete(const std::string& path) = 0;
  virtual void Rename(const std::string& from, const std::string& to) = 0;
};

}  // namespace vellumark
