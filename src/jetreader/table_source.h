#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "core/datafile/jet/jet_file.h"
#include "core/datafile/jet/jet_stream.h"
#include "jetreader/source.h"

namespace vellumark::jet {

/// A table by its definition, and the pages in which its rows stand.
class TableSource {
 public:
  /// Throws Unreadable when what stands at the page is no definition.
  TableSource(Source& source, std::uint32_t definition);
  ~TableSource();
  TableSource(const TableSource&) = delete;
  TableSource& operator=(const TableSource&) = delete;

  JetTable Table() const;

  /// The data pages that its map tells; where there is none that can be read, all that name it. In rising order.
  /// `fault` tells why, where it is wrong.
  std::vector<std::uint32_t> ListedPages(JetDamage& fault);
  /// Those that name it and are not in `listed`.
  std::vector<std::uint32_t> StrayPages(const std::vector<std::uint32_t>& listed);

  /// Tells the rows of one page from `fromRow` on, `careful` each one before it is read.
  void TellRows(StreamWriter& out, std::uint32_t page, int fromRow, bool careful);

 private:
  void AddMapped(std::vector<std::uint32_t>& pages);
  void TellRow(StreamWriter& out, std::uint32_t page, int row);
  // Into the first buffer, which then holds the page where the row really stands; nothing for one that was deleted.
  std::optional<Source::Row> Locate(std::uint32_t page, int row);
  Value FieldValue(std::size_t column, const MdbField& field);

  Source& source_;
  std::uint32_t definition_;
  MdbCatalogEntry entry_{};
  MdbTableDef* table_;
  std::uint32_t map_ = 0;  // where its map of pages stands
  std::vector<MdbField> fields_;
};

/// A value of a row, as `JetRow` tells it. Throws Unreadable.
Value ValueOf(Source& source, const MdbColumn& column, std::string_view bytes);
/// A long text or object: it stands in the row, in a row of its own, or in a chain of them. `fault` tells why only its
/// beginning could be read, where it is so. Throws Unreadable when nothing could.
std::string LongBytes(Source& source, std::string_view bytes, std::string& fault);

}  // namespace vellumark::jet
