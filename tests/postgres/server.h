#pragma once

#include <sys/types.h>

#include "postgres/postgres_engine.h"
#include "support/scratch.h"

namespace vellumark::test {

/// A server of this process's own, from the Debian package, in a folder of its own: it listens on a socket there and
/// nowhere else, and goes with this object, or with the process when that is killed.
class OwnServer {
 public:
  OwnServer();
  ~OwnServer();
  OwnServer(const OwnServer&) = delete;
  OwnServer& operator=(const OwnServer&) = delete;

  PostgresServer Place() const;

 private:
  void Start();

  ScratchFolder folder_;
  pid_t child_ = 0;
};

}  // namespace vellumark::test
