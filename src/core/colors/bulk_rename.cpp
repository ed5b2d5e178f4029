#include "core/colors/bulk_rename.h"

#include <fmt/format.h>

#include <map>

#include "core/base/counted.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/colors/basics.h"
#include "core/colors/formula_tools.h"
#include "core/colors/formulas.h"
#include "core/colors/guides.h"
#include "core/colors/names.h"
#include "core/colors/rename.h"
#include "core/session/acts.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Database Color Rename";

bool OnFile(const Session& session, ColorKind kind, std::string_view name) {
  return kind == ColorKind::Mix ? MixColorExists(session, name) : BasicColorExists(session, name);
}

std::string NameOnFile(const Session& session, ColorKind kind, std::string_view name) {
  return session.File()
      .Scalar(fmt::format("SELECT Color_Name FROM {} WHERE Color_Name = ? ORDER BY RowKey LIMIT 1",
                          session.QuotedTable(ColorTable(kind))),
              {name})
      .Text();
}

// Every occurrence, in any case.
std::string Replaced(std::string_view name, std::string_view find, std::string_view replacement) {
  std::string replaced;
  for (std::size_t at = FindNoCase(name, find); at != std::string_view::npos; at = FindNoCase(name, find)) {
    replaced.append(name.substr(0, at)).append(replacement);
    name.remove_prefix(at + find.size());
  }
  return replaced.append(name);
}

// What the rule alone makes of a name. What comes before that of a guide's formula stands behind "PANTONE ".
std::string ChangedName(const Session& session, const BulkRename& rule, const std::string& name) {
  switch (rule.change) {
    case NameChange::Prefix:
      if (rule.kind == ColorKind::Mix && HasPantonePrefix(name) && IsPantoneBookMix(session, name))
        return Upper(std::string(kPantonePrefix) + Trim(rule.text + StripPantonePrefix(name)));
      return Upper(Trim(rule.text + name));
    case NameChange::Suffix:
      return Upper(Trim(name + rule.text));
    case NameChange::Replace:
      break;
  }
  return Upper(Trim(Replaced(name, rule.text, rule.replacement)));
}

Result<void> CheckRule(const Session& session, const BulkRename& rule, const std::vector<std::string>& colors) {
  if (auto some = RequireColorsToRename(session, rule.kind); !some) return some;
  if (colors.empty()) return Refuse("Select Color", "No colors selected for renaming.");
  if (rule.change == NameChange::Prefix && FindNoCase(rule.text, "PANTONE") != std::string::npos)
    return Refuse("Bad Prefix", "PANTONE cannot be used for a prefix", "txtPrefix");
  const std::string field = rule.change == NameChange::Prefix   ? "txtPrefix"
                            : rule.change == NameChange::Suffix ? "txtSuffix"
                                                                : "txtFind";
  if (rule.change == NameChange::Replace ? rule.text.empty() : TrimView(rule.text).empty())
    return Refuse("Enter Rename Data", "No data has been entered for renameing procedure.", field);
  // What is to be found stands in names already; only what is put into them must be fit for a name.
  const bool replaces = rule.change == NameChange::Replace;
  return CheckTypedPiece(replaces ? rule.replacement : rule.text, replaces ? "txtReplace" : field);
}

// Why the new name cannot be had, as far as it concerns this colour alone. `changed` is what the rule made of it.
std::string ReasonAgainst(const Session& session, const BulkRename& rule, const RenamePreviewRow& row,
                          const std::string& changed) {
  const std::string& name = row.Color_Name;
  if (rule.change == NameChange::Replace && FindNoCase(name, rule.text) == std::string::npos)
    return "Find string not found in name";
  if (changed.empty()) return "Rename leaves no name";
  if (HasPantonePrefix(changed) && !HasPantonePrefix(name)) return "New name cannot begin with word PANTONE";
  if (auto valid = CheckTypedPiece(changed, {}, name); !valid) return valid.error().text;
  if (CharCount(row.newName) > static_cast<std::size_t>(session.NameLength))
    return fmt::format("New name exceeds {} characters", session.NameLength);
  return {};
}

