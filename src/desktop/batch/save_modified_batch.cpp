#include "desktop/batch/save_modified_batch.h"

#include <QLayout>
#include <array>

#include "core/batch/modified.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

// In the order of the actions.
constexpr std::array kChanges{FormulaChange::None, FormulaChange::Update, FormulaChange::Create};
constexpr const char* kNameField = "txtColorName";

}  // namespace

SaveModifiedBatch::SaveModifiedBatch(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "SaveModifiedBatch", tr(" Saving Batch with Additions")) {
  Form form(*this);
  form.Row(tr("Master Formula"), color_ = form.Value("lblColorName", 1));
  form.Space();
  action_ = form.Radio(
      "optAction", {{"optSaveBatch", tr("Save the Batch Recipe,     Master Formula will not be changed.")},
                    {"optUpdateFormula",
                     tr("Save the Batch Recipe,     Master Formula will be updated with these Batch Additions.")},
                    {"optNewFormula",
                     tr("Save the Batch Recipe,     A New Master Formula will be created from this Batch Recipe")}});
  action_->setAccessibleName(windowTitle().trimmed());
  form.Wide(action_);
  form.Space();
  form.Row(tr("&New Master Formula Name:"), name_ = form.Text(kNameField, TextRule::UpperName(session.NameLength)));
  name_->Means("Color_Name");
  form.Buttons({form.Button("cmdSave", tr("&Save")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  action_->Choose(0);
}

void SaveModifiedBatch::OnOpen(const Arguments& arguments) {
  record_ = arguments.Get<const BatchRecord*>("Record");
  color_->SetText(record_->work.Color_Name);
}

void SaveModifiedBatch::UpdateEnabled() {
  name_->setEnabled(kChanges.at(static_cast<std::size_t>(action_->Chosen())) == FormulaChange::Create);
}

void SaveModifiedBatch::cmdSave_Click() {
  const ModifiedBatchChoice typed{kChanges.at(static_cast<std::size_t>(action_->Chosen())), name_->Text()};
  const Result<ModifiedBatchChoice> choice = CheckModifiedBatch(session, *record_, typed);
  if (!Accepted(choice)) return;
  result.Set("Choice", *choice);
  accept();
}

}  // namespace vellumark::desktop
