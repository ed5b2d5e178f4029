#include "desktop/batch/batch_form_lot_num_reminder.h"
#include "desktop/batch/batch_settings_form.h"
#include "desktop/batch/cost_inf_form.h"
#include "desktop/batch/cost_model_form.h"
#include "desktop/batch/more_data_form.h"
#include "desktop/batch/recent_batches_form.h"
#include "desktop/batch/register.h"
#include "desktop/batch/save_modified_batch.h"
#include "desktop/batch/view_batch_form.h"
#include "desktop/batch/voc_hap_calc_form.h"

namespace vellumark::desktop {

void RegisterBatchSideWindows(WindowList& windows) {
  windows.RegisterDialog<CostInfForm>("CostInfForm");
  windows.RegisterDialog<CostModelForm>("CostModelForm");
  windows.RegisterDialog<VOC_HAP_CalcForm>("VOC_HAP_CalcForm");
  windows.RegisterDialog<MoreDataForm>("MoreDataForm");
  windows.RegisterDialog<SaveModifiedBatch>("SaveModifiedBatch");
  windows.RegisterDialog<BatchFormLotNumReminder>("BatchFormLotNumReminder");
  windows.RegisterDialog<BatchSettingsForm>("BatchSettingsForm");
  windows.RegisterDialog<RecentBatchesForm>("RecentBatchesForm");
  windows.Register<ViewBatchForm>("ViewBatchForm");
}

}  // namespace vellumark::desktop
