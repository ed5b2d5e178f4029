#include "core/batch/bench.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/actions.h"
#include "core/batch/cost.h"
#include "core/batch/default_models.h"
#include "core/batch/jobs.h"
#include "core/batch/recipe.h"
#include "core/batch/weighing.h"
#include "core/colors/amounts.h"
#include "core/session/rights.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

// For a work that may be changed and for one that may not.
template <class Work>
auto& LotsOfRow(Work& work, std::size_t row) {
  if (row < work.RecycledColors.size()) return work.RecycledColors[row].lots;
  row -= work.RecycledColors.size();
  if (row < work.Ingredients.size()) return work.Ingredients[row].lots;
  return work.Additions.at(row - work.Ingredients.size()).lots;
}

// What the rows held of lots before an act. A row that comes out of it with the same name, kind and amount gets its
// selection back.
class KeptLots {
 public:
  explicit KeptLots(const BatchWork& work) {
    for (std::size_t i = 0; i < work.Rows.size(); ++i)
      if (const LotSelection& lots = LotsOfRow(work, i); !lots.uses.empty()) kept_.push_back({work.Rows[i], lots});
  }

  // A recycled colour keeps what was chosen for it also when its amount grew; the rest is still to be placed.
  void GiveBack(BatchWork& work) const {
    for (std::size_t i = 0; i < work.Rows.size(); ++i) {
      const BatchRow& row = work.Rows[i];
      LotSelection& lots = LotsOfRow(work, i);
      lots.uses.clear();
      for (const Kept& kept : kept_) {
        if (kept.row.kind != row.kind || !EqualNoCase(kept.row.name, row.name)) continue;
        const bool fits = row.kind == LineKind::Mix && RoundTo(kept.lots.Used(), 3) <= row.amount;
        if (fits || kept.row.amount == row.amount) lots = kept.lots;
      }
    }
  }

 private:
  struct Kept {
    BatchRow row;
    LotSelection lots;
  };
  std::vector<Kept> kept_;
};

void ResetBasicLots(BatchWork& work) {
  for (BatchIngredient& ingredient : work.Ingredients) ingredient.lots.uses.clear();
}

// An act on the rows behind the guards; what hangs on the rows follows it.
template <class Act>
auto Alter(Session& session, BatchRecord& record, const Act& act) -> decltype(act()) {
  if (const auto editable = CheckEditable(session, record); !editable) return std::unexpected(editable.error());
  const KeptLots lots(record.work);
  auto result = act();
  if (result) {
    TakeUpDifferences(session, record);
    lots.GiveBack(record.work);
    FollowTotal(session, record);
  }
  return result;
}

Result<bool> Adjustable(Session& session, BatchRecord& record, bool open) {
  if (const auto editable = CheckEditable(session, record); !editable) return std::unexpected(editable.error());
  if (const auto adjustable = CheckAdjustable(record.work); !adjustable) return std::unexpected(adjustable.error());
  return open && !BatchIsFull(record.work);
}

// Additions alone are no Batch.
Result<void> CheckCalculated(const BatchRecord& record) {
  if (record.state != BatchState::None) return {};
  return Refuse("Batch Additions", "Click the Recycle(F2) or Mix(F3) button to calculate the batch first.",
                "txtQuantity");
}

void BeginAdd(const Session& session, BatchRecord& record) {
  record.state = BatchState::Add;
  if (record.fields.LotNumber.empty() && GetSetting(session, setting::BatchDefaultLotNumberValue))
    record.fields.LotNumber = BatchNoText(record.BatchNo);
  for (int i = 0; i < kBatchUserFields; ++i) {
    std::string& text = record.fields.UD_Text[static_cast<std::size_t>(i)];
    if (text.empty()) text = BatchUDTextDefault(session, i);
  }
}

Result<bool> Calculate(Session& session, BatchRecord& record, Result<bool> (*action)(Session&, BatchWork&)) {
  return Alter(session, record, [&]() -> Result<bool> {
    const auto done = action(session, record.work);
    if (done && *done && record.state == BatchState::None) BeginAdd(session, record);
    return done;
  });
}

