#include "desktop/batch/adjust_row_forms.h"

#include "core/base/units.h"
#include "core/batch/bench.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kTextWidth = 400;

QLabel* Explained(Form& form, const QString& text) {
  QLabel* label = form.Hint(text);
  label->setWordWrap(true);
  // As high as its lines: a dialog does not ask a text how it breaks.
  label->setFixedWidth(kTextWidth);
  label->setMinimumHeight(label->heightForWidth(kTextWidth));
  return label;
}

}  // namespace

AdjustRowForm::AdjustRowForm(WindowList& windowList, QWidget* owner, AdjustedRow kind)
    : Dialog(windowList, owner, kind == AdjustedRow::Basic ? "AdjustBasicForm" : "AdjustAdditionForm",
             kind == AdjustedRow::Basic ? tr("Adjust Basic Color") : tr("Adjust Addition")),
      kind_(kind) {
  const bool basic = kind == AdjustedRow::Basic;
  Form form(*this);
  form.Wide(name_ = form.Value("lblColorName", 1.2));
  form.Wide(Explained(form, basic ? tr("Enter the amount to use in the Batch.")
                                  : tr("Enter the amount of this addition, or 0 to remove it from the Batch.")));
  form.Row(tr("&Amount"), {amount_ = form.Number("txtAmount", 3), unit_ = form.Hint({})});
  if (basic)
    form.Wide(Explained(form, tr("NOTE: Changing the Amount of this Basic Color will cause the Amounts of ALL Basic "
                                 "Colors in this Batch to change.")));
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
}

void AdjustRowForm::OnOpen(const Arguments& arguments) {
  record_ = arguments.Get<BatchRecord*>("Record");
  row_ = static_cast<std::size_t>(arguments.Number("Row"));
  const BatchRow& row = record_->work.Rows.at(row_);
  name_->SetText(row.name);
  amount_->SetText(Fixed(row.amount, 3));
  unit_->setText(Q(UnitName(record_->work.UMF)));
}

void AdjustRowForm::cmdSave_Click() {
  if (kind_ == AdjustedRow::Addition) {
    if (Accepted(ApplyAdditionRow(session, *record_, row_, amount_->Text()))) accept();
    return;
  }
  const Result<Overpour> poured = PourBasicRow(session, *record_, row_, amount_->Text());
  if (!Accepted(poured)) return;
  result.Set("Overpour", *poured);
  accept();
}

}  // namespace vellumark::desktop
