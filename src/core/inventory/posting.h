#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/inventory/lots.h"
#include "core/inventory/stock_change.h"
#include "core/inventory/stock_rules.h"

namespace vellumark {

/// Where stock of a colour lies: its Unlotted Inventory, a lot by its reference, or a lot by its number. The
/// particulars are those of a lot that the posting makes.
struct StockPlace {
  /// 1 to `kLastLotRefID`; 0 for a lot that is known by its number alone, and for Unlotted Inventory.
  std::int32_t LotRefID = 0;
  /// Empty and "Unlotted Inv." mean what is in no lot, the latter whatever the reference. Beside a reference it is a
  /// condition: references repeat after a merge or a deletion, and a lot of another number is not the one that is
  /// meant.
  std::string LotNumber{};
  std::optional<std::string> LotLoc{};
  std::optional<std::string> LotContID{};
  // Of a lot that a Job Record or a Batch brings back; other sources date it today.
  std::optional<DateTime> LotDate{};
  float LotPrice = 0;  // of one that a Batch brings back

  bool IsUnlotted() const;
};

/// One movement of stock.
struct Posting {
  PostingSource source = PostingSource::ManualAdjust;
  ColorKind kind = ColorKind::Basic;
  std::string name{};
  std::string database{};  ///< any of the file; empty for the current one
  /// In the inventory unit, three decimals. What a Batch takes, hands back or makes is positive; a Job Record's issue
  /// and a manual adjustment downwards are negative; a Reset gives the value itself.
  float quantity = 0;
  StockPlace place{};
  bool remove = false;     ///< the lot goes, whatever is left of it: that much is written off
  std::string document{};  ///< for the history: a Batch's number, a job
  std::string reason{};    ///< for the history
  /// A lot that is there takes the location and the container of the place, as far as they are given; its copies too.
  bool moveLot = false;
  /// What a Batch has put into the lot lies there also while Lotted Inventory is off.
  bool knownLot = false;
};

struct PostingResult {
  enum class Outcome {
    Posted,          ///< `quantity` is what now stands there
    LotAdded,        ///< a new lot with `quantity`
    LotDeleted,      ///< the lot is gone
    NoDatabase,      ///< nothing done: the file has no such Database
    NoColor,         ///< nothing done: the colour is missing
    NoLot,           ///< nothing done: the lot is missing and this source makes none
    Consigned,       ///< nothing done: a Batch or a job takes nothing from a lot on consignment
    BadReference,    ///< nothing done: no lot can have that reference
    NoLotReference,  ///< nothing done: no reference is free for a new lot
  };
  Outcome outcome = Outcome::Posted;
  float quantity = 0;
  /// The lot posted to, 0 for Unlotted Inventory; -1 when a Batch's colour went to Unlotted Inventory because no
  /// reference was free.
  std::int32_t LotRefID = 0;
  float before = 0;  ///< what stood there until then; 0 where nothing did
};

/// What `Inventory` becomes: the Single of the sum with three decimals, and 0 where the source's comparison of that
/// with the cutoff says so.
float UnlottedAfter(PostingSource source, ColorKind kind, const StockRules& rules, float before, float quantity);
/// What `LotQty` becomes; nothing when the lot goes.
std::optional<float> LotAfter(PostingSource source, const StockRules& rules, float before, float quantity);

/// The lot that is meant, where it is; of several with the number alone the one of the lowest reference. Nothing for
/// Unlotted Inventory.
std::optional<LotRow> FindLot(const Session& session, ColorKind kind, const std::string& name,
                              const std::string& database, const StockPlace& place);

/// Moves stock, in a transaction of its own or in the caller's. While Lotted Inventory is off everything is Unlotted,
/// but for what a Batch itself has put into a lot or handed back to one: that is taken out where it lies. Whether the
/// file may be written is the caller's to ask (RequireWritable) before it starts. Throws std::logic_error for a Basic
/// Color with BatchMakes: a Batch makes none.
PostingResult PostStock(Session& session, const StockRules& rules, const Posting& posting);
PostingResult PostStock(Session& session, const Posting& posting);

}  // namespace vellumark
