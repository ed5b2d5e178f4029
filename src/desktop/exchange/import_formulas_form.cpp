#include "desktop/exchange/import_formulas_form.h"

#include <QTabWidget>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/datafile/databases.h"
#include "core/exchange/formula_sources.h"
#include "core/exchange/text_file.h"
#include "desktop/exchange/database_list.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"
#include "desktop/tools/checked_list.h"

namespace vellumark::desktop {
namespace {

constexpr int kComparisonPage = 1;
constexpr int kReportPage = 2;
// In the order of optDest.
constexpr int kNewDatabase = 1;

QString Filters() {
  return "Vellumark Formula File (*.mfe *.txt);;Sun Chemical Formula File (*.rez);;Zeller Gmelin Formula File (*.txt);;"
         "Joules Angstrom Formula File (*.txt);;Basic Color Heading (*.txt *.xls);;Vellumark Data File (*.vkd)";
}

}  // namespace

/// The formulas of the plan. One that is here already as it is, or that was refused, has no box.
class DBImport_Formulas::Planned : public CheckedSource {
 public:
  explicit Planned(Session& session) : session_(session) {}

  void Show(std::shared_ptr<MergePlan> plan) {
    plan_ = std::move(plan);
    ResetChecks(plan_ ? plan_->choices.size() : 0);
    for (int row = 0; row < Rows(); ++row) SetChecked(row, Choice(row).take);
  }

  int Rows() const override { return plan_ ? static_cast<int>(plan_->choices.size()) : 0; }
  std::string Text(int row, int column) const override {
    switch (column) {
      case 1:
        return plan_->table.formulas[Place(row)].name;
      case 2:
        return std::string(MergeModText(Choice(row).mod));
      case 3:
        return U8(Choice(row).key == 0 ? tr("No") : tr("Yes"));
      case 4:
        return ChangesText(session_, *plan_, Place(row));
      default:
        return {};
    }
  }
  bool CanCheck(int row) const override {
    return Choice(row).mod == MergeMod::New || Choice(row).mod == MergeMod::Different;
  }
  const MergeChoice& Choice(int row) const { return plan_->choices[Place(row)]; }

 private:
  static std::size_t Place(int row) { return static_cast<std::size_t>(row); }

