#include "devices/ftp_connection.h"

#include <curl/curl.h>
#include <fmt/format.h>

#include <array>
#include <charconv>
#include <chrono>
#include <exception>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

#include "core/base/text.h"
#include "core/cloud/remote_listing.h"
#include "devices/ftp_faults.h"
#include "devices/host_certificate.h"

namespace vellumark::devices {
namespace {

constexpr int kPause = 40;  // between two looks at who waits, in milliseconds
constexpr long kPiece = 512L * 1024;

std::int64_t Now() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

struct Global {
  Global() { curl_global_init(CURL_GLOBAL_DEFAULT); }
  ~Global() { curl_global_cleanup(); }
};

class CurlFtp final : public FtpClient {
 public:
  CurlFtp(const Clock& clock, const FtpTimes& times) : clock_(clock), times_(times) { static const Global global; }
  ~CurlFtp() override { Close(); }

  void Connect(const FtpHost& host, Progress& progress) override;
  const std::optional<HostCertificate>& Certificate() const override { return check_ ? check_->Shown() : none_; }
  bool ControlChannelCleared() const override { return !clearingRefused_; }
  void Disconnect() override;
  bool FolderExists(const std::string& folder) override { return Command("CWD " + Whole(folder)) < 400; }
  void MakeFolder(const std::string& folder) override { Demand("MKD " + Whole(folder), folder); }
  void Delete(const std::string& path) override { Demand("DELE " + Whole(path), path); }
  void Rename(const std::string& from, const std::string& to) override {
    Demand("RNFR " + Whole(from), from);
    Demand("RNTO " + Whole(to), to);
  }
  std::vector<RemoteFile> List(const std::string& folder) override;
  std::optional<std::int64_t> Size(const std::string& path) override;
  void Get(const std::string& path, std::int64_t from, std::int64_t all, const Take& take) override;
  void Put(const std::string& path, std::int64_t from, std::int64_t all, const Give& give) override;

 private:
  // Callbacks of the library. No exception may pass through it.
  static std::size_t OnTake(char* bytes, std::size_t size, std::size_t count, void* self);
  static std::size_t OnGive(char* bytes, std::size_t size, std::size_t count, void* self);
  static int OnProgress(void* self, curl_off_t, curl_off_t down, curl_off_t, curl_off_t up);
  static int OnTalk(CURL*, curl_infotype kind, char* bytes, std::size_t size, void* self);
  static CURLcode OnContext(CURL*, void* context, void* self);
  static int OnSocket(void* self, curl_socket_t, curlsocktype);

  template <class V>
  void Set(CURLoption option, V value) {
    curl_easy_setopt(easy_, option, value);
  }
  void Begin();
  void Reset(const std::string& url);
  void SetTls();
  CURLcode Run();
  CURLcode LogIn();
  bool Watch();
  void Hear(std::string_view line);
  /// Throws when it did not go well; `what` is the path or the host.
  void Finish(CURLcode code, const std::string& what);
  void Renew();
  /// The code of the reply to one command.
  int Command(const std::string& command);
  void Demand(const std::string& command, const std::string& what);
  std::string ListingBy(const char* command, const std::string& folder, CURLcode& code);
  bool HostHasSpoken();
  std::string Whole(const std::string& path) const;
  std::string Url(const std::string& path, bool folder = false) const;
  void Close();

  const Clock& clock_;
  FtpTimes times_;
  FtpHost host_;
  Progress* progress_ = nullptr;
  CURLM* multi_ = nullptr;
  CURL* easy_ = nullptr;
  CURLM* poll_ = nullptr;  // waits for nothing but the one socket that it is asked about
  std::optional<CertificateCheck> check_;
  std::optional<HostCertificate> none_;
  std::string trusted_;
  std::string entry_;  // where the login led to
  bool connecting_ = false;
  bool connected_ = false;
  bool mayReconnect_ = false;  // the host is well, the library has put the line down after a refusal
  bool clearingRefused_ = false;
  bool noMachineListing_ = false;
  bool newTlsAlone_ = false;
  bool transfers_ = false;

