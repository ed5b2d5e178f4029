#include "desktop/exchange/register.h"

#include "desktop/exchange/compare_import_form.h"
#include "desktop/exchange/export_formulas_form.h"
#include "desktop/exchange/file_examples_form.h"
#include "desktop/exchange/import_columns_form.h"
#include "desktop/exchange/import_formulas_form.h"

namespace vellumark::desktop {

void RegisterExchangeWindows(WindowList& windows, const FileChooser& choose) {
  windows.Register("DBExport_Formulas",
                   [choose](WindowList& list) -> Window* { return new DBExport_Formulas(list, choose); });
  windows.Register("ExportImportFileExamples",
                   [choose](WindowList& list) -> Window* { return new ExportImportFileExamples(list, choose); });
  windows.RegisterDialog<ImportColumnsForm>("ImportColumnsForm");
  windows.Register("DBImport_Formulas",
                   [choose](WindowList& list) -> Window* { return new DBImport_Formulas(list, choose); });
  windows.RegisterDialog<ImportCompareFormulasForm>("ImportCompareFormulasForm");
  windows.RegisterDialog("ImportCompareCloudFormulas", [](WindowList& list, QWidget* owner) -> Dialog* {
    return new ImportCompareFormulasForm(list, owner, "ImportCompareCloudFormulas");
  });
}

}  // namespace vellumark::desktop