void ClearCalculation(BatchWork& work) {
  work.Ingredients.clear();
  work.FormulaIngredients.clear();
  work.RecycleList.clear();
  work.FormulaRecycleList.clear();
  work.RecycledColors.clear();
  work.Additions.clear();
  work.Rows.clear();
  work.ClickedIndex = -1;
  work.QuantityChanged = false;
  work.CalculatedQuantity = 0;
  work.Total = work.RecycledTotal = work.AdditionsTotal = work.Roundoff = 0;
  work.LargestAmountIndex = 0;
  work.ShownTotal = work.PercentRecycled = 0;
  work.zeroRows = 0;
  work.figures = {};
}

constexpr const char* kEditStateTitle = "Batches Window - Edit State";

Result<float> ReadCost(const Session& session, float cost, const char* field) {
  if (!(cost >= 0 && cost <= kMostQuantity))
    return Refuse("Invalid Cost", "You must enter a valid, positive cost.", field);
  return RoundSingle(cost, session.DecimalPlaces);
}

}  // namespace

// ---- Guards

Result<void> CheckNotComplete(const Session& session, const BatchRecord& record) {
  if (!GetSetting(session, setting::BatchComplete) || !record.Complete) return {};
  return Refuse("Completed Batch - Changes Not Allowed",
                "This Batch is marked as Complete.\n\nUncheck Complete to edit the batch.", "chkComplete");
}

Result<void> CheckEditable(Session& session, BatchRecord& record) {
  if (auto open = CheckNotComplete(session, record); !open) return open;
  record.mayChange = record.state != BatchState::Edit;
  if (record.mayChange) return {};
  if (auto writable = RequireWritable(session); !writable) return writable;
  if (!record.formulaUnchanged)
    return Refuse(kEditStateTitle,
                  "This Batch is no longer editable.\n"
                  "A Master Formula associated with this Batch has been deleted or modified\n"
                  "since this Batch was saved.");
  record.mayChange =
      !record.Date_Entered || record.askedAboutOld || record.Date_Entered->Midnight() >= session.clock.Today();
  if (record.mayChange) return {};
  if (session.prompt.Show({"Allow Editing?",
                           "Editing this Batch Record will alter the results\n"
                           "of your Production and Consumption Reports.\n\n"
                           "Do you wish to continue?",
                           Buttons::YesNo, Icon::Question, Answer::No}) != Answer::Yes)
    return Decline("Allow Editing?");
  record.mayChange = record.askedAboutOld = true;
  return {};
}

bool TakesChanges(const Session& session, const BatchRecord& record) {
  if (!CheckNotComplete(session, record)) return false;
  return record.state != BatchState::Edit || (record.formulaUnchanged && RequireWritable(session));
}

// ---- What is made

Result<void> EnterBatchColor(Session& session, BatchRecord& record, std::string_view typed) {
  const auto name = FindBatchFormula(session, typed);
  if (!name) return std::unexpected(name.error());
  BatchWork& work = record.work;
  if (EqualNoCase(*name, work.Color_Name) && work.formulaFound) return {};
  if (record.state == BatchState::Edit)
    return Refuse(kEditStateTitle, "The Color Name of a saved Batch cannot be changed.", "Color_Name");
  ClearCalculation(work);
  record.weighed.clear();
  work.Color_Name = *name;
  LoadFormulaIngredients(session, work);
  work.Ingredients.clear();
  FollowTotal(session, record);
  return {};
}

Result<void> EnterBatchUnit(Session& session, BatchRecord& record, int unit) {
  if (unit == record.work.UMF) return {};
  if (UnitName(unit).empty())
    return Refuse("Batch Window", fmt::format("There is no unit of the code {}.", unit), "cmbUMF");
  return Alter(session, record, [&]() -> Result<void> {
    ClearCalculation(record.work);
    record.weighed.clear();
    record.work.UMF = unit;
    return {};
  });
}

// ---- Rows

Result<bool> RecycleBatch(Session& session, BatchRecord& record) {
  return Calculate(session, record, RecycleAction);
}
Result<bool> MixBatch(Session& session, BatchRecord& record) {
  return Calculate(session, record, MixAction);
}

