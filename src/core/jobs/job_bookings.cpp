#include "core/jobs/job_bookings.h"

#include <fmt/format.h>

#include <set>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/datafile/stock_trail.h"
#include "core/jobs/job_record.h"
#include "core/jobs/job_renames.h"

namespace vellumark {

// A line keeps the number that the Job had; an item from stock is known by its own number too.
std::vector<StockLine> JobBookings(const Session& session, std::string_view jobNumber) {
  std::set<std::int32_t> items;
  for (const JobRecord& item : JobItems(session, jobNumber))
    if (!item.IsOfBatch()) items.insert(item.BatchNo);
  const JobRenames renames(session.File());
  std::vector<StockLine> lines;
  ForEachStockLine(session.File(), StockEvent::JobRecord, [&](StockLine& line) {
    constexpr std::string_view kItem = "Item ";
    const bool isItem = line.reason.starts_with(kItem) && items.contains(LeadingInteger(line.reason.substr(kItem.size())));
    if (isItem || EqualNoCase(renames.Now(line.document, line.id), jobNumber)) lines.push_back(std::move(line));
    return true;
  });
  return lines;
}

TableOf<StockLine> JobBookingColumns(const Session& session) {
  return TableOf<StockLine>()
      .Add("ID", &StockLine::id, "Line")
      .Width(960)
      .Add("Moment", &StockLine::when, "Date", Format::Moment)
      .Width(2100)
      .Add("Username", &StockLine::user, "User")
      .Width(1320)
      .Add("Color_Name", &StockLine::Color_Name, "Color Name")
      .Width(2160)
      .Add("LotNumber", &StockLine::LotNumber, "Lot Number")
      .Width(1560)
      .Add("Change", &StockLine::change, fmt::format("Change ({})", UnitName(session.UMI)))
      .Width(1560)
      .Add("Reason", &StockLine::reason)
      .Width(4680);
}

}  // namespace vellumark
