#pragma once

#include <memory>

#include "core/exchange/format_examples.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// What stands where in each format of formula files, on a file of the sample ink room.
class ExportImportFileExamples : public Window {
  Q_OBJECT

 public:
  ExportImportFileExamples(WindowList& windowList, FileChooser choose);
  void OnOpen(const Arguments& arguments) override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdSaveExample_Click();

 private:
  void ShowExample();

  FileChooser choose_;
  FormatExample example_;
  ComboField* format_ = nullptr;
  QLabel* words_ = nullptr;
  std::shared_ptr<TableSource> cells_;
  Grid* grid_ = nullptr;
};

}  // namespace vellumark::desktop
