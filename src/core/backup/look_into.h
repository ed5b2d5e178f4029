#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "core/base/table.h"
#include "core/batch/record.h"
#include "core/exchange/formula_merge.h"
#include "core/session/session.h"

namespace vellumark {

// What a backup holds otherwise than the open Data File does, and how one formula or one Batch of it comes back without
// a restore of the whole. `dataFile` is that of a set or any other; it stays as it is. Meant is the Database of the
// name of the current one.

/// A formula or a Batch that is not here, or not as it is there.
struct LookRow {
  std::string Kind;  ///< "Formula" or "Batch"
  std::string Name;  ///< of a Batch its number
  std::string ModType;
  std::string What;  ///< what is different, in words
};
const TableOf<LookRow>& LookColumns();
/// Formulas by name, then Batches by number. Refused: the file has no such Database or is of an older version.
Result<std::vector<LookRow>> LookInto(Session& session, const std::filesystem::path& dataFile);

/// One formula of the backup against the one that is here; nothing else of the plan is chosen.
struct FormulaBack {
  MergePlan plan;
  std::size_t place = 0;  ///< in the plan
  MergeMod Mod() const { return plan.choices[place].mod; }
};
Result<FormulaBack> CompareFormula(Session& session, const std::filesystem::path& dataFile, const std::string& name);
/// Takes it over, with Basic Colors that it needs, after a question that tells what is different. Refused when it is
/// here as it is there.
Result<MergeReport> TakeFormulaBack(Session& session, const FormulaBack& back);

/// A field of a Batch as it is here and there.
struct BatchDifference {
  std::string field;
  std::string here;
  std::string there;
};
struct BatchBack {
  BatchRecord there;
  MergeMod mod = MergeMod::New;
  std::vector<BatchDifference> differences;
};
Result<BatchBack> CompareBatch(Session& session, const std::filesystem::path& dataFile, std::int32_t batchNo);
/// Stores a Batch that is not here under its number, after a question that tells what it takes from stock. One that is
/// here is never written over: refused, telling what is different.
Result<void> TakeBatchBack(Session& session, const BatchBack& back);

}  // namespace vellumark
