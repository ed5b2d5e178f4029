#include "desktop/reports/report_name_form.h"

#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kLongestName = 60;
constexpr int kWidth = 420;

}  // namespace

ReportNameForm::ReportNameForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ReportNameForm", tr("Save Report")) {
  Form form(*this);
  form.Row(tr("&Name"), name_ = form.Text("txtName", TextRule::Any(kLongestName)));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(kWidth);
}

void ReportNameForm::OnOpen(const Arguments& arguments) {
  setWindowTitle(Q(arguments.Text("Title")));
  name_->SetText(arguments.Text("Name"));
  name_->selectAll();
  keep_ = arguments.Get<KeepText>("Keep");
}

void ReportNameForm::cmdSave_Click() {
  if (auto kept = keep_(name_->Text()); !kept) {
    // Whatever the rule calls it, it is the name.
    kept.error().field = "txtName";
    return ShowRefusal(kept.error());
  }
  result.Set("Name", name_->Text());
  accept();
}

}  // namespace vellumark::desktop
