#include "desktop/jobs/register.h"

#include "desktop/jobs/add_job_item_form.h"
#include "desktop/jobs/design_bench_form.h"
#include "desktop/jobs/design_dialogs.h"
#include "desktop/jobs/design_exchange_form.h"
#include "desktop/jobs/ink_est_form.h"
#include "desktop/jobs/job_change_forms.h"
#include "desktop/jobs/job_designs.h"
#include "desktop/jobs/job_dialogs.h"
#include "desktop/jobs/job_form.h"
#include "desktop/jobs/job_menu.h"
#include "desktop/jobs/job_options.h"
#include "desktop/jobs/jobs_out_form.h"
#include "desktop/jobs/record_export_forms.h"

namespace vellumark::desktop {
namespace {

template <class W>
void RegisterChoosing(WindowList& windows, const std::string& name, const FileChooser& choose) {
  windows.Register(name, [choose](WindowList& list) -> Window* { return new W(list, choose); });
}

}  // namespace

void RegisterJobsWindows(WindowList& windows, const FileChooser& choose) {
  windows.RegisterAll<JobMenu, JobForm, JobsOutForm, AddJobItemForm, NewJobNumberForm, JobAddItem_Help, JobBookingsForm,
                      Job_Options, UpdateJobDesignID, UpdateJobUDText, JobsNewReturnDate, JobClosingDate>();
  for (const JobField field : {JobField::UnitCost, JobField::VOC, JobField::HAP})
    windows.RegisterDialog(JobFigureForm::NameOf(field).toStdString(), [field](WindowList& list, QWidget* owner) -> Dialog* {
      return new JobFigureForm(list, owner, field);
    });
  RegisterChoosing<JobDesigns>(windows, "JobDesigns", choose);
  RegisterChoosing<DB_ImportExport_Designs>(windows, "DB_ImportExport_Designs", choose);
  RegisterChoosing<ExportBatchesForm>(windows, "ExportBatchesForm", choose);
  RegisterChoosing<ExportJobRecords>(windows, "ExportJobRecords", choose);
  windows.Register<DesignBenchForm>("DesignBenchForm");
  windows.Register<InkEstForm>("InkEstForm");
  windows.RegisterDialog<InkEstMileageForm>("InkEstMileageForm");
  windows.RegisterDialog<InkEstAniloxValueForm>("InkEstAniloxValueForm");
  windows.RegisterDialog<JobDesign_Rename>("JobDesign_Rename");
  windows.RegisterDialog<JobDesign_PhotoRename>("JobDesign_PhotoRename");
  windows.RegisterDialog<JobDesigns_Hints>("JobDesigns_Hints");
  windows.RegisterDialog<ImportExamineLocalFileDesign>("ImportExamineLocalFileDesign");
  windows.RegisterDialog("ImportExamineCloudDesign", [](WindowList& list, QWidget* owner) -> Dialog* {
    return new ImportExamineLocalFileDesign(list, owner, true);
  });
}

}  // namespace vellumark::desktop
