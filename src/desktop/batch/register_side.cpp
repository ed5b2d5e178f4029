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
  windows.RegisterAll<CostInfForm, CostModelForm, VOC_HAP_CalcForm, MoreDataForm, SaveModifiedBatch,
                      BatchFormLotNumReminder, BatchSettingsForm, RecentBatchesForm, ViewBatchForm>();
}

}  // namespace vellumark::desktop