  Session& session_;
  std::shared_ptr<MergePlan> plan_;
};

DBImport_Formulas::DBImport_Formulas(WindowList& windowList, FileChooser choose)
    : Window(windowList, "DBImport_Formulas", tr("Import Data From ...")),
      choose_(std::move(choose)),
      rows_(std::make_shared<Planned>(session)) {
  setWindowIcon(Icon("DBTools"));
  Form form(*this);
  TabSet tabs = form.Tabs("tabSteps");
  steps_ = tabs.Widget();
  Form first = tabs.Page(tr("Step &1 - Source and Destination"), "tabSource");
  std::vector<Form> sides = first.Columns(2);
  BuildSource(sides[0]);
  BuildDestination(sides[1]);
  BuildComparison(tabs.Page(tr("Step &2 - Formula Comparison"), "tabCompare"));
  BuildReport(tabs.Page(tr("Step &3 - Result"), "tabResult"));
  form.ButtonsWithoutDefault({form.Button("cmdCompare", tr("&Compare"), Qt::Key_F5),
                              import_ = form.Button("cmdImport", tr("I&mport")),
                              undo_ = form.Button("cmdUndo", tr("Undo Im&port")), form.Button("cmdClose", tr("Close"))});
  for (Field* field : std::initializer_list<Field*>{source_, account_, sourceDatabase_, guideList_, unit_, destination_, newName_,
                                                    target_, multiplyOut_, unused_, stock_, skipBad_, whatElse_, done_})
    field->DoNotTrack();
  ListAccounts();
  ListSources();
  ListDatabases(*target_, session);
  Forget({});
  source_->Button(0)->setFocus();
}

DBImport_Formulas::~DBImport_Formulas() = default;

void DBImport_Formulas::BuildSource(Form form) {
  form.Heading(tr("Source"));
  source_ = form.Radio("optSource", {{"optSource_File", tr("File")},
                                     {"optSource_Database", tr("Database of this Data File")},
                                     {"optSource_Pantone", tr("PANTONE guides")},
                                     {"optSource_Cloud", tr("Shared Cloud account")}});
  form.Wide(source_);
  fileName_ = form.Hint({}, "lblFile");
  fileName_->setWordWrap(true);
  form.Wide(fileName_);
  form.Row({browse_ = form.Button("cmdBrowse", tr("&Browse ...")),
            columns_ = form.Button("cmdColumns", tr("Col&umns ...")),
            form.Link("cmdFormatInfo", tr("Format Info"), [this] { windows.OpenForm("ExportImportFileExamples"); })});
  account_ = form.Combo("cmbAccount");
  account_->setMinimumWidth(180);
  account_->setPlaceholderText(tr("Please select a Cloud Account to work with"));
  form.Row(tr("Acco&unt"), {account_, cloudGet_ = form.Button("cmdCloudGet", tr("&Get from Cloud"))});
  sourceDatabase_ = form.Combo("cmbDBList");
  sourceDatabase_->setMinimumWidth(180);
  form.Row(tr("Dat&abase"), sourceDatabase_);
  unit_ = form.Combo("cmbUnit");
  std::vector<std::string> units;
  for (const int unit : {UnitPound, UnitKilogram, UnitGram, UnitOunce}) units.emplace_back(UnitName(unit));
  unit_->SetItems(units);
  unit_->SetText(UnitName(session.UMI));
  unit_->setToolTip(tr("Of its costs, emissions and quantities"));
  form.Row(tr("U&nit of the source"), unit_);
  guideList_ = form.CheckList("lstPantoneData");
  try {
    guides_ = GuidesInTemplate(session);
  } catch (const Failure& failure) {
    fileName_->setToolTip(Q(failure.subject) + ": " + Q(failure.cause));
  }
  QStringList titles;
  for (const Guide* guide : guides_) titles += "Pantone " + Q(guide->title).replace(" and ", " & ");
  guideList_->SetItems(titles);
  guideList_->setMaximumHeight(5 * space::kRowHeight + space::kUnit);
  guideList_->setAccessibleName(tr("PANTONE guides"));
  form.Row(tr("&Guides"), guideList_);
  form.Stretch();
  connect(source_, &RadioField::ChosenChanged, this, [this] {
    ListSources();
    Forget({});
  });
  account_->OnChosen([this](int place) { TakeAccount(place); });
  sourceDatabase_->OnChosen([this](int) { Forget({}); });
  unit_->OnChosen([this](int) { Forget({}); });
  connect(guideList_, &QListWidget::itemChanged, this, [this] { Forget({}); });
}

void DBImport_Formulas::BuildDestination(Form form) {
  form.Heading(tr("Destination"));
  destination_ = form.Radio(
      "optDest", {{"optDest_Existing", tr("Existing Database")}, {"optDest_New", tr("New Database")}}, Qt::Horizontal);
  form.Wide(destination_);
  QLabel* hint = form.Hint(tr("Enter a name for the New Database import selection or use Existing Database and select a "
                              "current Database to merge the data into."),
                           "lblDest");
  hint->setWordWrap(true);
  form.Wide(hint);
  target_ = form.Combo("cmbDBList_Dest");
  target_->setMinimumWidth(180);
  form.Row(tr("Ex&isting"), target_);
  newName_ = form.Text("txtDBName", TextRule::DatabaseName(static_cast<int>(kDatabaseNameLength)));
  newName_->SetWidthInChars(static_cast<int>(kDatabaseNameLength) + 2);
  form.Row(tr("Ne&w"), newName_);
  form.Heading(tr("What comes in"));
  multiplyOut_ = form.Check("chkMultiplyOut", tr("Multiply out ingredients that are formulas themselves"));
  unused_ = form.Check("chkUnusedBasics", tr("Also Basic Colors and sets that no chosen formula uses"));
  unused_->setChecked(true);
  stock_ = form.Check("chkStock", tr("Quantities of new colors"));
  for (CheckField* check : {multiplyOut_, unused_, stock_}) {
    form.Wide(check);
    connect(check, &QCheckBox::toggled, this, [this] { Forget({}); });
  }
  form.Stretch();
  connect(destination_, &RadioField::ChosenChanged, this, [this] { Forget({}); });
  target_->OnChosen([this](int) { Forget({}); });
  connect(newName_, &QLineEdit::textEdited, this, [this] { Forget({}); });
}

void DBImport_Formulas::BuildComparison(Form form) {
  form.Wide(counts_ = form.Label("lblCounts"));
  counts_->setWordWrap(true);
  Grid* grid = form.Table("fgCompare");
  grid->setAccessibleName(tr("Formula Comparison"));
  grid->View().setAccessibleName(tr("Formula Comparison"));
  list_ = new CheckedList(*grid, rows_,
                          {GridColumn::Text(tr("Color"), 240), GridColumn::Text(tr("ModType"), 96),
                           GridColumn::Text(tr("In Database"), 96), GridColumn::Text(tr("Mod1"), 720)});
  grid->ShowFilter(tr("Filter"));
  form.Wide(grid, 1);
  const auto choice = [&](const char* name, const QString& text, bool isNew, bool different) {
    choices_.push_back(form.Button(name, text, [this, isNew, different] { ChooseMods(isNew, different); }));
    return choices_.back();
  };
  form.ButtonsWithoutDefault({choice("cmdSelectAll", tr("Select &All"), true, true),
                              choice("cmdSelectNew", tr("&New"), true, false),
                              choice("cmdSelectDifferent", tr("&Different"), false, true),
                              choice("cmdDeselectAll", tr("Deselect A&ll"), false, false),
                              view_ = form.Button("cmdView", tr("&View"))});
  form.Wide(skipBad_ = form.Check("chkSkipBad", tr("Leave out what cannot be imported")));
  whatElse_ = form.Note("txtWhatElse", 2);
  whatElse_->setReadOnly(true);
  whatElse_->setMaximumHeight(3 * space::kRowHeight);  // the formulas have the room
  whatElse_->setAccessibleName(tr("Basic Colors to be made, and what cannot be imported"));
  form.Wide(whatElse_);
  connect(list_, &CheckedList::CheckedChanged, this, [this] {
    TakeChecked();
    Changed();
  });
  connect(grid, &Grid::RowActivated, this, [this] { cmdView_Click(); });
  connect(grid, &Grid::CurrentRowChanged, this, [this] { Changed(); });
  connect(skipBad_, &QCheckBox::toggled, this, [this] { Changed(); });
}

void DBImport_Formulas::BuildReport(Form form) {
  done_ = form.Note("txtReport", 8);
  done_->setReadOnly(true);
  done_->setAccessibleName(tr("What was done"));
  form.Wide(done_, 1);
  form.ButtonsWithoutDefault({saveReport_ = form.Button("cmdSaveReport", tr("&Save Report"))});
}

DBImport_Formulas::Source DBImport_Formulas::ChosenSource() const {
  return static_cast<Source>(source_->Chosen());
}

bool DBImport_Formulas::IsDataFile() const {
  return ChosenSource() == Source::File && !databasesOfFile_.empty();
}

std::vector<std::string> DBImport_Formulas::ChosenGuides() const {
  std::vector<std::string> codes;
  for (int row = 0; row < guideList_->count(); ++row)
    if (guideList_->IsChecked(row)) codes.emplace_back(guides_.at(static_cast<std::size_t>(row))->code);
  return codes;
}

void DBImport_Formulas::ListSources() {
  const std::string before = sourceDatabase_->Text();
  std::vector<std::string> names = ChosenSource() == Source::Cloud ? databasesOfShare_ : databasesOfFile_;
  if (ChosenSource() == Source::Database) {
    names = session.databaseList;
    std::erase(names, session.CurrentDatabase);
  }
  sourceDatabase_->SetItems(ChosenSource() == Source::Guides ? std::vector<std::string>{} : names);
  sourceDatabase_->setCurrentIndex(sourceDatabase_->count() == 1 ? 0 : -1);
  if (const int held = sourceDatabase_->findText(Q(before)); held >= 0) sourceDatabase_->setCurrentIndex(held);
  fileName_->setText(ChosenSource() == Source::File
                         ? file_.empty() ? tr("Click the Browse button to select a file to import data from.")
                                         : Q(file_.string())
                         : QString());
  if (ChosenSource() == Source::Cloud && !shareFile_.empty())
    fileName_->setText(tr("Fetched on %1").arg(DateText(shares_.at(static_cast<std::size_t>(account_->currentIndex())).came)));
}

void DBImport_Formulas::ListAccounts() {
  shares_.clear();
  try {
    shares_ = SharesHere(session);
  } catch (const Failure& failure) {
    account_->setToolTip(Q(failure.subject) + ": " + Q(failure.cause));
  }
  std::vector<std::string> names;
  for (const ShareRow& share : shares_) {
    std::string name = share.AcctNum;
    if (!share.Facility.empty()) name += " - " + share.Facility;
    names.push_back(name + (share.came ? std::string() : U8(tr(" (nothing fetched)"))));
  }
  account_->SetItems(names);
  account_->setCurrentIndex(-1);
  databasesOfShare_.clear();
  shareFile_.clear();
}

// A share is a Data File in the other shop's unit of stock.
void DBImport_Formulas::TakeAccount(int place) {
  databasesOfShare_.clear();
  shareFile_.clear();
  const ShareRow& share = shares_.at(static_cast<std::size_t>(place));
  if (share.came) {
    const std::filesystem::path file = SharedDataFile(session, share.AcctNum);
    if (const auto names = DatabasesOfFile(session, file); Accepted(names)) {
      databasesOfShare_ = *names;
      shareFile_ = file;
    }
    if (share.UMI != 0) unit_->SetText(UnitName(share.UMI));
  }
  ListSources();
  Forget({});
}

void DBImport_Formulas::cmdCloudGet_Click() {
  windows.RunDialog("Cloud_GetPutData_Form", {{"Task", CloudTask::DBImport_Formulas}});
  ListAccounts();
  ListSources();
  Forget({});
}

void DBImport_Formulas::cmdBrowse_Click() {
  const QString path = choose_({tr("Import Data From ..."), Filters(), {}, {}, false}, this);
  if (path.isEmpty()) return;
  const std::filesystem::path chosen(U8(path));
  std::vector<std::string> databases;
  if (EqualNoCase(chosen.extension().string(), ".vkd")) {
    const auto names = DatabasesOfFile(session, chosen);
    if (!Accepted(names)) return;
    databases = *names;
  }
  file_ = chosen;
  databasesOfFile_ = std::move(databases);
  source_->Choose(0);
  ListSources();
  Forget({});
}

void DBImport_Formulas::cmdColumns_Click() {
  if (windows.RunDialog("ImportColumnsForm", {{"File", file_.string()}})) Forget({});
}

Result<FormulaTable> DBImport_Formulas::Read() {
  switch (ChosenSource()) {
    case Source::Guides:
      return ReadGuideFormulas(session, ChosenGuides());
    case Source::Database:
      return ReadDatabaseFormulas(session, sourceDatabase_->Text());
    case Source::Cloud:
      if (shareFile_.empty())
        return Refuse("Import Formulas", "Please select a Cloud Account to work with", "cmbAccount");
      if (sourceDatabase_->Text().empty())
        return Refuse("Import Formulas", "Please select a Cloud database to copy formulas from", "cmbDBList");
      return ReadDataFileFormulas(session, shareFile_, sourceDatabase_->Text());
    case Source::File:
      break;
  }
  if (file_.empty())
    return Refuse("Import Formulas", U8(tr("Click the Browse button to select a file to import data from.")), "cmdBrowse");
  if (!IsDataFile()) return ReadFormulas(session, file_);
  if (sourceDatabase_->Text().empty())
    return Refuse("Database Copy Error", "Please select a database to copy formulas from", "cmbDBList");
  return ReadDataFileFormulas(session, file_, sourceDatabase_->Text());
}

Result<MergeTarget> DBImport_Formulas::Target() {
  if (destination_->Chosen() != kNewDatabase) {
    if (ChosenSource() == Source::Cloud && target_->Text().empty())
      return Refuse("Import Formulas", "Select a destination database to copy formulas to", U8(target_->objectName()));
    return MergeTarget{.database = target_->Text()};
  }
  auto target = AskTarget(session, newName_->Text());
  if (target) target->ofGuides = target->make && ChosenSource() == Source::Guides;
  return target;
}

void DBImport_Formulas::cmdCompare_Click() {
  Forget({});
  Compare();
}

void DBImport_Formulas::Compare() {
  const auto target = Target();
  if (!Accepted(target)) return;
  Result<MergePlan> plan = MergePlan{};
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Comparing Formulas ..."), true);
    auto table = Read();
    if (table) {
      MergeOptions options{.multiplyOut = multiplyOut_->isChecked(),
                           .unusedBasics = unused_->isChecked(),
                           .stock = stock_->isChecked()};
      options.sourceUnit = ParseUnit(unit_->Text()).value_or(session.UMI);
      plan = PlanMerge(session, *std::move(table), *target, options);
    } else {
      plan = std::unexpected(table.error());
    }
  }
  if (!Accepted(plan)) return;
  plan_ = std::make_shared<MergePlan>(*std::move(plan));
  report_.reset();
  ShowPlan();
  steps_->setCurrentIndex(kComparisonPage);
  list_->List().View().setFocus();
}

