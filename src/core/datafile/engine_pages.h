#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/datafile/value.h"

namespace vellumark {

// The pages of a Data File, read past the engine: it gives up a whole table for one page that it cannot read. Nothing
// here trusts a byte; what does not hold together is left out.

/// The pages of a file, numbered from 1.
class PageFile {
 public:
  /// Throws Failure when the file cannot be read.
  explicit PageFile(const std::filesystem::path& path);

  std::uint32_t Count() const { return count_; }
  std::uint32_t Size() const { return size_; }
  /// Nothing for a number that the file does not have.
  std::optional<std::string> Read(std::uint32_t page);
  /// The pages that the file has put aside, as far as their list can be followed: what they hold is out of date.
  std::vector<std::uint32_t> FreePages();

 private:
  std::uint32_t LikelySize();
  std::size_t TreePagesOf(std::uint32_t size);

  std::filesystem::path path_;
  std::ifstream file_;
  std::uint64_t bytes_ = 0;
  std::uint32_t size_ = 4096;
  std::uint32_t count_ = 0;
};

/// A row as it stands in its page. Of one whose text goes on in a page that cannot be read the rest is missing.
struct PageRow {
  std::int64_t key = 0;
  std::vector<Value> cells;
  bool cut = false;
};

/// A page of the tree in which the rows of a table stand by their keys.
struct TreePage {
  struct Child {
    std::uint32_t page = 0;
    std::int64_t lastKey = 0;  ///< of its rows; of the last child nobody knows one
  };
  bool leaf = false;
  std::vector<PageRow> rows;
  std::vector<Child> children;
  std::int64_t lostRows = 0;  ///< that the page says it has and that cannot be read
};
/// Nothing when the page is none of a table.
std::optional<TreePage> ReadTreePage(PageFile& file, std::uint32_t page);
/// Only which pages stand below it; nothing when it is no inner page of a table.
std::vector<std::uint32_t> ChildrenOf(PageFile& file, std::uint32_t page);

/// An entry of an index: the values that it is sorted by, and the key of the row.
struct IndexEntry {
  std::vector<Value> cells;
  std::int64_t key = 0;
};
struct IndexPage {
  std::vector<IndexEntry> entries;
  std::vector<std::uint32_t> children;
};
std::optional<IndexPage> ReadIndexPage(PageFile& file, std::uint32_t page);

}  // namespace vellumark
