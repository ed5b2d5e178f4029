#pragma once

#include <optional>
#include <string>

#include "core/inventory/posting.h"

namespace vellumark {

// A lot keeps its price for as long as ink of it can come back, also while there is none of it in stock.

/// Keeps the price of a lot that is about to go, by its row, where items of Jobs came from it.
void KeepPriceOfGoneLot(Session& session, const StockChange& change);
/// What such a lot cost when it went; nothing of one that no item came from, or that an earlier program let go.
std::optional<float> PriceOfGoneLot(const Session& session, const Posting& posting);

}  // namespace vellumark
