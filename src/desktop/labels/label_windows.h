#pragma once

#include <QtGlobal>
#include <array>

#include "core/labels/label_layouts.h"

namespace vellumark::desktop {

/// The windows of one kind of label, by their names.
struct LabelWindows {
  LabelKind kind;
  const char* print;    ///< the window that prints them
  const char* layout;   ///< the editor of their layouts
  const char* save;     ///< asks for the name of a layout
  const char* caption;  ///< of the button that leads to `print`
};
inline constexpr std::array<LabelWindows, 3> kLabelWindows{{
    {LabelKind::Label, "LabelForm", "LabelLayoutForm", "SaveLabelLayoutForm",
     QT_TRANSLATE_NOOP("LabelMenu", "Ink &Labels")},
    {LabelKind::Hazard, "GH_LabelForm", "GH_LabelLayoutForm", "GH_LabelSaveForm",
     QT_TRANSLATE_NOOP("LabelMenu", "&Hazard Labels")},
    {LabelKind::Formula, "Formula_LabelForm", "Formula_LabelLayoutForm", "Formula_LabelSaveForm",
     QT_TRANSLATE_NOOP("LabelMenu", "&Formula Labels")},
}};
constexpr const LabelWindows& WindowsOf(LabelKind kind) {
  return kLabelWindows.at(static_cast<std::size_t>(kind));
}

}  // namespace vellumark::desktop
