#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/datafile/color_kind.h"
#include "core/session/session.h"

namespace vellumark {

/// What is known of a lot where it was used or made.
struct LotParticulars {
  std::string LotNumber;
  std::string LotLoc;
  std::string LotContID;
  std::optional<DateTime> LotDate;
};

/// Brings the copies of a lot that was edited in step: its number on the Batch that made it (a formula's), all
/// particulars on the lines of Batches and Job Records that took from it. Within the caller's transaction.
void UpdateLotCopies(Session& session, ColorKind kind, std::string_view name, const std::string& database,
                     std::int32_t ref, const LotParticulars& lot);

}  // namespace vellumark
