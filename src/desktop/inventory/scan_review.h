#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "core/labels/scan_step.h"
#include "desktop/kit/form.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/job_box.h"

namespace vellumark::desktop {

class SwatchView;

/// The second step of a scan: what became of each record, and its fields to mend and process it again.
class ScanReview : public QObject {
  Q_OBJECT

 public:
  ScanReview(FormHost& host, Form form);
  ~ScanReview() override;

  void Show(std::vector<ScanRecord> records);
  bool HasUnbooked() const;
  void UpdateEnabled();

 Q_SIGNALS:
  void Done();
  void Changed();

 public:
  void cmdReProcess();

 private:
  class Source;
  void BuildFields(Form form);
  void BuildResult(Form form);
  QWidget* BuildButtons(Form& form);
  ScanRecord& Current() { return records_.at(at_); }
  void Go(std::size_t to);
  void ShowRecord();
  void ShowResult();
  void ShowChoices();
  void ChoiceMade(int index);
  /// The fields as a record. What was picked stays as long as its fields do.
  void TakeFields(ScanRecord& record) const;
  void TakeIfOpen();
  void TakeBack();
  void Finish();

  FormHost& host_;
  std::vector<ScanRecord> records_;
  std::size_t at_ = 0;
  std::vector<ScanChoice> choices_;
  bool loading_ = false;
  std::shared_ptr<Source> source_;
  JobBox* job_;
  NameBox* name_;
  SwatchView* ink_;
  TextField* code_;
  RadioField* type_;
  ComboField* database_;
  TextField* lot_;
  ComboField* choice_;
  TextField* location_;
  TextField* container_;
  NumberField* quantity_;
  IconView* mark_;
  QLabel* result_;
  NoteField* messages_;
  Grid* list_;
  CommandButton* previous_;
  CommandButton* next_;
  CommandButton* takeBack_;
  CommandButton* again_;
  CommandButton* done_;
  QLabel* place_;
};

}  // namespace vellumark::desktop
