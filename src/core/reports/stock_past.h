#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/datafile/stock_history.h"
#include "core/reports/by_name.h"
#include "core/reports/definition.h"

namespace vellumark {

/// What a colour's stock did, in thousandths of the inventory unit. What takes away is negative, so that opening stands
/// with all the others for what is there at the end.
struct StockMoves {
  std::int64_t opening = 0;
  std::int64_t made = 0;      ///< by Batches, less what was unmade
  std::int64_t received = 0;  ///< entered by hand, set higher, copied
  std::int64_t used = 0;      ///< in Batches, less what was handed back, and issued to jobs
  std::int64_t returned = 0;  ///< from jobs and by scan
  std::int64_t writtenOff = 0;

  std::int64_t Closing() const { return opening + made + received + used + returned + writtenOff; }
  bool Any() const {
    return opening != 0 || made != 0 || received != 0 || used != 0 || returned != 0 || writtenOff != 0;
  }
};

/// A figure of stock on the last day: what is unlotted, or a lot by its reference.
struct PastLot {
  std::string LotNumber{};
  std::int64_t exact = 0;  ///< billionths
  std::int64_t Thousandths() const;
};

struct PastColor {
  std::string name{};
  StockMoves moves{};
  std::map<std::int32_t, PastLot> lots{};
};

/// The stock history of a Database up to the last day of the range, through the renames of its colours, each under the
/// name that it has now. What an open Batch handed back counts as used for as long as it is open, on past days too: what
/// it hands back counts from when it is saved, left or deleted.
class PastStock {
 public:
  PastStock(const ReportContext& context, const std::string& database);
  ByName<PastColor>& Of(ColorKind kind) { return kind == ColorKind::Mix ? mixes_ : basics_; }

 private:
  void Read(const ReportContext& context, const std::string& database);
  void TakeLine(const StockLine& line, const DateTime& when);
  void TakeHeld(const ReportContext& context, const std::string& database);
  void Rename(ColorKind kind, const std::string& from, const std::string& to);
  void Take(PastColor& color, std::int32_t ref, double change, std::int64_t StockMoves::*kind);
  bool IsOpening(const StockLine& line) const;
  void EndOpening(const StockLine& line);

  // What the opening of a Batch handed back, by its document, for as long as nothing tells that it is open no more.
  std::map<std::string, std::vector<StockLine>> handedBack_;
  std::string saving_;  // the Batch that took with the line before, and when
  DateTime savedAt_;
  DateTime from_;
  DateTime end_;
  ByName<PastColor> basics_;
  ByName<PastColor> mixes_;
};

}  // namespace vellumark
