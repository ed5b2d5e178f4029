#include "core/exchange/text_file.h"

#include <algorithm>

#include "core/base/files.h"
#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/datafile/engine.h"

namespace vellumark {

std::string TextFileBytes(const std::string& text) {
  // Most files are plain letters, which are the same in every encoding.
  if (std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; })) return text;
  if (!FitsCp1252(text)) return text;
  std::string bytes = ToCp1252(text);
  // What would be taken for UTF-8 says by its mark that it is.
  return bytes != text && IsUtf8(bytes) ? "\xEF\xBB\xBF" + text : bytes;
}

void MustBeNoDataFile(const std::filesystem::path& path) {
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored) && Database::IsDatabaseFile(path))
    throw Failure(path.string(), "is a Data File and is not overwritten");
}

void WriteTextFile(const std::filesystem::path& path, const std::string& text) {
  MustBeNoDataFile(path);
  ReplaceFile(path, TextFileBytes(text));
}

std::string TabCell(std::string_view text) {
  std::string cell;
  for (const char c : text) {
    const bool end = c == '\n' || c == '\r' || c == '\t';
    if (!end) cell += c;
    if (end && (c != '\n' || cell.empty() || cell.back() != ' ')) cell += ' ';
  }
  return Trim(cell);
}

std::string FileNamePart(std::string_view text) {
  std::string part(text);
  for (char& c : part)
    if (static_cast<unsigned char>(c) < ' ' || std::string_view("/\\:*?\"<>|").contains(c)) c = '_';
  return part;
}

}  // namespace vellumark
