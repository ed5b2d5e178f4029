#include "desktop/inventory/adjust_entry.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/amounts.h"
#include "core/session/options.h"
#include "desktop/inventory/lot_grid.h"
#include "desktop/kit/look.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

// The widths of the texts on file.
constexpr int kListedCounts = 100;

}  // namespace

AdjustEntry::AdjustEntry(FormHost& host, Form form, QWidget& page, std::function<void()> update,
                         std::function<void()> clear)
    : QObject(&host.Self()), host_(host) {
  auto* rows = new QVBoxLayout(&page);
  rows->setContentsMargins(0, space::kUnit, 0, 0);
  rows->setSpacing(space::kUnit);
  auto* first = new QWidget(&page);
  auto* second = new QWidget(&page);
  rows->addWidget(first);
  rows->addWidget(second);
  BuildFields(form, *first, *second);
  update_ = form.Button("cmdUpdate", tr("&Update list"), Qt::Key_F5, std::move(update));
  clear_ = form.Button("cmdClear", tr("C&lear"), QKeySequence(Qt::SHIFT | Qt::Key_F5), std::move(clear));
  auto* line = new QHBoxLayout(second);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(space::kUnit);
  for (QWidget* cell : {lotCells_[2], lotCells_[3], lotCells_[4]}) line->addWidget(cell, 0, Qt::AlignBottom);
  line->addWidget(update_, 0, Qt::AlignBottom);
  line->addWidget(clear_, 0, Qt::AlignBottom);
  line->addStretch(1);
  rows->addStretch(1);
  Relabel();
}

void AdjustEntry::BuildFields(Form& form, QWidget& first, QWidget& second) {
  quantity_ = form.Number("AdjustInv", 3, tr("-99999 to 99999"), 10);
  quantity_->setFont(Look::Figures(1.4));
  quantity_->setMinimumWidth(144);
  quantity_->setMaximumWidth(144);
  lotNumber_ = ChoiceCombo(form, "cmbLotNum", tr("Lot Number"), 14, kLotTextLength);
  location_ = ChoiceCombo(form, "cmbLocation", tr("Location"), 11, kLotTextLength);
  container_ = form.Text("ContID", TextRule::Any(kLotTextLength));
  container_->setMinimumWidth(104);
  container_->setMaximumWidth(144);
  count_ = ChoiceCombo(form, "cmbContCount", tr("Count"), 5, 6);
  std::vector<std::string> counts;
  for (int i = 1; i <= kListedCounts; ++i) counts.push_back(std::to_string(i));
  SetChoices(*count_, counts);
  dateButton_ = form.Button("lblDate", tr("Date"), [this] { OpenCalendar(); });
  dateButton_->setMinimumWidth(112);
  price_ = ChoiceCombo(form, "cmbPrice", tr("Price"), 16, kPriceLength);
  price_->OnChosen([this](int index) { PriceChosen(index); });
  priceBlocked_ = form.Hint(tr("User Permissions - Price Blocked"), "lblPriceBlocked_Inv");
  consignment_ = form.Check("chkConsignment", tr("Consi&gnment"));
  consignment_->setMinimumHeight(space::kFieldHeight);

  auto* line = new QHBoxLayout(&first);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(space::kGap);
  line->addWidget(Captioned(&first, {}, quantity_, "lblAdjustInv"), 0, Qt::AlignBottom);
  quantityCaption_ = first.findChild<QLabel*>("lblAdjustInv");
  lotCells_ = {Captioned(&first, tr("Lot Number"), lotNumber_, "lblLotNum"),
               Captioned(&first, tr("Location"), location_, "lblLocation")};
  countCells_ = {Captioned(&first, tr("Cont ID Num"), container_, "lblContID"),
                 Captioned(&first, tr("Count"), count_, "lblContCount")};
  for (const auto* cells : {&lotCells_, &countCells_})
    for (QWidget* cell : *cells) line->addWidget(cell, 0, Qt::AlignBottom);
  line->addStretch(1);

  lotCells_.push_back(Captioned(&second, tr("Date"), dateButton_, "lblDateCaption"));
  auto* price = new QWidget(&second);
  auto* either = new QHBoxLayout(price);
  either->setContentsMargins(0, 0, 0, 0);
  either->addWidget(price_);
  either->addWidget(priceBlocked_);
  lotCells_.push_back(Captioned(&second, PriceCaption(host_.session.UMI), price, "lblPrice"));
  priceCaption_ = lotCells_.back()->findChild<QLabel*>("lblPrice");
  lotCells_.push_back(consignment_);
  connect(quantity_, &TextField::Left, this, &AdjustEntry::QuantityLeft);
  // Enter in the last field enters what was typed.
  for (QWidget* last : {static_cast<QWidget*>(quantity_), static_cast<QWidget*>(consignment_)})
    last->installEventFilter(this);
}

void AdjustEntry::Relabel() {
  const Session& session = host_.session;
  tracking_ = session.InvLotTracking == 1;
  counted_ = tracking_ && ReadInventorySettings(session).InvRecordMethod == 1;
  const QString caption = WithUnit(counted_ ? tr("Unit Weight") : tr("Adjust Qty"), session.UMI);
  quantityCaption_->setText(caption);
  quantity_->setAccessibleName(caption);
  priceCaption_->setText(PriceCaption(session.UMI));
  for (QWidget* cell : lotCells_) cell->setVisible(tracking_);
  for (QWidget* cell : countCells_) cell->setVisible(counted_);
  const bool blocked = session.Perm_Costs == 0;
  price_->setVisible(!blocked);
  priceBlocked_->setVisible(blocked);
}

