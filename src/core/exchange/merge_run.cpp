#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/progress_run.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/additive_sets.h"
#include "core/colors/amounts.h"
#include "core/colors/color_rows.h"
#include "core/colors/figure_book.h"
#include "core/colors/formulas.h"
#include "core/colors/guide_database.h"
#include "core/colors/stored_names.h"
#include "core/datafile/databases.h"
#include "core/exchange/formula_merge.h"
#include "core/exchange/merge_rows.h"
#include "core/exchange/merge_sets.h"
#include "core/exchange/present_recipes.h"
#include "core/base/told_steps.h"
#include "core/inventory/posting.h"
#include "core/session/acts.h"
#include "core/session/undo_step.h"

namespace vellumark {
namespace {

constexpr std::string_view kTitle = "Import Formulas";
constexpr std::string_view kProgress =
    "Importing Master Formulas ...\nCalculating Basic Costs ...\nCalculating VOCs ...\nCalculating HAPs ...";

// Turns figures and quantities of the source into those of the unit that is in use here.
class Figures {
 public:
  Figures(const Session& session, const MergePlan& plan)
      : session_(session),
        costs_(MayDo(session, Act::EditCosts)),
        emissions_(MayDo(session, Act::EditEmissions)),
        unit_(plan.table.unit.value_or(plan.options.sourceUnit == 0 ? session.UMI : plan.options.sourceUnit)) {}

  float Cost(const std::optional<double>& figure) { return PerUnit(figure, costs_, costsLeft_, session_.DecimalPlaces); }
  float Emission(const std::optional<double>& figure) { return PerUnit(figure, emissions_, emissionsLeft_, 3); }
  float Quantity(const std::optional<double>& quantity) const {
    return InRange(static_cast<double>(UnitFactor(unit_, session_.UMI)), quantity.value_or(0), 3);
  }

  std::vector<std::string> Notes() const {
    std::vector<std::string> notes;
    if (costsLeft_) notes.emplace_back("Costs were left out: you do not have the permission to change them.");
    if (emissionsLeft_) notes.emplace_back("VOC and HAP were left out: you do not have the permission to change them.");
    return notes;
  }

 private:
  float PerUnit(const std::optional<double>& figure, bool allowed, bool& left, int decimals) {
    if (figure.value_or(0) == 0) return 0;
    left = left || !allowed;
    return allowed ? InRange(static_cast<double>(UnitFactor(session_.UMI, unit_)), *figure, decimals) : 0;
  }
  // As it would be typed. What comes from a Single is rounded as one.
  static float InRange(double factor, double figure, int decimals) {
    return figure < 0 ? 0 : RoundSingle(static_cast<float>(std::min(figure * factor, kLargestAmount)), decimals);
  }

  const Session& session_;
  bool costs_;
  bool emissions_;
  int unit_;
  bool costsLeft_ = false;
  bool emissionsLeft_ = false;
};

// A row of either kind of colour with what the source tells of it.
template <class Color>
Color NewColor(const Session& session, Figures& figures, const SourceColor& source, const StoredNames& names) {
  Color color;
  color.Color_Name = source.name;
  color.Color_Code = Left(source.code.value_or(""), static_cast<std::size_t>(session.NameLength));
  color.Notes = source.notes.value_or("");
  color.Inv_Note = Left(source.inventoryNote.value_or(""), static_cast<std::size_t>(schema::Basic.fields[8].size));
  color.Reorder = figures.Quantity(source.reorder);
  color.PurchaseCost = figures.Cost(source.purchaseCost);
  color.VOC = figures.Emission(source.VOC);
  color.HAP = figures.Emission(source.HAP);
  color.Date_Entered = session.clock.Today();
  color.book = source.book && *source.book != BookData{} ? *source.book : names.BookOf(source.name);
  return color;
}

const std::vector<std::string> kRolledUp{"BasicCost", "BasicVOC", "BasicHAP", "LastModified"};

std::vector<std::string> NewFormulaFields() {
  std::vector<std::string> fields = kRolledUp;
  for (const Cell& cell : MixFields().Cells({}, kNewRowUses)) fields.push_back(cell.first);
  return fields;
}

std::string RecipeText(const Recipe& recipe) {
  std::string text;
  for (const Ingredient& line : recipe) text += line.name + "\t" + ShortestText(line.amount) + "\n";
  return text;
}

// The list of Databases as whoever hears of the commit finds it; as it was when that does not come.
class ListedDatabase {
 public:
  explicit ListedDatabase(Session& session) : session_(session), before_(session.databaseList) {}
  ~ListedDatabase() {
    if (!kept_) session_.databaseList = std::move(before_);
  }
  ListedDatabase(const ListedDatabase&) = delete;
  ListedDatabase& operator=(const ListedDatabase&) = delete;
  void Keep() { kept_ = true; }

