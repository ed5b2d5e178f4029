#pragma once

#include <memory>

#include "core/base/seams.h"
#include "core/cloud/ftp_client.h"

namespace vellumark::devices {

/// How long a wait may take, in milliseconds.
struct FtpTimes {
  int connect = 20'000;  ///< the name, the connection, the handshake and the login together
  int stall = 30'000;    ///< in which nothing comes and nothing goes
};

/// The line to a host of files. The clock tells the year of dates that a host gives without one.
std::unique_ptr<FtpClient> FtpConnection(const Clock& clock, const FtpTimes& times = {});

}  // namespace vellumark::devices
