#pragma once

#include <functional>
#include <string>

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Takes what was entered; the refusal says why it does not.
using KeepText = std::function<Result<void>(const std::string& text)>;

/// The name of a saved report or of a range of dates. Opened with {"Title", text}, {"Name", what is offered} and
/// {"Keep", KeepText}.
class ReportNameForm : public Dialog {
  Q_OBJECT

 public:
  ReportNameForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  TextField* name_;
  KeepText keep_;
};

}  // namespace vellumark::desktop
