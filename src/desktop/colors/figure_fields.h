#pragma once

#include <QObject>
#include <utility>
#include <vector>

#include "desktop/kit/bound_fields.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// Code, flag and figures of a colour, alike in the windows of a Basic Color and of a Master Formula.
class FigureFields : public QObject {
  Q_OBJECT

 public:
  /// Labels behind a figure, where there are any.
  struct Beside {
    QLabel* cost = nullptr;
    QLabel* voc = nullptr;
    QLabel* hap = nullptr;
  };
  /// Rows of `form`; `flag` is the check box of the field `flagColumn`.
  FigureFields(FormHost& host, Form& form, BoundFields& bound, const char* flagColumn, CheckField* flag,
               const Beside& beside);

  /// Units as the settings are now.
  void Relabel();
  NumberField* Cost() const { return cost_; }

 private:
  QLabel* UnitHint(Form& form, const QString& words);

  FormHost& host_;
  NumberField* cost_ = nullptr;
  std::vector<std::pair<QLabel*, QString>> unitHints_;  ///< with their words, to which the unit is added
};

}  // namespace vellumark::desktop
