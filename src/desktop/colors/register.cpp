#include "desktop/colors/register.h"

#include "desktop/colors/adjust_formula_form.h"
#include "desktop/colors/basic_color_used_in_mix_form.h"
#include "desktop/colors/basic_colors_form.h"
#include "desktop/colors/colors_menu.h"
#include "desktop/colors/compare_formulas_form.h"
#include "desktop/colors/duplicate_formula_form.h"
#include "desktop/colors/mix_colors_form.h"
#include "desktop/colors/new_basic_name_form.h"
#include "desktop/colors/new_mix_name_form.h"
#include "desktop/colors/where_used_form.h"

namespace vellumark::desktop {

void RegisterColorsWindows(WindowList& windows) {
  windows.RegisterAll<ColorsMenu, BasicColorsForm, MixColorsForm, NewBasicNameForm, NewMixNameForm,
                      BasicColorUsedInMixForm, DuplicateFormulaForm, AdjustFormulaForm, CompareFormulasForm,
                      WhereUsedForm>();
}

}  // namespace vellumark::desktop