std::vector<Field*> AdjustEntry::Fields() const {
  return {quantity_, lotNumber_, location_, container_, count_, price_, consignment_};
}

bool AdjustEntry::IsTouched() const {
  return date_ != shownDate_ || std::ranges::any_of(Fields(), [](const Field* field) { return field->IsDirty(); });
}

void AdjustEntry::Offer(const InventoryWork& work) {
  SetChoices(*lotNumber_, work.LotNumbers());
  SetChoices(*location_, work.Locations());
}

void AdjustEntry::Show(const InventoryWork* work, const AdjustFields& fields) {
  const bool anew = work != work_;
  work_ = work;
  selected_ = fields.selected;
  if (anew && work != nullptr) {
    SetChoices(*price_, PriceChoices(work->kind));
  }
  const Session& session = host_.session;
  quantity_->SetText(work == nullptr ? "" : Fixed(fields.quantity, 3));
  lotNumber_->SetText(fields.lotNumber);
  location_->SetText(fields.location);
  container_->SetText(fields.contID);
  count_->SetText("");
  price_->SetText(work == nullptr ? "" : AmountText(session, AmountKey::Currency, fields.price));
  consignment_->setChecked(fields.consignment);
  date_ = fields.date;
  shownDate_ = fields.date;
  ShowDate();
  for (Field* field : Fields()) field->MarkClean();
  for (Field* field : Fields()) field->Control().setEnabled(work != nullptr);
  if (quantity_->hasFocus()) quantity_->selectAll();
  for (QWidget* button : {dateButton_, update_, clear_}) button->setEnabled(work != nullptr);
}

void AdjustEntry::ShowDate() {
  dateButton_->setText(work_ == nullptr ? QString::fromUtf8("–") : DateText(date_));
  dateButton_->setAccessibleName(tr("Date %1").arg(dateButton_->text()));
}

void AdjustEntry::Focus() {
  host_.FocusField("AdjustInv");
}

void AdjustEntry::QuantityLeft(QWidget* to) {
  // A button checks by itself, and nothing is no fault until it is entered.
  if (work_ == nullptr || to == nullptr || !host_.Self().isAncestorOf(to) ||
      qobject_cast<QPushButton*>(to) != nullptr || Trim(quantity_->Text()).empty())
    return;
  const auto quantity = ReadAdjustQuantity(quantity_->Text());
  if (!host_.Accepted(quantity)) return;
  const std::string text = Fixed(*quantity, 3);
  if (text != quantity_->Text()) quantity_->SetText(text);
}

void AdjustEntry::PriceChosen(int index) {
  if (work_ == nullptr || index < 0) return;
  const auto price = ReadLotPrice(host_.session, *work_, U8(price_->itemText(index)));
  if (!host_.Accepted(price)) return;
  price_->setCurrentIndex(-1);
  price_->SetText(AmountText(host_.session, AmountKey::Currency, *price));
}

void AdjustEntry::OpenCalendar() {
  if (work_ == nullptr) return;
  if (selected_ && !host_.Accepted(RequireDateChangeable(host_.session, *work_, *selected_))) return;
  Arguments arguments;
  if (date_) arguments.Set("Date", date_->DateText());
  const auto chosen = host_.windows.RunDialog("CalendarForm", arguments);
  if (!chosen) return;
  const auto date = ReadLotDate(chosen->Text("Date"));
  if (!host_.Accepted(date)) return;
  date_ = *date;
  ShowDate();
}

std::optional<AdjustFields> AdjustEntry::Read(const InventoryWork& work, std::optional<std::size_t> selected) {
  const auto quantity = ReadAdjustQuantity(quantity_->Text());
  if (!host_.Accepted(quantity)) return std::nullopt;
  AdjustFields fields;
  fields.selected = selected;
  fields.quantity = *quantity;
  if (!tracking_) return fields;
  fields.lotNumber = lotNumber_->Text();
  fields.location = location_->Text();
  // Where containers are not recorded, a lot keeps the one it has.
  fields.contID = container_->Text();
  if (counted_) {
    const auto count = ReadUnitCount(host_.session, count_->Text());
    if (!host_.Accepted(count)) return std::nullopt;
    if (!count->has_value() && !Trim(count_->Text()).empty()) {
      count_->SetText("");
      host_.FocusField("cmbContCount");
      return std::nullopt;
    }
    fields.count = *count;
  }
  const auto price = ReadLotPrice(host_.session, work, price_->Text());
  if (!host_.Accepted(price)) return std::nullopt;
  fields.price = *price;
  fields.date = date_;
  fields.consignment = consignment_->isChecked();
  return fields;
}

bool AdjustEntry::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
  // The quantity is the last field where there are no lots.
  if (watched == quantity_ && tracking_) return false;
  if (!update_->isEnabled()) return false;
  update_->setFocus(Qt::TabFocusReason);
  update_->click();
  return true;
}

}  // namespace vellumark::desktop
