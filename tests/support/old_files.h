#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "core/datafile/schema.h"

namespace vellumark::test {

// Data Files as earlier versions of the program laid them out, made of one content, so that what comes of them can be told
// beforehand.

using OldRow = std::map<std::string, Value>;
struct OldTable {
  Table layout;  ///< under its whole name
  std::vector<OldRow> rows;
};

struct OldLot {
  std::string number;
  double quantity = 0;
  std::string date;  ///< empty when none is told
};
struct OldColor {
  std::string name;
  std::string code;
  float inventory = 0;
  double cost = 0;
  std::vector<std::pair<std::string, float>> parts;  ///< of a formula
  std::vector<OldLot> lots;
  bool additive = false;
};
struct OldLine {
  std::string name;
  float quantity = 0;
  int kind = 1;
  std::string lot;      ///< from which `fromLot` was taken, the rest from unlotted stock
  float fromLot = 0;
  std::string lotDate;
};
struct OldBatch {
  int no = 0;
  std::string color;
  float quantity = 0;
  float actual = 0;
  std::vector<OldLine> lines;
  std::string date;
  std::string lotNumber;
  std::string user;
};
struct OldJob {
  std::string number;
  std::string color;
  std::string database;
  int batchNo = 0;
  int type = 2;
  float issued = 0;
  float used = 0;
  std::string entered;
  std::string lotNumber;
  std::string design;
};
struct OldDatabase {
  std::string name;
  std::vector<OldColor> basics;
  std::vector<OldColor> formulas;
  std::vector<OldBatch> batches;
  std::vector<std::pair<std::string, float>> additives;  ///< with their percents
};
struct OldRoom {
  std::vector<OldDatabase> databases;
  std::vector<OldJob> jobs;
  bool users = true;
};

/// Two Databases with lots, an Additive Set, `batches` Batches over ten years to the end of 2025, every third for a job.
OldRoom MakeOldRoom(int batches);

/// The tables of a file of that version; numbered fields begin with `first` where versions before 37 had them.
std::vector<OldTable> OldTables(const OldRoom& room, int version, int first);
/// A file of the engine's own, or a Jet file, in which money of four decimals is Currency.
void WriteOldFile(const std::filesystem::path& path, const std::vector<OldTable>& tables);
void WriteOldJetFile(const std::filesystem::path& path, const std::vector<OldTable>& tables);

/// The rows that the tables of today must hold of such a file: of each the fields that follow from the content, the stock
/// of colours with lots counted beside them.
std::map<std::string, std::vector<OldRow>> RowsAfterUpdate(const OldRoom& room, int version, const std::string& today);

}  // namespace vellumark::test
