#include "core/shell/undo.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <set>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/batch/holding.h"
#include "core/batch/open.h"
#include "core/colors/color_set.h"
#include "core/colors/rollup.h"
#include "core/datafile/formula_imports.h"
#include "core/datafile/kept_rows.h"
#include "core/datafile/moved_rows.h"
#include "core/datafile/references.h"
#include "core/datafile/stock_trail.h"
#include "core/exchange/formula_merge.h"
#include "core/inventory/taking_back.h"
#include "core/jobs/job_renames.h"
#include "core/session/acts.h"
#include "core/session/stock_lines.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

using What = RecordedChange::What;

std::unexpected<Refusal> NotTaken(std::string_view what, std::string_view why) {
  return Refuse("Take Back", fmt::format("\"{}\" cannot be taken back.\n\n{}", what, why), "ID");
}

std::int64_t ImportOf(const UndoEntry& entry) {
  std::int64_t import = 0;
  if (entry.subject.starts_with(kImportSubject)) {
    const std::string_view number = std::string_view(entry.subject).substr(kImportSubject.size());
    std::from_chars(number.data(), number.data() + number.size(), import);
  }
  return import;
}

// Which table of which Database a change is of.
struct Place {
  std::string database;  // empty for a table of the whole file
  const Table* table = nullptr;
};

// What a change took beside the right of its act, and its opposite takes again.
struct OwnRight {
  const Table* table = nullptr;
  What what = What::Updated;
  std::vector<std::string> fields;  // of which one has changed; none: whatever has
  Act act = Act::Work;
  bool ofWork = false;  // only in the day's work: acts on many colours at once asked for a right of their own
};

const std::vector<OwnRight>& OwnRights() {
  static const std::vector<OwnRight> rights = [] {
    std::vector<std::string> recipe{"AddSetName"};
    for (int slot = 0; slot < schema::kIngredientSlots; ++slot)
      for (const char* word : {"BC", "BQ"}) recipe.push_back(schema::Numbered(word, slot));
    std::vector<OwnRight> all{
        {&schema::Basic, What::Added, {}, Act::AddBasics, true},
        {&schema::Mix, What::Added, {}, Act::EditFormulas, true},
        {&schema::Mix, What::Removed, {}, Act::EditFormulas, true},
        {&schema::Mix, What::Updated, recipe, Act::EditFormulas, true},
        {&schema::BasicLotInv, What::Updated, {"LotPrice"}, Act::EditCosts},
        {&schema::MixLotInv, What::Updated, {"LotPrice"}, Act::EditCosts},
        // The figures of a Batch follow from its lines, the models were chosen.
        {&schema::Batch,
         What::Updated,
         {"CostModelType", "MixCostOption", "FixedCostOfBatch", "FixedCostPerUnit", "MarkupPercent"},
         Act::EditCosts},
        {&schema::Batch, What::Updated, {"MixVOCModelType", "MixHAPModelType"}, Act::EditEmissions},
    };
    for (const Table* colors : {&schema::Basic, &schema::Mix}) {
      all.push_back({colors, What::Updated, {"PurchaseCost"}, Act::EditCosts});
      all.push_back({colors, What::Updated, {"VOC", "HAP"}, Act::EditEmissions});
    }
    return all;
  }();
  return rights;
}

// A field that was empty is no other than 0 or no text.
bool Differ(const Value& after, const Value& before) {
  return after.IsText() || before.IsText() ? after.Text() != before.Text() : after.Single() != before.Single();
}

class TakingBack {
 public:
  TakingBack(Session& session, const UndoEntry& entry, std::vector<RecordedChange> changes)
      : session_(session), file_(session.File()), entry_(entry), changes_(std::move(changes)) {
    for (const std::string& database : session.databaseList)
      for (const Table* table : schema::PerDatabase())
        places_[Upper(session.Table(*table, database))] = {database, table};
  }

