#include "desktop/batch/register.h"

#include "desktop/batch/add_addition_form.h"
#include "desktop/batch/adjust_mix_form.h"
#include "desktop/batch/adjust_row_forms.h"
#include "desktop/batch/batch_form.h"
#include "desktop/batch/job_items_form.h"

namespace vellumark::desktop {

void RegisterBatchWindows(WindowList& windows) {
  windows.RegisterAll<BatchForm, AdjustMixForm, AdjustBasicForm, AddAdditionForm, AdjustAdditionForm, JobItemsForm>();
  RegisterBatchSideWindows(windows);
}

}  // namespace vellumark::desktop
