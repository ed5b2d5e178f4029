#include "core/backup/failed_backup.h"

#include <nlohmann/json.hpp>

#include "core/base/files.h"
#include "core/base/refusal.h"

namespace vellumark {
namespace fs = std::filesystem;
using Json = nlohmann::json;

namespace {

fs::path NoteFile(const Session& session) {
  return session.BackupsFolder / "Failed Backups.json";
}

// By the path of the Data File. A note that cannot be read says nothing, and the next one takes its place.
Json ReadNotes(const Session& session) {
  std::error_code ignored;
  if (session.BackupsFolder.empty() || !fs::exists(NoteFile(session), ignored)) return Json::object();
  try {
    Json notes = Json::parse(ReadFileBytes(NoteFile(session)), nullptr, false);
    if (notes.is_object()) return notes;
  } catch (const Failure&) {
    return Json::object();
  }
  return Json::object();
}

}  // namespace

void NoteFailedBackup(const Session& session, const fs::path& dataFile, const std::string& cause) {
  if (session.BackupsFolder.empty()) return;
  Json notes = ReadNotes(session);
  notes[RealPath(dataFile).string()] = {{"When", session.clock.Now().ToText()}, {"Cause", cause}};
  MakeFolder(session.BackupsFolder);
  ReplaceFile(NoteFile(session), notes.dump(1, ' ', false, Json::error_handler_t::replace) + "\n", Readers::Group);
}

std::optional<FailedBackup> LastFailedBackup(const Session& session, const fs::path& dataFile) {
  const Json notes = ReadNotes(session);
  const auto note = notes.find(RealPath(dataFile).string());
  if (note == notes.end() || !note->is_object()) return std::nullopt;
  const auto text = [&](const char* key) {
    const auto value = note->find(key);
    return value != note->end() && value->is_string() ? value->get<std::string>() : std::string();
  };
  const auto when = ParseDateTime(text("When"));
  if (!when) return std::nullopt;
  return FailedBackup{*when, text("Cause")};
}

}  // namespace vellumark
