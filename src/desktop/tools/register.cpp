#include "desktop/tools/register.h"

#include "desktop/tools/additive_control.h"
#include "desktop/tools/del_colors.h"
#include "desktop/tools/formula_modifier_form.h"
#include "desktop/tools/new_additive_name_form.h"
#include "desktop/tools/rename_colors.h"
#include "desktop/tools/reset_forms.h"
#include "desktop/tools/tools_menu.h"

namespace vellumark::desktop {

void RegisterToolsWindows(WindowList& windows) {
  windows.Register<DBToolsMenu>("DBToolsMenu");
  windows.Register<DBAdditiveControl>("DBAdditiveControl");
  windows.Register<DBFormulaModifierForm>("DBFormulaModifierForm");
  windows.Register<DBRenameColors>("DBRenameColors");
  windows.Register<DBDelColors>("DBDelColors");
  windows.RegisterDialog<NewAdditiveNameForm>("NewAdditiveNameForm");
  windows.RegisterDialog<ResetBasicCostForm>("ResetBasicCostForm");
  windows.RegisterDialog<ResetMixCostForm>("ResetMixCostForm");
  windows.RegisterDialog<ResetBasic_VOC_HAP_Form>("ResetBasic_VOC_HAP_Form");
  windows.RegisterDialog<ResetMixColor_VOC_HAP>("ResetMixColor_VOC_HAP");
}

}  // namespace vellumark::desktop
