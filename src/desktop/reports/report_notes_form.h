#pragma once

#include "desktop/kit/window.h"
#include "desktop/reports/report_name_form.h"

namespace vellumark::desktop {

/// The notes of a row, to be changed. Opened with {"Title", of what}, {"Notes", text} and {"Keep", KeepText}.
class ReportNotesForm : public Dialog {
  Q_OBJECT

 public:
  ReportNotesForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  NoteField* notes_;
  KeepText keep_;
};

}  // namespace vellumark::desktop
