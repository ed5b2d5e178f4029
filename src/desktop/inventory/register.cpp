#include "desktop/inventory/register.h"

#include "desktop/inventory/adjust_inventory_form.h"
#include "desktop/inventory/adjust_reorder_form.h"
#include "desktop/inventory/batch_lot_inv_selector.h"
#include "desktop/inventory/calendar_form.h"
#include "desktop/inventory/inv_lot_instructions.h"
#include "desktop/inventory/reset_values_form.h"
#include "desktop/inventory/scanning_help_form.h"
#include "desktop/inventory/stock_history_form.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

void RegisterInventoryWindows(WindowList& windows) {
  windows.RegisterAll<AdjustInventoryForm, AdjustReorderForm, StockHistoryForm, BatchLotInvSelector, CalendarForm,
                      InvLotInstructions, ScanningHelpForm>();
  for (const auto& [name, figure] : {std::pair{"ResetInvForm", ResetFigure::Inventory}, {"ResetReorderForm", ResetFigure::Reorder}})
    windows.RegisterDialog(name, [figure](WindowList& list, QWidget* owner) -> Dialog* {
      return new ResetValuesForm(list, owner, figure);
    });
}

}  // namespace vellumark::desktop
