// A random operator books Jobs: items of two Databases, what they used, returns and deletions, beside Batches that are
// shared between jobs, opened, changed and deleted. A model in memory knows what each row used; stock and rows together
// never drift, and the history explains every figure.

#include <cmath>
#include <map>
#include <random>

#include "core/jobs/job_items.h"
#include "core/jobs/job_stock.h"
#include "core/batch/life_room.h"

namespace vellumark::test {
namespace {

using Thousandths = std::int64_t;

class JobOperator {
 public:
  JobOperator(std::uint64_t seed, bool negative) : random_(seed), negative_(negative) {
    room_.Setting("AllowNegInv", negative ? "1" : "0");
    for (const int ref : {1, 2}) room_.Lot(ColorKind::Basic, "RED", ref, 40);
    CreateEmptyDatabase(room_.session.File(), "OTHER");
    room_.session.databaseList = {"INK", "OTHER"};
    InsertRow(room_.session.File(), schema::Basic, "OTHER_Basic",
              {{"Color_Name", "RED"}, {"Inventory", 0.0F}, {"PurchaseCost", 2.0F}, {"LotRefID", 0}, {"IngSort", 0}});
    PostStock(room_.session, {.source = PostingSource::ManualAdjust, .name = "RED", .database = "OTHER", .quantity = 60});
    for (const char* name : kColors) sum_[name] = Sum(name);
  }

  void Act() {
    expected_ = sum_;
    free_.clear();
    switch (Below(9)) {
      case 0:
        MakeBatch();
        break;
      case 1:
      case 2:
        Add();
        break;
      case 3:
      case 4:
        SetUsed();
        break;
      case 5:
        Return();
        break;
      case 6:
        Delete();
        break;
      case 7:
        ChangeBatch();
        break;
      default:
        Adjust();
    }
    Check();
    if (++acts_ % 1000 == 0) room_.sound.Expect(room_.session, CheckState::Closed);
  }

  int adds = 0;
  int changes = 0;
  int batchChanges = 0;
  int returns = 0;

 private:
  static constexpr std::array kColors{"RED", "WHITE", "PINK"};
  struct Item {
    Thousandths used = 0;
    Thousandths issued = 0;
    bool operator==(const Item&) const = default;
  };
  static Thousandths Whole(double quantity) { return std::llround(quantity * 1000); }
  std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }
  float Quantity(int most) { return RoundSingle(static_cast<double>(1 + Below(static_cast<std::size_t>(most) * 1000)) / 1000, 3); }
  Thousandths Value1000(const std::string& sql, const std::string& name) {
    return Whole(room_.session.File().Scalar(sql, {name}).Number());
  }
  // Stock of both Databases, and what rows and Batches hold of it.
  Thousandths Sum(const std::string& name) {
    Thousandths sum = Value1000("SELECT TOTAL(QtyUsed) FROM JobRecords WHERE Color_Name = ?", name);
    for (const char* database : {"INK", "OTHER"})
      for (const char* table : {"Basic", "Mix"}) {
        sum += Value1000(fmt::format("SELECT TOTAL(Inventory) FROM {}_{} WHERE Color_Name = ?", database, table), name);
        sum += Value1000(fmt::format("SELECT TOTAL(LotQty) FROM {}_{}_LotInv WHERE LotCName = ?", database, table), name);
      }
    return sum + Value1000("SELECT TOTAL(LotQty) FROM INK_Batch_LotInv WHERE IngName = ?", name);
  }
  std::vector<JobRecord> Rows() {
    std::vector<JobRecord> rows;
    ForEachJobRecord(room_.session, "1 = 1", {}, "RowKey", [&](const JobRecord& r) { return rows.push_back(r), true; });
    return rows;
  }
  std::optional<JobRecord> OneRow() {
    const auto rows = Rows();
    return rows.empty() ? std::nullopt : std::optional(rows[Below(rows.size())]);
  }
  Thousandths Unlotted(const JobRecord& row) {
    return std::max<Thousandths>(
        0, Whole(UnlottedQty(room_.session, row.Kind(), row.Color_Name, row.Database)));
  }
  // What is taken beyond Unlotted Inventory: asked about; without negative inventory it is ink that was not on file.
  void ExpectMore(const JobRecord& row, Thousandths more) {
    const Thousandths missing = more - Unlotted(row);
    if (missing <= 0) return;
    room_.prompt.Expect("Exceeds UnLotted", Answer::Ok);
    if (!negative_ || row.Kind() == ColorKind::Mix) expected_[row.Color_Name] += missing;
  }

