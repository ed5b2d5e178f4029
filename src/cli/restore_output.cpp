#include "cli/restore_output.h"

#include <fmt/format.h>

#include "cli/upgrade_output.h"
#include "core/base/counted.h"

namespace vellumark::cli {
namespace {

Json PostingsJson(const std::vector<MadeSince::Posting>& postings) {
  Json list = Json::array();
  for (const MadeSince::Posting& posting : postings)
    list.push_back({{"Moment", posting.Moment},
                    {"Color_Name", posting.Color_Name},
                    {"LotNumber", posting.LotNumber},
                    {"Change", Number(posting.Change)},
                    {"Document", posting.Document}});
  return list;
}

std::string PostingsText(const MadeSince& since) {
  using Posting = MadeSince::Posting;
  if (since.postings.empty()) return {};
  TableOf<Posting> table;
  table.Add("Moment", &Posting::Moment)
      .Add("Color_Name", &Posting::Color_Name, "Color Name")
      .Add("LotNumber", &Posting::LotNumber, "Lot Number")
      .Add("Change", &Posting::Change, {}, Format::Amount)
      .Add("Document", &Posting::Document);
  return fmt::format("\nChanges of stock, {}\n{}", since.database, TableText(table.Of(since.postings)));
}

Json SinceJson(const std::vector<MadeSince>& all) {
  Json list = Json::array();
  for (const MadeSince& since : all)
    list.push_back({{"Database", since.database.empty() ? Json() : Json(since.database)},
                    {"Whole", since.whole ? CountsJson(*since.whole) : Json()},
                    {"Batches", since.batches},
                    {"Formulas", since.formulas},
                    {"Changed", since.changed},
                    {"Basics", since.basics},
                    {"AdditiveSets", since.additiveSets},
                    {"Designs", since.designs},
                    {"Jobs", since.jobs},
                    {"Postings", PostingsJson(since.postings)}});
  return list;
}

}  // namespace

Json CountsJson(const DatabaseProof& database) {
  return {{"Basics", database.basics}, {"Formulas", database.formulas}, {"Batches", database.batches}};
}

Json RestoredJson(const RestoredDataFile& restored) {
  return {{"Kept", restored.kept.empty() ? Json() : Json(restored.kept.string())},
          {"Photos", restored.hadPhotoFolder ? Json(restored.photos.size()) : Json()},
          {"Notes", restored.notes},
          {"Updated", restored.updated ? UpgradeJson(*restored.updated) : Json()},
          {"Since", SinceJson(restored.since)}};
}

std::string RestoredText(const RestoredDataFile& restored) {
  std::string text;
  if (!restored.kept.empty()) text += fmt::format("What it replaced is kept in {}\n", restored.kept.string());
  if (restored.hadPhotoFolder) text += fmt::format("{} came with it.\n", Counted(restored.photos.size(), "photo"));
  for (const std::string& note : restored.notes) text += note + "\n";
  if (restored.updated) text += "\n" + UpgradeText(*restored.updated);
  if (!restored.since.empty())
    text += fmt::format("\nWhat had been made since, and is not in this file any more:{}\n", MadeSinceText(restored.since));
  for (const MadeSince& since : restored.since) text += PostingsText(since);
  return text;
}

}  // namespace vellumark::cli
