#include "desktop/tools/additive_create_tab.h"

#include <QHBoxLayout>
#include <QLocale>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/additive_control.h"
#include "core/colors/formulas.h"
#include "core/colors/name_search.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

constexpr int kPercentDecimals = 2;
constexpr int kPercentChars = 6;
constexpr int kListWidth = 296;

bool IsButton(const QWidget* widget) {
  return qobject_cast<const QPushButton*>(widget) != nullptr;
}

}  // namespace

AdditiveCreateTab::AdditiveCreateTab(FormHost& host, Form form)
    : QObject(&host.Self()),
      host_(host),
      sets_(std::make_shared<TableSource>()),
      formulas_(std::make_shared<TableSource>()) {
  auto* box = new QWidget;
  auto* layout = new QHBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(space::kGroup);
  auto* left = new QWidget;
  auto* middle = new QWidget;
  auto* right = new QWidget;
  left->setFixedWidth(kListWidth);
  layout->addWidget(left);
  layout->addWidget(middle);
  layout->addWidget(right, 1);

  Form lists(host, *left);
  lists.Heading(tr("Additive Sets"));
  list_ = lists.Table("SN_CreateTab");
  list_->SetColumns({GridColumn::Text(tr("Set"), 184), GridColumn::Number(tr("Percent"), 80)});
  list_->ShowFilter(tr("Filter"));
  list_->SetSource(sets_);
  lists.Wide(list_, 1);
  rename_ = lists.Button("cmdRename_CreateTab", tr("Rename"), Qt::Key_F6, [this] { Rename(); });
  delete_ = lists.Button("cmdDel_CreateTab", tr("Delete"), Qt::CTRL | Qt::Key_D, [this] { Delete(); });
  lists.ButtonsWithoutDefault({rename_, delete_});
  BuildFields(Form(host, *middle));
  Form users(host, *right);
  users.Heading(tr("Master Formulas using Selected Set:"));
  users_ = users.Table("lstMixes_CreateTab");
  users_->SetColumns({GridColumn::Text(tr("Color"), 280)});
  users_->ShowFilter(tr("Filter"));
  users_->SetEmptyText(tr("None"));
  users_->SetSource(formulas_);
  users.Wide(users_, 1);
  form.Wide(box, 1);

  connect(list_, &Grid::CurrentRowChanged, this, &AdditiveCreateTab::RowChosen);
  LoadList();
  Empty();
}

void AdditiveCreateTab::BuildFields(Form form) {
  form.Heading(tr("Set"));
  name_ = form.Text("txtAddSetName", TextRule::UpperName(kSetNameLength));
  name_->Means("SetName");
  form.Row(tr("&Name"), name_);
  connect(name_, &TextField::Left, this, &AdditiveCreateTab::NameLeft);
  for (int number = 0; number < schema::kSetSlots; ++number) BuildRow(form, number);
  form.Row(tr("Total"), total_ = form.Label("lblSetTotal"));
  for (const QString& text :
       {tr("Each Additive in the set cannot exceed a value of 10%."),
        tr("The percentages in the Additive Set are normalized into a \nMaster Formula using these fixed values.")})
    form.Wide(form.Hint(text));
  CommandButton* save = form.Button("cmdSave_CreateTab", tr("&Save"), QKeySequence::Save, [this] { Save(); });
  CommandButton* fresh = form.Button("cmdNew_CreateTab", tr("N&ew"), QKeySequence::New, [this] { New(); });
  form.ButtonsWithoutDefault({save, fresh});
  form.Stretch();
  host_.SetDefaultButton(save);
}

