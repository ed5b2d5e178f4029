#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "core/base/table.h"

namespace vellumark::cli {

using Json = nlohmann::ordered_json;

/// What goes to standard output, in pieces of this size. Until the first one has gone it can still be dropped.
class Output {
 public:
  /// Throws Failure when it cannot be written.
  void Write(std::string_view text);
  void Finish();
  /// Forgets what has not gone yet; true when nothing has.
  bool Drop();

 private:
  static constexpr std::size_t kPiece = 65536;

  std::string held_;
  bool begun_ = false;
};

/// Indented, without a line end.
std::string JsonText(const Json& json);
/// A Single as the number of its shortest decimal.
Json Number(float single);
/// The rows as an array of objects.
Json RowsJson(const ListTable& table);
/// A row as an object of the columns that have a key.
Json RowJson(const ListTable& table, const TableRow& row);
/// That of the only row of a table.
Json RowJson(const ListTable& table);

/// An array of objects, row by row as they are read.
void WriteJson(const ListTable& table, Output& output);
/// Columns in a line, numbers to the right, the totals below. The first rows get the widths of the last: what cannot be
/// read fails before anything is written, and a list of more rows than are worth holding is read twice.
void WriteText(const ListTable& table, Output& output);
std::string TableText(const ListTable& table);

}  // namespace vellumark::cli
