#include "desktop/jobs/job_options.h"

#include <algorithm>

#include "core/jobs/job_options.h"
#include "core/reports/report_settings.h"
#include "core/session/rights.h"
#include "desktop/jobs/job_layout.h"
#include "desktop/kit/text.h"
#include "desktop/settings/explain.h"
#include "desktop/settings/user_fields_panel.h"

namespace vellumark::desktop {

Job_Options::Job_Options(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "Job_Options", tr("Job Options")), fields_(std::make_unique<UserFieldsPanel>()) {
  Form form(*this);
  TabSet tabs = form.Tabs("TabOptions");
  fields_->BuildTexts(tabs.Page(tr("Te&xt Fields"), "TabTexts"), tr("Six texts of your own for each item of a Job."));
  fields_->BuildNumbers(tabs.Page(tr("&Number Fields"), "TabNumbers"),
                        tr("Six numbers of your own for each item of a Job."));
  BuildCosts(tabs.Page(tr("C&osts"), "TabCosts"));
  BuildColumns(tabs.Page(tr("&Columns"), "TabColumns"));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  resize(800, 520);
}

Job_Options::~Job_Options() = default;

void Job_Options::BuildCosts(Form form) {
  form.Wide(Explain(form, tr("Cost and emissions of a Master Formula that is taken from stock for a Job.")));
  cost_ = form.Radio("JobMixCostOption", {{"optLotCost", tr("Lot Cost")},
                                          {"optPurchaseCost", tr("Purchase Cost")},
                                          {"optBasicCost", tr("Basic Cost")},
                                          {"optNoCost", tr("No Cost")}});
  QLabel* blocked = form.Label("lblPriceBlocked", "User Permissions - Price Blocked");
  form.Row(tr("Unit cost"), {cost_, blocked});
  cost_->setVisible(SeenBy(session).prices);
  blocked->setVisible(!SeenBy(session).prices);
  VOC_ = form.Radio("JobMixVOC_Option",
                    {{"optVOC", tr("VOC")}, {"optBasicVOC", tr("VOC of its basics")}, {"optNoVOC", tr("None")}});
  form.Row(tr("VOC"), VOC_);
  HAP_ = form.Radio("JobMixHAP_Option",
                    {{"optHAP", tr("HAP")}, {"optBasicHAP", tr("HAP of its basics")}, {"optNoHAP", tr("None")}});
  form.Row(tr("HAP"), HAP_);
  form.Stretch();
}

void Job_Options::BuildColumns(Form form) {
  form.Wide(Explain(form, tr("The columns of the Job Window and of the files that Job Records are exported to. The window "
                             "always has Job Number, Color Name, Batch/Item and Qty Used.")));
  columns_ = form.CheckList("lstColumns");
  columns_->setAccessibleName(tr("Columns"));
  form.Wide(columns_, 1);
}

void Job_Options::OnOpen(const Arguments&) {
  fields_->Show(ReadJobOptions(session));
  const JobCosting costing = ReadJobCosting(session);
  cost_->Choose(costing.cost);
  VOC_->Choose(costing.VOC);
  HAP_->Choose(costing.HAP);
  QStringList names;
  for (const TableColumn& column : JobTitles(session)) names += Q(column.caption);
  names += tr("Date Completed (in exported files)");
  columns_->SetItems(names);
  columns_->SetChecked(static_cast<int>(names.size()) - 1, ExportsDateCompleted(session));
  const std::vector<std::size_t> shown = ShownJobColumns(session);
  for (const std::size_t place : shown) columns_->SetChecked(static_cast<int>(place), true);
}

void Job_Options::UpdateEnabled() {
  fields_->UpdateEnabled();
}

void Job_Options::cmdSave_Click() {
  if (!Accepted(SaveJobOptions(session, fields_->Typed()))) return;
  StoreJobCosting(session, {cost_->Chosen(), VOC_->Chosen(), HAP_->Chosen()});
  std::vector<std::size_t> shown;
  const int last = columns_->count() - 1;
  for (int row = 0; row < last; ++row)
    if (columns_->IsChecked(row)) shown.push_back(static_cast<std::size_t>(row));
  StoreShownJobColumns(session, shown);
  StoreExportsDateCompleted(session, columns_->IsChecked(last));
  accept();
}

}  // namespace vellumark::desktop
