#pragma once

#include "core/shell/gating.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// The open windows, as the interlocks of the core ask for them.
class OpenFormsOf : public OpenWindows {
 public:
  explicit OpenFormsOf(const WindowList& windows) : windows_(windows) {}
  bool IsFormOpen(std::string_view name) const override { return windows_.IsFormOpen(name); }
  bool IsInEdit(std::string_view name) const override { return windows_.IsInEdit(name); }

 private:
  const WindowList& windows_;
};

}  // namespace vellumark::desktop
