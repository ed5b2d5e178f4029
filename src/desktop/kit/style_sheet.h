#pragma once

#include <QString>

#include "desktop/kit/look.h"

namespace vellumark::desktop {

/// The style sheet of the whole program in the colours of a theme.
QString StyleSheetOf(const Colors& colors);

}  // namespace vellumark::desktop
