// Every act that can be taken back, one by one, in a room in the middle of its work.

#include <algorithm>
#include <map>
#include <set>

#include "core/batch/take_back.h"
#include "core/colors/additive_control.h"
#include "core/colors/basic_work.h"
#include "core/colors/bulk_delete.h"
#include "core/colors/bulk_rename.h"
#include "core/colors/duplicate.h"
#include "core/colors/formula_modifier.h"
#include "core/colors/formula_work.h"
#include "core/colors/rename.h"
#include "core/colors/resets.h"
#include "core/datafile/databases.h"
#include "core/datafile/moved_rows.h"
#include "core/datafile/stock_trail.h"
#include "core/exchange/design_file.h"
#include "core/exchange/merge_room.h"
#include "core/inventory/lot_copies.h"
#include "core/inventory/reorder.h"
#include "core/inventory/stock_resets.h"
#include "core/jobs/design_work.h"
#include "core/jobs/job_bookings.h"
#include "core/jobs/job_changes.h"
#include "core/jobs/job_items.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_stock.h"
#include "core/labels/scan_return.h"
#include "core/session/rights.h"
#include "core/session/undo_step.h"
#include "core/shell/database_menu.h"
#include "core/shell/undo_room.h"

namespace vellumark::test {
namespace {

/// Two Databases, delivered lots and lots on consignment, a saved Batch, a Job, and two Designs.
struct BusyRoom : UndoRoom {
  BusyRoom() {
    CreateEmptyDatabase(hands.File(), "WEB");
    hands.databaseList = {"INK", "WEB"};
    for (const char* name : {"RED", "BLUE"}) Deliver(name, "C", 20);
    hands.File().Execute("UPDATE INK_Basic_LotInv SET LotConsignment = 1 WHERE LotNumber = 'C'");
    Must(CreateAdditiveSet(hands, Set("FAST", "3")));
    for (const char* id : {"BOX", "LABEL"}) {
      DesignWork work = Must(BeginDesign(hands, id));
      Must(EnterDesignField(work, "Description", fmt::format("The {}", id)));
      Must(SaveDesign(hands, work));
    }
    batch = Must(MakeBatch("PINK", "10"));
    kept = Must(ReadBatch(hands, batch));
    item = Issue("J1", "RED", 5, "A");
    Issue("J1", "BLUE", 3);
  }

  template <class T>
  static T Must(Result<T> done) {
    if (!done) throw std::runtime_error(done.error().text);
    if constexpr (!std::is_void_v<T>) return *std::move(done);
  }
  template <class T>
  static T Must(std::optional<T> done) {
    return done.value();
  }
  static void Must(bool done) {
    if (!done) throw std::runtime_error("it was not done");
  }

