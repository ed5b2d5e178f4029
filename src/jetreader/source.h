#pragma once

#include <mdbtools.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vellumark::jet {

/// What cannot be read, in words.
class Unreadable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A Jet file by its pages. The library has two buffers for pages: the rows of tables stand in the first, what they
/// lead to is read into the second.
class Source {
 public:
  /// Throws Unreadable.
  explicit Source(const std::filesystem::path& path);
  ~Source() { mdb_close(handle_); }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;

  MdbHandle* Handle() const { return handle_; }
  bool IsOld() const { return IS_JET3(handle_) != 0; }
  std::size_t PageSize() const { return static_cast<std::size_t>(handle_->fmt->pg_size); }
  std::uint32_t Pages() const { return pages_; }

  /// The bytes of a page, until the next one is read into the same buffer. Throw Unreadable.
  std::string_view Page(std::uint32_t page);
  std::string_view OtherPage(std::uint32_t page);

  /// The table that a data page belongs to; nothing for a page of any other kind.
  static bool IsDataPage(std::string_view page) { return page[0] == MDB_PAGE_DATA; }
  static std::uint32_t OwnerOf(std::string_view page);

  int RowsOn(std::string_view page) const;
  /// Throws Unreadable when there is no such row.
  bool IsDeleted(std::string_view page, int row) const;
  struct Row {
    std::size_t start = 0;
    std::size_t size = 0;
    bool elsewhere = false;  ///< it is a pointer to where the row stands
  };
  /// Throws Unreadable for one that does not lie within the page.
  Row RowOf(std::string_view page, int row) const;
  static std::string_view BytesOf(std::string_view page, const Row& row) { return page.substr(row.start, row.size); }

  /// Bytes of the text encoding of version 3, and of the two of version 4, as UTF-8.
  std::string Text(std::string_view bytes) const;

 private:
  std::string OldText(std::string_view bytes) const;
  // Where the page tells of the row.
  std::size_t EntryAt(std::string_view page, int row) const;

  MdbHandle* handle_ = nullptr;
  std::uint32_t pages_ = 0;
};

/// A row number and a page in four bytes.
struct Pointer {
  explicit Pointer(std::uint32_t bytes) : page(bytes >> 8), row(static_cast<int>(bytes & 0xFF)) {}
  std::uint32_t page;
  int row;
};

}  // namespace vellumark::jet
