#include "core/batch/sent_files.h"

#include "core/datafile/schema.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

constexpr int kMostPath = 250;

const Table& Layout() {
  static const Table table{"MSysSentFiles", {Field{"File", FieldType::Text, kMostPath, true}, Field{"Sender", FieldType::Long}}, {}};
  return table;
}

bool IsThere(Database& file) {
  return file.TableExists(Layout().name);
}

}  // namespace

std::optional<std::int32_t> UnsavedSenderOf(Database& file, const std::string& path) {
  if (!IsThere(file)) return std::nullopt;
  Statement row = file.Prepare("SELECT Sender FROM MSysSentFiles WHERE File = ?");
  if (!row.Bind(1, path).Step()) return std::nullopt;
  return static_cast<std::int32_t>(row.Whole(0));
}

std::int32_t NoteUnsavedSender(Database& file, const std::string& path, std::int32_t sender) {
  Transaction transaction(file);
  if (!IsThere(file)) file.CreateTable(Layout().name, Layout());
  if (sender == 0)
    sender = static_cast<std::int32_t>(file.Scalar("SELECT COALESCE(MAX(Sender), 0) + 1 FROM MSysSentFiles").Whole());
  ForgetSentFile(file, path);
  InsertRow(file, Layout(), Layout().name, {{"File", path}, {"Sender", sender}});
  transaction.Commit();
  return sender;
}

void ForgetSentFile(Database& file, const std::string& path) {
  if (!IsThere(file)) return;
  file.Prepare("DELETE FROM MSysSentFiles WHERE File = ?").Bind(1, path).Run();
}

void ForgetUnsavedSender(Database& file, std::int32_t sender) {
  if (sender == 0 || !IsThere(file)) return;
  file.Prepare("DELETE FROM MSysSentFiles WHERE Sender = ?").Bind(1, sender).Run();
}

}  // namespace vellumark
