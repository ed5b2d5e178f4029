#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/session/session.h"

namespace vellumark {

// Many formulas deleted at once. `database` empty means the current one.

/// One formula of the selection; one that a Design uses must stay.
struct DeletePreviewRow {
  std::string Color_Name;
  bool deletes = false;
  std::string reason;
};
Result<std::vector<DeletePreviewRow>> PreviewDeleteFormulas(Session& session, const std::vector<std::string>& colors,
                                                            std::string_view database = {});

/// Asks, and deletes the formulas with their lots and measurements; Batches and Job Records keep the names. Refused as
/// a whole when a Design uses one of them. False when the operator declined.
Result<bool> DeleteFormulas(Session& session, const std::vector<std::string>& colors, std::string_view database = {});

}  // namespace vellumark
