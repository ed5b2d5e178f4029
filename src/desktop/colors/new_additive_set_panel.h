#pragma once

#include <QObject>
#include <array>

#include "core/colors/additive_sets.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The fields of an Additive Set that is being made.
class NewAdditiveSetPanel : public QObject {
  Q_OBJECT

 public:
  explicit NewAdditiveSetPanel(FormHost& host);

  /// Makes the fields; before that nothing is filled.
  void Build(Form form);

  bool IsFilled() const;
  /// Checks and adds it to the Database. False after the refusal was shown; the fields stay.
  bool Create(std::string& setName);
  void Empty();
  void FocusName();

 Q_SIGNALS:
  void SaveClicked();
  void CancelClicked();

 private:
  struct Line {
    NameBox* name = nullptr;
    NumberField* percent = nullptr;
    std::string entered;
  };
  void BuildLine(Form& form, std::size_t row);
  AdditiveSetWork Work() const;
  void NameLeft(QWidget* to);
  void IngredientLeft(std::size_t row, QWidget* to);
  void PercentLeft(std::size_t row, QWidget* to);

  FormHost& host_;
  TextField* name_ = nullptr;
  std::array<Line, schema::kSetSlots> lines_;
};

}  // namespace vellumark::desktop
