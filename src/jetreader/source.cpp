#include "jetreader/source.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/base/unicode.h"
#include "core/datafile/jet/jet_format.h"

namespace vellumark::jet {
namespace {

constexpr std::size_t kOffsetMask = 0x1FFF;
constexpr unsigned kDeleted = 0x8000;
constexpr unsigned kElsewhere = 0x4000;
constexpr std::size_t kOwnerAt = 4;
constexpr int kOurCodePage = 1252;

std::string_view Bytes(const unsigned char* buffer, std::size_t size) {
  return {reinterpret_cast<const char*>(buffer), size};
}

// Zeros lead from the form without the high bytes of its characters to the one with them, and back.
std::string Expanded(std::string_view bytes) {
  std::string expanded;
  bool narrow = true;
  for (std::size_t at = 0; at < bytes.size();) {
    if (bytes[at] == 0) {
      narrow = !narrow;
      ++at;
    } else if (narrow) {
      expanded += bytes[at++];
      expanded += '\0';
    } else {
      expanded += bytes.substr(at, 2);
      at += 2;
    }
  }
  return expanded;
}

}  // namespace

Source::Source(const std::filesystem::path& path) : handle_(mdb_open(path.c_str(), MDB_NOFLAGS)) {
  if (handle_ == nullptr) throw Unreadable("it cannot be opened as a Jet file");
  pages_ = static_cast<std::uint32_t>(std::filesystem::file_size(path) / PageSize());
}

std::string_view Source::Page(std::uint32_t page) {
  if (page >= pages_) throw Unreadable(fmt::format("page {} lies behind the end of the file", page));
  if (mdb_read_pg(handle_, page) != static_cast<ssize_t>(PageSize()))
    throw Unreadable("the disk does not give the page");
  return Bytes(handle_->pg_buf, PageSize());
}

std::string_view Source::OtherPage(std::uint32_t page) {
  if (page >= pages_) throw Unreadable(fmt::format("page {} lies behind the end of the file", page));
  if (mdb_read_alt_pg(handle_, page) != static_cast<ssize_t>(PageSize()))
    throw Unreadable("the disk does not give the page");
  return Bytes(handle_->alt_pg_buf, PageSize());
}

std::uint32_t Source::OwnerOf(std::string_view page) {
  return Read<std::uint32_t>(page, kOwnerAt);
}

int Source::RowsOn(std::string_view page) const {
  return Read<std::uint16_t>(page, handle_->fmt->row_count_offset);
}

std::size_t Source::EntryAt(std::string_view page, int row) const {
  const std::size_t at = handle_->fmt->row_count_offset + 2U + static_cast<std::size_t>(row) * 2;
  if (row < 0 || row >= RowsOn(page) || at + 2 > page.size()) throw Unreadable("the page has no such row");
  return at;
}

bool Source::IsDeleted(std::string_view page, int row) const {
  return (Read<std::uint16_t>(page, EntryAt(page, row)) & kDeleted) != 0;
}

Source::Row Source::RowOf(std::string_view page, int row) const {
  const std::size_t at = EntryAt(page, row);
  const auto entry = Read<std::uint16_t>(page, at);
  const std::size_t start = entry & kOffsetMask;
  const std::size_t end = row == 0 ? page.size() : Read<std::uint16_t>(page, at - 2) & kOffsetMask;
  if (start < at + 2 || start > end || end > page.size()) throw Unreadable("the row does not lie within its page");
  return {start, end - start, (entry & kElsewhere) != 0};
}

std::string Source::Text(std::string_view bytes) const {
  if (IsOld()) return OldText(bytes);
  constexpr std::string_view kNarrow = "\xFF\xFE";
  if (bytes.starts_with(kNarrow)) return FromUtf16(Expanded(bytes.substr(kNarrow.size())), false);
  return FromUtf16(bytes, false);
}

std::string Source::OldText(std::string_view bytes) const {
  const int codePage = handle_->f->code_page;
  if (codePage == 0 || codePage == kOurCodePage) return FromCp1252(bytes);
  const iconv_t converter = iconv_open("UTF-8", fmt::format("CP{}", codePage).c_str());
  // NOLINTNEXTLINE(performance-no-int-to-ptr): so iconv says that it has no such code page
  if (converter == reinterpret_cast<iconv_t>(-1)) return FromCp1252(bytes);
  constexpr std::size_t kWidest = 4;
  std::string text(bytes.size() * kWidest, '\0');
  std::string copy(bytes);
  char* from = copy.data();
  char* to = text.data();
  std::size_t left = copy.size();
  std::size_t space = text.size();
  while (left > 0 && space >= kWidest && iconv(converter, &from, &left, &to, &space) == static_cast<std::size_t>(-1)) {
    // One byte stands for nothing in the code page.
    constexpr std::string_view kUnreadable = "\xEF\xBF\xBD";
    to = std::ranges::copy(kUnreadable, to).out;
    space -= kUnreadable.size();
    ++from;
    --left;
  }
  iconv_close(converter);
  text.resize(text.size() - space);
  return text;
}

}  // namespace vellumark::jet
