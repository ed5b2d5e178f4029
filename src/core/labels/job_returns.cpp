#include "core/labels/job_returns.h"

#include <fmt/format.h>

#include "core/base/number.h"
#include "core/base/text.h"
#include "core/base/units.h"
#include "core/inventory/lots.h"
#include "core/jobs/job_numbers.h"
#include "core/jobs/job_record.h"

namespace vellumark {

Result<Sheet> JobReturnsSheet(const Session& session, std::string_view jobNumber) {
  const std::string number = ReadJobNumber(jobNumber);
  if (!JobIsThere(session, number)) return std::unexpected(JobNotFound(number));
  Sheet sheet{.title = "Job Returns - Barcoded Data", .subtitle = "Job Number: " + number};
  for (const JobRecord& item : JobItems(session, number)) {
    if (item.QtyUsed <= 0) continue;
    SheetBlock block{.heading = fmt::format("{}  {}", item.ItemText(), item.Color_Name)};
    block.fields.push_back({"Qty Issued / Used", fmt::format("{} / {} {}", Fixed(item.QtyIssued, 3),
                                                             Fixed(item.QtyUsed, 3), UnitName(session.UMI))});
    const auto add = [&](std::string_view caption, std::string_view tag, const std::string& value) {
      if (!value.empty()) block.codes.push_back({std::string(caption), std::string(tag) + value});
    };
    add("Job Number", "<JN>", number);
    add("Color Name", "<CN>", item.Color_Name);
    add("Color Type", "<CT>", item.Kind() == ColorKind::Mix ? "2" : "1");
    add("Database", "<DB>", item.Database);
    add("Lot Number", "<LN>", item.LotRefID == 0 ? std::string(kUnlottedInv) : item.LotNumber);
    add("Lot Cont ID", "<LC>", item.LotContID);
    if (item.LotRefID > 0) add("Lot Reference", "<LR>", std::to_string(item.LotRefID));
    sheet.blocks.push_back(std::move(block));
  }
  if (sheet.blocks.empty())
    return Refuse("Job Returns - Barcoded Data", fmt::format("Job Number: {} has nothing that could come back.", number));
  return sheet;
}

}  // namespace vellumark
