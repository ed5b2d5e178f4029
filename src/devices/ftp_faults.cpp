#include "devices/ftp_faults.h"

#include <fmt/format.h>

#include "core/base/text.h"

namespace vellumark::devices {
namespace {

using Kind = FtpFailure::Kind;

bool Says(const Reply& reply, std::string_view part) {
  return FindNoCase(reply.text, part) != std::string::npos;
}

Kind KindOf(const Reply& reply) {
  if (reply.code == 552 || reply.code == 452 || Says(reply, "quota") || Says(reply, "space") || Says(reply, "too large"))
    return Kind::Full;
  if (reply.code == 425) return Kind::NoData;
  if (Says(reply, "no such") || Says(reply, "not found") || Says(reply, "not exist")) return Kind::Missing;
  if (reply.code == 550 || reply.code == 553 || reply.code == 532) return Kind::Denied;
  return Kind::Other;
}

// The control line stands, and no second one could be opened beside it.
bool OpensNoData(CURLcode code) {
  switch (code) {
    case CURLE_COULDNT_CONNECT:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_FTP_ACCEPT_FAILED:
    case CURLE_FTP_ACCEPT_TIMEOUT:
    case CURLE_FTP_PORT_FAILED:
    case CURLE_FTP_WEIRD_PASV_REPLY:
    case CURLE_FTP_WEIRD_227_FORMAT:
    case CURLE_FTP_CANT_GET_HOST:
      return true;
    default:
      return false;
  }
}

std::string_view WordsFor(CURLcode code) {
  if (OpensNoData(code)) return "no way for the data could be opened";
  switch (code) {
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
      return "the connection ended in the middle";
    case CURLE_OPERATION_TIMEDOUT:
      return "nothing came for too long";
    default:
      return curl_easy_strerror(code);
  }
}

FtpFailure Stopped(Stop stop, const std::string& what) {
  if (stop == Stop::Cancelled) return {Kind::Cancelled, what, "cancelled", ConnectReason::Aborted};
  if (stop == Stop::Stalled)
    return {Kind::Stalled, what, std::string(WordsFor(CURLE_OPERATION_TIMEDOUT)), ConnectReason::TimedOut};
  return {Kind::Dropped, what, std::string(WordsFor(CURLE_RECV_ERROR)), ConnectReason::Rejected};
}

ConnectReason ReasonOf(CURLcode code, bool named) {
  switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_URL_MALFORMAT:
      return ConnectReason::DnsFailed;
    case CURLE_OPERATION_TIMEDOUT:
      return named ? ConnectReason::TimedOut : ConnectReason::DnsTimeout;
    case CURLE_LOGIN_DENIED:
      return ConnectReason::Login;
    case CURLE_USE_SSL_FAILED:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
      return ConnectReason::Handshake;
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
      return ConnectReason::Credentials;
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_SSL_CIPHER:
      return ConnectReason::InternalTls;
    case CURLE_OUT_OF_MEMORY:
    case CURLE_FAILED_INIT:
      return ConnectReason::Internal;
    default:
      return ConnectReason::Rejected;
  }
}

}  // namespace

FtpFailure ConnectFaultOf(CURLcode code, Stop stop, const Reply& reply, bool named, const std::string& host) {
  if (stop == Stop::Cancelled) return Stopped(stop, host);
  const ConnectReason reason = ReasonOf(code, named);
  std::string cause(ReasonText(reason));
  if (code == CURLE_USE_SSL_FAILED) {
    cause += ", the host offers no TLS";
  } else if (reply.code >= 400) {
    cause += fmt::format(" ({} {})", reply.code, reply.text);
  }
  return {Kind::Connect, host, cause, reason};
}

FtpFailure RefusalOf(const Reply& reply, const std::string& what) {
  return {KindOf(reply), what, fmt::format("the host says {} {}", reply.code, reply.text)};
}

FtpFailure FaultOf(CURLcode code, Stop stop, const Reply& reply, const std::string& command, const std::string& what) {
  if (stop != Stop::None) return Stopped(stop, what);
  if (OpensNoData(code)) {
    // A host that refuses a file puts the way for it down first, and its refusal is read as the reply to the next try.
    if (reply.code >= 400) return RefusalOf(reply, what);
    return {Kind::NoData, what, std::string(WordsFor(code))};
  }
  switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
      return Stopped(Stop::Stalled, what);
    case CURLE_REMOTE_DISK_FULL:
      return {Kind::Full, what, fmt::format("the host says {} {}", reply.code, reply.text)};
    case CURLE_REMOTE_FILE_NOT_FOUND:
      return {Kind::Missing, what, fmt::format("the host says {} {}", reply.code, reply.text)};
    case CURLE_PARTIAL_FILE:
      // A reason that the host gave is worth more than that the file was cut.
      if (reply.code >= 450 && reply.code != 451) return RefusalOf(reply, what);
      return Stopped(Stop::Lost, what);
    case CURLE_SEND_ERROR:
      // What the host says of it is lost with the line.
      return {Kind::Dropped, what, "the connection ended in the middle, or the host had no room for more"};
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
      return Stopped(Stop::Lost, what);
    default:
      break;
  }
  if (reply.code >= 400 && reply.code != 426) return RefusalOf(reply, what);
  return {Kind::Other, what, fmt::format("{} ({})", WordsFor(code), command)};
}

}  // namespace vellumark::devices
