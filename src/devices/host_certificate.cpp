#include "devices/host_certificate.h"

#include <fmt/format.h>
#include <openssl/bio.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>

#include "core/base/files.h"

namespace vellumark::devices {
namespace {

struct Freed {
  void operator()(BIO* bio) const { BIO_free(bio); }
  void operator()(X509* certificate) const { X509_free(certificate); }
};

std::string TextOf(BIO* bio) {
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(bio, &bytes);
  return {bytes, static_cast<std::size_t>(size)};
}

std::string NameText(const X509_NAME* name) {
  const std::unique_ptr<BIO, Freed> bio(BIO_new(BIO_s_mem()));
  X509_NAME_print_ex(bio.get(), name, 0, XN_FLAG_RFC2253 & ~ASN1_STRFLGS_ESC_MSB);
  return TextOf(bio.get());
}

std::string CommonName(const X509_NAME* name) {
  const int at = X509_NAME_get_index_by_NID(name, NID_commonName, -1);
  if (at < 0) return {};
  unsigned char* utf8 = nullptr;
  const int size = ASN1_STRING_to_UTF8(&utf8, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(name, at)));
  if (size < 0) return {};
  std::string text(reinterpret_cast<char*>(utf8), static_cast<std::size_t>(size));
  OPENSSL_free(utf8);
  return text;
}

std::string TimeText(const ASN1_TIME* time) {
  std::tm parts{};
  if (ASN1_TIME_to_tm(time, &parts) != 1) return {};
  return DateTime{parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec}
      .ToText();
}

// By its other names, or, where it has none, by its common one.
bool IsNamed(X509* certificate, const std::string& host) {
  if (X509_check_ip_asc(certificate, host.c_str(), 0) == 1) return true;
  if (X509_check_host(certificate, host.data(), host.size(), 0, nullptr) == 1) return true;
  return X509_get_ext_by_NID(certificate, NID_subject_alt_name, -1) < 0 &&
         CommonName(X509_get_subject_name(certificate)) == host;
}

int LookAt(X509_STORE_CTX* chain, void* check) {
  return static_cast<CertificateCheck*>(check)->Look(chain);
}

}  // namespace

std::string CertificatesOf(const std::filesystem::path& file) {
  std::string bytes = ReadFileBytes(file, 1U << 20);
  if (bytes.find("-----BEGIN") != std::string::npos) return bytes;
  const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
  const std::unique_ptr<X509, Freed> certificate(d2i_X509(nullptr, &at, static_cast<long>(bytes.size())));
  if (!certificate) throw Failure(file.string(), "holds no certificate");
  const std::unique_ptr<BIO, Freed> bio(BIO_new(BIO_s_mem()));
  PEM_write_bio_X509(bio.get(), certificate.get());
  return TextOf(bio.get());
}

void CertificateCheck::Watch(ssl_ctx_st* context) {
  SSL_CTX_set_cert_verify_callback(context, LookAt, this);
}

int CertificateCheck::Look(void* given) {
  auto* chain = static_cast<X509_STORE_CTX*>(given);
  const bool good = X509_verify_cert(chain) == 1;
  X509* leaf = X509_STORE_CTX_get0_cert(chain);
  if (leaf == nullptr) return demanded_ ? 0 : 1;
  HostCertificate shown;
  shown.SubjectDN = NameText(X509_get_subject_name(leaf));
  shown.SubjectCN = CommonName(X509_get_subject_name(leaf));
  shown.IssuerDN = NameText(X509_get_issuer_name(leaf));
  shown.IssuerCN = CommonName(X509_get_issuer_name(leaf));
  shown.version = static_cast<int>(X509_get_version(leaf)) + 1;
  shown.ValidFrom = TimeText(X509_get0_notBefore(leaf));
  shown.ValidTo = TimeText(X509_get0_notAfter(leaf));
  shown.SelfSigned = X509_check_issued(leaf, leaf) == X509_V_OK;
  shown.Expired = X509_cmp_current_time(X509_get0_notAfter(leaf)) < 0;
  shown.nameMatches = IsNamed(leaf, host_);
  const int error = X509_STORE_CTX_get_error(chain);
  shown.SignatureVerified = good || error == X509_V_ERR_CERT_HAS_EXPIRED || error == X509_V_ERR_CERT_NOT_YET_VALID;
  shown.Revoked = error == X509_V_ERR_CERT_REVOKED;
  if (!good) {
    shown.fault = X509_verify_cert_error_string(error);
  } else if (!shown.nameMatches) {
    shown.fault = fmt::format("the certificate is for {}, not for {}", shown.SubjectCN, host_);
    X509_STORE_CTX_set_error(chain, X509_V_ERR_HOSTNAME_MISMATCH);
  }
  shown_ = shown;
  return !demanded_ || shown.fault.empty() ? 1 : 0;
}

}  // namespace vellumark::devices
