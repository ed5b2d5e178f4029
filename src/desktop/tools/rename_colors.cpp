#include "desktop/tools/rename_colors.h"

#include "core/base/text.h"
#include "desktop/kit/text.h"
#include "desktop/tools/color_selection.h"
#include "desktop/tools/preview_lists.h"
#include "desktop/tools/tool_parts.h"

namespace vellumark::desktop {

DBRenameColors::DBRenameColors(WindowList& windowList)
    : Window(windowList, "DBRenameColors", tr(" Database - Rename Colors")) {
  Form form(*this);
  TwoSides sides = Sides(*this, form);
  sides.left.Heading(tr("Step 1: Select colors"));
  kind_ = sides.left.Radio("optType",
                           {{"optType_Mix", tr("&Master Formulas")}, {"optType_Basic", tr("&Basics / Additives")}},
                           Qt::Horizontal);
  kind_->DoNotTrack();
  sides.left.Wide(kind_);
  colors_ = new ColorSelection(*this, sides.left, "lstColors");

  BuildRule(sides.right);
  preview_ = new PreviewLists(*this, sides.right, {tr("Colors to be renamed:"), tr("Colors excluded from renaming:")},
                              {GridColumn::Text(tr("New name or reason"), 240)});
  ToolButtons(*this, form, {save_ = form.Button("cmdSave", tr("&Save")), form.Button("cmdClose", tr("Close"))});

  connect(kind_, &RadioField::ChosenChanged, this, &DBRenameColors::ShowKind);
  connect(colors_, &ColorSelection::ChosenChanged, this, [this] {
    ForgetPreview();
    Changed();
  });
  connect(change_, &RadioField::ChosenChanged, this, &DBRenameColors::ForgetPreview);
  for (TextField* field : {prefix_, suffix_, find_, replace_})
    connect(field, &QLineEdit::textChanged, this, &DBRenameColors::ForgetPreview);
  connect(preview_, &PreviewLists::TakenChanged, this, [this] { Changed(); });
  colors_->Load(Kind());
}

void DBRenameColors::BuildRule(Form& form) {
  form.Heading(tr("Step 2: Select the change"));
  change_ = form.Radio("optNameChange",
                       {{"optNameChange_Prefix", tr("Add Prefi&x")},
                        {"optNameChange_Suffix", tr("Add S&uffix")},
                        {"optNameChange_Find", tr("&Find")}},
                       Qt::Horizontal);
  const auto text = [&](const char* name, const QString& caption) {
    TextField* field = form.Text(name, TextRule::UpperName(session.NameLength));
    field->setAccessibleName(caption);
    QLabel* label = form.Hint(caption);
    label->setBuddy(field);
    labels_.emplace(field, label);
    return field;
  };
  form.Wide(change_);
  prefix_ = text("txtPrefix", tr("Prefix"));
  suffix_ = text("txtSuffix", tr("Suffix"));
  find_ = text("txtFind", tr("Find"));
  replace_ = text("txtReplace", tr("Replace"));
  CommandButton* button = form.Button("cmdPreview", tr("&Preview"), Qt::Key_F5);
  auto* line = new QWidget;
  auto* layout = new QHBoxLayout(line);
  layout->setContentsMargins(0, 0, 0, 0);
  for (TextField* field : {prefix_, suffix_, find_, replace_}) {
    layout->addWidget(labels_.at(field));
    layout->addWidget(field);
  }
  layout->addStretch();
  layout->addWidget(button);
  form.Wide(line);
  SetDefaultButton(button);
}

void DBRenameColors::OnOpen(const Arguments&) {
  if (Accepted(RequireColorsToRename(session, Kind()))) colors_->TakeFocus();
}

ColorKind DBRenameColors::Kind() const {
  return kind_->Chosen() == 0 ? ColorKind::Mix : ColorKind::Basic;
}

BulkRename DBRenameColors::Rule() const {
  switch (change_->Chosen()) {
    case 0:
      return {Kind(), NameChange::Prefix, prefix_->Text(), {}};
    case 1:
      return {Kind(), NameChange::Suffix, suffix_->Text(), {}};
    default:
      return {Kind(), NameChange::Replace, find_->Text(), replace_->Text()};
  }
}

void DBRenameColors::ShowKind() {
  ForgetPreview();
  colors_->Load(Kind());
  Accepted(RequireColorsToRename(session, Kind()));
}

void DBRenameColors::UpdateEnabled() {
  for (const auto& [field, label] : labels_) {
    const int option = field == prefix_ ? 0 : field == suffix_ ? 1 : 2;
    field->setVisible(change_->Chosen() == option);
    label->setVisible(change_->Chosen() == option);
  }
  save_->setEnabled(!preview_->Taken().empty());
}

void DBRenameColors::OnChanges(const std::vector<Change>& changes) {
  for (const Change& change : changes) {
    if (change.kind != ChangeKind(Kind()) || !EqualNoCase(change.database, session.CurrentDatabase)) continue;
    colors_->Load(Kind());
    return;
  }
}

void DBRenameColors::ForgetPreview() {
  if (!preview_->IsEmpty()) preview_->Clear();
}

void DBRenameColors::cmdPreview_Click() {
  const auto wait = Wait(WaitKind::WaitingForm, tr("Preparing Preview Results ..."));
  const auto rows = PreviewRename(session, Rule(), colors_->Chosen());
  if (!Accepted(rows)) return;
  std::vector<PreviewRow> shown;
  shown.reserve(rows->size());
  for (const RenamePreviewRow& row : *rows)
    shown.push_back({row.Color_Name, {row.renames ? row.newName : row.reason}, row.renames, row.renames, {}});
  preview_->Show(std::move(shown));
  preview_->TakeFocus();
}

void DBRenameColors::cmdSave_Click() {
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Modifing Name ..."));
    const Result<bool> renamed = ApplyRename(session, Rule(), preview_->Taken());
    if (!Accepted(renamed) || !*renamed) return;
  }
  preview_->Clear();
  for (TextField* field : {prefix_, suffix_, find_, replace_}) field->SetText("");
  colors_->ChooseNone();
  colors_->Load(Kind());
  colors_->TakeFocus();
}

}  // namespace vellumark::desktop