 private:
  Session& session_;
  std::vector<std::string> before_;
  bool kept_ = false;
};

class Merger {
 public:
  Merger(Session& session, const MergePlan& plan, MergeReport& report)
      : session_(session),
        plan_(plan),
        report_(report),
        file_(session.File()),
        database_(plan.target.database),
        figures_(session, plan) {}

  // False when it was cancelled.
  bool Run() {
    ProgressRun progress(session_.progress, kProgress);
    ListedDatabase listed(session_);
    Transaction transaction(file_);
    if (plan_.target.make) MakeDatabase();
    ReadWhatIsNeeded();
    basicNames_ = StoredNames(session_, ColorKind::Basic, database_);
    mixNames_ = StoredNames(session_, ColorKind::Mix, database_);
    AddBasics();
    AddSets();
    if (!WriteFormulas(progress)) return false;
    if (plan_.options.stock) PostQuantities();
    Record();
    transaction.Note({Change::Kind::Mix, database_, "", Change::What::All, ""});
    if (!basicKeys_.empty()) transaction.Note({Change::Kind::Basic, database_, "", Change::What::All, ""});
    if (!setKeys_.empty()) transaction.Note({Change::Kind::AdditiveSet, database_, "", Change::What::All, ""});
    transaction.Commit();
    listed.Keep();
    for (std::string& note : figures_.Notes()) report_.notes.push_back(std::move(note));
    return true;
  }

  bool HasWork() {
    ReadWhatIsNeeded();
    return plan_.Taken() > 0 || std::ranges::any_of(plan_.basics, [this](const MergeBasic& b) { return IsMade(b); });
  }

 private:
  template <class Words, class Work>
  auto Step(const Words& words, const Work& work) {
    return InWords(session_.DataFileName, words, work);
  }

  void MakeDatabase() {
    session_.databaseList.push_back(database_);
    Step([] { return "Couldn't create new database tables."; }, [this] { CreateEmptyDatabase(file_, database_); });
    if (!plan_.target.ofGuides) return;
    const auto guides = Step([] { return "Couldn't open database."; }, [this] { return OpenTemplate(session_); });
    if (guides == nullptr) return;
    Step([this] { return fmt::format("Couldn't update the {} Info Table.", database_); },
         [&] { CopyTemplateInfo(session_, *guides, database_); });
  }

  /// Writes a color; where that fails, `line` finds the line of the source.
  template <class Line, class Work>
  void Write(const Line& line, const Work& work) {
    Step([&] { return fmt::format("Couldn't write new formula(s) to Database. Line {}", line()); }, work);
  }

  /// In a source without lines, its number among its like.
  static std::size_t LineOf(const SourceColor& color, std::size_t place) {
    return color.line == 0 ? place + 1 : static_cast<std::size_t>(color.line);
  }
  /// A Basic Color that has no line of its own stands where the first formula names it.
  std::size_t LineOf(const MergeBasic& basic) const {
    if (basic.place != kNoPlace) return LineOf(plan_.table.basics[basic.place], basic.place);
    const auto names = [&](const SourceColor& formula) { return HoldsIngredient(formula.recipe, basic.name); };
    const auto& formulas = plan_.table.formulas;
    const auto user = std::ranges::find_if(formulas, names);
    return user == formulas.end() ? 0 : LineOf(*user, static_cast<std::size_t>(user - formulas.begin()));
  }

