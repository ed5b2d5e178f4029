#include "desktop/batch/job_items_form.h"

#include <QPushButton>

#include "core/base/text.h"
#include "core/base/units.h"
#include "desktop/kit/job_box.h"
#include "desktop/kit/tall_page.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

JobItemsForm::JobItemsForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "JobItemsForm", tr(" Split Jobs")) {
  Form whole(*this);
  Form form = TallPart(*this, whole);
  form.Wide(form.Hint(tr("Enter each Job Number and the Qty Used.")));
  QLabel* jobCaption = form.Hint(tr("Job Number"));
  usedCaption_ = form.Hint({}, "lblQtyUsed");
  jobCaption->setMinimumWidth(264);
  form.Row({jobCaption, usedCaption_});
  for (std::size_t i = 0; i < kMostJobLines; ++i) AddPair(form, i);
  returned_ = form.Value("lblInvQty");
  form.Row(tr("Quantity Returned to Inventory"), {returned_, unit_ = form.Hint({})});
  whole.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  FitScreen(*this);
}

void JobItemsForm::AddPair(Form& form, std::size_t number) {
  const int n = static_cast<int>(number);
  Pair pair{form.Text(QString("JobNumber%1").arg(n), TextRule::Any(kJobNumberLength)),
            form.Number(QString("txtQtyUsed%1").arg(n), 3)};
  pair.job->setFixedWidth(264);
  pair.used->setAccessibleName(tr("Qty Used"));
  form.Row(tr("Job %1").arg(n + 1), {pair.job, pair.used});
  connect(pair.used, &TextField::Left, this, [this, number](QWidget* to) {
    if (qobject_cast<QPushButton*>(to) == nullptr) Enter(pairs_.at(number));
  });
  pairs_.push_back(pair);
}

void JobItemsForm::OnOpen(const Arguments& arguments) {
  record_ = arguments.Get<BatchRecord*>("Record");
  const QString unit = Q(UnitName(record_->work.UMF));
  usedCaption_->setText(tr("Qty Used (%1)").arg(unit));
  unit_->setText(unit);
  for (std::size_t i = 0; i < record_->jobs.size() && i < pairs_.size(); ++i) {
    pairs_[i].job->SetText(record_->jobs[i].JobNumber);
    pairs_[i].used->SetText(Fixed(record_->jobs[i].QtyUsed, 3));
  }
}

std::vector<JobItem> JobItemsForm::Typed() const {
  std::vector<JobItem> items;
  for (const Pair& pair : pairs_) items.push_back({pair.job->Text(), pair.used->Text()});
  return items;
}

void JobItemsForm::UpdateEnabled() {
  if (record_ != nullptr) returned_->SetText(JobItemsReturned(*record_, Typed()));
}

bool JobItemsForm::Enter(Pair& pair) {
  if (Trim(pair.used->Text()).empty()) return true;
  const Result<std::string> amount = EnterJobItemQty(*record_, pair.used->Text());
  if (!amount) {
    Refusal refusal = amount.error();
    refusal.field = U8(pair.used->objectName());
    ShowRefusal(refusal);
    return false;
  }
  pair.used->SetText(*amount);
  return true;
}

void JobItemsForm::cmdSave_Click() {
  for (Pair& pair : pairs_)
    if (!Enter(pair)) return;
  const Result<void> saved = SaveJobItems(session, *record_, Typed());
  if (saved) return accept();
  FocusFault(saved.error());
}

// The core names the kind of field; which of the pairs it is, shows in what was typed.
void JobItemsForm::FocusFault(const Refusal& refusal) {
  std::size_t at = 0;
  if (refusal.field == "JobNumber") {
    for (std::size_t i = 1; i < pairs_.size(); ++i)
      for (std::size_t j = 0; j < i; ++j)
        if (!pairs_[i].job->text().isEmpty() && EqualNoCase(Trim(pairs_[i].job->Text()), Trim(pairs_[j].job->Text())))
          at = i;
  } else {
    for (std::size_t i = 0; i < pairs_.size(); ++i)
      if (!pairs_[i].used->text().isEmpty()) at = i;
  }
  Refusal numbered = refusal;
  numbered.field += std::to_string(at);
  ShowRefusal(numbered);
}

}  // namespace vellumark::desktop
