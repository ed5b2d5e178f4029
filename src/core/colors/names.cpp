#include "core/colors/names.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

#include "core/base/text.h"

namespace vellumark {
namespace {

constexpr std::size_t kTagLength = 4;
constexpr std::array<std::string_view, 15> kScanTags{"<CC>", "<CN>", "<DB>", "<DT>", "<JN>", "<LN>", "<LL>", "<LC>",
                                                     "<U1>", "<U2>", "<M1>", "<M2>", "<M3>", "<M4>", "<UN>"};
// What labels say beside that: codes for the scan of a whole container.
constexpr std::array<std::string_view, 4> kOtherTags{"<CT>", "<LR>", "<BI>", "<SN>"};

bool BeginsWithOne(std::string_view text, std::span<const std::string_view> tags) {
  const std::string_view front = text.substr(0, kTagLength);
  return std::ranges::any_of(tags, [&](std::string_view tag) { return EqualNoCase(tag, front); });
}

void EraseMarks(std::string& text) {
  std::erase_if(text, [](char c) { return c == '<' || c == '>'; });
}

bool IsPlainNameCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' || c == '.' || c == '/' || c == '-';
}

// What a refusal shows of a character that may not even be printable.
std::string Shown(unsigned char c) {
  if (c < 0x20 || c == 0x7F) return fmt::format("the control character {}", c);
  return fmt::format("the character {}", static_cast<char>(c));
}

std::unexpected<Refusal> NoName(std::string text, std::string_view field) {
  return Refuse("Invalid Name", std::move(text), std::string(field));
}

Result<void> CheckFileName(std::string_view name, std::string_view field) {
  constexpr std::string_view kMarks = "<>\"'[]|*";
  if (!IsUtf8(name)) return NoName("The name is not a text.", field);
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F && kMarks.find(c) == std::string_view::npos) continue;
    return NoName(
        fmt::format("The name {} holds {}, which has a meaning of its own in lists of names.", name, Shown(byte)),
        field);
  }
  if (!FitsCp1252(name))
    return NoName(fmt::format("The name {} holds a character that formula files cannot hold.", name), field);
  return {};
}

}  // namespace

std::optional<char> NameKey(char32_t typed, NameKeys keys) {
  if (typed >= U'a' && typed <= U'z') return static_cast<char>(typed - U'a' + U'A');
  if (typed > 0x7E) return std::nullopt;
  const char c = static_cast<char>(typed);
  if (IsPlainNameCharacter(c)) return c;
  if (keys == NameKeys::Scanned && (c == '<' || c == '>' || c == '!')) return c;
  return std::nullopt;
}

bool HasScanTag(std::string_view text) {
  return BeginsWithOne(text, kScanTags);
}

std::string StripScanTag(std::string_view text) {
  if (!HasScanTag(text) && !BeginsWithOne(text, kOtherTags)) return std::string(text);
  std::string stripped(text.substr(kTagLength));
  EraseMarks(stripped);
  return stripped;
}

std::string ReadNewName(const Session& session, std::string_view typed) {
  return Upper(Trim(Left(TrimView(typed), static_cast<std::size_t>(session.NameLength))));
}

std::string ReadName(const Session& session, std::string_view typed) {
  // The tag counts for nothing of the length: a label holds a name as long as names may be behind it.
  std::string name = StripScanTag(TrimView(typed));
  EraseMarks(name);
  return ReadNewName(session, name);
}

bool HasPantonePrefix(std::string_view name) {
  return StartsWithNoCase(name, kPantonePrefix);
}

std::string StripPantonePrefix(std::string_view name) {
  if (HasPantonePrefix(name)) name.remove_prefix(kPantonePrefix.size());
  return std::string(name);
}

bool SameColorName(std::string_view a, std::string_view b) {
  if (HasPantonePrefix(a)) a.remove_prefix(kPantonePrefix.size());
  if (HasPantonePrefix(b)) b.remove_prefix(kPantonePrefix.size());
  return EqualNoCase(a, b);
}

Result<void> CheckTypedPiece(std::string_view piece, std::string_view field, std::string_view from) {
  if (!IsUtf8(piece)) return NoName("The name is not a text.", field);
  const std::string upper = Upper(piece);
  const std::string known = Upper(from);
  for (std::string_view rest = upper; !rest.empty();) {
    const std::string c = Left(rest, 1);
    rest.remove_prefix(c.size());
    if (c.size() == 1 && IsPlainNameCharacter(c[0])) continue;
    if (known.find(c) != std::string::npos && static_cast<unsigned char>(c[0]) >= 0x20) continue;
    const std::string what = c.size() == 1 ? Shown(static_cast<unsigned char>(c[0])) : "a letter outside A to Z";
    return NoName(fmt::format("The name {} holds {}.\nA name may hold letters from A to Z, digits, blanks and . / -",
                              piece, what),
                  field);
  }
  return {};
}

Result<void> CheckNewName(std::string_view name, NameSource source, int longest, std::string_view field,
                          std::string_view from) {
  if (const std::size_t length = CharCount(name); length > static_cast<std::size_t>(longest))
    return NoName(fmt::format("The name {} has {} characters, the limit is {}.", name, length, longest), field);
  return source == NameSource::Typed ? CheckTypedPiece(name, field, from) : CheckFileName(name, field);
}

std::string NameLines(const std::vector<std::string>& names) {
  constexpr std::size_t kMost = 20;
  const std::size_t shown = std::min(names.size(), kMost);
  std::string lines =
      fmt::format("{}", fmt::join(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(shown), "\n"));
  if (shown < names.size()) lines += fmt::format("\nand {} more", names.size() - shown);
  return lines;
}

std::string Padded(int blanks, std::string_view title) {
  return std::string(static_cast<std::size_t>(blanks), ' ').append(title);
}

}  // namespace vellumark