  static AdditiveSetWork Set(const std::string& name, const std::string& percent) {
    AdditiveSetWork work{.SetName = name, .rows = {}};
    work.rows[0] = {"WAX", percent};
    return work;
  }
  std::int64_t Issue(const std::string& job, const std::string& color, float quantity, const std::string& lot = "",
                     const std::string& design = "") {
    JobItemEntry entry = NewJobItem(hands);
    entry.JobNumber = job;
    entry.Color_Name = color;
    entry.DesignID = design;
    entry.takes = {{.LotRefID = 0, .LotNumber = lot, .quantity = quantity}};
    return Must(AddJobItems(hands, entry)).front().row;
  }
  void Scan(const std::string& text) {
    ScanRecord record = ParseScan(text).at(0);
    BookScan(hands, record);
    if (record.state != ScanRecord::State::Successful) throw std::runtime_error(record.Message);
  }
  BatchRecord& Opened() {
    BatchRecord record;
    Must(OpenBatch(hands, record, batch));
    return opened.emplace(std::move(record));
  }
  /// The Batch that an act had open when it failed.
  void Leave() {
    if (opened) Must(CancelBatch(hands, *opened));
    opened.reset();
  }
  void ChangeBatch(const std::string& quantity) {
    BatchRecord& record = Opened();
    NoBatchDialogs dialogs;
    record.work.QuantityText = quantity;
    record.work.QuantityChanged = true;
    Must(Must(MixBatch(hands, record)));
    Must(TakeOldestLots(hands, record));
    Must(Must(SaveBatch(hands, record, dialogs, nullptr, MoveOn::Nowhere)) == SaveEnd::Stored);
    opened.reset();
  }
  /// Only what is chosen for its costs and emissions.
  void ChangeModels(float markup) {
    BatchRecord& record = Opened();
    NoBatchDialogs dialogs;
    BatchCostModel model = record.work.cost;
    model.MarkupPercent = markup;
    model.MixVOCModelType = 1;
    Must(SetBatchCostModel(hands, record, model, false));
    Must(SetBatchEmissionModel(hands, record, model, false));
    Must(Must(SaveBatch(hands, record, dialogs, nullptr, MoveOn::Nowhere)) == SaveEnd::Stored);
    opened.reset();
  }
  /// A Batch with an addition that its formula takes up.
  void FoldIntoFormula(const std::string& formula, const std::string& addition) {
    struct Taking : NoBatchDialogs {
      std::optional<ModifiedBatchChoice> ShowSaveModifiedBatch(Session&, const BatchRecord&) override {
        return ModifiedBatchChoice{FormulaChange::Update, ""};
      }
    } dialogs;
    BatchRecord record = NewBatchRecord(hands);
    Must(EnterBatchColor(hands, record, formula));
    record.work.QuantityText = "12.5";
    Must(Must(MixBatch(hands, record)));
    Must(AddBatchAdditions(hands, record, {{addition, "2"}}));
    Must(TakeOldestLots(hands, record));
    Must(Must(SaveBatch(hands, record, dialogs, nullptr, MoveOn::Nowhere)) == SaveEnd::Stored);
  }
  void DropBatch() {
    NoBatchDialogs dialogs;
    Must(Must(DeleteBatch(hands, Opened(), dialogs, MoveOn::Nowhere)));
    opened.reset();
  }
  InventoryWork Inventory(const std::string& name) { return LoadInventory(hands, ColorKind::Basic, name); }
  void Adjust(const std::string& name, const std::string& lot, float quantity) {
    InventoryWork work = Inventory(name);
    AdjustFields fields = ClearedFields(hands, work);
    fields.quantity = quantity;
    fields.lotNumber = lot;
    fields.price = 3.25F;
    Must(ApplyAdjust(hands, work, fields));
    Must(SaveInventory(hands, work));
  }
  void ChangeBasic(const std::string& name, const std::string& code, const std::string& cost = {},
                   const std::string& voc = {}) {
    BasicWork work = LoadBasicWork(hands, Must(ReadBasic(hands, name)));
    work.Color_Code = code;
    if (!cost.empty()) work.typed["PurchaseCost"] = cost;
    if (!voc.empty()) work.typed["VOC"] = voc;
    Must(SaveBasic(hands, work));
  }
  FormulaWork Formula(const std::string& name) {
    FormulaWork work = LoadFormulaWork(hands, Must(ReadMix(hands, name)));
    work.AllowEditing = true;
    return work;
  }
  void AddToFormula(const std::string& name, const std::string& ingredient) {
    FormulaWork work = Formula(name);
    work.grid[2] = {ingredient, "10"};
    Must(SaveFormula(hands, work));
  }
  void NoteOnFormula(const std::string& name, const std::string& note) {
    FormulaWork work = Formula(name);
    work.Notes = note;
    Must(SaveMix(hands, work));
  }
  void ChangeDesign(const std::string& id, const std::string& text) {
    DesignWork work = Must(OpenDesign(hands, id));
    Must(EnterDesignField(work, "Description", text));
    Must(SaveDesign(hands, work));
  }
  /// What was done so far, a use of the Design too, stands in another file.
  void Archive(const std::string& design) {
    Issue("J3", "BLUE", 1, "", design);
    RemoveMovedRows(hands.File(), hands.databaseList, hands.clock.Today(), Leaving::Moving, "YEAR.vkd");
    Must(hands.File().Scalar("SELECT COUNT(*) FROM MSysMovedRows WHERE Name = ?", {design}).Whole() == 1);
  }
  void Modify(const std::string& percent) {
    std::vector<ModifierLine> lines(kModifierLines);
    lines[0] = {true, ModMethod::Increase, "WHITE", percent};
    Must(Must(ApplyModifier(hands, lines, {"PINK", "SKY"})));
  }

