#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/jet/jet_file.h"

namespace vellumark::jet {

// The pages of a Jet file of version 4 as they are written.

inline constexpr std::size_t kPageBytes = 4096;
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C;  ///< "LVAL"

/// A row's number and its page in the four bytes that stand for them in the file.
constexpr std::uint32_t PointerTo(std::uint32_t page, std::size_t row) {
  return page << 8 | static_cast<std::uint32_t>(row);
}

/// A page of rows, packed from its end.
class DataPage {
 public:
  static constexpr std::size_t kLongest = kPageBytes - 14 - 2;

  DataPage(std::uint32_t number, std::uint32_t owner);
  bool Fits(std::size_t size) const { return rows_ < kMostRows && kHead + (rows_ + 1) * 2 + size <= start_; }
  /// The number of the row.
  std::size_t Add(std::string_view row);
  std::uint32_t Number() const { return number_; }
  std::size_t Rows() const { return rows_; }
  std::string Bytes() const;

 private:
  static constexpr std::size_t kHead = 14;
  static constexpr std::size_t kMostRows = 255;

  std::uint32_t number_;
  std::string bytes_;
  std::size_t rows_ = 0;
  std::size_t start_ = kPageBytes;
};

/// The pages that belong to something, a bit for each.
class PageSet {
 public:
  void Add(std::uint32_t page);
  bool Empty() const { return bits_.empty(); }
  /// What stands in the row of its map, which is always as long. `newPage` makes the page of a piece of a large map and
  /// answers its number.
  template <class NewPage>
  std::string Row(NewPage newPage) const {
    std::string row;
    if (OnOneRow(row)) return row;
    row.assign(1, '\1');
    for (std::size_t first = 0; first < bits_.size(); first += kBytesOfPiece) {
      const std::string_view piece = std::string_view(bits_).substr(first, kBytesOfPiece);
      const bool any = piece.find_first_not_of('\0') != std::string_view::npos;
      AppendNumber(row, any ? newPage(MapPage(piece)) : 0);
    }
    row.resize(kRowBytes, '\0');
    return row;
  }

  static constexpr std::size_t kRowBytes = 69;
  static constexpr std::size_t kBytesOfPiece = kPageBytes - 4;
  static std::string MapPage(std::string_view bits);

 private:
  static void AppendNumber(std::string& row, std::uint32_t number);
  bool OnOneRow(std::string& row) const;

  std::string bits_;
};

/// A field as it is defined in the file. `var` is its place among the fields of changing length, or the number of those
/// before it; `offset` that of a field of fixed length in the fixed part of the row.
struct Field {
  std::string name;
  JetType type = JetType::Text;
  std::uint16_t number = 0;
  std::uint16_t var = 0;
  std::uint8_t flags = 0;
  std::uint16_t offset = 0;
  std::uint16_t length = 0;

  bool IsFixed() const { return (flags & 0x01) != 0; }
  bool IsLong() const { return type == JetType::Memo || type == JetType::Ole; }
};

/// An index of a table of Jet's own; `logical` is its place in the order of names.
struct Index {
  std::string name;
  std::vector<std::uint16_t> columns;
  std::uint8_t flags = 0;
  std::uint8_t kind = 0;
  std::uint32_t root = 0;
  std::uint32_t map = 0;  ///< a pointer
  std::uint32_t entries = 0;
};

struct Definition {
  bool system = false;
  std::vector<Field> fields;
  std::vector<Index> indexes;                ///< in the order of their numbers
  std::vector<std::size_t> indexNames = {};  ///< their places in the order of names
  std::uint32_t owned = 0;                   ///< pointers to its maps
  std::uint32_t free = 0;
  std::vector<std::uint32_t> longMaps = {};  ///< owned and free of each long field
  std::uint32_t rows = 0;

  /// The bytes behind the first eight of its page.
  std::string Bytes() const;
};

/// The pages of a definition, which stand at these numbers; as many as `PagesOf` tells.
std::vector<std::string> DefinitionPages(const std::string& definition, const std::vector<std::uint32_t>& numbers);
std::size_t PagesOf(const std::string& definition);

/// The bytes of a row. Of each field its bytes, and whether it has a value.
struct FieldBytes {
  std::string bytes;
  bool null = true;
};
std::string RowBytes(const std::vector<Field>& fields, const std::vector<FieldBytes>& values);

/// The page of an index whose entries all have room on it: keys with the row that each leads to.
struct IndexEntry {
  std::string key;
  std::uint32_t page = 0;
  std::size_t row = 0;
};
std::string IndexPage(std::uint32_t owner, std::vector<IndexEntry> entries);
std::string KeyOf(std::int32_t whole);
/// Of letters, digits, blanks and underscores; throws BadValue for any other character.
std::string KeyOf(std::string_view text);

}  // namespace vellumark::jet
