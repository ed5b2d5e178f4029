#include "core/session/session.h"

#include <algorithm>
#include <stdexcept>

#include "core/base/number.h"
#include "core/base/text.h"
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

std::string GetSupportValue(const Session& session, std::string_view key) {
  return session.support->settings.GetSupportValue(key);
}

void SetSupportValue(const Session& session, std::string_view key, std::string_view value) {
  session.support->settings.SetSupportValue(key, value);
}

void ReadSettings(Session& session) {
  const auto number = [&](std::string_view key) { return LeadingInteger(GetSupportValue(session, key)); };
  const auto unit = [&](std::string_view key) {
    const int code = number(key);
    return code >= 1 && code <= 4 ? code : 1;
  };
  session.UMI = unit("UMI");
  session.UMF = unit("UMF");
  session.InvLotTracking = number("InvLotTracking") == 1 ? 1 : 0;
  session.AutoFillText = number("AutoFillText");
  const int decimals = number("DecimalPlaces");
  session.DecimalPlaces = decimals >= 2 && decimals <= 4 ? decimals : 2;
  const auto length = ParseNumber(GetSupportValue(session, "UDCNameCCodeLen"));
  session.NameLength = length && *length >= 10 && *length < 31 ? static_cast<int>(*length) : 30;
  session.PrinterFont = GetSupportValue(session, "PrinterFont");
}

Result<void> RequireWritable(const Session& session) {
  if (!session.ArchiveView) return {};
  return Refuse("Archive or Backup Data File",
                "You are viewing data from an Archive or Backup Data File which can be viewed, but cannot be "
                "modified.\n\nUse the Open Data File command in the File Menu to open a regular (non-archive, "
                "non-backup) Data File.");
}

}  // namespace vellumark
