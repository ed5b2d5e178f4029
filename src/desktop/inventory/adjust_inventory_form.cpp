#include "desktop/inventory/adjust_inventory_form.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>
#include <array>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/colors/amounts.h"
#include "core/colors/basic_work.h"
#include "core/colors/names.h"
#include "core/labels/label_subjects.h"
#include "core/labels/scan_step.h"
#include "desktop/inventory/inv_lot_instructions.h"
#include "desktop/inventory/inventory_panel.h"
#include "desktop/inventory/lot_grid.h"
#include "desktop/inventory/scan_tab.h"
#include "desktop/kit/amount_field.h"
#include "desktop/kit/caps_lock.h"
#include "desktop/kit/discard.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/print_label.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kNameField = "cmbColorName";
constexpr int kCostChars = 10;
constexpr int kNoteLength = 30;
constexpr int kRecordWidth = 424;
constexpr int kTextWidth = 160;
constexpr int kManual = 0;
constexpr int kScan = 1;
constexpr int kSettings = 2;

// The focus may go to these without the name counting as entered.
bool IsCommand(const QWidget& to) {
  static constexpr std::array<const char*, 3> commands{"cmdCancel", "cmdInvReport", "cmdHistory"};
  return qobject_cast<const QTabBar*>(&to) != nullptr ||
         std::ranges::any_of(commands, [&](const char* name) { return to.objectName() == QLatin1String(name); });
}

}  // namespace

AdjustInventoryForm::AdjustInventoryForm(WindowList& windowList)
    : Window(windowList, "AdjustInventoryForm", tr("Inventory")),
      bound_(MixFields(), [this](NumberField& control, const RecordField& field) {
        if (KeepToRight(*this, control, *field.amount, field.column))
          connect(&control, &TextField::Left, this,
                  [this, &control, &field](QWidget* to) { FigureLeft(control, field, to); });
      }) {
  setWindowIcon(Icon("Inventory"));
  Form form(*this);
  name_ = ColorNameBox(form, ColorsOnFile(session));
  ink_ = new SwatchView("imgSwatch", {48, 32});
  low_ = LowStockLink(form);
  QLabel* caption =
      form.Row(tr("&Name"), {name_, ink_, kind_ = form.Hint({}, "lblKind"), state_ = form.Hint({}, "lblState"), low_});
  manualOnly_ = {caption, name_->parentWidget()};
  TabSet tabs = form.Tabs("Inventory_TabStrip");
  tabs_ = tabs.Widget();
  auto* manual = new QWidget;
  tabs.Page(tr("Manual"), "TabManual").Wide(manual, 1);
  BuildManual(*manual);
  tabs.LatePage(tr("Scan"), "TabScan", [this](Form page) {
    scan_ = new ScanTab(*this, page);
    connect(scan_, &ScanTab::Changed, this, [this] { Changed(); });
  });
  BuildSettings(tabs.Page(tr("Settings"), "TabSettings"));
  form.Buttons({save_ = form.Button("cmdSave", tr("&Save")), cancel_ = form.Button("cmdCancel", tr("Cancel")),
                history_ = form.Button("cmdHistory", tr("&History"), Qt::Key_F7),
                label_ = form.Button("cmdPrintLabel", tr("Label"), Qt::CTRL | Qt::Key_L)});
  connect(name_, &TextField::Left, this, &AdjustInventoryForm::NameLeft);
  connect(name_, &NameBox::Picked, this, [this](const QString& picked) {
    if (!RecordInEdit()) EnterName(U8(picked));
  });
  connect(panel_, &InventoryPanel::Changed, this, [this] { Changed(); });
  connect(tabs_, &QTabWidget::currentChanged, this, &AdjustInventoryForm::TabChanged);
  OnActivation(*this, [this] {
    StandBackForBatch(*this, tr("Any attempt to change data on this window can impact the Batch Window."));
  });
  Clear();
  QMetaObject::invokeMethod(
      this, [this] { InvLotInstructions::ShowOnce(windows); }, Qt::QueuedConnection);
}

void AdjustInventoryForm::BuildManual(QWidget& page) {
  auto* line = new QHBoxLayout(&page);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(space::kGroup);
  auto* stock = new QWidget;
  auto* record = new QWidget;
  record->setFixedWidth(kRecordWidth);
  for (QWidget* part : {stock, record}) part->setProperty("flush", true);  // the page has its distance from the tabs
  line->addWidget(stock, 1);
  line->addWidget(record);
  panel_ = new InventoryPanel(*this, Form(*this, *stock));
  BuildRecord(Form(*this, *record));
}

