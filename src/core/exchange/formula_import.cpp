#include "core/exchange/formula_import.h"

#include <fmt/format.h>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/exchange/formula_file.h"
#include "core/session/acts.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Import Formulas";

// True when the formulas that are here with another recipe are to be changed.
bool AskAboutDifferent(Session& session, const MergePlan& plan) {
  const std::size_t different = plan.Count(MergeMod::Different);
  return different > 0 &&
         session.prompt.Ask("Formula Comparison",
                            fmt::format("{} formula(s) of the file are in the {} Database with another recipe.\n\n"
                                        "Change them to the recipes of the file?",
                                        different, plan.target.database));
}

}  // namespace

Result<FormulaTable> ReadFormulas(const Session& session, const std::filesystem::path& path,
                                  std::optional<FormulaFormat> format) {
  return ReadFormulaFile(path, FileOptions(session, format));
}

Result<MergeTarget> AskTarget(Session& session, std::string_view typedName) {
  const std::string typed = Upper(TrimView(typedName));
  const std::string* name = typed.empty() ? nullptr : session.FindDatabase(typed);
  if (name == nullptr) return MergeTarget{.database = typed, .make = true};
  if (!session.prompt.Ask(std::string(kTitle),
                          fmt::format("Your Data File already contains a Database named {0}.\n\nDo you wish to merge "
                                      "the imported data into the {0} Database?",
                                      *name)))
    return Decline(std::string(kTitle), "txtDBName");
  return MergeTarget{.database = *name};
}

Result<void> AskUnit(Session& session, const FormulaTable& table, const MergeOptions& options) {
  if (!table.hasFigures || table.unit || options.sourceUnit != 0) return {};
  constexpr const char* kQuestion = "Inventory Unit";
  if (session.prompt.Ask(kQuestion,
                         fmt::format("{} does not tell the unit of its costs, emissions and quantities.\n\nAre they "
                                     "per {} as in this program?",
                                     table.source, UnitName(session.UMI))))
    return {};
  return Refuse(kQuestion, "Choose the inventory unit of the source.", "cmbUnit");
}

Result<MergeReport> ImportTable(Session& session, FormulaTable table, const ImportWish& wish) {
  if (auto allowed = RequireAct(session, Act::ImportFormulas); !allowed) return std::unexpected(allowed.error());
  auto plan = PlanMerge(session, std::move(table), wish.target, wish.options);
  if (!plan) return std::unexpected(plan.error());
  if (std::string refused = RefusedText(*plan); !refused.empty() && !wish.skipRefused)
    return Refuse(std::string(kTitle), std::move(refused), plan->table.source);
  if (auto unit = AskUnit(session, plan->table, wish.options); !unit) return std::unexpected(unit.error());
  if (auto chosen = Choose(*plan, wish.take.value_or(TakeWhat::All), wish.names); !chosen)
    return std::unexpected(chosen.error());
  if (!wish.take && !AskAboutDifferent(session, *plan))
    if (auto chosen = Choose(*plan, TakeWhat::New, wish.names); !chosen) return std::unexpected(chosen.error());
  return RunMerge(session, *plan);
}

Result<MergeReport> ImportFormulas(Session& session, const std::filesystem::path& path, const ImportWish& wish) {
  if (auto allowed = RequireAct(session, Act::ImportFormulas); !allowed) return std::unexpected(allowed.error());
  auto table = ReadFormulas(session, path);
  if (!table) return std::unexpected(table.error());
  return ImportTable(session, *std::move(table), wish);
}

}  // namespace vellumark
