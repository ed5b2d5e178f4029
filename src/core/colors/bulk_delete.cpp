#include "core/colors/bulk_delete.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/counted.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/colors/formula_tools.h"
#include "core/colors/stock_trace.h"
#include "core/datafile/references.h"
#include "core/session/acts.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Delete Master Formulas";

// The Database in the spelling of the file.
Result<std::string> ChosenDatabase(const Session& session, std::string_view database) {
  if (const std::string* found = session.FindDatabase(database)) return *found;
  return Refuse(std::string(kTitle), fmt::format("There is no Database {}.", database), "cmbDBList_Formulas");
}

Result<std::vector<MixColor>> Selected(const Session& session, const std::vector<std::string>& colors,
                                       const std::string& database) {
  if (colors.empty()) return Refuse(std::string(kTitle), "No Master Formulas selected.", "lstMixes");
  return SelectedFormulas(session, colors, database);
}

}  // namespace

Result<std::vector<DeletePreviewRow>> PreviewDeleteFormulas(Session& session, const std::vector<std::string>& colors,
                                                            std::string_view database) {
  const auto chosen = ChosenDatabase(session, database);
  if (!chosen) return std::unexpected(chosen.error());
  const auto formulas = Selected(session, colors, *chosen);
  if (!formulas) return std::unexpected(formulas.error());
  const auto inDesigns = ColorsInDesigns(session.File(), *chosen, ColorKind::Mix);
  std::vector<DeletePreviewRow> rows;
  for (const MixColor& mix : *formulas) {
    const bool used = inDesigns.contains(Upper(mix.Color_Name));
    rows.push_back({mix.Color_Name, !used, used ? "Color is used in a Job Design." : ""});
  }
  return rows;
}

Result<bool> DeleteFormulas(Session& session, const std::vector<std::string>& colors, std::string_view database) {
  if (auto allowed = RequireAct(session, Act::BulkFormulas); !allowed) return std::unexpected(allowed.error());
  const auto chosen = ChosenDatabase(session, database);
  if (!chosen) return std::unexpected(chosen.error());
  const auto formulas = Selected(session, colors, *chosen);
  if (!formulas) return std::unexpected(formulas.error());
  const auto inDesigns = ColorsInDesigns(session.File(), *chosen, ColorKind::Mix);
  for (const MixColor& mix : *formulas)
    if (inDesigns.contains(Upper(mix.Color_Name)))
      return Refuse("Additive Set Color",
                    fmt::format("{}: Color is used in a Job Design.\n\nRename color or modify Job Design before "
                                "deleting.",
                                mix.Color_Name));
  const Message question{"Confirm Delete",
                         fmt::format("OK to delete Master Formulas from database: {}\n\nSelected colors will be "
                                     "removed permanently.",
                                     *chosen),
                         Buttons::OkCancel, Icon::Question, Answer::Cancel};
  if (session.prompt.Show(question) != Answer::Ok) return false;

  {
    BulkSteps steps(session, "Deleting Master Formulas", formulas->size());
    Database& file = session.File();
    Transaction transaction(file);
    UndoStep step(session, Undoable::DeleteFormulas, "Delete " + Counted(formulas->size(), "Master Formula"));
    Statement row = file.Prepare("DELETE FROM " + session.QuotedTable(schema::Mix, *chosen) + " WHERE RowKey = ?");
    for (const MixColor& mix : *formulas) {
      GiveUpColorStock(session, ColorKind::Mix, *chosen, mix.Color_Name);
      row.Bind(1, mix.key).Run();
      transaction.Note({Change::Kind::Mix, *chosen, mix.Color_Name, Change::What::Deleted, ""});
      if (!steps.Next()) return BulkSteps::Stopped(std::string(kTitle));
    }
    step.Keep();
    transaction.Commit();
  }
  session.prompt.Tell("Master Formula Deletion", "The Selected Master Formulas have been deleted.");
  return true;
}

}  // namespace vellumark