void AdjustInventoryForm::BuildSettings(Form form) {
  std::vector<Form> columns = form.Columns(2);
  settings_.emplace(*this, columns[0], columns[1]);
  settings_->DoNotTrack();
  columns[1].Heading(tr("All colors"));
  columns[1].Row(
      columns[1].Button("cmdResetInv_All", tr("Reset inventor&y ..."), [this] { windows.RunDialog("ResetInvForm"); }));
  columns[1].Row(columns[1].Button("cmdResetReorder", tr("Reset reorder &points ..."),
                                   [this] { windows.RunDialog("ResetReorderForm"); }));
  columns[1].Heading(tr("One color"));
  columns[1].Row(
      columns[1].Button("cmdAdjustReorder", tr("Adjust reorder poin&t ..."), [this] { OpenReorderPoint(); }));
}

NumberField* AdjustInventoryForm::Figure(Form& form, const char* name, const char* column, int chars) {
  return bound_.Bind(column, form.Number(name, 3, tr("0 to 99999"), chars));
}

void AdjustInventoryForm::BuildRecord(Form form) {
  const auto row = [&](const QString& caption, std::initializer_list<QWidget*> fields) {
    QLabel* label = form.Row(caption, fields);
    captions_.emplace_back(label, caption);
    return label;
  };
  const auto text = [&](const QString& caption, const char* column, const char* name, int length) {
    TextField* field = bound_.Bind(column, form.Text(name, TextRule::Any(length)));
    form.Row(caption, field);
    field->setMinimumWidth(kTextWidth);
  };
  text(tr("Color code"), "Color_Code", "txtColorCode", session.NameLength);
  row(tr("Reorder Point"), {Figure(form, "txtReorder", "Reorder")});
  // What the ingredients of a formula come to stands behind each of its own figures.
  const auto pair = [&](const QString& caption, std::initializer_list<QWidget*> own, const QString& behind,
                        const char* name) {
    QLabel* label = form.Hint({});
    ValueField* value = form.Value(name, 1);
    value->setAccessibleName(behind);
    captions_.emplace_back(label, behind);
    formulaOnly_.insert(formulaOnly_.end(), {value, label});
    std::vector<QWidget*> line(own);
    auto* box = new QWidget;
    auto* across = new QHBoxLayout(box);
    across->setContentsMargins(0, 0, 0, 0);
    across->setSpacing(space::kUnit);
    for (QWidget* widget : line) across->addWidget(widget);
    across->addStretch(1);
    across->addWidget(label);
    across->addWidget(value);
    row(caption, {box})->setBuddy(line.front());
    line.front()->setAccessibleName(caption);
    return value;
  };
  NumberField* cost = Figure(form, "txtPurchaseCost", "PurchaseCost", kCostChars);
  const bool priceBlocked = session.Perm_Costs == 0;
  cost->setVisible(!priceBlocked);
  QLabel* blocked = form.Hint(tr("User Permissions - Price Blocked"), "lblPriceBlocked");
  blocked->setVisible(priceBlocked);
  basicCost_ = pair(tr("Purchase Cost"), {cost, blocked}, tr("Basic Cost"), "lblBasicCost");
  basicCostCaption_ = captions_[captions_.size() - 2].first;
  vocBasics_ = pair(tr("VOC"), {Figure(form, "txtVOC", "VOC")}, tr("VOC - Basics"), "lblVOCBasics");
  hapBasics_ = pair(tr("HAP"), {Figure(form, "txtHAP", "HAP")}, tr("HAP - Basics"), "lblHAPBasics");
  formulaOnly_.push_back(bound_.Bind("Recycle", form.Check("chkRecycle", tr("Recyclable"))));
  form.Row(formulaOnly_.back());
  text(tr("Inventory note"), "Inv_Note", "txtInvNote", kNoteLength);
  form.Row(tr("Notes"), bound_.Bind("Notes", form.Note("txtNotes", 2)));
  Relabel();
}

void AdjustInventoryForm::Relabel() {
  for (const auto& [label, caption] : captions_)
    label->setText(QString("%1 (%2)").arg(caption, Q(UnitName(session.UMI))));
}

// ---- State

bool AdjustInventoryForm::RecordInEdit() const {
  return record_ && (IsDirty() || panel_->IsChanged());
}

bool AdjustInventoryForm::InEdit() const {
  return RecordInEdit() || settings_->IsChanged() || (scan_ != nullptr && scan_->HasUnbooked());
}

