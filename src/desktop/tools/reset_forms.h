#pragma once

#include "core/datafile/color_kind.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

// The mass resets: one figure of every colour of the current Database.

/// PurchaseCost of every Basic Color.
class ResetBasicCostForm : public Dialog {
  Q_OBJECT

 public:
  ResetBasicCostForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  CheckField* chosen_;
  NumberField* value_;
  CommandButton* ok_;
};

/// PurchaseCost of every Master Formula: one value, or what its ingredients cost with a markup.
class ResetMixCostForm : public Dialog {
  Q_OBJECT

 public:
  ResetMixCostForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  RadioField* way_;
  NumberField* value_;
  NumberField* markup_;
  NumberField* fixed_;
};

/// VOC and HAP of every colour of a kind.
class ResetEmissionsForm : public Dialog {
  Q_OBJECT

 public:
  ResetEmissionsForm(WindowList& windowList, QWidget* owner, ColorKind kind);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdOK_Click();

 private:
  ColorKind kind_;
  CheckField* checkVOC_;
  CheckField* checkHAP_;
  NumberField* voc_;
  NumberField* hap_;
  CommandButton* ok_;
};

}  // namespace vellumark::desktop
