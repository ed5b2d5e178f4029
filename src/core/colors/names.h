#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
/// The text without the tag of any code that a label has, and then without any "<" and ">"; a text without a tag stands
/// as it is.
std::string StripScanTag(std::string_view text);

/// A name as it left its field: trimmed, cut to the configured length, upper case, without scan tag, "<" and ">".
std::string ReadName(const Session& session, std::string_view typed);
/// A new name as a rename or duplicate window reads it: cut, without blanks around it, upper case.
std::string ReadNewName(const Session& session, std::string_view typed);

/// The text after "PANTONE " when the name begins with it, else the name.
std::string StripPantonePrefix(std::string_view name);
bool HasPantonePrefix(std::string_view name);

/// Equal as guide names go: with and without the prefix, in any case.
bool SameColorName(std::string_view a, std::string_view b);

/// Where a new name comes from: a person, at a field or a command; or a file, which may bring accented letters and
/// signs.
enum class NameSource { Typed, File };
/// The one rule for the characters and the length of a name that a colour or an Additive Set is to get, whichever door
/// it comes through. A person's name holds what name fields let through: A to Z in either case, digits, blanks and . /
/// - and whatever stands in `from`, the name on file that it is made of. A file's may hold every letter and sign of the
/// code page, so that it can be exported, but those that have a meaning where names are put together (< > " ' [ ] | *)
/// and control characters. Whether a name may begin with "PANTONE " the guides say.
Result<void> CheckNewName(std::string_view name, NameSource source, int longest, std::string_view field = "Color_Name",
                          std::string_view from = {});
/// A piece that a person puts into names: its characters alone.
Result<void> CheckTypedPiece(std::string_view piece, std::string_view field, std::string_view from = {});

/// Names for a message, a line each; of many the first twenty and how many more there are.
std::string NameLines(const std::vector<std::string>& names);

/// The title behind so many blanks, as the message boxes show it.
std::string Padded(int blanks, std::string_view title);

}  // namespace vellumark
