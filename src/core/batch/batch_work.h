#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/number.h"
#include "core/datafile/schema.h"
#include "core/inventory/lot_selection.h"
#include "core/session/session.h"

namespace vellumark {

/// A remaining basic ingredient of the recipe, or a batch addition. Quantities in the Batch's unit, costs and emissions
/// per inventory unit.
struct BatchIngredient {
  bool inDatabase = false;  ///< the Database had such a Basic Color when the figures were read
  std::string IngName;
  std::string Color_Code;
  float Amount = 0;   ///< still to be taken from this Basic Color
  float Percent = 0;  ///< share of what remains of the recipe; the formula's own share to begin with
  float PurchaseCost = 0;
  std::string Inv_Note;
  float Inventory = 0;  ///< with the lots while Lotted Inventory is in use
  float Reorder = 0;
  std::string Notes;
  std::int32_t IngSort = 0;
  float VOC = 0;
  float HAP = 0;
  int recipeSlot = -1;  ///< first slot of the formula that holds this name; -1 for an addition
  LotSelection lots;    ///< where it is taken from, while Lotted Inventory is in use
};

/// One ingredient of a mix colour.
struct RecycleSlot {
  std::string BC;
  float BQ = 0;         ///< percent of it in the colour
  int recipeSlot = -1;  ///< slot of the formula being made that holds the same name; -1 when none does
};

/// A Master Formula considered, or chosen, for recycling. Quantities in the Batch's unit.
struct RecycleColor {
  std::int64_t key = 0;
  std::string Color_Name;
  /// Shared between the lists, which hold thousands of colours; what changes stands beside it.
  std::shared_ptr<const std::vector<RecycleSlot>> slots = std::make_shared<const std::vector<RecycleSlot>>();
  std::array<float, schema::kIngredientSlots> RecAmount{};  ///< what it brings in of each slot at its current Usable
  float Recycle_Percent = 0;  ///< 0 to 1: the largest share of the present recipe that it can supply
  float Inventory = 0;        ///< with the lots while Lotted Inventory is in use
  float Usable = 0;           ///< how much of it goes into the Batch
  bool Recycle = false;

  // Read once the colour is chosen.
  std::string Color_Code;
  std::string Inv_Note;
  std::string Notes;
  float PurchaseCost = 0;
  float BasicCost = 0;
  float Reorder = 0;
  float VOC = 0;
  float HAP = 0;
  float BasicVOC = 0;
  float BasicHAP = 0;
  LotSelection lots;  ///< where it is taken from, while Lotted Inventory is in use
};

/// One line of the Batch as it is shown.
struct BatchRow {
  LineKind kind = LineKind::Basic;
  std::string name;
  double amount = 0;  ///< three decimals, with the round-off where it fell; a Single does not hold each near 99,999
  float max = 0;      ///< of a Mix row: the most that the recipe takes of it; 0 where that is not known
  bool adjustable = false;  ///< the amount can be changed by hand
  bool moreUsable = false;  ///< more of this colour could be used than is
  bool lotLink = false;
  bool lowStock = false;
  bool zero = false;  ///< too little to be weighed
};

/// The settings that steer a calculation.
struct BatchSettings {
  bool mixByDefault = true;  ///< `BatchActionButton`
  bool userOrder = false;    ///< `IngSortOrder`; else by amount
  bool ShowBatchGraphic = true;
  bool Overpour = false;  ///< Basic rows may be adjusted
  bool operator==(const BatchSettings&) const = default;
};

/// How a Batch is costed and its emissions counted; the fields that a Batch keeps for itself.
struct BatchCostModel {
  int CostModelType = 0;
  int MixCostOption = 0;
  float FixedCostOfBatch = 0;
  float FixedCostPerUnit = 0;
  float MarkupPercent = 0;
  int MixVOCModelType = 0;
  int MixHAPModelType = 0;
  bool operator==(const BatchCostModel&) const = default;
};

/// Money in `DecimalPlaces`, the unit cost in `UnitCostDecimals`, emissions in the same units as those of the colours.
struct BatchFigures {
  Currency CostOfBasics;
  Currency CostOfMixes;
  Currency Markup;
  Currency TotalCost;
  Currency UnitCost;
  float VOC = 0;
  float HAP = 0;
};

/// What the Batch needs of its Master Formula beside the ingredients.
struct BatchFormula {
  std::string Color_Code;
  std::string Color_Set;
  std::string Notes;
  float PurchaseCost = 0;
  std::string Color_Guide;
  std::string Page;
  std::int32_t Row = 0;
  std::int32_t Red = 0;
  std::int32_t Green = 0;
  std::int32_t Blue = 0;
};

/// What a saved Batch that is open has put into stock. It is no stock for the Batch itself: it cannot be made of what
/// it made.
struct MadeStock {
  float unlotted = 0;         ///< in the inventory unit
  std::int32_t LotRefID = 0;  ///< its lot; 0 when it has none
};

constexpr int kMostBatchLines = 20;  ///< what a stored Batch can hold
constexpr double kMostQuantity = 99999;

/// The working lists of a Batch: what its window edits, in memory until the Batch is saved.
struct BatchWork {
  std::string Color_Name;
  std::string QuantityText;
  int UMF = 1;

