#include <fmt/format.h>

#include <algorithm>

#include "core/base/counted.h"
#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/colors/additive_sets.h"
#include "core/colors/figure_book.h"
#include "core/colors/formulas.h"
#include "core/colors/name_map.h"
#include "core/colors/names.h"
#include "core/colors/stock_trace.h"
#include "core/datafile/database_changes.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/references.h"
#include "core/exchange/formula_merge.h"
#include "core/exchange/merge_rows.h"
#include "core/session/acts.h"
#include "core/session/stock_lines.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Undo Import";

Recipe RecipeOf(std::string_view text) {
  Recipe recipe;
  for (const std::string_view line : Split(text, '\n')) {
    const std::size_t tab = line.find('\t');
    if (tab != std::string_view::npos)
      recipe.push_back({std::string(line.substr(0, tab)), ParseNumber(line.substr(tab + 1)).value_or(0)});
  }
  return recipe;
}

class Undoing {
 public:
  Undoing(Session& session, const FormulaImport& import)
      : session_(session), file_(session.File()), import_(import), database_(import.database) {}

  /// Names of formulas that something happened to since, each with what.
  std::vector<std::string> Changed() {
    std::vector<std::string> changed;
    ImportedRows rows(session_, MergeTable::Formulas, database_);
    const auto designs = ColorsInDesigns(file_, database_, ColorKind::Mix);
    const NamesOnce made = Names(fmt::format("SELECT DISTINCT Color_Name FROM {}", QuotedTable(database_, schema::Batch)));
    const NamesOnce lots = Names(fmt::format("SELECT DISTINCT LotCName FROM {}", QuotedTable(database_, schema::MixLotInv)));
    const NamesOnce measured =
        Names(fmt::format("SELECT DISTINCT Color_Name FROM {}", QuotedTable(database_, schema::MixLab)));
    const NamesOnce jobs = InJobs(ColorKind::Mix);
    const auto look = [&](const ImportedRow& row, bool isNew) {
      const ImportedRow now = rows.Read(row.key);
      if (now.digest.empty()) {
        changed.push_back(row.name + " was removed");
      } else if (now.digest != row.digest) {
        changed.push_back(row.name + " was changed");
      } else if (isNew && designs.contains(Upper(row.name))) {
        changed.push_back(row.name + " is used in a Job Design");
      } else if (isNew && (made.contains(row.name) || lots.contains(row.name))) {
        changed.push_back(row.name + " was made");
      } else if (isNew && measured.contains(row.name)) {
        changed.push_back(row.name + " was measured");
      } else if (isNew && jobs.contains(row.name)) {
        changed.push_back(row.name + " was issued to a Job");
      }
    };
    for (const ImportedRow& row : import_.formulas) look(row, true);
    for (const ReplacedRecipe& one : import_.replaced) look(one.row, false);
    return changed;
  }

  ImportUndone Run() {
    ImportUndone undone{.database = database_, .source = import_.source};
    ProgressRun progress(session_.progress, "Undoing Import ...");
    std::vector<std::string> listBefore = session_.databaseList;
    try {
      Transaction transaction(file_);
      RemoveFormulas(transaction, undone);
      RestoreRecipes(undone);
      RemoveSets(undone);
      RemoveBasics(undone);
      RemoveFormulaImport(file_, import_.id);
      for (const Change::Kind kind : {Change::Kind::Mix, Change::Kind::Basic, Change::Kind::AdditiveSet})
        transaction.Note({kind, database_, "", Change::What::All, ""});
      if (import_.madeDatabase) RemoveDatabase(undone);
      transaction.Commit();
    } catch (...) {
      session_.databaseList = std::move(listBefore);
      throw;
    }
    return undone;
  }

 private:
  NamesOnce Names(const std::string& sql) const {
    NamesOnce names;
    Statement row = file_.Prepare(sql);
    while (row.Step()) names.emplace(row.TextView(0));
    return names;
  }

  NamesOnce InJobs(ColorKind kind) const {
    NamesOnce names;
    Statement row = file_.Prepare("SELECT DISTINCT Color_Name FROM JobRecords WHERE Database = ? AND ItemType = ?");
    row.Bind(1, database_).Bind(2, static_cast<int>(kind));
    while (row.Step()) names.emplace(row.TextView(0));
    return names;
  }

