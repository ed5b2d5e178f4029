#include "core/labels/scan_plan.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/labels/scan_inventory.h"
#include "core/labels/scan_return.h"

namespace vellumark {
namespace {

// Stands for a quantity that is still to come.
constexpr float kLeast = 0.001F;

std::string InOneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    if (c != '\n')
      line += c;
    else if (!line.ends_with(' '))
      line += ' ';
  }
  return Trim(line);
}

std::string Amount(const Session& session, const std::optional<float>& quantity) {
  return quantity ? fmt::format("{} {}", Fixed(*quantity, 3), UnitName(session.UMI)) : "its quantity";
}

std::string PlaceText(const StockAddition& addition) {
  if (addition.place.IsUnlotted()) return std::string(kUnlottedInv);
  std::string text = fmt::format("{} {}", addition.newLot ? "the new lot" : "lot", addition.place.LotNumber);
  if (addition.place.LotLoc && !addition.place.LotLoc->empty()) text += ", " + *addition.place.LotLoc;
  if (addition.place.LotContID && !addition.place.LotContID->empty()) text += ", " + *addition.place.LotContID;
  return text;
}

ScanPlan Refused(const ScanRecord& record, const Refusal& refusal) {
  ScanPlan plan;
  plan.text = InOneLine(refusal.text);
  plan.name = record.CN.value_or(record.CC.value_or(""));
  plan.database = record.DB.value_or("");
  return plan;
}

}  // namespace

std::vector<ScanTotal> TotalsOfScan(const std::vector<ScanRecord>& records) {
  std::vector<ScanTotal> totals;
  for (const ScanRecord& record : records) {
    const std::string job = record.JN.value_or("");
    auto total = std::ranges::find_if(totals, [&](const ScanTotal& one) { return EqualNoCase(one.JobNumber, job); });
    if (total == totals.end()) total = totals.insert(totals.end(), {job});
    ++total->containers;
    total->quantity = RoundTo(total->quantity + RoundTo(record.Qty.value_or(0.0F), 3), 3);
  }
  return totals;
}

void ScanPreview::Forget() {
  records_.clear();
  plans_.clear();
  takes_.clear();
  taken_.clear();
}

void ScanPreview::Show(const Session& session, std::vector<ScanRecord> records) {
  const std::size_t shorter = std::min(records_.size(), records.size());
  std::size_t same = 0;
  while (same < shorter && records_[same].SameScan(records[same])) ++same;
  while (plans_.size() > same) {
    taken_[takes_.back().first] -= takes_.back().second;
    takes_.pop_back();
    plans_.pop_back();
  }
  records_ = std::move(records);
  while (plans_.size() < records_.size()) {
    takes_.emplace_back(0, 0);
    plans_.push_back(PlanOf(session, records_[plans_.size()]));
    taken_[takes_.back().first] += takes_.back().second;
  }
}

ScanPlan ScanPreview::PlanOf(const Session& session, const ScanRecord& record) {
  ScanRecord whole = record;
  if (!whole.Qty) whole.Qty = kLeast;
  ScanPlan plan{.kind = record.Qty ? ScanPlan::Kind::Ready : ScanPlan::Kind::Incomplete,
                .text = {},
                .name = {},
                .database = {},
                .ink = {}};
  ColorKind kind = ColorKind::Basic;
  if (record.JN) {
    const auto row = CheckScannedReturn(session, whole, taken_);
    if (!row) return Refused(record, row.error());
    plan.name = row->Color_Name;
    plan.database = row->Database;
    kind = row->Kind();
    if (record.Qty) takes_.back() = {row->row, double{*record.Qty}};
    plan.text = fmt::format("Brings {} back from Job {}", Amount(session, record.Qty), row->JobNumber);
    const double left = double{row->QtyUsed} - taken_[row->row] - record.Qty.value_or(0.0F);
    if (record.Qty) plan.text += RoundTo(left, 3) > 0 ? fmt::format(", {} stays out", Fixed(left, 3)) : ", all of it";
  } else {
    const auto addition = CheckScannedStock(session, whole);
    if (!addition) return Refused(record, addition.error());
    plan.name = addition->name;
    plan.database = addition->database;
    kind = addition->kind;
    plan.text = fmt::format("Adds {} to {}", Amount(session, record.Qty), PlaceText(*addition));
  }
  plan.ink = InkOf(session, kind, plan.name, plan.database);
  return plan;
}

}  // namespace vellumark
