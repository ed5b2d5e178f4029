#pragma once

#include <string>

#include "core/session/session.h"
#include "core/shell/opening.h"

namespace vellumark {

/// The Data File that is left for another one, and the way back to it after a failure. Whatever else is thrown ends the
/// program, which needs no file any more.
class PreviousFile {
 public:
  PreviousFile(Session& session, OpeningWindows& windows);

  /// Closes it, and makes its backup.
  void Leave();
  /// Opens it again, if anything has changed; what cannot be opened is told in `NewDataFileForm`.
  void Return();

 private:
  Session& session_;
  OpeningWindows& windows_;
  std::string name_;
  std::string stored_;
  bool wasOpen_;
  bool recordsetsWereOpen_;
};

}  // namespace vellumark
