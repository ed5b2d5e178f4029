// A random operator at the bench, thousands of acts long, against a model in memory that knows nothing of the tables.
// After each act every figure of stock is what the model says, no lot is below zero, numbers are unique and rising, and
// of the Basic Colors nothing came out of nothing: stock, what Batches hold and what was lost add up. What a Batch
// holds is what really left stock for it, however much its lines needed.

#include <cmath>
#include <map>
#include <random>
#include <set>

#include "core/base/text.h"
#include "core/colors/basic_work.h"
#include "core/colors/basics.h"
#include "core/colors/rename.h"
#include "core/inventory/lot_copies.h"
#include "life_room.h"

namespace vellumark {
namespace {

using Thousandths = std::int64_t;

Thousandths Whole(double quantity) {
  return std::llround(quantity * 1000);
}

// "Basic/RED/0" is Unlotted Inventory. A Basic Color's lot is told by its number, since its reference may be another's
// by the time it comes back; lots of one Batch share their number and are told by reference.
std::string PlaceOf(ColorKind kind, std::string_view name, std::int32_t ref, std::string_view number = {}) {
  if (kind == ColorKind::Mix || ref == 0)
    return fmt::format("{}/{}/{}", kind == ColorKind::Mix ? "Mix" : "Basic", name, ref);
  return fmt::format("Basic/{}/{}", name, number);
}
bool IsLot(const std::string& place) {
  return !place.ends_with("/0");
}
bool IsMix(const std::string& place) {
  return place.starts_with("Mix");
}

using Net = std::map<std::string, Thousandths>;

// What the operator sees on the bench before a save.
struct Bench {
  Net takings;
  Thousandths returned = 0;
  Thousandths jobs = 0;
  std::string madeName;
  bool madeLotted = false;
};

class Model {
 public:
  std::map<std::string, Thousandths> stock;
  std::set<std::string> consigned;
  bool basicsBelowZero = true;
  Thousandths entered = 0;  // Basic Colors: what was there or adjusted
  Thousandths lost = 0;     // Basic Colors: held by Batches that were deleted without returning it

  struct StoredBatch {
    Net takings;
    Thousandths made = 0;
    Thousandths jobs = 0;
    std::string madePlace;  // empty: nothing went to stock
  };
  std::map<std::int32_t, StoredBatch> batches;

  struct Held {
    Thousandths quantity;
    std::optional<Thousandths> before;
    std::optional<Thousandths> after;
  };
  std::optional<std::int32_t> openNo;
  std::map<std::string, Held> held;

  std::optional<Thousandths> At(const std::string& place) const {
    const auto found = stock.find(place);
    return found == stock.end() ? std::nullopt : std::optional(found->second);
  }

  void Open(std::int32_t number) {
    openNo = number;
    held.clear();
    for (const auto& [place, quantity] : batches.at(number).takings) {
      if (quantity == 0) continue;
      const auto before = At(place);
      if (quantity > 0) {
        Put(place, quantity);
      } else {
        Take(place, -quantity, true);
      }
      held[place] = {quantity, before, At(place)};
    }
  }

  void Leave() {
    Net& holds = batches.at(*openNo).takings;
    for (const auto& [place, figure] : held) {
      if (At(place) && At(place) == figure.after) {
        Set(place, figure.before);
      } else if (figure.quantity > 0) {
        holds[place] = Take(place, figure.quantity, true);
      } else {
        Put(place, -figure.quantity);
      }
    }
    openNo.reset();
    held.clear();
  }

  void Store(std::int32_t number, const Bench& bench, const std::string& lotPlace) {
    StoredBatch& batch = batches[number];
    Make(batch, bench, lotPlace);
    Net covered = bench.takings;
    for (auto& [place, quantity] : covered)
      if (!IsLot(place) && !MayGoBelow(place)) quantity = std::min(quantity, At(place).value_or(0));
    std::erase_if(covered, [](const auto& taking) { return taking.second == 0; });
    if (openNo && SameAsHeld(covered)) {
      batch.takings = covered;
      Leave();
    } else {
      batch.takings.clear();
      for (const auto& [place, quantity] : bench.takings) {
        batch.takings[place] = quantity > 0 ? Take(place, quantity, false) : quantity;
        if (quantity < 0) Put(place, -quantity);
      }
    }
    openNo.reset();
    held.clear();
    batch.jobs = bench.jobs;
    batch.made = bench.returned;
  }

