#pragma once

#include <initializer_list>
#include <string>

#include "core/datafile/color_kind.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// For a name that the current Database does not have: when others have it, soon tells which and lets the operator
/// change to one of them, where `window` then opens again with `shows`. False when none has it. Whoever calls goes back
/// to its field without another word; the change closes its window.
bool OfferOtherDatabases(WindowList& windows, const std::string& name, std::initializer_list<ColorKind> kinds,
                         const std::string& window, const Arguments& shows);

}  // namespace vellumark::desktop