void DBImport_Formulas::Forget(const QString& why) {
  if (list_ == nullptr || done_ == nullptr) return;
  plan_.reset();
  rows_->Show(nullptr);
  list_->Refresh();
  list_->List().SetEmptyText(tr("Nothing is compared yet: Compare reads the source"));
  counts_->setText(why);
  skipBad_->setChecked(false);
  skipBad_->setVisible(false);
  whatElse_->setVisible(false);
  Changed();
}

void DBImport_Formulas::ShowPlan() {
  rows_->Show(plan_);
  list_->Refresh();
  ShowWhatElse();
  Changed();
}

void DBImport_Formulas::ShowWhatElse() {
  std::string text = RefusedText(*plan_);
  skipBad_->setVisible(!text.empty());
  const auto add = [&text](const std::string& line) { text += (text.empty() ? "" : "\n") + line; };
  for (const std::string& lost : plan_->table.lacks) add(lost);
  for (const MergeSet& set : plan_->sets) {
    if (set.here.empty()) add(U8(tr("Additive Set %1: %2").arg(Q(set.name), Q(set.why))));
    if (!set.isHere && !set.here.empty() && !EqualNoCase(set.name, set.here))
      add(U8(tr("Additive Set %1 comes in as %2").arg(Q(set.name), Q(set.here))));
  }
  std::string basics;
  for (const MergeBasic& basic : plan_->basics) basics += (basics.empty() ? "" : ", ") + basic.name;
  if (!basics.empty()) add(U8(tr("New Basic Colors (%1): %2").arg(plan_->basics.size()).arg(Q(basics))));
  whatElse_->SetText(text);
  whatElse_->setVisible(!text.empty());
}