  void MakeBatch() {
    const float quantity = Quantity(30);
    room_.Mixed("PINK", Fixed(quantity, 3));
    if (Below(2) == 0) room_.record.fields.LotNumber = "MADE";
    std::vector<vellumark::JobItem> jobs;
    for (std::size_t i = Below(4); i > 0; --i)
      jobs.push_back({fmt::format("B{}", Below(5)), Fixed(static_cast<double>(quantity) / 5, 3)});
    [[maybe_unused]] const auto shared = SaveJobItems(room_.session, room_.record, jobs);
    expected_["PINK"] += Whole(quantity);
    const std::int32_t number = room_.Save();
    batches_[number] = Whole(quantity);
    TakeRows();
  }

  void Add() {
    ++adds;
    JobItemEntry entry = NewJobItem(room_.session);
    entry.JobNumber = fmt::format("J{}", Below(6));
    entry.Database = Below(3) == 0 ? "OTHER" : "INK";
    entry.kind = entry.Database == "INK" && Below(3) == 0 ? ColorKind::Mix : ColorKind::Basic;
    entry.Color_Name = entry.kind == ColorKind::Mix ? "PINK" : "RED";
    const auto places = JobStockOf(room_.session, entry.Database, entry.Color_Name, entry.kind, entry.costing);
    const JobStock& place = places[Below(places.size())];
    const float quantity = Quantity(12);
    entry.takes = {{place.LotRefID, place.LotNumber, quantity}};
    const bool fits = Whole(quantity) <= Whole(place.quantity);
    if (place.LotRefID == 0) {
      JobRecord row;
      row.Color_Name = entry.Color_Name;
      row.Database = entry.Database;
      row.ItemType = static_cast<std::uint8_t>(entry.kind);
      ExpectMore(row, Whole(quantity));
    }
    const auto added = AddJobItems(room_.session, entry);
    EXPECT_EQ(added.has_value(), fits || place.LotRefID == 0);
    if (added) items_[added->front().row] = {Whole(quantity), Whole(quantity)};
  }

  void SetUsed() {
    const auto row = OneRow();
    if (!row) return;
    const Thousandths wanted = Whole(Quantity(15));
    const JobCeiling ceiling = CeilingOf(room_.session, *row);
    const bool fits = wanted <= std::max(Whole(ceiling.most), Whole(row->QtyUsed));
    const bool open = !ceiling.lot && !ceiling.ofBatch;
    if (open) ExpectMore(*row, wanted - Whole(row->QtyUsed));
    const auto set = SetQtyUsed(room_.session, row->row, Fixed(static_cast<double>(wanted) / 1000, 3));
    EXPECT_EQ(set.has_value(), fits || open) << (set ? "" : set.error().text);
    if (!set) return;
    ++(row->IsOfBatch() ? batchChanges : changes);
    Item& item = items_[row->row];
    item.used = wanted;
    item.issued = std::max(item.issued, wanted);
  }

  void Return() {
    const auto row = OneRow();
    if (!row) return;
    const float quantity = Below(4) == 0 ? row->QtyUsed : Quantity(6);
    const auto back = ReturnFromJob(room_.session, {.row = row->row, .quantity = quantity, .LotLoc = {}, .LotContID = {}});
    EXPECT_EQ(back.has_value(), quantity <= row->QtyUsed);
    if (!back) return;
    ++returns;
    items_[row->row].used -= Whole(quantity);
    if (items_[row->row].used == 0) items_.erase(row->row);
  }

  void Delete() {
    const auto row = OneRow();
    if (!row || row->IsOfBatch()) return;
    const bool yes = Below(2) == 0;
    room_.prompt.Expect("Ink Inventory", yes ? Answer::Yes : Answer::No);
    ASSERT_TRUE(DeleteJobItem(room_.session, row->row));
    if (!yes) expected_[row->Color_Name] -= Whole(row->QtyUsed);
    items_.erase(row->row);
  }

