#include "core/base/text.h"

#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <optional>

#include "core/base/refusal.h"
#include "core/base/unicode.h"

namespace vellumark {
namespace {

constexpr char Fold(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// What CP1252 puts at 0x80 to 0x9F (0 where the code page has nothing).
constexpr std::array<char32_t, 32> kHigh{
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

constexpr char32_t kInvalid = 0xFFFFFFFF;
constexpr char32_t kUnreadable = 0xFFFD;  // stands for what cannot be read

// Takes one code point off the front; kInvalid (and one byte taken) for bytes that are no UTF-8.
char32_t TakeUtf8(std::string_view& text) {
  const auto byte = [&text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t first = byte(0);
  std::size_t length = 0;
  char32_t c = 0;
  char32_t least = 0;
  if (first < 0x80) {
    text.remove_prefix(1);
    return first;
  }
  if ((first & 0xE0) == 0xC0) {
    length = 2, c = first & 0x1F, least = 0x80;
  } else if ((first & 0xF0) == 0xE0) {
    length = 3, c = first & 0x0F, least = 0x800;
  } else if ((first & 0xF8) == 0xF0) {
    length = 4, c = first & 0x07, least = 0x10000;
  }
  bool good = length != 0 && text.size() >= length;
  for (std::size_t i = 1; good && i < length; ++i) {
    good = (byte(i) & 0xC0) == 0x80;
    c = (c << 6) | (byte(i) & 0x3F);
  }
  good = good && c >= least && c <= 0x10FFFF && !(c >= 0xD800 && c <= 0xDFFF);
  text.remove_prefix(good ? length : 1);
  return good ? c : kInvalid;
}

// The byte of a character; nothing for one that the code page does not have.
std::optional<char> Cp1252Of(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
  for (std::size_t i = 0; i < kHigh.size(); ++i)
    if (kHigh[i] == c || (kHigh[i] == 0 && c == 0x80 + i)) return static_cast<char>(0x80 + i);
  return std::nullopt;
}

char32_t UpperOf(char32_t c) {
  if (c >= 'a' && c <= 'z') return c - 32;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 32;
  switch (c) {
    case 0x0161:
      return 0x0160;
    case 0x0153:
      return 0x0152;
    case 0x017E:
      return 0x017D;
    case 0x00FF:
      return 0x0178;
    default:
      return c;
  }
}

}  // namespace

std::string_view TrimView(std::string_view text) {
  const auto blank = [](char c) { return c == ' ' || c == '\t'; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
}

std::string Trim(std::string_view text) {
  return std::string(TrimView(text));
}

std::string Upper(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::string_view before = text;
    const char32_t c = TakeUtf8(text);
    if (c == kInvalid) {
      out += before.front();
    } else {
      AppendUtf8(out, UpperOf(c));
    }
  }
  return out;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && CompareNoCase(a, b) == 0;
}

int CompareNoCase(std::string_view a, std::string_view b) {
  const std::size_t common = a.size() < b.size() ? a.size() : b.size();
  for (std::size_t i = 0; i < common; ++i) {
    const auto x = static_cast<std::uint8_t>(Fold(a[i]));
    const auto y = static_cast<std::uint8_t>(Fold(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualNoCase(text.substr(0, prefix.size()), prefix);
}

std::size_t FindNoCase(std::string_view text, std::string_view part) {
  if (part.size() > text.size()) return std::string_view::npos;
  for (std::size_t i = 0; i + part.size() <= text.size(); ++i)
    if (EqualNoCase(text.substr(i, part.size()), part)) return i;
  return std::string_view::npos;
}

std::size_t CharCount(std::string_view utf8) {
  std::size_t count = 0;
  for (const char c : utf8) count += (static_cast<std::uint8_t>(c) & 0xC0) != 0x80;
  return count;
}

std::string Left(std::string_view utf8, std::size_t count) {
  std::size_t end = 0;
  while (end < utf8.size()) {
    if ((static_cast<std::uint8_t>(utf8[end]) & 0xC0) != 0x80) {
      if (count == 0) break;
      --count;
    }
    ++end;
  }
  return std::string(utf8.substr(0, end));
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty())
    if (TakeUtf8(bytes) == kInvalid) return false;
  return true;
}

std::string FromCp1252(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  for (const char raw : bytes) {
    const auto byte = static_cast<std::uint8_t>(raw);
    const char32_t high = byte >= 0x80 && byte < 0xA0 ? kHigh[byte - 0x80U] : 0;
    AppendUtf8(out, high != 0 ? high : byte);
  }
  return out;
}

std::string ToCp1252(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  while (!utf8.empty()) {
    const std::string_view before = utf8;
    const auto byte = Cp1252Of(TakeUtf8(utf8));
    if (!byte)
      throw BadValue(fmt::format("the character \"{}\" does not exist in the code page of the file",
                                 before.substr(0, before.size() - utf8.size())));
    out += *byte;
  }
  return out;
}

bool FitsCp1252(std::string_view utf8) {
  while (!utf8.empty())
    if (!Cp1252Of(TakeUtf8(utf8))) return false;
  return true;
}

void AppendUtf8(std::string& text, char32_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | (character >> 6));
    text += static_cast<char>(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    text += static_cast<char>(0xE0 | (character >> 12));
    text += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (character & 0x3F));
  } else {
    text += static_cast<char>(0xF0 | (character >> 18));
    text += static_cast<char>(0x80 | ((character >> 12) & 0x3F));
    text += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (character & 0x3F));
  }
}

std::string FromUtf16(std::string_view bytes, bool bigEndian) {
  const auto unit = [&](std::size_t at) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    return static_cast<char32_t>(bigEndian ? first << 8 | second : second << 8 | first);
  };
  std::string text;
  text.reserve(bytes.size());
  std::size_t at = 0;
  for (; at + 1 < bytes.size(); at += 2) {
    const char32_t code = unit(at);
    if (code < 0xD800 || code > 0xDFFF) {
      AppendUtf8(text, code);
      continue;
    }
    const char32_t low = code <= 0xDBFF && at + 3 < bytes.size() ? unit(at + 2) : 0;
    const bool pair = low >= 0xDC00 && low <= 0xDFFF;
    AppendUtf8(text, pair ? 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00) : kUnreadable);
    if (pair) at += 2;
  }
  if (at < bytes.size()) AppendUtf8(text, kUnreadable);
  return text;
}

std::string ToUtf16(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size() * 2);
  const auto add = [&out](char32_t unit) {
    out += static_cast<char>(unit & 0xFF);
    out += static_cast<char>(unit >> 8);
  };
  while (!utf8.empty()) {
    char32_t c = TakeUtf8(utf8);
    if (c == kInvalid) c = kUnreadable;
    if (c < 0x10000) {
      add(c);
    } else {
      add(0xD800 + ((c - 0x10000) >> 10));
      add(0xDC00 + ((c - 0x10000) & 0x3FF));
    }
  }
  return out;
}

std::string DecodeText(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  return IsUtf8(bytes) ? std::string(bytes) : FromCp1252(bytes);
}

std::vector<std::string> SplitMarked(std::string_view list, char mark) {
  std::vector<std::string> names;
  while (!list.empty()) {
    const std::size_t end = list.find(mark);
    names.emplace_back(list.substr(0, end));
    if (end == std::string_view::npos) break;
    list.remove_prefix(end + 1);
  }
  return names;
}

std::string JoinMarked(const std::vector<std::string>& names, char mark) {
  std::string list;
  for (const std::string& name : names) list += name + mark;
  return list;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (;;) {
    const std::size_t end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

}  // namespace vellumark
