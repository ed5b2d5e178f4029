#pragma once

#include <functional>

#include "core/jobs/ink_estimator.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Takes an estimate over; false when whoever wanted it has gone.
using TakeEstimate = std::function<bool(const InkEstimate&)>;

/// How much ink a job will need, sheetfed and flexo. For a colour of a Design it is opened with {"Color", name},
/// {"Length", text}, {"Width", text}, {"Unit", LengthUnit}, {"Sheets", text}, {"Percent", text} and {"Take",
/// TakeEstimate}: only then "Add to Design" is there.
class InkEstForm : public Window {
  Q_OBJECT

 public:
  explicit InkEstForm(WindowList& windowList);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;
  void OnChanges(const std::vector<Change>& changes) override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdPrint_SF_Click();
  void cmdPrint_FL_Click();
  void cmdTransfer_Sheetfed_Click();
  void cmdTransfer_Flexo_Click();
  void cmdMileage_Click();
  void cmdAnilox_Click();
  void cmdDesigns_Click() { windows.OpenForm("JobDesigns"); }

 private:
  struct AreaFields {
    NumberField* length = nullptr;
    NumberField* width = nullptr;
    NumberField* sheets = nullptr;
    NumberField* percent = nullptr;
    QLabel* lengthUnit = nullptr;
    QLabel* widthUnit = nullptr;
    ValueField* pounds = nullptr;
    ValueField* kilograms = nullptr;
    CommandButton* print = nullptr;
    CommandButton* transfer = nullptr;
  };
  void BuildSheetfed(Form form);
  void BuildFlexo(Form form);
  void AddSize(Form& form, AreaFields& fields, const QString& end);
  void AddResult(Form& form, AreaFields& fields, const QString& end);
  void Watch(NumberField* field, const char* name);
  LengthUnit Unit() const;
  SheetfedWork Sheetfed() const;
  FlexoWork Flexo() const;
  void Show(AreaFields& fields, const Result<InkEstimate>& estimate);
  void Transfer(const Result<InkEstimate>& estimate);
  void ShowUnit();

  RadioField* unit_;
  QLabel* color_;
  ComboField* ink_;
  ComboField* stock_;
  ComboField* area_;
  ComboField* up_;
  QLabel* mileage_;
  ComboField* anilox_;
  QLabel* factor_;
  AreaFields sheetfed_;
  AreaFields flexo_;
  CommandButton* designs_ = nullptr;
  TakeEstimate take_;
};

/// The mileage of an ink on a stock. Opened with {"Ink", number}, {"Stock", number}.
class InkEstMileageForm : public Dialog {
  Q_OBJECT

 public:
  InkEstMileageForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();
  void cmdDefault_Click();

 private:
  void ShowMileage();

  ComboField* ink_;
  ComboField* stock_;
  NumberField* mileage_;
  QLabel* default_;
};

/// The factors of the four anilox choices.
class InkEstAniloxValueForm : public Dialog {
  Q_OBJECT

 public:
  InkEstAniloxValueForm(WindowList& windowList, QWidget* owner);

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  std::array<NumberField*, kAniloxChoices> factors_{};
};

}  // namespace vellumark::desktop
