#pragma once

#include <cstdint>
#include <string>

#include "core/inventory/lots.h"

namespace vellumark {

/// What moves stock. Each source has its own comparison with the cutoff point (see posting.cpp).
enum class PostingSource {
  BatchTakes,       ///< a saved Batch takes its lines from stock
  BatchReturns,     ///< a saved Batch is opened and hands its lines back, to the last digit
  BatchTakesAgain,  ///< a saved Batch that was opened is left unsaved, and takes its lines again
  BatchRestores,    ///< the same where stock stands as the opening left it: it becomes again what it was before
  BatchMakes,       ///< a Batch puts the colour it makes into stock
  BatchUnmakes,     ///< a Batch that is changed or deleted takes out again what it had made
  JobRecord,        ///< issue to a job (negative) and return from it
  ManualAdjust,     ///< entered by hand
  ScanReturn,       ///< a scanned container
  Reset,            ///< stock set to a value, lots cleared away
};

/// One figure of stock that changes: a colour's `Inventory`, or one of its lots that changes, begins or ends.
struct StockChange {
  enum class Action { SetUnlotted, SetLot, AddLot, DeleteLot };
  Action action = Action::SetUnlotted;
  PostingSource source = PostingSource::ManualAdjust;
  ColorKind kind = ColorKind::Basic;
  std::string name{};
  std::string database{};  ///< empty for the current one
  std::int64_t row = 0;  ///< of the colour or of the lot; not used by AddLot
  LotRow lot{};          ///< AddLot: all of it; SetLot and DeleteLot: which lot it was
  float before = 0;      ///< what stands on file, of which the history tells the difference
  float after = 0;
  std::string document{};  ///< what moves it, for the history: a Batch's number, a job
  std::string reason{};

  /// The same mover's change of one figure.
  StockChange Of(Action what, std::int64_t ofRow, float from, float to) const {
    StockChange change = *this;
    change.action = what;
    change.row = ofRow;
    change.before = from;
    change.after = to;
    return change;
  }
};

/// The one place through which stock reaches the tables, whoever moves it: writes the change, with three decimals (as
/// it stands with BatchRestores) and a lot's price with `DecimalPlaces`, and notes it and leaves a line in the
/// history, within the caller's transaction. Throws BadValue for a lot whose texts do not fit.
void WriteStockChange(Session& session, const StockChange& change);

}  // namespace vellumark
