#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "core/cloud/ftp_client.h"

struct ssl_ctx_st;

namespace vellumark::devices {

/// The certificates of a file, whatever its form, in the text form of PEM. Throws Failure for a file without any.
std::string CertificatesOf(const std::filesystem::path& file);

/// Looks at the certificate of a host while hands are being shaken.
class CertificateCheck {
 public:
  CertificateCheck(std::string host, bool demanded) : host_(std::move(host)), demanded_(demanded) {}
  /// Makes every connection of this context ask here.
  void Watch(ssl_ctx_st* context);
  const std::optional<HostCertificate>& Shown() const { return shown_; }
  /// The host was turned away because of it.
  bool Refused() const { return demanded_ && shown_ && !shown_->fault.empty(); }
  /// For the callback of the library: 1 to go on.
  int Look(void* chain);

 private:
  std::string host_;
  bool demanded_;
  std::optional<HostCertificate> shown_;
};

}  // namespace vellumark::devices