void DBImport_Formulas::TakeChecked() {
  if (!plan_) return;
  for (std::size_t place = 0; place < plan_->choices.size(); ++place)
    plan_->choices[place].take = rows_->IsChecked(static_cast<int>(place));
}

void DBImport_Formulas::ChooseMods(bool isNew, bool different) {
  if (!plan_) return;
  for (const int row : list_->List().ShownRows()) {
    const MergeMod mod = rows_->Choice(row).mod;
    rows_->SetChecked(row, (isNew && mod == MergeMod::New) || (different && mod == MergeMod::Different));
  }
  list_->List().View().viewport()->update();
  TakeChecked();
  Changed();
}

void DBImport_Formulas::UpdateEnabled() {
  if (undo_ == nullptr || done_ == nullptr) return;
  const bool fromFile = ChosenSource() == Source::File;
  browse_->setEnabled(fromFile);
  columns_->setEnabled(fromFile && !file_.empty() && !IsDataFile());
  const bool fromCloud = ChosenSource() == Source::Cloud;
  account_->setEnabled(fromCloud && account_->count() > 0);
  cloudGet_->setEnabled(fromCloud);
  sourceDatabase_->setEnabled(ChosenSource() == Source::Database || IsDataFile() || (fromCloud && !shareFile_.empty()));
  unit_->setEnabled(fromFile || fromCloud);
  guideList_->setEnabled(ChosenSource() == Source::Guides);
  newName_->setEnabled(destination_->Chosen() == kNewDatabase);
  target_->setEnabled(destination_->Chosen() != kNewDatabase);
  source_->Button(static_cast<int>(Source::Guides))->setEnabled(!guides_.empty());
  source_->Button(static_cast<int>(Source::Cloud))->setEnabled(windows.Knows("Cloud_GetPutData_Form"));
  source_->Button(static_cast<int>(Source::Database))->setEnabled(session.databaseList.size() > 1);
  for (CommandButton* button : choices_) button->setEnabled(plan_ != nullptr);
  view_->setEnabled(plan_ && list_->List().CurrentRow() >= 0);
  if (plan_)
    counts_->setText(tr("%1 new, %2 different, %3 the same, %4 refused. Chosen: %5")
                         .arg(plan_->Count(MergeMod::New))
                         .arg(plan_->Count(MergeMod::Different))
                         .arg(plan_->Count(MergeMod::Same))
                         .arg(plan_->Count(MergeMod::Refused) + plan_->table.badLines.size())
                         .arg(plan_->Taken()) +
                     (!fromCloud ? QString()
                      : plan_->Taken() == 0 ? "   ·   " + tr("Please choose colors for import")
                                            : "   ·   " + tr("Click on Color Name to view details")));
  const bool blocked = skipBad_->isVisibleTo(skipBad_->parentWidget()) && !skipBad_->isChecked();
  import_->setEnabled(plan_ && !session.ArchiveView && !blocked &&
                      (plan_->Taken() > 0 || (plan_->options.unusedBasics && !plan_->basics.empty())));
  saveReport_->setEnabled(report_.has_value());
  undo_->setEnabled(!session.ArchiveView && HasImport(session));
}