void AdditiveCreateTab::BuildRow(Form& form, int number) {
  RowFields& row = rows_.at(static_cast<std::size_t>(number));
  Session& session = host_.session;
  row.ingredient =
      form.Name(Q(schema::Numbered("SetIng", number)),
                {[&session](std::string_view typed) { return CompleteName(session, NameKind::Additives, typed); },
                 [&session](std::string_view typed, std::size_t limit) {
                   return NamesFrom(session, NameKind::Additives, typed, limit);
                 }});
  row.percent = form.Number(Q(schema::Numbered("SetPercent", number)), kPercentDecimals, tr("above 0, at most 10"),
                            kPercentChars);
  row.percent->setMinimumWidth(row.percent->maximumWidth());
  row.percent->setAccessibleName(tr("Percent"));
  form.Row(tr("Additive &%1").arg(number + 1), {row.ingredient, row.percent, form.Hint("%")});
  const auto place = static_cast<std::size_t>(number);
  connect(row.ingredient, &TextField::Left, this, [this, place](QWidget* to) { IngredientLeft(place, to); });
  connect(row.percent, &TextField::Left, this, [this, place](QWidget* to) { PercentLeft(place, to); });
  connect(row.percent, &QLineEdit::textChanged, this, &AdditiveCreateTab::ShowTotal);
}

// ---- The list

void AdditiveCreateTab::LoadList() {
  loading_ = true;
  list_->SetCurrentRow(-1);
  sets_->Clear();
  sets_->Add({U8(tr("COLORS NOT USING SETS"))});
  int place = withoutSet_ ? 0 : -1;
  for (const AdditiveSet& set : ListAdditiveSets(host_.session)) {
    if (!shown_.empty() && EqualNoCase(set.SetName, shown_)) place = sets_->Rows();
    const double total = TotalOf(set.Rows());
    sets_->Add({set.SetName, {Fixed(total, kPercentDecimals), total}});
  }
  list_->Refresh();
  list_->SetCurrentRow(place);
  loading_ = false;
}

void AdditiveCreateTab::RowChosen(int row) {
  if (loading_ || row < 0) return;
  if (!MayLeave()) {
    // The frame goes back to what the fields show.
    QMetaObject::invokeMethod(
        this, [this] { LoadList(); }, Qt::QueuedConnection);
    return;
  }
  if (row > 0) return ShowSet(sets_->Text(row, 0));
  Empty();
  withoutSet_ = true;
  ShowFormulas(true);
}

void AdditiveCreateTab::ShowFormulas(bool withoutSet) {
  formulas_->Clear();
  const auto names = withoutSet       ? FormulasWithoutSet(host_.session)
                     : shown_.empty() ? std::vector<std::string>()
                                      : FormulasWithSet(host_.session, shown_);
  for (const std::string& name : names) formulas_->Add({name});
  users_->Refresh();
}

void AdditiveCreateTab::ShowSet(const std::string& name) {
  const auto set = ReadAdditiveSet(host_.session, name);
  Empty();
  if (!set) return;
  shown_ = set->SetName;
  name_->SetText(set->SetName);
  const Recipe rows = set->Rows();
  for (std::size_t n = 0; n < rows.size(); ++n) {
    rows_.at(n).ingredient->SetText(rows[n].name);
    rows_.at(n).percent->SetText(Fixed(rows[n].amount, kPercentDecimals));
  }
  ShowFormulas(false);
  host_.MarkClean();
}

void AdditiveCreateTab::Empty() {
  shown_.clear();
  withoutSet_ = false;
  name_->SetText("");
  for (const RowFields& row : rows_) {
    row.ingredient->SetText("");
    row.percent->SetText("");
  }
  ShowFormulas(false);
  ShowTotal();
  host_.MarkClean();
}

void AdditiveCreateTab::ShowTotal() {
  Recipe recipe;
  for (const RowFields& row : rows_)
    if (const auto percent = ReadSetPercent(row.percent->Text())) recipe.push_back({row.ingredient->Name(), *percent});
  total_->setText(tr("%1 %").arg(Q(Fixed(TotalOf(recipe), kPercentDecimals)).replace('.', QLocale().decimalPoint())));
}

void AdditiveCreateTab::UpdateEnabled() {
  name_->setReadOnly(!shown_.empty());
  rename_->setEnabled(!shown_.empty());
  delete_->setEnabled(!shown_.empty());
}

void AdditiveCreateTab::TakeFocus() {
  host_.FocusField("SetName");
}

