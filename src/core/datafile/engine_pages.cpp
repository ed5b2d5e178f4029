#include "core/datafile/engine_pages.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

#include "core/base/refusal.h"

// The format of the file is that of SQLite 3, as its authors publish it: pages of one size; tables as trees of pages by
// the row number, indexes as trees of their values; a row as a header of types and the values behind it, of which what
// does not fit goes on in a chain of pages.

namespace vellumark {
namespace {

constexpr std::uint32_t kFileHeader = 100;
constexpr unsigned char kTableLeaf = 0x0D;
constexpr unsigned char kTableInner = 0x05;
constexpr unsigned char kIndexLeaf = 0x0A;
constexpr unsigned char kIndexInner = 0x02;
constexpr std::uint32_t kUsualSize = 4096;
constexpr std::size_t kLongestRow = 64U << 20U;

// What is read behind the end is nothing, and shows as not Good.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes, std::size_t at = 0) : bytes_(bytes), at_(at) {}

  std::uint64_t Number(int size) {
    std::uint64_t number = 0;
    for (int i = 0; i < size; ++i) number = number << 8U | Next();
    return number;
  }
  std::uint64_t Varint() {
    std::uint64_t number = 0;
    for (int i = 0; i < 8; ++i) {
      const std::uint64_t byte = Next();
      number = number << 7U | (byte & 0x7FU);
      if (byte < 0x80) return number;
    }
    return number << 8U | Next();
  }
  bool Good() const { return good_; }
  std::size_t At() const { return at_; }

 private:
  std::uint64_t Next() {
    if (at_ < bytes_.size()) return static_cast<unsigned char>(bytes_[at_++]);
    good_ = false;
    return 0;
  }

  std::string_view bytes_;
  std::size_t at_;
  bool good_ = true;
};

std::uint32_t Number32(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint32_t>(Bytes(bytes, at).Number(4));
}

std::size_t HeaderAt(std::uint32_t page) {
  return page == 1 ? kFileHeader : 0;
}

unsigned char KindOf(std::string_view bytes, std::uint32_t page) {
  return static_cast<unsigned char>(bytes[HeaderAt(page)]);
}

// How many bytes of a row stand in its own page.
std::size_t LocalSize(std::size_t payload, std::size_t size, bool table) {
  const std::size_t most = table ? size - 35 : (size - 12) * 64 / 255 - 23;
  if (payload <= most) return payload;
  const std::size_t least = (size - 12) * 32 / 255 - 23;
  const std::size_t fitting = least + (payload - least) % (size - 4);
  return fitting <= most ? fitting : least;
}

struct Payload {
  std::string bytes;
  std::size_t size = 0;  // of the whole; more than there are bytes of one that is cut
};

std::optional<Payload> ReadPayload(PageFile& file, std::string_view page, std::size_t at, std::uint64_t size,
                                   bool table) {
  if (size == 0 || size > kLongestRow || size > std::uint64_t{file.Count()} * file.Size()) return std::nullopt;
  Payload payload{{}, static_cast<std::size_t>(size)};
  const std::size_t local = LocalSize(payload.size, file.Size(), table);
  if (at + local > page.size()) return std::nullopt;
  payload.bytes = page.substr(at, local);
  if (local == payload.size) return payload;
  if (at + local + 4 > page.size()) return std::nullopt;
  for (std::uint32_t next = Number32(page, at + local); payload.bytes.size() < payload.size;) {
    const auto more = next < 2 ? std::nullopt : file.Read(next);
    if (!more) break;
    payload.bytes.append(*more, 4, std::min(payload.size - payload.bytes.size(), more->size() - 4));
    next = Number32(*more, 0);
  }
  return payload;
}

// The size of a value behind the header; nothing for a type that there is not.
std::optional<std::uint64_t> SizeOfType(std::uint64_t type) {
  constexpr std::array<std::uint64_t, 10> kSizes{0, 1, 2, 3, 4, 6, 8, 8, 0, 0};
  if (type < kSizes.size()) return kSizes[type];
  if (type < 12) return std::nullopt;
  return (type - 12) / 2;
}

Value ReadValue(std::string_view bytes, std::uint64_t type) {
  if (type == 0) return {};
  if (type == 7) return std::bit_cast<double>(Bytes(bytes).Number(8));
  if (type == 8 || type == 9) return static_cast<std::int64_t>(type - 8);
  if (type >= 12) return Value(bytes);
  const int size = static_cast<int>(bytes.size());
  const auto shift = static_cast<unsigned>(64 - 8 * size);
  return static_cast<std::int64_t>(Bytes(bytes).Number(size) << shift) >> shift;
}

// The values of a row: the header tells their types, and all of them together have to be just as long as the row.
std::optional<std::vector<Value>> ReadRecord(const Payload& payload, bool& cut) {
  Bytes header(payload.bytes);
  const std::uint64_t headerSize = header.Varint();
  if (!header.Good() || headerSize > payload.bytes.size()) return std::nullopt;
  std::vector<std::uint64_t> types;
  std::uint64_t end = headerSize;
  while (header.At() < headerSize) {
    types.push_back(header.Varint());
    const auto size = SizeOfType(types.back());
    if (!size || *size > payload.size) return std::nullopt;
    end += *size;
  }
  if (!header.Good() || header.At() != headerSize || end != payload.size) return std::nullopt;
  std::vector<Value> cells;
  std::size_t at = static_cast<std::size_t>(headerSize);
  for (const std::uint64_t type : types) {
    const auto size = static_cast<std::size_t>(*SizeOfType(type));
    const bool whole = at + size <= payload.bytes.size();
    cut = cut || !whole;
    if (whole) {
      cells.push_back(ReadValue(std::string_view(payload.bytes).substr(at, size), type));
    } else {
      cells.emplace_back();
    }
    at += size;
  }
  return cells;
}

// Where the cells of a page stand, and how many it says it has.
struct Cells {
  std::vector<std::size_t> places;
  std::int64_t lost = 0;
};

Cells CellsOf(std::string_view bytes, std::uint32_t page, bool inner) {
  const std::size_t header = HeaderAt(page);
  const std::size_t first = header + (inner ? 12 : 8);
  const auto count = static_cast<std::size_t>(Bytes(bytes, header + 3).Number(2));
  Cells cells;
  for (std::size_t i = 0; i < count && first + 2 * i + 2 <= bytes.size(); ++i) {
    const auto place = static_cast<std::size_t>(Bytes(bytes, first + 2 * i).Number(2));
    if (place >= first && place < bytes.size()) {
      cells.places.push_back(place);
    } else {
      ++cells.lost;
    }
  }
  return cells;
}

}  // namespace

