#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/refusal.h"

namespace vellumark {

/// The bar codes of a label, as "Label BC Type" names them.
enum class Symbology { NotUsing, Code39, Code39Check, Code128 };

/// "Not Using", "Code 3 of 9", "Code 3 of 9 with Check Sum", "Code 128".
std::string_view SymbologyName(Symbology symbology);
/// Nothing for any other text.
std::optional<Symbology> FindSymbology(std::string_view name);

/// The characters of a bar code font that make up a code, by their numbers. A check that wrapped can be a number that
/// no character has, even below zero; BarsOf tells of it.
using FontString = std::vector<int>;

/// The alphabet is 0 to 9, A to Z and "-. $/+%"; any other character is refused. An empty text has no code.
Result<FontString> Code39(std::string_view text, bool withCheckSum);

/// Characters above 127 are refused. The sum of the check is one of 16 bits that wraps. An empty text has no code.
Result<FontString> Code128(std::string_view text);
/// The same as printed job sheets use it, which refuse nothing: of characters from 127 up those from 195 to 202 stand
/// for a value, the others are dropped.
FontString ReportCode128(std::string_view text);

/// By the symbology; no characters with NotUsing.
Result<FontString> EncodeBarcode(Symbology symbology, std::string_view text);

/// The widths of bars and spaces in turn, in modules, the first and the last a bar.
struct Bars {
  std::vector<std::uint8_t> widths;
  int modules = 0;  ///< their sum
};
/// Quiet zone on either side, in modules.
inline constexpr int kQuietModules = 10;
/// The bars of a font string; nothing when a character of it has none.
std::optional<Bars> BarsOf(Symbology symbology, const FontString& font);
/// What a reader hands back for the code of this text: with the check character where it is part of the data.
std::string ReadBackOf(Symbology symbology, std::string_view text);

}  // namespace vellumark
