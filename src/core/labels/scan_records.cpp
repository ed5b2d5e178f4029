#include "core/labels/scan_records.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/colors/names.h"

namespace vellumark {
namespace {

constexpr std::size_t kTagLength = 4;
constexpr double kTooMuch = 99999;

struct StoredTag {
  std::string_view tag;
  std::optional<std::string> ScanRecord::*value;
};
constexpr std::array<StoredTag, 8> kStored{{{"<CN>", &ScanRecord::CN},
                                            {"<CC>", &ScanRecord::CC},
                                            {"<CT>", &ScanRecord::CT},
                                            {"<DB>", &ScanRecord::DB},
                                            {"<LN>", &ScanRecord::LN},
                                            {"<LL>", &ScanRecord::LL},
                                            {"<LC>", &ScanRecord::LC},
                                            {"<JN>", &ScanRecord::JN}}};
constexpr std::string_view kReference = "<LR>";

std::optional<double> QuantityOf(std::string_view line) {
  const auto number = ParseNumber(line);
  return number && *number < kTooMuch ? number : std::nullopt;
}

class Reader {
 public:
  std::vector<ScanRecord> Take() { return std::move(records_); }

  void Line(std::string_view line) {
    if (const auto number = QuantityOf(line)) {
      Begin().Qty = RoundSingle(*number, 3);
      ended_ = true;
      return;
    }
    const std::string tag = Upper(line.substr(0, kTagLength));
    const std::string value = Upper(TrimView(line.substr(std::min(line.size(), kTagLength))));
    if (tag == kReference) return Store(&ScanRecord::LR, LeadingInteger(value));
    for (const StoredTag& stored : kStored)
      if (stored.tag == tag) return Store(stored.value, value);
  }

 private:
  // The record that the next value goes to. The first one is made by its first value.
  ScanRecord& Begin() {
    if (ended_) records_.emplace_back();
    ended_ = false;
    return records_.back();
  }
  template <class T>
  void Store(std::optional<T> ScanRecord::*field, T value) {
    ScanRecord& record = Begin();
    if (!(record.*field)) {
      record.*field = std::move(value);
    } else if (record.*field != value) {
      records_.emplace_back().*field = std::move(value);
    }
  }

  std::vector<ScanRecord> records_;
  bool ended_ = true;
};

}  // namespace

bool ScanRecord::SameScan(const ScanRecord& other) const {
  const auto values = [](const ScanRecord& r) {
    return std::tie(r.CN, r.CC, r.CT, r.DB, r.LR, r.LN, r.LL, r.LC, r.JN, r.Qty, r.jobRow);
  };
  return values(*this) == values(other);
}

void Conclude(ScanRecord& record, const Result<std::string>& booked) {
  record.state = booked ? ScanRecord::State::Successful : ScanRecord::State::Failed;
  record.Message = booked ? *booked : booked.error().text;
  record.Field = booked ? std::string() : booked.error().field;
}

ScanLine ClassifyScanLine(std::string_view line) {
  line = TrimView(line);
  if (QuantityOf(line)) return ScanLine::Quantity;
  const std::string tag = Upper(line.substr(0, kTagLength));
  if (tag == kReference || std::ranges::find(kStored, tag, &StoredTag::tag) != kStored.end()) return ScanLine::Stored;
  return StripScanTag(line) != line ? ScanLine::Ignored : ScanLine::Invalid;
}

std::vector<ScanRecord> ParseScan(std::string_view text) {
  Reader reader;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\r\n\t"), text.size());
    if (const std::string_view line = TrimView(text.substr(0, end)); !line.empty()) reader.Line(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return reader.Take();
}

}  // namespace vellumark
