#include "desktop/reports/reports_form.h"

#include <fmt/format.h>

#include <QApplication>
#include <QHBoxLayout>
#include <QListWidget>

#include "core/base/text.h"
#include "core/cloud/cloud_reports.h"
#include "core/cloud/shared_accounts.h"
#include "core/reports/build.h"
#include "core/reports/catalogue.h"
#include "core/reports/saved_reports.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/reports/report_name_form.h"

namespace vellumark::desktop {
namespace {

constexpr int kKeyRole = Qt::UserRole;
constexpr int kDescriptionRole = Qt::UserRole + 1;
constexpr int kDescriptionLines = 3;

bool IsOfBatches(const ReportDefinition& report) {
  return report.group == "Production" || report.group == "Consumption" || report.group.starts_with("Batch");
}

}  // namespace

ReportsForm::ReportsForm(WindowList& windowList) : Window(windowList, "ReportsForm", tr("Reports")) {
  setWindowIcon(Icon("Report"));
  Form form(*this);
  auto* middle = new QWidget(this);
  auto* panes = new QHBoxLayout(middle);
  panes->setContentsMargins(0, 0, 0, 0);
  panes->setSpacing(space::kGroup);
  const auto part = [&] {
    auto* widget = new QWidget(middle);
    panes->addWidget(widget, 1);
    return Form(*this, *widget);
  };
  colors_ = MakePane(part(), tr(" Color Reports"), "lstColorReports", 1);
  batches_ = MakePane(part(), tr(" Batch Reports"), "lstBatchReports", 1);
  jobs_ = MakePane(part(), tr(" Job Reports"), "lstJobReports", 1);
  saved_ = MakePane(part(), tr(" Saved Reports"), "lstSavedReports", 1);
  form.Wide(middle, 1);
  form.Wide(description_ = form.Label("lblDescription", tr("Click on a report to view.")));
  description_->setWordWrap(true);
  description_->setMinimumHeight(kDescriptionLines * fontMetrics().lineSpacing());
  description_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  form.ButtonsWithoutDefault({form.Button("cmdClose", tr("Close")), delete_ = form.Button("cmdDelete", tr("Delete")),
                              rename_ = form.Button("cmdRename", tr("&Rename"))});
  delete_->setToolTip(tr("The saved report that is chosen"));
  rename_->setToolTip(tr("The saved report that is chosen"));
  Fill();
  FillSaved();
  colors_->setFocus();
}

QListWidget* ReportsForm::MakePane(Form form, const QString& title, const char* name, int height) {
  form.Heading(title.trimmed());
  auto* list = new QListWidget;
  list->setObjectName(name);
  list->setAccessibleName(title.trimmed());
  list->setMouseTracking(true);
  list->setFrameShape(QFrame::NoFrame);
  list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  form.Wide(list, height);
  const auto describe = [this](const QListWidgetItem* item) {
    Describe(item == nullptr ? tr("Click on a report to view.") : item->data(kDescriptionRole).toString());
  };
  const auto open = [this, list](const QListWidgetItem* item) {
    if (list == saved_) return OpenSaved(U8(item->data(kKeyRole).toString()));
    if (const ReportDefinition* report = FindAnyReport(U8(item->data(kKeyRole).toString()))) Open(*report);
  };
  connect(list, &QListWidget::itemEntered, this, describe);
  connect(list, &QListWidget::viewportEntered, this, [describe] { describe(nullptr); });
  connect(list, &QListWidget::currentItemChanged, this, [this, describe](const QListWidgetItem* item) {
    describe(item);
    Changed();
  });
  connect(list, &QListWidget::itemClicked, this, open);
  // A click has opened it; Enter does too.
  connect(list, &QListWidget::itemActivated, this, [open](const QListWidgetItem* item) {
    if (QApplication::mouseButtons() == Qt::NoButton) open(item);
  });
  return list;
}

void ReportsForm::Fill() {
  std::string group;
  for (const ReportDefinition* one : AllReports()) {
    const ReportDefinition& report = *one;
    QListWidget* list = IsOfBatches(report) ? batches_ : report.group.starts_with("Jobs") ? jobs_ : colors_;
    if (report.group != group) {
      group = report.group;
      auto* head = new QListWidgetItem(Q(group), list);
      head->setFlags(Qt::ItemIsEnabled);
      head->setData(kDescriptionRole, tr("Select a subcategory report."));
      QFont bold = Look::Base();
      bold.setBold(true);
      head->setFont(bold);
    }
    auto* item = new QListWidgetItem("    " + Q(report.caption).trimmed(), list);
    item->setData(kKeyRole, Q(report.key));
    item->setData(kDescriptionRole, Q(report.description));
  }
  for (QListWidget* list : {colors_, batches_, jobs_}) list->setCurrentRow(1);
  Describe(tr("Click on a report to view."));
}

// ---- Those that are saved

void ReportsForm::FillSaved() {
  const std::string chosen = Saved();
  saved_->clear();
  for (const SavedReport& saved : ReadSavedReports(session, FindAnyReport)) {
    const ReportDefinition& report = *FindAnyReport(saved.key);
    auto* item = new QListWidgetItem(Q(saved.name), saved_);
    item->setData(kKeyRole, Q(saved.name));
    const QString range = saved.request.from && saved.request.to
                              ? Q(saved.request.from->DateText() + " - " + saved.request.to->DateText())
                              : Q(saved.request.rangeName);
    QString told = Q(report.group + " - " + Trim(report.caption));
    for (const QString& more : {Q(saved.request.color), Q(saved.request.job), Q(saved.request.design), range})
      if (!more.isEmpty()) told += "\n" + more;
    item->setData(kDescriptionRole, told);
    if (EqualNoCase(saved.name, chosen)) saved_->setCurrentItem(item);
  }
  if (saved_->count() == 0) {
    auto* none = new QListWidgetItem(tr("Save Report in a report keeps it here."), saved_);
    none->setFlags(Qt::NoItemFlags);
  }
  Changed();
}

std::string ReportsForm::Saved() const {
  const QListWidgetItem* item = saved_ == nullptr ? nullptr : saved_->currentItem();
  return item == nullptr ? std::string() : U8(item->data(kKeyRole).toString());
}

void ReportsForm::OpenSaved(const std::string& name) {
  if (const auto saved = FindSavedReport(session, name, FindAnyReport))
    Open(*FindAnyReport(saved->key), {{"Saved", saved->name}});
}

void ReportsForm::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("Pane")) return;
  for (QListWidget* list : {colors_, batches_, jobs_})
    if (U8(list->objectName()) == arguments.Text("Pane")) list->setFocus();
}

