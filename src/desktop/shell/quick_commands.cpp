#include "desktop/shell/quick_commands.h"

#include <QtGlobal>

namespace vellumark::desktop {

const std::vector<QuickCommand>& QuickCommands() {
#define T(text) QT_TRANSLATE_NOOP("QuickCommands", text)
  static const std::vector<QuickCommand> commands{
      {T("Make a Batch"), T("Batch Window"), "BatchForm", "Batch"},
      {T("Batch settings"), T("Recycle, Mix and what is asked"), "BatchSettingsForm", nullptr, true},
      {T("Basics / Additives"), T("Colors"), "BasicColorsForm"},
      {T("Master Formulas"), T("Colors"), "MixColorsForm"},
      {T("Additive Sets"), T("DB Tools"), "DBAdditiveControl", "DBTools"},
      {T("Formula Modifier"), T("DB Tools"), "DBFormulaModifierForm", "DBTools"},
      {T("Rename Colors"), T("DB Tools"), "DBRenameColors", "DBTools"},
      {T("Delete Master Formulas"), T("DB Tools"), "DBDelColors", "DBTools"},
      {T("Import Formulas"), T("DB Tools"), "DBImport_Formulas", "DBTools"},
      {T("Export Formulas"), T("DB Tools"), "DBExport_Formulas", "DBTools"},
      {T("Export Batch Records"), T("DB Tools"), "ExportBatchesForm", "DBTools"},
      {T("Export Job Records"), T("DB Tools"), "ExportJobRecords", "DBTools"},
      {T("Designs - Export and Import"), T("DB Tools"), "DB_ImportExport_Designs", "DBTools"},
      {T("Take back what was done"), T("Undo"), "UndoForm"},
      {T("Adjust Inventory"), T("Stock, lots, scanning"), "AdjustInventoryForm", "Inventory"},
      {T("Reorder point"), T("Inventory"), "AdjustReorderForm", "Inventory"},
      {T("Stock History"), T("Who moved what, and when"), "StockHistoryForm"},
      {T("Job Records"), T("Jobs"), "JobForm", "JobForm"},
      {T("Out on Jobs"), T("Containers that are still out"), "JobsOutForm"},
      {T("Job Designs"), T("Jobs"), "JobDesigns"},
      {T("Ink Estimator"), T("Sheetfed and flexo"), "InkEstForm", "InkEst"},
      {T("Labels"), T("Container labels"), "LabelForm"},
      {T("Hazard labels"), T("Labels"), "GH_LabelForm"},
      {T("Formula labels"), T("Labels"), "Formula_LabelForm"},
      {T("Reports"), T("All reports"), "ReportsForm"},
      {T("Find Basic / Additive"), T("By any field"), "FindBasic"},
      {T("Find Master Formula"), T("By any field"), "FindMix"},
      {T("Find Batch"), T("By any field"), "FindBatch"},
      {T("Find Job"), T("By any field"), "FindJob"},
      {T("Find Design"), T("By any field"), "FindDesign"},
      {T("All Basics / Additives"), T("List"), "BasicsListForm"},
      {T("All Master Formulas"), T("List"), "FormulasListForm"},
      {T("All Batches"), T("List"), "BatchesListForm"},
      {T("All Jobs"), T("List"), "JobsListForm"},
      {T("Barcode Scanning"), T("Help"), "ScanningHelpForm", nullptr, true},
  };
#undef T
  return commands;
}

}  // namespace vellumark::desktop
