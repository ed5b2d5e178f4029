#include "core/colors/additive_sets.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/basic_work.h"
#include "core/colors/basics.h"
#include "core/colors/names.h"
#include "core/datafile/references.h"
#include "core/datafile/writer.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr double kLargestPercent = 10;

std::string Columns() {
  return "RowKey, " + AdditiveSetFields().Columns();
}

// The filled slots come first, wherever they stand in the row.
AdditiveSet ReadRow(const Statement& row) {
  AdditiveSet set;
  set.key = row.Whole(0);
  AdditiveSetFields().Read(row, 1, set);
  set.SetRows(set.Rows());
  return set;
}

std::string FieldOf(std::string_view word, std::size_t row) {
  return schema::Numbered(word, static_cast<int>(row));
}

bool IsFilled(const AdditiveSetWork::Row& row) {
  return !TrimView(row.name).empty();
}

using RowCheck = Result<void> (*)(const Session&, const AdditiveSetWork&, std::size_t);

Result<void> CheckExists(const Session& session, const AdditiveSetWork& work, std::size_t row) {
  if (!IsFilled(work.rows[row]) || BasicColorExists(session, TrimView(work.rows[row].name))) return {};
  return Refuse("Add Set Ing.", "Additive does not exist.\nExamine highlighted item and press Enter to process.",
                FieldOf("SetIng", row));
}

Result<void> CheckIsAdditive(const Session& session, const AdditiveSetWork& work, std::size_t row) {
  if (!IsFilled(work.rows[row])) return {};
  const auto basic = ReadBasic(session, TrimView(work.rows[row].name));
  if (basic && basic->Additive) return {};
  return Refuse("Add Set Ing.",
                "Selected Ing not defined. as an Additive in Basics / Additives.\n\nGo to Basics / Additives and check "
                "the Additive box for this item.",
                FieldOf("SetIng", row));
}

Result<void> CheckHasIngredient(const Session&, const AdditiveSetWork& work, std::size_t row) {
  if (IsFilled(work.rows[row]) || !ParseNumber(work.rows[row].percent)) return {};
  return Refuse("Invalid Add Set Formula", "Can't save Add Set formula, no ingredient for this quantity.",
                FieldOf("SetIng", row));
}

Result<void> CheckSingleUse(const Session&, const AdditiveSetWork& work, std::size_t row) {
  if (!IsFilled(work.rows[row])) return {};
  for (std::size_t earlier = 0; earlier < row; ++earlier)
    if (EqualNoCase(TrimView(work.rows[earlier].name), TrimView(work.rows[row].name)))
      return Refuse("Invalid Add Set Formula", "Duplicate use of an ingredient in the Add Set formula.",
                    FieldOf("SetIng", row));
  return {};
}

Result<void> CheckHasQuantity(const Session&, const AdditiveSetWork& work, std::size_t row) {
  if (!IsFilled(work.rows[row]) || ParseNumber(work.rows[row].percent)) return {};
  return Refuse("Invalid Add Set Formula", "Can't save Add Set formula, no quantity for this ingredient.",
                FieldOf("SetPercent", row));
}

Result<void> CheckPercent(const Session&, const AdditiveSetWork& work, std::size_t row) {
  if (!IsFilled(work.rows[row])) return {};
  if (const auto percent = ReadSetPercent(work.rows[row].percent, FieldOf("SetPercent", row)); !percent)
    return std::unexpected(percent.error());
  return {};
}

Result<void> CheckSetName(const Session& session, const std::string& name, bool isNew) {
  if (name.empty()) return Refuse("Additive Set Name", "Enter a valid Additive Set name.", "SetName");
  if (!isNew) return {};
  if (auto valid = CheckNewName(name, NameSource::Typed, kSetNameLength, "SetName"); !valid) return valid;
  if (AdditiveSetExists(session, name))
    return Refuse("Additive Set Name", fmt::format("Additive Set: {} already exists.\n\nEnter a different name.", name),
                  "SetName");
  return {};
}

}  // namespace

