#include "desktop/cloud/report_viewer.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QSplitter>
#include <QTreeWidget>

#include "core/base/files.h"
#include "core/cloud/cloud_settings.h"
#include "core/reports/export.h"
#include "core/session/settings.h"
#include "desktop/cloud/get_put_data_form.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr std::string_view kViewer = "CloudUtilityReportViewer";
constexpr int kListWidth = 280;
constexpr int kGridWidth = 720;
constexpr int kPlaceRole = Qt::UserRole;
constexpr int kColumnWidth = 130;

}  // namespace

CloudUtilityReportViewer::CloudUtilityReportViewer(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "CloudUtilityReportViewer", tr("Cloud Reports from User Accounts")) {
  Form form(*this);
  QSplitter* sides = form.Sides("Sides");
  list_ = new QTreeWidget(sides);
  list_->setObjectName("lstReports");
  list_->setHeaderLabels({tr("Account / Report")});
  list_->setAccessibleName(tr("Reports by account"));
  auto* right = new QWidget(sides);
  Form side(*this, *right);
  name_ = side.Label("lblReportName");
  name_->setFont(Look::Heading());
  side.Wide(name_);
  grid_ = side.Table("fg");
  grid_->setAccessibleName(tr("Report"));
  grid_->ShowFilter(tr("Filter"));
  grid_->SetEmptyText(tr("Choose a report at the left"));
  cells_ = std::make_shared<TableSource>();
  side.Wide(grid_, 1);
  right->layout()->setContentsMargins(space::kUnit, 0, 0, 0);
  sides->setStretchFactor(1, 1);
  sides->setSizes({kListWidth, kGridWidth});
  form.ButtonsWithoutDefault({form.Button("cmdClose", tr("Close")), form.Button("cmdDeleteFiles", tr("&Delete in Accounts ...")),
                              export_ = form.Button("cmdExport", tr("&Export ...")),
                              form.Button("cmdFetch", tr("&Get User Reports"), Qt::Key_F5)});
  connect(list_, &QTreeWidget::currentItemChanged, this, &CloudUtilityReportViewer::ShowReport);
  resize(1080, 640);
}

int CloudUtilityReportViewer::exec() {
  bool may = false;
  WithFiles(*this, windowTitle(), [&] {
    may = FormHost::Accepted(RequireCloudAdmin(ReadCloudSettings(session)));
    if (may) ListReports();
  });
  if (!may) return Rejected;
  list_->setFocus();
  return Dialog::exec();
}

void CloudUtilityReportViewer::ListReports() {
  reports_ = UserReportsHere(session);
  list_->clear();
  const std::vector<SharedAccount> accounts = ReadSharedAccounts(session);
  QTreeWidgetItem* account = nullptr;
  std::string of;
  for (std::size_t place = 0; place < reports_.size(); ++place) {
    const UserReport& report = reports_[place];
    if (account == nullptr || of != report.AcctNum) {
      of = report.AcctNum;
      const auto known = std::ranges::find(accounts, of, &SharedAccount::AcctNum);
      account = new QTreeWidgetItem(list_, {Q(known == accounts.end() ? of : of + " - " + known->Facility)});
      account->setExpanded(true);
    }
    auto* item = new QTreeWidgetItem(account, {Q(report.file.filename().string())});
    item->setData(0, kPlaceRole, static_cast<int>(place));
    item->setToolTip(0, Q(report.file.filename().string()));
  }
  if (account != nullptr) list_->setCurrentItem(list_->topLevelItem(0)->child(0));
  ShowReport();
}

const UserReport* CloudUtilityReportViewer::Chosen() const {
  const QTreeWidgetItem* item = list_->currentItem();
  if (item == nullptr || item->parent() == nullptr) return nullptr;
  return &reports_.at(static_cast<std::size_t>(item->data(0, kPlaceRole).toInt()));
}

void CloudUtilityReportViewer::ShowReport() {
  cells_->Clear();
  std::vector<GridColumn> columns;
  const UserReport* report = Chosen();
  name_->setText(report == nullptr ? QString() : Q(report->file.filename().string()));
  if (report != nullptr) {
    WithFiles(*this, windowTitle(), [&] {
      auto rows = ReadUserReport(report->file);
      if (rows.empty()) return;
      std::size_t widest = 0;
      for (const auto& row : rows) widest = std::max(widest, row.size());
      for (auto& row : rows) row.resize(widest);
      for (const std::string& caption : rows.front()) columns.push_back(GridColumn::Text(Q(caption), kColumnWidth));
      for (auto row = rows.begin() + 1; row != rows.end(); ++row)
        cells_->Add(TableSource::Row(row->begin(), row->end()));
    });
  }
  grid_->SetColumns(columns);
  grid_->SetSource(cells_);
  Changed();
}

void CloudUtilityReportViewer::UpdateEnabled() {
  export_->setEnabled(Chosen() != nullptr);
}

void CloudUtilityReportViewer::cmdFetch_Click() {
  windows.RunDialog("Cloud_GetPutData_Form", {{"Task", CloudTask::CloudUtilityReportViewer}});
  WithFiles(*this, windowTitle(), [&] { ListReports(); });
}

void CloudUtilityReportViewer::cmdDeleteFiles_Click() {
  windows.RunDialog("CloudUtilityReport_DeleteFiles");
}

void CloudUtilityReportViewer::cmdExport_Click() {
  windows.RunDialog("CloudReportViewer_ExportLocation", {{"Report", *Chosen()}});
}

CloudReportViewer_ExportLocation::CloudReportViewer_ExportLocation(WindowList& windowList, QWidget* owner, FileChooser choose)
    : Dialog(windowList, owner, "CloudReportViewer_ExportLocation", tr("Export Location")), choose_(std::move(choose)) {
  Form form(*this);
  form.Row(tr("F&older"), {folder_ = form.Text("txtFolder"), form.Button("cmdBrowse", tr("&Browse ..."))});
  form.Row(tr("File &name"), fileName_ = form.Text("txtFileName", TextRule::Any(200)));
  form.Buttons({form.Button("cmdSave", tr("Save")), form.Button("cmdCancel", tr("Cancel"))});
  folder_->setMinimumWidth(360);
}

void CloudReportViewer_ExportLocation::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("Report")) return;
  report_ = arguments.Get<UserReport>("Report");
  const QString known = Q(GetSetting(session, setting::DefaultDir.Of(kViewer)));
  folder_->SetText(U8(QDir::toNativeSeparators(!known.isEmpty() && QFileInfo(known).isDir() ? known : QDir::homePath())));
  fileName_->SetText(report_.file.filename().string());
  fileName_->selectAll();
  fileName_->setFocus();
}

void CloudReportViewer_ExportLocation::cmdBrowse_Click() {
  FileChoice choice{tr("Export Location"), {}, {}, QDir::fromNativeSeparators(folder_->text())};
  choice.onlyFolder = true;
  if (const QString folder = choose_(choice, this); !folder.isEmpty()) folder_->SetText(U8(QDir::toNativeSeparators(folder)));
}

void CloudReportViewer_ExportLocation::cmdSave_Click() {
  WithFiles(*this, windowTitle(), [&] {
    const auto path = ExportPath(session, U8(QDir::fromNativeSeparators(folder_->text())), fileName_->Text(), ExportFormat::Text);
    if (!FormHost::Accepted(path)) return;
    ReplaceFile(*path, ReadFileBytes(report_.file));
    StoreSettings(session, {setting::DefaultDir.Of(kViewer).To(path->parent_path().string())});
    session.prompt.Tell("File Export", ExportDoneText(*path));
    accept();
  });
}

}  // namespace vellumark::desktop
