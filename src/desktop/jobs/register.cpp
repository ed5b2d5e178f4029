#include "desktop/jobs/register.h"

#include <array>

#include "core/shell/gating.h"
#include "desktop/jobs/add_job_item_form.h"
#include "desktop/jobs/design_bench_form.h"
#include "desktop/jobs/design_dialogs.h"
#include "desktop/jobs/design_exchange_form.h"
#include "desktop/jobs/ink_est_form.h"
#include "desktop/jobs/job_change_forms.h"
#include "desktop/jobs/job_designs.h"
#include "desktop/jobs/job_dialogs.h"
#include "desktop/jobs/job_form.h"
#include "desktop/jobs/job_options.h"
#include "desktop/jobs/jobs_out_form.h"
#include "desktop/jobs/open_forms.h"
#include "desktop/jobs/record_export_forms.h"
#include "desktop/kit/toolbar_menu.h"

namespace vellumark::desktop {
namespace {

constexpr std::array<MenuEntry, 7> kMenu{{
    {"cmdJobs", QT_TRANSLATE_NOOP("JobMenu", "&Job Records"), "JobForm"},
    {"cmdOut", QT_TRANSLATE_NOOP("JobMenu", "&Out on Jobs"), "JobsOutForm"},
    {"cmdDesigns", QT_TRANSLATE_NOOP("JobMenu", "Job &Designs"), "JobDesigns"},
    {"cmdInkEst", QT_TRANSLATE_NOOP("JobMenu", "&Ink Estimator"), "InkEstForm"},
    {"cmdExportJobs", QT_TRANSLATE_NOOP("JobMenu", "&Export Job Records"), "ExportJobRecords", nullptr,
     QT_TRANSLATE_NOOP("JobMenu", "Files")},
    {"cmdExportBatches", QT_TRANSLATE_NOOP("JobMenu", "Export &Batch Records"), "ExportBatchesForm"},
    {"cmdDesignFiles", QT_TRANSLATE_NOOP("JobMenu", "De&signs - Export and Import"), "DB_ImportExport_Designs"},
}};

bool MayOpen(Window& menu, std::string_view window) {
  const std::string_view way = window == "InkEstForm" ? "InkEst" : window == "JobForm" ? window : "";
  return menu.Accepted(CheckInterlocks(OpenFormsOf(menu.windows), way));
}

template <class W>
void RegisterChoosing(WindowList& windows, const std::string& name, const FileChooser& choose) {
  windows.Register(name, [choose](WindowList& list) -> Window* { return new W(list, choose); });
}

}  // namespace

void RegisterJobsWindows(WindowList& windows, const FileChooser& choose) {
  RegisterMenu(windows, {"JobMenu", QT_TRANSLATE_NOOP("JobMenu", "Jobs"), 240, kMenu, MayOpen});
  windows.RegisterAll<JobForm, JobsOutForm, AddJobItemForm, NewJobNumberForm, JobAddItem_Help, JobBookingsForm,
                      Job_Options, UpdateJobDesignID, UpdateJobUDText, JobsNewReturnDate, JobClosingDate>();
  for (const JobField field : {JobField::UnitCost, JobField::VOC, JobField::HAP})
    windows.RegisterDialog(JobFigureForm::NameOf(field).toStdString(), [field](WindowList& list, QWidget* owner) -> Dialog* {
      return new JobFigureForm(list, owner, field);
    });
  RegisterChoosing<JobDesigns>(windows, "JobDesigns", choose);
  RegisterChoosing<DB_ImportExport_Designs>(windows, "DB_ImportExport_Designs", choose);
  for (const auto& [name, records] :
       {std::pair{"ExportBatchesForm", ExportedRecords::Batches}, {"ExportJobRecords", ExportedRecords::Jobs}})
    windows.Register(name, [records, choose](WindowList& list) -> Window* {
      return new RecordExportForm(list, records, choose);
    });
  windows.Register<DesignBenchForm>("DesignBenchForm");
  windows.Register<InkEstForm>("InkEstForm");
  windows.RegisterDialog<InkEstMileageForm>("InkEstMileageForm");
  windows.RegisterDialog<InkEstAniloxValueForm>("InkEstAniloxValueForm");
  RegisterDesignNames(windows);
  windows.RegisterDialog<JobDesigns_Hints>("JobDesigns_Hints");
  windows.RegisterDialog<ImportExamineLocalFileDesign>("ImportExamineLocalFileDesign");
  windows.RegisterDialog("ImportExamineCloudDesign", [](WindowList& list, QWidget* owner) -> Dialog* {
    return new ImportExamineLocalFileDesign(list, owner, true);
  });
}

}  // namespace vellumark::desktop
