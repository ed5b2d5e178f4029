#include "desktop/tools/additive_apply_tab.h"

#include <QHBoxLayout>

#include "core/colors/name_search.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/tools/color_selection.h"
#include "desktop/tools/preview_lists.h"
#include "desktop/tools/tool_parts.h"

namespace vellumark::desktop {
namespace {

constexpr int kPercentDecimals = 3;
constexpr int kPercentChars = 7;

}  // namespace

AdditiveApplyTab::AdditiveApplyTab(FormHost& host, Form form) : QObject(&host.Self()), host_(host) {
  TwoSides sides = Sides(host, form);
  sides.left.Heading(tr("Step 1: Select the set"));
  set_ = sides.left.Combo("SN_ApplyTab");
  set_->setAccessibleName(tr("Additive Set"));
  set_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  set_->DoNotTrack();
  sides.left.Wide(set_);
  sides.left.Heading(tr("Step 2: Select colors"));
  colors_ = new ColorSelection(host, sides.left, "lstAllMixes_ApplyTab");
  BuildMethod(sides.right);
  preview_ =
      new PreviewLists(host, sides.right, {tr("Colors to be Modified:"), tr("Colors Excluded from Modification:")},
                       {GridColumn::Text(tr("Info"), 152), GridColumn::Text(tr("Current Set Name"), 120).Choosable(),
                        GridColumn::Text(tr("Mod Type"), 96).Choosable(false)});
  save_ = form.Button("cmdSave_ApplyTab", tr("&Save"), QKeySequence::Save, [this] { Save(); });

  connect(set_, &QComboBox::currentTextChanged, this, &AdditiveApplyTab::ForgetPreview);
  connect(colors_, &ColorSelection::ChosenChanged, this, &AdditiveApplyTab::ForgetPreview);
  connect(preview_, &PreviewLists::TakenChanged, this, [this] { UpdateEnabled(); });
  LoadSets();
  colors_->Load(ColorKind::Mix);
}

void AdditiveApplyTab::BuildMethod(Form& form) {
  Session& session = host_.session;
  form.Heading(tr("Step 3: Select the method"));
  method_ = form.Radio("optMod_ApplyTab", {{"optMod_Add", tr("Add Set to Selected Color(s)")},
                                           {"optMod_Remove", tr("Remove Set from Selected Color(s)")},
                                           {"optMod_Filter", tr("Add Set to Colors Using Filter")}});
  method_->DoNotTrack();
  form.Wide(method_);
  ingredient_ =
      form.Name("cmbBColor_ApplyTab",
                {[&session](std::string_view typed) { return CompleteName(session, NameKind::Basics, typed); },
                 [&session](std::string_view typed, std::size_t limit) {
                   return NamesFrom(session, NameKind::Basics, typed, limit);
                 }});
  ingredient_->setAccessibleName(tr("Basic Color"));
  ingredient_->setPlaceholderText(tr("Basic Color"));
  ingredient_->DoNotTrack();
  operator_ = form.Combo("cmbOper_ApplyTab", {">=", "<="});
  operator_->setAccessibleName(tr("Operator"));
  operator_->DoNotTrack();
  percent_ = form.Number("cmbPer_ApplyTab", kPercentDecimals, tr("0 to 100"), kPercentChars);
  percent_->setAccessibleName(tr("Percent"));
  percent_->DoNotTrack();
  CommandButton* preview = form.Button("cmdPrev_ApplyTab", tr("&Preview"), Qt::Key_F5, [this] { Preview(); });
  auto* line = new QWidget;
  auto* layout = new QHBoxLayout(line);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(space::kUnit);
  layout->addWidget(ingredient_);
  layout->addWidget(operator_);
  layout->addWidget(percent_);
  layout->addWidget(form.Hint("%"));
  layout->addStretch();
  layout->addWidget(preview);
  form.Wide(line);
  preview->setProperty("primary", true);
  connect(method_, &RadioField::ChosenChanged, this, &AdditiveApplyTab::ForgetPreview);
  connect(operator_, &QComboBox::currentTextChanged, this, &AdditiveApplyTab::ForgetPreview);
  for (TextField* field : {static_cast<TextField*>(ingredient_), static_cast<TextField*>(percent_)})
    connect(field, &QLineEdit::textChanged, this, &AdditiveApplyTab::ForgetPreview);
}

void AdditiveApplyTab::LoadSets() {
  std::vector<std::string> names;
  for (const AdditiveSet& set : ListAdditiveSets(host_.session)) names.push_back(set.SetName);
  const std::string chosen = set_->Text();
  const QSignalBlocker quiet(set_);
  set_->SetItems(names);
  if (set_->currentIndex() < 0 && set_->count() > 0) set_->setCurrentIndex(0);
  if (set_->Text() != chosen) ForgetPreview();
}

void AdditiveApplyTab::Reload() {
  LoadSets();
  colors_->Load(ColorKind::Mix);
}

void AdditiveApplyTab::UpdateEnabled() {
  const bool filter = Method() == SetMethod::AddByFilter;
  for (QWidget* field :
       {static_cast<QWidget*>(ingredient_), static_cast<QWidget*>(operator_), static_cast<QWidget*>(percent_)})
    field->setEnabled(filter);
  save_->setEnabled(!preview_->Taken().empty());
}

void AdditiveApplyTab::TakeFocus() {
  colors_->TakeFocus();
}

SetMethod AdditiveApplyTab::Method() const {
  return static_cast<SetMethod>(method_->Chosen());
}

void AdditiveApplyTab::ForgetPreview() {
  // Made before the lists are.
  if (preview_ != nullptr && !preview_->IsEmpty()) preview_->Clear();
}

void AdditiveApplyTab::Preview() {
  SetFilter filter;
  if (Method() == SetMethod::AddByFilter) {
    const auto read = ReadSetFilter(ingredient_->Name(), operator_->currentIndex() == 0, percent_->Text());
    if (!host_.Accepted(read)) return;
    filter = *read;
  }
  const auto wait = host_.Wait(WaitKind::WaitingForm, tr("Generating Preview Results ..."));
  const auto rows = PreviewAdditiveSet(host_.session, set_->Text(), Method(), filter, colors_->Chosen());
  if (!host_.Accepted(rows)) return;
  std::vector<PreviewRow> shown;
  shown.reserve(rows->size());
  for (const SetPreviewRow& row : *rows)
    shown.push_back(
        {row.color, {row.info, row.currentSet, row.modable ? "Modable" : "Un_Modable"}, row.modable, row.modable, {}});
  preview_->Show(std::move(shown));
  preview_->TakeFocus();
}

void AdditiveApplyTab::Save() {
  {
    const auto wait = host_.Wait(WaitKind::WaitingForm, tr("Modifing Formulas ..."));
    const auto applied = ApplyAdditiveSet(host_.session, set_->Text(), Method(), preview_->Taken());
    if (!host_.Accepted(applied) || !*applied) return;
  }
  preview_->Clear();
  colors_->ChooseNone();
  colors_->TakeFocus();
}

}  // namespace vellumark::desktop
