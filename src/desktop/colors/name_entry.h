#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/colors/basic_work.h"
#include "desktop/kit/form_host.h"

namespace vellumark::desktop {

/// How a window of colours goes on once its name was left.
struct NameSteps {
  std::function<void(const std::string& name)> show;   ///< the colour on file
  std::function<void(const std::string& name)> begin;  ///< a new one
  std::function<void()> clear;                         ///< refused, or not to be added; the name has the focus then
};
void FollowNameEntry(FormHost& window, std::string_view nameField, const Result<NameEntry>& entry,
                     const NameSteps& steps);

}  // namespace vellumark::desktop