Recipe AdditiveSet::Rows() const {
  Recipe rows;
  for (std::size_t n = 0; n < Add_Name.size(); ++n)
    if (!Add_Name[n].empty()) rows.push_back({Add_Name[n], ShownAmount(Add_Percent[n])});
  return rows;
}

void AdditiveSet::SetRows(const Recipe& rows) {
  for (std::size_t n = 0; n < Add_Name.size(); ++n) {
    const bool filled = n < rows.size();
    Add_Name[n] = filled ? rows[n].name : std::string();
    Add_Percent[n] = filled ? static_cast<float>(rows[n].amount) : 0.0F;
  }
  SetList = NameSet(NamesOf(rows));
}

const FieldMap<AdditiveSet>& AdditiveSetFields() {
  using S = AdditiveSet;
  static const FieldMap<S> fields = [] {
    const FieldTraits typed{.use = FieldUse::Typed};
    FieldMap<S> map;
    map.Add("SetName", &S::SetName, {.use = FieldUse::Key});
    for (std::size_t n = 0; n < schema::kSetSlots; ++n)
      map.Add(
             FieldOf("Add_Name", n), [n](S & set) -> auto& { return set.Add_Name[n]; }, typed)
          .Add(
              FieldOf("Add_Percent", n), [n](S & set) -> auto& { return set.Add_Percent[n]; }, typed);
    map.Add("SetList", &S::SetList, {.use = FieldUse::Derived});
    return map;
  }();
  return fields;
}

std::vector<Cell> AdditiveSetCells(const AdditiveSet& set) {
  return AdditiveSetFields().Cells(set, {FieldUse::Key, FieldUse::Typed, FieldUse::Derived});
}

std::optional<AdditiveSet> ReadAdditiveSet(const Session& session, std::string_view setName,
                                           std::string_view database) {
  if (setName.empty()) return std::nullopt;
  Statement row = session.File().Prepare(fmt::format("SELECT {} FROM {} WHERE SetName = ? ORDER BY RowKey LIMIT 1",
                                                     Columns(), session.QuotedTable(schema::Additives, database)));
  row.Bind(1, setName);
  if (!row.Step()) return std::nullopt;
  return ReadRow(row);
}

std::vector<AdditiveSet> ListAdditiveSets(const Session& session, std::string_view database) {
  std::vector<AdditiveSet> sets;
  Statement row = session.File().Prepare(fmt::format("SELECT {} FROM {} ORDER BY SetName, RowKey", Columns(),
                                                     session.QuotedTable(schema::Additives, database)));
  while (row.Step()) sets.push_back(ReadRow(row));
  return sets;
}

bool AdditiveSetExists(const Session& session, std::string_view setName) {
  return ReadAdditiveSet(session, setName).has_value();
}

std::string ReadSetName(std::string_view typed) {
  return Upper(Trim(Left(TrimView(typed), static_cast<std::size_t>(kSetNameLength))));
}

Result<std::string> EnterSetName(const Session& session, std::string_view typed) {
  std::string name = ReadSetName(typed);
  if (name.empty()) return name;
  if (auto valid = CheckSetName(session, name, true); !valid) return std::unexpected(valid.error());
  return name;
}

Result<double> ReadSetPercent(std::string_view typed, std::string_view field) {
  if (const auto number = ParseNumber(typed); number && *number > 0 && *number <= 2 * kLargestPercent) {
    const double percent = RoundTo(*number, 2);
    if (percent > 0 && percent <= kLargestPercent) return percent;
  }
  return Refuse(
      "Maximum Percentage Exceeded",
      "Enter a valid percentage, 1 - 10 %\n\nFor larger values the Additive must be entered as\na Basic Color "
      "in the Master Formula.",
      std::string(field));
}

