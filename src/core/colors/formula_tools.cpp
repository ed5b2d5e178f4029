#include "core/colors/formula_tools.h"

#include <fmt/format.h>

#include <unordered_set>

#include "core/base/text.h"
#include "core/session/acts.h"

namespace vellumark {

Result<void> RequireTools(const Session& session) {
  return RequireAct(session, Act::FormulaTools);
}

std::vector<std::string> DistinctNames(const std::vector<std::string>& names) {
  std::unordered_set<std::string> seen;
  std::vector<std::string> distinct;
  for (const std::string& name : names)
    if (seen.insert(Upper(name)).second) distinct.push_back(name);
  return distinct;
}

Result<std::vector<MixColor>> SelectedFormulas(const Session& session, const std::vector<std::string>& names,
                                               std::string_view database) {
  std::vector<MixColor> formulas;
  for (const std::string& name : DistinctNames(names)) {
    auto mix = ReadMix(session, name, database);
    if (!mix) return Refuse("Color Not Found", name + " is not found in this database.", "Color_Name");
    formulas.push_back(*std::move(mix));
  }
  return formulas;
}

std::vector<ListedColor> ListColors(const Session& session, ColorKind kind, std::string_view database) {
  std::vector<ListedColor> colors;
  Statement row = session.File().Prepare(fmt::format("SELECT RowKey, Color_Name FROM {} ORDER BY Color_Name",
                                                     session.QuotedTable(ColorTable(kind), database)));
  while (row.Step()) colors.push_back({row.Whole(0), row.Text(1)});
  return colors;
}

const AdditiveSet* AdditiveSetsOnFile::Find(const std::string& name) {
  if (name.empty()) return nullptr;
  const auto [known, isNew] = sets_.try_emplace(Upper(name));
  if (isNew) known->second = ReadAdditiveSet(session_, name);
  return known->second ? &*known->second : nullptr;
}

bool BulkSteps::Next() {
  run_.Step(++done_, all_);
  return !session_.progress.Cancelled();
}

std::unexpected<Refusal> BulkSteps::Stopped(std::string title) {
  return Refuse(std::move(title), "The work was cancelled. Nothing was changed.");
}

}  // namespace vellumark
