#include "desktop/tools/register.h"

#include <array>

#include "core/colors/additive_control.h"
#include "desktop/kit/new_name_dialog.h"
#include "desktop/kit/toolbar_menu.h"
#include "desktop/tools/additive_control.h"
#include "desktop/tools/del_colors.h"
#include "desktop/tools/formula_modifier_form.h"
#include "desktop/tools/rename_colors.h"
#include "desktop/tools/reset_forms.h"
#include "desktop/tools/undo_form.h"

namespace vellumark::desktop {
namespace {

constexpr std::array<MenuEntry, 13> kMenu{{
    {"cmdAdditiveControl", QT_TRANSLATE_NOOP("DBToolsMenu", "&Additive Sets"), "DBAdditiveControl", nullptr,
     QT_TRANSLATE_NOOP("DBToolsMenu", "Many colors at once")},
    {"cmdFormulaModifier", QT_TRANSLATE_NOOP("DBToolsMenu", "&Formula Modifier"), "DBFormulaModifierForm"},
    {"cmdRenameColors", QT_TRANSLATE_NOOP("DBToolsMenu", "&Rename Colors"), "DBRenameColors"},
    {"cmdDelColors", QT_TRANSLATE_NOOP("DBToolsMenu", "&Delete Master Formulas"), "DBDelColors"},
    {"cmdResetBasicCost", QT_TRANSLATE_NOOP("DBToolsMenu", "&Basic Color costs"), "ResetBasicCostForm", nullptr,
     QT_TRANSLATE_NOOP("DBToolsMenu", "Reset values of all colors"), true},
    {"cmdResetMixCost", QT_TRANSLATE_NOOP("DBToolsMenu", "&Master Formula costs"), "ResetMixCostForm", nullptr, nullptr,
     true},
    {"cmdResetBasicVOCHAP", QT_TRANSLATE_NOOP("DBToolsMenu", "Basic Color &VOC and HAP"), "ResetBasic_VOC_HAP_Form",
     nullptr, nullptr, true},
    {"cmdResetMixVOCHAP", QT_TRANSLATE_NOOP("DBToolsMenu", "Master Formula VOC and &HAP"), "ResetMixColor_VOC_HAP",
     nullptr, nullptr, true},
    {"cmdExportFormulas", QT_TRANSLATE_NOOP("DBToolsMenu", "Export Formu&las"), "DBExport_Formulas", nullptr,
     QT_TRANSLATE_NOOP("DBToolsMenu", "Files"), false, true},
    {"cmdImportFormulas", QT_TRANSLATE_NOOP("DBToolsMenu", "&Import Formulas"), "DBImport_Formulas"},
    {"cmdExportBatches", QT_TRANSLATE_NOOP("DBToolsMenu", "&Export Batch Records"), "ExportBatchesForm"},
    {"cmdExportJobs", QT_TRANSLATE_NOOP("DBToolsMenu", "Export &Job Records"), "ExportJobRecords"},
    {"cmdDesignFiles", QT_TRANSLATE_NOOP("DBToolsMenu", "De&signs - Export and Import"), "DB_ImportExport_Designs"},
}};

// It may be merged into the set that bears the name.
Result<Arguments> RenameSet(NewNameDialog& dialog, const std::string& oldName, const std::string& typed) {
  const auto wait = dialog.Wait(WaitKind::WaitingForm_NoCancel, NewNameDialog::tr("Renaming Add Set / Updating formulas"));
  const Result<bool> renamed = RenameAdditiveSet(dialog.session, oldName, typed);
  if (!renamed) return std::unexpected(renamed.error());
  return *renamed ? Arguments{{"NewName", ReadSetName(typed)}} : Arguments();
}

}  // namespace

void RegisterToolsWindows(WindowList& windows) {
  RegisterMenu(windows, {"DBToolsMenu", QT_TRANSLATE_NOOP("DBToolsMenu", "DB Tools"), 264, kMenu});
  windows.RegisterAll<UndoForm, DBAdditiveControl, DBFormulaModifierForm, DBRenameColors, DBDelColors,
                      ResetBasicCostForm, ResetMixCostForm>();
  windows.RegisterDialog("NewAdditiveNameForm", [](WindowList& list, QWidget* owner) -> Dialog* {
    return new NewNameDialog(list, owner,
                             {.window = "NewAdditiveNameForm",
                              .title = NewNameDialog::tr("Rename Additive Set"),
                              .caption = NewNameDialog::tr("Set"),
                              .argument = "SetName",
                              .rule = TextRule::UpperName(kSetNameLength),
                              .rename = RenameSet});
  });
  for (const auto& [name, kind] :
       {std::pair{"ResetBasic_VOC_HAP_Form", ColorKind::Basic}, {"ResetMixColor_VOC_HAP", ColorKind::Mix}})
    windows.RegisterDialog(name, [kind](WindowList& list, QWidget* owner) -> Dialog* {
      return new ResetEmissionsForm(list, owner, kind);
    });
}

}  // namespace vellumark::desktop