  // The sets and the Basic Colors of the formulas that are taken.
  void ReadWhatIsNeeded() {
    for (std::size_t place = 0; place < plan_.choices.size(); ++place) {
      if (!plan_.choices[place].take) continue;
      const SourceColor& formula = plan_.table.formulas[place];
      for (const Ingredient& line : formula.recipe) neededBasics_.insert(line.name);
      if (!formula.addSetName.empty()) neededSets_.insert(SetHere(plan_, formula.addSetName));
    }
    for (std::size_t place = 0; place < plan_.table.sets.size(); ++place) {
      if (!IsSetMade(plan_.sets[place])) continue;
      for (const Ingredient& line : plan_.table.sets[place].parts) {
        neededBasics_.insert(line.name);
        additives_.insert(line.name);
      }
    }
  }

  bool IsSetMade(const MergeSet& set) const {
    return !set.isHere && !set.here.empty() && (plan_.options.unusedBasics || neededSets_.contains(set.here));
  }
  bool IsMade(const MergeBasic& basic) const {
    return neededBasics_.contains(basic.name) || (plan_.options.unusedBasics && basic.place != kNoPlace);
  }

  void AddBasics() {
    NewBasicRows writer(session_, database_);
    std::int32_t sort = NextIngSort(session_, database_);
    const SourceColor plain{};
    for (const MergeBasic& basic : plan_.basics) {
      if (!IsMade(basic) || basicNames_.KeyOf(basic.name) != 0) continue;
      SourceColor named = basic.place == kNoPlace ? plain : plan_.table.basics[basic.place];
      named.name = basic.name;
      auto color = NewColor<BasicColor>(session_, figures_, named, basicNames_);
      color.IngSort = sort++;
      color.Additive = named.additive.value_or(false) || additives_.contains(basic.name);
      Write([&] { return LineOf(basic); }, [&] { basicKeys_.push_back(writer.Insert(color)); });
      report_.basics.push_back(basic.name);
      AskForStock(ColorKind::Basic, named);
    }
  }

  void AddSets() {
    for (std::size_t place = 0; place < plan_.table.sets.size(); ++place) {
      const MergeSet& planned = plan_.sets[place];
      if (!IsSetMade(planned)) continue;
      AdditiveSet set;
      set.SetName = planned.here;
      set.SetRows(plan_.table.sets[place].parts);
      setKeys_.push_back(InsertAdditiveSet(session_, database_, set));
      report_.sets.push_back(EqualNoCase(planned.name, planned.here) ? planned.name
                                                                      : planned.name + " as " + planned.here);
    }
  }

  bool WriteFormulas(ProgressRun& progress) {
    FigureBook book(session_, database_);
    RecipeWriter changed(session_, database_, kRolledUp);
    RecipeWriter added(session_, database_, NewFormulaFields());
    for (RecipeWriter* writer : {&changed, &added}) writer->SetMore(3, session_.clock.Today());
    PresentRecipes present(session_, database_);
    const std::size_t all = plan_.Taken();
    std::size_t done = 0;
    for (std::size_t place = 0; place < plan_.choices.size(); ++place) {
      const MergeChoice& choice = plan_.choices[place];
      if (!choice.take) continue;
      const SourceColor& formula = plan_.table.formulas[place];
      RecipeWriter& writer = choice.key == 0 ? added : changed;
      const RolledUp rolledUp = book.RollUp(formula.recipe);
      Write([&] { return LineOf(formula, place); }, [&] {
        writer.Set(formula.recipe, SetHere(plan_, formula.addSetName))
            .SetMore(0, rolledUp.BasicCost)
            .SetMore(1, rolledUp.BasicVOC)
            .SetMore(2, rolledUp.BasicHAP);
        choice.key == 0 ? Add(formula, writer) : Replace(choice.key, formula, writer, present);
      });
      if (++done % 64 != 0) continue;
      progress.Step(done, all);
      if (session_.progress.Cancelled()) return false;
    }
    return true;
  }

  void Replace(std::int64_t key, const SourceColor& formula, RecipeWriter& writer, PresentRecipes& present) {
    const PresentRecipe before = present.Read(key);
    replaced_.push_back({{key, formula.name, {}}, RecipeText(before.recipe), before.AddSetName, before.LastModified});
    writer.Update(key);
    report_.changed.push_back(formula.name);
  }

