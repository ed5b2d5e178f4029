#pragma once

#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// The windows of Jobs, of Designs, of the estimator and of files of records.
void RegisterJobsWindows(WindowList& windows, const FileChooser& choose = ChooseFile);

}  // namespace vellumark::desktop
