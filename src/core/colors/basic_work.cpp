#include "core/colors/basic_work.h"

#include <fmt/format.h>

#include <cmath>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/colors/formulas.h"
#include "core/colors/names.h"
#include "core/colors/rollup.h"
#include "core/colors/stock_trace.h"
#include "core/datafile/references.h"
#include "core/datafile/writer.h"
#include "core/session/acts.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kNewItemTitle = "Basics / Additives - New Item";

std::optional<BasicDeleteRefusal> DeleteHindrance(const Session& session, const std::string& name) {
  const auto refusal = [](std::string title, std::string text) {
    BasicDeleteRefusal refused;
    refused.title = std::move(title);
    refused.text = std::move(text);
    return refused;
  };
  if (auto requiring = FormulasUsing(session, name); !requiring.empty()) {
    BasicDeleteRefusal refused =
        refusal("Basic / Additive  cannot be deleted.", "Master Formulas require this ingredient.");
    refused.requiredBy = std::move(requiring);
    return refused;
  }
  const Value set = session.File().Scalar(
      fmt::format("SELECT 1 FROM {} WHERE SetList LIKE ? ESCAPE '\\' LIMIT 1", session.QuotedTable(schema::Additives)),
      {NameSetPattern(name)});
  if (!set.IsNull())
    return refusal("Additive Set Color",
                   "Basic / Additive is used in an Additive Set.\n\nModify Additive Set before deleting.");
  if (UsedByDesign(session.File(), session.CurrentDatabase, ColorKind::Basic, name))
    return refusal("Additive Set Color",
                   "Basic / Additive is used in a Job Design.\n\nModify Job Design before deleting.");
  return std::nullopt;
}

}  // namespace

Result<void> CheckNewBasicName(const Session& session, const std::string& name, std::string_view field) {
  if (!MayDo(session, Act::AddBasics))
    return Refuse("Color Not Found",
                  name +
                      " is not found in this database, and you do not\nhave permission to add a new Basic Color or "
                      "Additive to the database.",
                  std::string(field));
  if (auto valid = CheckNewName(name, NameSource::Typed, session.NameLength, field); !valid)
    // What a book spells, its names may hold.
    if (!IsPantoneBookBasic(session, name)) return valid;
  if (HasPantonePrefix(name) && !IsPantoneBookBasic(session, name))
    return Refuse("Basics / Additives - Invalid Name", "Color name cannot begin with the word PANTONE.",
                  std::string(field));
  return {};
}

bool AskNewBasic(Session& session, const std::string& name) {
  const std::string text =
      MixColorExists(session, name)
          ? fmt::format(
                "A Master Formula {0} already exists in the {1} database.\n\nWould you like to also add a Basic "
                "Color {0} to the database?",
                name, session.CurrentDatabase)
          : fmt::format(
                "This Basic / Additive is not found in the {} database.\n\nWould you like to enter this item "
                "into the database?",
                session.CurrentDatabase);
  return session.prompt.Ask(std::string(kNewItemTitle), text);
}

Result<NameEntry> EnterBasicName(Session& session, std::string_view typed) {
  const std::string name = StoredName(session, ColorKind::Basic, ReadName(session, typed));
  if (name.empty()) return NameEntry{};
  if (const auto color = ReadBasic(session, name)) return NameEntry{NameEntry::Kind::Found, color->Color_Name};
  if (auto allowed = CheckNewBasicName(session, name); !allowed) return std::unexpected(allowed.error());
  if (!AskNewBasic(session, name)) return NameEntry{NameEntry::Kind::Abandoned, name};
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  return NameEntry{NameEntry::Kind::New, name};
}

BasicWork NewBasicWork(const Session& session, std::string name) {
  BasicColor color;
  color.Color_Name = std::move(name);
  return LoadBasicWork(session, color);
}

BasicWork LoadBasicWork(const Session& session, const BasicColor& color) {
  BasicWork work{color, {}, {}};
  ShowFigures(session, BasicFields(), work);
  return work;
}

UnfinishedWork AskUnfinishedWork(Session& session, std::string_view adjustText, bool measurementFilled) {
  const auto adjust = ParseNumber(adjustText);
  if (adjust && *adjust != 0 &&
      session.prompt.Ask("Inventory Calculation",
                         "Unfinished inventory calculation.\nWould you like to complete the work?"))
    return UnfinishedWork::Inventory;
  if (measurementFilled &&
      session.prompt.Ask("Unfinished l-a-b Entry", "Unfinished l-a-b entry.\nWould you like complete the work?"))
    return UnfinishedWork::Measurement;
  return UnfinishedWork::None;
}

