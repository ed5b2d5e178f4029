#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/base/files.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"

namespace vellumark::test {

/// An import that fails at one step, and the words for that step. It goes into a Data File with the Database INK and the
/// Basic Color RED.
struct ImportFault {
  enum class How { Refused, Compared, Failed };  ///< told instead of a comparison, in it, or as a fault of the world
  How how;
  std::string says;
  std::string file;         ///< the source by its name; none for the guide "Goe"
  std::string bytes = {};   ///< of it; of a Data File what is done to it before, or no Data File at all
  std::string harm = {};    ///< done to the Data File before
  bool newDatabase = false;  ///< it goes into one, NEW
};

inline const std::vector<ImportFault>& ImportFaults() {
  static const std::string good = "INK\nPLUM\tRED\t1\nROSE\tRED\t1\tBRONZE\t1\n";
  static const std::string noFormula =
      " is new to the database, however there is either no valid formula specified in the imported data, or you did not "
      "choose to import formulas. ";
  static const auto failing = [](const std::string& table, const std::string& name) {
    return "CREATE TRIGGER fault BEFORE INSERT ON INK_" + table + " WHEN NEW.Color_Name = '" + name +
           "' BEGIN SELECT RAISE(ABORT, 'no room'); END";
  };
  static const auto figure = [](const std::string& field) { return "UPDATE INK_Basic SET " + field + " = 9e999"; };
  using enum ImportFault::How;
  static const std::vector<ImportFault> faults{
      {Refused, "Line 1: Couldn't read Basic Color Names", "a.txt", "Code\tDescription\n"},
      {Refused, "Line 2: Couldn't read data", "a.txt", "Code\tDescription\tRED\n"},
      {Refused, "Couldn't read .mfe file correctly. The file may be corrupt.", "a.mfe", "INK\n"},
      {Refused, "Couldn't open textfile.", "a.xls", "\xD0\xCF\x11\xE0 and so on"},
      {Refused, "Couldn't read textfile Field Headers.", "a.txt", "Hello\nworld\n"},
      {Refused, "No Color Name field found in textfile Field Headers", "a.txt", "Color Code\tNotes\nR1\tdear\n"},
      {Refused, "Couldn't read textfile data at line 3", "a.txt", std::string("Color Name\tNotes\nA\tB\nC\t\0\n", 25)},
      {Compared, "Couldn't interpret textfile data at line 3: an ingredient has no amount", "a.mfe",
       "INK\nA\tRED\t1\nB\tRED\n"},
      {Compared, "The Master Formula at line 3 of the import file. B" + noFormula, "a.mfe", "INK\nA\tRED\t1\nB\n"},
      {Compared, "The Master Formula at line 2 of the import file. B" + noFormula, "a.txt",
       "Color Name\tColor Code\tIngredient 0\tParts 0\nB\tB1\n"},
      {Compared, "The Master Formula at line 2 of the import file. B" + noFormula, "a.txt", "Code\tDescription\tRED\nB\tB1\t0\n"},
      {Failed, "Couldn't open database. (", "a.vkd", "no Data File"},
      {Compared, "Master Formula has no formula at record 2", "a.vkd", "UPDATE INK_Mix SET BC0 = '', BC1 = '' WHERE RowKey = 2"},
      {Failed, "Couldn't print Header on the output file. (", "held.rez", "O#0#PLUM#1#RED#100.00000#\n"},
      {Failed, "Couldn't create new database tables. (", "a.mfe", good, "CREATE TABLE NEW_Mix (RowKey INTEGER PRIMARY KEY)", true},
      {Failed, "Couldn't update the NEW Info Table. (", "", {}, {}, true},
      {Failed, "Couldn't write new formula(s) to Database. Line 3 (", "a.mfe", good, failing("Mix", "ROSE")},
      {Failed, "Couldn't write new formula(s) to Database. Line 3 (", "a.mfe", good, failing("Basic", "BRONZE")},
      {Failed, "Couldn't Calculate Master Formula Basic Costs. (", "a.mfe", good, figure("PurchaseCost")},
      {Failed, "Couldn't Calculate Master Formula VOCs per Basic. (", "a.mfe", good, figure("VOC")},
      {Failed, "Couldn't Calculate Master Formula HAPs per Basic. (", "a.mfe", good, figure("HAP")},
  };
  return faults;
}

/// The source of a fault in `folder`, which holds a sound Data File `shop.vkd` with two formulas as well. The work file
/// of "held.rez" cannot be written into `converted`.
inline std::filesystem::path MakeSource(const ImportFault& fault, const std::filesystem::path& folder,
                                        const std::filesystem::path& converted) {
  const std::filesystem::path path = folder / fault.file;
  if (fault.bytes.starts_with("UPDATE")) {
    std::filesystem::copy_file(folder / "shop.vkd", path, std::filesystem::copy_options::overwrite_existing);
    Database::Open(path, OpenMode::Exclusive)->Execute(fault.bytes);
    return path;
  }
  ReplaceFile(path, fault.bytes);
  std::filesystem::create_directories(converted / "held.txt" / "in the way");
  return path;
}

/// A template with one guide, whose own table holds a text that no Database can.
inline void MakeFaultyTemplate(const std::filesystem::path& path) {
  const auto file = Database::Create(path);
  file->CreateTable("Goe_BColors", schema::Basic);
  file->CreateTable("Goe_MColors", schema::Mix);
  file->CreateTable("Info_Table", schema::Info);
  InsertRow(*file, schema::Mix, "Goe_MColors", {{"Color_Name", "PANTONE 185"}, {"BC0", "RED"}, {"BQ0", 100.0F}});
  InsertRow(*file, schema::Info, "Info_Table", {{"FullName", "Guides"}});
  file->Execute("UPDATE Info_Table SET FullName = '" + std::string(300, 'x') + "'");
}

}  // namespace vellumark::test