  void Delete(std::int32_t number, bool returned) {
    if (!returned) Leave();
    const StoredBatch batch = batches.at(number);
    if (!returned)
      for (const auto& [place, quantity] : batch.takings) lost += IsMix(place) ? 0 : quantity;
    if (IsLot(batch.madePlace)) {
      stock.erase(batch.madePlace);
    } else if (!batch.madePlace.empty()) {
      stock[batch.madePlace] = std::max<Thousandths>(0, stock[batch.madePlace] - batch.made);
    }
    batches.erase(number);
    openNo.reset();
    held.clear();
  }

  void Adjust(const std::string& place, Thousandths quantity) {
    const Thousandths before = At(place).value_or(0);
    Thousandths after = before + quantity;
    if (!MayGoBelow(place)) after = std::max<Thousandths>(0, after);
    Set(place, IsLot(place) && after == 0 ? std::nullopt : std::optional(after));
    if (!IsMix(place)) entered += after - before;
  }

  // Basic Colors that are in stock, that stored Batches hold, and that were lost.
  Thousandths SumOfBasics() const {
    Thousandths sum = lost;
    for (const auto& [place, quantity] : stock) sum += IsMix(place) ? 0 : quantity;
    for (const auto& [number, batch] : batches)
      if (number != openNo.value_or(0))
        for (const auto& [place, quantity] : batch.takings) sum += IsMix(place) ? 0 : quantity;
    return sum;
  }

 private:
  void Set(const std::string& place, std::optional<Thousandths> quantity) {
    if (quantity) {
      stock[place] = *quantity;
    } else {
      stock.erase(place);
    }
  }
  bool MayGoBelow(const std::string& place) const { return basicsBelowZero && !IsLot(place) && !IsMix(place); }
  void Put(const std::string& place, Thousandths quantity) { stock[place] += quantity; }
  // What really left: no more than was there, unless the place may go below zero.
  Thousandths Take(const std::string& place, Thousandths quantity, bool again) {
    const auto before = At(place);
    if (!before) return 0;
    const Thousandths after = *before - quantity;
    if (MayGoBelow(place)) {
      stock[place] = after;
      return quantity;
    }
    const bool goes = IsLot(place) && (again ? after < 0 : after <= 0);
    Set(place, goes ? std::nullopt : std::optional(std::max<Thousandths>(0, after)));
    return std::clamp<Thousandths>(*before, 0, quantity);
  }

  bool SameAsHeld(const Net& takings) const {
    if (takings.size() != held.size()) return false;
    for (const auto& [place, quantity] : takings) {
      const auto found = held.find(place);
      if (found == held.end() || found->second.quantity != quantity) return false;
    }
    return true;
  }

  void Make(StoredBatch& batch, const Bench& bench, const std::string& lotPlace) {
    const std::string unlotted = PlaceOf(ColorKind::Mix, bench.madeName, 0);
    const auto add = [&](Thousandths quantity) {
      if (quantity <= 0) return;
      if (bench.madeLotted) {
        stock[lotPlace] = quantity;
      } else {
        stock[unlotted] += quantity;
      }
    };
    const auto place = [&]() -> std::string {
      if (bench.returned == 0) return {};
      return bench.madeLotted ? lotPlace : unlotted;
    };
    if (batch.madePlace.empty()) {
      add(bench.returned - batch.made);
      batch.madePlace = place();
      return;
    }
    if (!IsLot(batch.madePlace)) {
      stock[unlotted] = std::max<Thousandths>(0, stock[unlotted] + bench.returned - batch.made);
      batch.madePlace = place();
      return;
    }
    const auto there = At(batch.madePlace);
    if (there && bench.returned > 0) {
      const Thousandths after = *there + bench.returned - batch.made;
      Set(batch.madePlace, after <= 0 && bench.returned < batch.made ? std::nullopt : std::optional(after));
      return;
    }
    const Thousandths removed = std::clamp<Thousandths>(batch.made, 0, there.value_or(0));
    if (removed > 0) Set(batch.madePlace, *there == removed ? std::nullopt : std::optional(*there - removed));
    const Thousandths added = std::max<Thousandths>(0, bench.returned - (batch.made - removed));
    if (added == 0 && bench.returned > 0) return;
    add(added);
    batch.madePlace = place();
  }
};

// Answers by chance and remembers what it answered.
class ChancePrompt final : public Prompt {
 public:
  explicit ChancePrompt(std::mt19937_64& random) : random_(random) {}
  Answer Show(const Message& message) override {
    if (message.buttons == Buttons::Ok) return Answer::Ok;
    const Answer answer = random_() % 3 == 0 ? Answer::No : Answer::Yes;
    answers[message.title] = answer;
    return answer;
  }
  std::map<std::string, Answer> answers;

