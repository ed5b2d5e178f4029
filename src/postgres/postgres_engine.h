#pragma once

#include <string>

namespace vellumark {

/// A server on this machine, and the database on it in which Data Files are kept: of encoding UTF8 and locale C.
struct PostgresServer {
  std::string host;  ///< the folder of its socket
  std::string user;
  std::string database;
};

/// From now on this process keeps its Data Files on that server. Each is a schema there; what stands under the file's
/// name is a text that tells which.
void UsePostgres(PostgresServer server);

}  // namespace vellumark
