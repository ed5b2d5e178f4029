#include "desktop/colors/register.h"

#include <array>

#include "core/colors/rename.h"
#include "desktop/colors/adjust_formula_form.h"
#include "desktop/colors/basic_color_used_in_mix_form.h"
#include "desktop/colors/basic_colors_form.h"
#include "desktop/colors/compare_formulas_form.h"
#include "desktop/colors/duplicate_formula_form.h"
#include "desktop/colors/mix_colors_form.h"
#include "desktop/colors/where_used_form.h"
#include "desktop/kit/new_name_dialog.h"
#include "desktop/kit/toolbar_menu.h"

namespace vellumark::desktop {
namespace {

constexpr std::array<MenuEntry, 2> kMenu{{
    {"cmdBasics", QT_TRANSLATE_NOOP("ColorsMenu", "&Basics / Additives"), "BasicColorsForm", "basic"},
    {"cmdMix", QT_TRANSLATE_NOOP("ColorsMenu", "&Master Formulas"), "MixColorsForm", "Color"},
}};

// Opened with {"Color_Name", name}; gives {"NewName", name} and {"Merged", true or false} back.
void RegisterRename(WindowList& windows, const char* name, const char* title,
                    Result<Renamed> (*rename)(Session&, std::string_view, std::string_view)) {
  windows.RegisterDialog(name, [=](WindowList& list, QWidget* owner) -> Dialog* {
    return new NewNameDialog(list, owner,
                             {.window = name,
                              .title = NewNameDialog::tr(title),
                              .caption = NewNameDialog::tr("Name"),
                              .argument = "Color_Name",
                              .rule = TextRule::UpperName(list.session.NameLength),
                              .rename = [rename](NewNameDialog& dialog, const std::string& oldName,
                                                 const std::string& typed) -> Result<Arguments> {
                                const auto renamed = rename(dialog.session, oldName, typed);
                                if (!renamed) return std::unexpected(renamed.error());
                                if (!renamed->done) return Arguments();
                                return Arguments{{"NewName", renamed->name}, {"Merged", renamed->merged}};
                              }});
  });
}

}  // namespace

void RegisterColorsWindows(WindowList& windows) {
  RegisterMenu(windows, {"ColorsMenu", QT_TRANSLATE_NOOP("ColorsMenu", "Colors"), 220, kMenu});
  windows.RegisterAll<BasicColorsForm, MixColorsForm, BasicColorUsedInMixForm, DuplicateFormulaForm, AdjustFormulaForm,
                      CompareFormulasForm, WhereUsedForm>();
  // A Basic Color may be merged into the one that bears the name, a formula never.
  RegisterRename(windows, "NewBasicNameForm", QT_TRANSLATE_NOOP("NewNameDialog", "Rename Basic Color"), RenameBasic);
  RegisterRename(windows, "NewMixNameForm", QT_TRANSLATE_NOOP("NewNameDialog", "Rename Master Formula"), RenameColor);
}

}  // namespace vellumark::desktop