  Result<void> Run() {
    if (auto allowed = CheckRights(); !allowed) return allowed;
    if (auto open = CheckBatchesClosed(); !open) return open;
    for (const StockLine& line : Lines())
      if (WasTakenBack(session_, line.id))
        return NotTaken(entry_.what, fmt::format("Line {} of the stock history was taken back already.", line.id));
    if (const RecordedChange* touched = FirstTouchedSince(file_, changes_))
      return NotTaken(entry_.what, fmt::format("Since then {} was changed.", NameOf(*touched)));
    if (auto unused = CheckNewNames(); !unused) return unused;
    if (auto same = CheckNamesSince(); !same) return same;
    if (auto free = CheckFileNames(); !free) return free;
    Transaction transaction(file_);
    static_cast<void>(PutBack(file_, changes_));
    if (auto free = CheckOldNames(); !free) return free;
    WriteOppositeLines();
    RenameMovedUses();
    NoteJobNumber();
    MarkRollUps();
    RemoveUndoEntry(file_, entry_.id);
    for (Change& change : Told()) transaction.Note(std::move(change));
    transaction.Commit();
    return {};
  }

 private:
  const Place* PlaceOf(const RecordedChange& change) const {
    const auto found = places_.find(Upper(change.table));
    return found == places_.end() ? nullptr : &found->second;
  }
  static const Value* Find(const RecordedChange& change, std::string_view field, bool after) {
    const auto cell = std::ranges::find(change.cells, field, &RecordedChange::Cell::field);
    return cell == change.cells.end() ? nullptr : after ? &cell->after : &cell->before;
  }
  // A field of the row as the act left it, or as it stood before when the act removed it.
  std::string FieldOf(const RecordedChange& change, const char* field) const {
    const bool after = change.what != What::Removed;
    if (const Value* value = Find(change, field, after)) return value->Text();
    if (!after) return {};
    return file_.Scalar(fmt::format("SELECT {} FROM {} WHERE RowKey = ?", field, Quoted(change.table)), {change.row})
        .Text();
  }
  static const char* NameField(const Table& table) {
    if (&table == &schema::BasicLotInv || &table == &schema::MixLotInv) return "LotCName";
    if (&table == &schema::Additives) return "SetName";
    if (&table == &schema::Batch || &table == &schema::Basic || &table == &schema::Mix) return "Color_Name";
    return nullptr;
  }
  std::string NameOf(const RecordedChange& change) const {
    const Place* place = PlaceOf(change);
    if (EqualNoCase(change.table, GoneLots().name)) return "a lot of " + FieldOf(change, "Color_Name");
    if (place == nullptr) return IsOfJobs(change) ? "an item of a Job" : "the Design " + FieldOf(change, "DesignID");
    if (place->table == &schema::Batch) return "a Batch of " + FieldOf(change, "Color_Name");
    const char* field = NameField(*place->table);
    if (field == nullptr) return "what was noted of a Batch or a color";
    const std::string name = FieldOf(change, field);
    const bool stock = place->table == &schema::BasicLotInv || place->table == &schema::MixLotInv;
    return stock ? "a lot of " + name : name.empty() ? "a color" : name;
  }

  std::vector<StockLine> Lines() const {
    std::vector<StockLine> lines;
    for (std::int64_t id = entry_.firstLine; id <= entry_.lastLine; ++id)
      if (auto line = ReadStockLine(file_, id)) lines.push_back(*std::move(line));
    return lines;
  }

  static bool IsOfJobs(const RecordedChange& change) {
    return EqualNoCase(change.table, schema::JobRecords.name) || EqualNoCase(change.table, ReturnedItems().name);
  }
  static bool IsOfDesigns(const RecordedChange& change) { return EqualNoCase(change.table, schema::Designs.name); }