 private:
  std::mt19937_64& random_;
};

class Operator {
 public:
  Operator(std::uint64_t seed, bool basicsBelowZero) : random_(seed), prompt_(random_) {
    FillRoom(basicsBelowZero);
    // The room's session with a prompt that answers by chance.
    session_.DataFolder = room_.session.DataFolder;
    session_.support = std::move(room_.session.support);
    session_.DataFileDB = std::move(room_.session.DataFileDB);
    session_.DataFileDB->SetChanges(&session_.changes);
    session_.DataFileName = room_.session.DataFileName;
    session_.DataFileOpen = true;
    session_.CurrentDatabase = "INK";
    session_.databaseList = {"INK"};
    ReadSettings(session_);
    subscription_ = session_.changes.Subscribe([this](const std::vector<Change>& changes) {
      for (const Change& change : changes)
        if (change.kind == Change::Kind::Batch) told_.push_back(change);
    });
    record_ = NewBatchRecord(session_);
  }

  void Act() {
    prompt_.answers.clear();
    told_.clear();
    const BatchState before = record_.state;
    const std::int32_t number = record_.BatchNo;
    const Bench bench = Look();
    left_ = false;
    DoOne();
    Follow(before, number, bench);
    Check();
    if (++acts_ % 500 == 0) room_.sound.Expect(session_, CheckState::InUse);
  }

  // The same with lots in use by turns, renumbered, and with another ink merged into those that Batches hold: what each
  // place holds is then more than the model knows, but of the Basic Colors as much is in stock and in the Batches as was
  // entered.
  void ActInTheLedger() {
    prompt_.answers.clear();
    told_.clear();
    const auto held = HeldByBatches();
    const Thousandths lines = StockOfBasics() + Sum(held);
    const Thousandths before = StockOfBasics();
    const bool byHand = Chance(record_.state == BatchState::None ? 3 : 12);
    if (byHand) {
      ByHand();
      if (record_.state == BatchState::None) record_ = NewBatchRecord(session_);
    } else {
      DoOne();
    }
    Thousandths entered = adjusted_ ? StockOfBasics() - before : 0;
    adjusted_ = false;
    for (const Change& change : told_) {
      const std::int32_t no = LeadingInteger(change.name);
      if (change.what != Change::What::Deleted || prompt_.answers["Batch Window - Update Inventories?"] == Answer::Yes)
        continue;
      const Thousandths lost = lines - StockOfBasics() - Sum(HeldByBatches());
      const Thousandths had = taken_[no];
      EXPECT_GE(lost, std::min<Thousandths>(0, had));
      EXPECT_LE(lost, std::max<Thousandths>(0, had));
      entered -= lost;
      ++deletions;
    }
    EXPECT_EQ(StockOfBasics() + Sum(HeldByBatches()), lines + entered);
    if (++acts_ % 250 == 0) room_.sound.Expect(session_, CheckState::InUse);
  }

  int saves = 0;
  int deletions = 0;
  int edits = 0;
  int pours = 0;
  int merges = 0;
  mutable int ownInks = 0;

 private:
  Thousandths StockOfBasics() {
    return Whole(
        session_.File()
            .Scalar("SELECT (SELECT TOTAL(Inventory) FROM INK_Basic) + (SELECT TOTAL(LotQty) FROM INK_Basic_LotInv)")
            .Number());
  }
  // By Batch; the open one has handed back what it took.
  std::map<std::int32_t, Thousandths> HeldByBatches() {
    std::map<std::int32_t, Thousandths> held;
    Statement rows = session_.File().Prepare(
        "SELECT BatchNo, TOTAL(LotQty) FROM INK_Batch_LotInv WHERE IngType <> 2 GROUP BY BatchNo");
    while (rows.Step()) {
      const auto no = static_cast<std::int32_t>(rows.Whole(0));
      taken_[no] = Whole(rows.Number(1));
      if (record_.state != BatchState::Edit || record_.BatchNo != no) held[no] = taken_[no];
    }
    return held;
  }
  static Thousandths Sum(const std::map<std::int32_t, Thousandths>& held) {
    Thousandths sum = 0;
    for (const auto& [no, quantity] : held) sum += quantity;
    return sum;
  }

