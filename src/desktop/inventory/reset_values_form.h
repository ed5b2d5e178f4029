#pragma once

#include "core/inventory/stock_resets.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// One figure of every Basic Color and of every formula, set to a value. What ResetInvForm and ResetReorderForm share.
class ResetValuesForm : public Dialog {
  Q_OBJECT

 public:
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdSave_Click();

 protected:
  struct Words {
    QString title;
    QString figure;  ///< what is set
    QString note;    ///< empty for none
    const char* basicsField;
    const char* mixesField;
    Result<bool> (*reset)(Session&, const ResetValues&);
  };
  ResetValuesForm(WindowList& windowList, QWidget* owner, const QString& name, const Words& words);

 private:
  Result<bool> (*reset_)(Session&, const ResetValues&);
  CheckField* basics_;
  NumberField* basicsValue_;
  CheckField* mixes_;
  NumberField* mixesValue_;
  CommandButton* save_;
};

/// Sets the inventory of all colours.
class ResetInvForm : public ResetValuesForm {
  Q_OBJECT

 public:
  ResetInvForm(WindowList& windowList, QWidget* owner);
};

/// Sets the reorder points of all colours.
class ResetReorderForm : public ResetValuesForm {
  Q_OBJECT

 public:
  ResetReorderForm(WindowList& windowList, QWidget* owner);
};

}  // namespace vellumark::desktop