  // A new name of a Basic Color goes through all recipes, which asked for nothing.
  bool RenamesBasics() const {
    return std::ranges::any_of(changes_, [&](const RecordedChange& change) {
      const Place* place = PlaceOf(change);
      return change.what == What::Updated && place != nullptr && place->table == &schema::Basic &&
             Find(change, "Color_Name", true) != nullptr;
    });
  }
  // Whether this change took the right of the rule.
  static bool Took(const RecordedChange& change, const OwnRight& rule) {
    if (change.what != rule.what) return false;
    return rule.fields.empty() || std::ranges::any_of(rule.fields, [&](const std::string& field) {
             const Value* after = Find(change, field, true);
             return after != nullptr && Differ(*after, *Find(change, field, false));
           });
  }
  Result<void> CheckRights() const {
    const bool own = entry_.act == static_cast<int>(Act::Work);
    const bool renames = RenamesBasics();
    for (const RecordedChange& change : changes_) {
      const Place* place = PlaceOf(change);
      if (place == nullptr) continue;
      for (const OwnRight& rule : OwnRights()) {
        if (rule.table != place->table || (rule.ofWork && !own) || !Took(change, rule)) continue;
        if (renames && rule.act == Act::EditFormulas) continue;
        if (auto allowed = RequireAct(session_, rule.act); !allowed) return allowed;
      }
    }
    return {};
  }

  // An open Batch has given back what it took: neither its rows nor stock stand as they are to come back.
  Result<void> CheckBatchesClosed() const {
    for (const HeldStock& held : ReadHeldStock(file_))
      if (BatchNoText(held.BatchNo) == entry_.subject)
        return NotTaken(entry_.what, fmt::format("Batch {} is open. Close it first.", BatchNoText(held.BatchNo)));
    return {};
  }

  struct Named {
    std::string database;
    const Table* table;
    std::string name;
  };
  // Names of colours and sets that only the act brought (or, `before`, that it took away).
  std::vector<Named> Names(bool before) const {
    std::vector<Named> names;
    for (const RecordedChange& change : changes_) {
      const Place* place = PlaceOf(change);
      if (place == nullptr) continue;
      if (place->table != &schema::Basic && place->table != &schema::Mix && place->table != &schema::Additives)
        continue;
      const Value* name = Find(change, NameField(*place->table), !before);
      if (name != nullptr && !name->Text().empty()) names.push_back({place->database, place->table, name->Text()});
    }
    return names;
  }
  bool IsChanged(std::string_view table, std::int64_t row) const {
    return std::ranges::any_of(
        changes_, [&](const RecordedChange& change) { return change.row == row && EqualNoCase(change.table, table); });
  }
  // A row past `after` that has the name in one of the columns, and is none of the act.
  bool IsNamed(const std::string& table, const std::string& columns, std::string_view name, std::int64_t after = 0,
               std::string_view more = {}) const {
    Statement row = file_.Prepare(
        fmt::format("SELECT RowKey FROM {} WHERE RowKey > ?2 AND ?1 IN ({}){}", Quoted(table), columns, more));
    row.Bind(1, name).Bind(2, after);
    while (row.Step())
      if (!IsChanged(table, row.Whole(0))) return true;
    return false;
  }
  static std::string Slots(std::string_view word, int count) {
    std::string columns;
    for (int n = 0; n < count; ++n) columns += (n == 0 ? "" : ", ") + schema::Numbered(word, n);
    return columns;
  }
  std::int64_t EndOf(std::string_view table) const {
    const auto end = std::ranges::find_if(entry_.ends, [&](const auto& one) { return EqualNoCase(one.first, table); });
    return end == entry_.ends.end() ? 0 : end->second;
  }

