#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "core/base/text.h"
#include "core/batch/actions.h"
#include "core/batch/batch_work.h"
#include "support/ink_room.h"

namespace vellumark::test {

/// An ink room with stock in hand and a Batch on the bench.
struct BatchRoom : InkRoom {
  void Basics(const std::vector<std::string>& names) {
    for (const std::string& name : names) Basic(name);
  }

  /// A formula that may be recycled, with so much in stock.
  void Ink(const std::string& name, const std::vector<std::pair<std::string, float>>& parts, float stock,
           std::vector<Cell> cells = {}) {
    cells.insert(cells.begin(), {{"Inventory", stock}, {"Recycle", true}});
    Mix(name, parts, std::move(cells));
  }

  void Lot(const Table& table, const std::string& name, float quantity, bool consignment = false) {
    AddRow(table, {{"LotRefID", ++lots_},
                   {"LotCName", name},
                   {"LotNumber", "L" + std::to_string(lots_)},
                   {"LotQty", quantity},
                   {"LotConsignment", consignment}});
  }

  /// A new Batch of that formula, not yet calculated.
  void Start(const std::string& name, const std::string& quantity) {
    work = NewBatchWork(session);
    work.Color_Name = name;
    work.QuantityText = quantity;
  }
  void Mixed(const std::string& name, const std::string& quantity) {
    Start(name, quantity);
    ASSERT_TRUE(MixAction(session, work));
  }
  void Recycled(const std::string& name, const std::string& quantity) {
    Start(name, quantity);
    ASSERT_TRUE(RecycleAction(session, work));
  }

  /// "Mix A 12.500" for each row.
  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    for (const BatchRow& row : work.Rows)
      lines.push_back(std::string(LineKindName(row.kind)) + " " + row.name + " " + Fixed(row.amount, 3));
    return lines;
  }

  const RecycleColor* Listed(std::string_view name) const {
    for (const RecycleColor& color : work.RecycleList)
      if (EqualNoCase(color.Color_Name, name)) return &color;
    return nullptr;
  }

  BatchWork work;

 private:
  int lots_ = 0;
};

/// The room of a test, whose parts bear their own names.
struct BatchRoomTest : testing::Test {
  BatchRoom room;
  BatchWork& work = room.work;
  Session& session = room.session;
};

using Lines = std::vector<std::string>;

}  // namespace vellumark::test