  std::int32_t batch = 0;
  BatchRecord kept;  // the same as a backup has it
  std::optional<BatchRecord> opened;
  std::int64_t item = 0;
};

using Step = std::function<void(BusyRoom&)>;
void Nothing(BusyRoom&) {}
struct Case {
  Undoable kind;
  std::string what;
  Step act;
  Step built;  ///< on what the act left
  std::string why;
  Step before = Nothing;  ///< what stands before the act
  /// What it takes besides the rights of its kind.
  std::vector<std::uint8_t UserRights::*> takes = {};
};

// The room of each is the same: Batch 1 of PINK and the Job J1 stand.
std::vector<Case> StockCases() {
  using enum Undoable;
  return {
      {SaveBatch, "Save Batch 000002 of SKY", [](BusyRoom& r) { BusyRoom::Must(r.MakeBatch("SKY", "12.5")); },
       [](BusyRoom& r) { r.Deliver("BLUE", "A"); }, "a lot of BLUE was changed"},
      {ChangeBatch, "Change Batch 000001 of PINK", [](BusyRoom& r) { r.ChangeBatch("25"); },
       [](BusyRoom& r) { r.Deliver("WHITE", "A"); }, "a lot of WHITE was changed"},
      {ChangeBatch, "Change Batch 000001 of PINK", [](BusyRoom& r) { r.ChangeModels(12); },
       [](BusyRoom& r) { r.ChangeModels(15); }, "a Batch of PINK was changed", Nothing,
       {&UserRights::Edit_Costs, &UserRights::Edit_VOCHAP}},
      {SaveBatch, "Save Batch 000002 of SKY", [](BusyRoom& r) { r.FoldIntoFormula("SKY", "GREEN"); },
       [](BusyRoom& r) { r.AddToFormula("SKY", "RED"); }, "SKY was changed", Nothing, {&UserRights::Edit_MasterFormula}},
      {DeleteBatch, "Delete Batch 000001", [](BusyRoom& r) { r.DropBatch(); },
       [](BusyRoom& r) { r.Deliver("RED", "A"); }, "a lot of RED was changed"},
      {TakeOverBatch, "Take Batch 000001 of PINK from a backup",
       [](BusyRoom& r) { BusyRoom::Must(StoreBatchAgain(r.hands, r.kept)); },
       [](BusyRoom& r) { r.Deliver("RED", "A"); }, "a lot of RED was changed", [](BusyRoom& r) { r.DropBatch(); }},
      {AdjustInventory, "Adjust inventory of RED", [](BusyRoom& r) { r.Adjust("RED", "NEW", 2.5F); },
       [](BusyRoom& r) { r.Deliver("RED", "NEW"); }, "a lot of RED was changed"},
      {ResetRowInventories, "Reset inventory of RED",
       [](BusyRoom& r) {
         InventoryWork work = r.Inventory("RED");
         BusyRoom::Must(BusyRoom::Must(vellumark::ResetRowInventories(r.hands, work, {0, 1, 2})));
       },
       [](BusyRoom& r) { PostStock(r.hands, {.name = "RED", .quantity = 1}); }, "RED was changed"},
      {ResetRowLots, "Reset lots of RED",
       [](BusyRoom& r) {
         InventoryWork work = r.Inventory("RED");
         BusyRoom::Must(BusyRoom::Must(ResetRowPrices(r.hands, work, {1, 2}, 7.5F)));
       },
       [](BusyRoom& r) {
         InventoryWork work = r.Inventory("RED");
         BusyRoom::Must(BusyRoom::Must(ResetRowPrices(r.hands, work, {2}, 8.5F)));
       },
       "a lot of RED was changed"},
      {ResetInventories, "Reset the inventory of all colors",
       [](BusyRoom& r) {
         BusyRoom::Must(BusyRoom::Must(vellumark::ResetInventories(r.hands, {.basics = "0", .mixes = "4"})));
       },
       [](BusyRoom& r) { PostStock(r.hands, {.name = "BLUE", .quantity = 1}); }, "BLUE was changed"},
      {ResetReorderPoints, "Reset the reorder points of all colors",
       [](BusyRoom& r) { BusyRoom::Must(BusyRoom::Must(vellumark::ResetReorderPoints(r.hands, {.basics = "5"}))); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::SaveReorderPoint(r.hands, ColorKind::Basic, "BLUE", "7")); },
       "BLUE was changed"},
      {SaveReorderPoint, "Reorder point of RED",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::SaveReorderPoint(r.hands, ColorKind::Basic, "RED", "40")); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::SaveReorderPoint(r.hands, ColorKind::Basic, "RED", "41")); },
       "RED was changed"},
      {ScanStock, "Scan 3.250 of RED", [](BusyRoom& r) { r.Scan("<CN>RED\n<DB>INK\n<LN>S1\n3.25"); },
       [](BusyRoom& r) { r.Deliver("RED", "S1"); }, "a lot of RED was changed"},
      // It takes the item off the Job.
      {ScanReturn, "Scan 5.000 of RED back from Job J1", [](BusyRoom& r) { r.Scan("<JN>J1\n<CN>RED\n5"); },
       [](BusyRoom& r) { r.Deliver("RED", "A"); }, "a lot of RED was changed"},
      {IssueToJob, "Issue BLUE to Job J2", [](BusyRoom& r) { r.item = r.Issue("J2", "BLUE", 2.5F, "A"); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::SetQtyUsed(r.hands, r.item, "2")); },
       "an item of a Job was changed"},
      {SetQtyUsed, "Quantity used of RED on Job J1",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::SetQtyUsed(r.hands, r.item, "2")); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::SetQtyUsed(r.hands, r.item, "3")); }, "a lot of RED was changed"},
      {DeleteJobItem, "Delete RED of Job J1",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::DeleteJobItem(r.hands, r.item)); },
       [](BusyRoom& r) { r.Deliver("RED", "A"); }, "a lot of RED was changed"},
      {RenameJob, "Rename Job J1 to J9", [](BusyRoom& r) { BusyRoom::Must(vellumark::RenameJob(r.hands, "J1", "J9")); },
       [](BusyRoom& r) { r.Issue("J9", "WHITE", 1); }, "Job J9 has got other items"},
      {RenameJob, "Rename Job J1 to J9", [](BusyRoom& r) { BusyRoom::Must(vellumark::RenameJob(r.hands, "J1", "J9")); },
       [](BusyRoom& r) { r.Issue("J1", "WHITE", 1); }, "Another Job J1 has been made since"},
      {CloseJob, "Close Job J1",
       [](BusyRoom& r) { BusyRoom::Must(JobClosingDate(r.hands, "J1", r.hands.clock.Today())); },
       [](BusyRoom& r) { BusyRoom::Must(ReopenJob(r.hands, "J1")); }, "an item of a Job was changed"},
      {SaveDesign, "Change the Design BOX", [](BusyRoom& r) { r.ChangeDesign("BOX", "A large box"); },
       [](BusyRoom& r) { r.ChangeDesign("BOX", "A small box"); }, "the Design BOX was changed"},
      {CopyDesign, "Copy the Design BOX as CASE",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::CopyDesign(r.hands, "BOX", "CASE")); },
       [](BusyRoom& r) { BusyRoom::Must(UpdateJobDesignID(r.hands, {r.item}, "CASE")); }, "the Design CASE"},
      {RenameDesign, "Rename the Design BOX to CRATE",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::RenameDesign(r.hands, "BOX", "CRATE")); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::CopyDesign(r.hands, "LABEL", "BOX")); },
       "Another Design BOX has been made since", [](BusyRoom& r) { r.Archive("BOX"); }},
      {DeleteDesign, "Delete the Design BOX",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::DeleteDesign(r.hands, "BOX")); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::CopyDesign(r.hands, "LABEL", "BOX")); },
       "Another Design BOX has been made since"},
  };
}

