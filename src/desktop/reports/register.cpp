#include "desktop/reports/register.h"

#include <array>

#include "core/cloud/cloud_reports.h"
#include "core/reports/find.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/toolbar_menu.h"
#include "desktop/reports/browse_form.h"
#include "desktop/reports/find_form.h"
#include "desktop/reports/print_box_form.h"
#include "desktop/reports/quick_find_form.h"
#include "desktop/reports/report_export_form.h"
#include "desktop/reports/report_form.h"
#include "desktop/reports/report_name_form.h"
#include "desktop/reports/report_notes_form.h"
#include "desktop/reports/reports_form.h"
#include "desktop/reports/row_actions.h"
#include "desktop/reports/view_record_form.h"

namespace vellumark::desktop {
namespace {

constexpr std::array<MenuEntry, 9> kMenu{{
    {"cmdFindBasic", QT_TRANSLATE_NOOP("FindMenu", "Basic / &Additive"), "FindBasic"},
    {"cmdFindMix", QT_TRANSLATE_NOOP("FindMenu", "&Master Formula"), "FindMix"},
    {"cmdFindBatch", QT_TRANSLATE_NOOP("FindMenu", "&Batch"), "FindBatch"},
    {"cmdFindJob", QT_TRANSLATE_NOOP("FindMenu", "&Job"), "FindJob"},
    {"cmdFindDesign", QT_TRANSLATE_NOOP("FindMenu", "&Design"), "FindDesign"},
    {"cmdAllBasics", QT_TRANSLATE_NOOP("FindMenu", "All Ba&sics / Additives"), "BasicsListForm", nullptr,
     QT_TRANSLATE_NOOP("FindMenu", "Lists")},
    {"cmdAllFormulas", QT_TRANSLATE_NOOP("FindMenu", "All Master &Formulas"), "FormulasListForm"},
    {"cmdAllBatches", QT_TRANSLATE_NOOP("FindMenu", "All Ba&tches"), "BatchesListForm"},
    {"cmdAllJobs", QT_TRANSLATE_NOOP("FindMenu", "All J&obs"), "JobsListForm"},
}};

}  // namespace

void RegisterReportsWindows(WindowList& windows, const PrintDevices& devices) {
  RegisterMenu(windows, {"FindMenu", QT_TRANSLATE_NOOP("FindMenu", "Find"), 200, kMenu});
  SetRowActions(windows, [&windows](QMenu& menu, const RowTarget& target, const std::function<bool()>& leave) {
    AddActionsOf(menu, windows, target, leave);
  });
  windows.RegisterDialog("PrintBoxForm", [devices](WindowList& list, QWidget* owner) -> Dialog* {
    return new PrintBoxForm(list, owner, devices);
  });
  windows.RegisterDialog("ReportExportForm",
                         [choose = devices.chooseFile](WindowList& list, QWidget* owner) -> Dialog* {
                           return new ReportExportForm(list, owner, choose);
                         });
  windows.RegisterDialog<ViewRecordForm>("ViewRecordForm");
  windows.RegisterDialog<ReportNameForm>("ReportNameForm");
  windows.RegisterDialog<ReportNotesForm>("ReportNotesForm");
  windows.Register<ReportsForm>("ReportsForm");
  for (const ReportDefinition* report : AllReports())
    windows.Register(report->window, [report, choose = devices.chooseFile](WindowList& list) -> Window* {
      return new ReportForm(list, *report, choose);
    });
  windows.RegisterDialog(
      "QuickFindForm",
      [index = std::make_shared<QuickIndex>(windows.session)](WindowList& list, QWidget* owner) -> Dialog* {
        return new QuickFindForm(list, owner, index);
      });
  using Browsed = std::pair<const char*, BrowseSubject>;
  for (const auto& [name, subject] :
       {Browsed{"BasicsListForm", BrowseSubject::Basics}, Browsed{"FormulasListForm", BrowseSubject::Formulas},
        Browsed{"BatchesListForm", BrowseSubject::Batches}, Browsed{"JobsListForm", BrowseSubject::Jobs}})
    windows.Register(name,
                     [name, subject](WindowList& list) -> Window* { return new BrowseForm(list, name, subject); });
  using Pair = std::pair<const char*, FindSubject>;
  for (const auto& [name, subject] :
       {Pair{"FindBasic", FindSubject::Basic}, Pair{"FindMix", FindSubject::Mix}, Pair{"FindBatch", FindSubject::Batch},
        Pair{"FindJob", FindSubject::Job}, Pair{"FindDesign", FindSubject::Design}})
    windows.Register(name, [name, subject](WindowList& list) -> Window* { return new FindForm(list, name, subject); });
}

}  // namespace vellumark::desktop