Result<std::vector<RenamePreviewRow>> Judge(Session& session, const BulkRename& rule,
                                            const std::vector<std::string>& colors) {
  const std::vector<std::string> names = DistinctNames(colors);
  BulkSteps steps(session, "Preparing Preview Results ...", 2 * names.size());
  std::vector<RenamePreviewRow> rows;
  std::map<std::string, int> uses;
  for (const std::string& typed : names) {
    const std::string name = NameOnFile(session, rule.kind, typed);
    if (name.empty()) return Refuse("Color Not Found", typed + " is not found in this database.", "Color_Name");
    const std::string changed = ChangedName(session, rule, name);
    RenamePreviewRow row{name, changed, {}, false};
    if (rule.kind == ColorKind::Mix && !changed.empty()) row.newName = WithBookPrefix(session, name, changed);
    row.reason = ReasonAgainst(session, rule, row, changed);
    if (row.reason.empty()) ++uses[row.newName];
    rows.push_back(std::move(row));
    if (!steps.Next()) return BulkSteps::Stopped(std::string(kTitle));
  }
  for (RenamePreviewRow& row : rows) {
    if (!steps.Next()) return BulkSteps::Stopped(std::string(kTitle));
    if (!row.reason.empty()) continue;
    if (uses[row.newName] > 1 || OnFile(session, rule.kind, row.newName))
      row.reason = "Rename creates duplicate color name reference";
    row.renames = row.reason.empty();
  }
  return rows;
}

}  // namespace

Result<void> RequireColorsToRename(const Session& session, ColorKind kind) {
  const std::string table = session.QuotedTable(ColorTable(kind));
  if (!session.File().Scalar("SELECT 1 FROM " + table + " LIMIT 1").IsNull()) return {};
  return Refuse("Database - Rename Colors", "There are no colors to rename.", "optType");
}

Result<std::vector<RenamePreviewRow>> PreviewRename(Session& session, const BulkRename& rule,
                                                    const std::vector<std::string>& colors) {
  if (auto fit = CheckRule(session, rule, colors); !fit) return std::unexpected(fit.error());
  return Judge(session, rule, colors);
}

Result<bool> ApplyRename(Session& session, const BulkRename& rule, const std::vector<std::string>& colors) {
  const Act act = rule.kind == ColorKind::Mix ? Act::BulkFormulas : Act::FormulaTools;
  if (auto allowed = RequireAct(session, act); !allowed) return std::unexpected(allowed.error());
  const auto rows = PreviewRename(session, rule, colors);
  if (!rows) return std::unexpected(rows.error());
  for (const RenamePreviewRow& row : *rows)
    if (!row.renames) return Refuse(std::string(kTitle), fmt::format("{}: {}", row.Color_Name, row.reason));
  const Message question{std::string(kTitle),
                         fmt::format("You are about to rename {} colors in the {} Database.\n\nClick OK to continue.",
                                     rows->size(), session.CurrentDatabase),
                         Buttons::OkCancel, Icon::Question, Answer::Ok};
  if (session.prompt.Show(question) != Answer::Ok) return false;

  std::vector<Renaming> names;
  for (const RenamePreviewRow& row : *rows) names.push_back({row.Color_Name, row.newName});
  ProgressRun run(session.progress, "Modifing Name ...");
  Transaction transaction(session.File());
  UndoStep step(session, rule.kind == ColorKind::Mix ? Undoable::RenameMixes : Undoable::RenameBasics,
                "Rename " + Counted(names.size(), "color"));
  const bool whole = RenameAllChecked(session, transaction, rule.kind, names, [&](double percent) {
    session.progress.Percent(percent);
    return !session.progress.Cancelled();
  });
  if (!whole) return BulkSteps::Stopped(std::string(kTitle));
  step.Keep();
  transaction.Commit();
  return true;
}

}  // namespace vellumark
