#include "core/datafile/databases.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/writer.h"

namespace vellumark {

std::optional<std::string> DatabaseNameFault(const std::string& name) {
  if (CharCount(name) > kDatabaseNameLength)
    return fmt::format("The name {} is longer than {} characters.", name, kDatabaseNameLength);
  const auto allowed = [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' || c == '/' || c == '-';
  };
  if (!std::ranges::all_of(name, allowed))
    return fmt::format("The name {} may hold only letters from A to Z, digits, blanks, / and -.", name);
  if (name.starts_with("MSYS") || name == "SQLITE")
    return fmt::format("The name {} is kept for the program's own use.", name);
  return std::nullopt;
}

Result<std::string> NewDatabaseName(std::string_view typed, const std::vector<std::string>& existing,
                                    std::string_view dataFileName) {
  std::string name = Upper(TrimView(typed));
  if (name.empty())
    return Refuse("New Database - Database Name?", "Please enter a name for the new database.", "txtDBName");
  if (auto fault = DatabaseNameFault(name)) return Refuse("New Database - Database Name?", *fault, "txtDBName");
  if (std::ranges::any_of(existing, [&](const std::string& other) { return EqualNoCase(other, name); }))
    return Refuse("Database Already Exists",
                  fmt::format("The {} Database already exists in the {} Data File. Please select another name for your "
                              "Database.",
                              name, dataFileName),
                  "txtDBName");
  return name;
}

void CreateEmptyDatabase(Database& file, const std::string& name) {
  Transaction transaction(file);
  for (const Table* table : schema::PerDatabase()) file.CreateTable(TableName(name, *table), *table);
  InsertRow(file, schema::Info, TableName(name, schema::Info),
            {{"FullName", "Custom Database"}, {"Disclaimer", ""}, {"TradeMark", ""}, {"TemplateFile", ""}});
  std::vector<std::string> names = ReadFileInfo(file).dbList;
  names.push_back(name);
  StoreDatabaseList(file, names);
  transaction.Note({Change::Kind::DatabaseList, name, "", Change::What::Added, ""});
  transaction.Commit();
}

bool HoldsNoDatabase(Database& file) {
  if (!ReadFileInfo(file).dbList.empty()) return false;
  return std::ranges::none_of(file.TableNames(), [](const std::string& name) {
    return std::ranges::any_of(schema::PerDatabase(),
                               [&](const Table* table) { return name.ends_with(TableName("", *table)); });
  });
}

void StoreDatabaseList(Database& file, const std::vector<std::string>& names) {
  Transaction transaction(file);
  file.Prepare("UPDATE FileInfo SET DBList = ?").Bind(1, JoinMarked(names, '|')).Run();
  transaction.Commit();
}

void StoreCurrentDatabase(Database& file, std::string_view name) {
  Transaction transaction(file);
  file.Prepare("UPDATE FileInfo SET CurrentDB = ?").Bind(1, name).Run();
  transaction.Commit();
}

void StoreDaysToRemindBackup(Database& file, int days) {
  Transaction transaction(file);
  file.Prepare("UPDATE FileInfo SET DaysToRemindBackup = ?").Bind(1, days).Run();
  transaction.Commit();
}

BackupDates ReadBackupDates(Database& file) {
  Statement row =
      file.Prepare("SELECT LastBackupDate, DayBeforeNextBackupDate, DaysToRemindBackup FROM FileInfo LIMIT 1");
  if (!row.Step()) return {};
  return {row.Date(0), row.Date(1), std::max(1, static_cast<int>(row.Whole(2)))};
}

void StoreBackupDates(Database& file, const BackupDates& dates) {
  Transaction transaction(file);
  file.Prepare("UPDATE FileInfo SET LastBackupDate = ?, DayBeforeNextBackupDate = ?, DaysToRemindBackup = ?")
      .Bind(1, Value(dates.LastBackupDate))
      .Bind(2, Value(dates.DayBeforeNextBackupDate))
      .Bind(3, dates.DaysToRemindBackup)
      .Run();
  transaction.Commit();
}

DatabaseCounts CountRows(Database& file, std::string_view database) {
  const auto count = [&](const Table& table) {
    return file.Scalar("SELECT COUNT(*) FROM " + QuotedTable(database, table)).Whole();
  };
  return {count(schema::Basic), count(schema::Mix), count(schema::Batch)};
}

DatabaseInfo ReadDatabaseInfo(Database& file, std::string_view database) {
  Statement row = file.Prepare("SELECT FullName, Disclaimer, TradeMark, TemplateFile FROM " +
                               QuotedTable(database, schema::Info) + " LIMIT 1");
  if (!row.Step()) return {};
  return {row.Text(0), row.Text(1), row.Text(2), row.Text(3)};
}

}  // namespace vellumark
