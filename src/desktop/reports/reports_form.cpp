#include "desktop/reports/reports_form.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QListWidget>

#include "core/reports/build.h"
#include "core/reports/catalogue.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/reports/open_row.h"

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
  const auto pane = [&](const QString& title, const char* name) {
    auto* part = new QWidget(middle);
    panes->addWidget(part, 1);
    return MakePane(Form(*this, *part), title, name);
  };
  colors_ = pane(tr(" Color Reports"), "lstColorReports");
  batches_ = pane(tr(" Batch Reports"), "lstBatchReports");
  jobs_ = pane(tr(" Job Reports"), "lstJobReports");
  form.Wide(middle, 1);
  form.Wide(description_ = form.Label("lblDescription", tr("Click on a report to view.")));
  description_->setWordWrap(true);
  description_->setMinimumHeight(kDescriptionLines * fontMetrics().lineSpacing());
  description_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  form.ButtonsWithoutDefault({form.Button("cmdClose", tr("Close"))});
  Fill();
  colors_->setFocus();
}

QListWidget* ReportsForm::MakePane(Form form, const QString& title, const char* name) {
  form.Heading(title.trimmed());
  auto* list = new QListWidget;
  list->setObjectName(name);
  list->setAccessibleName(title.trimmed());
  list->setMouseTracking(true);
  list->setFrameShape(QFrame::NoFrame);
  list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  form.Wide(list, 1);
  const auto describe = [this](const QListWidgetItem* item) {
    Describe(item == nullptr ? tr("Click on a report to view.") : item->data(kDescriptionRole).toString());
  };
  const auto open = [this](const QListWidgetItem* item) {
    if (const ReportDefinition* report = FindReport(U8(item->data(kKeyRole).toString()))) Open(*report);
  };
  connect(list, &QListWidget::itemEntered, this, describe);
  connect(list, &QListWidget::viewportEntered, this, [describe] { describe(nullptr); });
  connect(list, &QListWidget::currentItemChanged, this, describe);
  connect(list, &QListWidget::itemClicked, this, open);
  // A click has opened it; Enter does too.
  connect(list, &QListWidget::itemActivated, this, [this, open](const QListWidgetItem* item) {
    if (QApplication::mouseButtons() == Qt::NoButton) open(item);
  });
  return list;
}

void ReportsForm::Fill() {
  std::string group;
  for (const ReportDefinition& report : ReportCatalogue()) {
    QListWidget* list = IsOfBatches(report) ? batches_ : report.group.starts_with("Jobs") ? jobs_ : colors_;
    if (report.group != group) {
      group = report.group;
      auto* head = new QListWidgetItem(Q(group).replace("&&", "&"), list);
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

void ReportsForm::Describe(const QString& text) {
  if (description_ != nullptr) description_->setText(text);
}

void ReportsForm::Open(const ReportDefinition& report) {
  if (!windows.Knows(report.window)) return;
  const auto may = RequireReport(session, report, windows.IsInEdit("BatchForm"));
  if (Accepted(may)) {
    windows.OpenForm(report.window);
  } else if (may.error().field == "BatchForm") {
    windows.OpenForm("BatchForm");
  }
}

}  // namespace vellumark::desktop
