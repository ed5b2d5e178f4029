#include "core/batch/dispensers.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "core/base/text.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

namespace fs = std::filesystem;

constexpr std::array<DispenserFormat, 6> kFormats{
    {{"FGI", ".txt"}, {"SPK", ".txt"}, {"JSON txt", ".txt"}, {"JSON", ".json"}, {"NFL", ".dat"}, {"XNI", ".csv"}}};
constexpr std::string_view kColumns = "Name, Manufacturer, Drive, Pathway, FileType, Additives, Recycles";

int WidthOf(std::string_view field) {
  return schema::Dispenser.fields.at(static_cast<std::size_t>(schema::Dispenser.Find(field))).size;
}

DispenserRow RowOf(const Statement& row) {
  return {row.Text(0), row.Text(1), row.Text(2), row.Text(3), row.Text(4), row.Bool(5), row.Bool(6)};
}

bool IsFolder(const std::string& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

std::unexpected<Refusal> FolderMissing() {
  return Refuse("Dispenser Folder Missing", "This Dispenser folder no longer exists.", "lblDispenserPathway");
}

}  // namespace

std::span<const DispenserFormat> DispenserFormats() {
  return kFormats;
}

std::vector<DispenserRow> ReadDispensers(const Session& session) {
  std::vector<DispenserRow> rows;
  Statement row = session.File().Prepare(fmt::format("SELECT {} FROM Dispenser ORDER BY Name, RowKey", kColumns));
  while (row.Step()) rows.push_back(RowOf(row));
  return rows;
}

std::optional<DispenserRow> ReadDispenser(const Session& session, std::string_view name) {
  // Names are raised when they are given; the file itself raises no letter beyond ASCII.
  Statement row = session.File().Prepare(
      fmt::format("SELECT {} FROM Dispenser WHERE Name IN (?1, ?2) ORDER BY Name <> ?1, RowKey LIMIT 1", kColumns));
  const std::string typed = Trim(name);
  if (!row.Bind(1, typed).Bind(2, Upper(typed)).Step()) return std::nullopt;
  return RowOf(row);
}

ListTable ListDispensers(const Session& session) {
  using R = DispenserRow;
  TableOf<R> table;
  table.Add("Name", &R::Name, "Dispenser")
      .Add("Manufacturer", &R::Manufacturer, "Manufacturer / File Type")
      .Add("FileType", &R::FileType, "File")
      .Add("Drive", &R::Drive, "Drive")
      .Add("Pathway", &R::Pathway, "Location")
      .Add("Additives", &R::Additives, "Additives")
      .Add("Recycles", &R::Recycles, "Recycles")
      .Show({"Dispenser", "Manufacturer / File Type", "Drive", "Location"});
  return table.Of(ReadDispensers(session));
}

Result<void> AddDispenser(Session& session, std::string_view typed, std::string_view format, std::string_view folder) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  const std::string name = Upper(TrimView(typed));
  if (name.empty()) return Refuse("No Dispenser Name", "Enter a Dispenser name.", "DispenserName");
  if (CharCount(name) > static_cast<std::size_t>(WidthOf("Name")))
    return Refuse("No Dispenser Name", fmt::format("A name has at most {} characters.", WidthOf("Name")),
                  "DispenserName");
  if (ReadDispenser(session, name))
    return Refuse("Duplicate Name", "Dispenser name already exists.", "DispenserName");
  const auto kind = std::ranges::find_if(kFormats, [&](const auto& one) { return EqualNoCase(one.code, format); });
  if (kind == kFormats.end())
    return Refuse("New Dispenser", fmt::format("{} is no format of a dispenser.", format), "cmbDispManufacturer");
  std::error_code error;
  const fs::path path = fs::absolute(fs::path(folder), error);
  if (folder.empty() || error || !fs::is_directory(path, error)) {
    Refusal missing = FolderMissing().error();
    missing.field = "Pathway";
    return std::unexpected(missing);
  }
  // Cut to what the field holds it would be another folder's path.
  if (CharCount(path.string()) > static_cast<std::size_t>(WidthOf("Pathway")))
    return Refuse("New Dispenser", fmt::format("The path of the folder has more than {} characters.", WidthOf("Pathway")),
                  "Pathway");
  Transaction transaction(session.File());
  InsertRow(session.File(), schema::Dispenser, schema::Dispenser.name,
            {{"Name", name},
             {"Manufacturer", std::string(kind->code)},
             {"Drive", Left(path.root_path().string(), static_cast<std::size_t>(WidthOf("Drive")))},
             {"Pathway", path.string()},
             {"FileType", std::string(kind->extension)},
             {"Additives", false},
             {"Recycles", false}});
  transaction.Note({Change::Kind::Settings, "", "", Change::What::All, ""});
  transaction.Commit();
  session.prompt.Tell("New Dispenser", "Dispenser Saved.", Icon::Information);
  return {};
}

Result<void> RemoveDispensers(Session& session, const std::vector<std::string>& names) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  std::vector<std::string> there;
  for (const std::string& name : names) {
    const auto dispenser = ReadDispenser(session, name);
    if (!dispenser) return Refuse("Remove Dispenser", fmt::format("There is no dispenser {}.", name), "lstDispenser");
    there.push_back(dispenser->Name);
  }
  if (names.empty()) return Refuse("Remove Dispenser", "Check the dispensers that are to be removed.", "lstDispenser");
  Transaction transaction(session.File());
  Statement remove = session.File().Prepare("DELETE FROM Dispenser WHERE Name = ?");
  for (const std::string& name : there) {
    remove.Reset();
    remove.Bind(1, name).Run();
  }
  transaction.Note({Change::Kind::Settings, "", "", Change::What::All, ""});
  transaction.Commit();
  session.prompt.Tell("Remove Dispenser", "Dispenser(s) Removed", Icon::Information);
  return {};
}

void StoreDispenserChoice(Session& session, std::string_view name, bool additives, bool recycles) {
  if (!RequireWritable(session)) return;
  Transaction transaction(session.File());
  session.File()
      .Prepare("UPDATE Dispenser SET Additives = ?1, Recycles = ?2 WHERE Name = ?3")
      .Bind(1, additives ? 1 : 0)
      .Bind(2, recycles ? 1 : 0)
      .Bind(3, name)
      .Run();
  transaction.Note({Change::Kind::Settings, "", "", Change::What::All, ""});
  transaction.Commit();
}

Result<void> CheckDispenserFolder(const DispenserRow& dispenser) {
  if (IsFolder(dispenser.Pathway)) return {};
  return FolderMissing();
}

Result<void> CheckAnyDispenser(const Session& session) {
  if (!ReadDispensers(session).empty()) return {};
  return Refuse("Add a Dispenser", "No Dispenser, add a dispenser.", "DispenserName");
}

}  // namespace vellumark
