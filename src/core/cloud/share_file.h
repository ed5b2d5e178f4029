#pragma once

#include <filesystem>

#include "core/session/session.h"

namespace vellumark {

/// A whole copy of the open Data File, without its unused space. The file itself stays as it is, and open.
void CopyOpenFile(Session& session, const std::filesystem::path& copy);

/// What other shops may see of a Data File, made of a whole copy: no Jobs, users, dispensers, Batches, nothing that the
/// system keeps for itself, and no byte of what they held.
void MakeShareFile(const std::filesystem::path& wholeCopy, const std::filesystem::path& share);

}  // namespace vellumark
