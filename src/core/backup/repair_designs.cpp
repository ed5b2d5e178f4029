#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "core/backup/repair_run.h"
#include "core/datafile/references.h"
#include "core/datafile/writer.h"
#include "core/jobs/design_uses.h"
#include "core/jobs/designs.h"
#include "core/jobs/photo_library.h"

// The steps that mend Designs and the library of their photos.

namespace vellumark {
namespace fs = std::filesystem;

// A Design was last used when the latest of its Job Records was entered: one that no job has used has no such date.
void MendDesigns(RepairRun& run) {
  run.Show("Updating Data Fields - Designs Table");
  const std::string& table = schema::Designs.name;
  RenameRepeated(run, table, schema::Designs, "DesignID",
                 [](const std::string&, int number) { return fmt::format("Rebuilt Name {:02}", number); });
  std::vector<std::pair<std::int64_t, Value>> dates;
  Statement used = run.file.Prepare(fmt::format(
      "SELECT RowKey, Latest FROM (SELECT RowKey, LastUsed, (SELECT MAX(Date_Entered) FROM {} WHERE Uses.DesignID = "
      "Designs.DesignID) AS Latest FROM Designs) AS Used WHERE COALESCE(LastUsed, '') <> COALESCE(Latest, '')",
      DesignUses(run.file)));
  while (used.Step()) dates.emplace_back(used.Whole(0), used.Get(1));
  for (const auto& [key, date] : dates) UpdateRow(run.file, schema::Designs, table, key, {{"LastUsed", date}});
  if (!dates.empty()) run.Changed(table, "LastUsed is that of the latest Job Record", std::ssize(dates));
}

void MendDesignColors(RepairRun& run) {
  run.Show("Updating Ingredient List - Designs Table");
  const std::string& table = schema::Designs.name;
  std::vector<Design> changed;
  ForEachDesign(run.session, [&](const Design& stored) {
    Design design = stored;
    std::vector<DesignColor> colors;
    for (const DesignColor& slot : stored.slots)
      if (!slot.IngName.empty()) colors.push_back(slot);
    design.SetColors(colors);
    const auto name = [](const DesignColor& slot) { return slot.IngName; };
    const bool closed = std::ranges::equal(design.slots, stored.slots, {}, name, name);
    if (!closed || design.IngSet != stored.IngSet) changed.push_back(std::move(design));
    return true;
  });
  for (const Design& design : changed) WriteDesign(run.session, design);
  if (!changed.empty()) run.Changed(table, "IngSet was rebuilt from the ingredients", std::ssize(changed));
}

namespace {

// The links without those to files that are not there, each once.
std::vector<std::string> SoundLinks(const std::vector<std::string>& links, const std::vector<std::string>& library) {
  std::vector<std::string> sound;
  for (const std::string& link : links)
    if (ContainsPhoto(library, link) && !ContainsPhoto(sound, link)) sound.push_back(link);
  return sound;
}

}  // namespace

void MendPhotos(RepairRun& run) {
  run.Show("Updating PhotoSet - Designs Table");
  RunPhotoSteps(run.session);  // what a program that died left to do
  const std::string& table = schema::Designs.name;
  const fs::path folder = PhotoFolder(run.session);
  std::error_code error;
  run.photosToMove.clear();
  if (!fs::is_directory(folder, error)) {
    if (!run.file.Scalar("SELECT 1 FROM Designs WHERE PhotoSet <> '' LIMIT 1").IsNull())
      run.Left(table, fmt::format("{} is not there: the links to photos stay", folder.string()));
    return;
  }
  const std::vector<std::string> library = LibraryPhotos(run.session);
  std::vector<std::pair<std::int64_t, std::string>> changed;
  Statement rows = run.file.Prepare("SELECT RowKey, DesignID, PhotoSet FROM Designs WHERE PhotoSet <> ''");
  std::vector<std::string> named;
  while (rows.Step()) {
    const std::vector<std::string> links = SoundLinks(NamesInSet(rows.TextView(2)), library);
    named.insert(named.end(), links.begin(), links.end());
    const std::string set = NameSet(links);
    if (set == rows.TextView(2)) continue;
    changed.emplace_back(rows.Whole(0), set);
    run.Changed(table, fmt::format("{}: PhotoSet was {} and is {} now", rows.TextView(1), rows.TextView(2),
                                   set.empty() ? "empty" : set));
  }
  for (const auto& [row, set] : changed) WritePhotoSet(run.session, row, set);
  run.Show("Updating Design Photo Library");
  std::ranges::sort(named, [](const auto& a, const auto& b) { return CompareNoCase(a, b) < 0; });
  for (const std::string& photo : library) {
    const bool links =
        std::ranges::binary_search(named, photo, [](const auto& a, const auto& b) { return CompareNoCase(a, b) < 0; });
    if (links || !DataFilesWithPhoto(run.session, photo).empty()) continue;
    run.photosToMove.push_back(folder / photo);
    run.Changed("", fmt::format("the photo {} is named by no Design and was moved to the copy", photo));
  }
}

}  // namespace vellumark
