#include "jetreader/table_source.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/datafile/jet/jet_format.h"

namespace vellumark::jet {
namespace {

constexpr std::size_t kMapPageHead = 4;

// Adds the pages of a map whose bits begin with that page.
void AddBits(std::vector<std::uint32_t>& pages, std::string_view bits, std::uint32_t first) {
  for (std::size_t byte = 0; byte < bits.size(); ++byte)
    for (unsigned bit = 0; bit < 8; ++bit)
      if ((static_cast<unsigned char>(bits[byte]) >> bit & 1U) != 0)
        pages.push_back(first + static_cast<std::uint32_t>(byte * 8 + bit));
}

}  // namespace

TableSource::TableSource(Source& source, std::uint32_t definition) : source_(source), definition_(definition) {
  const MdbFormatConstants& format = *source.Handle()->fmt;
  const std::string_view page = source.Page(definition);
  if (page[0] != MDB_PAGE_TABLE) throw Unreadable("the page holds no definition of a table");
  entry_.mdb = source.Handle();
  entry_.object_type = MDB_TABLE;
  entry_.table_pg = definition;
  table_ = mdb_alloc_tabledef(&entry_);
  table_->num_rows = Read<std::uint32_t>(page, format.tab_num_rows_offset);
  table_->num_var_cols = Read<std::uint16_t>(page, format.tab_num_cols_offset - 2U);
  table_->num_cols = Read<std::uint16_t>(page, format.tab_num_cols_offset);
  table_->num_idxs = Read<std::uint32_t>(page, format.tab_num_idxs_offset);
  table_->num_real_idxs = Read<std::uint32_t>(page, format.tab_num_ridxs_offset);
  map_ = Read<std::uint32_t>(page, format.tab_usage_map_offset);
  constexpr unsigned kMostIndexes = 64;
  if (table_->num_cols == 0 || table_->num_cols >= MDB_MAX_COLS || table_->num_real_idxs > kMostIndexes)
    throw Unreadable("the definition of the table is damaged");
  if (mdb_read_columns(table_) == nullptr || table_->columns->len != table_->num_cols)
    throw Unreadable("the fields of the table cannot be read");
  fields_.resize(table_->num_cols);
}

TableSource::~TableSource() {
  mdb_free_tabledef(table_);
}

JetTable TableSource::Table() const {
  JetTable table;
  table.page = definition_;
  table.rows = table_->num_rows;
  for (unsigned i = 0; i < table_->num_cols; ++i) {
    const auto* column = static_cast<const MdbColumn*>(g_ptr_array_index(table_->columns, i));
    JetColumn told{column->name, static_cast<JetType>(column->col_type), 0};
    if (told.type == JetType::Binary) told.size = column->col_size;
    if (told.type == JetType::Text) told.size = source_.IsOld() ? column->col_size : column->col_size / 2;
    table.columns.push_back(std::move(told));
  }
  return table;
}

void TableSource::AddMapped(std::vector<std::uint32_t>& pages) {
  constexpr char kPagesHere = 0;
  constexpr char kMapsElsewhere = 1;
  const Pointer pointer(map_);
  const std::string_view page = source_.Page(pointer.page);
  if (!Source::IsDataPage(page)) throw Unreadable("its map of pages is not where it should be");
  const std::string map(Source::BytesOf(page, source_.RowOf(page, pointer.row)));
  if (map.size() >= 5 && map[0] == kPagesHere) {
    AddBits(pages, std::string_view(map).substr(5), Read<std::uint32_t>(map, 1));
    return;
  }
  if (map.empty() || map[0] != kMapsElsewhere) throw Unreadable("its map of pages is damaged");
  const auto onOne = static_cast<std::uint32_t>((source_.PageSize() - kMapPageHead) * 8);
  std::uint32_t first = 0;
  for (std::size_t at = 1; at + 4 <= map.size(); at += 4, first += onOne) {
    const auto number = Read<std::uint32_t>(map, at);
    if (number == 0) continue;
    const std::string_view bits = source_.Page(number);
    if (bits[0] != MDB_PAGE_MAP) throw Unreadable(fmt::format("page {} of its map of pages is damaged", number));
    AddBits(pages, bits.substr(kMapPageHead), first);
  }
}

std::vector<std::uint32_t> TableSource::ListedPages(JetDamage& fault) {
  std::vector<std::uint32_t> pages;
  try {
    AddMapped(pages);
  } catch (const Unreadable& e) {
    fault = {{}, Pointer(map_).page, {}, {}, fmt::format("{}; its rows were sought in the whole file", e.what())};
    const std::vector<std::uint32_t> strays = StrayPages(pages);
    pages.insert(pages.end(), strays.begin(), strays.end());
    std::ranges::sort(pages);
  }
  return pages;
}

std::vector<std::uint32_t> TableSource::StrayPages(const std::vector<std::uint32_t>& listed) {
  std::vector<std::uint32_t> pages;
  for (std::uint32_t number = 1; number < source_.Pages(); ++number) {
    const std::string_view page = source_.Page(number);
    if (Source::IsDataPage(page) && Source::OwnerOf(page) == definition_ && !std::ranges::binary_search(listed, number))
      pages.push_back(number);
  }
  return pages;
}

void TableSource::TellRows(StreamWriter& out, std::uint32_t page, int fromRow, bool careful) {
  int rows = 0;
  try {
    const std::string_view bytes = source_.Page(page);
    // A map lists pages of other kinds too: of indexes, of long values.
    constexpr char kLastKind = MDB_PAGE_MAP;
    if (bytes[0] == MDB_PAGE_DB || bytes[0] > kLastKind) throw Unreadable("it is no page of a Jet file any more");
    if (!Source::IsDataPage(bytes) || bytes.substr(4, 4) == "LVAL") return;
    if (Source::OwnerOf(bytes) != definition_) throw Unreadable("it belongs to another table");
    rows = source_.RowsOn(bytes);
    const auto most = static_cast<int>(bytes.size() / 2);
    if (rows > most) throw Unreadable("it is damaged: no page has that many rows");
  } catch (const Unreadable& e) {
    out.Damage({{}, page, {}, {}, e.what()});
    return;
  }
  for (int row = fromRow; row < rows; ++row) {
    if (careful) out.At(page, row);
    TellRow(out, page, row);
  }
}

std::optional<Source::Row> TableSource::Locate(std::uint32_t page, int row) {
  constexpr int kMostSteps = 4;
  std::string_view bytes = source_.Page(page);
  if (source_.IsDeleted(bytes, row)) return std::nullopt;
  Source::Row found = source_.RowOf(bytes, row);
  for (int step = 0; found.elsewhere; ++step) {
    if (step == kMostSteps || found.size < 4) throw Unreadable("the row is not where it was moved to");
    // There it is marked as deleted, so that only who comes this way sees it.
    const Pointer moved(Read<std::uint32_t>(bytes, found.start));
    bytes = source_.Page(moved.page);
    if (!Source::IsDataPage(bytes) || Source::OwnerOf(bytes) != definition_)
      throw Unreadable("the row is not where it was moved to");
    found = source_.RowOf(bytes, moved.row);
  }
  return found;
}

Value TableSource::FieldValue(std::size_t number, const MdbField& field) {
  const auto* column = static_cast<const MdbColumn*>(g_ptr_array_index(table_->columns, number));
  if (column->col_type == MDB_BOOL) return field.is_null != 0 ? 0 : 1;
  if (field.is_null != 0) return {};
  const MdbHandle* handle = source_.Handle();
  const auto* value = static_cast<const unsigned char*>(field.value);
  if (value < handle->pg_buf || field.siz < 0 || value + field.siz > handle->pg_buf + source_.PageSize())
    throw Unreadable("the field does not lie within its row");
  return ValueOf(source_, *column, {reinterpret_cast<const char*>(value), static_cast<std::size_t>(field.siz)});
}

void TableSource::TellRow(StreamWriter& out, std::uint32_t page, int row) {
  JetRow told{{}, page, row, false};
  try {
    const std::optional<Source::Row> place = Locate(page, row);
    if (!place) return;
    if (mdb_crack_row(table_, static_cast<int>(place->start), place->size, fields_.data()) <= 0)
      throw Unreadable("the row is damaged");
  } catch (const Unreadable& e) {
    out.Damage({{}, page, row, {}, e.what()});
    return;
  }
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const auto* column = static_cast<const MdbColumn*>(g_ptr_array_index(table_->columns, i));
    std::string fault;
    try {
      Value value = FieldValue(i, fields_[i]);
      const bool memo = column->col_type == MDB_MEMO;
      if ((memo || column->col_type == MDB_OLE) && value.IsText()) {
        const std::string bytes = LongBytes(source_, std::get<std::string>(value.Held()), fault);
        value = memo ? source_.Text(bytes) : bytes;
      }
      told.values.push_back(std::move(value));
    } catch (const Unreadable& e) {
      told.values.emplace_back();
      fault = e.what();
    }
    if (fault.empty()) continue;
    told.damaged = true;
    out.Damage({{}, page, row, column->name, fault});
  }
  out.Row(told);
}

}  // namespace vellumark::jet
