#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/date.h"
#include "core/datafile/jet/jet_file.h"

namespace vellumark {

namespace jet {
class TableWriter;
}  // namespace jet

/// Makes a new Jet file of version 4 with plain tables: no indexes, no rules. Tables are written one after the other
/// and their rows as they come; it holds a page of each table's rows and long values, and one bit for each page of the
/// file. What stands at the path before `Finish` is no Jet file yet. Throws Failure when it cannot be written or gets
/// larger than a Jet file can be.
class JetWriter {
 public:
  static constexpr std::size_t kMostColumns = 255;
  static constexpr int kLongestText = 255;
  static constexpr std::size_t kLongestRow = 4060;  ///< bytes
  static constexpr std::size_t kInlineMemo = 64;    ///< bytes of a Memo that stand in the row itself

  JetWriter(const std::filesystem::path& file, const DateTime& made);
  ~JetWriter();
  JetWriter(const JetWriter&) = delete;
  JetWriter& operator=(const JetWriter&) = delete;

  /// Ends the table before. A name consists of letters and digits of ASCII, blanks and underscores; a BadValue
  /// otherwise.
  void BeginTable(std::string_view name, const std::vector<JetColumn>& columns);
  /// The values of one row, by type as `JetRow` has them; Guid and Numeric as the bytes that stand in the file. Throws
  /// BadValue for what its field cannot hold, and for a row that is longer than a page has room for.
  void Add(std::span<const Value> row);
  void Finish();

  /// The bytes that a text takes in a row.
  static std::size_t TextBytes(std::string_view utf8);

 private:
  friend class jet::TableWriter;

  // Before it stand the pages whose place is the same in every file, and those that Jet's own tables need of a few
  // others.
  static constexpr std::uint32_t kFirstPage = 16;

  std::uint32_t NewPage();
  void WritePage(std::uint32_t page, std::string_view bytes);
  void EndTable();
  void WriteSystem();
  void WriteGlobalMap();

  std::filesystem::path path_;
  DateTime made_;
  std::ofstream stream_;
  std::uint32_t pages_;
  std::unique_ptr<jet::TableWriter> table_;
  struct Made {
    std::string name;
    std::uint32_t definition;
  };
  std::vector<Made> tables_;
};

}  // namespace vellumark