  void ByHand() {
    if (record_.state == BatchState::None && Chance(2)) {
      session_.InvLotTracking = 1 - session_.InvLotTracking;
      return;
    }
    if (record_.state == BatchState::None && Chance(2)) return Chance(2) && extra_ ? MergeExtra() : BringExtra();
    constexpr std::array names{"RED", "WHITE", "BLUE"};
    const std::string name = names[Below(3)];
    const std::vector<LotRow> lots = LotsOf(session_, ColorKind::Basic, name);
    if (lots.empty() || record_.state != BatchState::None) return;
    const LotRow& lot = lots[Below(lots.size())];
    LotRow now = lot;
    now.LotNumber = fmt::format("R{}", ++brought_);
    RewriteLot(session_, {ColorKind::Basic, name, {}, StockEvent::ManualAdjust, {}}, lot, now);
  }

  // An ink whose lots bear references that lots of the others bear too.
  void BringExtra() {
    if (extra_) return;
    extra_ = true;
    adjusted_ = true;
    BasicWork work = NewBasicWork(session_, "EXTRA");
    ASSERT_TRUE(SaveBasic(session_, work));
    for (const float quantity : {30.0F, 9.0F, 7.0F, 20.0F}) {
      Posting posting{.source = PostingSource::ManualAdjust, .name = "EXTRA", .quantity = quantity};
      if (quantity < 30) posting.place = {.LotNumber = fmt::format("E{}", ++brought_)};
      PostStock(session_, posting);
    }
  }
  void MergeExtra() {
    constexpr std::array names{"RED", "WHITE", "BLUE"};
    const Thousandths before = StockOfBasics();
    const Thousandths had =
        Whole(session_.File()
                  .Scalar("SELECT (SELECT TOTAL(Inventory) FROM INK_Basic WHERE Color_Name = 'EXTRA') + "
                          "(SELECT TOTAL(LotQty) FROM INK_Basic_LotInv WHERE LotCName = 'EXTRA')")
                  .Number());
    const auto renamed = RenameBasic(session_, "EXTRA", names[Below(3)]);
    if (ReadBasic(session_, "EXTRA")) return;
    EXPECT_TRUE(renamed);
    // The surviving colour keeps its own stock, and what Batches hold of the other is now of it.
    EXPECT_EQ(StockOfBasics(), before - had);
    extra_ = false;
    adjusted_ = true;
    ++merges;
  }

  void FillRoom(bool basicsBelowZero) {
    room_.Setting("AllowNegInv", basicsBelowZero ? "1" : "0");
    model_.basicsBelowZero = basicsBelowZero;
    for (const char* name : {"RED", "WHITE", "BLUE"}) {
      room_.Basic(name, 300, {{"PurchaseCost", 2.5F}});
      model_.stock[PlaceOf(ColorKind::Basic, name, 0)] = Whole(300);
    }
    room_.Formula("PINK", {{"RED", 25.0F}, {"WHITE", 75.0F}}, 20);
    room_.Formula("ROSE", {{"RED", 60.0F}, {"WHITE", 40.0F}}, 15);
    room_.Formula("PLUM", {{"RED", 30.0F}, {"WHITE", 20.0F}, {"BLUE", 50.0F}}, 0);
    model_.stock[PlaceOf(ColorKind::Mix, "PINK", 0)] = Whole(20);
    model_.stock[PlaceOf(ColorKind::Mix, "ROSE", 0)] = Whole(15);
    model_.stock[PlaceOf(ColorKind::Mix, "PLUM", 0)] = 0;
    for (const char* name : {"RED", "WHITE", "BLUE"})
      for (const std::int32_t ref : {1, 2, 3}) {
        room_.Lot(ColorKind::Basic, name, ref, 50, {{"LotConsignment", ref == 3}});
        const std::string place = PlaceOf(ColorKind::Basic, name, ref, fmt::format("L{}", ref));
        model_.stock[place] = Whole(50);
        if (ref == 3) model_.consigned.insert(place);
      }
    room_.session.File().Execute("UPDATE INK_Basic SET LotRefID = 3");
    model_.entered = model_.SumOfBasics();
  }

  std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }
  bool Chance(std::size_t of) { return Below(of) == 0; }
  std::string Quantity(double most) {
    return Fixed(static_cast<double>(1 + random_() % static_cast<std::uint64_t>(most * 1000)) / 1000, 3);
  }