/// Takes whatever it is given for a picture.
struct AnyPicture final : PhotoMaker {
  Result<std::string> Jpeg(const std::string& bytes, const std::string&) const override { return bytes; }
};

std::vector<Case> ColorCases() {
  using enum Undoable;
  return {
      {SaveBasic, "Change RED", [](BusyRoom& r) { r.ChangeBasic("RED", "R1", "9.5", "0.25"); },
       [](BusyRoom& r) { r.ChangeBasic("RED", "R2"); }, "RED was changed", Nothing,
       {&UserRights::Edit_Costs, &UserRights::Edit_VOCHAP}},
      {SaveBasic, "Add VIOLET",
       [](BusyRoom& r) {
         BasicWork work = NewBasicWork(r.hands, "VIOLET");
         BusyRoom::Must(vellumark::SaveBasic(r.hands, work));
       },
       [](BusyRoom& r) { r.AddToFormula("SKY", "VIOLET"); }, "VIOLET: formulas have it now", Nothing,
       {&UserRights::Edit_MasterFormula}},
      {RenameBasic, "Rename RED to CRIMSON",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::RenameBasic(r.hands, "RED", "CRIMSON").value().done); },
       [](BusyRoom& r) { r.AddToFormula("SKY", "CRIMSON"); }, "CRIMSON: formulas have it now"},
      {RenameBasic, "Merge RED to GREEN",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::RenameBasic(r.hands, "RED", "GREEN").value().done); },
       [](BusyRoom& r) { r.AddToFormula("PINK", "BLUE"); }, "PINK was changed", Nothing,
       {&UserRights::Edit_MasterFormula}},
      {DeleteBasic, "Delete GREEN",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::DeleteBasic(r.hands, "GREEN").value()); },
       [](BusyRoom& r) { AddZeroBasic(r.hands, "GREEN", false); }, "Another GREEN has been made since"},
      {SaveMix, "Change the Master Formula SKY",
       [](BusyRoom& r) {
         FormulaWork work = r.Formula("SKY");
         work.grid[2] = {"GREEN", "5"};
         BusyRoom::Must(vellumark::SaveMix(r.hands, work));
       },
       [](BusyRoom& r) { r.AddToFormula("SKY", "RED"); }, "SKY was changed", Nothing, {&UserRights::Edit_MasterFormula}},
      {SaveMix, "Change the Master Formula SKY", [](BusyRoom& r) { r.NoteOnFormula("SKY", "Run it slowly"); },
       [](BusyRoom& r) { r.NoteOnFormula("SKY", "Run it fast"); }, "SKY was changed"},
      {SaveMix, "Add the Master Formula DAWN",
       [](BusyRoom& r) {
         FormulaWork work = NewFormulaWork(r.hands, "DAWN");
         work.grid[0] = {"RED", "1"};
         work.grid[1] = {"WHITE", "9"};
         BusyRoom::Must(vellumark::SaveMix(r.hands, work));
       },
       [](BusyRoom& r) { BusyRoom::Must(r.MakeBatch("DAWN", "2")); }, "DAWN", Nothing, {&UserRights::Edit_MasterFormula}},
      {SaveFormula, "Change the ingredients of SKY", [](BusyRoom& r) { r.AddToFormula("SKY", "GREEN"); },
       [](BusyRoom& r) { r.AddToFormula("SKY", "RED"); }, "SKY was changed"},
      {DuplicateFormula, "Duplicate SKY as DUSK",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::DuplicateFormula(r.hands, "SKY", "DUSK", "WEB", "")); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::DuplicateFormula(r.hands, "PINK", "DUSK", "WEB", "")); },
       "DUSK was changed"},
      {RenameMix, "Rename PINK to ROSE",
       [](BusyRoom& r) { BusyRoom::Must(BusyRoom::Must(RenameColor(r.hands, "PINK", "ROSE")).done); },
       [](BusyRoom& r) { BusyRoom::Must(r.MakeBatch("ROSE", "2")); }, "ROSE"},
      {DeleteMix, "Delete the Master Formula PINK",
       [](BusyRoom& r) { BusyRoom::Must(BusyRoom::Must(vellumark::DeleteMix(r.hands, "PINK"))); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::DuplicateFormula(r.hands, "SKY", "PINK", "", "")); },
       "Another PINK has been made since"},
      {CreateAdditiveSet, "Create the Additive Set SLUR",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::CreateAdditiveSet(r.hands, BusyRoom::Set("SLUR", "2"))); },
       [](BusyRoom& r) {
         BusyRoom::Must(BusyRoom::Must(vellumark::ApplyAdditiveSet(r.hands, "SLUR", SetMethod::Add, {"SKY"})));
       },
       "SLUR: formulas have it now"},
      {EditAdditiveSet, "Change the Additive Set SLOW",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::EditAdditiveSet(r.hands, "SLOW", BusyRoom::Set("SLOW", "8"))); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::EditAdditiveSet(r.hands, "SLOW", BusyRoom::Set("SLOW", "9"))); },
       "SLOW was changed"},
      {RenameAdditiveSet, "Rename the Additive Set SLOW to LATE",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::RenameAdditiveSet(r.hands, "SLOW", "LATE")); },
       [](BusyRoom& r) {
         BusyRoom::Must(BusyRoom::Must(vellumark::ApplyAdditiveSet(r.hands, "LATE", SetMethod::Add, {"SKY"})));
       },
       "LATE: formulas have it now"},
      {RenameAdditiveSet, "Merge the Additive Set SLOW to FAST",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::RenameAdditiveSet(r.hands, "SLOW", "FAST")); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::CreateAdditiveSet(r.hands, BusyRoom::Set("SLOW", "2"))); },
       "Another SLOW has been made since"},
      {DeleteAdditiveSet, "Delete the Additive Set SLOW",
       [](BusyRoom& r) { BusyRoom::Must(BusyRoom::Must(vellumark::DeleteAdditiveSet(r.hands, "SLOW"))); },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::CreateAdditiveSet(r.hands, BusyRoom::Set("SLOW", "2"))); },
       "Another SLOW has been made since"},
      {ApplyAdditiveSet, "Apply an Additive Set: 2 formulas",
       [](BusyRoom& r) {
         BusyRoom::Must(BusyRoom::Must(vellumark::ApplyAdditiveSet(r.hands, "FAST", SetMethod::Add, {"SKY", "PINK"})));
       },
       [](BusyRoom& r) { r.AddToFormula("SKY", "RED"); }, "SKY was changed"},
      {ModifyFormulas, "Formula Modifier: 2 formulas", [](BusyRoom& r) { r.Modify("12"); },
       [](BusyRoom& r) { r.Modify("5"); }, "PINK was changed"},
      {RenameBasics, "Rename 2 colors",
       [](BusyRoom& r) {
         BusyRoom::Must(
             BusyRoom::Must(ApplyRename(r.hands, {ColorKind::Basic, NameChange::Prefix, "OLD ", ""}, {"RED", "BLUE"})));
       },
       [](BusyRoom& r) { r.AddToFormula("PINK", "OLD BLUE"); }, "PINK was changed"},
      {RenameMixes, "Rename 1 color",
       [](BusyRoom& r) {
         BusyRoom::Must(
             BusyRoom::Must(ApplyRename(r.hands, {ColorKind::Mix, NameChange::Prefix, "OLD ", ""}, {"SKY"})));
       },
       [](BusyRoom& r) { BusyRoom::Must(r.MakeBatch("OLD SKY", "2")); }, "OLD SKY"},
      {DeleteFormulas, "Delete 2 Master Formulas",
       [](BusyRoom& r) {
         BusyRoom::Must(BusyRoom::Must(vellumark::DeleteFormulas(r.hands, {"PINK", "SKY"})));
       },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::DuplicateFormula(r.hands, "SLOW PINK", "SKY", "", "")); },
       "Another SKY has been made since"},
      {ResetCosts, "Reset Basic Color Purchase Costs",
       [](BusyRoom& r) { BusyRoom::Must(ResetBasicCosts(r.hands, "9")); },
       [](BusyRoom& r) { r.ChangeBasic("RED", "R1", "5"); }, "RED was changed"},
      {ResetMixCostsFromBasics, "Reset Master Formula costs from their ingredients",
       [](BusyRoom& r) { BusyRoom::Must(vellumark::ResetMixCostsFromBasics(r.hands, "10", "1")); },
       [](BusyRoom& r) { BusyRoom::Must(ResetMixCosts(r.hands, "3")); }, "PINK was changed"},
      {ResetEmissions, "Reset VOC and HAP of all Basic Colors",
       [](BusyRoom& r) {
         BusyRoom::Must(vellumark::ResetEmissions(r.hands, ColorKind::Basic, {.VOC = "0.4", .HAP = "0.3"}));
       },
       [](BusyRoom& r) { BusyRoom::Must(vellumark::ResetEmissions(r.hands, ColorKind::Basic, {.HAP = "0.2"})); },
       "was changed"},
      {ImportDesigns, "Import designs.txt",
       [](BusyRoom& r) {
         BusyRoom::Must(vellumark::ImportDesigns(r.hands, AnyPicture(), r.folder / "designs.txt", {}));
       },
       [](BusyRoom& r) { r.ChangeDesign("LABEL", "Another label"); }, "the Design LABEL was changed",
       [](BusyRoom& r) {
         BusyRoom::Must(ExportDesigns(r.hands, {"BOX", "LABEL"}, r.folder / "designs.txt"));
         BusyRoom::Must(vellumark::DeleteDesign(r.hands, "BOX"));
         r.ChangeDesign("LABEL", "A round label");
       }},
      {ImportFormulas, "Import in.mfe",
       [](BusyRoom& r) {
         const MergePlan plan = PlanOf(r.hands, TableOfRecipes({{"PLUM", {{"RED", 1}, {"BLUE", 1}}}}));
         BusyRoom::Must(RunMerge(r.hands, plan));
       },
       [](BusyRoom& r) { r.AddToFormula("PLUM", "GREEN"); }, "PLUM"},
  };
}