Result<bool> TakeRecycled(Session& session, BatchRecord& record, std::string_view name) {
  auto taken = Alter(session, record, [&] { return ChooseFromRecycleList(session, record.work, name); });
  if (taken && *taken) ResetBasicLots(record.work);
  return taken;
}
Result<bool> TakeRecycled(Session& session, BatchRecord& record, std::string_view name, std::string_view amount) {
  auto taken = Alter(session, record, [&] { return ChooseFromRecycleList(session, record.work, name, amount); });
  if (taken && *taken) ResetBasicLots(record.work);
  return taken;
}

Result<MixAdjustment> OpenMixRow(Session& session, BatchRecord& record, std::size_t row) {
  if (const auto valid = ValidateQuantity(record.work); !valid) return std::unexpected(valid.error());
  if (const auto editable = CheckEditable(session, record); !editable) return std::unexpected(editable.error());
  return OpenMixAdjustment(session, record.work, row);
}
Result<void> ApplyMixRow(Session& session, BatchRecord& record, std::size_t row, const MixAdjustChoice& choice) {
  return Alter(session, record, [&] { return AdjustMixRow(session, record.work, row, choice); });
}

Result<bool> OpenBasicRow(Session& session, BatchRecord& record, std::size_t) {
  return Adjustable(session, record, record.work.settings.Overpour);
}
Result<Overpour> PourBasicRow(Session& session, BatchRecord& record, std::size_t row, std::string_view poured) {
  auto result = Alter(session, record, [&] { return OverpourBasicRow(session, record.work, row, poured); });
  if (result && result->reformulated) ResetBasicLots(record.work);
  return result;
}
Result<Overpour> PourMixRow(Session& session, BatchRecord& record, std::size_t row, double poured) {
  auto result =
      Alter(session, record, [&] { return OverpourMixRow(session, record.work, row, poured, InThePot(record)); });
  if (result && result->reformulated) ResetBasicLots(record.work);
  return result;
}

Result<void> SetMixRowAsPoured(Session& session, BatchRecord& record, std::size_t row, double poured) {
  return Alter(session, record, [&] { return SetMixRow(session, record.work, row, poured); });
}

Result<void> OpenAdditions(Session& session, BatchRecord& record) {
  if (auto calculated = CheckCalculated(record); !calculated) return calculated;
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  return CheckAdditions(record.work);
}
Result<void> AddBatchAdditions(Session& session, BatchRecord& record, const std::vector<AdditionLine>& lines) {
  if (auto calculated = CheckCalculated(record); !calculated) return calculated;
  return Alter(session, record, [&] { return AddAdditions(session, record.work, lines); });
}
Result<bool> OpenAdditionRow(Session& session, BatchRecord& record, std::size_t) {
  return Adjustable(session, record, true);
}
Result<void> ApplyAdditionRow(Session& session, BatchRecord& record, std::size_t row, std::string_view amount) {
  return Alter(session, record, [&] { return AdjustAddition(session, record.work, row, amount); });
}

// ---- Lots

float LotNeed(const Session&, const BatchRecord& record, std::size_t row) {
  const BatchRow& shown = record.work.Rows.at(row);
  double need = shown.amount;
  if (shown.kind == LineKind::Basic)
    for (const BatchIngredient& addition : record.work.Additions)
      if (addition.Amount < 0 && EqualNoCase(addition.IngName, shown.name)) need += RoundTo(addition.Amount, 3);
  return RoundSingle(std::max(0.0, need), 3);
}

const LotSelection& RowLots(const BatchRecord& record, std::size_t row) {
  return LotsOfRow(record.work, row);
}

LotWithheld WithheldFrom(const Session& session, const BatchRecord& record, std::size_t row) {
  const BatchWork& work = record.work;
  const BatchRow& shown = work.Rows.at(row);
  if (shown.kind != LineKind::Mix || !EqualNoCase(shown.name, work.Color_Name)) return {};
  return {StockInUnit(session, work.UMF, UnlottedMade(session, work, shown.name), 0), work.made.LotRefID};
}

