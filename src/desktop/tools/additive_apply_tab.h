#pragma once

#include <QObject>

#include "core/colors/additive_control.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

class ColorSelection;
class PreviewLists;

/// Gives many formulas an Additive Set or takes it off them: the set, the colours, the method, the preview.
class AdditiveApplyTab : public QObject {
  Q_OBJECT

 public:
  AdditiveApplyTab(FormHost& host, Form form);

  /// Sets and colours as they are on file now.
  void Reload();
  void UpdateEnabled();
  void TakeFocus();
  /// cmdSave_ApplyTab, which the window places beside its own commands.
  CommandButton* SaveButton() const { return save_; }

 private:
  void BuildMethod(Form& form);
  SetMethod Method() const;
  void ForgetPreview();
  void Preview();
  void Save();
  void LoadSets();

  FormHost& host_;
  ComboField* set_;
  ColorSelection* colors_;
  RadioField* method_ = nullptr;
  NameBox* ingredient_ = nullptr;
  ComboField* operator_ = nullptr;
  NumberField* percent_ = nullptr;
  PreviewLists* preview_ = nullptr;
  CommandButton* save_;
};

}  // namespace vellumark::desktop