  void ChangeBatch() {
    if (batches_.empty()) return;
    auto at = batches_.begin();
    std::advance(at, Below(batches_.size()));
    room_.Open(at->first);
    if (!MarkedBatches(room_.session.File()).empty())
      for (const JobRecord& row : Rows())
        if (row.BatchNo == at->first) {
          EXPECT_FALSE(SetQtyUsed(room_.session, row.row, "0.001"));  // it is open
        }
    Thousandths jobs = 0;
    for (const BatchJobLine& line : room_.record.jobs) jobs += Whole(line.QtyUsed);
    EXPECT_EQ(Whole(room_.record.returned), room_.record.ReturnToInventory ? at->second - jobs : 0);
    if (Below(3) == 0) {
      room_.prompt.Expect("Batch Window - Delete Batch?", Answer::Yes);
      room_.prompt.Expect("Batch Window - Update Inventories?", Answer::Yes);
      ASSERT_TRUE(DeleteBatch(room_.session, room_.record, room_.dialogs, MoveOn::Nowhere));
      batches_.erase(at);
      free_ = {"PINK"};  // what was used of it elsewhere is gone with it
    } else if (Below(2) == 0) {
      ASSERT_TRUE(CancelBatch(room_.session, room_.record));
    } else {
      room_.record.fields.ShortNote = std::to_string(acts_);
      ASSERT_TRUE(SaveBatch(room_.session, room_.record, room_.dialogs, nullptr, MoveOn::Nowhere));
      free_ = {"PINK"};
    }
    TakeRows();
  }

  void Adjust() {
    const auto lots = LotsOf(room_.session, ColorKind::Basic, "RED");
    Posting posting{.source = PostingSource::ManualAdjust, .name = Below(3) == 0 ? "WHITE" : "RED"};
    if (posting.name == "RED" && !lots.empty() && Below(2) == 0) {
      const LotRow& lot = lots[Below(lots.size())];
      posting.place = {.LotRefID = lot.LotRefID};
      posting.quantity = Below(2) == 0 ? -lot.LotQty : Quantity(9);
    } else {
      posting.quantity = Quantity(20);
    }
    const PostingResult posted = PostStock(room_.session, posting);
    expected_[posting.name] += Whole(posted.quantity) - Whole(posted.before);
  }

  // Rows of Batches are written by the Batch.
  void TakeRows() {
    std::erase_if(items_, [&](const auto& item) { return !ReadJobRecord(room_.session, item.first); });
    for (const JobRecord& row : Rows())
      if (row.IsOfBatch()) items_[row.row] = {Whole(row.QtyUsed), Whole(row.QtyIssued)};
  }

  void Check() {
    std::map<std::int64_t, Item> found;
    std::map<std::int32_t, Thousandths> used;
    for (const JobRecord& row : Rows()) {
      found[row.row] = {Whole(row.QtyUsed), Whole(row.QtyIssued)};
      EXPECT_GT(row.QtyUsed, 0);
      if (row.IsOfBatch()) used[row.BatchNo] += Whole(row.QtyUsed);
    }
    EXPECT_TRUE(found == items_);
    for (const auto& [number, quantity] : used) EXPECT_LE(quantity, batches_.at(number));
    for (const char* name : kColors) {
      sum_[name] = Sum(name);
      if (std::ranges::find(free_, name) == free_.end()) {
        EXPECT_EQ(sum_[name], expected_[name]) << name;
      }
    }
  }

  std::mt19937_64 random_;
  bool negative_;
  PinkRoom room_;
  std::map<std::string, Thousandths> sum_;
  std::map<std::string, Thousandths> expected_;
  std::vector<std::string> free_;  // colours whose sum an act may change by what it cannot know
  std::map<std::int64_t, Item> items_;
  std::map<std::int32_t, Thousandths> batches_;
  int acts_ = 0;
};

TEST(RandomJobs, FiveThousandActsEitherWayKeepTheStock) {
  for (const bool negative : {false, true}) {
    JobOperator worker(negative ? 20260312 : 20260313, negative);
    for (int i = 0; i < 5000 && !testing::Test::HasFailure(); ++i) {
      SCOPED_TRACE(fmt::format("negative {} act {}", negative, i));
      worker.Act();
    }
    EXPECT_GT(worker.adds, 300);
    EXPECT_GT(worker.changes, 100);
    EXPECT_GT(worker.batchChanges, 50);
    EXPECT_GT(worker.returns, 100);
  }
}

}  // namespace
}  // namespace vellumark::test