  void Add(const SourceColor& formula, RecipeWriter& writer) {
    auto mix = NewColor<MixColor>(session_, figures_, formula, mixNames_);
    mix.Recycle = formula.recycle.value_or(true);
    // Most of what stands in a new row stood in the one before, which the writer still has.
    std::vector<Cell> cells = MixFields().Cells(mix, kNewRowUses);
    for (std::size_t n = 0; n < cells.size(); ++n)
      if (lastCells_.empty() || cells[n].second != lastCells_[n].second)
        writer.SetMore(kRolledUp.size() + n, cells[n].second);
    lastCells_ = std::move(cells);
    formulaKeys_.push_back(writer.Insert());
    report_.added.push_back(formula.name);
    AskForStock(ColorKind::Mix, formula);
  }

  void AskForStock(ColorKind kind, const SourceColor& source) {
    const float quantity = figures_.Quantity(source.inventory);
    if (!plan_.options.stock || !(quantity > 0)) return;
    Posting& posting = stock_.emplace_back();
    posting.source = PostingSource::ManualAdjust;
    posting.kind = kind;
    posting.name = source.name;
    posting.database = database_;
    posting.quantity = quantity;
    posting.reason = "Import from " + plan_.table.database;
  }

  void PostQuantities() {
    const StockRules rules = ReadStockRules(session_);
    for (const Posting& posting : stock_) PostStock(session_, rules, posting);
  }

  std::vector<ImportedRow> RowsOf(MergeTable table, const std::vector<std::int64_t>& keys) const {
    ImportedRows reader(session_, table, database_);
    std::vector<ImportedRow> rows;
    rows.reserve(keys.size());
    for (const std::int64_t key : keys) rows.push_back(reader.Read(key));
    return rows;
  }

  // What is needed to take all of it back.
  void Record() {
    FormulaImport import;
    import.Moment = session_.clock.Now();
    import.Username = session_.CurrentUser;
    import.database = database_;
    import.source = plan_.table.source;
    import.madeDatabase = plan_.target.make;
    import.formulas = RowsOf(MergeTable::Formulas, formulaKeys_);
    import.basics = RowsOf(MergeTable::Basics, basicKeys_);
    import.sets = RowsOf(MergeTable::Sets, setKeys_);
    ImportedRows reader(session_, MergeTable::Formulas, database_);
    for (ReplacedRecipe& one : replaced_) one.row = reader.Read(one.row.key);
    import.replaced = std::move(replaced_);
    report_.import = AddFormulaImport(file_, import);
    KeepImportForUndo(session_, report_.import, import.source);
  }

