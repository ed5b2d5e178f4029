#pragma once

#include "core/jobs/job_items.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class UserFieldsPanel;

/// The options of Jobs: the texts and numbers of the house's own, what a Master Formula costs and emits in a Job, and the
/// columns of the Job Window.
class Job_Options : public Dialog {
  Q_OBJECT

 public:
  Job_Options(WindowList& windowList, QWidget* owner);
  ~Job_Options() override;
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  void BuildCosts(Form form);
  void BuildColumns(Form form);

  std::unique_ptr<UserFieldsPanel> fields_;
  RadioField* cost_ = nullptr;
  RadioField* VOC_ = nullptr;
  RadioField* HAP_ = nullptr;
  CheckListField* columns_ = nullptr;
};

}  // namespace vellumark::desktop
