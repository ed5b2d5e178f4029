#pragma once

#include <utility>
#include <vector>

#include "core/labels/label_data.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// Whether there is a window that prints labels.
inline bool CanPrintLabels(const WindowList& windows) {
  return windows.Knows("LabelForm");
}

/// Brings the label window to the front, filled with what core/labels/label_subjects tells of a colour, a lot or a
/// Batch. Of several labels, such as those of the containers of one Batch, each is printed once.
inline void OpenLabelForm(WindowList& windows, std::vector<LabelData> labels) {
  windows.OpenForm("LabelForm", {{"Labels", std::move(labels)}});
}

}  // namespace vellumark::desktop