  // What a save would take, worked out from what the screen shows.
  Bench Look() const {
    Bench bench;
    bench.madeName = record_.work.Color_Name;
    bench.madeLotted = !record_.fields.LotNumber.empty();
    bench.returned = Whole(record_.returned);
    for (const BatchJobLine& line : record_.jobs) bench.jobs += Whole(line.QtyUsed);
    std::map<std::string, Thousandths> left = model_.stock;
    for (std::size_t i = 0; i < record_.work.Rows.size(); ++i) {
      const BatchRow& row = record_.work.Rows[i];
      const ColorKind kind = row.kind == LineKind::Mix ? ColorKind::Mix : ColorKind::Basic;
      Thousandths rest = Whole(row.amount);
      for (const LotUse& use : rest > 0 ? RowLots(record_, i).uses : std::vector<LotUse>{}) {
        const std::string place = PlaceOf(kind, row.name, use.LotRefID, use.LotNumber);
        Thousandths drawn = Whole(use.LotQty);
        if (use.LotRefID != 0) {
          drawn = model_.consigned.contains(place) ? 0 : std::min(drawn, left.contains(place) ? left[place] : 0);
          left[place] -= drawn;
        }
        bench.takings[place] += drawn;
        rest = std::max<Thousandths>(0, rest - drawn);
      }
      bench.takings[PlaceOf(kind, row.name, 0)] += rest;
    }
    std::erase_if(bench.takings, [](const auto& taking) { return taking.second == 0; });
    return bench;
  }

  template <class T>
  void Leaves(const Result<T>& result, bool done) {
    left_ = result && done;
  }

  void DoOne() {
    switch (Below(22)) {
      case 0:
      case 1:
        return Start();
      case 2:
        SetQuantityText(record_.work, Quantity(60));
        return Calculate();
      case 3:
        return Calculate();
      case 4:
        return TakeOne();
      case 5:
        return AdjustOne();
      case 6:
        return AddOne();
      case 7:
      case 8:
        return ChooseLots();
      case 9:
        return ShareOut();
      case 10:
      case 11:
        return Save();
      case 12: {
        const auto held = SaveAndHoldBatch(session_, record_, dialogs_);
        return Leaves(held, held && *held != SaveEnd::Stays);
      }
      case 13:
        return OpenOne();
      case 14: {
        const auto moved =
            Chance(2) ? NextBatch(session_, record_, dialogs_) : PreviousBatch(session_, record_, dialogs_);
        return Leaves(moved, moved && *moved);
      }
      case 15: {
        const auto out = Chance(2) ? CancelBatch(session_, record_) : CloseBatch(session_, record_, dialogs_);
        return Leaves(out, out && *out);
      }
      case 16: {
        const auto deleted = DeleteBatch(session_, record_, dialogs_);
        return Leaves(deleted, deleted && *deleted);
      }
      case 17:
        return AdjustStock();
      case 18:
        return PourOne();
      case 19:
        return UnitThereAndBack();
      case 20:
        return BringLot();
      default:
        if (Chance(4)) return Die();
        return ChooseLots();
    }
  }

