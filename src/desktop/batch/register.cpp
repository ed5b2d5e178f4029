#include "desktop/batch/register.h"

#include "desktop/batch/add_addition_form.h"
#include "desktop/batch/adjust_mix_form.h"
#include "desktop/batch/adjust_row_forms.h"
#include "desktop/batch/batch_form.h"
#include "desktop/batch/batch_scale_weigh_form.h"
#include "desktop/batch/dispenser_selector.h"
#include "desktop/batch/job_items_form.h"

namespace vellumark::desktop {

void RegisterBatchWindows(WindowList& windows) {
  windows.RegisterAll<BatchForm, AdjustMixForm, AddAdditionForm, JobItemsForm, DispenserSelector>();
  for (const auto& [name, kind] :
       {std::pair{"AdjustBasicForm", AdjustedRow::Basic}, {"AdjustAdditionForm", AdjustedRow::Addition}})
    windows.RegisterDialog(name, [kind](WindowList& list, QWidget* owner) -> Dialog* {
      return new AdjustRowForm(list, owner, kind);
    });
  RegisterBatchSideWindows(windows);
}

void RegisterWeighing(WindowList& windows, BenchScale& scale) {
  windows.Register("BatchScaleWeighForm",
                   [&scale](WindowList& list) -> Window* { return new BatchScaleWeighForm(list, scale); });
}

}  // namespace vellumark::desktop
