#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/jobs/job_changes.h"
#include "core/jobs/job_items.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_records.h"
#include "core/jobs/job_stock.h"
#include "support/need_not_last.h"
#include "support/stock_room.h"

namespace vellumark::test {

/// An ink room with RED (100 unlotted, 50 in the lot L1), the formula PINK (20) and an OTHER Database with its own RED.
struct JobRoom : StockRoom {
  JobRoom() {
    NeedNotLast(session.File());
    CreateEmptyDatabase(session.File(), "OTHER");
    session.databaseList = {"INK", "OTHER"};
    Color(ColorKind::Basic, "RED", 100, {{"PurchaseCost", 2.5F}, {"VOC", 0.5F}, {"HAP", 0.25F}, {"Color_Code", "R1"}});
    Lot(ColorKind::Basic, "RED", 1, 50);
    Color(ColorKind::Mix, "PINK", 20,
          {{"PurchaseCost", 6.0F}, {"BasicCost", 3.0F}, {"VOC", 0.2F}, {"BasicVOC", 0.7F}, {"HAP", 0.1F}});
    Lot(ColorKind::Mix, "PINK", 1, 10, {{"LotPrice", 5.0F}});
  }

  /// The item of an add that has to succeed.
  JobRecord Add(const std::string& job, const std::string& name, float quantity, std::int32_t lot = 0,
                ColorKind kind = ColorKind::Basic) {
    JobItemEntry entry = Entry(job, name, quantity, lot, kind);
    const auto added = AddJobItems(session, entry);
    EXPECT_TRUE(added) << (added ? "" : added.error().text);
    return added ? added->front() : JobRecord{};
  }
  JobItemEntry Entry(const std::string& job, const std::string& name, float quantity, std::int32_t lot = 0,
                     ColorKind kind = ColorKind::Basic) const {
    JobItemEntry entry = NewJobItem(session);
    entry.JobNumber = job;
    entry.Color_Name = name;
    entry.kind = kind;
    entry.takes = {{lot, lot == 0 ? "" : "L" + std::to_string(lot), quantity}};
    return entry;
  }
  JobRecord Row(std::int64_t row) const {
    const auto record = ReadJobRecord(session, row);
    return record ? *record : JobRecord{};
  }
  float Unlotted(const std::string& name, ColorKind kind = ColorKind::Basic) { return Inventory(kind, name).Single(); }
  /// Below zero when the lot is gone.
  float InLot(const std::string& name, std::int32_t ref, ColorKind kind = ColorKind::Basic) {
    const Value quantity = LotQty(kind, name, ref);
    return quantity.IsNull() ? -1 : quantity.Single();
  }

  template <class T>
  static std::string Told(const Result<T>& result) {
    return result ? std::string() : result.error().title + ": " + result.error().text;
  }
};

}  // namespace vellumark::test
