#include "desktop/labels/formula_label_form.h"

#include "core/colors/name_search.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kLongest = 60;
constexpr int kRecipeLines = 15;

}  // namespace

Formula_LabelForm::Formula_LabelForm(WindowList& windowList, PrintDevices devices)
    : LabelWindow(windowList, WindowsOf(LabelKind::Formula), tr("Formula Labels"), std::move(devices)) {
  Build([this](Form fields) { BuildFields(fields); });
  name_->setFocus();
}

void Formula_LabelForm::BuildFields(Form form) {
  form.Row(tr("Data&base"), database_ = Loose(form.Combo("cmbDB")));
  database_->SetItems(session.databaseList);
  database_->SetText(session.CurrentDatabase);
  database_->OnChosen([this](int) { loaded_.clear(); });
  form.Row(tr("Color &Name"), name_ = Loose(form.Name("cmbCN", {[this](std::string_view typed) {
                                                                  return CompleteName(session, NameKind::Formulas, typed,
                                                                                      database_->Text());
                                                                },
                                                                [this](std::string_view typed, std::size_t limit) {
                                                                  return NamesFrom(session, NameKind::Formulas, typed,
                                                                                   limit, database_->Text());
                                                                }})));
  form.Row(tr("Color Code"), code_ = Loose(form.Text("txtColorCode", TextRule::Any(kLongest))));
  form.Row(tr("Date"), date_ = Loose(form.Text("txtDate", TextRule::Any(kLongest))));
  form.Row(tr("&Formula"), formula_ = Loose(form.Note("txtFormula", kRecipeLines)));
  connect(name_, &TextField::Left, this, [this](QWidget* to) {
    if (GoesOnWithin(*this, to) && !LeavesNameAlone(*to) && !name_->Name().empty()) Accepted(Load());
  });
  connect(name_, &NameBox::Picked, this, [this] { Accepted(Load()); });
}

void Formula_LabelForm::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("Color_Name")) return;
  if (arguments.Has("Database")) database_->SetText(arguments.Text("Database"));
  name_->SetText(arguments.Text("Color_Name"));
  Accepted(Load());
}

Result<void> Formula_LabelForm::MayPrint() {
  return Load();
}

Result<void> Formula_LabelForm::Load() {
  const std::string name = name_->Name();
  if (!name.empty() && name == loaded_) return {};
  const auto data = FormulaLabelData(session, name, database_->Text());
  if (!data) return std::unexpected(data.error());
  loaded_ = data->Of("Color Name");
  name_->SetText(loaded_);
  code_->SetText(data->Of("Color Code"));
  date_->SetText(data->Of("Date"));
  formula_->SetText(data->Of("Formula"));
  Changed();
  return {};
}

Result<std::vector<LabelDrawing>> Formula_LabelForm::Draw(const std::string& layout) {
  const SmallLabelData data{{{"Color Name", name_->Name()},
                             {"Color Code", code_->Text()},
                             {"Formula", formula_->Text()},
                             {"Date", date_->Text()}}};
  return std::vector<LabelDrawing>{DrawSmallLabel(session, LabelKind::Formula, layout, data)};
}

void Formula_LabelForm::ClearFields() {
  loaded_.clear();
  name_->clear();
  code_->clear();
  date_->clear();
  formula_->clear();
  name_->setFocus();
}

QVariantMap Formula_LabelForm::Filled() const {
  return {{"Database", database_->currentText()},
          {"Name", Q(name_->Name())},
          {"Code", code_->text()},
          {"Date", date_->text()},
          {"Formula", formula_->toPlainText()}};
}

void Formula_LabelForm::Fill(const QVariantMap& filled) {
  database_->SetText(U8(filled["Database"].toString()));
  name_->SetText(U8(filled["Name"].toString()));
  loaded_ = name_->Name();
  code_->SetText(U8(filled["Code"].toString()));
  date_->SetText(U8(filled["Date"].toString()));
  formula_->setPlainText(filled["Formula"].toString());
}

}  // namespace vellumark::desktop
