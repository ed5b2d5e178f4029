#pragma once

#include <vector>

#include "core/colors/template_file.h"
#include "core/shell/database_menu.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// New Database: its name, and what it starts with.
class NewDBForm : public Dialog {
  Q_OBJECT

 public:
  NewDBForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;
  /// A file without any Database gets an empty one.
  void reject() override;

 public Q_SLOTS:
  void cmdCreate_Click();

 private:
  void FindGuides(Form& form);
  NewDatabaseContent Content() const;

  std::vector<const Guide*> guides_;
  TextField* name_;
  RadioField* type_;
  CheckListField* list_;
  ComboField* databases_;
};

}  // namespace vellumark::desktop
