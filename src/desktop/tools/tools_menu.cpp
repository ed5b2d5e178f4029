#include "desktop/tools/tools_menu.h"

#include <array>

namespace vellumark::desktop {
namespace {

constexpr std::array<MenuEntry, 13> kEntries{{
    {"cmdAdditiveControl", QT_TRANSLATE_NOOP("DBToolsMenu", "&Additive Sets"), "DBAdditiveControl", nullptr,
     QT_TRANSLATE_NOOP("DBToolsMenu", "Many colors at once")},
    {"cmdFormulaModifier", QT_TRANSLATE_NOOP("DBToolsMenu", "&Formula Modifier"), "DBFormulaModifierForm"},
    {"cmdRenameColors", QT_TRANSLATE_NOOP("DBToolsMenu", "&Rename Colors"), "DBRenameColors"},
    {"cmdDelColors", QT_TRANSLATE_NOOP("DBToolsMenu", "&Delete Master Formulas"), "DBDelColors"},
    {"cmdResetBasicCost", QT_TRANSLATE_NOOP("DBToolsMenu", "&Basic Color costs"), "ResetBasicCostForm", nullptr,
     QT_TRANSLATE_NOOP("DBToolsMenu", "One figure of every color"), true},
    {"cmdResetMixCost", QT_TRANSLATE_NOOP("DBToolsMenu", "&Master Formula costs"), "ResetMixCostForm", nullptr, nullptr,
     true},
    {"cmdResetBasicVOCHAP", QT_TRANSLATE_NOOP("DBToolsMenu", "Basic Color &VOC and HAP"), "ResetBasic_VOC_HAP_Form",
     nullptr, nullptr, true},
    {"cmdResetMixVOCHAP", QT_TRANSLATE_NOOP("DBToolsMenu", "Master Formula VOC and &HAP"), "ResetMixColor_VOC_HAP",
     nullptr, nullptr, true},
    {"cmdExportFormulas", QT_TRANSLATE_NOOP("DBToolsMenu", "Export Formu&las"), "DBExport_Formulas", nullptr,
     QT_TRANSLATE_NOOP("DBToolsMenu", "Files"), false, true},
    {"cmdImportFormulas", QT_TRANSLATE_NOOP("DBToolsMenu", "&Import Formulas"), "DBImport_Formulas"},
    {"cmdExportBatches", QT_TRANSLATE_NOOP("DBToolsMenu", "&Export Batch Records"), "ExportBatchesForm"},
    {"cmdExportJobs", QT_TRANSLATE_NOOP("DBToolsMenu", "Export &Job Records"), "ExportJobRecords"},
    {"cmdDesignFiles", QT_TRANSLATE_NOOP("DBToolsMenu", "De&signs - Export and Import"), "DB_ImportExport_Designs"},
}};

}  // namespace

DBToolsMenu::DBToolsMenu(WindowList& windowList)
    : ToolbarMenu(windowList, "DBToolsMenu", QT_TRANSLATE_NOOP("DBToolsMenu", "DB Tools"), 264, kEntries) {}

}  // namespace vellumark::desktop
