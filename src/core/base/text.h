#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace vellumark {

// All texts inside the program are UTF-8. Support Files and exchange files are CP1252, the code page of the system.

std::string_view TrimView(std::string_view text);  ///< without blanks and tabs at either end
std::string Trim(std::string_view text);

/// Upper case of A to Z and of the Latin letters that CP1252 has in both cases (é, ö, ž); others stay.
std::string Upper(std::string_view text);

/// Equal but for the case of A to Z: how the Data File compares texts.
bool EqualNoCase(std::string_view a, std::string_view b);
/// Three-way comparison on the same rule.
int CompareNoCase(std::string_view a, std::string_view b);
bool StartsWithNoCase(std::string_view text, std::string_view prefix);
/// Position of `part` in `text` on the same rule; npos when absent.
std::size_t FindNoCase(std::string_view text, std::string_view part);

/// Number of characters (code points), not bytes.
std::size_t CharCount(std::string_view utf8);
/// The first `count` characters.
std::string Left(std::string_view utf8, std::size_t count);

bool IsUtf8(std::string_view bytes);
/// Every byte has a character: the five that CP1252 leaves open become the control characters of the same number.
std::string FromCp1252(std::string_view bytes);
/// Throws BadValue, naming the character, when the code page does not have it.
std::string ToCp1252(std::string_view utf8);
/// Whether the code page has every character of the text.
bool FitsCp1252(std::string_view utf8);
/// A text file's bytes as UTF-8: taken as it is (less a byte order mark) when it is valid UTF-8, else read as CP1252.
std::string DecodeText(std::string_view bytes);

/// Pieces of a list in which each name is followed by `mark` ("A|B|"); a last piece without its mark counts.
std::vector<std::string> SplitMarked(std::string_view list, char mark);
/// "A|B|" from its names.
std::string JoinMarked(const std::vector<std::string>& names, char mark);
/// Pieces between separators; one piece for an empty text.
std::vector<std::string_view> Split(std::string_view text, char separator);
/// The pieces lie in the text, which has to outlive them.
template <class T>
  requires std::is_same_v<std::remove_const_t<T>, std::string>
std::vector<std::string_view> Split(T&& text, char separator) = delete;

}  // namespace vellumark