Result<void> OpenRowLots(Session& session, BatchRecord& record, std::size_t row) {
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  if (auto adjustable = CheckAdjustable(record.work); !adjustable) return adjustable;
  if (LotNeed(session, record, row) > 0) return {};
  return Refuse(std::string(40, ' ') + "Lot Selection Disabled",
                "A negative Batch Addition has been applied to this color.\n\n"
                "It has created a Zero Quantity for the Ingredient.");
}

Result<void> SetRowLots(Session& session, BatchRecord& record, std::size_t row, LotSelection lots) {
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  LotsOfRow(record.work, row) = std::move(lots);
  return {};
}

// ---- Figures and fields

Result<void> SetBatchCostModel(Session& session, BatchRecord& record, const BatchCostModel& model, bool futureBatches) {
  if (auto right = RequireCommandRight(session, CommandRight::Costs); !right) return right;
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  const auto ofBatch = ReadCost(session, model.FixedCostOfBatch, "txtFixedCostBatch");
  if (!ofBatch) return std::unexpected(ofBatch.error());
  const auto perUnit = ReadCost(session, model.FixedCostPerUnit, "txtFixedCostUnit");
  if (!perUnit) return std::unexpected(perUnit.error());
  if (!(model.MarkupPercent >= 0 && model.MarkupPercent <= 100))
    return Refuse("Invalid Percentage", "You must enter a valid percentage between 0 and 100.", "txtMarkupPercent");
  BatchCostModel& cost = record.work.cost;
  cost.CostModelType = model.CostModelType;
  cost.MixCostOption = model.MixCostOption;
  KeepChoices(cost);
  cost.FixedCostOfBatch = *ofBatch;
  cost.FixedCostPerUnit = *perUnit;
  cost.MarkupPercent = RoundSingle(model.MarkupPercent, 1);
  if (futureBatches) StoreDefaultCostModel(session, cost);
  CalculateCost(session, record.work);
  return {};
}

Result<void> SetBatchEmissionModel(Session& session, BatchRecord& record, const BatchCostModel& model,
                                   bool futureBatches) {
  if (auto right = RequireCommandRight(session, CommandRight::VOCHAP); !right) return right;
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  BatchCostModel& cost = record.work.cost;
  cost.MixVOCModelType = model.MixVOCModelType;
  cost.MixHAPModelType = model.MixHAPModelType;
  KeepChoices(cost);
  if (futureBatches) StoreDefaultEmissionModels(session, cost);
  CalculateBatch_VOC(session, record.work);
  CalculateBatch_HAP(session, record.work);
  return {};
}

Result<void> EnterBatchField(Session& session, BatchRecord& record, std::string_view column, std::string typed) {
  const RecordField* field = BatchRowFields().Find(column);
  if (field == nullptr) throw std::logic_error("a Batch has no field " + std::string(column));
  if (field->type == RecordField::Type::Text) {
    std::string& stands = field->Text(&record.fields);
    if (stands == typed) return {};
    if (auto editable = CheckEditable(session, record); !editable) return editable;
    stands = std::move(typed);
    return {};
  }
  const auto number = field->amount ? ReadAmount(session, *field->amount, typed, column)
                                    : ReadUDNumeric(session, field->column.back() - '0', typed);
  if (!number) return std::unexpected(number.error());
  float& stands = field->Single(&record.fields);
  if (stands == *number) return {};
  if (auto editable = CheckEditable(session, record); !editable) return editable;
  stands = *number;
  return {};
}

Result<float> ReadUDNumeric(const Session& session, int number, std::string_view typed) {
  const auto amount = Trim(typed).empty() ? std::optional<double>(0) : ParseNumber(typed);
  if (!amount || *amount < -kMostQuantity || *amount > kMostQuantity)
    return Refuse("Invalid Amount", fmt::format("{} is not a valid amount. Please enter a valid amount.", typed),
                  fmt::format("UD_Numeric{}", number));
  return RoundSingle(*amount, GetSetting(session, setting::Batches_UDNum_Format[number]));
}

}  // namespace vellumark
