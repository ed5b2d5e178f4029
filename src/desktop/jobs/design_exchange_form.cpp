#include "desktop/jobs/design_exchange_form.h"

#include <QTabWidget>

#include "core/cloud/shared_designs.h"
#include "core/jobs/design_tables.h"
#include "desktop/jobs/table_rows.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"
#include "paper/photo_maker.h"

namespace vellumark::desktop {

DB_ImportExport_Designs::DB_ImportExport_Designs(WindowList& windowList, FileChooser choose)
    : Window(windowList, "DB_ImportExport_Designs", tr("Job Designs - Export and Import")),
      choose_(std::move(choose)),
      here_(std::make_shared<TableSource>()),
      inFile_(std::make_shared<TableSource>()) {
  setWindowIcon(Icon("Job"));
  Form form(*this);
  TabSet tabs = form.Tabs("tabExchange");
  BuildExport(tabs.Page(tr("&Export"), "tabExport"));
  BuildImport(tabs.Page(tr("&Import"), "tabImport"));
  form.ButtonsWithoutDefault({form.Button("cmdClose", tr("Close"))});
  ListDesignsHere();
}

void DB_ImportExport_Designs::BuildExport(Form form) {
  designs_ = form.Table("fgDesigns");
  designs_->setAccessibleName(tr("Designs"));
  designs_->SetColumns({GridColumn::Text(tr("Design ID"), 240), GridColumn::Text(tr("Description"), 400)});
  designs_->ShowFilter(tr("Filter"));
  designs_->AllowManyRows();
  designs_->SetSource(here_);
  designs_->SetEmptyText(tr("There are no Designs"));
  form.Wide(designs_, 1);
  form.Wide(selected_ = form.Label("lblSelected"));
  form.ButtonsWithoutDefault({form.Button("cmdExport", tr("E&xport"))});
  connect(&designs_->View(), &QTableView::clicked, this, [this] { Changed(); });
  connect(designs_->View().selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { Changed(); });
}

void DB_ImportExport_Designs::BuildImport(Form form) {
  form.Row({form.Button("cmdSelectFile", tr("&Select File")),
            fileName_ = form.Hint(tr("Click on a file to select for import"), "lblFile")});
  account_ = form.Combo("cmbAccount");
  account_->setMinimumWidth(240);
  account_->setPlaceholderText(tr("or choose a Cloud Account"));
  account_->setAccessibleName(tr("Cloud Account"));
  account_->DoNotTrack();
  account_->OnChosen([this](int place) { TakeAccount(place); });
  CommandButton* get = form.Button("cmdCloudGet", tr("&Get from Cloud"));
  get->setEnabled(windows.Knows("Cloud_GetPutData_Form"));
  form.Row({account_, get});
  ListAccounts();
  compare_ = form.Table("fgCompare");
  compare_->setAccessibleName(tr("Designs of the file"));
  compare_->SetColumns({GridColumn::Text(tr("Design ID"), 240), GridColumn::Text(tr("ModType"), 96),
                        GridColumn::Text(tr("In Database"), 240), GridColumn::Text(tr("Desc"), 320)});
  compare_->AllowManyRows();
  compare_->SetSource(inFile_);
  compare_->SetEmptyText(tr("No file is selected"));
  form.Wide(compare_, 1);
  form.ButtonsWithoutDefault(
      {import_ = form.Button("cmdImport", tr("I&mport")), view_ = form.Button("cmdView", tr("&View"))});
  connect(compare_, &Grid::RowActivated, this, [this] { cmdView_Click(); });
  connect(compare_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
  connect(compare_->View().selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { Changed(); });
}

void DB_ImportExport_Designs::ListDesignsHere() {
  here_->Clear();
  ForEachDesign(session, [this](const Design& design) {
    here_->Add({design.DesignID, design.Description});
    return true;
  });
  designs_->Refresh();
  Changed();
}

std::vector<std::string> DB_ImportExport_Designs::Selected(const Grid& grid, const TableSource& rows) const {
  std::vector<std::string> ids;
  for (const int row : grid.SelectedRows()) ids.push_back(rows.Text(row, 0));
  return ids;
}

void DB_ImportExport_Designs::OnChanges(const std::vector<Change>& changes) {
  if (std::ranges::none_of(changes, [](const Change& c) { return c.kind == Change::Kind::Design; })) return;
  ListDesignsHere();
  if (!file_.empty()) ReadFile();
}

void DB_ImportExport_Designs::UpdateEnabled() {
  if (import_ == nullptr) return;
  selected_->setText(tr("Designs Selected - %1").arg(designs_->SelectedRows().size()));
  import_->setEnabled(!incoming_.empty() && !session.ArchiveView);
  view_->setEnabled(compare_->CurrentRow() >= 0);
}

void DB_ImportExport_Designs::cmdExport_Click() {
  const std::vector<std::string> ids = Selected(*designs_, *here_);
  if (ids.empty()) return ShowRefusal({"No Selections", "No Designs have been selected", "fgDesigns"});
  const QString folder = QString::fromStdString(std::filesystem::path(session.DataFileName).parent_path().string());
  const QString path = choose_(
      {tr("Export Designs"), tr("Text file (*.txt)"), ".txt", folder + "/" + Q(DesignFileName(session)), true}, this);
  if (path.isEmpty()) return;
  Result<int> written = 0;
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Exporting Designs ..."));
    written = ExportDesigns(session, ids, std::filesystem::path(U8(path)));
  }
  if (Accepted(written))
    session.prompt.Tell(U8(tr("Export Designs")), U8(tr("Designs have been successfully exported")),
                        vellumark::Icon::Information);
}

void DB_ImportExport_Designs::cmdSelectFile_Click() {
  const QString path = choose_({tr("Design Import"), tr("Text file (*.txt)"), ".txt", {}, false}, this);
  if (path.isEmpty()) return;
  file_ = std::filesystem::path(U8(path));
  fromCloud_ = false;
  account_->setCurrentIndex(-1);
  ReadFile();
}

void DB_ImportExport_Designs::cmdCloudGet_Click() {
  windows.RunDialog("Cloud_GetPutData_Form", {{"Task", CloudTask::DB_ImportExport_Designs}});
  ListAccounts();
}

void DB_ImportExport_Designs::ListAccounts() {
  account_->clear();
  shares_.clear();
  try {
    shares_ = SharesHere(session);
  } catch (const Failure& failure) {
    account_->setToolTip(Q(failure.subject) + ": " + Q(failure.cause));
  }
  for (const ShareRow& share : shares_) {
    const QString name = Q(share.Facility.empty() ? share.AcctNum : share.AcctNum + " - " + share.Facility);
    account_->addItem(name + (share.came ? " (" + DateText(share.came) + ")" : tr(" (nothing fetched)")));
  }
  account_->setCurrentIndex(-1);
  account_->setEnabled(!shares_.empty());
}

void DB_ImportExport_Designs::TakeAccount(int place) {
  const auto designs = SharedDesignFile(session, shares_.at(static_cast<std::size_t>(place)));
  if (!Accepted(designs)) return;
  file_ = *designs;
  fromCloud_ = true;
  ReadFile();
}

void DB_ImportExport_Designs::ReadFile() {
  auto read = ReadDesignFile(session, file_);
  incoming_.clear();
  if (read) incoming_ = *std::move(read);
  fileName_->setText(!read        ? tr("Click on a file to select for import")
                     : fromCloud_ ? tr("Click on Design name to view details")
                                  : Q(file_.string()));
  ListDesignsOfFile();
  if (!read) {
    file_.clear();
    ShowRefusal(read.error());
  }
}

void DB_ImportExport_Designs::ListDesignsOfFile() {
  inFile_->Clear();
  for (const IncomingDesign& design : incoming_)
    inFile_->Add({design.design.DesignID, std::string(ModText(design.mod)),
                  design.mod == IncomingDesign::Mod::New ? "" : design.presentDescription, design.design.Description});
  compare_->Refresh();
  if (!incoming_.empty()) compare_->View().selectAll();
  Changed();
}

void DB_ImportExport_Designs::cmdView_Click() {
  const int row = compare_->CurrentRow();
  if (row >= 0)
    windows.RunDialog(fromCloud_ ? "ImportExamineCloudDesign" : "ImportExamineLocalFileDesign",
                      {{"Design", incoming_.at(static_cast<std::size_t>(row)).design}});
}

void DB_ImportExport_Designs::cmdImport_Click() {
  const std::vector<std::string> ids = Selected(*compare_, *inFile_);
  if (ids.empty() && fromCloud_) return ShowRefusal({"No Colors Choosen", "Please choose Designs for import", "fgCompare"});
  if (ids.empty()) return ShowRefusal({"No Selections", "No Designs have been selected", "fgCompare"});
  if (fromCloud_ && session.prompt.Show({"Updating Database with Designs",
                                         "This update could change existing Designs found in the database.\nClick OK to continue.",
                                         vellumark::Buttons::OkCancel, vellumark::Icon::Exclamation}) != Answer::Ok)
    return;
  Result<DesignImport> done = DesignImport{};
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Importing Designs ..."));
    done = ImportDesigns(session, paper::JpegMaker(), file_, ids);
  }
  if (!Accepted(done)) return;
  if (fromCloud_)
    session.prompt.Tell("Designs Import Complete", "Designs from the selected Cloud database have been imported",
                        vellumark::Icon::Information);
  else
    session.prompt.Tell(U8(tr("Design Import")), U8(tr("Designs have been imported")), vellumark::Icon::Information);
  if (const std::string text = PhotoImportText(*done); !text.empty())
    session.prompt.Tell(U8(tr("Design Photo Import Error")), text, vellumark::Icon::Exclamation);
}

}  // namespace vellumark::desktop