void AdjustInventoryForm::UpdateEnabled() {
  const bool shown = record_.has_value();
  const bool edited = RecordInEdit();
  const bool formula = shown && record_->kind == ColorKind::Mix;
  name_->setReadOnly(edited);
  const bool manual = tab_ == kManual;
  const bool scan = tab_ == kScan;
  for (QWidget* widget : manualOnly_) widget->setVisible(!scan);
  // A scan has commands of its own; Ctrl+S is the one that books.
  for (QWidget* button : {save_, cancel_, history_}) button->setVisible(!scan);
  label_->setVisible(manual);
  label_->setEnabled(shown && CanPrintLabels(windows));
  save_->setEnabled(scan || (manual ? shown : settings_->IsChanged()));
  cancel_->setEnabled(manual ? shown : settings_->IsChanged());
  history_->setEnabled(tab_ != kSettings);
  if (scan_ != nullptr) scan_->UpdateEnabled();
  low_->setVisible(shown && isLow_);
  state_->setText(edited ? tr("Changed") : QString());
  for (QWidget* widget : formulaOnly_) widget->setVisible(formula);
  if (session.Perm_Costs == 0)
    for (QWidget* widget : {static_cast<QWidget*>(basicCost_), static_cast<QWidget*>(basicCostCaption_)})
      widget->setVisible(false);
  settings_->UpdateEnabled();
}

void AdjustInventoryForm::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("FindRecord") || RecordInEdit()) return;
  const std::string name = arguments.Text("FindRecord");
  if (!arguments.Has("Kind")) return EnterName(name);
  ShowColor(arguments.Get<ColorKind>("Kind"), name);
  if (record_) panel_->FocusEntry();
}

// ---- The name

void AdjustInventoryForm::NameLeft(QWidget* to) {
  if (tab_ != kManual || to == nullptr || !isAncestorOf(to) || IsCommand(*to) || RecordInEdit()) return;
  const std::string typed = name_->Text();
  if (record_ && EqualNoCase(typed, record_->Color_Name)) return;
  EnterName(typed);
}

void AdjustInventoryForm::EnterName(const std::string& typed) {
  EnterStockName(*this, kNameField, typed,
                 {[this](const std::string& name) { return ChooseInventoryColor(session, name); },
                  [this](ColorKind kind, const std::string& name) {
                    ShowColor(kind, name);
                    if (record_) panel_->FocusEntry();
                  },
                  [this] { Clear(); }});
}

// ---- Showing

void AdjustInventoryForm::Clear() {
  record_.reset();
  isLow_ = false;
  name_->SetText("");
  kind_->clear();
  ink_->Show(std::nullopt);
  ShowFields({}, false);
  panel_->Reset();
  MarkClean();
}

void AdjustInventoryForm::ShowColor(ColorKind kind, const std::string& name) {
  const auto record = LoadStockRecord(session, kind, name);
  Clear();
  if (!record) return;
  record_ = record;
  ShowFields(*record_, false);
  panel_->Load(kind, record_->Color_Name);
  MarkClean();
}

void AdjustInventoryForm::ShowFields(const StockRecord& record, bool keepTyped) {
  bound_.Put(record, keepTyped);
  const auto rolledUp = [&](AmountKey key, float value) {
    return record.kind == ColorKind::Mix ? AmountText(session, key, value) : std::string();
  };
  basicCost_->SetText(rolledUp(AmountKey::Currency, record.BasicCost));
  vocBasics_->SetText(rolledUp(AmountKey::VOC, record.BasicVOC));
  hapBasics_->SetText(rolledUp(AmountKey::HAP, record.BasicHAP));
  if (!record_) return;
  name_->SetText(record.Color_Name);
  kind_->setText(record.kind == ColorKind::Mix ? tr("Master Formula") : tr("Basic Color"));
  ink_->Show(InkOf(session, record.kind, record.Color_Name));
  isLow_ = IsBelowReorder(session, record.kind, record.Color_Name);
}

// ---- Changes made elsewhere

void AdjustInventoryForm::OnChanges(const std::vector<Change>& changes) {
  bool mine = false;
  for (const Change& change : changes) {
    if (change.kind == Change::Kind::Settings) {
      Relabel();
      panel_->Relabel();
      if (!settings_->IsChanged()) settings_->Show();
      mine = true;
    }
    if (!record_ || change.kind != ChangeKind(record_->kind) || !EqualNoCase(change.database, session.CurrentDatabase))
      continue;
    const bool isShown = EqualNoCase(change.name, record_->Color_Name);
    if (isShown && change.what == Change::What::Renamed) record_->Color_Name = change.newName;
    mine = mine || isShown || change.what == Change::What::All || EqualNoCase(change.newName, record_->Color_Name);
  }
  if (scan_ != nullptr) scan_->FileChanged();
  if (mine) Reload();
}

