#include "core/datafile/jet/jet_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "core/base/refusal.h"
#include "core/base/text.h"
#include "core/base/unicode.h"
#include "core/datafile/jet/jet_format.h"
#include "core/datafile/jet/jet_pages.h"

namespace vellumark {

using jet::DataPage;
using jet::Definition;
using jet::Field;
using jet::FieldBytes;
using jet::PageSet;
using jet::PointerTo;

namespace {

constexpr std::uint32_t kMostPages = 1U << 19;  // 2 GB
constexpr std::size_t kMapsOnPage = (jet::kPageBytes - 14) / (PageSet::kRowBytes + 2);
constexpr std::string_view kNarrow = "\xFF\xFE";  // begins a text without the high bytes of its characters
constexpr std::size_t kLongestNarrowMemo = 1024;  // characters

// A byte order mark in front would be taken for the sign of the narrow form.
std::string EncodedText(std::string_view utf8, std::size_t longestNarrow = std::numeric_limits<std::size_t>::max()) {
  std::string wide = ToUtf16(utf8);
  while (wide.starts_with(kNarrow)) wide.erase(0, kNarrow.size());
  const std::size_t characters = wide.size() / 2;
  bool narrow = characters > kNarrow.size() && characters <= longestNarrow;
  for (std::size_t i = 0; narrow && i < wide.size(); i += 2) narrow = wide[i] != 0 && wide[i + 1] == 0;
  if (!narrow) return wide;
  std::string bytes(kNarrow);
  for (std::size_t i = 0; i < wide.size(); i += 2) bytes += wide[i];
  return bytes;
}

template <class T>
std::string BytesOf(T value) {
  std::string bytes;
  jet::Append(bytes, value);
  return bytes;
}

template <class T>
std::string WholeBytes(const Value& value, const JetColumn& column) {
  const std::int64_t whole = value.Whole();
  if (!value.IsWhole() || whole < std::numeric_limits<T>::min() || whole > std::numeric_limits<T>::max())
    throw BadValue(fmt::format("{}: {} is no value of its type in a Jet file", column.name, value.Text()));
  return BytesOf(static_cast<T>(whole));
}

std::uint16_t LengthOf(const JetColumn& column) {
  switch (column.type) {
    case JetType::Boolean:
    case JetType::Byte:
      return 1;
    case JetType::Integer:
      return 2;
    case JetType::Long:
    case JetType::Single:
      return 4;
    case JetType::Currency:
    case JetType::Double:
    case JetType::Date:
      return 8;
    case JetType::Guid:
      return 16;
    case JetType::Numeric:
      return 17;
    case JetType::Text:
      return static_cast<std::uint16_t>(column.size * 2);
    case JetType::Binary:
      return static_cast<std::uint16_t>(column.size);
    case JetType::Memo:
    case JetType::Ole:
      break;
  }
  return 0;
}

// Of a value that stands in the row itself.
std::string ShortBytes(const Value& value, const JetColumn& column) {
  const auto longest = [&](std::string bytes, std::size_t size, std::size_t most) {
    if (size > most) throw BadValue(fmt::format("{}: a text of {} does not go into {}", column.name, size, most));
    return bytes;
  };
  switch (column.type) {
    case JetType::Byte:
      return WholeBytes<std::uint8_t>(value, column);
    case JetType::Integer:
      return WholeBytes<std::int16_t>(value, column);
    case JetType::Long:
      return WholeBytes<std::int32_t>(value, column);
    case JetType::Currency:
      return WholeBytes<std::int64_t>(value, column);
    case JetType::Single:
      return BytesOf(value.Single());
    case JetType::Text:
      return longest(EncodedText(value.Text()), ToUtf16(value.Text()).size() / 2,
                     static_cast<std::size_t>(column.size));
    case JetType::Binary:
    case JetType::Guid:
    case JetType::Numeric:
      return longest(value.Text(), value.Text().size(), LengthOf(column));
    default:
      return BytesOf(value.Number());
  }
}

std::vector<Field> FieldsOf(const std::vector<JetColumn>& columns) {
  constexpr std::uint8_t kFixed = 0x03;
  constexpr std::uint8_t kVarying = 0x02;
  std::vector<Field> fields;
  std::uint16_t offset = 0;
  std::uint16_t var = 0;
  for (const JetColumn& column : columns) {
    Field field{column.name, column.type,     static_cast<std::uint16_t>(fields.size()), var, kVarying,
                0,           LengthOf(column)};
    const bool fixed = column.type != JetType::Text && column.type != JetType::Binary && !field.IsLong();
    if (fixed) {
      field.flags = kFixed;
      if (column.type != JetType::Boolean) {
        field.offset = offset;
        offset = static_cast<std::uint16_t>(offset + field.length);
      }
    } else if (!field.IsLong()) {
      ++var;
    }
    fields.push_back(std::move(field));
  }
  // Those of long values come last.
  for (Field& field : fields)
    if (field.IsLong()) field.var = var++;
  return fields;
}

}  // namespace

namespace jet {

/// Writes the rows of one table.
class TableWriter {
 public:
  TableWriter(JetWriter& file, const std::vector<JetColumn>& columns) : file_(file), columns_(columns) {
    definition_.fields = FieldsOf(columns);
    const auto longs = static_cast<std::size_t>(std::ranges::count_if(definition_.fields, &Field::IsLong));
    definition_.longMaps.resize(longs * 2);
    values_.resize(columns.size());
    longPages_.resize(longs);
    longSets_.resize(longs);
    for (std::size_t i = 0; i < PagesOf(definition_.Bytes()); ++i) pages_.push_back(file.NewPage());
    // Rows with maps: of its pages, of those with room (which nobody is told of), and both of each long field.
    const std::size_t maps = 2 + longs * 2;
    for (std::size_t i = 0; i < maps; i += kMapsOnPage) mapPages_.push_back(file.NewPage());
    definition_.owned = MapPointer(0);
    definition_.free = MapPointer(1);
    for (std::size_t i = 0; i < longs * 2; ++i) definition_.longMaps[i] = MapPointer(2 + i);
  }

