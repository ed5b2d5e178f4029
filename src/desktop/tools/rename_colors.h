#pragma once

#include <map>

#include "core/colors/bulk_rename.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class ColorSelection;
class PreviewLists;

/// Renames many colours by one rule: a prefix, a suffix, or a text that takes another's place.
class DBRenameColors : public Window {
  Q_OBJECT

 public:
  explicit DBRenameColors(WindowList& windowList);
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdPreview_Click();
  void cmdSave_Click() override;

 private:
  void BuildRule(Form& form);
  ColorKind Kind() const;
  BulkRename Rule() const;
  void ShowKind();
  void ForgetPreview();

  RadioField* kind_;
  ColorSelection* colors_;
  RadioField* change_;
  TextField* prefix_;
  TextField* suffix_;
  TextField* find_;
  TextField* replace_;
  std::map<TextField*, QLabel*> labels_;
  PreviewLists* preview_;
  CommandButton* save_;
};

}  // namespace vellumark::desktop