  // Of the request under way.
  Stop stop_ = Stop::None;
  std::exception_ptr thrown_;
  const Take* take_ = nullptr;
  const Give* give_ = nullptr;
  std::int64_t from_ = 0;
  std::int64_t all_ = 0;
  std::int64_t moved_ = 0;
  std::int64_t movedAt_ = 0;
  std::int64_t shownAt_ = 0;
  std::string command_;
  Reply reply_;
  curl_socket_t control_ = CURL_SOCKET_BAD;
};

// ---- Callbacks

std::size_t CurlFtp::OnTake(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& ftp = *static_cast<CurlFtp*>(self);
  try {
    if (ftp.take_ != nullptr) (*ftp.take_)(std::string_view(bytes, size * count));
    return size * count;
  } catch (...) {
    ftp.thrown_ = std::current_exception();
    return 0;
  }
}

std::size_t CurlFtp::OnGive(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& ftp = *static_cast<CurlFtp*>(self);
  try {
    // What the host says in the middle is why it wants no more; sending on would lose the line with the reason.
    if (ftp.HostHasSpoken()) return 0;
    return (*ftp.give_)(bytes, size * count);
  } catch (...) {
    ftp.thrown_ = std::current_exception();
    return CURL_READFUNC_ABORT;
  }
}

int CurlFtp::OnProgress(void* self, curl_off_t, curl_off_t down, curl_off_t, curl_off_t up) {
  auto& ftp = *static_cast<CurlFtp*>(self);
  if (down + up != ftp.moved_) {
    ftp.moved_ = down + up;
    ftp.movedAt_ = Now();
  }
  try {
    return ftp.Watch() ? 0 : 1;
  } catch (...) {
    ftp.thrown_ = std::current_exception();
    return 1;
  }
}

int CurlFtp::OnTalk(CURL*, curl_infotype kind, char* bytes, std::size_t size, void* self) {
  auto& ftp = *static_cast<CurlFtp*>(self);
  ftp.movedAt_ = Now();
  if (kind == CURLINFO_HEADER_OUT) {
    // The first word alone: what follows may be the password.
    const std::string_view words(bytes, size);
    ftp.command_ = words.substr(0, words.find_first_of(" \r\n"));
    if (ftp.command_ == "USER" && !ftp.connecting_ && !ftp.mayReconnect_) ftp.stop_ = Stop::Lost;
  } else if (kind == CURLINFO_HEADER_IN) {
    for (const std::string_view line : Split(std::string_view(bytes, size), '\n')) ftp.Hear(line);
  }
  return 0;
}

CURLcode CurlFtp::OnContext(CURL*, void* context, void* self) {
  static_cast<CurlFtp*>(self)->check_->Watch(static_cast<ssl_ctx_st*>(context));
  return CURLE_OK;
}

// Without a transfer a new socket is a second connection to the host.
int CurlFtp::OnSocket(void* self, curl_socket_t, curlsocktype) {
  auto& ftp = *static_cast<CurlFtp*>(self);
  if (ftp.connecting_ || ftp.transfers_ || ftp.mayReconnect_) return CURL_SOCKOPT_OK;
  ftp.stop_ = Stop::Lost;
  return CURL_SOCKOPT_ERROR;
}

void CurlFtp::Hear(std::string_view line) {
  while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.remove_suffix(1);
  int code = 0;
  const char* const first = std::to_address(line.begin());
  if (line.size() < 3 || std::from_chars(first, std::next(first, 3), code).ec != std::errc() || code < 100) return;
  if (line.size() > 3 && line[3] != ' ') return;
  reply_ = {code, std::string(line.size() > 4 ? line.substr(4) : std::string_view())};
  if (command_ == "CCC" && code >= 400) clearingRefused_ = true;
}

// False when the work is to end. Whoever waits is asked and shown now and then.
bool CurlFtp::Watch() {
  if (stop_ != Stop::None || thrown_) return false;
  const std::int64_t now = Now();
  if (!connecting_ && now - movedAt_ > times_.stall) stop_ = Stop::Stalled;
  if (now - shownAt_ >= kPause) {
    shownAt_ = now;
    if (all_ > 0) progress_->Percent(100.0 * static_cast<double>(from_ + moved_) / static_cast<double>(all_));
    if (progress_->Cancelled()) stop_ = Stop::Cancelled;
    // What was shown in between may have taken its time.
    movedAt_ += Now() - now;
  }
  return stop_ == Stop::None;
}

bool CurlFtp::HostHasSpoken() {
  if (control_ == CURL_SOCKET_BAD || moved_ == 0) return false;
  curl_waitfd control{control_, CURL_WAIT_POLLIN, 0};
  int ready = 0;
  curl_multi_wait(poll_, &control, 1, 0, &ready);
  return ready > 0;
}

// ---- Requests

void CurlFtp::Begin() {
  stop_ = Stop::None;
  thrown_ = nullptr;
  take_ = nullptr;
  give_ = nullptr;
  from_ = all_ = moved_ = 0;
  movedAt_ = Now();
  shownAt_ = 0;
  command_.clear();
  reply_ = {};
  transfers_ = false;
}

void CurlFtp::Reset(const std::string& url) {
  Begin();
  curl_easy_reset(easy_);
  Set(CURLOPT_URL, url.c_str());
  Set(CURLOPT_USERNAME, host_.user.c_str());
  Set(CURLOPT_PASSWORD, host_.password.c_str());
  Set(CURLOPT_PROXY, "");
  Set(CURLOPT_PROTOCOLS_STR, "ftp,ftps");
  Set(CURLOPT_NOSIGNAL, 1L);
  Set(CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_NOCWD));
  // A way that the host opens would stay in clear text: this library does not wrap it. With TLS all ways are opened from
  // here.
  if (!host_.passive && !host_.Secure()) Set(CURLOPT_FTPPORT, "-");
  Set(CURLOPT_QUICK_EXIT, 1L);  // else a name that nobody resolves is waited for beyond every limit of time
  Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(times_.connect));
  Set(CURLOPT_ACCEPTTIMEOUT_MS, static_cast<long>(times_.stall));
  Set(CURLOPT_SERVER_RESPONSE_TIMEOUT, static_cast<long>(times_.stall) / 1000 + 1);
  Set(CURLOPT_TCP_KEEPALIVE, 1L);
  Set(CURLOPT_BUFFERSIZE, kPiece);
  Set(CURLOPT_UPLOAD_BUFFERSIZE, kPiece);
  Set(CURLOPT_WRITEFUNCTION, &CurlFtp::OnTake);
  Set(CURLOPT_WRITEDATA, this);
  Set(CURLOPT_READFUNCTION, &CurlFtp::OnGive);
  Set(CURLOPT_READDATA, this);
  Set(CURLOPT_NOPROGRESS, 0L);
  Set(CURLOPT_XFERINFOFUNCTION, &CurlFtp::OnProgress);
  Set(CURLOPT_XFERINFODATA, this);
  Set(CURLOPT_VERBOSE, 1L);
  Set(CURLOPT_DEBUGFUNCTION, &CurlFtp::OnTalk);
  Set(CURLOPT_DEBUGDATA, this);
  Set(CURLOPT_SOCKOPTFUNCTION, &CurlFtp::OnSocket);
  Set(CURLOPT_SOCKOPTDATA, this);
  SetTls();
}

