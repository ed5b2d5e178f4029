// What the commands of the window of Master Formulas do.

#include <QTabWidget>

#include "core/colors/attachments.h"
#include "core/colors/guide_formulas.h"
#include "core/inventory/color_stock.h"
#include "desktop/colors/additive_set_panel.h"
#include "desktop/colors/ingredients_panel.h"
#include "desktop/colors/measurements_panel.h"
#include "desktop/colors/mix_colors_form.h"
#include "desktop/colors/mix_details_panel.h"
#include "desktop/colors/mix_notes_panel.h"
#include "desktop/colors/new_additive_set_panel.h"
#include "desktop/inventory/inventory_panel.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

// ---- Saving

Result<void> MixColorsForm::CheckPageInFront(const FormulaWork& work) const {
  const QString page = tabs_->currentWidget()->objectName();
  if (page == QLatin1String(kFormulaPage) && (work.key == 0 || work.AllowEditing))
    return ValidateFormula(session, work);
  if (page != QLatin1String(kDetailsPage)) return {};
  if (const auto read = ReadTyped(session, MixFields(), work); !read) return std::unexpected(read.error());
  return {};
}

bool MixColorsForm::Store() {
  if (!MayLeaveEntries() || !SettleNewSet()) return false;
  FormulaWork work = ReadFields();
  if (!Accepted(CheckPageInFront(work))) return false;
  ColorAttachments attachments;
  if (measurements_->IsChanged()) attachments.measurements = measurements_->Readings();
  details_->Take(attachments);
  const Result<void> saved = [&] {
    const auto wait = Wait(WaitKind::WaitForm, tr("Saving Master Formula ..."));
    return SaveWithStock(
        session, [&] { return SaveMix(session, work, attachments); }, inventory_->Work());
  }();
  return Accepted(saved);
}

void MixColorsForm::cmdSave_Click() {
  if (!work_) return;
  const std::string name = work_->Color_Name;
  const bool editing = allowEditing_->isChecked();
  if (!Store()) return;
  // The operator sees the formula as it was stored, open for editing as it was; a name typed next takes its place.
  ShowColor(name);
  allowEditing_->setChecked(editing);
  Changed();
  name_->TakeFocus();
}

void MixColorsForm::cmdDelete_Click() {
  const Result<bool> deleted = DeleteMix(session, work_->Color_Name);
  if (Accepted(deleted) && *deleted) StartOver();
}

bool MixColorsForm::MayClose() {
  if (!InEdit()) return true;
  const Answer answer =
      session.prompt.Show({U8(tr("Master Formula - Save Information?")), U8(tr("Save changes before closing?")),
                           Buttons::YesNoCancel, vellumark::Icon::Question, Answer::Yes});
  return answer == Answer::No || (answer == Answer::Yes && Store());
}

// ---- Other windows

void MixColorsForm::cmdRename_Click() {
  if (!Accepted(RequireWritable(session))) return;
  const auto renamed = windows.RunDialog("NewMixNameForm", {{"Color_Name", work_->Color_Name}});
  if (!renamed) return;
  work_->Color_Name = renamed->Text("NewName");
  Reload();
}

void MixColorsForm::cmdDuplicate_Click() {
  windows.RunDialog("DuplicateFormulaForm", {{"Work", ReadFields()}});
}

void MixColorsForm::cmdAutoAdjust_Click() {
  const FormulaWork work = ReadFields();
  if (!Accepted(ValidateFormula(session, work))) return;
  const auto adjusted = windows.RunDialog("AdjustFormulaForm", {{"Work", work}});
  if (!adjusted) return;
  const auto saved = adjusted->Get<FormulaWork>("Work");
  ingredients_->Show(saved, false);
  sets_->Show(saved.AddSetName);
  Reload();
}

void MixColorsForm::cmdModified_Click() {
  FormulaWork work = ReadFields();
  if (!Accepted(ValidateFormula(session, work))) return;
  const auto answer =
      windows.RunDialog("CompareFormulasForm", {{"Color_Name", work_->Color_Name}, {"MayRevert", MayEdit()}});
  if (!answer || !answer->Has("Revert")) return;
  if (!Accepted(PutBackToGuide(session, work))) return;
  allowEditing_->setChecked(false);
  ingredients_->Show(work, false);
  sets_->Show(work.AddSetName);
  Reload();
}

}  // namespace vellumark::desktop