  Session& session_;
  const MergePlan& plan_;
  MergeReport& report_;
  Database& file_;
  const std::string database_;
  Figures figures_;
  NamesOnce neededBasics_;
  NamesOnce neededSets_;
  NamesOnce additives_;
  StoredNames basicNames_;
  StoredNames mixNames_;
  std::vector<std::int64_t> formulaKeys_;
  std::vector<std::int64_t> basicKeys_;
  std::vector<std::int64_t> setKeys_;
  std::vector<ReplacedRecipe> replaced_;
  std::vector<Cell> lastCells_;
  std::vector<Posting> stock_;
};

MergeReport ReportOf(const MergePlan& plan) {
  MergeReport report;
  report.source = plan.table.source;
  report.sourceDatabase = plan.table.database;
  report.database = plan.target.database;
  report.madeDatabase = plan.target.make;
  report.same = plan.Count(MergeMod::Same);
  for (const BadLine& bad : plan.table.badLines)
    report.refused.push_back((bad.line == 0 ? bad.content : fmt::format("line {}", bad.line)) + ": " + bad.why);
  for (std::size_t place = 0; place < plan.choices.size(); ++place) {
    const MergeChoice& choice = plan.choices[place];
    const std::string& name = plan.table.formulas[place].name;
    if (choice.mod == MergeMod::Refused) report.refused.push_back(name + ": " + choice.why);
    if (choice.mod == MergeMod::Different && !choice.take) report.kept.push_back(name);
    if (choice.mod == MergeMod::New && !choice.take) report.left.push_back(name);
  }
  for (const MergeSet& set : plan.sets)
    if (set.here.empty())
      report.notes.push_back(
          fmt::format("The Additive Set {} was left out: {}. Its formulas come without a set.", set.name, set.why));
  return report;
}

// Somebody may have been at work between the comparison and now.
bool StillFits(Session& session, const MergePlan& plan) {
  if (plan.target.make) return session.FindDatabase(plan.target.database) == nullptr;
  if (session.FindDatabase(plan.target.database) == nullptr) return false;
  const StoredNames names(session, ColorKind::Mix, plan.target.database);
  for (std::size_t place = 0; place < plan.choices.size(); ++place)
    if (plan.choices[place].take && names.KeyOf(plan.table.formulas[place].name) != plan.choices[place].key)
      return false;
  return true;
}

void AddNames(std::string& text, std::string_view heading, const std::vector<std::string>& names) {
  if (names.empty()) return;
  text += fmt::format("\r\n{} ({})\r\n", heading, names.size());
  for (const std::string& name : names) text += "  " + name + "\r\n";
}

std::string ColumnsOf(MergeTable table) {
  if (table == MergeTable::Basics) return BasicFields().Columns();
  if (table == MergeTable::Sets) return AdditiveSetFields().Columns();
  std::string columns;
  for (const RecordField& field : MixFields())
    if (!field.column.starts_with("Basic"))
      columns += (columns.empty() ? "" : ", ") + Quoted(field.column);
  return columns;
}

const Table& ShapeOf(MergeTable table) {
  if (table == MergeTable::Basics) return schema::Basic;
  return table == MergeTable::Sets ? schema::Additives : schema::Mix;
}

}  // namespace

ImportedRows::ImportedRows(const Session& session, MergeTable table, std::string_view database)
    : row_(session.File().Prepare(fmt::format("SELECT {} FROM {} WHERE RowKey = ?", ColumnsOf(table),
                                              session.QuotedTable(ShapeOf(table), database)))) {}

ImportedRow ImportedRows::Read(std::int64_t key) {
  ImportedRow row{key, {}, {}};
  if (row_.Bind(1, key).Step()) {
    row.name = row_.Text(0);
    row.digest = RowDigest(row_, 0);
  }
  row_.Reset();
  return row;
}

Result<MergeReport> RunMerge(Session& session, const MergePlan& plan) {
  if (auto allowed = RequireAct(session, Act::ImportFormulas); !allowed) return std::unexpected(allowed.error());
  if (plan.target.make)
    if (auto allowed = RequireAct(session, Act::Databases); !allowed) return std::unexpected(allowed.error());
  MergeReport report = ReportOf(plan);
  Merger merger(session, plan, report);
  if (!merger.HasWork()) return report;
  if (!StillFits(session, plan))
    return Refuse(std::string(kTitle), fmt::format("The {} Database has changed since it was compared. Nothing was "
                                                   "changed.\n\nCompare it once more.",
                                                   plan.target.database));
  if (!merger.Run()) return Refuse(std::string(kTitle), "The import was cancelled. Nothing was changed.");
  return report;
}

std::string ReportText(const MergeReport& report, const DateTime& when) {
  std::string text = fmt::format("Import of formulas, {}\r\nSource: {}{}\r\nDatabase: {}{}\r\n", when.ToText(),
                                 report.source,
                                 report.sourceDatabase.empty() ? "" : fmt::format(" ({})", report.sourceDatabase),
                                 report.database, report.madeDatabase ? " (new)" : "");
  text += fmt::format(
      "\r\n{} added, {} changed, {} different and kept, {} new and not chosen, {} the same already, {} refused\r\n",
      report.added.size(), report.changed.size(), report.kept.size(), report.left.size(), report.same,
      report.refused.size());
  AddNames(text, "Formulas added", report.added);
  AddNames(text, "Formulas changed", report.changed);
  AddNames(text, "Different, kept as they are", report.kept);
  AddNames(text, "New, not chosen", report.left);
  AddNames(text, "Refused", report.refused);
  AddNames(text, "Basic Colors made", report.basics);
  AddNames(text, "Additive Sets made", report.sets);
  AddNames(text, "To be known", report.notes);
  return text;
}

}  // namespace vellumark