std::vector<Case> Cases() {
  std::vector<Case> cases = StockCases();
  std::ranges::move(ColorCases(), std::back_inserter(cases));
  return cases;
}

class UndoActs : public testing::TestWithParam<std::size_t> {};

// It stands in the list with its text, its moment and its user, goes without a trace but in the histories, and stays
// once something was built on it.
TEST_P(UndoActs, IsListedTakenBackAndKeptOnceItWasBuiltOn) {
  const Case c = Cases()[GetParam()];
  BusyRoom room;
  room.hands.CurrentUser = "ANNA";
  c.before(room);
  const std::string before = room.Seen();
  const std::size_t listed = ListUndo(room.hands).size();
  const auto act = [&] {
    c.act(room);
    const std::vector<UndoEntry> acts = ListUndo(room.hands);
    ASSERT_EQ(acts.size(), listed + 1) << "it is not in the list";
    EXPECT_EQ(acts.front().Username, "ANNA");
    EXPECT_EQ(acts.front().Moment, room.hands.clock.Now());
  };
  ASSERT_NO_FATAL_FAILURE(act());
  EXPECT_EQ(ListUndo(room.hands).front().what, c.what);
  EXPECT_NE(room.Seen(), before);
  auto taken = TakeBackAct(room.hands, 0);
  ASSERT_TRUE(taken) << taken.error().text;
  EXPECT_EQ(*taken, c.what);
  EXPECT_EQ(room.Seen(), before);

  ASSERT_NO_FATAL_FAILURE(act());
  const std::int64_t id = ListUndo(room.hands).front().id;
  c.built(room);
  const std::string built = room.Seen();
  taken = TakeBackAct(room.hands, id);
  ASSERT_FALSE(taken);
  EXPECT_NE(taken.error().text.find(c.why), std::string::npos) << taken.error().text;
  EXPECT_EQ(room.Seen(), built);
}