  void Start() {
    if (record_.state == BatchState::Edit) return;
    constexpr std::array names{"PINK", "ROSE", "PLUM"};
    if (EnterBatchColor(session_, record_, names[Below(3)])) {
      SetQuantityText(record_.work, Quantity(60));
      if (record_.state == BatchState::None) record_.fields.LotNumber = Chance(2) ? "MADE" : "";
      Calculate();
    }
  }
  void Calculate() {
    [[maybe_unused]] const auto done = Chance(2) ? MixBatch(session_, record_) : RecycleBatch(session_, record_);
  }
  void TakeOne() {
    if (record_.work.RecycleList.empty()) return;
    const std::string name = record_.work.RecycleList[Below(record_.work.RecycleList.size())].Color_Name;
    [[maybe_unused]] const auto taken = TakeRecycled(session_, record_, name, Quantity(8));
  }
  void AdjustOne() {
    const std::size_t mixes = record_.work.RecycledColors.size();
    if (mixes == 0) return;
    const std::size_t row = Below(mixes);
    const auto window = OpenMixRow(session_, record_, row);
    if (!window) return;
    [[maybe_unused]] const auto done =
        ApplyMixRow(session_, record_, row, {.amount = Chance(4) ? "0" : Quantity(6), .recycle = Chance(2)});
  }
  void PourOne() {
    if (record_.work.RecycledColors.empty()) return;
    const std::size_t row = Below(record_.work.RecycledColors.size());
    const double before = record_.work.CalculatedQuantity;
    const double amount = record_.work.Rows[row].amount + LeadingNumber(Quantity(5));
    if (const auto poured = PourMixRow(session_, record_, row, amount); poured && poured->reformulated) {
      EXPECT_GE(record_.work.Quantity(), before);
      EXPECT_EQ(record_.work.Rows[row].amount, RoundTo(amount, 3));
      ++pours;
    }
  }
  // Without a calculation in between nothing has become of the Batch but that its rows are gone.
  void UnitThereAndBack() {
    const auto jobs = record_.jobs;
    if (!EnterBatchUnit(session_, record_, 2)) return;
    ASSERT_TRUE(EnterBatchUnit(session_, record_, 1));
    EXPECT_EQ(record_.jobs, jobs);
    if (!record_.work.Color_Name.empty()) Calculate();
  }
  void AddOne() {
    const std::size_t first = record_.work.RecycledColors.size() + record_.work.Ingredients.size();
    if (!record_.work.Additions.empty() && Chance(3)) {
      [[maybe_unused]] const auto done = ApplyAdditionRow(
          session_, record_, first + Below(record_.work.Additions.size()), Chance(2) ? "0" : Quantity(3));
      return;
    }
    constexpr std::array names{"RED", "WHITE", "BLUE", "EXTRA"};
    [[maybe_unused]] const auto added =
        AddBatchAdditions(session_, record_, {{names[Below(extra_ ? 4 : 3)], (Chance(3) ? "-" : "") + Quantity(3)}});
  }
  void ChooseLots() {
    if (record_.work.Rows.empty()) return;
    const std::size_t row = Below(record_.work.Rows.size());
    const BatchRow shown = record_.work.Rows[row];
    if (!shown.lotLink || !OpenRowLots(session_, record_, row)) return;
    const LineKind kind = shown.kind;
    auto work = LoadLotSelection(session_, shown.name, kind, LotNeed(session_, record_, row), record_.work.UMF,
                                 RowLots(record_, row));
    if (!work) return;
    for (std::size_t tries = Below(4); tries > 0; --tries) {
      const std::size_t lot = Below(work->rows.size());
      if (Chance(3)) {
        work->UncheckRow(lot);
      } else if (Chance(2)) {
        work->CheckRow(lot);
      } else {
        [[maybe_unused]] const auto updated = work->UpdateRow(lot, Quantity(5));
      }
    }
    [[maybe_unused]] const auto set = SetRowLots(session_, record_, row, work->Selection());
  }
  void ShareOut() {
    const std::size_t count = Below(4);
    std::vector<JobItem> items;
    for (std::size_t i = 0; i < count; ++i) items.push_back({fmt::format("J{}", Below(6)), Quantity(15)});
    if (count == 0 && Chance(2)) {
      [[maybe_unused]] const auto set = SetReturnToInventory(session_, record_, Chance(2));
    } else {
      [[maybe_unused]] const auto saved = SaveJobItems(session_, record_, items);
    }
  }
  void Save() {
    if (record_.work.Rows.empty()) return;
    const auto saved = SaveBatch(session_, record_, dialogs_);
    Leaves(saved, saved && *saved != SaveEnd::Stays);
  }
  void OpenOne() {
    const std::int64_t count = session_.File().Scalar("SELECT COUNT(*) FROM INK_Batch").Whole();
    if (count == 0) return;
    const Value number = session_.File().Scalar("SELECT BatchNo FROM INK_Batch ORDER BY BatchNo LIMIT 1 OFFSET ?",
                                                {static_cast<std::int64_t>(Below(static_cast<std::size_t>(count)))});
    const auto found = FindBatch(session_, record_, dialogs_, static_cast<std::int32_t>(number.Whole()));
    Leaves(found, found && *found);
  }
  // Stock moves by other hands, also while a Batch is open.
  void AdjustStock() {
    adjusted_ = true;
    auto figure = model_.stock.begin();
    std::advance(figure, Below(model_.stock.size()));
    const std::string place = figure->first;
    const Thousandths quantity = static_cast<Thousandths>(random_() % 40000) - 15000;
    const std::size_t slash = place.find('/');
    const std::size_t last = place.rfind('/');
    const std::string lot = place.substr(last + 1);
    Posting posting{.source = PostingSource::ManualAdjust,
                    .kind = IsMix(place) ? ColorKind::Mix : ColorKind::Basic,
                    .name = place.substr(slash + 1, last - slash - 1),
                    .quantity = RoundSingle(static_cast<double>(quantity) / 1000, 3)};
    if (IsLot(place)) posting.place = {.LotRefID = IsMix(place) ? LeadingInteger(lot) : RefOf(posting.name, lot)};
    PostStock(session_, posting);
    model_.Adjust(place, quantity);
  }
  std::int32_t RefOf(const std::string& name, const std::string& number) {
    return static_cast<std::int32_t>(
        session_.File()
            .Scalar("SELECT LotRefID FROM INK_Basic_LotInv WHERE LotCName = ? AND LotNumber = ?", {name, number})
            .Whole());
  }
  // A new lot under the lowest reference that is free, such as one that a Batch used up has left.
  void BringLot() {
    adjusted_ = true;
    constexpr std::array names{"RED", "WHITE", "BLUE"};
    const std::string name = names[Below(3)];
    session_.File().Prepare("UPDATE INK_Basic SET LotRefID = 0 WHERE Color_Name = ?").Bind(1, name).Run();
    const std::string number = fmt::format("N{}", ++brought_);
    const PostingResult posted = PostStock(session_, {.source = PostingSource::ScanReturn,
                                                      .kind = ColorKind::Basic,
                                                      .name = name,
                                                      .quantity = 12,
                                                      .place = {.LotNumber = number}});
    model_.Adjust(PlaceOf(ColorKind::Basic, name, posted.LotRefID, number), Whole(12));
  }
  // The program is killed and started again.
  void Die() {
    record_ = NewBatchRecord(session_);
    if (session_.File().TableExists("MSysOpenBatch"))
      session_.File().Execute("UPDATE MSysOpenBatch SET Owner = 'bench/7/died'");
    HealAbandonedBatches(session_);
    left_ = true;
  }

