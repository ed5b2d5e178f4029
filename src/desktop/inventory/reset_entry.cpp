#include "desktop/inventory/reset_entry.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "core/base/number.h"
#include "core/colors/amounts.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

QHBoxLayout* Line(QVBoxLayout& rows) {
  auto* box = new QWidget;
  auto* line = new QHBoxLayout(box);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(space::kUnit);
  rows.addWidget(box);
  return line;
}

}  // namespace

ResetEntry::ResetEntry(FormHost& host, Form form, QWidget& page, std::function<void(bool)> checkAll)
    : QObject(&host.Self()), host_(host), date_(host.session.clock.Today()) {
  auto* rows = new QVBoxLayout(&page);
  rows->setContentsMargins(0, space::kUnit, 0, 0);
  rows->setSpacing(space::kUnit);
  QHBoxLayout* first = Line(*rows);
  auto* all = form.Button("SelAll", tr("Check &all"), [checkAll] { checkAll(true); });
  auto* none = form.Button("DSelAll", tr("Check &none"), [checkAll] { checkAll(false); });
  QLabel* hint = form.Hint(tr("Check rows in the list with a click or the space bar. A reset is written at once."));
  hint->setWordWrap(true);
  first->addWidget(hint, 1);
  first->addWidget(all);
  first->addWidget(none);

  QHBoxLayout* second = Line(*rows);
  auto* inventory = form.Button("cmdResetInv", tr("Reset Inv."), [this] { ResetInventories(); });
  dateButton_ = form.Button("lblResetDate", tr("Date"), [this] { ChooseDate(); });
  dateButton_->setMinimumWidth(112);
  auto* resetDate = form.Button("cmdResetDate", tr("Reset Date"), [this] { ResetDates(); });
  price_ = ChoiceCombo(form, "cmbResetPrice", tr("Price"), 12, kPriceLength);
  price_->DoNotTrack();
  price_->OnChosen([this](int index) { PriceChosen(index); });
  resetPrice_ = form.Button("cmdResetPrice", tr("Reset Price"), [this] { ResetPrices(); });
  second->addWidget(inventory);
  second->addSpacing(space::kGroup);
  second->addWidget(dateButton_);
  second->addWidget(resetDate);
  second->addSpacing(space::kGroup);
  second->addWidget(price_);
  second->addWidget(resetPrice_);
  second->addStretch(1);
  rows->addStretch(1);
  all_ = {all, none, inventory, dateButton_, resetDate, price_, resetPrice_};
  dateButton_->setText(DateText(date_));
}

void ResetEntry::Show(InventoryWork* work, LotSource& rows) {
  work_ = work;
  rows_ = &rows;
  for (QWidget* widget : all_) widget->setEnabled(work != nullptr);
  const bool prices = host_.session.Perm_Costs != 0;
  price_->setVisible(prices);
  resetPrice_->setVisible(prices);
  if (work == nullptr) return price_->SetText("");
  SetChoices(*price_, PriceChoices(work->kind));
  price_->SetText(AmountText(host_.session, AmountKey::Currency, work->UnitCost()));
}

void ResetEntry::Finish(const Result<bool>& reset, bool rowsGone) {
  if (!host_.Accepted(reset) || !*reset) return;
  if (rowsGone) rows_->CheckNone();
  Q_EMIT Done();
}

void ResetEntry::ResetInventories() {
  Finish(ResetRowInventories(host_.session, *work_, rows_->Checked()), true);
}

void ResetEntry::ResetDates() {
  Finish(ResetRowDates(host_.session, *work_, rows_->Checked(), date_), false);
}

void ResetEntry::ResetPrices() {
  const auto price = ReadLotPrice(host_.session, *work_, price_->Text());
  if (!price) {
    // The words are those of the adjust fields; the field at fault is this one.
    host_.ShowRefusal({price.error().title, price.error().text, "cmbResetPrice"});
    return;
  }
  Finish(ResetRowPrices(host_.session, *work_, rows_->Checked(), *price), false);
}

void ResetEntry::ChooseDate() {
  const auto chosen = host_.windows.RunDialog("CalendarForm", {{"Date", date_.DateText()}});
  if (!chosen) return;
  const auto date = ReadLotDate(chosen->Text("Date"));
  if (!host_.Accepted(date)) return;
  date_ = *date;
  dateButton_->setText(DateText(date_));
}

void ResetEntry::PriceChosen(int index) {
  if (work_ == nullptr || index < 0) return;
  const auto price = ReadLotPrice(host_.session, *work_, U8(price_->itemText(index)));
  if (!host_.Accepted(price)) return;
  price_->setCurrentIndex(-1);
  price_->SetText(AmountText(host_.session, AmountKey::Currency, *price));
}

}  // namespace vellumark::desktop
