#include "core/labels/batch_containers.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "core/base/text.h"
#include "core/batch/open.h"
#include "core/inventory/adjust.h"
#include "core/labels/label_subjects.h"

namespace vellumark {
namespace {

// Those of one number may be containers of one Batch, unless another Batch has made them.
std::vector<LotRow> LotsOfBatch(const Session& session, const BatchRecord& batch) {
  const std::string& name = batch.work.Color_Name;
  const auto made = FindLot(session, ColorKind::Mix, name, {}, batch.LotRefID);
  if (batch.LotRefID <= 0 || !made) return {};
  std::vector<LotRow> lots = LotsNumbered(session, ColorKind::Mix, name, {}, made->LotNumber);
  std::erase_if(lots, [&](const LotRow& lot) {
    return lot.LotRefID != batch.LotRefID &&
           !session.File()
                .Scalar(fmt::format("SELECT 1 FROM {} WHERE Color_Name = ? AND LotRefID = ? AND BatchNo <> ? LIMIT 1",
                                    session.QuotedTable(schema::Batch)),
                        {name, lot.LotRefID, batch.BatchNo})
                .IsNull();
  });
  return lots;
}

void CountThrough(std::vector<LabelData>& labels) {
  std::map<std::string, int> sharing;
  for (LabelData& label : labels) ++sharing[Upper(label["Lot Cont ID"])];
  std::map<std::string, int> counted;
  const int all = static_cast<int>(labels.size());
  for (int i = 0; i < all; ++i) {
    LabelData& label = labels[static_cast<std::size_t>(i)];
    std::string& container = label["Lot Cont ID"];
    const std::string shared = Upper(container);
    if (sharing[shared] > 1) container = ContainerName(container, ++counted[shared], sharing[shared]);
    std::string& note = label["Short Note"];
    note = fmt::format("{} of {}{}{}", i + 1, all, note.empty() ? "" : "  ", note);
  }
}

}  // namespace

std::vector<LabelData> LabelsOfContainers(Session& session, std::int32_t batchNo) {
  const auto batch = ReadBatch(session, batchNo);
  const auto label = LabelOfBatch(session, batchNo);
  if (!batch || !label) return {};
  std::vector<LabelData> labels;
  for (const BatchJobLine& line : batch->jobs) {
    labels.push_back(*label);
    labels.back()["Job Number"] = line.JobNumber;
  }
  const auto toStock = [&] {
    labels.push_back(*label);
    labels.back()["Job Number"].clear();
    return &labels.back();
  };
  const std::vector<LotRow> lots = session.InvLotTracking == 1 ? LotsOfBatch(session, *batch) : std::vector<LotRow>();
  for (const LotRow& lot : lots) {
    LabelData& container = *toStock();
    container.LotRefID = lot.LotRefID;
    container["Lot Number"] = lot.LotNumber;
    container["Lot Location"] = lot.LotLoc;
    container["Lot Cont ID"] = lot.LotContID;
  }
  if (lots.empty() && (batch->returned > 0 || labels.empty())) toStock();
  if (labels.size() > 1) CountThrough(labels);
  return labels;
}

}  // namespace vellumark
