#include "core/datafile/jet/jet_pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "core/base/refusal.h"
#include "core/base/unicode.h"
#include "core/datafile/jet/jet_format.h"

namespace vellumark::jet {
namespace {

constexpr std::uint32_t kMark = 1625;       // stands in every definition
constexpr std::uint32_t kIndexMark = 1923;  // and in that of every index
constexpr std::size_t kDefinitionHead = 8;
constexpr std::size_t kIndexHead = 480;
constexpr std::uint16_t kNoColumn = 0xFFFF;
constexpr std::size_t kColumnsOfIndex = 10;

template <class... T>
void AppendAll(std::string& bytes, T... values) {
  (Append(bytes, values), ...);
}

void AppendName(std::string& bytes, std::string_view name) {
  const std::string wide = ToUtf16(name);
  Append(bytes, static_cast<std::uint16_t>(wide.size()));
  bytes += wide;
}

void AppendField(std::string& bytes, const Field& field, bool system) {
  constexpr std::uint32_t kSortOrder = 0x0409;
  constexpr std::uint16_t kNumericDigits = 0x1C;  // 28, and no decimals
  const bool text = field.type == JetType::Text || field.type == JetType::Memo;
  AppendAll(bytes, static_cast<std::uint8_t>(field.type), kMark, field.number, field.var,
            system ? std::uint16_t{0} : field.number, field.type == JetType::Numeric ? kNumericDigits : kSortOrder,
            field.flags, static_cast<std::uint8_t>(text && !system ? 1 : 0), std::uint32_t{0}, field.offset,
            field.length);
}

void AppendIndex(std::string& bytes, const Index& index) {
  Append(bytes, kIndexMark);
  for (std::size_t i = 0; i < kColumnsOfIndex; ++i) {
    const bool used = i < index.columns.size();
    AppendAll(bytes, used ? index.columns[i] : kNoColumn, std::uint8_t{1});
  }
  AppendAll(bytes, index.map, index.root, std::uint32_t{0}, index.flags);
  bytes.append(5, '\0');
}

}  // namespace

DataPage::DataPage(std::uint32_t number, std::uint32_t owner) : number_(number), bytes_(kPageBytes, '\0') {
  bytes_[0] = bytes_[1] = 1;
  Put(bytes_, 4, owner);
}

std::size_t DataPage::Add(std::string_view row) {
  start_ -= row.size();
  bytes_.replace(start_, row.size(), row);
  Put(bytes_, kHead + rows_ * 2, static_cast<std::uint16_t>(start_));
  return rows_++;
}

std::string DataPage::Bytes() const {
  std::string bytes = bytes_;
  Put(bytes, 2, static_cast<std::uint16_t>(start_ - kHead - rows_ * 2));
  Put(bytes, 12, static_cast<std::uint16_t>(rows_));
  return bytes;
}

void PageSet::Add(std::uint32_t page) {
  if (bits_.size() <= page / 8) bits_.resize(page / 8 + 1, '\0');
  bits_[page / 8] = static_cast<char>(bits_[page / 8] | 1 << page % 8);
}

void PageSet::AppendNumber(std::string& row, std::uint32_t number) {
  Append(row, number);
}

std::string PageSet::MapPage(std::string_view bits) {
  std::string page("\x05\x01\0\0", 4);
  page += bits;
  page.resize(kPageBytes, '\0');
  return page;
}

bool PageSet::OnOneRow(std::string& row) const {
  row.assign(1, '\0');
  const std::size_t first = std::min(bits_.find_first_not_of('\0'), bits_.size());
  if (bits_.size() - first > kRowBytes - 5) return false;
  Append(row, static_cast<std::uint32_t>(first * 8));
  row += std::string_view(bits_).substr(first);
  row.resize(kRowBytes, '\0');
  return true;
}

std::string Definition::Bytes() const {
  const auto longFields = std::ranges::count_if(fields, &Field::IsLong);
  const auto varying = std::ranges::count_if(fields, [](const Field& f) { return !f.IsFixed(); });
  std::string bytes;
  AppendAll(bytes, std::uint32_t{0}, kMark, rows, std::uint32_t{0}, std::uint8_t{1});
  bytes.append(15, '\0');
  AppendAll(bytes, static_cast<std::uint8_t>(system ? 0x53 : 0x4E), static_cast<std::uint16_t>(fields.size()),
            static_cast<std::uint16_t>(varying), static_cast<std::uint16_t>(fields.size()),
            static_cast<std::uint32_t>(indexes.size()), static_cast<std::uint32_t>(indexes.size()), owned, free);
  for (const Index& index : indexes) AppendAll(bytes, std::uint32_t{0}, index.entries, std::uint32_t{0});
  for (const Field& field : fields) AppendField(bytes, field, system);
  for (const Field& field : fields) AppendName(bytes, field.name);
  for (const Index& index : indexes) AppendIndex(bytes, index);
  for (const std::size_t i : indexNames) {
    AppendAll(bytes, kMark, static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(i), std::uint8_t{0}, 0xFFFFFFFFU,
              std::uint32_t{0}, std::uint8_t{4}, std::uint8_t{4}, indexes[i].kind, std::uint32_t{0});
  }
  for (const std::size_t i : indexNames) AppendName(bytes, indexes[i].name);
  std::size_t map = 0;
  for (const Field& field : fields) {
    if (!field.IsLong()) continue;
    AppendAll(bytes, field.number, longMaps.at(map), longMaps.at(map + 1));
    map += 2;
  }
  if (map != static_cast<std::size_t>(longFields) * 2) throw std::logic_error("a long field has no maps");
  bytes += "\xFF\xFF";
  Put(bytes, 0, static_cast<std::uint32_t>(bytes.size()));
  return bytes;
}

std::size_t PagesOf(const std::string& definition) {
  constexpr std::size_t kRoom = kPageBytes - kDefinitionHead;
  return (definition.size() + kRoom - 1) / kRoom;
}

std::vector<std::string> DefinitionPages(const std::string& definition, const std::vector<std::uint32_t>& numbers) {
  constexpr std::size_t kRoom = kPageBytes - kDefinitionHead;
  std::vector<std::string> pages;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::string_view piece = std::string_view(definition).substr(i * kRoom, kRoom);
    std::string page("\x02\x01", 2);
    AppendAll(page, static_cast<std::uint16_t>(kRoom - piece.size()), i + 1 < numbers.size() ? numbers[i + 1] : 0U);
    page += piece;
    page.resize(kPageBytes, '\0');
    pages.push_back(std::move(page));
  }
  return pages;
}

