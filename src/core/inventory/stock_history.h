#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/datafile/stock_trail.h"
#include "core/session/session.h"

namespace vellumark {

/// Which lines of the stock history are wanted.
struct StockHistoryFilter {
  std::optional<std::string> name{};  ///< all colours without it
  std::optional<ColorKind> kind{};    ///< both without it
  std::string database{};             ///< empty for the current one
  /// Only lots that ever bore this number (of a colour that has lots of the number now: only those), or Unlotted
  /// Inventory ("Unlotted Inv.").
  std::optional<std::string> lot{};
};

/// In which order lines are read.
enum class LineOrder { LatestFirst, OldestFirst };

/// The lines, read in pieces. Those of one colour are followed through its renames and add up to its
/// stock; without a name they are all lines of the Database, which is followed through its own. Reads from the file
/// that was open when it was made.
class StockHistoryReader {
 public:
  StockHistoryReader() = default;  ///< of nothing
  StockHistoryReader(const Session& session, const StockHistoryFilter& filter,
                     LineOrder order = LineOrder::LatestFirst);

  /// Appends those of the next piece that are wanted, perhaps none; false when no more can come.
  bool ReadOn(std::vector<StockLine>& lines);

 private:
  struct Part {
    StockTrail trail;
    std::vector<StockLine> ahead{};  ///< read and not yet taken
    std::size_t taken = 0;
    bool more = true;
  };
  void AddTrail(StockTrail trail);
  void ChooseLots(const Session& session, const std::string& database, const StockHistoryFilter& filter);
  bool IsWanted(const StockLine& line) const;

  std::vector<Part> parts_;
  LineOrder order_ = LineOrder::LatestFirst;
  std::optional<ColorKind> kind_;
  bool oneColor_ = false;
  bool unlotted_ = false;
  std::optional<std::set<StockTrail::Lot>> lots_;
};

}  // namespace vellumark