  // What bears a name that goes was built on the act.
  Result<void> CheckNewNames() const {
    for (const Named& named : Names(false)) {
      const auto table = [&](const Table& of) { return session_.Table(of, named.database); };
      const bool mix = named.table == &schema::Mix;
      std::string_view used;
      if (named.table == &schema::Additives) {
        if (IsNamed(table(schema::Mix), "AddSetName", named.name)) used = "formulas have it now";
      } else {
        if (!mix && IsNamed(table(schema::Mix), Slots("BC", schema::kIngredientSlots), named.name))
          used = "formulas have it now";
        if (!mix && IsNamed(table(schema::Additives), Slots("Add_Name", schema::kSetSlots), named.name))
          used = "an Additive Set has it now";
        if (IsNamed(table(mix ? schema::MixLotInv : schema::BasicLotInv), "LotCName", named.name))
          used = "it has got lots";
        if (IsNamed(table(mix ? schema::MixLab : schema::BasicLab), "Color_Name", named.name)) used = "it was measured";
        const std::string batches = table(schema::Batch);
        if (IsNamed(batches, "Color_Name, " + Slots("IngName", schema::kBatchLines), named.name, EndOf(batches)))
          used = "Batches have been made with it";
        const std::string jobs(schema::JobRecords.name);
        if (IsNamed(jobs, "Color_Name", named.name, EndOf(jobs))) used = "it was issued to a Job";
        const ColorKind kind = mix ? ColorKind::Mix : ColorKind::Basic;
        if (UsedByDesign(file_, named.database, kind, named.name) && !ChangesDesigns())
          used = "a Job Design has it now";
      }
      if (!used.empty()) return NotTaken(entry_.what, fmt::format("Since then {}: {}.", named.name, used));
    }
    return {};
  }
  // A color that got another name since: rows would come back, and the history would tell of stock, under the old one.
  Result<void> CheckNamesSince() const {
    const std::vector<StockLine> lines = Lines();
    const std::vector<Named> taken = Names(true);
    const auto told = [&](const StockLine& renamed) {
      return std::ranges::any_of(lines, [&](const StockLine& line) {
        return line.event < StockEvent::Renamed && line.kind == renamed.kind &&
               EqualNoCase(line.database, renamed.database) && EqualNoCase(line.Color_Name, renamed.Color_Name);
      });
    };
    std::string why;
    ForEachStockLine(file_, StockEvent::Renamed, [&](StockLine& renamed) {
      if (renamed.id <= entry_.lastLine) return false;
      const std::string name = renamed.Color_Name;
      const bool goes = std::ranges::any_of(taken, [&](const Named& one) { return EqualNoCase(one.name, name); });
      renamed.id = entry_.lastLine;
      const std::string now = NamesNow(file_, renamed).Color_Name;
      if (!goes && !EqualNoCase(now, name) && (told(renamed) || BringsBack(name)))
        why = fmt::format("Since then {} was renamed {}. Take that back first.", name, now);
      return why.empty();
    });
    if (!why.empty()) return NotTaken(entry_.what, why);
    return {};
  }
  bool BringsBack(std::string_view name) const {
    static constexpr std::array kFields{"Color_Name", "ColorName", "LotCName", "IngName", "Add_Name", "BC"};
    return std::ranges::any_of(changes_, [&](const RecordedChange& change) {
      return std::ranges::any_of(change.cells, [&](const RecordedChange::Cell& cell) {
        return cell.before.IsText() && EqualNoCase(cell.before.Text(), name) &&
               std::ranges::any_of(kFields, [&](const char* field) { return cell.field.starts_with(field); });
      });
    });
  }
  bool ChangesDesigns() const { return std::ranges::any_of(changes_, IsOfDesigns); }

