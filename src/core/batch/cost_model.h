#pragma once

#include <string>
#include <vector>

#include "core/batch/batch_work.h"
#include "core/datafile/field_map.h"

namespace vellumark {

// Cost and emission models as the operator sees and types them: for one Batch, or as the default of later ones.

/// The fields of a model, told once: its whole numbers are choices, its prices make up the cost, the rest is of
/// emissions.
const FieldMap<BatchCostModel>& CostModelFields();
/// The choice in such a field, and the last that there is; the first is 0.
int& ChoiceIn(BatchCostModel& model, const RecordField& field);
int LastChoice(const RecordField& field);
/// Each choice brought to one that there is.
void KeepChoices(BatchCostModel& model);

constexpr int kMixOptions = 3;  ///< entries of MixCostOption, MixVOCModelType and MixHAPModelType

/// What CostModelType 0 and 1 are called, and what each does.
const char* CostModelTypeName(int type);
const char* CostModelTypeText(int type);
/// What a recycled colour costs by MixCostOption 0 to 2, as a list offers it.
const char* MixCostOptionName(int option);
/// How recycled ink counts by MixVOCModelType and MixHAPModelType 0 to 2.
const char* MixVOCModelName(int type);
const char* MixHAPModelName(int type);

/// A cost model with its numbers as typed.
struct CostModelEntry {
  int CostModelType = 0;
  int MixCostOption = 0;
  std::string FixedCostOfBatch;
  std::string FixedCostPerUnit;
  std::string MarkupPercent;
};

/// The model's numbers as their fields show them: costs in DecimalPlaces, the percentage with one decimal.
CostModelEntry ShowCostModel(const Session& session, const BatchCostModel& model);
/// The typed model; what it does not tell, such as the emission models, stays as in `before`. Refuses a cost that is no
/// number or below 0 and a percentage outside 0 to 100; so it does with a cost that no money field holds.
Result<BatchCostModel> ReadCostModel(const Session& session, const CostModelEntry& typed, const BatchCostModel& before);
/// "(Example - 10 lb. * 8.75 = 87.50)": what a Batch costs without its ingredients.
std::string CostModelExample(const Session& session);

// ---- The detail of a Batch's cost

/// One line of the cost window.
struct CostLine {
  enum class Kind { Part, Subtotal, Total };
  Kind kind = Kind::Part;
  const char* name = "";  ///< of the control that shows the amount
  std::string caption;
  Currency amount;
};
/// The lines from top to bottom, which add up to the total.
std::vector<CostLine> CostDetail(const Session& session, const BatchWork& work);

}  // namespace vellumark
