#include "desktop/reports/find_menu.h"

#include <array>

namespace vellumark::desktop {
namespace {

constexpr std::array<MenuEntry, 9> kEntries{{
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

FindMenu::FindMenu(WindowList& windowList)
    : ToolbarMenu(windowList, "FindMenu", QT_TRANSLATE_NOOP("FindMenu", "Find"), 200, kEntries) {}

}  // namespace vellumark::desktop