void AdjustInventoryForm::Reload() {
  if (!record_) return Changed();
  const auto record = LoadStockRecord(session, record_->kind, record_->Color_Name);
  if (!record) {
    // Deleted elsewhere: there is no stock of what is not there.
    Clear();
    return;
  }
  record_ = record;
  ShowFields(*record_, true);
  panel_->Refresh(record_->Color_Name);
  Changed();
}

// ---- Commands

StockRecord AdjustInventoryForm::Read() const {
  StockRecord record = *record_;
  bound_.Take(record);
  return record;
}

bool AdjustInventoryForm::Store() {
  if (AskUnfinishedWork(session, panel_->AdjustText(), false) == UnfinishedWork::Inventory) {
    panel_->FocusEntry();
    return false;
  }
  return Accepted(SaveStockRecord(session, Read(), *panel_->Shown()));
}

void AdjustInventoryForm::cmdSave_Click() {
  if (tab_ == kSettings) {
    if (StoreSettings()) Changed();
    return;
  }
  if (tab_ == kScan) return scan_->Process();
  if (!record_ || !Store()) return;
  Clear();
  FocusField(kNameField);
}

void AdjustInventoryForm::cmdCancel_Click() {
  if (tab_ == kSettings) return settings_->Show();
  if (RecordInEdit() && !MayDiscard(session)) return;
  Clear();
  FocusField(kNameField);
}

void AdjustInventoryForm::cmdHistory_Click() {
  Arguments arguments;
  if (record_) arguments.Set("Color_Name", record_->Color_Name).Set("Kind", record_->kind);
  windows.OpenForm("StockHistoryForm", arguments);
}

void AdjustInventoryForm::cmdPrintLabel_Click() {
  if (!record_) return;
  const auto lot = panel_->ChosenLot();
  auto label = lot ? LabelOfLot(session, record_->kind, record_->Color_Name, *lot)
                   : LabelOfColor(session, record_->kind, record_->Color_Name);
  if (label) OpenLabelForm(windows, {*std::move(label)});
}

void AdjustInventoryForm::OpenReorderPoint() {
  Arguments arguments;
  if (record_) arguments.Set("FindRecord", record_->Color_Name).Set("Kind", record_->kind);
  windows.OpenForm("AdjustReorderForm", arguments);
}

void AdjustInventoryForm::ImgInvLow_Click() {
  session.prompt.Tell(U8(tr("Inventory")), U8(tr("Inventory is below Reorder amount.")));
}

void AdjustInventoryForm::FigureLeft(NumberField& control, const RecordField& field, QWidget* to) {
  if (!record_ || to == nullptr || !isAncestorOf(to) || qobject_cast<QPushButton*>(to) != nullptr) return;
  const auto text = ReadStockFigure(session, field, control.Text());
  if (Accepted(text) && *text != control.Text()) control.SetText(*text);
}

// ---- Settings

bool AdjustInventoryForm::StoreSettings() {
  if (!Accepted(SaveInventorySettings(session, settings_->Read()))) return false;
  settings_->Show();
  return true;
}

void AdjustInventoryForm::TabChanged(int to) {
  if (to == tab_) return;
  if (!Accepted(MayShowTab(to))) {
    tabs_->setCurrentIndex(tab_);
    return;
  }
  tab_ = to;
  Changed();
  if (to == kScan) scan_->Focus();
}

Result<void> AdjustInventoryForm::MayShowTab(int to) const {
  const bool scanning = scan_ != nullptr && scan_->InProcess();
  if (to == kScan) return CheckScanFeature(RecordInEdit(), CapsLock::Of().IsOn());
  if (to == kManual) return CheckManualFeature(scanning);
  if (auto may = CheckInventorySettings(session, RecordInEdit()); !may) return may;
  return CheckSettingsBesideScan(scanning);
}

bool AdjustInventoryForm::MayClose() {
  if (scan_ != nullptr && scan_->HasUnbooked() && !MayClearScan(session)) return false;
  if (RecordInEdit() || settings_->IsChanged()) {
    const Answer answer =
        session.prompt.Show({U8(tr("Inventory - Save Information?")), U8(tr("Save changes before closing?")),
                             Buttons::YesNoCancel, vellumark::Icon::Question, Answer::Yes});
    if (answer == Answer::Cancel) return false;
    if (answer == Answer::Yes) {
      if (settings_->IsChanged() && !StoreSettings()) return false;
      if (RecordInEdit() && !Store()) return false;
    }
  }
  return true;
}

}  // namespace vellumark::desktop
