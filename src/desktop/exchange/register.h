#pragma once

#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// The windows of formulas that go out and come in.
void RegisterExchangeWindows(WindowList& windows, const FileChooser& choose = ChooseFile);

}  // namespace vellumark::desktop
