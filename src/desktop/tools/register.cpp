#include "desktop/tools/register.h"

#include "desktop/tools/additive_control.h"
#include "desktop/tools/del_colors.h"
#include "desktop/tools/formula_modifier_form.h"
#include "desktop/tools/new_additive_name_form.h"
#include "desktop/tools/rename_colors.h"
#include "desktop/tools/reset_forms.h"
#include "desktop/tools/tools_menu.h"
#include "desktop/tools/undo_form.h"

namespace vellumark::desktop {

void RegisterToolsWindows(WindowList& windows) {
  windows.RegisterAll<UndoForm, DBToolsMenu, DBAdditiveControl, DBFormulaModifierForm, DBRenameColors, DBDelColors,
                      NewAdditiveNameForm, ResetBasicCostForm, ResetMixCostForm, ResetBasic_VOC_HAP_Form,
                      ResetMixColor_VOC_HAP>();
}

}  // namespace vellumark::desktop
