#pragma once

#include <string>

#include "core/cloud/cloud_settings.h"
#include "support/ftp_server.h"

namespace vellumark::test {

/// An account at that server, reached as its options ask for.
inline CloudSettings SettingsOf(const FtpServer& server, const std::string& facility, const std::string& account) {
  CloudSettings settings;
  settings.Facility = facility;
  settings.AcctNum = account;
  settings.CloudHost = server.Host();
  settings.Port = server.Port();
  settings.CloudHostUserName = "shop";
  settings.CloudHostPassword = "se cret#1";
  settings.RemoteDirectory = "/";
  settings.Passive = settings.TLS = true;
  settings.ssl = false;
  settings.CertFile = server.Certificate().string();
  return settings;
}

}  // namespace vellumark::test