void AdditiveCreateTab::Reload() {
  if (!host_.IsDirty() && !shown_.empty()) {
    const std::string name = shown_;
    ShowSet(name);
  } else if (!shown_.empty() && !AdditiveSetExists(host_.session, shown_)) {
    shown_.clear();  // deleted under the operator's hands: what was typed can be saved as a new set
  }
  LoadList();
  ShowFormulas(withoutSet_);
}

void AdditiveCreateTab::Renamed(const std::string& oldName, const std::string& newName) {
  if (shown_.empty() || !EqualNoCase(oldName, shown_)) return;
  shown_ = newName;
  name_->SetText(newName);
  name_->MarkClean();
}

// ---- The fields

AdditiveSetWork AdditiveCreateTab::Work() const {
  AdditiveSetWork work{name_->Text(), {}};
  for (std::size_t n = 0; n < rows_.size(); ++n) work.rows[n] = {rows_[n].ingredient->Name(), rows_[n].percent->Text()};
  return work;
}

void AdditiveCreateTab::NameLeft(QWidget* to) {
  if (!shown_.empty() || IsButton(to)) return;
  if (const auto name = EnterSetName(host_.session, name_->Text()); host_.Accepted(name)) name_->SetText(*name);
}

void AdditiveCreateTab::IngredientLeft(std::size_t number, QWidget* to) {
  // A button that the focus went to checks by itself.
  NameBox* field = rows_.at(number).ingredient;
  if (IsButton(to) || field->Name().empty()) return;
  const auto name = EnterSetIngredient(host_.session, Work(), number, field->Name());
  if (!host_.Accepted(name)) return;
  field->SetText(*name);
  if (name->empty()) host_.FocusField(schema::Numbered("SetIng", static_cast<int>(number)));
}

void AdditiveCreateTab::PercentLeft(std::size_t number, QWidget* to) {
  NumberField* field = rows_.at(number).percent;
  if (IsButton(to) || Trim(field->Text()).empty()) return;
  const std::string called = schema::Numbered("SetPercent", static_cast<int>(number));
  if (const auto percent = ReadSetPercent(field->Text(), called); host_.Accepted(percent))
    field->SetText(Fixed(*percent, kPercentDecimals));
}

// ---- Commands

bool AdditiveCreateTab::MayLeave() {
  if (!host_.IsDirty()) return true;
  if (host_.session.prompt.Ask(U8(tr("Unfinished Add Set Creation")),
                               U8(tr("Complete and Save the current Add Set?")))) {
    TakeFocus();
    return false;
  }
  host_.MarkClean();
  return true;
}

void AdditiveCreateTab::New() {
  if (!MayLeave()) return;
  Empty();
  LoadList();
  TakeFocus();
}

void AdditiveCreateTab::Save() {
  Session& session = host_.session;
  Result<AdditiveSet> saved = [&] {
    const auto wait = host_.Wait(WaitKind::WaitingForm, tr("Updating Add Set / Updating formulas"));
    return shown_.empty() ? CreateAdditiveSet(session, Work()) : EditAdditiveSet(session, shown_, Work());
  }();
  if (!host_.Accepted(saved)) return;
  ShowSet(saved->SetName);
  LoadList();
  TakeFocus();
}

void AdditiveCreateTab::Rename() {
  if (!host_.Accepted(RequireWritable(host_.session))) return;
  const auto renamed = host_.windows.RunDialog("NewAdditiveNameForm", {{"SetName", shown_}});
  if (!renamed) return;
  // A merge gives the set up for the other one, whose content then counts.
  ShowSet(renamed->Text("NewName"));
  LoadList();
}

void AdditiveCreateTab::Delete() {
  Result<bool> deleted = [&] {
    const auto wait = host_.Wait(WaitKind::WaitingForm, tr("Deleting Add Set / Updating formulas"));
    return DeleteAdditiveSet(host_.session, shown_);
  }();
  if (!host_.Accepted(deleted) || !*deleted) return;
  Empty();
  LoadList();
  TakeFocus();
}

}  // namespace vellumark::desktop
