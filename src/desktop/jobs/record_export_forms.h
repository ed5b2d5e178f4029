#pragma once

#include "core/exchange/record_export.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Records by number or by date, gathered in a grid and written to a file.
class RecordExportForm : public Window {
  Q_OBJECT

 public:
  RecordExportForm(WindowList& windowList, const QString& name, const QString& title, const QString& number,
                   FileChooser choose);
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdGather_Click();
  void cmdCreateFile_Click();
  void cmdClose_Click() { Leave(); }

 protected:
  virtual Result<RecordGrid> Gather(const RecordRange& range) = 0;
  virtual std::string FileName(const RecordRange& range) const = 0;

 private:
  class Source;
  RecordRange Range() const;
  void ShowGrid(RecordGrid grid);

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

class ExportBatchesForm : public RecordExportForm {
  Q_OBJECT

 public:
  ExportBatchesForm(WindowList& windowList, FileChooser choose);

 protected:
  Result<RecordGrid> Gather(const RecordRange& range) override { return GatherBatchRecords(session, range); }
  std::string FileName(const RecordRange& range) const override { return BatchExportName(range); }
};

class ExportJobRecords : public RecordExportForm {
  Q_OBJECT

 public:
  ExportJobRecords(WindowList& windowList, FileChooser choose);

 protected:
  Result<RecordGrid> Gather(const RecordRange& range) override { return GatherJobRecords(session, range); }
  std::string FileName(const RecordRange& range) const override { return JobExportName(range); }
};

}  // namespace vellumark::desktop
