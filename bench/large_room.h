#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
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

/// Recipes as an ink room has them: most of a tint is white or extender, colours come from a pool of basics.
class RecipeMaker {
 public:
  explicit RecipeMaker(int basics) : basics_(basics) {}

  std::string BasicName(int n) const { return "BASIC INK " + std::to_string(n); }
  int Basics() const { return basics_; }

  Recipe Next() {
    Recipe recipe;
    const int count = 2 + static_cast<int>(random_() % 6);
    while (static_cast<int>(recipe.size()) < count) {
      const std::string name = BasicName(static_cast<int>(random_() % static_cast<unsigned>(basics_)));
      if (!HoldsIngredient(recipe, name)) recipe.push_back({name, 0.5 + static_cast<double>(random_() % 9000) / 100});
    }
    return Normalise(std::move(recipe));
  }
  std::mt19937& Random() { return random_; }

 private:
  std::mt19937 random_{20260310};
  int basics_;
};

/// A session on a Data File of its own with `formulas` formulas over sixty basics, some of them in stock.
struct LargeRoom {
  explicit LargeRoom(int formulas) {
    std::string pattern = (std::filesystem::temp_directory_path() / "vellumark-bench-XXXXXX").string();
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
    std::vector<std::string> fields{"Color_Name",   "Color_Code",   "Color_Set",    "Inventory",   "Recycle",
                                    "Date_Entered", "LastModified", "Notes",        "BasicCost",   "BasicVOC",
                                    "BasicHAP",     "LotRefID",     "PurchaseCost", "Color_Guide", "Page"};
    for (int n = 0; n < schema::kIngredientSlots; ++n) fields.push_back(schema::Numbered("BC", n));
    for (int n = 0; n < schema::kIngredientSlots; ++n) fields.push_back(schema::Numbered("BQ", n));
    RowWriter writer(file, schema::Mix, "INK_Mix", fields);
    for (int i = 0; i < formulas; ++i) {
      const Recipe recipe = maker.Next();
      std::size_t place = 0;
      const auto set = [&](const Value& value) { writer.Set(place++, value); };
      set("SPOT COLOUR " + std::to_string(i));
      set("S" + std::to_string(i));
      set(NameSet(NamesOf(recipe)));
      set(i % 20 == 0 ? static_cast<float>(i % 97) + 0.5F : 0.0F);
      set(true);
      set(session.clock.Today());
      set(session.clock.Today());
      set(i % 10 == 0 ? "Keep away from light; check the shade after two days." : "");
      set(0.0F), set(0.0F), set(0.0F);
      set(0);
      set(0.0F);
      set(""), set("0");
      for (std::size_t n = 0; n < schema::kIngredientSlots; ++n) set(n < recipe.size() ? recipe[n].name : "");
      for (std::size_t n = 0; n < schema::kIngredientSlots; ++n)
        set(n < recipe.size() ? static_cast<float>(recipe[n].amount) : 0.0F);
      writer.Insert();
    }
    transaction.Commit();
  }

  std::filesystem::path folder;
  std::filesystem::path path;
  SilentPrompt prompt;
  NoProgress progress;
  FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
  Session session{prompt, progress, clock};
  RecipeMaker maker{60};
};

/// The 100,000 formulas that several measurements share.
inline LargeRoom& Room100k() {
  static LargeRoom room(100000);
  return room;
}

}  // namespace vellumark::bench
