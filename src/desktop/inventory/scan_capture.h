#pragma once

#include <QObject>
#include <functional>
#include <memory>

#include "core/labels/scan_plan.h"
#include "desktop/inventory/scan_data_field.h"
#include "desktop/inventory/scan_flash.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The first step of a scan: what the scanner types, and beside it what each record will do, before anything is booked.
class ScanCapture : public QObject {
  Q_OBJECT

 public:
  ScanCapture(FormHost& host, Form form);
  ~ScanCapture() override;

  bool IsEmpty() const;
  void Focus();
  void Clear();
  void FileChanged();

 Q_SIGNALS:
  void Process(const std::vector<ScanRecord>& records);
  void Changed();

 public:
  void cmd_ScanSave();

 private:
  class Source;
  void BuildLists(Form& form, QWidget& box);
  void Cancel();
  void Read();
  void Flash(int ended);
  void ShowTotals();
  void WarnOfCapsLock();

  FormHost& host_;
  ScanPreview preview_;
  std::shared_ptr<Source> source_;
  std::shared_ptr<TableSource> totals_;
  ScanDataField* data_;
  ScanFlash* flash_;
  Grid* list_;
  Grid* jobs_;
  QTimer caps_;
  int ended_ = 0;
};

}  // namespace vellumark::desktop
