#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/exchange/formula_table.h"
#include "core/session/session.h"

namespace vellumark {

// What formulas come from beside formula files, each read into the one table.

/// The Databases of a Data File, which is opened to be read and stays as it is, to the last byte: nothing in it is
/// mended or brought up to date. Refused, in the words for that, when its version is not current. Throws Failure for a
/// file that is not there, is none, is damaged or is held by another process.
Result<std::vector<std::string>> DatabasesOfFile(const Session& session, const std::filesystem::path& path);

/// A Database of such a file: Basic Colors, formulas, Additive Sets. The file of the session itself is read through the
/// session. The share file that another account has put into the Cloud is a Data File and is read by this too. Refused
/// also: no such Database, one without formulas.
Result<FormulaTable> ReadDataFileFormulas(const Session& session, const std::filesystem::path& path,
                                          std::string_view database);

/// Another Database of the open file.
Result<FormulaTable> ReadDatabaseFormulas(const Session& session, std::string_view database);

/// Guides of the template, by their codes, in list order; a name that an earlier one has is passed over. Refused: no
/// guide, both Formula Guides, one that the template does not hold, no template.
Result<FormulaTable> ReadGuideFormulas(const Session& session, const std::vector<std::string>& codes);

/// Whether a path leads to the Data File that the session has open.
bool IsOwnFile(const Session& session, const std::filesystem::path& path);

}  // namespace vellumark
