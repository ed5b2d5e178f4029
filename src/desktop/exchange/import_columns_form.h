#pragma once

#include <filesystem>
#include <memory>

#include "core/exchange/formula_columns.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// What the columns of a shop's own formula file mean; opened with {"File", path}. What is told is remembered for every
/// file with such captions. Gives {"Told", true} back when it was saved.
class ImportColumnsForm : public Dialog {
  Q_OBJECT

 public:
  ImportColumnsForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  void ShowColumns();
  void ShowField();
  void SetField(int index);

  std::vector<std::string> fields_;
  GridHead head_;
  std::shared_ptr<TableSource> rows_;
  Grid* columns_ = nullptr;
  ComboField* field_ = nullptr;
  CommandButton* save_ = nullptr;
};

}  // namespace vellumark::desktop
