#pragma once

#include <string>

#include "core/datafile/color_kind.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// The card of a colour on paper; what stands on it is chosen there and kept in the settings.
void PrintCard(WindowList& windows, ColorKind kind, const std::string& name);

}  // namespace vellumark::desktop
