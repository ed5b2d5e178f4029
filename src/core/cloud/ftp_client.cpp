#include "core/cloud/ftp_client.h"

namespace vellumark {

std::string_view ReasonText(ConnectReason reason) {
  switch (reason) {
    case ConnectReason::Success:
      return "Success";
    case ConnectReason::EmptyHostname:
      return "Empty hostname";
    case ConnectReason::DnsFailed:
      return "DNS lookup failed";
    case ConnectReason::DnsTimeout:
      return "DNS timeout";
    case ConnectReason::Aborted:
      return "Aborted by application";
    case ConnectReason::Internal:
      return "Internal failure";
    case ConnectReason::TimedOut:
      return "Connect timed out";
    case ConnectReason::Rejected:
      return "Connect Rejected (or failed for some other reason)";
    case ConnectReason::InternalTls:
      return "Internal schannel error";
    case ConnectReason::Credentials:
      return "Failed to create credentials";
    case ConnectReason::ProxyMessage:
      return "Failed to send initial message to proxy";
    case ConnectReason::Handshake:
      return "Handshake failed";
    case ConnectReason::NoCertificate:
      return "Failed to obtain remote certificate";
    case ConnectReason::Busy:
      return "Asynch op in progress";
    case ConnectReason::Login:
      return "login failure";
  }
  return "Internal failure";
}

}  // namespace vellumark