  void Follow(BatchState before, std::int32_t number, const Bench& bench) {
    bool stored = false;
    for (const Change& change : told_) {
      const std::int32_t no = LeadingInteger(change.name);
      if (change.what == Change::What::Deleted) {
        model_.Delete(no, prompt_.answers["Batch Window - Update Inventories?"] == Answer::Yes);
        ++deletions;
        stored = true;
        continue;
      }
      if (change.what == Change::What::Added) {
        EXPECT_TRUE(numbers_.empty() || no > *numbers_.rbegin()) << no;
        EXPECT_TRUE(numbers_.insert(no).second) << no;
        ++saves;
      } else {
        EXPECT_EQ(no, number);
        ++edits;
      }
      const Value ref =
          session_.File().Scalar("SELECT LotRefID FROM INK_Batch WHERE BatchNo = ?", {static_cast<std::int64_t>(no)});
      model_.Store(no, bench, PlaceOf(ColorKind::Mix, bench.madeName, static_cast<std::int32_t>(ref.Whole())));
      stored = true;
    }
    if (left_ && !stored && before == BatchState::Edit) model_.Leave();
    if (left_ && record_.state == BatchState::Edit) {
      model_.Open(record_.BatchNo);
      CheckOwnInk();
    }
  }

  // Of the colour that the Batch just opened has made, it is offered all but what it made itself.
  void CheckOwnInk() const {
    if (!record_.formulaUnchanged) return;
    const Model::StoredBatch& batch = model_.batches.at(record_.BatchNo);
    const std::string& name = record_.work.Color_Name;
    Thousandths others = 0;
    for (const auto& [place, quantity] : model_.stock) {
      if (!place.starts_with(PlaceOf(ColorKind::Mix, name, 0).substr(0, 4 + name.size() + 1))) continue;
      const bool own = place == batch.madePlace;
      others += !own ? quantity : IsLot(place) ? 0 : std::max<Thousandths>(0, quantity - batch.made);
    }
    for (const auto* list : {&record_.work.RecycleList, &record_.work.RecycledColors})
      for (const RecycleColor& color : *list)
        if (color.Color_Name == name) {
          EXPECT_EQ(Whole(color.Inventory), others) << name;
          ++ownInks;
        }
  }

