#pragma once

#include <filesystem>
#include <memory>

#include "core/exchange/formula_export.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class CheckedList;

/// Formulas of one Database out to a file: which, in which format, where to.
class DBExport_Formulas : public Window {
  Q_OBJECT

 public:
  DBExport_Formulas(WindowList& windowList, FileChooser choose);
  ~DBExport_Formulas() override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdSelectAll_Click();
  void cmdDeselectAll_Click();
  void cmdFormatInfo_Click();
  void cmdBrowse_Click();
  void cmdSave_Click() override;

 private:
  class Names;

  void BuildSelection(Form form);
  void BuildFormat(Form form);
  void BuildFile(Form form);
  /// The formulas of the Database and of the days; those that were chosen stay so.
  void ListFormulas();
  FormulaSelection Range() const;
  FormulaFormat Format() const;
  void ShowFormat();

  FileChooser choose_;
  std::shared_ptr<Names> names_;
  std::filesystem::path file_;
  QTabWidget* steps_ = nullptr;
  ComboField* database_ = nullptr;
  RadioField* by_ = nullptr;
  DateField* from_ = nullptr;
  DateField* to_ = nullptr;
  CheckedList* list_ = nullptr;
  QLabel* selected_ = nullptr;
  RadioField* format_ = nullptr;
  QLabel* lost_ = nullptr;
  QLabel* fileName_ = nullptr;
  CommandButton* save_ = nullptr;
};

}  // namespace vellumark::desktop
