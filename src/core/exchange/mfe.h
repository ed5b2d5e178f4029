#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/base/refusal.h"

namespace vellumark {

/// The formula file ".mfe": text in CP1252 (UTF-8 is read too) with CRLF line ends, cells apart by tabs. Row 1 is the
/// Database name alone, then each formula is one row: its name and, for each ingredient, its name and its parts with
/// three decimals.
struct MfeFile {
  struct Formula {
    int line = 0;  ///< in the file, from 1
    std::string name;
    std::vector<std::pair<std::string, double>> parts;  ///< as they stand in the file, not normalised
  };
  struct BadLine {
    int line = 0;
    std::string content;
    std::string why;
  };
  std::string database;
  std::vector<Formula> formulas;
  std::vector<BadLine> badLines;
};

/// Reads the whole file; every line that is no formula is told in `badLines` and the reading goes on. Names are trimmed
/// and made upper case. Bad are: a name that is empty, longer than `nameLength`, in the file twice or with a character
/// that no name may hold; no recipe; more than 15 ingredients; one of them twice; an amount that is no number above 0;
/// a last line that was evidently cut off. Throws Failure for a file that cannot be read or is no text.
MfeFile ReadMfe(const std::filesystem::path& path, int nameLength);

/// One row with its line end, and the bytes of a whole file: in the code page, or as UTF-8 when a name of an older file
/// has a character that the code page lacks.
std::string MfeRow(std::string_view name, const std::vector<std::pair<std::string, float>>& parts);
std::string MfeBytes(const std::string& text);

}  // namespace vellumark
