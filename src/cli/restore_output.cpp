#include "cli/restore_output.h"

#include "cli/upgrade_output.h"

namespace vellumark::cli {
namespace {

Json PostingsJson(const std::vector<MadeSince::Posting>& postings) {
  Json list = Json::array();
  for (const MadeSince::Posting& posting : postings)
    list.push_back({{"Moment", posting.Moment},
                    {"Color_Name", posting.Color_Name},
                    {"LotNumber", posting.LotNumber},
                    {"Change", posting.Change},
                    {"Document", posting.Document}});
  return list;
}

Json SinceJson(const std::vector<MadeSince>& all) {
  Json list = Json::array();
  for (const MadeSince& since : all)
    list.push_back({{"Database", since.database},
                    {"Batches", since.batches},
                    {"Formulas", since.formulas},
                    {"Changed", since.changed},
                    {"Jobs", since.jobs},
                    {"Postings", PostingsJson(since.postings)}});
  return list;
}

}  // namespace

Json RestoredJson(const RestoredDataFile& restored) {
  return {{"Kept", restored.kept.empty() ? Json() : Json(restored.kept.string())},
          {"Photos", restored.hadPhotoFolder ? Json(restored.photos.size()) : Json()},
          {"Notes", restored.notes},
          {"Updated", restored.updated ? UpgradeJson(*restored.updated) : Json()},
          {"Since", SinceJson(restored.since)}};
}

}  // namespace vellumark::cli
