#include "core/datafile/jet/jet_stream.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace vellumark::jet {
namespace {

enum class Holds : std::uint8_t { Null, Whole, Number, Text };

constexpr std::uint32_t kNoPage = 0xFFFFFFFF;
constexpr std::int32_t kNoRow = -1;
constexpr std::uint32_t kLongestText = 1U << 28;
constexpr std::uint16_t kMostColumns = 1024;

}  // namespace

template <class T>
void StreamWriter::Put(T value) {
  // Whoever asked has gone: there is nobody to tell.
  if (std::fwrite(&value, sizeof value, 1, file_) != 1) std::_Exit(1);
}

void StreamWriter::Put(std::string_view text) {
  Put(static_cast<std::uint32_t>(text.size()));
  if (std::fwrite(text.data(), 1, text.size(), file_) != text.size()) std::_Exit(1);
}

void StreamWriter::Put(const Value& value) {
  if (value.IsNull()) {
    Put(Holds::Null);
  } else if (value.IsWhole()) {
    Put(Holds::Whole);
    Put(value.Whole());
  } else if (value.IsNumber()) {
    Put(Holds::Number);
    Put(value.Number());
  } else {
    Put(Holds::Text);
    Put(std::string_view(std::get<std::string>(value.Held())));
  }
}

void StreamWriter::Flush() {
  if (std::fflush(file_) != 0) std::_Exit(1);
}

void StreamWriter::At(std::uint32_t page, int row) {
  Put(Tells::At);
  Put(page);
  Put(static_cast<std::int32_t>(row));
  Flush();
}

void StreamWriter::Table(const JetTable& table) {
  Put(Tells::Table);
  Put(table.page);
  Put(table.rows);
  Put(static_cast<std::uint16_t>(table.columns.size()));
  for (const JetColumn& column : table.columns) {
    Put(std::string_view(column.name));
    Put(static_cast<std::uint8_t>(column.type));
    Put(static_cast<std::int32_t>(column.size));
  }
}

void StreamWriter::Damage(const JetDamage& damage) {
  Put(Tells::Damage);
  Put(damage.page.value_or(kNoPage));
  Put(static_cast<std::int32_t>(damage.row.value_or(kNoRow)));
  Put(std::string_view(damage.field));
  Put(std::string_view(damage.what));
}

void StreamWriter::Row(const JetRow& row) {
  Put(Tells::Row);
  Put(row.page);
  Put(static_cast<std::int32_t>(row.row));
  Put(static_cast<std::uint8_t>(row.damaged));
  for (const Value& value : row.values) Put(value);
}

void StreamWriter::End() {
  Put(Tells::End);
  Flush();
}

void StreamReader::Bytes(char* to, std::size_t size) {
  while (size > 0) {
    if (at_ == end_) {
      at_ = 0;
      end_ = source_(buffer_.data(), buffer_.size());
      if (end_ == 0) throw BrokenStream("broken off");
    }
    const std::size_t piece = std::min(size, end_ - at_);
    std::memcpy(to, buffer_.data() + at_, piece);
    at_ += piece;
    to += piece;
    size -= piece;
  }
}

template <class T>
T StreamReader::Get() {
  T value{};
  Bytes(reinterpret_cast<char*>(&value), sizeof value);
  return value;
}

std::string StreamReader::Text() {
  auto left = Get<std::uint32_t>();
  if (left > kLongestText) throw BrokenStream("no text is that long");
  std::string text;
  // It takes the memory of what really comes.
  while (left > 0) {
    const auto piece = std::min<std::uint32_t>(left, kBuffer);
    const std::size_t before = text.size();
    text.resize(before + piece);
    Bytes(text.data() + before, piece);
    left -= piece;
  }
  return text;
}

Tells StreamReader::Next() {
  return Get<Tells>();
}

void StreamReader::At(std::uint32_t& page, int& row) {
  page = Get<std::uint32_t>();
  row = Get<std::int32_t>();
}

JetTable StreamReader::Table() {
  JetTable table;
  table.page = Get<std::uint32_t>();
  table.rows = Get<std::int64_t>();
  const auto columns = Get<std::uint16_t>();
  if (columns > kMostColumns) throw BrokenStream("no table has that many fields");
  for (int i = 0; i < columns; ++i) {
    JetColumn column;
    column.name = Text();
    column.type = static_cast<JetType>(Get<std::uint8_t>());
    column.size = Get<std::int32_t>();
    table.columns.push_back(std::move(column));
  }
  return table;
}

JetDamage StreamReader::Damage() {
  JetDamage damage;
  if (const auto page = Get<std::uint32_t>(); page != kNoPage) damage.page = page;
  if (const auto row = Get<std::int32_t>(); row != kNoRow) damage.row = row;
  damage.field = Text();
  damage.what = Text();
  return damage;
}

void StreamReader::Row(JetRow& row) {
  row.page = Get<std::uint32_t>();
  row.row = Get<std::int32_t>();
  row.damaged = Get<std::uint8_t>() != 0;
  for (Value& value : row.values) {
    switch (Get<Holds>()) {
      case Holds::Null:
        value = {};
        break;
      case Holds::Whole:
        value = Get<std::int64_t>();
        break;
      case Holds::Number:
        value = Get<double>();
        break;
      case Holds::Text:
        value = Text();
        break;
      default:
        throw BrokenStream("no kind of value");
    }
  }
}

}  // namespace vellumark::jet