Result<void> RequireFreeOfAdditiveSets(const Session& session, std::string_view name) {
  if (!UsedByAdditiveSet(session, name)) return {};
  return Refuse("Ingredient used in Additive Set.",
                "This ingredient is used in an Additive Set(s).\n\nIt cannot be unchecked until it has been removed "
                "from all Additive Sets.",
                "Additive");
}

namespace {

// What the row holds now against what it will hold. The fields as loaded do not tell: they show fewer decimals, and the
// row may have changed since.
RollUpWanted StaleAfter(const Session& session, const BasicWork& work, const BasicColor& after) {
  BasicColor before;
  if (work.key == 0) {
    if (FormulaRowsUsing(session, work.Color_Name).empty()) return {};
  } else {
    Statement row = session.File().Prepare(
        fmt::format("SELECT PurchaseCost, VOC, HAP FROM {} WHERE RowKey = ?", session.QuotedTable(schema::Basic)));
    if (row.Bind(1, work.key).Step()) {
      before.PurchaseCost = row.Single(0);
      before.VOC = row.Single(1);
      before.HAP = row.Single(2);
    }
  }
  return {before.PurchaseCost != after.PurchaseCost, before.VOC != after.VOC, before.HAP != after.HAP};
}

}  // namespace

Result<void> SaveBasic(Session& session, BasicWork& work) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  auto color = ReadTyped(session, BasicFields(), work);
  if (!color) return std::unexpected(color.error());
  const bool isNew = work.key == 0;
  if (isNew && BasicColorExists(session, work.Color_Name))
    return Refuse("Basic Color Name Exists", "This Basic Color already exists.", "Color_Name");
  if (!isNew && !work.Additive)
    if (auto free = RequireFreeOfAdditiveSets(session, work.Color_Name); !free) return free;

  if (isNew) {
    color->Date_Entered = session.clock.Today();
    color->book = BookDataOfBasic(session, work.Color_Name);
    color->IngSort = NextIngSort(session);
  }
  const std::string table = session.Table(schema::Basic);
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::SaveBasic, fmt::format("{} {}", isNew ? "Add" : "Change", work.Color_Name));
  const RollUpWanted stale = StaleAfter(session, work, *color);
  if (isNew) {
    InsertRow(session.File(), schema::Basic, table, BasicFields().Cells(*color, kNewRowUses));
  } else if (!UpdateRow(session.File(), schema::Basic, table, work.key, BasicFields().Cells(*color, kSavedUses))) {
    return Refuse("Color Not Found", fmt::format("{} is not found in this database.", work.Color_Name), "Color_Name");
  }
  transaction.Note({Change::Kind::Basic, session.CurrentDatabase, work.Color_Name,
                    isNew ? Change::What::Added : Change::What::Updated, ""});
  MarkRollUpsStale(session, stale);
  step.Keep();
  transaction.Commit();
  work = LoadBasicWork(session, ReadBasic(session, work.Color_Name).value());
  return {};
}

std::expected<bool, BasicDeleteRefusal> DeleteBasic(Session& session, const std::string& name) {
  const auto refused = [](const Refusal& refusal) { return std::unexpected(BasicDeleteRefusal{refusal, {}}); };
  if (const auto writable = RequireWritable(session); !writable) return refused(writable.error());
  const auto color = ReadBasic(session, name);
  if (!color) return refused({"Color Not Found", name + " is not found in this database.", "Color_Name"});
  if (auto hindrance = DeleteHindrance(session, color->Color_Name)) return std::unexpected(*std::move(hindrance));
  if (!session.prompt.Ask(
          "Basic Color Window - Delete Basic Color?",
          fmt::format("Deleting this Basic Color will permanently remove it from the {} database.\n\nDo "
                      "you want to delete this Basic Color?",
                      session.CurrentDatabase),
          Answer::No))
    return false;

  Database& file = session.File();
  const std::string table = session.QuotedTable(schema::Basic);
  Transaction transaction(file);
  UndoStep step(session, Undoable::DeleteBasic, fmt::format("Delete {}", color->Color_Name));
  GiveUpColorStock(session, ColorKind::Basic, session.CurrentDatabase, color->Color_Name);
  file.Prepare("DELETE FROM " + table + " WHERE RowKey = ?").Bind(1, color->key).Run();
  file.Prepare("UPDATE " + table + " SET IngSort = IngSort - 1 WHERE IngSort > ?").Bind(1, color->IngSort).Run();
  transaction.Note({Change::Kind::Basic, session.CurrentDatabase, color->Color_Name, Change::What::Deleted, ""});
  step.Keep();
  transaction.Commit();
  return true;
}

}  // namespace vellumark
