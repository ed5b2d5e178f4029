#include "core/batch/loader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/base/text.h"
#include "core/base/units.h"
#include "core/batch/cost.h"
#include "core/batch/cost_model.h"
#include "core/batch/job_rows.h"
#include "core/batch/made.h"
#include "core/batch/modified.h"
#include "core/batch/recipe.h"
#include "core/batch/recycle_list.h"
#include "core/batch/rows.h"
#include "core/batch/scale_results.h"
#include "core/batch/weighing.h"

namespace vellumark {
namespace {

// A whole row, its fields by name.
class BatchRowReader {
 public:
  BatchRowReader(const Session& session, std::int64_t key) : row_(session.File().Prepare(Sql(session))) {
    found_ = row_.Bind(1, key).Step();
  }
  explicit operator bool() const { return found_; }

  std::string Text(std::string_view field) const { return row_.Text(Column(field)); }
  float Single(std::string_view field) const { return row_.Single(Column(field)); }
  std::int64_t Whole(std::string_view field) const { return row_.Whole(Column(field)); }
  bool IsNull(std::string_view field) const { return row_.IsNull(Column(field)); }
  std::optional<DateTime> Date(std::string_view field) const { return row_.Date(Column(field)); }
  void Read(const FieldList& fields, void* record) const {
    for (const RecordField& field : fields)
      if (field.use != FieldUse::Beside) field.Read(row_, Column(field.column), record);
  }

 private:
  static std::string Sql(const Session& session) {
    std::string columns;
    for (const Field& field : schema::Batch.fields) columns += (columns.empty() ? "" : ", ") + Quoted(field.name);
    return fmt::format("SELECT {} FROM {} WHERE RowKey = ?", columns, session.QuotedTable(schema::Batch));
  }
  static int Column(std::string_view field) { return schema::Batch.Find(field); }

