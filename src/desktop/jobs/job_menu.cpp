#include "desktop/jobs/job_menu.h"

#include <array>

#include "core/shell/gating.h"
#include "desktop/jobs/open_forms.h"

namespace vellumark::desktop {
namespace {

constexpr std::array<MenuEntry, 7> kEntries{{
    {"cmdJobs", QT_TRANSLATE_NOOP("JobMenu", "&Job Records"), "JobForm"},
    {"cmdOut", QT_TRANSLATE_NOOP("JobMenu", "&Out on Jobs"), "JobsOutForm"},
    {"cmdDesigns", QT_TRANSLATE_NOOP("JobMenu", "Job &Designs"), "JobDesigns"},
    {"cmdInkEst", QT_TRANSLATE_NOOP("JobMenu", "&Ink Estimator"), "InkEstForm"},
    {"cmdExportJobs", QT_TRANSLATE_NOOP("JobMenu", "&Export Job Records"), "ExportJobRecords", nullptr,
     QT_TRANSLATE_NOOP("JobMenu", "Files")},
    {"cmdExportBatches", QT_TRANSLATE_NOOP("JobMenu", "Export &Batch Records"), "ExportBatchesForm"},
    {"cmdDesignFiles", QT_TRANSLATE_NOOP("JobMenu", "De&signs - Export and Import"), "DB_ImportExport_Designs"},
}};

}  // namespace

JobMenu::JobMenu(WindowList& windowList)
    : ToolbarMenu(windowList, "JobMenu", QT_TRANSLATE_NOOP("JobMenu", "Jobs"), 240, kEntries) {}

bool JobMenu::MayOpen(std::string_view window) {
  const std::string_view way = window == "InkEstForm" ? "InkEst" : window == "JobForm" ? window : "";
  return Accepted(CheckInterlocks(OpenFormsOf(windows), way));
}

}  // namespace vellumark::desktop
