#include "desktop/batch/batch_form_lot_num_reminder.h"

#include <QLayout>

#include "core/batch/dialogs.h"
#include "desktop/kit/icons.h"

namespace vellumark::desktop {
namespace {

constexpr int kMarkSize = 16;
const QString kBeforeMark = QStringLiteral("2)  Click");

}  // namespace

BatchFormLotNumReminder::BatchFormLotNumReminder(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "BatchFormLotNumReminder", tr("Batch Window - Lot Numbering")) {
  Form form(*this);
  form.Heading(tr("Lotted Inventory is turned on!"));
  form.Wide(form.Label("lblAssign", tr("1)  Batches should be assigned a Lot Number.")));
  // The blanks leave room for the mark that a row's lots are chosen by.
  form.Wide(select_ = form.Label("lblSelect", tr("2)  Click         to select Inventory used in a Batch.")));
  mark_ = new IconView("lot", kMarkSize, "imgLot");
  mark_->setParent(select_);
  form.Space();
  form.Wide(form.Label("lblQuestion", tr("Return to Batch and update?")));
  form.Wide(never_ = form.Check("chkDontShow", tr("&Do not show this reminder again.")));
  form.Buttons({form.Button("cmdYes", tr("&Yes")), form.Button("cmdNo", tr("&No"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void BatchFormLotNumReminder::UpdateEnabled() {
  const QFontMetrics metrics = select_->fontMetrics();
  const int gapStart = metrics.horizontalAdvance(kBeforeMark);
  const int gap = metrics.horizontalAdvance("         ");
  mark_->move(gapStart + (gap - kMarkSize) / 2, (select_->height() - kMarkSize) / 2);
}

void BatchFormLotNumReminder::Give(bool returnToBatch) {
  result.Set("Answer", LotReminderAnswer{returnToBatch, never_->isChecked()});
  accept();
}

}  // namespace vellumark::desktop