PageFile::PageFile(const std::filesystem::path& path) : path_(path), file_(path, std::ios::binary) {
  std::error_code error;
  bytes_ = std::filesystem::file_size(path, error);
  if (!file_ || error) throw Failure(path.string(), "cannot be read");
  size_ = LikelySize();
  count_ = static_cast<std::uint32_t>(std::min<std::uint64_t>((bytes_ + size_ - 1) / size_, 0x7FFFFFFF));
}

std::optional<std::string> PageFile::Read(std::uint32_t page) {
  const std::uint64_t at = (std::uint64_t{page} - 1) * size_;
  if (page == 0 || at >= bytes_) return std::nullopt;
  std::string bytes(size_, '\0');  // what a cut file lacks of its last page is nothing
  file_.clear();
  file_.seekg(static_cast<std::streamoff>(at));
  file_.read(bytes.data(), static_cast<std::streamsize>(std::min<std::uint64_t>(size_, bytes_ - at)));
  if (file_.bad()) return std::nullopt;
  return bytes;
}

// The header says how large pages are; where it may be wrong, the size counts in which more pages make sense.
std::uint32_t PageFile::LikelySize() {
  char header[20] = {};
  file_.read(header, sizeof header);
  const auto told = static_cast<std::uint32_t>(Bytes({header, sizeof header}, 16).Number(2));
  const std::uint32_t size = told == 1 ? 65536 : told;
  if (size == kUsualSize || size < 512 || !std::has_single_bit(size)) return kUsualSize;
  return TreePagesOf(size) > TreePagesOf(kUsualSize) ? size : kUsualSize;
}

