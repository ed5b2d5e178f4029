#pragma once

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "core/base/number.h"
#include "core/colors/normalise.h"
#include "core/datafile/databases.h"
#include "core/datafile/lifecycle.h"
#include "core/datafile/references.h"
#include "core/datafile/writer.h"
#include "core/session/session.h"
#include "core/settings/support_files.h"

namespace vellumark::bench {

/// Answers nothing; the measurements ask no questions.
class SilentPrompt final : public Prompt {
 public:
  Answer Show(const Message&) override { return Answer::Yes; }
};

/// The highest memory of this process since the last Reset, in MB.
class PeakMemory {
 public:
  static void Reset() { std::ofstream("/proc/self/clear_refs") << "5"; }
  static double Mb() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word)
      if (word == "VmHWM:") {
        double kb = 0;
        status >> kb;
        return kb / 1024;
      }
    return 0;
  }
};

/// Recipes as an ink room has them: three of four tints hold white, and of the colours some are in far more recipes
/// than others.
class RecipeMaker {
 public:
  explicit RecipeMaker(int basics) : basics_(basics) {
    std::vector<double> weights;
    for (int n = 1; n < basics; ++n) weights.push_back(1 / std::pow(n, 0.84));
    colors_ = std::discrete_distribution<int>(weights.begin(), weights.end());
  }

  std::string BasicName(int n) const { return n == 0 ? "OPAQUE WHITE" : "BASIC INK " + std::to_string(n); }
  int Basics() const { return basics_; }

  Recipe Next() {
    const auto count = 2 + static_cast<std::size_t>(sizes_(random_));
    const std::size_t white = random_() % 4 != 0 ? random_() % count : count;
    Recipe recipe;
    while (recipe.size() < count) {
      const std::string name = recipe.size() == white ? BasicName(0) : BasicName(1 + colors_(random_));
      if (!HoldsIngredient(recipe, name)) recipe.push_back({name, 0.5 + static_cast<double>(random_() % 9000) / 100});
    }
    return Normalise(std::move(recipe));
  }

  /// White and six of the eight colours that are used most: what an ink of many ingredients looks like.
  Recipe House(int n) {
    Recipe recipe{{BasicName(0), 40}};
    const int without = n % 8;
    const int nor = (without + 1 + n / 8 % 7) % 8;
    for (int color = 0; color < 8; ++color)
      if (color != without && color != nor) recipe.push_back({BasicName(1 + color), 10});
    return recipe;
  }
  std::mt19937& Random() { return random_; }

 private:
  std::mt19937 random_{20260310};
  std::discrete_distribution<int> sizes_{10, 30, 33, 15, 8, 4};
  std::discrete_distribution<int> colors_;
  int basics_;
};

/// Where files lie as the operator has them, and a folder in memory: there a sync costs nothing, and what is measured
/// is the code alone.
inline std::filesystem::path OrdinaryDisk() {
  return std::filesystem::temp_directory_path();
}
inline constexpr const char* kMemoryDisk = "/dev/shm";

/// A session on a Data File of its own with `formulas` formulas over sixty basics, as ten years leave them: every fifth
/// is in stock, a third of those in lots, names stand in no order, and some have a reorder point.
struct LargeRoom {
  explicit LargeRoom(int formulas, const std::filesystem::path& place = OrdinaryDisk()) {
    std::string pattern = (place / "vellumark-bench-XXXXXX").string();
    folder = ::mkdtemp(pattern.data());
    session.DataFolder = folder / "VKDat";
    session.support = std::make_unique<SupportFiles>(session.DataFolder);
    WriteMissingSupportFiles(*session.support);
    path = folder / "Large.vkd";
    CreateFile(path);
    session.DataFileDB = Database::Open(path, OpenMode::Exclusive);
    session.DataFileName = path.string();
    session.DataFileOpen = true;
    CreateEmptyDatabase(session.File(), "INK");
    StoreCurrentDatabase(session.File(), "INK");
    session.CurrentDatabase = "INK";
    session.databaseList = {"INK"};
    ReadSettings(session);
    if (formulas > 0) Fill(formulas);
  }
  ~LargeRoom() {
    session.DataFileDB.reset();
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }

