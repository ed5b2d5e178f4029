#pragma once

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "core/base/text.h"
#include "core/datafile/jet/jet_format.h"
#include "support/jet_room.h"

namespace vellumark::test {

/// Makes a Jet file of version 3, as ink rooms had them in the nineties: no more of it than what is read, the tables
/// with their pages and the list of them.
class OldJetFile {
 public:
  explicit OldJetFile(const std::vector<JetTableRows>& tables) {
    for (std::uint32_t page = 0; page <= jet::kCatalogPage; ++page) NewPage();
    JetTableRows catalog{"MSysObjects",
                         {{"Id", JetType::Long},
                          {"Name", JetType::Text, 64},
                          {"Type", JetType::Integer},
                          {"Flags", JetType::Long},
                          {"LvProp", JetType::Ole}},
                         {{2, "MSysObjects", 1, std::int64_t{-0x7FFFFFFF - 1}, {}}}};
    for (const JetTableRows& table : tables) {
      const std::uint32_t page = NewPage();
      Write(table, page);
      catalog.rows.push_back({page, table.name, 1, 0, {}});
    }
    Write(catalog, jet::kCatalogPage);
    std::string head(kPage, '\0');
    head[1] = 1;
    head.replace(jet::kSignatureAt, jet::kSignature.size(), jet::kSignature);
    jet::Put(head, 0x3C, std::uint16_t{1252});
    jet::MaskHeader(head);
    bytes_.replace(0, kPage, head);
  }
  void Save(const std::filesystem::path& file) const { std::ofstream(file, std::ios::binary) << bytes_; }

 private:
  static constexpr std::size_t kPage = 2048;
  static constexpr std::uint32_t kLongOwner = 0x4C41564C;

  struct Packed {
    std::uint32_t page = 0;  // none yet
    std::size_t rows = 0;
    std::size_t start = kPage;
  };

  std::uint32_t NewPage() {
    bytes_.append(kPage, '\0');
    return static_cast<std::uint32_t>(bytes_.size() / kPage - 1);
  }
  template <class T>
  void Put(std::uint32_t page, std::size_t at, T value) {
    jet::Put(bytes_, page * kPage + at, value);
  }

  // A pointer to the row.
  std::uint32_t AddRow(Packed& to, std::uint32_t owner, const std::string& row, std::vector<std::uint32_t>& pages) {
    constexpr std::size_t kHead = 10;
    if (to.page == 0 || kHead + (to.rows + 1) * 2 + row.size() > to.start) {
      to = {NewPage()};
      pages.push_back(to.page);
      Put(to.page, 0, std::uint16_t{0x0101});
      Put(to.page, 4, owner);
    }
    to.start -= row.size();
    bytes_.replace(to.page * kPage + to.start, row.size(), row);
    Put(to.page, kHead + to.rows * 2, static_cast<std::uint16_t>(to.start));
    Put(to.page, 8, static_cast<std::uint16_t>(++to.rows));
    return to.page << 8 | static_cast<std::uint32_t>(to.rows - 1);
  }

  static bool IsLong(const JetColumn& column) { return column.type == JetType::Memo || column.type == JetType::Ole; }
  static bool IsVarying(const JetColumn& column) {
    return IsLong(column) || column.type == JetType::Text || column.type == JetType::Binary;
  }
  static std::uint16_t Width(JetType type) {
    switch (type) {
      case JetType::Byte:
        return 1;
      case JetType::Integer:
        return 2;
      case JetType::Long:
      case JetType::Single:
        return 4;
      case JetType::Boolean:
        return 0;
      default:
        return 8;
    }
  }
  static std::string Fixed(const Value& value, JetType type) {
    std::string bytes;
    if (type == JetType::Single)
      jet::Append(bytes, value.Single());
    else if (type == JetType::Double || type == JetType::Date)
      jet::Append(bytes, value.Number());
    else
      jet::Append(bytes, value.Whole());
    return bytes.substr(0, Width(type));
  }

  std::string Long(const std::string& text, Packed& to, std::vector<std::uint32_t>& pages) {
    constexpr std::size_t kPiece = 2028;
    const auto length = static_cast<std::uint32_t>(text.size());
    std::uint32_t kind = 0;
    std::uint32_t pointer = 0;
    if (length <= 64) {
      kind = 0x80000000;
    } else if (length <= kPiece) {
      kind = 0x40000000;
      pointer = AddRow(to, kLongOwner, text, pages);
    } else {
      for (std::size_t piece = (length - 1) / kPiece + 1; piece-- > 0;) {
        std::string row;
        jet::Append(row, pointer);
        pointer = AddRow(to, kLongOwner, row + text.substr(piece * kPiece, kPiece), pages);
      }
    }
    std::string bytes;
    for (const std::uint32_t part : {length | kind, pointer, 0U}) jet::Append(bytes, part);
    return kind == 0x80000000 ? bytes + text : bytes;
  }

