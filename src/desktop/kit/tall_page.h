#pragma once

#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The part of a dialog above its buttons, for one with more lines than the smallest screen has: it is as high as they
/// are where the screen lets it, and scrolls, after the focus too, where it does not.
///
///     Form whole(*this);
///     Form form = TallPart(*this, whole);
///     ... the lines of form ...
///     whole.Buttons({...});
///     FitScreen(*this);
Form TallPart(FormHost& host, Form& whole);

/// As large as it wants to be, or so, but no larger than the screen.
void FitScreen(QWidget& dialog, QSize size = {});

}  // namespace vellumark::desktop