  bool formulaFound = false;
  BatchFormula formula;
  MadeStock made;                            ///< nothing of a new Batch, and of one that is only looked at
  std::vector<BatchIngredient> Ingredients;  ///< what remains of the recipe
  std::vector<RecycleColor> RecycleList;     ///< colours that may still be recycled
  std::vector<RecycleColor> RecycledColors;  ///< those chosen, in order of choosing
  std::vector<BatchIngredient> Additions;
  std::vector<BatchIngredient> FormulaIngredients;  ///< the recipe untouched
  std::vector<RecycleColor> FormulaRecycleList;     ///< the list as first built

  std::int32_t ClickedIndex = -1;  ///< row of the recycled colour last adjusted by hand; -1 when none was
  bool QuantityChanged = false;    ///< the text was edited after the last calculation
  double CalculatedQuantity = 0;   ///< for which the rows stand; 0 while there are none

  std::vector<BatchRow> Rows;
  float Total = 0;
  float RecycledTotal = 0;
  float AdditionsTotal = 0;
  float Roundoff = 0;
  std::uint8_t LargestAmountIndex = 0;
  double ShownTotal = 0;       ///< `Total` to its last decimal
  double PercentRecycled = 0;  ///< two decimals
  int zeroRows = 0;            ///< rows too small to be weighed; one beep each

  BatchSettings settings;
  BatchCostModel cost;
  BatchFigures figures;

  /// The wanted quantity as its text gives it; 0 when it is no number.
  double Quantity() const { return ParseNumber(QuantityText).value_or(0); }
};

/// A cleared work with the unit, the settings and the cost and emission models that a new Batch begins with.
BatchWork NewBatchWork(const Session& session);
/// For a window that stays open while they change.
BatchSettings ReadBatchSettings(const Session& session);

/// The operator edited the text: rows that stand are no longer those of the quantity.
void SetQuantityText(BatchWork& work, std::string text);

/// Refuses a quantity that is no number, not above 0 or over 99999.
Result<void> ValidateQuantity(const BatchWork& work);

/// A colour's stock, or another quantity in the inventory unit, with that of its lots, in the Batch's unit. The lots
/// count while Lotted Inventory is in use.
float StockInUnit(const Session& session, int unit, float inventory, double lotTotal);

/// Of the colour's unlotted stock what the open Batch itself has put there, in the inventory unit.
float UnlottedMade(const Session& session, const BatchWork& work, std::string_view name);

/// True when the Batch makes that Master Formula or recycles it.
bool UsesFormula(const BatchWork& work, std::string_view name);

/// True when the Batch takes no further line, and its Basic and addition rows cannot be adjusted.
bool BatchIsFull(const BatchWork& work);

}  // namespace vellumark