  // Of Designs and Jobs, which are of the whole file: a name that goes must be unused, one that comes back free.
  Result<void> CheckFileNames() const {
    const auto named = [&](const RecordedChange& change, const Table& table, std::string_view field, bool after) {
      const Value* name = Find(change, field, after);
      return name != nullptr && !name->Text().empty() && IsNamed(table.name, std::string(field), name->Text())
                 ? name->Text()
                 : std::string();
    };
    for (const RecordedChange& change : changes_) {
      std::string why;
      if (IsOfDesigns(change)) {
        if (const auto used = named(change, schema::JobRecords, "DesignID", true); !used.empty())
          why = fmt::format("Since then Jobs have the Design {}.", used);
        if (const auto again = named(change, schema::Designs, "DesignID", false); !again.empty())
          why = fmt::format("Another Design {} has been made since.", again);
      } else if (entry_.subject == kJobSubject && IsOfJobs(change)) {
        if (const auto more = named(change, schema::JobRecords, "JobNumber", true); !more.empty())
          why = fmt::format("Since then Job {} has got other items.", more);
        if (const auto again = named(change, schema::JobRecords, "JobNumber", false); !again.empty())
          why = fmt::format("Another Job {} has been made since.", again);
      }
      if (!why.empty()) return NotTaken(entry_.what, why);
    }
    return {};
  }
  // Uses of a Design in Jobs that went into an archive bear its name too.
  void RenameMovedUses() {
    for (const RecordedChange& change : changes_) {
      if (change.what != What::Updated || !IsOfDesigns(change)) continue;
      const Value* name = Find(change, "DesignID", true);
      if (name != nullptr) RenameMovedDesign(file_, name->Text(), Find(change, "DesignID", false)->Text());
    }
  }

  // Lines of the history under the number that goes are of the Job all the same.
  void NoteJobNumber() {
    if (entry_.subject != kJobSubject) return;
    for (const RecordedChange& change : changes_)
      if (const Value* number = Find(change, "JobNumber", true); IsOfJobs(change) && number != nullptr)
        return NoteJobRename(file_, number->Text(), Find(change, "JobNumber", false)->Text());
  }

  // A name that comes back must be free.
  Result<void> CheckOldNames() const {
    for (const Named& named : Names(true)) {
      const std::int64_t rows =
          file_
              .Scalar(fmt::format("SELECT COUNT(*) FROM {} WHERE {} = ?",
                                  session_.QuotedTable(*named.table, named.database), NameField(*named.table)),
                      {named.name})
              .Whole();
      if (rows > 1) return NotTaken(entry_.what, fmt::format("Another {} has been made since.", named.name));
    }
    return {};
  }

  // Each line of the act has its opposite, the last one first; the two lines of a rename are one.
  void WriteOppositeLines() {
    std::vector<StockLine> lines = Lines();
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
      if (line->event == StockEvent::RenamedFrom) {
        AddRenameLines(file_, NewStockLine(session_, StockEvent::Renamed, line->kind, line->database), line->Color_Name,
                       line->reason);
        continue;
      }
      if (line->event == StockEvent::Renamed) continue;
      StockLine opposite = NewStockLine(session_, Opposite(line->event), line->kind, line->database, line->Color_Name);
      opposite.LotRefID = line->LotRefID;
      opposite.LotNumber = line->LotNumber;
      opposite.change = -line->change;
      opposite.result = RoundSingle(static_cast<double>(line->result) - line->change, 3);
      opposite.document = line->document;
      opposite.reason = (line->reason.empty() ? entry_.what : line->reason) + TakesBack(line->id);
      AddStockLine(file_, opposite);
    }
  }
  static StockEvent Opposite(StockEvent event) {
    switch (event) {
      case StockEvent::BatchTakes:
      case StockEvent::BatchTakesAgain:
      case StockEvent::BatchRestores:
        return StockEvent::BatchReturns;
      case StockEvent::BatchReturns:
        return StockEvent::BatchTakes;
      case StockEvent::BatchMakes:
        return StockEvent::BatchUnmakes;
      case StockEvent::BatchUnmakes:
        return StockEvent::BatchMakes;
      default:
        return event;
    }
  }

  void MarkRollUps() {
    std::set<std::string> stale;
    for (const RecordedChange& change : changes_)
      if (const Place* place = PlaceOf(change);
          place != nullptr && (place->table == &schema::Basic || place->table == &schema::Mix))
        stale.insert(place->database);
    for (const std::string& database : stale) MarkPendingRollUps(file_, database, {true, true, true});
    if (stale.contains(session_.CurrentDatabase)) MarkRollUpsStale(session_, {true, true, true});
  }

  std::vector<Change> Told() const {
    std::set<std::pair<Change::Kind, std::string>> kinds;
    for (const RecordedChange& change : changes_) {
      const Place* place = PlaceOf(change);
      if (EqualNoCase(change.table, GoneLots().name)) continue;  // the lot itself is told
      if (place == nullptr) {
        kinds.emplace(IsOfJobs(change) ? Change::Kind::Job : Change::Kind::Design, std::string());
      } else if (place->table == &schema::Additives) {
        kinds.emplace(Change::Kind::AdditiveSet, place->database);
      } else if (place->table == &schema::Batch || place->table == &schema::BatchLotInv) {
        kinds.emplace(Change::Kind::Batch, place->database);
      } else {
        kinds.emplace(Change::Kind::Basic, place->database);
        kinds.emplace(Change::Kind::Mix, place->database);
      }
    }
    std::vector<Change> told;
    for (const auto& [kind, database] : kinds) told.push_back({kind, database, "", Change::What::All, ""});
    return told;
  }

  Session& session_;
  Database& file_;
  const UndoEntry& entry_;
  std::vector<RecordedChange> changes_;
  std::map<std::string, Place> places_;
};

}  // namespace