void CurlFtp::SetTls() {
  if (!host_.Secure()) return;
  Set(CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
  // Hosts that want each way for data to go on with the session of the control channel take a ticket of TLS 1.3 once,
  // and an upload never gets to read the next one. A session of TLS 1.2 serves for all of them.
  Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2) |
                              static_cast<long>(newTlsAlone_ ? CURL_SSLVERSION_MAX_DEFAULT : CURL_SSLVERSION_MAX_TLSv1_2));
  Set(CURLOPT_SSL_VERIFYPEER, host_.verify ? 1L : 0L);
  Set(CURLOPT_SSL_VERIFYHOST, 0L);  // the check of the certificate looks at the name as well
  Set(CURLOPT_SSL_CTX_FUNCTION, &CurlFtp::OnContext);
  Set(CURLOPT_SSL_CTX_DATA, this);
  if (host_.clearControlChannel) Set(CURLOPT_FTP_SSL_CCC, static_cast<long>(CURLFTPSSL_CCC_PASSIVE));
  if (host_.verify && !trusted_.empty()) {
    curl_blob blob{trusted_.data(), trusted_.size(), CURL_BLOB_NOCOPY};
    Set(CURLOPT_CAINFO_BLOB, &blob);
    Set(CURLOPT_CAPATH, nullptr);
  }
}

CURLcode CurlFtp::Run() {
  curl_multi_add_handle(multi_, easy_);
  CURLcode code = CURLE_OK;
  for (int running = 1; running > 0;) {
    if (curl_multi_perform(multi_, &running) != CURLM_OK) {
      code = CURLE_FAILED_INIT;
      break;
    }
    if (running == 0) break;
    if (stop_ == Stop::None && !thrown_) {
      try {
        Watch();
      } catch (...) {
        thrown_ = std::current_exception();
      }
    }
    if (stop_ != Stop::None || thrown_) {
      code = CURLE_ABORTED_BY_CALLBACK;
      break;
    }
    curl_multi_poll(multi_, nullptr, 0, kPause, nullptr);
  }
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &left))
    if (message->msg == CURLMSG_DONE && code == CURLE_OK) code = message->data.result;
  curl_multi_remove_handle(multi_, easy_);
  return code;
}

