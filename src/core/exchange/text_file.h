#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vellumark {

/// The bytes of a text file: in the code page, or as UTF-8 when a character is not in it.
std::string TextFileBytes(const std::string& text);

/// Throws Failure for a Data File: a slip of the hand in a name must not cost the shop its data.
void MustBeNoDataFile(const std::filesystem::path& path);
/// Replaces a text file in one step, but no Data File.
void WriteTextFile(const std::filesystem::path& path, const std::string& text);

/// A text as one cell of a tab file: a line end or a tab in it becomes a blank.
std::string TabCell(std::string_view text);
/// A text as a part of a file's name: what names may not hold becomes "_".
std::string FileNamePart(std::string_view text);

}  // namespace vellumark
