#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/table.h"
#include "core/exchange/formula_table.h"
#include "core/session/session.h"

namespace vellumark {

// How formulas come into a Database, whatever they come from: a plan is made of the table that the source was read into,
// it is looked at and changed, and it is carried out in one transaction, or not at all.

/// Where they are to go.
struct MergeTarget {
  std::string database{};  ///< of the open file; empty for the current one
  bool make = false;       ///< it is made by the merge
  bool ofGuides = false;   ///< made, it is one of guides: it gets the texts of their template
};

struct MergeOptions {
  /// Of figures and quantities where the source does not name it; 0 for the unit that is in use here.
  int sourceUnit = 0;
  /// An ingredient that is a formula itself is put in by its own ingredients. Otherwise it becomes a Basic Color.
  bool multiplyOut = false;
  bool unusedBasics = true;  ///< Basic Colors of the source that no chosen formula has
  bool stock = false;        ///< quantities, of new colours alone
};

/// What a formula of the source is to the Database.
enum class MergeMod { New, Different, Same, Refused };
/// "New", "Different", "Same" or "Refused".
std::string_view MergeModText(MergeMod mod);

/// What becomes of the formula of the same place in the table.
struct MergeChoice {
  MergeMod mod = MergeMod::New;
  bool take = false;
  bool hasFormulas = false;  ///< some ingredient is a formula itself
  std::int64_t key = 0;      ///< of the row that is here
  std::string why{};         ///< it was refused, or what else is to be known of it
};

/// A Basic Color that the Database lacks.
struct MergeBasic {
  std::string name;
  std::size_t place = 0;  ///< among the table's Basic Colors; kNoPlace when the source says only its name
  std::size_t uses = 0;   ///< formulas of the source with it
};
inline constexpr std::size_t kNoPlace = static_cast<std::size_t>(-1);

/// An Additive Set of the source.
struct MergeSet {
  std::string name;     ///< in the source
  std::string here;     ///< in the Database; empty when it cannot be one there
  bool isHere = false;  ///< the Database has the same one
  std::string why{};    ///< it cannot be one
};

struct MergePlan {
  /// Names are those that the Database has or would get, recipes in parts of 100.
  FormulaTable table;
  MergeTarget target;
  MergeOptions options;
  std::vector<MergeChoice> choices;  ///< of table.formulas
  std::vector<MergeBasic> basics;
  std::vector<MergeSet> sets;

  std::size_t Count(MergeMod mod) const;
  /// The formulas that are to be taken.
  std::size_t Taken() const;
  /// Some formula has an ingredient that is a formula itself.
  bool HasFormulasAsIngredients() const;
};

/// Compares a source with a Database; writes nothing. New formulas are chosen, different ones are not. Refused: no such
/// Database, a name that none may have or that is there already when it is to be made.
Result<MergePlan> PlanMerge(Session& session, FormulaTable table, const MergeTarget& target,
                            const MergeOptions& options = {});

enum class TakeWhat { None, New, Changed, All };
/// Chooses anew. With `names` only these, as they are typed; a name that the source does not have is refused.
Result<void> Choose(MergePlan& plan, TakeWhat what, const std::vector<std::string>& names = {});

/// An ingredient here and in the source.
struct MergeLine {
  std::string name;
  double here = 0;
  double there = 0;
  bool isHere = false;
  bool isThere = false;
  std::string change;  ///< "+1.250", "-1.250", "added", "gone"; empty when both have as much
};
/// The lines of a formula of the plan, those of the source first.
std::vector<MergeLine> CompareLines(Session& session, const MergePlan& plan, std::size_t place);
/// "RED +1.250, BLUE gone", or what else is to be said of the formula.
std::string ChangesText(Session& session, const MergePlan& plan, std::size_t place);

/// The lines that are no formula and the formulas that were refused, in the words for the operator; empty when there are
/// none.
std::string RefusedText(const MergePlan& plan);

/// What a merge did.
struct MergeReport {
  std::string source;
  std::string sourceDatabase;
  std::string database;
  bool madeDatabase = false;
  std::vector<std::string> added;
  std::vector<std::string> changed;
  std::vector<std::string> kept;     ///< different, and left as they are
  std::vector<std::string> left;     ///< new, and not chosen
  std::vector<std::string> refused;  ///< with the reason behind a colon
  std::size_t same = 0;
  std::vector<std::string> basics;  ///< made
  std::vector<std::string> sets;    ///< made, with " as " and its name here where that differs
  std::vector<std::string> notes;   ///< what could not be brought
  std::int64_t import = 0;          ///< its number, by which it is undone
};
/// Carries a plan out: Basic Colors, Additive Sets, formulas with their figures, stock. All of it or nothing; it may be
/// cancelled. Of a formula that is here the recipe and the Additive Set change, and nothing else. Prices and emissions
/// come in by users who may edit them. Refused: nothing is chosen.
Result<MergeReport> RunMerge(Session& session, const MergePlan& plan);
/// The report as a text for a file.
std::string ReportText(const MergeReport& report, const DateTime& when);

/// What was taken back.
struct ImportUndone {
  std::string database;
  std::string source;
  std::size_t removed = 0;
  std::size_t restored = 0;
  std::size_t basicsRemoved = 0;
  std::vector<std::string> basicsKept{};  ///< that something else uses by now, or that were changed
  std::vector<std::string> setsKept{};
  bool databaseRemoved = false;
};
/// Takes back an import as a whole, the latest for 0. Refused, naming them, while one of its formulas is not as it left
/// it: changed, removed, in stock, made, or in a Design.
Result<ImportUndone> UndoImport(Session& session, std::int64_t import = 0);
/// The latest one, after a question that tells which it is.
Result<ImportUndone> AskAndUndoImport(Session& session);
bool HasImport(const Session& session);
/// What was taken back and what stays, for people.
std::string UndoneText(const ImportUndone& undone);
/// The imports that can be asked for, the latest first.
ListTable ListImports(const Session& session);

// The tables in which people look at a plan. It must outlive them.
ListTable PlannedFormulas(Session& session, const MergePlan& plan);
/// A line for each ingredient in which a formula differs, in the order of the source.
ListTable PlannedDifferences(Session& session, const MergePlan& plan);

}  // namespace vellumark