void CurlFtp::Finish(CURLcode code, const std::string& what) {
  if (thrown_) {
    if (transfers_) Renew();
    mayReconnect_ = true;
    std::rethrow_exception(std::exchange(thrown_, nullptr));
  }
  if (code == CURLE_OK) {
    mayReconnect_ = false;
    return;
  }
  const FtpFailure failure = FaultOf(code, stop_, reply_, command_, what);
  using enum FtpFailure::Kind;
  if (transfers_) Renew();
  mayReconnect_ = failure.kind == Missing || failure.kind == Denied || failure.kind == Full || failure.kind == Other ||
                  failure.kind == NoData;
  throw failure;
}

// Behind a broken transfer replies may still be under way that belong to no command.
void CurlFtp::Renew() {
  curl_multi_cleanup(std::exchange(multi_, curl_multi_init()));
  control_ = CURL_SOCKET_BAD;
}

void CurlFtp::Close() {
  if (easy_ != nullptr) curl_easy_cleanup(std::exchange(easy_, nullptr));
  if (multi_ != nullptr) curl_multi_cleanup(std::exchange(multi_, nullptr));
  if (poll_ != nullptr) curl_multi_cleanup(std::exchange(poll_, nullptr));
  connected_ = false;
  control_ = CURL_SOCKET_BAD;
}

void CurlFtp::Connect(const FtpHost& host, Progress& progress) {
  Close();
  host_ = host;
  progress_ = &progress;
  check_.reset();
  entry_.clear();
  clearingRefused_ = noMachineListing_ = mayReconnect_ = false;
  const auto fail = [&](ConnectReason reason, const std::string& cause) {
    throw FtpFailure(FtpFailure::Kind::Connect, host.host, cause, reason);
  };
  if (host.host.empty()) fail(ConnectReason::EmptyHostname, std::string(ReasonText(ConnectReason::EmptyHostname)));
  trusted_.clear();
  try {
    if (host.Secure() && host.verify && !host.certFile.empty()) trusted_ = CertificatesOf(host.certFile);
  } catch (const Failure& failure) {
    fail(ConnectReason::Credentials, fmt::format("{}: {}", failure.subject, failure.cause));
  }
  multi_ = curl_multi_init();
  poll_ = curl_multi_init();
  easy_ = curl_easy_init();
  if (multi_ == nullptr || poll_ == nullptr || easy_ == nullptr)
    fail(ConnectReason::Internal, "Cloud component not ready for use");
  if (host.Secure()) check_.emplace(host.host, host.verify);
  newTlsAlone_ = false;
  CURLcode code = LogIn();
  if (code == CURLE_SSL_CONNECT_ERROR && !Certificate() && stop_ == Stop::None && !thrown_) {
    newTlsAlone_ = true;
    code = LogIn();
  }
  if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
  if (code != CURLE_OK) {
    curl_off_t named = 0;
    curl_easy_getinfo(easy_, CURLINFO_NAMELOOKUP_TIME_T, &named);
    const auto shown = Certificate();
    const bool refused = check_ && check_->Refused();
    const FtpFailure failure =
        refused ? FtpFailure(FtpFailure::Kind::Certificate, host.host, shown->fault, ConnectReason::Handshake)
                : ConnectFaultOf(code, stop_, reply_, named > 0, host.host);
    throw failure;
  }
  const char* entry = nullptr;
  curl_easy_getinfo(easy_, CURLINFO_FTP_ENTRY_PATH, &entry);
  entry_ = entry == nullptr ? "/" : entry;
  curl_easy_getinfo(easy_, CURLINFO_ACTIVESOCKET, &control_);
  connected_ = true;
}

CURLcode CurlFtp::LogIn() {
  Reset(Url("/", true));
  Set(CURLOPT_NOBODY, 1L);
  connecting_ = true;
  const CURLcode code = Run();
  connecting_ = false;
  return code;
}