  std::uint32_t Page() const { return pages_.front(); }

  void Add(std::span<const Value> row) {
    std::size_t longField = 0;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const bool isLong = definition_.fields[i].IsLong();
      const std::size_t place = longField;
      if (isLong) ++longField;
      values_[i] = {};
      if (row[i].IsNull()) continue;
      if (columns_[i].type == JetType::Boolean)
        values_[i].null = !row[i].Bool();
      else
        values_[i] = {isLong ? LongValue(row[i], columns_[i].type, place) : ShortBytes(row[i], columns_[i]), false};
    }
    const std::string bytes = RowBytes(definition_.fields, values_);
    if (bytes.size() > JetWriter::kLongestRow)
      throw BadValue(fmt::format("a row of {} bytes does not go into a Jet file", bytes.size()));
    AddTo(rows_, Page(), set_, bytes);
    ++definition_.rows;
  }

  void End() {
    if (rows_) file_.WritePage(rows_->Number(), rows_->Bytes());
    for (const auto& page : longPages_)
      if (page) file_.WritePage(page->Number(), page->Bytes());
    std::vector<std::string> maps{MapRow(set_), MapRow({})};
    for (const PageSet& set : longSets_) {
      maps.push_back(MapRow(set));
      maps.push_back(MapRow({}));
    }
    for (std::size_t i = 0; i < mapPages_.size(); ++i) {
      DataPage page(mapPages_[i], 0);
      for (std::size_t m = i * kMapsOnPage; m < std::min(maps.size(), (i + 1) * kMapsOnPage); ++m) page.Add(maps[m]);
      file_.WritePage(page.Number(), page.Bytes());
    }
    const std::vector<std::string> pages = DefinitionPages(definition_.Bytes(), pages_);
    for (std::size_t i = 0; i < pages.size(); ++i) file_.WritePage(pages_[i], pages[i]);
  }

 private:
  std::uint32_t MapPointer(std::size_t map) const { return PointerTo(mapPages_[map / kMapsOnPage], map % kMapsOnPage); }

  std::string MapRow(const PageSet& set) {
    return set.Row([this](const std::string& page) {
      const std::uint32_t number = file_.NewPage();
      file_.WritePage(number, page);
      return number;
    });
  }

  // On the page under way, or on the next one; where it stands.
  std::uint32_t AddTo(std::optional<DataPage>& page, std::uint32_t owner, PageSet& set, std::string_view row) {
    if (!page || !page->Fits(row.size())) {
      if (page) file_.WritePage(page->Number(), page->Bytes());
      page.emplace(file_.NewPage(), owner);
      set.Add(page->Number());
    }
    return PointerTo(page->Number(), page->Add(row));
  }