std::string RowBytes(const std::vector<Field>& fields, const std::vector<FieldBytes>& values) {
  std::size_t fixed = 0;
  std::vector<std::size_t> varying;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (!fields[i].IsFixed())
      varying.push_back(i);
    else if (fields[i].type != JetType::Boolean)
      fixed = std::max<std::size_t>(fixed, fields[i].offset + fields[i].length);
  }
  std::ranges::sort(varying, {}, [&](std::size_t i) { return fields[i].var; });

  std::string row;
  Append(row, static_cast<std::uint16_t>(fields.size()));
  row.resize(2 + fixed, '\0');
  std::string mask((fields.size() + 7) / 8, '\0');
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (values[i].null) continue;
    char& byte = mask[fields[i].number / 8U];
    byte = static_cast<char>(byte | 1 << fields[i].number % 8);
    if (fields[i].IsFixed()) row.replace(2U + fields[i].offset, values[i].bytes.size(), values[i].bytes);
  }
  if (!varying.empty()) {
    std::vector<std::uint16_t> offsets;
    for (const std::size_t i : varying) {
      offsets.push_back(static_cast<std::uint16_t>(row.size()));
      if (!values[i].null) row += values[i].bytes;
    }
    Append(row, static_cast<std::uint16_t>(row.size()));
    std::ranges::reverse(offsets);
    for (const std::uint16_t offset : offsets) Append(row, offset);
    Append(row, static_cast<std::uint16_t>(offsets.size()));
  }
  return row + mask;
}

std::string IndexPage(std::uint32_t owner, std::vector<IndexEntry> entries) {
  constexpr std::size_t kRoom = kPageBytes - kIndexHead;
  constexpr std::size_t kMaskAt = 27;
  std::ranges::sort(entries, [](const IndexEntry& a, const IndexEntry& b) {
    return std::pair(std::string_view(a.key), PointerTo(a.page, a.row)) <
           std::pair(std::string_view(b.key), PointerTo(b.page, b.row));
  });
  std::string page(kIndexHead, '\0');
  page[0] = 4;
  page[1] = 1;
  Put(page, 4, owner);
  for (const IndexEntry& entry : entries) {
    page += entry.key;
    for (const int shift : {16, 8, 0}) page += static_cast<char>(entry.page >> shift);
    page += static_cast<char>(entry.row);
    const std::size_t end = page.size() - kIndexHead;
    if (end > kRoom) throw BadValue("a Jet file of this program cannot hold that many tables");
    page[kMaskAt + end / 8] = static_cast<char>(page[kMaskAt + end / 8] | 1 << end % 8);
  }
  Put(page, 2, static_cast<std::uint16_t>(kPageBytes - page.size()));
  page.resize(kPageBytes, '\0');
  return page;
}

std::string KeyOf(std::int32_t whole) {
  std::string key("\x7F");
  const auto bits = static_cast<std::uint32_t>(whole) ^ 0x80000000U;
  for (const int shift : {24, 16, 8, 0}) key += static_cast<char>(bits >> shift);
  return key;
}

std::string KeyOf(std::string_view text) {
  constexpr std::array<std::uint8_t, 26> kLetters{0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59,
                                                  0x5B, 0x5C, 0x5E, 0x60, 0x62, 0x64, 0x66, 0x68, 0x69,
                                                  0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78};
  std::string key("\x7F");
  for (const char c : text) {
    const char upper = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    if (upper >= 'A' && upper <= 'Z')
      key += static_cast<char>(kLetters[static_cast<std::size_t>(upper - 'A')]);
    else if (c >= '0' && c <= '9')
      key += static_cast<char>(0x36 + (c - '0') * 2);
    else if (c == ' ')
      key += '\x07';
    else if (c == '_')
      key += "\x2B\x03";
    else
      throw BadValue(fmt::format("\"{}\" cannot be the name of a table in a Jet file", text));
  }
  return key + std::string("\x01\0", 2);
}

}  // namespace vellumark::jet