  void Fill(int formulas) {
    Database& file = session.File();
    Transaction transaction(file);
    for (int n = 0; n < maker.Basics(); ++n)
      InsertRow(file, schema::Basic, "INK_Basic",
                {{"Color_Name", maker.BasicName(n)},
                 {"Color_Code", "B" + std::to_string(n)},
                 {"Inventory", 500.0F},
                 {"Reorder", 50.0F},
                 {"PurchaseCost", 4.0F + static_cast<float>(n % 17)},
                 {"IngSort", n},
                 {"Additive", n % 10 == 9},
                 {"VOC", 0.1F * static_cast<float>(n % 9)},
                 {"HAP", 0.01F * static_cast<float>(n % 7)},
                 {"LotRefID", 0}});
    std::vector<std::string> fields{"Color_Name",   "Color_Code",  "Color_Set", "Inventory", "Recycle",  "Date_Entered",
                                    "LastModified", "Notes",       "BasicCost", "BasicVOC",  "BasicHAP", "LotRefID",
                                    "PurchaseCost", "Color_Guide", "Page",      "Reorder"};
    for (int n = 0; n < schema::kIngredientSlots; ++n) fields.push_back(schema::Numbered("BC", n));
    for (int n = 0; n < schema::kIngredientSlots; ++n) fields.push_back(schema::Numbered("BQ", n));
    RowWriter writer(file, schema::Mix, "INK_Mix", fields);
    RowWriter lots(file, schema::MixLotInv, "INK_Mix_LotInv",
                   {"LotRefID", "LotCName", "LotNumber", "LotDate", "LotQty", "LotPrice", "LotConsignment"});
    std::vector<int> numbers(static_cast<std::size_t>(formulas));
    std::iota(numbers.begin(), numbers.end(), 0);
    std::ranges::shuffle(numbers, maker.Random());
    std::mt19937& random = maker.Random();
    int lotNumber = 0;
    for (const int number : numbers) {
      const Recipe recipe = number < kHouseShades ? maker.House(number) : maker.Next();
      const bool inStock = random() % 5 == 0;
      const bool lotted = inStock && random() % 3 == 0;
      const float stock = inStock ? static_cast<float>(random() % 97) + 0.5F : 0.0F;
      const std::string name = FormulaName(number);
      const DateTime entered = DayOfTenYears(random());
      std::size_t place = 0;
      const auto set = [&](const Value& value) { writer.Set(place++, value); };
      set(name);
      set("S" + std::to_string(number));
      set(NameSet(NamesOf(recipe)));
      set(lotted ? 0.0F : stock);
      set(true);
      set(entered);
      set(entered);
      set(number % 10 == 0 ? "Keep away from light; check the shade after two days." : "");
      set(0.0F), set(0.0F), set(0.0F);
      set(lotted ? ++lotNumber : 0);
      set(0.0F);
      set(""), set("0");
      set(number % 12 == 0 ? 5.0F : 0.0F);
      for (std::size_t n = 0; n < schema::kIngredientSlots; ++n) set(n < recipe.size() ? recipe[n].name : "");
      for (std::size_t n = 0; n < schema::kIngredientSlots; ++n)
        set(n < recipe.size() ? static_cast<float>(recipe[n].amount) : 0.0F);
      writer.Insert();
      if (!lotted) continue;
      lots.Set(0, lotNumber).Set(1, name).Set(2, "L" + std::to_string(lotNumber)).Set(3, entered);
      lots.Set(4, stock).Set(5, 4.5F).Set(6, false).Insert();
    }
    transaction.Commit();
  }

  /// The Batches of ten years and the lines that they left in the stock history.
  void FillYears(int batches) {
    Database& file = session.File();
    Transaction transaction(file);
    std::vector<std::string> fields{"Color_Name",     "BatchNo", "Date_Entered", "Quantity",
                                    "ActualQuantity", "UMF",     "LotRefID"};
    for (const char* word : {"IngName", "IngQty", "IngType"})
      for (std::size_t i = 0; i < kBatchLines; ++i) fields.push_back(schema::Numbered(word, static_cast<int>(i)));
    RowWriter batch(file, schema::Batch, "INK_Batch", fields);
    for (int n = 1; n <= batches; ++n) {
      batch.Set(0, FormulaName(kHouseShades + n)).Set(1, n).Set(2, DayOfTenYears(static_cast<unsigned>(n)));
      batch.Set(3, 10.0F).Set(4, 10.0F).Set(5, 1).Set(6, 0);
      for (std::size_t i = 0; i < kBatchLines; ++i) {
        batch.Set(7 + i, maker.BasicName((n + static_cast<int>(i)) % maker.Basics()));
        batch.Set(7 + kBatchLines + i, 2.0F).Set(7 + 2 * kBatchLines + i, 1);
      }
      batch.Insert();
    }
    file.Prepare("UPDATE FileInfo SET BatchNumber = ?").Bind(1, batches).Run();
    Statement history = file.Prepare(
        "INSERT INTO MSysStockHistory (Moment, Username, Source, Kind, Database, Color_Name, LotRefID, LotNumber, "
        "Change, Result, Document, Reason) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?) "
        "SELECT '2016-03-10 12:00:00', 'ANNA', 1, 1, 'INK', 'BASIC INK ' || (1 + i % 59), 0, '', -2, 500, "
        "'Batch ' || i, '' FROM n");
    history.Bind(1, batches * static_cast<int>(kBatchLines)).Run();
    transaction.Commit();
  }

  std::string FormulaName(int number) const { return "SPOT COLOUR " + std::to_string(number); }
  /// Those of which something can be made out of about 1,400 inks in stock.
  static constexpr int kHouseShades = 40;

  std::filesystem::path folder;
  std::filesystem::path path;
  SilentPrompt prompt;
  NoProgress progress;
  FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
  Session session{prompt, progress, clock};
  RecipeMaker maker{60};

 private:
  static constexpr std::size_t kBatchLines = 5;

  static DateTime DayOfTenYears(unsigned n) {
    return {2016 + static_cast<int>(n % 10),
            1 + static_cast<int>(n / 10 % 12),
            1 + static_cast<int>(n / 120 % 28),
            8,
            0,
            0};
  }
};

/// The 100,000 formulas that several measurements share.
inline LargeRoom& Room100k() {
  static LargeRoom room(100000);
  static const bool filled = [] {
    room.FillYears(50000);
    return true;
  }();
  static_cast<void>(filled);
  return room;
}

/// The large file, closed for as long as this lasts.
struct ClosedRoom {
  ClosedRoom() { room.session.DataFileDB.reset(); }
  ~ClosedRoom() { room.session.DataFileDB = Database::Open(room.path, OpenMode::Exclusive); }
  LargeRoom& room = Room100k();
};

}  // namespace vellumark::bench
