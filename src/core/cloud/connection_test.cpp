#include "core/cloud/connection_test.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "core/base/files.h"
#include "core/base/progress_run.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kLog = "TestUserSettingsLog_VKCloud.txt";

std::vector<std::string> FieldsOf(const HostCertificate& shown) {
  const auto truth = [](bool value) { return value ? "True" : "False"; };
  return {fmt::format("SubjectDN: {}", shown.SubjectDN),
          fmt::format("SubjectCN: {}", shown.SubjectCN),
          fmt::format("IssuerDN: {}", shown.IssuerDN),
          fmt::format("IssuerCN: {}", shown.IssuerCN),
          fmt::format("Revoked: {}", truth(shown.Revoked)),
          fmt::format("SignatureVerified: {}", truth(shown.SignatureVerified)),
          fmt::format("CertVersion: {}", shown.version),
          fmt::format("SelfSigned: {}", truth(shown.SelfSigned)),
          fmt::format("ValidFromStr: {}", shown.ValidFrom),
          fmt::format("ValidFrom: {}", shown.ValidFrom.substr(0, 10)),
          fmt::format("ValidToStr: {}", shown.ValidTo),
          fmt::format("ValidTo: {}", shown.ValidTo.substr(0, 10)),
          fmt::format("Version: {}", shown.version)};
}

std::string CertificateLine(const FtpHost& host, const std::optional<HostCertificate>& shown) {
  if (!host.Secure()) return "SSL Verification: Not performed.";
  if (!host.verify) return "SSL Verification: Test not performed, user discretion.";
  if (!shown) return "SSL Verification: Failed, unable to verify SSL certificate data.";
  return shown->fault.empty() ? "SSL Verification: Verified, valid certificate data."
                              : "SSL Verification: Invalid certificate data.";
}

// A fault of the login or the certificate proves that the host is there.
void TakeFault(ConnectionTest& test, const FtpHost& host, const FtpFailure& failure,
               const std::optional<HostCertificate>& shown) {
  const bool login = failure.reason == ConnectReason::Login;
  if (login || failure.kind == FtpFailure::Kind::Certificate) {
    test.host = true;
    test.certificateLine = CertificateLine(host, shown);
    test.certificate = login && host.Secure() && host.verify;
    if (login) test.loginLine = "User Credentials: Unable to log into Cloud host account.";
  } else {
    test.hostLine = fmt::format("Cloud Host Connection: Failed - {}", ReasonText(failure.reason));
  }
}

}  // namespace

std::vector<std::string> ConnectionTest::Lines() const {
  std::vector<std::string> lines{hostLine, certificateLine, loginLine, folderLine};
  lines.insert(lines.begin() + 2, certificateFields.begin(), certificateFields.end());
  return lines;
}

ConnectionTest TestCloudSettings(CloudDesk& desk, const CloudSettings& settings) {
  const ProgressRun shown(desk.progress, "Testing Cloud Settings");
  const FtpHost host = HostOf(desk.session, settings);
  ConnectionTest test;
  test.certificateLine = "SSL Verification: Test not performed.";
  test.loginLine = "User Credentials: Log in test not performed.";
  test.folderLine = "Remote Directory Connection: Test not performed.";
  try {
    desk.ftp.Connect(host, desk.progress);
    test.host = test.login = true;
    test.certificate = host.Secure() && host.verify;
    test.certificateLine = CertificateLine(host, desk.ftp.Certificate());
    test.loginLine = "User Credentials: Succesfully logged into Cloud host account.";
    const RemoteFolders folders(settings.RemoteDirectory, settings.AcctNum);
    const std::string top = folders.root.substr(0, folders.root.rfind('/'));
    test.folder = top.empty() || desk.ftp.FolderExists(top);
    test.folderLine = test.folder
                          ? "Remote Directory Connection: Successful connection to Remote Directory."
                          : "Remote Directory Connection: Failed, unable to connect to Remote Directory";
    desk.ftp.Disconnect();
  } catch (const FtpFailure& failure) {
    if (!test.login) TakeFault(test, host, failure, desk.ftp.Certificate());
    if (test.login && !test.folder)
      test.folderLine = "Remote Directory Connection: Failed, unable to connect to Remote Directory";
  }
  if (test.host)
    test.hostLine = host.Secure() ? "Cloud Host Connection: Successful TLS connection to host."
                                  : "Cloud Host Connection: Warning - open link to host, nothing is encrypted.";
  if (desk.ftp.Certificate()) test.certificateFields = FieldsOf(*desk.ftp.Certificate());
  const DataFolders folders(desk.session.DataFolder);
  folders.MakeCloudFolders();
  ReplaceFile(ConnectionTestLog(desk.session),
              fmt::format("{}\r\n{}\r\n", desk.session.clock.Now().ToText(), fmt::join(test.Lines(), "\r\n")),
              Readers::Group);
  return test;
}

fs::path ConnectionTestLog(const Session& session) {
  return DataFolders(session.DataFolder).cloudLogFiles / kLog;
}

void ExportConnectionTest(Session& session, const fs::path& folder) {
  ReplaceFile(folder / kLog, ReadFileBytes(ConnectionTestLog(session)));
  session.prompt.Tell("Log File", "The Cloud log file has been exported\nto the desktop.");
}

}  // namespace vellumark
