#include "core/colors/basic_work.h"

#include <fmt/format.h>

#include <cmath>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/colors/formulas.h"
#include "core/colors/names.h"
#include "core/colors/swatch.h"
#include "core/datafile/references.h"
#include "core/datafile/writer.h"

namespace vellumark {
namespace {

constexpr std::string_view kNewItemTitle = "Basics / Additives - New Item";

struct Figures {
  float reorder = 0;
  float purchaseCost = 0;
  float voc = 0;
  float hap = 0;
};

Result<Figures> ReadFigures(const Session& session, const BasicWork& work) {
  const auto reorder = ReadAmount(session, AmountKey::Reorder, work.Reorder, "Reorder");
  if (!reorder) return std::unexpected(reorder.error());
  const auto cost = ReadAmount(session, AmountKey::Currency, work.PurchaseCost, "PurchaseCost");
  if (!cost) return std::unexpected(cost.error());
  const auto voc = ReadAmount(session, AmountKey::VOC, work.VOC, "VOC");
  if (!voc) return std::unexpected(voc.error());
  const auto hap = ReadAmount(session, AmountKey::HAP, work.HAP, "HAP");
  if (!hap) return std::unexpected(hap.error());
  return Figures{*reorder, *cost, *voc, *hap};
}

// The fields drop keys without the right; a caller without fields is stopped here.
Result<void> CheckRights(const Session& session, const BasicWork& work, const Figures& figures) {
  if (AmountText(session, AmountKey::Currency, figures.purchaseCost) != work.loadedPurchaseCost)
    if (auto right = RequireRight(session, AmountKey::Currency, "PurchaseCost"); !right) return right;
  if (AmountText(session, AmountKey::VOC, figures.voc) != work.loadedVOC)
    if (auto right = RequireRight(session, AmountKey::VOC, "VOC"); !right) return right;
  if (AmountText(session, AmountKey::HAP, figures.hap) != work.loadedHAP)
    if (auto right = RequireRight(session, AmountKey::HAP, "HAP"); !right) return right;
  return {};
}

std::vector<Cell> CellsOf(const Session& session, const BasicWork& work, const Figures& figures) {
  std::vector<Cell> cells{{"Color_Name", work.Color_Name},
                          {"Color_Code", Left(work.Color_Code, static_cast<std::size_t>(session.NameLength))},
                          {"Reorder", figures.reorder},
                          {"Additive", work.Additive},
                          {"Inv_Note", work.Inv_Note},
                          {"PurchaseCost", figures.purchaseCost},
                          {"Notes", TrimmedNotes(work.Notes)},
                          {"VOC", figures.voc},
                          {"HAP", figures.hap}};
  if (work.Inventory) cells.emplace_back("Inventory", RoundSingle(*work.Inventory, 3));
  return cells;
}

void AddNewRowCells(const Session& session, const BasicWork& work, std::vector<Cell>& cells) {
  const BookData book = BookDataOfBasic(session, work.Color_Name);
  if (!work.Inventory) cells.emplace_back("Inventory", 0.0F);
  cells.insert(cells.end(), {{"LotRefID", 0},
                             {"Date_Entered", session.clock.Today()},
                             {"IngSort", NextIngSort(session)},
                             {"Color_Guide", book.Color_Guide},
                             {"Page", book.Page},
                             {"Row", book.Row},
                             {"Red", book.Red},
                             {"Green", book.Green},
                             {"Blue", book.Blue}});
}

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
  const Value set = session.File().Scalar(fmt::format("SELECT 1 FROM {} WHERE SetList LIKE ? ESCAPE '\\' LIMIT 1",
                                                      Quoted(session.Table(schema::Additives))),
                                          {NameSetPattern(name)});
  if (!set.IsNull())
    return refusal("Additive Set Color",
                   "Basic / Additive is used in an Additive Set.\n\nModify Additive Set before deleting.");
  if (UsedByDesign(session.File(), session.CurrentDatabase, ColorKind::Basic, name))
    return refusal("Additive Set Color",
                   "Basic / Additive is used in a Job Design.\n\nModify Job Design before deleting.");
  return std::nullopt;
}

Result<void> SaveSwatch(Session& session, const std::string& name, const BasicAttachments& typed) {
  SwatchChange swatch;
  const auto read = [](std::string_view field, const std::string& text, std::optional<int>& part) -> Result<void> {
    if (text.empty()) return {};
    const auto value = ReadSwatchPart(field, text);
    if (!value) return std::unexpected(value.error());
    part = *value;
    return {};
  };
  if (auto red = read("Red", typed.Red, swatch.Red); !red) return red;
  if (auto green = read("Green", typed.Green, swatch.Green); !green) return green;
  if (auto blue = read("Blue", typed.Blue, swatch.Blue); !blue) return blue;
  if (!swatch.Any()) return {};
  return SetSwatch(session, ColorKind::Basic, name, swatch);
}

}  // namespace

