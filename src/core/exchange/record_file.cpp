#include "core/exchange/record_file.h"

#include <fmt/format.h>

#include <system_error>

#include "core/base/text.h"
#include "core/exchange/text_file.h"
#include "core/reports/build.h"

namespace vellumark {

RecordGathering::RecordGathering(Session& session, std::string_view text, std::size_t records)
    : session_(session), all_(records) {
  session_.progress.Begin(text);
}

void RecordGathering::Row(std::vector<std::string> cells) {
  for (std::string& cell : cells) cell = TabCell(cell);
  cells_ += cells.size();
  grid.rows.push_back(std::move(cells));
}

bool RecordGathering::GoOn() {
  ++grid.records;
  session_.progress.Percent(100.0 * static_cast<double>(grid.records) /
                            static_cast<double>(std::max<std::size_t>(1, all_)));
  if (cells_ > kMostReportCells) return false;
  if (grid.records < all_ && session_.progress.Cancelled()) grid.complete = false;
  return grid.complete;
}

Result<RecordGrid> RecordGathering::Finish(std::string_view title) {
  if (cells_ > kMostReportCells)
    return Refuse(std::string(title),
                  "The export contains too many records.\n\nSelect a smaller range of Batch IDs for export.");
  if (!grid.complete)
    session_.prompt.Tell("Incomplete Data", "Because you decided to cancel, this data is incomplete.",
                         Icon::Exclamation);
  return std::move(grid);
}

Result<RecordDays> DaysOf(const RecordRange& range) {
  if (!range.from || !range.to) return Refuse("Invalid Date", "Please enter a valid date.", range.from ? "To" : "From");
  return RecordDays{range.from->Midnight().ToText(), DateTime::FromDayNumber(range.to->DayNumber() + 1).ToText()};
}

std::string RangeText(const RecordRange& range) {
  if (range.ByNumber()) return FileNamePart(Trim(range.first) + " - " + Trim(range.last));
  std::string text = (range.from ? range.from->DateText() : "") + " to " + (range.to ? range.to->DateText() : "");
  for (char& c : text)
    if (c == '-') c = '_';
  return text.replace(text.find(" to "), 4, " - ");
}

std::string RecordText(const RecordGrid& grid) {
  std::string text;
  for (const std::vector<std::string>& row : grid.rows) {
    for (std::size_t i = 0; i < row.size(); ++i) text.append(i == 0 ? "" : "\t").append(row[i]);
    text += "\r\n";
  }
  return text;
}

Result<void> SaveRecordFile(Session& session, const RecordGrid& grid, const std::filesystem::path& path) {
  if (!grid.complete) return Refuse("Incomplete Data", "Because you decided to cancel, this data is incomplete.");
  std::error_code ignored;
  if (std::filesystem::exists(path, ignored) &&
      !session.prompt.Ask("Overwrite?", fmt::format("Overwrite existing {} file?", path.filename().string()),
                          Answer::No))
    return Decline("Overwrite?");
  WriteTextFile(path, RecordText(grid));
  session.prompt.Tell("File Saved", fmt::format("Your file has been saved to:\n\n{}", path.string()),
                      Icon::Information);
  return {};
}

}  // namespace vellumark