void ReportsForm::OnChanges(const std::vector<Change>& changes) {
  if (std::ranges::any_of(changes, [](const Change& one) { return one.kind == Change::Kind::Settings; })) FillSaved();
}

void ReportsForm::UpdateEnabled() {
  if (delete_ == nullptr) return;
  delete_->setEnabled(!Saved().empty());
  rename_->setEnabled(!Saved().empty() && windows.Knows("ReportNameForm"));
}

void ReportsForm::cmdRename_Click() {
  const std::string old = Saved();
  const KeepText keep = [this, old](const std::string& name) { return RenameSavedReport(session, old, name); };
  windows.RunDialog("ReportNameForm", {{"Title", U8(tr("Rename Report"))}, {"Name", old}, {"Keep", keep}});
}

void ReportsForm::cmdDelete_Click() {
  const std::string name = Saved();
  if (session.prompt.Ask("Saved Report", fmt::format("Delete the saved report {}?", name), Answer::No))
    static_cast<void>(Accepted(DeleteSavedReport(session, name)));
}

void ReportsForm::Describe(const QString& text) {
  if (description_ != nullptr) description_->setText(text);
}

// What other shops have is fetched first; what came before can be looked at when that fails.
void ReportsForm::OpenCloudReport(const ReportDefinition& report, CloudTask task, const Arguments& arguments) {
  const bool fetched = windows.RunDialog("Cloud_GetPutData_Form", {{"Task", task}}).has_value();
  const auto came = [](const ShareRow& share) { return share.came.has_value(); };
  if (!fetched && std::ranges::none_of(SharesHere(session), came)) return;
  const bool runs = !arguments.Has("Saved") && report.subject == ReportSubject::None;
  windows.OpenForm(report.window, runs ? Arguments{{"Run", true}} : arguments);
}

void ReportsForm::Open(const ReportDefinition& report, const Arguments& arguments) {
  if (!windows.Knows(report.window)) return;
  const auto may = RequireReport(session, report, windows.IsInEdit("BatchForm"));
  if (const auto task = FetchTaskOf(report); task && may) {
    OpenCloudReport(report, *task, arguments);
  } else if (Accepted(may)) {
    windows.OpenForm(report.window, arguments);
  } else if (may.error().field == "BatchForm") {
    windows.OpenForm("BatchForm");
  }
}

}  // namespace vellumark::desktop
