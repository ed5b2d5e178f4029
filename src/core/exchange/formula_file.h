#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "core/base/refusal.h"
#include "core/exchange/formula_columns.h"
#include "core/exchange/formula_table.h"

namespace vellumark {

struct FormulaFileOptions {
  std::optional<FormulaFormat> format{};  ///< nothing: by the content
  int nameLength = 30;
  ColumnMapping columns{};             ///< of a shop's own columns
  std::filesystem::path workFolder{};  ///< where what was read of a foreign file is written; empty: nowhere
};

/// What the content of a file shows it to be, and where that is not plain its name. Nothing for what is none of the
/// formats.
std::optional<FormulaFormat> RecogniseFormat(std::string_view text, const std::filesystem::path& path,
                                             const ColumnMapping& columns);

/// How the session reads formula files: the length of names, the columns that were told last, and the work files of
/// foreign ones in the folder "Converted" beside the program.
FormulaFileOptions FileOptions(const Session& session, std::optional<FormulaFormat> format = {});

/// Reads a formula file of any format. The text may be in UTF-8, UTF-16 or CP1252 with any line ends, cells may be in
/// quotes, numbers may have a decimal comma and thousands marks, blank lines and blank cells behind the last are
/// passed over, headings stand in any case. Names are trimmed and made upper case. Every line that is no formula is
/// told in `badLines` and the reading goes on. Bad are: a name that is empty, longer than `nameLength`, in the file
/// twice or with a character that no name may hold; no recipe; more than 15 ingredients; one of them twice; an amount
/// that is no number above 0; a last line that was evidently cut off. Refused, naming the file: what is none of the
/// formats. Throws Failure for a file that cannot be read.
Result<FormulaTable> ReadFormulaFile(const std::filesystem::path& path, const FormulaFileOptions& options);

/// The same from the bytes of the file.
Result<FormulaTable> ReadFormulaBytes(std::string_view bytes, const std::filesystem::path& path,
                                      const FormulaFileOptions& options);

}  // namespace vellumark