int CurlFtp::Command(const std::string& command) {
  Reset(Url("/", true));
  Set(CURLOPT_NOBODY, 1L);
  // The library would put the line down after a refusal; the star lets it go on.
  curl_slist* const list = curl_slist_append(nullptr, ("*" + command).c_str());
  Set(CURLOPT_QUOTE, list);
  const CURLcode code = Run();
  curl_slist_free_all(list);
  Finish(code, host_.host);
  return reply_.code;
}

void CurlFtp::Demand(const std::string& command, const std::string& what) {
  if (Command(command) >= 400) throw RefusalOf(reply_, what);
}

void CurlFtp::Disconnect() {
  if (!connected_) return;
  connected_ = false;
  mayReconnect_ = false;
  try {
    Command("QUIT");
  } catch (const FtpFailure&) {
    Close();
    throw;
  }
  Close();
}

std::string CurlFtp::ListingBy(const char* command, const std::string& folder, CURLcode& code) {
  Reset(Url(folder, true));
  std::string text;
  const Take take = [&](std::string_view piece) { text += piece; };
  take_ = &take;
  transfers_ = true;
  if (command != nullptr) Set(CURLOPT_CUSTOMREQUEST, command);
  code = Run();
  take_ = nullptr;
  return text;
}

std::vector<RemoteFile> CurlFtp::List(const std::string& folder) {
  CURLcode code = CURLE_OK;
  if (!noMachineListing_) {
    const std::string text = ListingBy("MLSD", folder, code);
    if (code == CURLE_OK) return ReadMachineListing(text);
    if (reply_.code < 500 || stop_ != Stop::None) Finish(code, folder);
    noMachineListing_ = mayReconnect_ = true;
  }
  const std::string text = ListingBy(nullptr, folder, code);
  Finish(code, folder);
  return ReadListing(text, clock_.Now());
}

std::optional<std::int64_t> CurlFtp::Size(const std::string& path) {
  Reset(Url(path));
  Set(CURLOPT_NOBODY, 1L);
  const CURLcode code = Run();
  if (code == CURLE_REMOTE_FILE_NOT_FOUND || (code != CURLE_OK && stop_ == Stop::None && reply_.code == 550)) return std::nullopt;
  Finish(code, path);
  curl_off_t size = -1;
  curl_easy_getinfo(easy_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
  return size < 0 ? std::nullopt : std::optional<std::int64_t>(size);
}

void CurlFtp::Get(const std::string& path, std::int64_t from, std::int64_t all, const Take& take) {
  Reset(Url(path));
  take_ = &take;
  from_ = from;
  all_ = all;
  transfers_ = true;
  if (from > 0) Set(CURLOPT_RESUME_FROM_LARGE, static_cast<curl_off_t>(from));
  Finish(Run(), path);
}

void CurlFtp::Put(const std::string& path, std::int64_t from, std::int64_t all, const Give& give) {
  // Hosts that know how much room they have say so before anything is sent.
  constexpr std::int64_t kWorthAsking = 1 << 20;
  if (all - from >= kWorthAsking && Command(fmt::format("ALLO {}", all - from)) == 552) throw RefusalOf(reply_, path);
  Reset(Url(path));
  give_ = &give;
  from_ = from;
  all_ = all;
  transfers_ = true;
  Set(CURLOPT_UPLOAD, 1L);
  Set(CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(all - from));
  if (from > 0) Set(CURLOPT_APPEND, 1L);
  Finish(Run(), path);
}

std::string CurlFtp::Whole(const std::string& path) const {
  if (path.starts_with('/')) return path;
  return entry_.ends_with('/') ? entry_ + path : entry_ + "/" + path;
}

std::string CurlFtp::Url(const std::string& path, bool folder) const {
  std::string url = fmt::format("{}://{}:{}", host_.ssl ? "ftps" : "ftp",
                                host_.host.find(':') == std::string::npos ? host_.host : "[" + host_.host + "]",
                                host_.port);
  url += "/%2F";
  const std::string whole = Whole(path);
  bool first = true;
  for (const std::string_view part : Split(std::string_view(whole), '/')) {
    if (part.empty()) continue;
    char* const escaped = curl_easy_escape(easy_, part.data(), static_cast<int>(part.size()));
    url += (first ? "" : "/") + std::string(escaped);
    curl_free(escaped);
    first = false;
  }
  if (folder && !first) url += "/";
  return url;
}

}  // namespace

std::unique_ptr<FtpClient> FtpConnection(const Clock& clock, const FtpTimes& times) {
  return std::make_unique<CurlFtp>(clock, times);
}

}  // namespace vellumark::devices