  // Places have one byte: which field is the first beyond each 256 bytes of the row tells a table of its own.
  static std::string Row(std::size_t columns, const std::string& fixed, const std::vector<std::string>& varying,
                         const std::string& mask) {
    std::string row(1, static_cast<char>(columns));
    row += fixed;
    if (varying.empty()) return row + mask;
    std::vector<std::size_t> places;
    for (const std::string& value : varying) {
      places.push_back(row.size());
      row += value;
    }
    places.push_back(row.size());
    for (std::size_t i = places.size(); i-- > 0;) row += static_cast<char>(places[i]);
    const std::size_t less = row.size() + 1 + mask.size();
    std::size_t jumps = 0;
    while (jumps < (less + jumps - 1) / 256) ++jumps;
    for (std::size_t jump = jumps; jump > 0; --jump) {
      const auto first = std::ranges::lower_bound(places, jump * 256);
      row += static_cast<char>(first == places.end() ? 0xFF : first - places.begin());
    }
    return row + static_cast<char>(varying.size()) + mask;
  }

  void Write(const JetTableRows& table, std::uint32_t definition) {
    Packed rows, longs;
    std::vector<std::uint32_t> pages, longPages;
    for (const auto& values : table.rows) {
      std::string fixed;
      std::vector<std::string> varying, last;
      std::string mask((values.size() + 7) / 8, '\0');
      for (std::size_t i = 0; i < values.size(); ++i) {
        const JetColumn& column = table.columns[i];
        const bool set = column.type == JetType::Boolean ? values[i].Bool() : !values[i].IsNull();
        if (set) mask[i / 8] = static_cast<char>(mask[i / 8] | 1 << i % 8);
        const std::string text = IsVarying(column) && set ? ToCp1252(values[i].Text()) : "";
        if (IsLong(column))
          last.push_back(set ? Long(text, longs, longPages) : "");
        else if (IsVarying(column))
          varying.push_back(text);
        else
          fixed += Fixed(values[i], column.type);
      }
      varying.insert(varying.end(), last.begin(), last.end());
      AddRow(rows, definition, Row(values.size(), fixed, varying, mask), pages);
    }
    Define(table, definition, pages);
  }

  void Define(const JetTableRows& table, std::uint32_t page, const std::vector<std::uint32_t>& pages) {
    // The map leads to a page of bits of its own.
    const std::uint32_t bits = NewPage();
    Put(bits, 0, std::uint16_t{0x0105});
    for (const std::uint32_t number : pages) {
      char& byte = bytes_[bits * kPage + 4 + number / 8];
      byte = static_cast<char>(byte | 1 << number % 8);
    }
    std::string map(1, '\1');
    jet::Append(map, bits);
    map.resize(133, '\0');
    Packed maps;
    std::vector<std::uint32_t> mapPages;
    const std::uint32_t owned = AddRow(maps, 0, map, mapPages);
    const std::uint32_t free = AddRow(maps, 0, std::string(133, '\0'), mapPages);

    const auto all = static_cast<std::uint16_t>(table.columns.size());
    const auto varying = static_cast<std::uint16_t>(std::ranges::count_if(table.columns, IsVarying));
    std::string d;
    jet::Append(d, static_cast<std::uint32_t>(table.rows.size()));
    jet::Append(d, 0U);
    d += 'N';
    for (const std::uint16_t count : {all, varying, all}) jet::Append(d, count);
    for (const std::uint32_t part : {0U, 0U, owned, free}) jet::Append(d, part);
    std::uint16_t offset = 0, var = 0, number = 0;
    auto longVar = static_cast<std::uint16_t>(varying - std::ranges::count_if(table.columns, IsLong));
    for (const JetColumn& column : table.columns) {
      const bool fixed = !IsVarying(column);
      d += static_cast<char>(column.type);
      for (const std::uint16_t part : {number, IsLong(column) ? longVar : var, number, std::uint16_t{0x409},
                                       std::uint16_t{0x4E4}, std::uint16_t{0}})
        jet::Append(d, part);
      d += static_cast<char>(fixed ? 3 : 2);
      const auto length =
          static_cast<std::uint16_t>(fixed ? std::max<std::uint16_t>(1, Width(column.type)) : column.size);
      for (const std::uint16_t part : {fixed ? offset : std::uint16_t{0}, length}) jet::Append(d, part);
      ++number;
      if (fixed)
        offset = static_cast<std::uint16_t>(offset + Width(column.type));
      else
        ++(IsLong(column) ? longVar : var);
    }
    for (const JetColumn& column : table.columns) d += static_cast<char>(column.name.size()) + ToCp1252(column.name);
    d += "\xFF\xFF";
    std::string length;
    jet::Append(length, static_cast<std::uint32_t>(d.size() + 4));
    d = length + d;

    constexpr std::size_t kRoom = kPage - 8;
    for (std::size_t at = 0; at < d.size(); at += kRoom) {
      const std::uint32_t next = at + kRoom < d.size() ? NewPage() : 0;
      bytes_.replace(page * kPage, 4, "\x02\x01VC");
      Put(page, 4, next);
      const std::string piece = d.substr(at, kRoom);
      bytes_.replace(page * kPage + 8, piece.size(), piece);
      page = next;
    }
  }

  std::string bytes_;
};

}  // namespace vellumark::test