  Statement row_;
  bool found_ = false;
};

StoredBatchLines LinesOfRow(const BatchRowReader& row) {
  StoredBatchLines batch;
  batch.BatchNo = static_cast<std::int32_t>(row.Whole("BatchNo"));
  batch.Color_Name = row.Text("Color_Name");
  batch.UMF = UnitName(static_cast<int>(row.Whole("UMF"))).empty() ? 0 : static_cast<int>(row.Whole("UMF"));
  batch.Roundoff = row.Single("Roundoff");
  batch.LargestAmountIndex = static_cast<std::int32_t>(row.Whole("LargestAmountIndex"));
  for (int i = 0; i < schema::kBatchLines; ++i) {
    StoredLine line;
    line.IngName = row.Text(schema::Numbered("IngName", i));
    if (line.IngName.empty()) continue;
    line.IngQty = row.Single(schema::Numbered("IngQty", i));
    line.IngType = LineKindOf(row.Whole(schema::Numbered("IngType", i)));
    batch.lines.push_back(std::move(line));
  }
  return batch;
}

void ReadCosts(const Session& session, const BatchRowReader& row, BatchWork& work) {
  row.Read(CostModelFields(), &work.cost);
  KeepChoices(work.cost);
  const int decimals = session.DecimalPlaces;
  work.figures.CostOfBasics = Currency::From(RoundTo(row.Single("CostOfBasics"), decimals));
  work.figures.CostOfMixes = Currency::From(RoundTo(row.Single("CostOfMixes"), decimals));
  CalculateTotalCost(session, work);
  work.figures.VOC = row.Single("VOC");
  work.figures.HAP = row.Single("HAP");
}

BatchIngredient IngredientOf(Session& session, int unit, const StoredLine& line) {
  BatchIngredient ingredient = ReadBatchIngredient(session, unit, line.IngName).value_or(BatchIngredient{});
  ingredient.IngName = line.IngName;
  ingredient.Amount = line.IngQty;
  return ingredient;
}

// The working lists as the lines were stored.
void TakeLines(Session& session, BatchWork& work, const std::vector<StoredLine>& lines) {
  work.RecycledColors.clear();
  work.Ingredients.clear();
  work.Additions.clear();
  for (const StoredLine& line : lines) {
    if (line.IngType == LineKind::Mix) {
      RecycleColor color = ReadRecycleColor(session, work, line.IngName).value_or(RecycleColor{});
      color.Color_Name = line.IngName;
      SetUsable(color, line.IngQty);
      work.RecycledColors.push_back(std::move(color));
    } else {
      auto& list = line.IngType == LineKind::Addition ? work.Additions : work.Ingredients;
      list.push_back(IngredientOf(session, work.UMF, line));
    }
  }
  double sum = 0;
  for (const BatchIngredient& ingredient : work.Ingredients) sum += ingredient.Amount;
  for (BatchIngredient& ingredient : work.Ingredients)
    ingredient.Percent = sum > 0 ? static_cast<float>(static_cast<double>(ingredient.Amount) * 100 / sum) : 0;
  ResolveRecipeSlots(work);
}

using NamedAmounts = std::vector<std::pair<std::string, double>>;

void Add(NamedAmounts& amounts, const std::string& name, double amount) {
  for (auto& [known, sum] : amounts)
    if (EqualNoCase(known, name)) {
      sum += amount;
      return;
    }
  amounts.emplace_back(name, amount);
}

bool SameAmounts(const NamedAmounts& a, const NamedAmounts& b, double tolerance) {
  const auto amountIn = [](const NamedAmounts& list, const std::string& name) {
    for (const auto& [known, amount] : list)
      if (EqualNoCase(known, name)) return amount;
    return 0.0;
  };
  const auto covers = [&](const NamedAmounts& x, const NamedAmounts& y) {
    return std::ranges::all_of(
        x, [&](const auto& entry) { return std::abs(entry.second - amountIn(y, entry.first)) <= tolerance; });
  };
  return covers(a, b) && covers(b, a);
}

// What the Batch contains of each Basic Color, the recycled inks taken apart.
NamedAmounts Contents(const BatchWork& work, bool additions) {
  NamedAmounts contents;
  for (const RecycleColor& color : work.RecycledColors)
    for (std::size_t i = 0; i < color.slots->size(); ++i) Add(contents, (*color.slots)[i].BC, color.RecAmount[i]);
  for (const BatchIngredient& ingredient : work.Ingredients) Add(contents, ingredient.IngName, ingredient.Amount);
  if (additions)
    for (const BatchIngredient& addition : work.Additions) Add(contents, addition.IngName, addition.Amount);
  return contents;
}

NamedAmounts RecipeFor(const BatchWork& work, double quantity) {
  NamedAmounts recipe;
  for (const BatchIngredient& ingredient : work.FormulaIngredients)
    Add(recipe, ingredient.IngName, quantity * ingredient.Percent * 0.01);
  return recipe;
}

// Whether the formula is what the save of this Batch folded its additions into. Its Additive Set keeps its percentages,
// and what weighing left over or under was no change, so the pot holds other shares than the formula.
bool FoldedIntoRecipe(const Session& session, const BatchRecord& record) {
  if (record.work.Additions.empty() || !record.work.RecycledColors.empty()) return false;
  NamedAmounts folded;
  for (const Ingredient& line : ModifiedRecipe(session, record)) Add(folded, line.name, line.amount);
  return SameAmounts(folded, RecipeFor(record.work, 100), 0.0015);
}

// The formula holds the day of its last change only. On the very day of the Batch it is the recipe itself that tells
// whether that was before or after it: as it was calculated, or with the additions that the save folded into it.
bool MadeByThisRecipe(const Session& session, const BatchRecord& record, double actual) {
  const BatchWork& work = record.work;
  const double quantity = work.Quantity();
  const double tolerance = 0.002 + 1e-5 * std::max(quantity, actual);
  return SameAmounts(Contents(work, false), RecipeFor(work, quantity), tolerance) ||
         SameAmounts(Contents(work, true), RecipeFor(work, actual), tolerance) || FoldedIntoRecipe(session, record);
}

bool FormulaUnchanged(const Session& session, const BatchRecord& record, double actual) {
  if (!record.work.formulaFound) return false;
  Statement formula = session.File().Prepare(
      fmt::format("SELECT Date_Entered, LastModified FROM {} WHERE Color_Name = ? ORDER BY RowKey LIMIT 1",
                  session.QuotedTable(schema::Mix)));
  if (!formula.Bind(1, record.work.Color_Name).Step()) return false;
  if (!record.Date_Entered) return true;
  const std::int64_t saved = record.Date_Entered->SecondNumber();
  const auto entered = formula.Date(0);
  const auto modified = formula.Date(1);
  if (entered && entered->SecondNumber() > saved) return false;
  if (!modified) return true;
  if (modified->SecondNumber() > saved) return false;
  return modified->DayNumber() < record.Date_Entered->DayNumber() || MadeByThisRecipe(session, record, actual);
}

// Chooses the recycled colours once more, as they were chosen, so that rows can be adjusted. Where that no longer gives
// the lines that were stored (a colour used at its most leaves a remainder in rounding), those stand.
void Replay(Session& session, BatchWork& work, const std::vector<StoredLine>& lines) {
  const BatchWork stored = work;
  work.Ingredients = work.FormulaIngredients;
  work.RecycledColors.clear();
  BuildRecycleList(session, work);
  for (const RecycleColor& color : stored.RecycledColors)
    AddRecycledColor(session, work, color.Color_Name, color.Usable);
  const std::vector<StoredLine> replayed = LinesOf(work);
  bool same = replayed.size() == lines.size();
  for (const StoredLine& line : lines) {
    same = same && std::ranges::any_of(replayed, [&](const StoredLine& other) {
             return other.IngType == line.IngType && EqualNoCase(other.IngName, line.IngName) &&
                    Fixed(other.IngQty, 3) == Fixed(line.IngQty, 3);
           });
  }
  if (same) return;
  const std::vector<RecycleColor> chosen = std::exchange(work.RecycledColors, stored.RecycledColors);
  for (RecycleColor& color : work.RecycledColors)
    for (const RecycleColor& other : chosen)
      if (EqualNoCase(other.Color_Name, color.Color_Name)) color.Recycle_Percent = other.Recycle_Percent;
  work.Ingredients = stored.Ingredients;
}

void TakeLots(const Session& session, BatchRecord& record, std::vector<BatchTaking> takings) {
  if (session.InvLotTracking == 0) return;
  BatchWork& work = record.work;
  const std::vector<StoredLine> lines = LinesOf(work);
  std::size_t row = 0;
  const auto take = [&](const std::string& name, LineKind type, LotSelection& lots) {
    const auto amount = static_cast<float>(work.Rows.at(row++).amount);
    const bool isLast = std::ranges::none_of(
        lines.begin() + static_cast<std::ptrdiff_t>(row), lines.end(),
        [&](const StoredLine& later) { return later.IngType == type && EqualNoCase(later.IngName, name); });
    LotSelection selection = SelectionOf(session, takings, {name, 0, type}, amount, work.UMF, isLast);
    if (amount > 0) lots = std::move(selection);
  };
  for (RecycleColor& color : work.RecycledColors) take(color.Color_Name, LineKind::Mix, color.lots);
  for (BatchIngredient& i : work.Ingredients) take(i.IngName, LineKind::Basic, i.lots);
  for (BatchIngredient& i : work.Additions) take(i.IngName, LineKind::Addition, i.lots);
}

void FillOldLines(BatchRecord& record) {
  const BatchWork& work = record.work;
  for (const RecycleColor& c : work.RecycledColors)
    record.OldLines.push_back({c.Color_Name, c.Usable, LineKind::Mix, c.Inventory, c.lots});
  for (const BatchIngredient& i : work.Ingredients)
    record.OldLines.push_back({i.IngName, i.Amount, LineKind::Basic, i.Inventory, i.lots});
  for (const BatchIngredient& i : work.Additions)
    record.OldLines.push_back({i.IngName, i.Amount, LineKind::Addition, i.Inventory, i.lots});
}

// What the Batch has put into stock.
void ReadMade(const Session& session, const BatchRowReader& row, BatchRecord& record) {
  record.LotRefID = row.IsNull("LotRefID") ? 0 : static_cast<std::int32_t>(row.Whole("LotRefID"));
  const double made =
      RoundTo(row.Single("ActualQuantity"), 3) * static_cast<double>(UnitFactor(record.work.UMF, session.UMI));
  record.oldReturned = std::max(0.0F, RoundSingle(RoundTo(made, 3) - JobsUse(session, record.BatchNo), 3));
  if (record.stockReturned && record.LotRefID >= 0)
    record.work.made = {record.LotRefID == 0 ? record.oldReturned : 0, record.LotRefID};
}

void ReadStock(const Session& session, BatchRecord& record) {
  const double total = record.work.ShownTotal;
  record.jobs = ReadJobLines(session, record.BatchNo, record.work.UMF, total);
  record.jobsTotal = record.work.Total;
  record.madeLotNumber = record.fields.LotNumber;
  record.ReturnToInventory = record.LotRefID != -1 || !record.jobs.empty();
  if (!record.ReturnToInventory) record.oldReturned = 0;
  double used = 0;
  for (const BatchJobLine& line : record.jobs) used += RoundTo(line.QtyUsed, 3);
  record.returned = record.ReturnToInventory ? RoundSingle(std::max(0.0, total - used), 3) : 0;
  if (const auto lot = MadeLot(session, record)) {
    record.fields.LotLoc = lot->LotLoc;
    record.fields.LotContID = lot->LotContID;
  }
}

}  // namespace

std::optional<StoredBatchLines> ReadStoredLines(const Session& session, std::int64_t key) {
  const BatchRowReader row(session, key);
  if (!row) return std::nullopt;
  StoredBatchLines batch = LinesOfRow(row);
  if (batch.UMF == 0) batch.UMF = session.UMF;
  return batch;
}

std::optional<BatchRecord> LoadBatchRow(Session& session, std::int64_t key, const std::vector<BatchTaking>& takings,
                                        bool stockReturned) {
  const BatchRowReader row(session, key);
  if (!row) return std::nullopt;
  const StoredBatchLines stored = LinesOfRow(row);
  BatchRecord record;
  record.state = BatchState::Edit;
  record.stockReturned = stockReturned;
  record.key = key;
  record.BatchNo = stored.BatchNo;
  record.Date_Entered = row.Date("Date_Entered");
  record.Username = row.Text("Username");
  record.Complete = row.Whole("Complete") != 0;
  row.Read(BatchRowFields(), &record.fields);

  BatchWork& work = record.work = NewBatchWork(session);
  work.UMF = stored.UMF == 0 ? session.UMF : stored.UMF;
  work.Color_Name = row.Text("Color_Name");
  work.QuantityText = Fixed(row.Single("Quantity"), 3);
  ReadMade(session, row, record);
  LoadFormulaIngredients(session, work);
  if (!work.formulaFound) work.formula.Color_Code = row.Text("Color_Code");
  TakeLines(session, work, stored.lines);
  ShowBatchRows(session, work);
  record.weighed = ReadScaleResults(session, record.BatchNo);
  FindDifferences(record);
  record.formulaUnchanged = FormulaUnchanged(session, record, row.Single("ActualQuantity"));
  record.modifiedFormula = work.formulaFound && !record.formulaUnchanged;
  work.LargestAmountIndex = static_cast<std::uint8_t>(std::clamp(stored.LargestAmountIndex, 0, 255));
  if (record.formulaUnchanged) {
    Replay(session, work, stored.lines);
    work.ClickedIndex = static_cast<std::int32_t>(row.Whole("ClickedIndex"));
  }
  ShowBatchRows(session, work);
  if (record.formulaUnchanged) RefreshRecycleList(session, work);
  ReadCosts(session, row, work);
  ReadStock(session, record);
  TakeLots(session, record, takings);
  FillOldLines(record);
  RememberRecord(record);
  return record;
}

std::int64_t BatchRowOf(const Session& session, std::int32_t batchNo) {
  return session.File()
      .Scalar(fmt::format("SELECT RowKey FROM {} WHERE BatchNo = ? ORDER BY RowKey LIMIT 1",
                          session.QuotedTable(schema::Batch)),
              {batchNo})
      .Whole();
}

}  // namespace vellumark
