#pragma once

#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Color Not Found: tells in which other Databases a colour stands, and changes to one of them.
class OtherDatabasesForm : public Dialog {
  Q_OBJECT

 public:
  OtherDatabasesForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdChangeDB_Click();

 private:
  QLabel* message_;
  ComboField* databases_;
  CommandButton* change_;
};

}  // namespace vellumark::desktop