Result<AdditiveSet> ValidateAdditiveSet(const Session& session, const AdditiveSetWork& work, bool isNew) {
  AdditiveSet set;
  set.SetName = ReadSetName(work.SetName);
  if (auto named = CheckSetName(session, set.SetName, isNew); !named) return std::unexpected(named.error());
  if (std::ranges::none_of(work.rows, IsFilled))
    return Refuse("Additive Ingredients", "No ingredients found in the Additive Set.", "SetIng0");
  // Each check runs over all rows before the next begins.
  for (const RowCheck check :
       {CheckExists, CheckIsAdditive, CheckHasIngredient, CheckSingleUse, CheckHasQuantity, CheckPercent})
    for (std::size_t row = 0; row < work.rows.size(); ++row)
      if (auto passed = check(session, work, row); !passed) return std::unexpected(passed.error());
  Recipe rows;
  for (const AdditiveSetWork::Row& row : work.rows)
    if (IsFilled(row)) rows.push_back({Upper(TrimView(row.name)), *ReadSetPercent(row.percent)});
  set.SetRows(rows);
  return set;
}

Result<std::string> EnterSetIngredient(Session& session, const AdditiveSetWork& work, std::size_t row,
                                       std::string_view typed) {
  std::string name = StoredName(session, ColorKind::Basic, ReadName(session, typed));
  if (name.empty()) return name;
  if (const auto basic = ReadBasic(session, name)) {
    if (!basic->Additive)
      return Refuse("Item Already Exists",
                    "This Item already exists in Basics / Additives.\n\nIf it should be used as an Additive in this "
                    "Database\ngo to Basics / Additives and check the Additive box.",
                    FieldOf("SetIng", row));
  } else {
    if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
    if (auto allowed = CheckNewBasicName(session, name, FieldOf("SetIng", row)); !allowed)
      return std::unexpected(allowed.error());
    if (!session.prompt.Ask("Add Additive To Database?",
                            "Not found in this database as an additive.\nWould you like to add it to the "
                            "database?\n\nHint: Check the list of Additives in the Basic Colors window for\nspelling "
                            "variations before adding it."))
      return std::string();
    name = AddZeroBasic(session, name, true);
  }
  for (std::size_t other = 0; other < work.rows.size(); ++other)
    if (other != row && EqualNoCase(TrimView(work.rows[other].name), name))
      return Refuse("Duplicate Ingredient Selected", fmt::format("The Additive {} is already in the Set", name),
                    FieldOf("SetIng", row));
  return name;
}

Result<AdditiveSet> CreateAdditiveSet(Session& session, const AdditiveSetWork& work, Act act) {
  if (auto allowed = RequireAct(session, act); !allowed) return std::unexpected(allowed.error());
  auto set = ValidateAdditiveSet(session, work, true);
  if (!set) return set;
  Transaction transaction(session.File());
  UndoStep step(session, Undoable::CreateAdditiveSet, fmt::format("Create the Additive Set {}", set->SetName));
  set->key = InsertRow(session.File(), schema::Additives, session.Table(schema::Additives), AdditiveSetCells(*set));
  transaction.Note({Change::Kind::AdditiveSet, session.CurrentDatabase, set->SetName, Change::What::Added, ""});
  step.Keep();
  transaction.Commit();
  return set;
}

Result<void> CheckSetFitsFormula(const Recipe& rows, const AdditiveSet& set) {
  if (WithoutSet(rows, set.Rows()).size() != rows.size())
    return Refuse("Duplicate Ingredients",
                  "The selected Additive Set cannot be entered into the formula.\n\nThe formula already contains an "
                  "ingredient found in the Additive Set.",
                  "AddSetName");
  if (rows.size() + set.Rows().size() > kMostLinesWithSet)
    return Refuse("Exceeded Formula Maxium Ingredients",
                  "The selected Additive Set cannot be entered into the formula.\n\nThe current ingredients and the "
                  "choosen Additive Set exceed 15 items.",
                  "AddSetName");
  return {};
}

}  // namespace vellumark
