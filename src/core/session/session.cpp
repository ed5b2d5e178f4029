#include "core/session/session.h"

#include <algorithm>
#include <stdexcept>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/session/settings.h"
#include "core/settings/support_files.h"

namespace vellumark {

Session::Session(Prompt& promptSeam, Progress& progressSeam, const Clock& clockSeam)
    : prompt(promptSeam), progress(progressSeam), clock(clockSeam) {}

Session::~Session() = default;

Database& Session::File() const {
  if (!DataFileDB) throw std::logic_error("no Data File is open");
  return *DataFileDB;
}

const std::string* Session::FindDatabase(std::string_view name) const {
  if (name.empty() || EqualNoCase(name, CurrentDatabase)) return &CurrentDatabase;
  const auto found =
      std::ranges::find_if(databaseList, [name](const std::string& other) { return EqualNoCase(other, name); });
  return found == databaseList.end() ? nullptr : &*found;
}

std::string Session::Table(const vellumark::Table& table, std::string_view database) const {
  return TableName(database.empty() ? std::string_view(CurrentDatabase) : database, table);
}

std::string Session::QuotedTable(const vellumark::Table& table, std::string_view database) const {
  return vellumark::QuotedTable(database.empty() ? std::string_view(CurrentDatabase) : database, table);
}

void ReadSettings(Session& session) {
  session.UMI = GetSetting(session, setting::UMI);
  session.UMF = GetSetting(session, setting::UMF);
  session.InvLotTracking = GetSetting(session, setting::InvLotTracking) ? 1 : 0;
  session.AutoFillText = GetSetting(session, setting::AutoFillText) ? 1 : 0;
  session.DecimalPlaces = GetSetting(session, setting::DecimalPlaces);
  session.NameLength = GetSetting(session, setting::UDCNameCCodeLen);
  session.PrinterFont = GetSetting(session, setting::PrinterFont);
}

Result<void> RequireWritable(const Session& session) {
  if (!session.ArchiveView) return {};
  return Refuse("Archive or Backup Data File",
                "You are viewing data from an Archive or Backup Data File which can be viewed, but cannot be "
                "modified.\n\nUse the Open Data File command in the File Menu to open a regular (non-archive, "
                "non-backup) Data File.");
}

}  // namespace vellumark
