#pragma once

#include <filesystem>
#include <system_error>

#include "core/base/refusal.h"
#include "core/base/seams.h"

namespace vellumark {

/// Whoever writes a file that a person named asks this first: declined, with `field`, when one of that name is there
/// and is to stay. What is no file is refused by the writer.
inline Result<void> MayWriteOver(Prompt& prompt, const std::filesystem::path& file, std::string field = {}) {
  std::error_code none;
  if (std::filesystem::is_regular_file(file, none) && !prompt.Ask("Overwrite File", "Overwrite existing file?", Answer::No))
    return Decline("Overwrite File", std::move(field));
  return {};
}

}  // namespace vellumark
