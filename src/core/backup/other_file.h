#pragma once

#include <filesystem>
#include <memory>
#include <utility>

#include "core/session/session.h"

namespace vellumark {

/// Another file in the place of the session's open one, to be looked at, for as long as this lasts.
class InPlaceOfOpenFile {
 public:
  InPlaceOfOpenFile(Session& session, const std::filesystem::path& path)
      : session_(session), before_(std::exchange(session.DataFileDB, Database::Open(path, OpenMode::ReadOnly))) {}
  ~InPlaceOfOpenFile() { session_.DataFileDB = std::move(before_); }
  InPlaceOfOpenFile(const InPlaceOfOpenFile&) = delete;
  InPlaceOfOpenFile& operator=(const InPlaceOfOpenFile&) = delete;

 private:
  Session& session_;
  std::unique_ptr<Database> before_;
};

}  // namespace vellumark
