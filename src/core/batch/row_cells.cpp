#include "core/batch/row_cells.h"

#include "core/base/text.h"
#include "core/batch/cost_model.h"
#include "core/batch/takings.h"

namespace vellumark {
namespace {

void AddLines(std::vector<Cell>& cells, const BatchWork& work) {
  const std::vector<StoredLine> lines = LinesOf(work);
  for (int i = 0; i < schema::kBatchLines; ++i) {
    const auto place = static_cast<std::size_t>(i);
    const StoredLine line = place < lines.size() ? lines[place] : StoredLine{};
    cells.emplace_back(schema::Numbered("IngName", i), line.IngName);
    cells.emplace_back(schema::Numbered("IngQty", i), line.IngQty);
    cells.emplace_back(schema::Numbered("IngType", i), static_cast<int>(line.IngType));
  }
}

}  // namespace

std::vector<Cell> BatchRowCells(const BatchRecord& record, const DateTime& date) {
  const BatchWork& work = record.work;
  std::vector<Cell> cells{{"Color_Name", work.Color_Name},
                          {"Color_Code", work.formula.Color_Code},
                          {"Quantity", static_cast<float>(work.Quantity())},
                          {"ActualQuantity", static_cast<float>(work.ShownTotal)},
                          {"UMF", work.UMF},
                          {"Date_Entered", date},
                          {"BatchNo", record.BatchNo},
                          {"ClickedIndex", work.ClickedIndex},
                          {"CostOfBasics", static_cast<float>(work.figures.CostOfBasics.ToDouble())},
                          {"CostOfMixes", static_cast<float>(work.figures.CostOfMixes.ToDouble())},
                          {"VOC", work.figures.VOC},
                          {"HAP", work.figures.HAP},
                          {"Username", record.Username},
                          {"JobNumber", Trim(record.JobNumber())},
                          {"PercentRec", RoundSingle(work.PercentRecycled * 0.01, 6)},
                          {"Roundoff", work.Roundoff},
                          {"LargestAmountIndex", work.LargestAmountIndex}};
  AddLines(cells, work);
  for (const std::vector<Cell>& part : {CostModelFields().Cells(work.cost, {FieldUse::Typed}),
                                        BatchRowFields().Cells(record.fields, {FieldUse::Typed})})
    cells.insert(cells.end(), part.begin(), part.end());
  return cells;
}

}  // namespace vellumark
