#include "desktop/settings/register.h"

#include "desktop/kit/window_list.h"
#include "desktop/settings/about_form.h"
#include "desktop/settings/autofill_form.h"
#include "desktop/settings/default_cost_model_form.h"
#include "desktop/settings/default_printer.h"
#include "desktop/settings/help_form.h"
#include "desktop/settings/new_setup_form.h"
#include "desktop/settings/option_max_name_len.h"
#include "desktop/settings/product_splash_form.h"
#include "desktop/settings/reminders_form.h"
#include "desktop/settings/um_setting_form.h"
#include "desktop/settings/unit_cost_accuracy_form.h"

namespace vellumark::desktop {

void RegisterSettingsWindows(WindowList& windows, const PrinterSource& printers) {
  windows.RegisterDialog("NewSetupForm", [printers](WindowList& list, QWidget* owner) -> Dialog* {
    return new NewSetupForm(list, owner, printers());
  });
  windows.RegisterDialog("Default_Printer", [printers](WindowList& list, QWidget* owner) -> Dialog* {
    return new Default_Printer(list, owner, printers());
  });
  windows.RegisterAll<RemindersForm, UMSettingForm, UnitCostAccuracyForm, DefaultCostModelForm, VOC_HAP_OptMenu,
                      OptionMaxNameLen, AutofillForm, ProductSplashFormPantone, AboutForm, HelpForm>();
}

}  // namespace vellumark::desktop
