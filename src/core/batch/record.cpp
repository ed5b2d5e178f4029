#include "core/batch/record.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/text.h"
#include "core/datafile/lifecycle.h"
#include "core/session/settings.h"

namespace vellumark {
namespace {

bool SameFigures(const BatchFigures& a, const BatchFigures& b) {
  return a.CostOfBasics == b.CostOfBasics && a.CostOfMixes == b.CostOfMixes && a.TotalCost == b.TotalCost &&
         a.VOC == b.VOC && a.HAP == b.HAP;
}

std::vector<std::pair<std::string, double>> ShownRows(const BatchWork& work) {
  std::vector<std::pair<std::string, double>> rows;
  for (const BatchRow& row : work.Rows) rows.emplace_back(row.name, row.amount);
  return rows;
}

std::vector<LotSelection> AllLots(const BatchWork& work) {
  std::vector<LotSelection> lots;
  for (const RecycleColor& color : work.RecycledColors) lots.push_back(color.lots);
  for (const auto* list : {&work.Ingredients, &work.Additions})
    for (const BatchIngredient& ingredient : *list) lots.push_back(ingredient.lots);
  return lots;
}

// The lot's place counts only where lots do.
BatchFields Compared(const Session& session, BatchFields fields) {
  if (session.InvLotTracking == 0) {
    fields.LotLoc.clear();
    fields.LotContID.clear();
  }
  return fields;
}

}  // namespace

const FieldMap<BatchFields>& BatchRowFields() {
  using F = BatchFields;
  static const FieldMap<F> fields = [] {
    const FieldTraits typed{.use = FieldUse::Typed};
    FieldMap<F> map;
    map.Add("LotNumber", &F::LotNumber, typed)
        .Add("LotLoc", &F::LotLoc, {.use = FieldUse::Beside})
        .Add("LotContID", &F::LotContID, {.use = FieldUse::Beside})
        .Add("Notes", &F::Notes, typed)
        .Add("IngNotes", &F::IngNotes, typed)
        .Add("ShortNote", &F::ShortNote, typed);
    for (std::size_t n = 0; n < kBatchUserFields; ++n) {
      const int number = static_cast<int>(n);
      map.Add(
             schema::Numbered("UD_Text", number), [n](F & batch) -> auto& { return batch.UD_Text[n]; }, typed)
          .Add(
              schema::Numbered("UD_Numeric", number), [n](F & batch) -> auto& { return batch.UD_Numeric[n]; }, typed);
    }
    for (const RecordField& field : LabFields()) map.AddBase<LabReading>(field);
    return map;
  }();
  return fields;
}

std::string BatchRecord::JobNumber() const {
  if (jobs.empty()) return {};
  return jobs.size() == 1 ? jobs.front().JobNumber : std::string(kSplitJobs);
}

std::string BatchRecord::QtyUsedText() const {
  return jobs.size() == 1 ? Fixed(jobs.front().QtyUsed, 3) : std::string();
}

std::string BatchNoText(std::int32_t batchNo) {
  return fmt::format("{:06}", batchNo);
}

BatchRecord NewBatchRecord(const Session& session) {
  BatchRecord record;
  record.work = NewBatchWork(session);
  record.BatchNo = UpcomingBatchNo(session);
  record.Username = session.CurrentUser;
  record.ReturnToInventory = GetSetting(session, setting::ReturnToInventory);
  record.LotRefID = 0;
  return record;
}

std::int32_t UpcomingBatchNo(const Session& session) {
  Statement taken = session.File().Prepare(
      fmt::format("SELECT BatchNo FROM {} WHERE BatchNo >= ? ORDER BY BatchNo", session.QuotedTable(schema::Batch)));
  const auto firstFree = [&](std::int32_t from) {
    taken.Reset();
    taken.Bind(1, from);
    std::int64_t free = from;
    while (taken.Step() && taken.Whole(0) <= free)
      if (taken.Whole(0) == free) ++free;
    return free;
  };
  const std::int64_t free = firstFree(std::clamp(ReadFileInfo(session.File()).batchNumber, 1, kLastCounter));
  if (free <= kLastCounter) return static_cast<std::int32_t>(free);
  // The counter begins anew, and may meet Batches that were never archived.
  const std::int64_t again = firstFree(1);
  if (again <= kLastCounter) return static_cast<std::int32_t>(again);
  throw Failure(session.File().Path().string(), "has no free Batch number left; archive old Batches");
}

bool RecordHasChanged(const Session& session, const BatchRecord& record) {
  if (record.state != BatchState::Edit) return record.state == BatchState::Add && !record.work.Rows.empty();
  const RememberedBatch& before = record.remembered;
  return record.work.Color_Name != before.Color_Name || ShownRows(record.work) != before.rows ||
         Compared(session, record.fields) != Compared(session, before.fields) || record.jobs != before.jobs ||
         record.weighed != before.weighed || record.ReturnedText() != before.returned ||
         record.work.UMF != before.UMF || record.work.cost != before.cost ||
         !SameFigures(record.work.figures, before.figures) ||
         (session.InvLotTracking != 0 && AllLots(record.work) != before.lots);
}

void RememberRecord(BatchRecord& record) {
  record.remembered = {.Color_Name = record.work.Color_Name,
                       .rows = ShownRows(record.work),
                       .lots = AllLots(record.work),
                       .fields = record.fields,
                       .jobs = record.jobs,
                       .weighed = record.weighed,
                       .returned = record.ReturnedText(),
                       .UMF = record.work.UMF,
                       .cost = record.work.cost,
                       .figures = record.work.figures};
}

bool PriorBatchHadAdditions(const Session& session, std::string_view colorName, std::int32_t before) {
  std::string types;
  for (int i = 0; i < schema::kBatchLines; ++i) types += fmt::format("{}IngType{}", i == 0 ? "" : ", ", i);
  return !session.File()
              .Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ? AND BatchNo < ? AND 3 IN ({}) LIMIT 1",
                                  session.QuotedTable(schema::Batch), types),
                      {colorName, before})
              .IsNull();
}

std::string BatchUDTextDefault(const Session& session, int number) {
  if (!GetSetting(session, setting::BatchUDTxtDefault[number])) return {};
  return GetSetting(session, setting::BatchUDTxtValue[number]);
}

}  // namespace vellumark
