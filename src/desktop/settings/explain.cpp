#include "desktop/settings/explain.h"

#include "core/base/units.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

QLabel* Explain(Form& form, const QString& text, const QString& name) {
  QLabel* label = form.Hint(text, name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setMinimumWidth(440);
  QSizePolicy policy = label->sizePolicy();
  policy.setHorizontalPolicy(QSizePolicy::Expanding);
  label->setSizePolicy(policy);
  return label;
}

QStringList UnitNames() {
  QStringList names;
  for (int unit = UnitPound; unit <= UnitOunce; ++unit) names += Q(UnitName(unit));
  return names;
}

}  // namespace vellumark::desktop
