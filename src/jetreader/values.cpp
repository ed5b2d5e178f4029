#include <fmt/format.h>

#include <algorithm>

#include "core/datafile/jet/jet_format.h"
#include "jetreader/table_source.h"

namespace vellumark::jet {
namespace {

constexpr std::uint32_t kLongest = 1U << 28;
constexpr int kMostDigits = 28;

template <class T>
T Number(std::string_view bytes) {
  if (bytes.size() < sizeof(T)) throw Unreadable("the value is shorter than its type");
  return Read<T>(bytes, 0);
}

std::string Guid(std::string_view bytes) {
  constexpr std::size_t kBytes = 16;
  if (bytes.size() < kBytes) throw Unreadable("the value is shorter than its type");
  std::string text = fmt::format("{{{:08X}-{:04X}-{:04X}-", Read<std::uint32_t>(bytes, 0),
                                 Read<std::uint16_t>(bytes, 4), Read<std::uint16_t>(bytes, 6));
  for (std::size_t i = 8; i < kBytes; ++i) {
    if (i == 10) text += '-';
    text += fmt::format("{:02X}", static_cast<unsigned char>(bytes[i]));
  }
  return text + "}";
}

// A sign and four words, the greatest first.
std::string Numeric(std::string_view bytes, int scale) {
  if (bytes.size() < 17) throw Unreadable("the value is shorter than its type");
  unsigned __int128 value = 0;
  for (std::size_t word = 0; word < 4; ++word) value = value << 32 | Read<std::uint32_t>(bytes, 1 + word * 4);
  std::string digits;
  for (; value > 0 || static_cast<int>(digits.size()) <= scale; value /= 10)
    digits += static_cast<char>('0' + static_cast<int>(value % 10));
  std::ranges::reverse(digits);
  if (scale > 0) digits.insert(digits.size() - static_cast<std::size_t>(scale), ".");
  return (static_cast<unsigned char>(bytes[0]) & 0x80) != 0 ? "-" + digits : digits;
}

}  // namespace

std::string LongBytes(Source& source, std::string_view bytes, std::string& fault) {
  constexpr std::uint32_t kInline = 0x80000000;
  constexpr std::uint32_t kOneRow = 0x40000000;
  constexpr std::size_t kHead = 12;
  const auto told = Number<std::uint32_t>(bytes);
  const std::uint32_t length = told & ~(kInline | kOneRow);
  if (bytes.size() < kHead || length > kLongest) throw Unreadable("the long value has no sound beginning");
  if ((told & kInline) != 0) {
    if (bytes.size() - kHead < length) throw Unreadable("the long value is cut");
    return std::string(bytes.substr(kHead, length));
  }
  std::string whole;
  std::uint32_t pieces = 0;  // more than there are pages: they run in a circle
  for (Pointer next(Read<std::uint32_t>(bytes, 4)); whole.size() < length;) try {
      const std::string_view page = source.OtherPage(next.page);
      if (!Source::IsDataPage(page) || page.substr(4, 4) != "LVAL")
        throw Unreadable(fmt::format("it leads to page {}, which holds no long values", next.page));
      const std::string_view piece = Source::BytesOf(page, source.RowOf(page, next.row));
      if (source.IsDeleted(page, next.row)) throw Unreadable("the long value was deleted");
      if ((told & kOneRow) != 0) {
        if (piece.size() < length) throw Unreadable("the long value is cut");
        return std::string(piece.substr(0, length));
      }
      if (piece.size() <= 4 || pieces++ == source.Pages()) throw Unreadable("the chain of its pieces is broken");
      next = Pointer(Read<std::uint32_t>(piece, 0));
      whole += piece.substr(4);
    } catch (const Unreadable& e) {
      if (whole.empty()) throw;
      fault = fmt::format("only its first {} bytes of {} could be read: {}", whole.size(), length, e.what());
      return whole;
    }
  whole.resize(length);
  return whole;
}

Value ValueOf(Source& source, const MdbColumn& column, std::string_view bytes) {
  switch (static_cast<JetType>(column.col_type)) {
    case JetType::Byte:
      return Number<std::uint8_t>(bytes);
    case JetType::Integer:
      return Number<std::int16_t>(bytes);
    case JetType::Long:
      return Number<std::int32_t>(bytes);
    case JetType::Currency:
      return Number<std::int64_t>(bytes);
    case JetType::Single:
      return Number<float>(bytes);
    case JetType::Double:
    case JetType::Date:
      return Number<double>(bytes);
    case JetType::Text:
      return source.Text(bytes);
    case JetType::Guid:
      return Guid(bytes);
    case JetType::Numeric:
      // Releases of the library differ in which of the two is which; no number has more decimals than digits.
      return Numeric(bytes, std::clamp(std::min(column.col_scale, column.col_prec), 0, kMostDigits));
    default:
      return std::string(bytes);
  }
}

}  // namespace vellumark::jet