INSTANTIATE_TEST_SUITE_P(Undo, UndoActs, testing::Range(std::size_t{0}, Cases().size()), [](const auto& named) {
  std::string name = Cases()[named.param].what;
  std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
  return fmt::format("{}{}", name, named.param);
});

using Right = std::uint8_t UserRights::*;
// What a user needs to take each back: the rights of the act, and those of the prices and emissions that come back.
std::vector<Right> NeededFor(const Case& c) {
  using enum Undoable;
  using R = UserRights;
  static const std::map<Undoable, std::vector<Right>> needed{
      {SaveFormula, {&R::Edit_MasterFormula}},
      {DuplicateFormula, {&R::Edit_MasterFormula}},
      {RenameMix, {&R::Edit_MasterFormula}},
      {DeleteMix, {&R::Edit_MasterFormula}},
      {CreateAdditiveSet, {&R::DBToolsMenu}},
      {EditAdditiveSet, {&R::DBToolsMenu}},
      {RenameAdditiveSet, {&R::DBToolsMenu}},
      {DeleteAdditiveSet, {&R::DBToolsMenu}},
      {ApplyAdditiveSet, {&R::DBToolsMenu}},
      {ModifyFormulas, {&R::DBToolsMenu}},
      {RenameBasics, {&R::DBToolsMenu}},
      {RenameMixes, {&R::DBToolsMenu, &R::Edit_MasterFormula}},
      {DeleteFormulas, {&R::DBToolsMenu, &R::Edit_MasterFormula}},
      {ResetCosts, {&R::DBToolsMenu, &R::Edit_Costs}},
      {ResetMixCostsFromBasics, {&R::DBToolsMenu, &R::Edit_Costs}},
      {ResetEmissions, {&R::DBToolsMenu, &R::Edit_VOCHAP}},
      {ImportFormulas, {&R::DBToolsMenu, &R::Edit_MasterFormula}},
      {ResetRowLots, {&R::Edit_Costs}},
  };
  std::vector<Right> all = c.takes;
  if (const auto found = needed.find(c.kind); found != needed.end()) std::ranges::copy(found->second, std::back_inserter(all));
  return all;
}