  std::string LongValue(const Value& value, JetType type, std::size_t field) {
    constexpr std::uint32_t kInline = 0x80000000;
    constexpr std::uint32_t kOneRow = 0x40000000;
    constexpr std::uint32_t kLongest = 0x3FFFFFFF;
    const std::string bytes = type == JetType::Memo ? EncodedText(value.Text(), kLongestNarrowMemo) : value.Text();
    if (bytes.size() > kLongest) throw BadValue("a text is longer than a Jet file can hold");
    const auto length = static_cast<std::uint32_t>(bytes.size());
    const auto head = [](std::uint32_t told, std::uint32_t pointer) {
      return BytesOf(told) + BytesOf(pointer) + BytesOf(std::uint32_t{0});
    };
    if (bytes.size() <= JetWriter::kInlineMemo) return head(length | kInline, 0) + bytes;
    constexpr std::size_t kWhole = 4076;
    if (bytes.size() <= kWhole) return head(length | kOneRow, AddLong(field, bytes));
    return head(length, Chain(field, bytes));
  }

  std::uint32_t AddLong(std::size_t field, std::string_view row) {
    return AddTo(longPages_[field], kLongValueOwner, longSets_[field], row);
  }

  // The pieces but the last fill a page each.
  std::uint32_t Chain(std::size_t field, std::string_view bytes) {
    constexpr std::size_t kPiece = 4072;
    const std::size_t full = (bytes.size() - 1) / kPiece;
    std::uint32_t next = AddLong(field, BytesOf(std::uint32_t{0}) + std::string(bytes.substr(full * kPiece)));
    for (std::size_t i = full; i-- > 0;) {
      DataPage page(file_.NewPage(), kLongValueOwner);
      longSets_[field].Add(page.Number());
      const std::size_t row = page.Add(BytesOf(next) + std::string(bytes.substr(i * kPiece, kPiece)));
      file_.WritePage(page.Number(), page.Bytes());
      next = PointerTo(page.Number(), row);
    }
    return next;
  }

  JetWriter& file_;
  std::vector<JetColumn> columns_;
  Definition definition_;
  std::vector<std::uint32_t> pages_;
  std::vector<std::uint32_t> mapPages_;
  std::vector<FieldBytes> values_;
  std::optional<DataPage> rows_;
  PageSet set_;
  std::vector<std::optional<DataPage>> longPages_;
  std::vector<PageSet> longSets_;
};

}  // namespace jet

JetWriter::JetWriter(const std::filesystem::path& file, const DateTime& made)
    : path_(file), made_(made), stream_(file, std::ios::binary | std::ios::trunc), pages_(kFirstPage) {
  if (!stream_) throw Failure(path_.string(), "cannot be written");
}

JetWriter::~JetWriter() = default;

std::size_t JetWriter::TextBytes(std::string_view utf8) {
  return EncodedText(utf8).size();
}

std::uint32_t JetWriter::NewPage() {
  if (pages_ == kMostPages) throw Failure(path_.string(), "a Jet file cannot get larger than 2 GB");
  return pages_++;
}

void JetWriter::WritePage(std::uint32_t page, std::string_view bytes) {
  stream_.seekp(static_cast<std::streamoff>(page) * static_cast<std::streamoff>(jet::kPageBytes));
  stream_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!stream_) throw Failure(path_.string(), "cannot be written; the disk may be full");
}

void JetWriter::BeginTable(std::string_view name, const std::vector<JetColumn>& columns) {
  EndTable();
  jet::KeyOf(name);
  if (columns.empty() || columns.size() > kMostColumns)
    throw BadValue(fmt::format("a table of a Jet file has 1 to {} fields, not {}", kMostColumns, columns.size()));
  table_ = std::make_unique<jet::TableWriter>(*this, columns);
  tables_.push_back({std::string(name), table_->Page()});
}

void JetWriter::Add(std::span<const Value> row) {
  table_->Add(row);
}

void JetWriter::EndTable() {
  if (table_) table_->End();
  table_.reset();
}

void JetWriter::Finish() {
  EndTable();
  WriteSystem();
  stream_.close();
  if (!stream_) throw Failure(path_.string(), "cannot be written; the disk may be full");
}

}  // namespace vellumark
