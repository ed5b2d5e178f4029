#include "desktop/inventory/adjust_reorder_form.h"

#include <QApplication>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/names.h"
#include "core/inventory/color_stock.h"
#include "core/inventory/reorder.h"
#include "desktop/inventory/lot_grid.h"
#include "desktop/kit/discard.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kNameField = "cmbColorName";

}  // namespace

AdjustReorderForm::AdjustReorderForm(WindowList& windowList)
    : Window(windowList, "AdjustReorderForm", tr("Adjust Reorder Point")) {
  setWindowIcon(Icon("low-stock"));
  Form form(*this);
  name_ = ColorNameBox(form, ColorsOnFile(session));
  form.Row(tr("&Name"), {name_, kind_ = form.Hint({}, "lblKind")});
  form.Row(tr("In stock"), {stock_ = form.Value("lblTotalInv"), stockUnit_ = form.Hint({})});
  reorder_ = form.Number("txtReorder", 3, tr("0 to 99999"));
  reorder_->Means("Reorder");
  form.Row(tr("&Reorder point"), {reorder_, reorderUnit_ = form.Hint({})});
  form.Buttons({save_ = form.Button("cmdSave", tr("&Save")), cancel_ = form.Button("cmdCancel", tr("Cancel"))});
  connect(name_, &TextField::Left, this, &AdjustReorderForm::NameLeft);
  connect(name_, &NameBox::Picked, this, [this](const QString& picked) {
    if (!InEdit()) EnterName(U8(picked));
  });
  Clear();
}

void AdjustReorderForm::UpdateEnabled() {
  name_->setReadOnly(InEdit());
  save_->setEnabled(shown_.has_value());
  cancel_->setEnabled(shown_.has_value());
  for (QLabel* unit : {stockUnit_, reorderUnit_}) unit->setText(Q(UnitName(session.UMI)));
}

void AdjustReorderForm::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("FindRecord") || InEdit()) return;
  const std::string name = arguments.Text("FindRecord");
  if (arguments.Has("Kind")) return ShowColor(arguments.Get<ColorKind>("Kind"), name);
  EnterName(name);
}

void AdjustReorderForm::NameLeft(QWidget* to) {
  if (to == nullptr || !isAncestorOf(to) || to == cancel_ || InEdit()) return;
  const std::string typed = name_->Text();
  if (shown_ && EqualNoCase(typed, shown_->name)) return;
  EnterName(typed);
}

void AdjustReorderForm::EnterName(const std::string& typed) {
  EnterStockName(*this, kNameField, typed,
                 {[this](const std::string& name) { return ChooseReorderColor(session, name); },
                  [this](ColorKind kind, const std::string& name) { ShowColor(kind, name); }, [this] { Clear(); }});
}

void AdjustReorderForm::Clear() {
  shown_.reset();
  name_->SetText("");
  kind_->clear();
  stock_->SetText("");
  reorder_->SetText("");
  MarkClean();
}

void AdjustReorderForm::ShowColor(ColorKind kind, const std::string& name) {
  Clear();
  shown_ = Shown{kind, name};
  Reload();
  if (shown_) FocusField("txtReorder");
}

void AdjustReorderForm::Reload() {
  const auto record = LoadStockRecord(session, shown_->kind, shown_->name);
  if (!record) return Clear();
  shown_->name = record->Color_Name;
  name_->SetText(record->Color_Name);
  kind_->setText(shown_->kind == ColorKind::Mix ? tr("Master Formula") : tr("Basic Color"));
  stock_->SetText(Fixed(TotalStock(session, shown_->kind, shown_->name), 3));
  if (!reorder_->IsDirty()) {
    reorder_->SetText(TypedText(record->typed, "Reorder"));
    reorder_->MarkClean();
  }
  Changed();
}

void AdjustReorderForm::OnChanges(const std::vector<Change>& changes) {
  bool mine = false;
  for (const Change& change : changes) {
    if (change.kind == Change::Kind::Settings) mine = true;
    if (!shown_ || change.kind != ChangeKind(shown_->kind) || !EqualNoCase(change.database, session.CurrentDatabase))
      continue;
    const bool isShown = EqualNoCase(change.name, shown_->name);
    if (isShown && change.what == Change::What::Renamed) shown_->name = change.newName;
    mine = mine || isShown || change.what == Change::What::All;
  }
  if (mine && shown_) Reload();
  if (mine) Changed();
}

bool AdjustReorderForm::Store() {
  return Accepted(SaveReorderPoint(session, shown_->kind, shown_->name, reorder_->Text()));
}

void AdjustReorderForm::cmdSave_Click() {
  if (!shown_ || !Store()) return;
  Clear();
  FocusField(kNameField);
}

void AdjustReorderForm::cmdCancel_Click() {
  if (InEdit() && !MayDiscard(session)) return;
  Clear();
  FocusField(kNameField);
}

bool AdjustReorderForm::MayClose() {
  if (!InEdit()) return true;
  const Answer answer =
      session.prompt.Show({U8(tr("Inventory - Save Information?")), U8(tr("Save changes before closing?")),
                           Buttons::YesNoCancel, vellumark::Icon::Question, Answer::Yes});
  return answer == Answer::No || (answer == Answer::Yes && Store());
}

}  // namespace vellumark::desktop