TEST_P(UndoActs, IsTakenBackByWhoHasTheRightsAndByNobodyElse) {
  const Case c = Cases()[GetParam()];
  BusyRoom room;
  c.before(room);
  c.act(room);
  const std::string done = room.Seen();
  room.hands.CurrentUser = "ANNA";
  room.hands.IsAdminUser = false;
  UserRights needed;
  for (const Right right : NeededFor(c)) needed.*right = UserRights::All().*right;
  for (const Right right : NeededFor(c)) {
    UserRights without = needed;
    --(without.*right);
    TakeRights(room.hands, without);
    EXPECT_FALSE(TakeBackAct(room.hands, 0));
    EXPECT_EQ(room.Seen(), done);
  }
  TakeRights(room.hands, needed);
  const auto taken = TakeBackAct(room.hands, 0);
  EXPECT_TRUE(taken) << taken.error().text;
}

// The tables whose rows are not the same in both.
std::set<std::string> Different(const std::string& before, const std::string& after) {
  const auto tables = [](const std::string& text) {
    std::map<std::string, std::string> rows;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t line = text.find('\n', at);
      const std::size_t end = std::min(text.find("\n== ", at), text.size() - 1);
      rows[text.substr(at + 3, line - at - 3)] = text.substr(line, end - line);
      at = end + 1;
    }
    return rows;
  };
  std::set<std::string> different;
  const auto left = tables(before);
  for (const auto& [table, rows] : tables(after))
    if (const auto found = left.find(table); found == left.end() || found->second != rows) different.insert(table);
  return different;
}

// A write that fails, in whatever table, leaves neither a part of the act nor the act in the list.
TEST_P(UndoActs, LeavesNothingWhereAWriteFails) {
  const Case c = Cases()[GetParam()];
  std::set<std::string> tables;
  {
    BusyRoom room;
    c.before(room);
    const std::string before = Snapshot(room.hands.File());
    c.act(room);
    tables = Different(before, Snapshot(room.hands.File()));
  }
  BusyRoom room;
  c.before(room);
  Database& file = room.hands.File();
  const std::string before = room.Seen();
  const std::size_t listed = ListUndo(room.hands).size();
  for (const std::string& table : tables) {
    SCOPED_TRACE(table);
    if (!file.TableExists(table)) continue;  // the act makes it
    for (const char* write : {"INSERT", "UPDATE", "DELETE"})
      file.Execute(fmt::format("CREATE TRIGGER fault_{0} BEFORE {0} ON {1} BEGIN SELECT RAISE(ABORT, 'the disk says no'); "
                               "END",
                               write, Quoted(table)));
    EXPECT_ANY_THROW(c.act(room));
    for (const char* write : {"INSERT", "UPDATE", "DELETE"}) file.Execute(fmt::format("DROP TRIGGER fault_{}", write));
    room.Leave();
    EXPECT_EQ(ListUndo(room.hands).size(), listed);
    EXPECT_EQ(room.Seen(), before);
  }
  c.act(room);
  EXPECT_EQ(ListUndo(room.hands).size(), listed + 1);
}

