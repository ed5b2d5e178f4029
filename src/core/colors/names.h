#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/session/session.h"

namespace vellumark {

/// What a guide colour's name begins with, its one blank included.
inline constexpr std::string_view kPantonePrefix = "PANTONE ";

/// Which keys a name field takes. A field that a scanner may fill also takes the marks of a scan tag.
enum class NameKeys { Plain, Scanned };

/// The character that a typed key puts into a name field: a small letter becomes a capital. Nothing for a key that the
/// field drops with a beep.
std::optional<char> NameKey(char32_t typed, NameKeys keys);

/// True when the text begins with one of the four-character tags ("<CN>") that labels put before a value.
bool HasScanTag(std::string_view text);
/// The text without its scan tag and without any "<" and ">".
std::string StripScanTag(std::string_view text);

/// A name as it left its field: trimmed, cut to the configured length, upper case, without scan tag, "<" and ">".
std::string ReadName(const Session& session, std::string_view typed);
/// A new name as a rename or duplicate window reads it: trimmed, cut, upper case.
std::string ReadNewName(const Session& session, std::string_view typed);

/// The text after "PANTONE " when the name begins with it, else the name.
std::string StripPantonePrefix(std::string_view name);
bool HasPantonePrefix(std::string_view name);

/// Equal as guide names go: with and without the prefix, in any case.
bool SameColorName(std::string_view a, std::string_view b);

/// For callers without a keyboard filter: refuses a name with a character that no name field would have let through.
Result<void> CheckTypedName(std::string_view name, std::string_view field = "Color_Name");
/// The looser rule for names from files, which may bring accented letters and signs: refuses the characters that carry
/// meaning where names are put together (< > " ' [ ] | *) and control characters.
Result<void> CheckImportedName(std::string_view name, std::string_view field = "Color_Name");

/// The title behind so many blanks, as the message boxes show it.
std::string Padded(int blanks, std::string_view title);

}  // namespace vellumark
