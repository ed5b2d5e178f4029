#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "core/backup/step_lines.h"
#include "core/base/sheet.h"

namespace vellumark {

/// Numbers added up without loss: each as the shortest decimal that reads back as it, a Single as one.
class ExactSum {
 public:
  void Add(double number);
  /// The decimal without an exponent: "120.375".
  std::string Text() const;

 private:
  // Units of 10 to the power of nine times the key: what one number brings never fills one.
  std::map<int, std::int64_t> groups_;
};

/// Where the rows of a table went: what was read and what was made of others' rows is written or left, with a line for
/// each reason.
struct UpgradeTable {
  std::string Table;
  std::int64_t Read = 0;
  std::int64_t Made = 0;
  std::int64_t Left = 0;
  std::int64_t Written = 0;
  std::int64_t Mended = 0;  ///< of those written, rows of which a value had to be changed
};

/// A figure of the whole file that must be the same in the end.
struct UpgradeSum {
  std::string What;
  std::string Before;
  std::string After;
  bool Same() const { return Before == After; }
};

struct UpgradeReport {
  std::filesystem::path source;
  std::filesystem::path file;  ///< what was, or would be, written
  bool jet = false;            ///< the source is a Jet file
  bool dryRun = false;
  int fromVersion = 0;
  int toVersion = 0;
  std::vector<UpgradeTable> tables;
  std::vector<UpgradeSum> sums;
  std::vector<StepLine> changes;  ///< in the order of the steps
  std::vector<StepLine> names;    ///< colours, sets, Batches that are called otherwise now
  std::vector<StepLine> refused;  ///< what did not come in, and why
  std::vector<StepLine> damaged;  ///< what of the source could not be read
  std::vector<StepLine> left;     ///< what people should look at
  std::filesystem::path text;        ///< where the report is kept; empty for a dry run

  /// Whether every row that was read is written or has its reason, and the sums are the same.
  bool Balanced() const;
};

/// All lines with what they are: "Damaged", "Refused", "Renamed", "Changed", "To look at".
std::vector<StepLineOf> LinesOf(const UpgradeReport& report);
const TableOf<UpgradeTable>& UpgradeTableColumns();

/// The report for people, as a text and for paper.
std::string UpgradeText(const UpgradeReport& report);
Sheet UpgradeSheet(const UpgradeReport& report);

}  // namespace vellumark
