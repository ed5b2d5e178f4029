#pragma once

#include "core/exchange/record_export.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

enum class ExportedRecords { Batches, Jobs };

/// Records by number or by date, gathered in a grid and written to a file.
class RecordExportForm : public Window {
  Q_OBJECT

 public:
  RecordExportForm(WindowList& windowList, ExportedRecords records, FileChooser choose);
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdGather_Click();
  void cmdCreateFile_Click();

 private:
  class Source;
  RecordRange Range() const;
  void ShowGrid(RecordGrid grid);

  ExportedRecords records_;
  FileChooser choose_;
  RadioField* way_;
  TextField* first_;
  TextField* last_;
  DateField* from_;
  DateField* to_;
  std::shared_ptr<Source> rows_;
  Grid* list_;
  QLabel* count_;
  RecordRange gathered_;
  CommandButton* create_ = nullptr;
};

}  // namespace vellumark::desktop
