#pragma once

#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// Quiet text that says what a choice means, wrapped to a width that can be read.
QLabel* Explain(Form& form, const QString& text, const QString& name = {});
/// The names of the units of weight, in the order of their codes.
QStringList UnitNames();

}  // namespace vellumark::desktop