  Statement Deleting(const Table& table) {
    return file_.Prepare(fmt::format("DELETE FROM {} WHERE RowKey = ?", QuotedTable(database_, table)));
  }

  void RemoveFormulas(Transaction& transaction, ImportUndone& undone) {
    Statement row = Deleting(schema::Mix);
    for (const ImportedRow& formula : import_.formulas) {
      GiveUpColorStock(session_, ColorKind::Mix, database_, formula.name, "Import undone");
      row.Bind(1, formula.key).Run();
      transaction.Note({Change::Kind::Mix, database_, formula.name, Change::What::Deleted, ""});
    }
    undone.removed = import_.formulas.size();
  }

  void RestoreRecipes(ImportUndone& undone) {
    FigureBook book(session_, database_);
    RecipeWriter writer(session_, database_, {"BasicCost", "BasicVOC", "BasicHAP", "LastModified"});
    const NamesOnce sets = Names(fmt::format("SELECT SetName FROM {}", QuotedTable(database_, schema::Additives)));
    for (const ReplacedRecipe& one : import_.replaced) {
      const Recipe recipe = RecipeOf(one.recipe);
      const RolledUp figures = book.RollUp(recipe);
      writer.Set(recipe, sets.contains(one.AddSetName) ? one.AddSetName : "")
          .SetMore(0, figures.BasicCost)
          .SetMore(1, figures.BasicVOC)
          .SetMore(2, figures.BasicHAP)
          .SetMore(3, Value(one.LastModified));
      writer.Update(one.row.key);
    }
    undone.restored = import_.replaced.size();
  }

  void RemoveSets(ImportUndone& undone) {
    const NamesOnce used = Names(
        fmt::format("SELECT DISTINCT AddSetName FROM {} WHERE AddSetName <> ''", QuotedTable(database_, schema::Mix)));
    ImportedRows rows(session_, MergeTable::Sets, database_);
    Statement row = Deleting(schema::Additives);
    for (const ImportedRow& set : import_.sets) {
      const ImportedRow now = rows.Read(set.key);
      if (now.digest.empty()) continue;
      if (now.digest == set.digest && !used.contains(set.name)) {
        row.Bind(1, set.key).Run();
      } else {
        undone.setsKept.push_back(set.name);
      }
    }
  }

  // Everything that names a Basic Color of this Database.
  NamesOnce BasicsInUse() const {
    NamesOnce used;
    const auto take = [&](const Table& table, std::string_view word, int slots, std::string_view kind) {
      std::string columns;
      for (int n = 0; n < slots; ++n) {
        columns += (n == 0 ? "" : ", ") + schema::Numbered(word, n);
        if (!kind.empty()) columns += ", " + schema::Numbered(kind, n);
      }
      Statement row = file_.Prepare(fmt::format("SELECT {} FROM {}", columns, QuotedTable(database_, table)));
      const int step = kind.empty() ? 1 : 2;
      while (row.Step())
        for (int n = 0; n < slots; ++n) {
          const std::string_view name = row.TextView(n * step);
          if (!name.empty()) used.emplace(name);
        }
    };
    take(schema::Mix, "BC", schema::kIngredientSlots, {});
    take(schema::Additives, "Add_Name", schema::kSetSlots, {});
    take(schema::Batch, "IngName", schema::kBatchLines, {});
    for (const Table* table : {&schema::BasicLotInv, &schema::BasicLab}) {
      const char* field = table == &schema::BasicLotInv ? "LotCName" : "Color_Name";
      for (const std::string& name : Names(fmt::format("SELECT DISTINCT {} FROM {}", field, QuotedTable(database_, *table))))
        used.insert(name);
    }
    for (const std::string& name : ColorsInDesigns(file_, database_, ColorKind::Basic)) used.insert(name);
    used.merge(InJobs(ColorKind::Basic));
    return used;
  }

