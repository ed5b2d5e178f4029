#include <fmt/format.h>

#include <filesystem>
#include <system_error>

#include "core/backup/check_run.h"
#include "core/base/text.h"
#include "core/datafile/references.h"
#include "core/jobs/design_uses.h"
#include "core/jobs/designs.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

bool IsThere(const fs::path& folder, const std::string& name) {
  std::error_code error;
  if (fs::is_regular_file(folder / name, error)) return true;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    if (EqualNoCase(entry->path().filename().string(), name)) return true;
  return false;
}

}  // namespace

void CheckDesignPhotos(CheckRun& run) {
  if (!run.HasGlobalTables()) return;
  // A copy of the file that stands elsewhere has no photos beside it, which is no fault of its rows.
  const fs::path folder = run.file.Path().parent_path() / "DesignPhotos";
  std::error_code error;
  const bool hasFolder = fs::is_directory(folder, error);
  Statement rows =
      run.file.Prepare("SELECT RowKey, DesignID, PhotoSet FROM Designs WHERE PhotoSet <> '' ORDER BY DesignID");
  while (rows.Step()) {
    const std::vector<std::string> names = NamesInSet(rows.TextView(2));
    const auto fault = [&](std::string what) {
      run.Found(schema::Designs.name, rows.Whole(0), rows.TextView(1), std::move(what));
    };
    if (NameSet(names) != rows.TextView(2)) fault(fmt::format("PhotoSet {} is no list of photos.", rows.TextView(2)));
    for (std::size_t i = 0; i < names.size(); ++i) {
      for (std::size_t k = 0; k < i; ++k)
        if (EqualNoCase(names[i], names[k])) fault(fmt::format("It links the photo {} twice.", names[i]));
      if (hasFolder && !IsThere(folder, names[i])) fault(fmt::format("Its photo {} is not in the library.", names[i]));
    }
  }
}

void CheckDesignColors(CheckRun& run) {
  if (!run.HasGlobalTables()) return;
  ForEachDesign(run.session, [&](const Design& design) {
    const auto fault = [&](std::string what) {
      run.Found(schema::Designs.name, design.key, design.DesignID, std::move(what));
    };
    bool ended = false;
    for (const DesignColor& slot : design.slots) {
      if (slot.IngName.empty()) {
        ended = true;
        continue;
      }
      if (ended) fault(fmt::format("{} stands behind an empty slot.", slot.IngName));
      if (slot.IngQty < 0) fault(fmt::format("{} has the quantity {}.", slot.IngName, FigureText(slot.IngQty)));
      if (slot.IngPercent < 0 || slot.IngPercent > 100)
        fault(fmt::format("{} covers {} percent.", slot.IngName, slot.IngPercent));
    }
    return true;
  });
}

void CheckDesignUses(CheckRun& run) {
  if (!run.HasGlobalTables()) return;
  Statement rows = run.file.Prepare(
      fmt::format("SELECT RowKey, DesignID, LastUsed, Latest FROM (SELECT RowKey, DesignID, LastUsed, (SELECT "
                  "MAX(Date_Entered) FROM {} WHERE Uses.DesignID = Designs.DesignID) AS Latest FROM Designs) AS Used WHERE "
                  "COALESCE(LastUsed, '') <> COALESCE(Latest, '') ORDER BY DesignID",
                  DesignUses(run.file)));
  run.FoundRows(schema::Designs.name, rows, [](const Statement& row) {
    const auto date = [&](int column) { return row.Get(column).IsNull() ? std::string("never") : row.Text(column); };
    return fmt::format("It says that it was last used {}, and its jobs say {}.", date(2), date(3));
  });
}

}  // namespace vellumark
