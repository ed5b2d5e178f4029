#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "core/session/rights.h"

namespace vellumark {

/// What people do with the system, as far as rights tell it apart.
enum class Act {
  Look,            ///< lists and figures; what a right hides is left out there
  Work,            ///< the day's work: Batches, stock, notes of colours, the own password
  AddBasics,       ///< a Basic Color or Additive that was not on file
  EditFormulas,    ///< recipes: new, changed, renamed, removed
  EditCosts,       ///< prices of colours and lots, the cost model
  EditEmissions,   ///< VOC and HAP
  AdditiveSets,    ///< making and changing sets, giving them to formulas
  FormulaTools,    ///< many colours at once
  BulkFormulas,    ///< the same where formulas are renamed or removed
  ResetCosts,      ///< one price for all colours
  ResetEmissions,  ///< one VOC or HAP for all colours
  ExportFormulas,  ///< formula files
  ImportFormulas,
  Databases,      ///< making, renaming and removing Databases
  GuideTemplate,  ///< making the template that new Databases get their guides from
  Options,        ///< the settings
  DataFiles,      ///< other Data Files: making, opening, renaming; the Support Files
  BackUp,         ///< backup and restore
  ExportDataFile,
  Users,  ///< users and their rights
};

/// A row of the table: what an act asks of the user.
struct ActRow {
  Act act = Act::Look;
  bool writes = false;               ///< to the open Data File: refused while it is an archive or backup copy
  std::vector<CommandRight> rights;  ///< all of them
  bool administrator = false;
  /// The rule behind the act refuses in words of its own, at the value or name at fault.
  bool ownWords = false;
};

/// Every act, in the order of the enumeration.
std::span<const ActRow> ActRows();
const ActRow& RowOf(Act act);

/// True when nobody has to log in, or when the user has every right of the act.
bool MayDo(const Session& session, Act act);
/// The refusal of an act: an archive copy that it would write to, or the right that the user lacks.
Result<void> RequireAct(const Session& session, Act act);
/// The rights alone, where someone comes in and nothing was asked or read yet: acts with words of their own pass.
Result<void> RequireAtDoor(const Session& session, Act act);

/// A way in and the act that it is for. What a person may do behind the door can ask for more: a changed price asks for
/// EditCosts wherever it is typed.
struct WayIn {
  std::string_view name;
  Act act = Act::Look;
};

/// Every command of the command line, as "noun verb".
std::span<const WayIn> CommandWays();
/// Every window and dialog, by its name.
std::span<const WayIn> WindowWays();
/// Nothing for a name that the table does not have.
std::optional<Act> ActOfCommand(std::string_view command);
std::optional<Act> ActOfWindow(std::string_view window);

}  // namespace vellumark
