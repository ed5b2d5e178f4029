#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "core/datafile/stock_history.h"

namespace vellumark {

/// Lines of the stock history, the latest first unless told otherwise, read in pieces: the first ones of a million are
/// there at once. Between two pieces the file may be written; what is added meanwhile is not on the trail.
class StockTrail {
 public:
  /// A lot as its lines name it: kind, name of the colour in capitals, reference.
  using Lot = std::tuple<ColorKind, std::string, std::int32_t>;

  /// A colour's lines, through every name that it bore. `present` tells whether a colour of that name exists: then an
  /// earlier one that was renamed away is not meant.
  static StockTrail OfColor(Database& file, std::string_view database, ColorKind kind, std::string_view name,
                            bool present);
  /// All lines of a Database, through every name that it bore.
  static StockTrail OfDatabase(Database& file, std::string_view database);
  /// Those of them that stand under one name, whatever colour bore it.
  static StockTrail OfName(Database& file, std::string_view database, ColorKind kind, std::string_view name);

  /// To be called before anything is read.
  void ReadOldestFirst();
  /// Appends the lines that follow, a piece of them, which may hold none; false when none are left.
  bool ReadOn(std::vector<StockLine>& lines);
  /// The lots on the trail that ever bore the number.
  std::set<Lot> LotsOfNumber(std::string_view number) const;

 private:
  static constexpr std::int64_t kNow = std::numeric_limits<std::int64_t>::max();

  /// The lines under one name with `after` < id < `before`.
  struct Stretch {
    std::string database;
    std::string name;
    std::int64_t after = 0;
    std::int64_t before = kNow;
  };
  /// A line at which a name begins or ends.
  struct Turn {
    std::int64_t id = 0;
    StockEvent event{};
    std::string reason;
  };

  explicit StockTrail(Database& file) : file_(&file) {}
  std::optional<Turn> LastTurn(const Stretch& stretch, int kind) const;
  bool HasLinesAfter(const Stretch& stretch, std::int64_t id) const;
  void Follow(Stretch stretch, bool present);
  void FollowDatabase(Stretch stretch);
  void ReadName(Stretch& stretch, std::vector<StockLine>& lines) const;
  void ReadDatabase(Stretch& stretch, std::vector<StockLine>& lines) const;

  Database* file_;
  int kind_ = kWholeDatabase;       ///< that of the name
  std::vector<Stretch> stretches_;  ///< in the order of reading; what was read is cut off
  bool oldestFirst_ = false;
  std::size_t at_ = 0;
};

/// All lines of an event, the latest first, until `take` answers false.
void ForEachStockLine(Database& file, StockEvent event, const std::function<bool(StockLine& line)>& take);
/// What is called so at a line of the history, as it is called today.
struct PresentName {
  std::string database;  ///< empty when it was deleted since
  std::string Color_Name;
};
PresentName NamesNow(Database& file, const StockLine& line);
/// The line of that number; nothing when there is none.
std::optional<StockLine> ReadStockLine(Database& file, std::int64_t id);
/// The line that was written last; 0 in an empty history, and without one.
std::int64_t LastStockLine(Database& file);

}  // namespace vellumark