std::string TrimmedNotes(std::string_view notes) {
  std::string trimmed = Trim(notes);
  while (!trimmed.empty() && (trimmed.back() == '\r' || trimmed.back() == '\n')) trimmed.pop_back();
  return trimmed;
}

Result<void> CheckNewBasicName(const Session& session, const std::string& name) {
  if (session.Perm_MasterFormula != 1)
    return Refuse("Color Not Found",
                  name +
                      " is not found in this database, and you do not\nhave permission to add a new Basic Color or "
                      "Additive to the database.",
                  "Color_Name");
  if (HasPantonePrefix(name) && !IsPantoneBookBasic(session, name))
    return Refuse("Basics / Additives - Invalid Name", "Color name cannot begin with the word PANTONE.", "Color_Name");
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
  const std::string name = ReadName(session, typed);
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
  BasicWork work;
  work.rowId = color.rowId;
  work.Color_Name = color.Color_Name;
  work.Color_Code = color.Color_Code;
  work.Reorder = AmountText(session, AmountKey::Reorder, color.Reorder);
  work.PurchaseCost = AmountText(session, AmountKey::Currency, color.PurchaseCost);
  work.VOC = AmountText(session, AmountKey::VOC, color.VOC);
  work.HAP = AmountText(session, AmountKey::HAP, color.HAP);
  work.Inv_Note = color.Inv_Note;
  work.Notes = color.Notes;
  work.Additive = color.Additive;
  work.loadedPurchaseCost = work.PurchaseCost;
  work.loadedVOC = work.VOC;
  work.loadedHAP = work.HAP;
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

Result<void> SaveBasic(Session& session, BasicWork& work) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  const auto figures = ReadFigures(session, work);
  if (!figures) return std::unexpected(figures.error());
  if (auto rights = CheckRights(session, work, *figures); !rights) return rights;
  const bool isNew = work.rowId == 0;
  if (isNew && BasicColorExists(session, work.Color_Name))
    return Refuse("Basic Color Name Exists", "This Basic Color already exists.", "Color_Name");
  if (!isNew && !work.Additive)
    if (auto free = RequireFreeOfAdditiveSets(session, work.Color_Name); !free) return free;

  std::vector<Cell> cells = CellsOf(session, work, *figures);
  if (isNew) AddNewRowCells(session, work, cells);
  const std::string table = session.Table(schema::Basic);
  Transaction transaction(session.File());
  std::int64_t rowId = work.rowId;
  if (isNew) {
    rowId = InsertRow(session.File(), schema::Basic, table, cells);
  } else if (!UpdateRow(session.File(), schema::Basic, table, rowId, cells)) {
    return Refuse("Color Not Found", fmt::format("{} is not found in this database.", work.Color_Name), "Color_Name");
  }
  transaction.Note({Change::Kind::Basic, session.CurrentDatabase, work.Color_Name,
                    isNew ? Change::What::Added : Change::What::Updated, ""});
  transaction.Commit();

  work.rowId = rowId;
  work.PurchaseCost = AmountText(session, AmountKey::Currency, figures->purchaseCost);
  work.Reorder = AmountText(session, AmountKey::Reorder, figures->reorder);
  work.VOC = AmountText(session, AmountKey::VOC, figures->voc);
  work.HAP = AmountText(session, AmountKey::HAP, figures->hap);
  if (!isNew) {
    session.CostChanged = session.CostChanged || work.PurchaseCost != work.loadedPurchaseCost;
    session.VOCChanged = session.VOCChanged || work.VOC != work.loadedVOC;
    session.HAPChanged = session.HAPChanged || work.HAP != work.loadedHAP;
  }
  work.loadedPurchaseCost = work.PurchaseCost;
  work.loadedVOC = work.VOC;
  work.loadedHAP = work.HAP;
  return {};
}

Result<void> SaveBasic(Session& session, BasicWork& work, const BasicAttachments& attachments) {
  if (auto writable = RequireWritable(session); !writable) return writable;
  BasicWork saved = work;
  Transaction transaction(session.File());
  if (auto done = SaveBasic(session, saved); !done) return done;
  if (auto set = SaveSwatch(session, saved.Color_Name, attachments); !set) return set;
  if (attachments.measurements)
    WriteLabReadings(session, ColorKind::Basic, saved.Color_Name, *attachments.measurements);
  transaction.Commit();
  work = std::move(saved);
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
  const std::string table = Quoted(session.Table(schema::Basic));
  Transaction transaction(file);
  DeleteLotsAndMeasurements(file, session.CurrentDatabase, ColorKind::Basic, color->Color_Name);
  file.Prepare("DELETE FROM " + table + " WHERE rowid = ?").Bind(1, color->rowId).Run();
  file.Prepare("UPDATE " + table + " SET IngSort = IngSort - 1 WHERE IngSort > ?").Bind(1, color->IngSort).Run();
  transaction.Note({Change::Kind::Basic, session.CurrentDatabase, color->Color_Name, Change::What::Deleted, ""});
  transaction.Commit();
  return true;
}

}  // namespace vellumark
