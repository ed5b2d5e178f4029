#pragma once

#include <curl/curl.h>

#include <string>

#include "core/cloud/ftp_client.h"

namespace vellumark::devices {

/// Why a request was ended from this side.
enum class Stop { None, Cancelled, Stalled, Lost };

/// The last reply of the host.
struct Reply {
  int code = 0;
  std::string text;
};

/// What a connection that did not come to be was lacking. `named`: the name of the host was found.
FtpFailure ConnectFaultOf(CURLcode code, Stop stop, const Reply& reply, bool named, const std::string& host);
/// What ended a request on a connection.
FtpFailure FaultOf(CURLcode code, Stop stop, const Reply& reply, const std::string& command, const std::string& what);
/// What a host refused.
FtpFailure RefusalOf(const Reply& reply, const std::string& what);

}  // namespace vellumark::devices