std::size_t PageFile::TreePagesOf(std::uint32_t size) {
  size_ = size;
  count_ = static_cast<std::uint32_t>((bytes_ + size - 1) / size);
  std::size_t found = 0;
  for (std::uint32_t page = 2; page <= count_; ++page)
    if (const auto tree = ReadTreePage(*this, page)) found += tree->rows.size() + tree->children.size();
  return found;
}

std::vector<std::uint32_t> PageFile::FreePages() {
  std::vector<std::uint32_t> pages;
  const auto header = Read(1);
  if (!header) return pages;
  std::vector<bool> seen(std::size_t{count_} + 1);
  for (std::uint32_t trunk = Number32(*header, 32); trunk > 1 && trunk <= count_ && !seen[trunk];) {
    seen[trunk] = true;
    pages.push_back(trunk);
    const auto bytes = Read(trunk);
    if (!bytes) break;
    const std::uint32_t leaves = Number32(*bytes, 4);
    if (leaves > size_ / 4 - 2) break;
    for (std::uint32_t i = 0; i < leaves; ++i) pages.push_back(Number32(*bytes, 8 + 4 * std::size_t{i}));
    trunk = Number32(*bytes, 0);
  }
  return pages;
}

std::optional<TreePage> ReadTreePage(PageFile& file, std::uint32_t page) {
  const auto bytes = file.Read(page);
  if (!bytes) return std::nullopt;
  const unsigned char kind = KindOf(*bytes, page);
  if (kind != kTableLeaf && kind != kTableInner) return std::nullopt;
  TreePage tree;
  tree.leaf = kind == kTableLeaf;
  const Cells cells = CellsOf(*bytes, page, !tree.leaf);
  tree.lostRows = cells.lost;
  for (const std::size_t place : cells.places) {
    Bytes cell(*bytes, place);
    if (!tree.leaf) {
      const auto child = static_cast<std::uint32_t>(cell.Number(4));
      tree.children.push_back({child, static_cast<std::int64_t>(cell.Varint())});
      continue;
    }
    const std::uint64_t size = cell.Varint();
    PageRow row{static_cast<std::int64_t>(cell.Varint()), {}, false};
    const auto payload = cell.Good() ? ReadPayload(file, *bytes, cell.At(), size, true) : std::nullopt;
    auto record = payload ? ReadRecord(*payload, row.cut) : std::nullopt;
    if (record) {
      row.cells = *std::move(record);
      tree.rows.push_back(std::move(row));
    } else {
      ++tree.lostRows;
    }
  }
  if (!tree.leaf)
    tree.children.push_back({Number32(*bytes, HeaderAt(page) + 8), std::numeric_limits<std::int64_t>::max()});
  return tree;
}

std::vector<std::uint32_t> ChildrenOf(PageFile& file, std::uint32_t page) {
  std::vector<std::uint32_t> children;
  const auto bytes = file.Read(page);
  if (!bytes || KindOf(*bytes, page) != kTableInner) return children;
  for (const std::size_t place : CellsOf(*bytes, page, true).places) children.push_back(Number32(*bytes, place));
  children.push_back(Number32(*bytes, HeaderAt(page) + 8));
  return children;
}

std::optional<IndexPage> ReadIndexPage(PageFile& file, std::uint32_t page) {
  const auto bytes = file.Read(page);
  if (!bytes) return std::nullopt;
  const unsigned char kind = KindOf(*bytes, page);
  if (kind != kIndexLeaf && kind != kIndexInner) return std::nullopt;
  const bool inner = kind == kIndexInner;
  IndexPage index;
  for (const std::size_t place : CellsOf(*bytes, page, inner).places) {
    Bytes cell(*bytes, place);
    if (inner) index.children.push_back(static_cast<std::uint32_t>(cell.Number(4)));
    const std::uint64_t size = cell.Varint();
    bool cut = false;
    const auto payload = cell.Good() ? ReadPayload(file, *bytes, cell.At(), size, false) : std::nullopt;
    auto record = payload ? ReadRecord(*payload, cut) : std::nullopt;
    if (!record || cut || record->size() < 2) continue;
    const std::int64_t key = record->back().Whole();
    record->pop_back();
    index.entries.push_back({*std::move(record), key});
  }
  if (inner) index.children.push_back(Number32(*bytes, HeaderAt(page) + 8));
  return index;
}

}  // namespace vellumark