// What a Job booked is taken back whatever was given another name since: from the same ink, to the same Job. A rename
// that was taken back itself is none.
TEST(Undo, BookingsOfJobsAreTakenBackUnderTheNamesOfToday) {
  struct Case {
    const char* name;
    std::function<void(BusyRoom&)> rename;
    const char* item;  // as it comes back
    bool undoable = true;
  };
  const Case cases[] = {
      {"nothing", [](BusyRoom&) {}, "J5 INK RED A BOX", false},
      {"the color", [](BusyRoom& r) { BusyRoom::Must(RenameBasic(r.hands, "RED", "CRIMSON").value().done); },
       "J5 INK CRIMSON A BOX"},
      {"the lot",
       [](BusyRoom& r) {
         Transaction transaction(r.hands.File());
         const LotRow lot = LotsNumbered(r.hands, ColorKind::Basic, "RED", {}, "A").at(0);
         LotRow now = lot;
         now.LotNumber = "Z";
         RewriteLot(r.hands, {ColorKind::Basic, "RED", {}}, lot, now);
         transaction.Note({Change::Kind::Basic, "INK", "RED", Change::What::Updated, {}});
         transaction.Commit();
       },
       "J5 INK RED Z BOX", false},
      {"the Job", [](BusyRoom& r) { BusyRoom::Must(vellumark::RenameJob(r.hands, "J5", "J9")); }, "J9 INK RED A BOX"},
      {"the Design", [](BusyRoom& r) { BusyRoom::Must(vellumark::RenameDesign(r.hands, "BOX", "CRATE")); },
       "J5 INK RED A CRATE"},
      {"the Database", [](BusyRoom& r) { BusyRoom::Must(RenameDatabase(r.hands, "INK", "PAINT")); },
       "J5 PAINT RED A BOX", false},
  };
  for (const Case& c : cases) {
    for (const bool takenBack : {false, true}) {
      if (takenBack && !c.undoable) continue;
      SCOPED_TRACE(fmt::format("{}{}", c.name, takenBack ? ", taken back" : ""));
      BusyRoom room;
      room.MakeBatch("PINK", "10", "J5");
      const std::int64_t ofBatch = JobItems(room.hands, "J5").at(0).row;
      room.Issue("J5", "RED", 5, "A", "BOX");
      const float issued = LotsNumbered(room.hands, ColorKind::Basic, "RED", {}, "A").at(0).LotQty;
      room.Scan("<JN>J5\n<CN>RED\n5");
      const std::int64_t returned = LastStockLine(room.hands.File());
      BusyRoom::Must(vellumark::SetQtyUsed(room.hands, ofBatch, "8"));
      const std::int64_t lowered = LastStockLine(room.hands.File());
      c.rename(room);
      if (takenBack) BusyRoom::Must(TakeBackAct(room.hands, 0));
      const auto undo = [&](std::int64_t line) {
        const auto undone = UndoJobBooking(room.hands, line);
        EXPECT_TRUE(undone) << undone.error().text;
      };
      undo(lowered);
      undo(returned);
      EXPECT_EQ(room.hands.File().Scalar("SELECT QtyUsed FROM JobRecords WHERE RowKey = ?", {ofBatch}).Single(), 10);
      std::string item;
      ForEachJobRecord(room.hands, "QtyUsed = 5 AND JobNumber <> 'J1'", {}, "", [&](const JobRecord& row) {
        item = fmt::format("{} {} {} {} {}", row.JobNumber, row.Database, row.Color_Name, row.LotNumber, row.DesignID);
        EXPECT_EQ(FindLot(room.hands, row.Kind(), row.Color_Name, row.Database, row.Place())->LotQty, issued);
        EXPECT_EQ(JobBookings(room.hands, row.JobNumber).size(), 5U);
        return true;
      });
      EXPECT_EQ(item, takenBack ? cases[0].item : c.item);
    }
  }
}

// What comes back would bear the old name.
TEST(Undo, AnActWaitsUntilALaterRenameWasTakenBack) {
  const std::function<void(BusyRoom&)> acts[] = {
      [](BusyRoom& r) { r.Adjust("RED", "A", 3); },
      [](BusyRoom& r) { r.DropBatch(); },
      [](BusyRoom& r) { BusyRoom::Must(vellumark::DeleteJobItem(r.hands, r.item)); },
  };
  for (std::size_t i = 0; i < std::size(acts); ++i) {
    SCOPED_TRACE(i);
    BusyRoom room;
    acts[i](room);
    const std::int64_t act = ListUndo(room.hands).front().id;
    BusyRoom::Must(RenameBasic(room.hands, "RED", "CRIMSON").value().done);
    const std::string before = room.Seen();
    const auto taken = TakeBackAct(room.hands, act);
    ASSERT_FALSE(taken);
    EXPECT_NE(taken.error().text.find("Since then RED was renamed CRIMSON."), std::string::npos) << taken.error().text;
    EXPECT_EQ(room.Seen(), before);
    ASSERT_TRUE(TakeBackAct(room.hands, 0));
    EXPECT_TRUE(TakeBackAct(room.hands, act));
  }
}

TEST(Undo, EveryActHasItsCase) {
  std::set<Undoable> with;
  for (const Case& c : Cases()) with.insert(c.kind);
  EXPECT_EQ(with.size(), UndoableRows().size());
  for (std::size_t kind = 0; kind < UndoableRows().size(); ++kind)
    EXPECT_EQ(UndoableRows()[kind].kind, static_cast<Undoable>(kind)) << "in the order of the enumeration";
}

}  // namespace
}  // namespace vellumark::test