std::vector<UndoEntry> ListUndo(const Session& session) {
  std::vector<UndoEntry> entries = ListUndoEntries(session.File());
  std::set<std::int64_t> imports;
  for (const FormulaImport& import : ListFormulaImports(session.File())) imports.insert(import.id);
  std::erase_if(entries, [&](const UndoEntry& entry) {
    const std::int64_t import = ImportOf(entry);
    return session.FindDatabase(entry.database) == nullptr || (import != 0 && !imports.contains(import));
  });
  return entries;
}

TableOf<UndoEntry> UndoColumns() {
  return TableOf<UndoEntry>()
      .Add("ID", &UndoEntry::id)
      .Width(720)
      .Add("Moment", &UndoEntry::Moment, "When", Format::Moment)
      .Width(2160)
      .Add("Username", &UndoEntry::Username, "User")
      .Width(1440)
      .Add("Database", &UndoEntry::database)
      .Width(1680)
      .Add("What", &UndoEntry::what)
      .Width(6480)
      .Show({"When", "User", "Database", "What"});
}

Result<std::string> TakeBackAct(Session& session, std::int64_t id) {
  if (auto writable = RequireWritable(session); !writable) return std::unexpected(writable.error());
  const std::vector<UndoEntry> entries = ListUndo(session);
  const auto entry = id == 0 ? entries.begin() : std::ranges::find(entries, id, &UndoEntry::id);
  if (entry == entries.end())
    return Refuse(
        "Take Back",
        id == 0 ? std::string("There is nothing to take back.") : fmt::format("There is no act {} to take back.", id),
        "ID");
  const auto act = std::ranges::find(ActRows(), static_cast<Act>(entry->act), &ActRow::act);
  if (act == ActRows().end()) return NotTaken(entry->what, "Another version of the program has kept it.");
  if (auto allowed = RequireAct(session, act->act); !allowed) return std::unexpected(allowed.error());
  if (const std::int64_t import = ImportOf(*entry); import != 0) {
    if (auto undone = UndoImport(session, import); !undone) return std::unexpected(undone.error());
    RemoveUndoEntry(session.File(), entry->id);
    return entry->what;
  }
  auto changes = ReadUndoChanges(session.File(), entry->id);
  if (!changes) return NotTaken(entry->what, "It changed more than is kept.");
  if (auto taken = TakingBack(session, *entry, *std::move(changes)).Run(); !taken)
    return std::unexpected(taken.error());
  RunPendingPasses(session);
  return entry->what;
}

}  // namespace vellumark