  // What holds on the bench whatever was done there.
  void CheckBench() const {
    const BatchWork& work = record_.work;
    if (work.Rows.empty() || work.QuantityChanged) return;
    Thousandths lines = 0;
    for (const BatchRow& row : work.Rows)
      if (row.kind != LineKind::Addition) lines += Whole(row.amount);
    EXPECT_NEAR(static_cast<double>(lines), static_cast<double>(Whole(work.Quantity())),
                work.Ingredients.empty() ? 5 : 0);
    for (const BatchRow& addition : work.Rows) {
      if (addition.kind != LineKind::Addition) continue;
      Thousandths held = Whole(addition.amount);
      for (const BatchRow& row : work.Rows)
        if (row.kind == LineKind::Basic && row.name == addition.name) held += Whole(row.amount);
      EXPECT_TRUE(held >= 0 || addition.amount > 0) << addition.name << ' ' << held;
    }
    for (const BatchRow& row : work.Rows)
      EXPECT_TRUE(row.kind != LineKind::Mix || RoundTo(row.max, 3) >= row.amount) << row.name << row.max;
    Thousandths jobs = 0;
    for (const BatchJobLine& line : record_.jobs) jobs += Whole(line.QtyUsed);
    EXPECT_LE(jobs, Whole(work.ShownTotal));
  }

  void Check() {
    CheckBench();
    std::map<std::string, Thousandths> found;
    for (const ColorKind kind : {ColorKind::Basic, ColorKind::Mix}) {
      Statement colors = session_.File().Prepare(
          fmt::format("SELECT Color_Name, Inventory FROM {}", session_.QuotedTable(ColorTable(kind))));
      while (colors.Step()) found[PlaceOf(kind, colors.Text(0), 0)] = Whole(colors.Single(1));
      Statement lots = session_.File().Prepare(
          fmt::format("SELECT LotCName, LotRefID, LotQty, LotNumber FROM {}", session_.QuotedTable(LotTable(kind))));
      while (lots.Step()) {
        EXPECT_GE(lots.Single(2), 0);
        found[PlaceOf(kind, lots.Text(0), static_cast<std::int32_t>(lots.Whole(1)), lots.Text(3))] =
            Whole(lots.Single(2));
      }
    }
    EXPECT_EQ(found, model_.stock);
    EXPECT_EQ(model_.SumOfBasics(), model_.entered);
    EXPECT_EQ(MarkedBatches(session_.File()).size(), model_.held.empty() ? 0U : 1U);
    EXPECT_EQ(session_.File().Scalar("SELECT COUNT(*) FROM INK_Batch").Whole(),
              static_cast<std::int64_t>(model_.batches.size()));
    Thousandths jobs = 0;
    Thousandths taken = 0;
    for (const auto& [number, batch] : model_.batches) {
      jobs += batch.jobs;
      for (const auto& [place, quantity] : batch.takings) taken += quantity;
    }
    EXPECT_EQ(Whole(session_.File().Scalar("SELECT TOTAL(QtyUsed) FROM JobRecords").Number()), jobs);
    EXPECT_EQ(Whole(session_.File().Scalar("SELECT TOTAL(LotQty) FROM INK_Batch_LotInv").Number()), taken);
  }

  std::mt19937_64 random_;
  ChancePrompt prompt_;
  NoProgress progress_;
  FixedClock clock_{DateTime{2026, 3, 10, 12, 0, 0}};
  test::LifeRoom room_;
  Session session_{prompt_, progress_, clock_};
  NoBatchDialogs dialogs_;
  Changes::Subscription subscription_;
  std::vector<Change> told_;
  BatchRecord record_;
  Model model_;
  std::set<std::int32_t> numbers_;
  bool left_ = false;
  int brought_ = 0;
  int acts_ = 0;
  bool adjusted_ = false;
  bool extra_ = false;
  std::map<std::int32_t, Thousandths> taken_;
};

class RandomOperator : public testing::TestWithParam<bool> {};

TEST_P(RandomOperator, FiveThousandActsKeepTheStock) {
  constexpr int acts = 5000;
  Operator worker(20260310, GetParam());
  for (int i = 0; i < acts && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(fmt::format("act {}", i));
    worker.Act();
  }
  // The acts did what they are meant to try.
  EXPECT_GT(worker.saves, 100);
  EXPECT_GT(worker.edits, 50);
  EXPECT_GT(worker.deletions, 25);
  EXPECT_GT(worker.pours, 25);
  EXPECT_GT(worker.ownInks, 25);
}
TEST_P(RandomOperator, NothingOutOfNothingWithLotsByTurns) {
  constexpr int acts = 4000;
  Operator worker(20260311, GetParam());
  for (int i = 0; i < acts && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(fmt::format("act {}", i));
    worker.ActInTheLedger();
  }
  EXPECT_GT(worker.deletions, 10);
  EXPECT_GT(worker.merges, 10);
}
INSTANTIATE_TEST_SUITE_P(BasicsBelowZero, RandomOperator, testing::Bool());

}  // namespace
}  // namespace vellumark
