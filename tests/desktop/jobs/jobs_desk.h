#pragma once

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>

#include "core/jobs/job_items.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_tables.h"
#include "desktop/jobs/register.h"
#include "desktop/kit/grid.h"
#include "desktop/reports/register.h"
#include "support/desktop.h"
#include "support/stock_room.h"

namespace vellumark::test {

/// The windows of Jobs on a room with RED (100 unlotted, the lots L1 of 30, L2 of 20 that is older, L3 on consignment)
/// and the formula PINK (20).
struct JobsDesk : StockRoom {
  JobsDesk() {
    desktop::RegisterJobsWindows(windows);
    Setting("InvLotTracking", "1");
    Color(ColorKind::Basic, "RED", 100, {{"PurchaseCost", 2.5F}, {"VOC", 0.5F}, {"HAP", 0.25F}, {"Color_Code", "R1"}});
    Lot(ColorKind::Basic, "RED", 1, 30, {{"LotLoc", "SHELF 4"}, {"LotContID", "C1"}});
    Lot(ColorKind::Basic, "RED", 2, 20, {{"LotDate", DateTime{2025, 11, 2}}, {"LotContID", "C2"}});
    Lot(ColorKind::Basic, "RED", 3, 90, {{"LotDate", DateTime{2025, 1, 1}}, {"LotConsignment", true}});
    Color(ColorKind::Mix, "PINK", 20, {{"PurchaseCost", 6.0F}, {"VOC", 0.2F}, {"BasicVOC", 0.7F}});
  }

  JobRecord Add(const std::string& job, const std::string& name, float quantity, std::int32_t lot = 0,
                ColorKind kind = ColorKind::Basic) {
    JobItemEntry entry = NewJobItem(session);
    entry.JobNumber = job;
    entry.Color_Name = name;
    entry.kind = kind;
    entry.takes = {{lot, lot == 0 ? "" : "L" + std::to_string(lot), quantity}};
    const auto added = AddJobItems(session, entry);
    EXPECT_TRUE(added) << (added ? "" : added.error().text);
    return added ? added->front() : JobRecord{};
  }
  JobRecord Row(std::int64_t row) const { return ReadJobRecord(session, row).value_or(JobRecord{}); }
  float InLot(std::int32_t ref) { return LotQty(ColorKind::Basic, "RED", ref).Single(); }
  float Unlotted() { return Inventory(ColorKind::Basic, "RED").Single(); }

  desktop::Window& Open(const desktop::Arguments& arguments = {}) {
    form = windows.OpenForm("JobForm", arguments);
    ShowActive(*form);
    return *form;
  }
  static std::string Text(QWidget& window, const char* name) {
    return Control<QLabel>(window, name).text().toStdString();
  }
  desktop::Grid& List() { return Control<desktop::Grid>(*form, "fg"); }
  std::string Cell(int row, JobColumn column) {
    return List().Model().Source()->Text(row, static_cast<int>(column));
  }
  /// The cursor into that cell.
  void GoTo(int row, JobColumn column) {
    form->activateWindow();
    Settle();
    List().View().setFocus();
    List().View().setCurrentIndex(List().Model().index(List().Model().ShownRow(row), static_cast<int>(column)));
  }
  /// Types into the Qty Used of a row, as by hand.
  void TypeUsed(int row, const std::string& text) {
    GoTo(row, JobColumn::QtyUsed);
    PressOn(Qt::Key_Return);
    TypeOn(text);
    PressOn(Qt::Key_Tab);
    Settle();
  }

  desktop::WindowList windows{session};
  desktop::Window* form = nullptr;
};

}  // namespace vellumark::test