void DBImport_Formulas::OnChanges(const std::vector<Change>& changes) {
  if (working_) return;
  for (const Change& change : changes) {
    if (change.kind == Change::Kind::DatabaseList) {
      ListSources();
      ListDatabases(*target_, session);
    }
    const bool concerns = change.kind == Change::Kind::Mix || change.kind == Change::Kind::Basic ||
                          change.kind == Change::Kind::AdditiveSet || change.kind == Change::Kind::DatabaseList;
    if (plan_ && concerns) Forget(tr("The Database has changed since it was compared. Compare it once more."));
  }
  Changed();
}

void DBImport_Formulas::cmdView_Click() {
  const int row = list_->List().CurrentRow();
  if (!plan_ || row < 0) return;
  const auto result = windows.RunDialog(
      ChosenSource() == Source::Cloud ? "ImportCompareCloudFormulas" : "ImportCompareFormulasForm",
      {{"Plan", std::shared_ptr<const MergePlan>(plan_)}, {"Place", row}});
  if (!result || !result->Has("Take")) return;
  rows_->SetChecked(row, result->Get<bool>("Take"));
  list_->List().View().viewport()->update();
  TakeChecked();
  Changed();
}

void DBImport_Formulas::cmdImport_Click() {
  if (!plan_) return;
  if (ChosenSource() == Source::Cloud &&
      session.prompt.Show({"Updating Database with Formulas",
                           "This update could change existing formulas found in the database.\nClick OK to continue.",
                           vellumark::Buttons::OkCancel, vellumark::Icon::Exclamation}) != Answer::Ok)
    return;
  TakeChecked();
  Result<MergeReport> done = MergeReport{};
  working_ = true;
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Importing Master Formulas ..."));
    try {
      done = RunMerge(session, *plan_);
    } catch (...) {
      working_ = false;
      throw;
    }
  }
  windows.DeliverChanges();
  working_ = false;
  if (!Accepted(done)) return;
  report_ = *done;
  reportText_ = ReportText(*done, session.clock.Now());
  done_->SetText(reportText_);
  ListDatabases(*target_, session);
  ListSources();
  Forget({});
  steps_->setCurrentIndex(kReportPage);
  TellDone(*done);
}

