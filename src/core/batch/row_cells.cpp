#include "core/batch/row_cells.h"

#include "core/base/text.h"
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

void AddFields(std::vector<Cell>& cells, const BatchFields& fields) {
  for (int i = 0; i < kBatchUserFields; ++i) {
    cells.emplace_back(schema::Numbered("UD_Text", i), fields.UD_Text[static_cast<std::size_t>(i)]);
    cells.emplace_back(schema::Numbered("UD_Numeric", i), fields.UD_Numeric[static_cast<std::size_t>(i)]);
  }
  const std::vector<Cell> own{
      {"LotNumber", fields.LotNumber}, {"Notes", fields.Notes},   {"IngNotes", fields.IngNotes},
      {"ShortNote", fields.ShortNote}, {"Lab_L", fields.Lab_L},   {"Lab_a", fields.Lab_a},
      {"Lab_b", fields.Lab_b},         {"Lab_D", fields.Lab_D},   {"Lab_Density", fields.Lab_Density},
      {"Lab_LS", fields.Lab_LS},       {"Lab_PT", fields.Lab_PT}, {"Lab_Note", fields.Lab_Note}};
  cells.insert(cells.end(), own.begin(), own.end());
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
                          {"FixedCostOfBatch", work.cost.FixedCostOfBatch},
                          {"FixedCostPerUnit", work.cost.FixedCostPerUnit},
                          {"MarkupPercent", work.cost.MarkupPercent},
                          {"MixCostOption", work.cost.MixCostOption},
                          {"CostModelType", work.cost.CostModelType},
                          {"MixVOCModelType", work.cost.MixVOCModelType},
                          {"MixHAPModelType", work.cost.MixHAPModelType},
                          {"VOC", work.figures.VOC},
                          {"HAP", work.figures.HAP},
                          {"Username", record.Username},
                          {"JobNumber", Trim(record.JobNumber())},
                          {"PercentRec", RoundSingle(work.PercentRecycled * 0.01, 6)},
                          {"Roundoff", work.Roundoff},
                          {"LargestAmountIndex", work.LargestAmountIndex}};
  AddLines(cells, work);
  AddFields(cells, record.fields);
  return cells;
}

}  // namespace vellumark
