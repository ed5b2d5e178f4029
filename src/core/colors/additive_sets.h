#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/colors/normalise.h"
#include "core/datafile/field_map.h"
#include "core/datafile/schema.h"
#include "core/datafile/writer.h"
#include "core/session/acts.h"

namespace vellumark {

/// A formula and the set it takes have no more lines together.
inline constexpr std::size_t kMostLinesWithSet = 14;

/// A row of `<DB>_Additives`: up to five Additives with fixed percentages.
struct AdditiveSet {
  std::int64_t key = 0;
  std::string SetName;
  std::array<std::string, schema::kSetSlots> Add_Name{};
  std::array<float, schema::kSetSlots> Add_Percent{};
  std::string SetList;  ///< the names

  /// The filled slots; the amount is the percentage.
  Recipe Rows() const;
  void SetRows(const Recipe& rows);
};

/// Its fields, told once.
const FieldMap<AdditiveSet>& AdditiveSetFields();
/// What every save of a set writes.
std::vector<Cell> AdditiveSetCells(const AdditiveSet& set);

/// `database` empty means the current one.
std::optional<AdditiveSet> ReadAdditiveSet(const Session& session, std::string_view setName,
                                           std::string_view database = {});
std::vector<AdditiveSet> ListAdditiveSets(const Session& session, std::string_view database = {});
bool AdditiveSetExists(const Session& session, std::string_view setName);

/// Five pairs of fields as typed.
struct AdditiveSetWork {
  struct Row {
    std::string name;
    std::string percent;
  };
  std::string SetName;
  std::array<Row, schema::kSetSlots> rows;
};
inline constexpr int kSetNameLength = 30;
/// A set's name as it will be stored: trimmed, cut to 30 characters, upper case.
std::string ReadSetName(std::string_view typed);
/// Leaving the name field of a new set: the name as it will be stored; one that is on file is refused. An empty field
/// may stay empty until the set is saved.
Result<std::string> EnterSetName(const Session& session, std::string_view typed);

/// A percentage of a set: rounded to two decimals, above 0 and at most 10.
Result<double> ReadSetPercent(std::string_view typed, std::string_view field = "SetPercent0");

/// All checks of a set in their order: the name (one on file is refused for a new set), that there are ingredients,
/// that they exist and are Additives, that each has a percentage and none stands twice. The set as it would be stored.
Result<AdditiveSet> ValidateAdditiveSet(const Session& session, const AdditiveSetWork& work, bool isNew);

/// What leaving an ingredient field of a set does with a name that is no Additive of this Database: asks whether to add
/// it and adds it. The name to keep in the field; empty when the operator declined.
Result<std::string> EnterSetIngredient(Session& session, const AdditiveSetWork& work, std::size_t row,
                                       std::string_view typed);

/// Adds a new set. In the formula window it belongs to a formula's recipe and is EditFormulas there.
Result<AdditiveSet> CreateAdditiveSet(Session& session, const AdditiveSetWork& work, Act act = Act::AdditiveSets);

/// Whether a set may be chosen for a formula whose other lines are `rows`: refused when a line stands in the set
/// already and when lines and set together exceed 14.
Result<void> CheckSetFitsFormula(const Recipe& rows, const AdditiveSet& set);

}  // namespace vellumark
