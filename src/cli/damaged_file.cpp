#include "cli/damaged_file.h"

#include <fmt/format.h>

#include "cli/seams.h"

namespace vellumark::cli {

Result<void> OpenAsFarAsItCan(Context& context) {
  try {
    if (auto opened = context.open(); !opened) return std::unexpected(opened.error());
  } catch (const Failure& failure) {
    // One that is open and fails nonetheless would only fail again.
    if (context.session.DataFileDB) throw;
    WriteError(fmt::format("{}: {}.\n", failure.subject, failure.cause));
  }
  return {};
}

}  // namespace vellumark::cli