  void RemoveBasics(ImportUndone& undone) {
    if (import_.basics.empty()) return;
    const NamesOnce used = BasicsInUse();
    ImportedRows rows(session_, MergeTable::Basics, database_);
    Statement row = Deleting(schema::Basic);
    for (const ImportedRow& basic : import_.basics) {
      const ImportedRow now = rows.Read(basic.key);
      if (now.digest.empty()) continue;
      if (now.digest != basic.digest || used.contains(basic.name)) {
        undone.basicsKept.push_back(now.name);
        continue;
      }
      GiveUpColorStock(session_, ColorKind::Basic, database_, basic.name, "Import undone");
      row.Bind(1, basic.key).Run();
      ++undone.basicsRemoved;
    }
  }

  // The Database that the import made goes too, unless someone uses it.
  void RemoveDatabase(ImportUndone& undone) {
    const DatabaseCounts rows = CountRows(file_, database_);
    const bool inUse = EqualNoCase(database_, session_.CurrentDatabase) ||
                       EqualNoCase(database_, ReadFileInfo(file_).currentDB) || !undone.setsKept.empty();
    if (inUse || rows.basics + rows.formulas + rows.batches > 0) return;
    std::erase_if(session_.databaseList, [&](const std::string& name) { return EqualNoCase(name, database_); });
    DeleteDatabaseTables(file_, {database_});
    AddDatabaseDeletedLine(file_, NewStockLine(session_, StockEvent::DatabaseDeleted, ColorKind::Basic, database_));
    undone.databaseRemoved = true;
  }

  Session& session_;
  Database& file_;
  const FormulaImport& import_;
  const std::string database_;
};

}  // namespace

Result<ImportUndone> UndoImport(Session& session, std::int64_t import) {
  if (auto allowed = RequireAct(session, Act::ImportFormulas); !allowed) return std::unexpected(allowed.error());
  const auto record = ReadFormulaImport(session.File(), import);
  if (!record || session.FindDatabase(record->database) == nullptr)
    return Refuse(std::string(kTitle), import == 0 ? std::string("There is no import to undo.")
                                                   : fmt::format("There is no import {} to undo.", import));
  Undoing undoing(session, *record);
  if (const std::vector<std::string> changed = undoing.Changed(); !changed.empty())
    return Refuse(std::string(kTitle),
                  fmt::format("The import from {} cannot be undone. Since then\n\n{}", record->source, NameLines(changed)));
  return undoing.Run();
}

bool HasImport(const Session& session) {
  return session.DataFileDB != nullptr && !ListFormulaImports(session.File()).empty();
}

Result<ImportUndone> AskAndUndoImport(Session& session) {
  const std::vector<FormulaImport> imports = ListFormulaImports(session.File());
  if (imports.empty()) return UndoImport(session);
  const FormulaImport& last = imports.front();
  if (!session.prompt.Ask(std::string(kTitle),
                          fmt::format("The import from {} into the {} Database, {}, will be taken back: its new "
                                      "formulas are removed, the changed ones get their recipes back.\n\nUndo it?",
                                      last.source, last.database, last.Moment.ToText()),
                          Answer::No))
    return Decline(std::string(kTitle));
  return UndoImport(session, last.id);
}

std::string UndoneText(const ImportUndone& undone) {
  std::string text = fmt::format("{}\n{}\n\n{} removed, {} put back, {} removed\n", undone.source, undone.database,
                                 Counted(undone.removed, "formula"), undone.restored,
                                 Counted(undone.basicsRemoved, "Basic Color"));
  for (const std::string& name : undone.basicsKept) text += name + " is in use and stays\n";
  for (const std::string& name : undone.setsKept) text += "The Additive Set " + name + " is in use and stays\n";
  if (undone.databaseRemoved) text += "The Database that it made is removed\n";
  return text;
}

ListTable ListImports(const Session& session) {
  return TableOf<FormulaImport>()
      .Add("Import", [](const FormulaImport& i) { return i.id; })
      .Add("Moment", &FormulaImport::Moment)
      .Add("Username", &FormulaImport::Username)
      .Add("Database", &FormulaImport::database)
      .Add("Source", &FormulaImport::source)
      .Of(ListFormulaImports(session.File()));
}

}  // namespace vellumark
