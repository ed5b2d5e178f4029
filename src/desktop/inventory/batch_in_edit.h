#pragma once

#include "desktop/kit/form_host.h"

namespace vellumark::desktop {

/// A colour's window does not stay in front while a recipe is on screen in the Batch window: each time the focus comes
/// into it, it says so and brings that window forward.
void YieldToBatchInEdit(FormHost& host);

}  // namespace vellumark::desktop