void DBImport_Formulas::TellDone(const MergeReport&) {
  switch (ChosenSource()) {
    case Source::Database:
      return session.prompt.Tell("Database to Database Formula Import Complete",
                                 "Formulas from the selected database have been imported into the current database.",
                                 vellumark::Icon::Information);
    case Source::Guides:
      return session.prompt.Tell("Pantone Import Complete",
                                 "Pantone Colors from the Selected Guide have been imported into the current database.",
                                 vellumark::Icon::Information);
    case Source::Cloud:
      return session.prompt.Tell("Cloud Formula Import Complete",
                                 "Formulas from the selected Cloud database have been\nimported into the choosen database.",
                                 vellumark::Icon::Information);
    case Source::File:
      session.prompt.Tell("Import Formulas", "Import Data has completed successfully.", vellumark::Icon::Information);
  }
}

void DBImport_Formulas::cmdSaveReport_Click() {
  if (!report_) return;
  const QString path = ChooseDocument(
      choose_, session.prompt, {tr("Save Report"), tr("Text file (*.txt)"), ".txt", {}, true}, this);
  if (path.isEmpty()) return;
  WriteTextFile(std::filesystem::path(U8(path)), reportText_);
}

void DBImport_Formulas::cmdUndo_Click() {
  Result<ImportUndone> undone = ImportUndone{};
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Undoing Import ..."));
    undone = AskAndUndoImport(session);
  }
  if (!Accepted(undone)) return;
  ListDatabases(*target_, session);
  ListSources();
  done_->SetText(UndoneText(*undone));
  report_.reset();
  Forget({});
  steps_->setCurrentIndex(kReportPage);
}

}  // namespace vellumark::desktop
