#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellumark {

/// One row of an ".mfe" file with its line end, and the bytes of a whole file: in the code page, or as UTF-8 when a
/// name of an older file has a character that the code page lacks.
std::string MfeRow(std::string_view name, const std::vector<std::pair<std::string, float>>& parts);
std::string MfeBytes(const std::string& text);

}  // namespace vellumark
