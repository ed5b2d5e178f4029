#pragma once

#include <filesystem>
#include <system_error>

#include "core/base/refusal.h"
#include "core/base/seams.h"

namespace vellumark {

/// Whoever writes a file that a person named asks this first: declined, with `field`, when one of that name is there
/// and is to stay.
inline Result<void> MayWriteOver(Prompt& prompt, const std::filesystem::path& file, std::string field = {}) {
  std::error_code none;
  if (std::filesystem::exists(file, none) && !prompt.Ask("Overwrite File", "Overwrite existing file?", Answer::No))
    return Decline("Overwrite File", std::move(field));
  return {};
}

}  // namespace vellumark
