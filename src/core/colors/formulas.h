#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/guides.h"
#include "core/colors/normalise.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"
#include "core/session/session.h"

namespace vellumark {

/// A row of `<DB>_Mix`: a recipe of up to fifteen ingredients in parts of 100, with the colour's stock and figures.
struct MixColor {
  std::int64_t key = 0;
  std::string Color_Name;
  std::array<std::string, schema::kIngredientSlots> BC;
  std::array<float, schema::kIngredientSlots> BQ{};
  std::string Color_Code;
  float Inventory = 0;  ///< Unlotted stock only
  float Reorder = 0;
  float PurchaseCost = 0;  ///< typed: the price of the mix bought ready-made
  float BasicCost = 0;     ///< rolled up from the ingredients, as are BasicVOC and BasicHAP
  bool Recycle = true;
  std::optional<DateTime> Date_Entered;
  std::optional<DateTime> LastModified;
  std::optional<DateTime> LastProduced;
  std::string Color_Set;
  std::string Notes;
  std::string Inv_Note;
  std::string AddSetName;
  float VOC = 0;
  float BasicVOC = 0;
  float HAP = 0;
  float BasicHAP = 0;
  std::int32_t LotRefID = 0;
  BookData book;

  /// The filled slots in order, up to the first empty one.
  Recipe Ingredients() const;
};

/// Its fields, told once.
const FieldMap<MixColor>& MixFields();

// Where a `database` may be given, empty means the current one.

bool MixColorExists(const Session& session, std::string_view name, std::string_view database = {});

/// The row of exactly that name, in any case.
std::optional<MixColor> ReadMix(const Session& session, std::string_view name, std::string_view database = {});
/// What a typed text finds: the formula of that name, else of "PANTONE " and the text, else the first in Color_Name
/// order whose code it is.
std::optional<MixColor> FindMix(const Session& session, std::string_view typed);
/// Every row in Color_Name order, one at a time, until `take` answers false.
void ForEachMix(const Session& session, const std::function<bool(const MixColor&)>& take);
/// Only those with the ingredient.
void ForEachMixUsing(const Session& session, std::string_view ingredient,
                     const std::function<bool(const MixColor&)>& take);
std::vector<std::string> MixNames(const Session& session);
/// The names of the formulas with the ingredient, in order; answered from the index on Color_Set.
std::vector<std::string> FormulasUsing(const Session& session, std::string_view ingredient);
/// The names of the formulas with that Additive Set, in order.
std::vector<std::string> FormulasWithSet(const Session& session, std::string_view setName);

/// The same formulas by their row numbers, for a change that must reach every row.
std::vector<std::int64_t> FormulaRowsUsing(const Session& session, std::string_view ingredient);
std::vector<std::int64_t> FormulaRowsWithSet(const Session& session, std::string_view setName);

/// The three figures that ingredients give to a formula.
struct RolledUp {
  float BasicCost = 0;
  float BasicVOC = 0;
  float BasicHAP = 0;
};
/// Figures of parts of 100 against a Database's Basic Colors; an ingredient without a row adds nothing.
RolledUp RollUpRecipe(const Session& session, const Recipe& recipe, std::string_view database = {});

/// Builds the Color_Set of a formula from its slots, where somebody else changed these; true when it was another.
bool RenewColorSet(const Session& session, std::int64_t key, std::string_view database);

/// Reads what bulk work needs of formulas of the current Database: key, Color_Name, the filled slots and AddSetName;
/// the other fields of a row keep their defaults. Prepared once for many rows.
class RecipeReader {
 public:
  explicit RecipeReader(const Session& session);
  std::optional<MixColor> Read(std::string_view name);
  std::optional<MixColor> ReadRow(std::int64_t key);

 private:
  static std::optional<MixColor> Take(Statement& row);

  Statement byName_;
  Statement byRow_;
};

/// Writes recipes into rows: all fifteen slots, Color_Set and AddSetName, and whatever fields were asked for besides.
/// Prepared once for many rows.
class RecipeWriter {
 public:
  RecipeWriter(const Session& session, std::string_view database = {}, const std::vector<std::string>& more = {});
  /// The recipe has at most fifteen lines; throws std::logic_error otherwise.
  RecipeWriter& Set(const Recipe& recipe, std::string_view setName);
  /// The value of the extra field at that place of the list.
  RecipeWriter& SetMore(std::size_t place, const Value& value);
  std::int64_t Insert() { return writer_.Insert(); }
  bool Update(std::int64_t key) { return writer_.Update(key); }

 private:
  RowWriter writer_;
  std::size_t fixedFields_;
};

}  // namespace vellumark
